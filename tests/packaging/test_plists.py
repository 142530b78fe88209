"""The Mac's property lists and its installer's description agree with each other and with the sources."""

import os
import pathlib
import plistlib
import re
import xml.etree.ElementTree

SOURCE = pathlib.Path(__file__).parents[2]
MAC, BUILT = SOURCE / "packaging/macos", pathlib.Path(os.environ["KEST_BUILD"], "packaging/macos")
AGENT_FILE = MAC / "com.kestronics.kest-settings.plist"
INFO, AGENT, (COMPONENT,) = (plistlib.loads(file.read_bytes())
                             for file in (BUILT / "Info.plist", AGENT_FILE, MAC / "components.plist"))


def test_names_agree():
    label, version, oldest = AGENT["Label"], INFO["CFBundleVersion"], INFO["LSMinimumSystemVersion"]
    app = f"/Applications/Kestronics/{INFO['CFBundleName']}.app"
    assert re.fullmatch(r"\d+\.\d+\.\d+ \d+\.\d+", f"{version} {oldest}")
    assert label == INFO["CFBundleIdentifier"] == AGENT_FILE.stem
    assert f'launchAgent = "/Library/LaunchAgents/{label}.plist"' in (SOURCE / "backend/SystemPaths.h").read_text()
    assert AGENT["ProgramArguments"] == [f"{app}/Contents/MacOS/{INFO['CFBundleExecutable']}"]
    assert "/" + COMPONENT["RootRelativeBundlePath"] == app and not COMPONENT["BundleIsRelocatable"]
    assert (SOURCE / "packaging/icons" / INFO["CFBundleIconFile"]).with_suffix(".iconset").is_dir()

    installer = xml.etree.ElementTree.parse(BUILT / "distribution.xml")
    package, = [package.attrib for package in installer.iter("pkg-ref") if package.text]
    assert package == {"id": label, "version": version}
    assert installer.find(".//os-version").get("min") == oldest


def test_agent_is_in_no_dock_starts_at_login_and_ends_with_quit():
    application = {"LSUIElement": True, "CFBundlePackageType": "APPL", "NSPrincipalClass": "NSApplication"}
    assert {**INFO, **application} == INFO and "NSMainNibFile" not in INFO
    # What the agent has started outlives it.
    started = {"RunAtLoad": True, "LimitLoadToSessionType": "Aqua", "AbandonProcessGroup": True,
               "KeepAlive": {"SuccessfulExit": False}}
    assert {**AGENT, **started} == AGENT
