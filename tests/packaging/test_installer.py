"""What make_installer, the installer's scripts and the uninstall script do. macOS's programs are stand-ins."""

import pathlib
import re
import shutil

import pytest

from harness.stand_ins import StandIns

SOURCE = pathlib.Path(__file__).parents[2]
LABEL = "com.kestronics.kest-settings"
PLIST = f"/Library/LaunchAgents/{LABEL}.plist"
# Two users with a desktop, one of them twice; the setup assistant's and root's; a user who logged in by ssh.
PROCESSES = "  501 Dock\n  502 Dock\n  501 Dock\n  248 Dock\n    0 Dock\n  503 sshd\n  501 kest-settings\n"
PS = "ps -axc -o uid= -o comm=\n"
PKILL = "pkill -x kest-settings\n"
PGREP = "pgrep -x kest-settings\n"
BOOTOUT = f"{PS}launchctl bootout gui/501/{LABEL}\nlaunchctl bootout gui/502/{LABEL}\n{PKILL}"


@pytest.fixture
def mac(tmp_path):
    mac = StandIns(tmp_path)
    mac.environment["processes"] = PROCESSES
    mac.add("launchctl", script='[ "$2" != "${refused-}" ]')
    mac.add("ps", script='printf %s "$processes"')
    mac.add("pkill", "sleep", "pkgutil")
    mac.add("pgrep", script='n=$(grep -c pgrep "$work/calls"); [ "$n" -lt "${ends_after-1}" ]')
    mac.add("id", script='echo "${user:-0}"')
    mac.add("sudo", script='user=0 exec "$@"')
    return mac


@pytest.mark.parametrize("script, volume, variables, output, calls", [
    ("preinstall", "/", {"ends_after": "2"}, "", BOOTOUT + PGREP + "sleep 0.2\n" + PGREP),
    ("preinstall", "/", {"ends_after": "100"},
     "preinstall: a running agent has not ended; the new version starts after it has ended\n",
     BOOTOUT + 50 * (PGREP + "sleep 0.2\n") + PGREP),
    ("preinstall", "/", {"processes": "  248 Dock\n    0 loginwindow\n"}, "", PS + PKILL + PGREP),
    ("preinstall", "/Volumes/Other", {}, "", ""),
    ("postinstall", "/", {"refused": "gui/501"},
     "postinstall: the agent was not started for user 501; it starts at the next login\n",
     f"{PS}launchctl bootstrap gui/501 {PLIST}\nlaunchctl bootstrap gui/502 {PLIST}\n"),
    ("postinstall", "/", {"processes": "  248 Dock\n    0 loginwindow\n"}, "", PS),
    ("postinstall", "/Volumes/Other", {}, "", "")])
def test_agents_end_before_and_start_after_an_installation(mac, script, volume, variables, output, calls):
    script = SOURCE / "packaging/macos/scripts" / script
    assert mac.run(script, "a.pkg", volume, volume, **variables) == (0, output, calls)


@pytest.fixture
def uninstall(mac, tmp_path):
    """The script on a Mac, DESTDIR, on which the agent and another application are installed."""
    disk = tmp_path / "mac disk"
    apps = disk / "Applications/Kestronics"
    for file in (apps / "Kest Settings.app/Contents/MacOS/kest-settings", apps / "Other.app", disk / PLIST[1:]):
        file.parent.mkdir(parents=True, exist_ok=True)
        file.touch()
    mac.environment["DESTDIR"] = str(disk)
    return shutil.copy(SOURCE / "packaging/macos/uninstall", apps / "Uninstall Kest Settings.command")


def test_user_uninstalls(mac, tmp_path, uninstall):
    status, output, calls = mac.run(uninstall, user="501")
    assert status == 0 and calls == f"id -u\nsudo {uninstall}\nid -u\n{BOOTOUT}pkgutil --forget {LABEL}\n"
    assert "Kept: each user's settings, ~/Library/Application Support/Kestronics/Kest-Settings.*" in output
    assert [file.name for file in (tmp_path / "mac disk").rglob("*") if file.is_file()] == ["Other.app"]


def test_application_that_cannot_be_removed(mac, uninstall):
    mac.add("rm", script='[ "$1" != -rf ] || exit 1; exec /bin/rm "$@"')
    status, _, calls = mac.run(uninstall)
    assert status == 1 and "pkgutil" not in calls and uninstall.exists()


APP = "build/macos/installer/root/Applications/Kestronics/Kest Settings.app"
PACKAGE = "build/macos/Kest-Settings-1.2.3.pkg"
CALLS = f"""\
cmake --preset macos
cmake --build --preset macos
{{sign_app}} {APP}/Contents/MacOS/kest-settings-terminal
{{sign_app}} {APP}
codesign --verify --strict --deep {APP}
pkgbuild --root build/macos/installer/root --component-plist packaging/macos/components.plist --ownership recommended \
--scripts packaging/macos/scripts --identifier {LABEL} --version 1.2.3 --install-location / \
build/macos/installer/component.pkg
productbuild --distribution build/macos/packaging/macos/distribution.xml --package-path build/macos/installer{{sign}} {PACKAGE}
"""
NOTARISE = f"xcrun notarytool submit --wait --keychain-profile kest {PACKAGE}\nxcrun stapler staple {PACKAGE}\n"
PAYLOAD = f"""\
644 Applications/Kestronics/Kest Settings.app/Contents/Info.plist
755 Applications/Kestronics/Kest Settings.app/Contents/MacOS/kest-settings
755 Applications/Kestronics/Kest Settings.app/Contents/MacOS/kest-settings-terminal
644 Applications/Kestronics/Kest Settings.app/Contents/Resources/LICENSE
755 Applications/Kestronics/Uninstall Kest Settings.command
644 Library/LaunchAgents/{LABEL}.plist
"""


@pytest.fixture
def make_installer(mac, tmp_path):
    """make_installer(OPTION..., VARIABLE=...): its status, its output, and the calls that build, sign and pack."""
    tree = tmp_path / "mein kest"
    shutil.copytree(SOURCE / "packaging", tree / "packaging")
    shutil.copy(SOURCE / "LICENSE", tree)
    mac.add("uname", script="echo ${system-Darwin}")
    mac.add("cmake", script="""[ "$1" = --build ] || exit 0
        umask 077
        contents=build/macos/bin/kest-settings.app/Contents
        mkdir -p $contents/MacOS $contents/Resources
        echo CMAKE_PROJECT_VERSION:STATIC=1.2.3 >build/macos/CMakeCache.txt
        touch $contents/Info.plist
        install -m 700 /dev/null $contents/MacOS/kest-settings
        install -m 700 /dev/null build/macos/bin/kest-settings-terminal""")
    mac.add("ninja", "codesign", "iconutil", "plutil", "productbuild", "xcrun")
    mac.add("lipo", script='[ -z "${one_processor-}" ]')
    mac.add("pkgbuild", script='find "$2" ! -type d -printf "%m %P\n" | sort -k 2 >"$work/payload"')

    def run(*options, **variables):
        status, output, calls = mac.run(tree / "packaging/macos/make_installer", *options, **variables)
        build = re.findall("^(?:cmake|codesign|pkgbuild|productbuild|xcrun) .*\n", calls, re.M)
        return status, output, "".join(build).replace(f"{tree}/", "")
    return run


PROFILE = ("--notarize", "kest")
IDENTITIES = ("--sign-app", "App: K", "--sign-installer", "Installer: K", *PROFILE)


@pytest.mark.parametrize("options, sign_app, sign, end", [
    ((), "--timestamp=none --sign -", "", ""),
    (IDENTITIES, "--timestamp --sign App: K", " --timestamp --sign Installer: K", NOTARISE)])
def test_package(make_installer, tmp_path, options, sign_app, sign, end):
    status, output, calls = make_installer(*options)
    sign_app = f"codesign --force --options runtime {sign_app}"
    assert calls == CALLS.format(sign_app=sign_app, sign=sign) + end
    assert status == 0 and output.splitlines()[-1] == PACKAGE
    assert (tmp_path / "payload").read_text() == PAYLOAD


@pytest.mark.parametrize("options, variables, error, missing", [
    ((), {"system": "Linux"}, "building an installer package requires macOS; this is Linux", "cmake"),
    ((), {"one_processor": "yes"}, "does not contain code for both processors", "pkgbuild"),
    (PROFILE, {}, "--notarize requires --sign-app and --sign-installer", "cmake")])
def test_refused(make_installer, options, variables, error, missing):
    status, output, calls = make_installer(*options, **variables)
    assert status == 1 and error in output and missing not in calls
