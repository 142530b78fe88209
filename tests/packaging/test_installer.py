"""What make_installer, the installer's scripts and the uninstall script do. macOS's programs are stand-ins."""

import pathlib
import shutil

import pytest

from harness.stand_ins import StandIns

SOURCE = pathlib.Path(__file__).parents[2]
SCRIPTS = SOURCE / "packaging/macos/scripts"
LABEL = "com.kestronics.kest-settings"
PLIST = f"/Library/LaunchAgents/{LABEL}.plist"
# Two users with a desktop, one of them twice; the setup assistant's and root's; a user who logged in by ssh.
PROCESSES = "  501 Dock\n  502 Dock\n  501 Dock\n  248 Dock\n    0 Dock\n  503 sshd\n  501 kest-settings\n"
PS = "ps -axc -o uid= -o comm=\n"
BOOTOUT = PS + f"launchctl bootout gui/501/{LABEL}\nlaunchctl bootout gui/502/{LABEL}\npkill -x kest-settings\n"


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


def test_upgrade_ends_the_agent_of_each_user_and_waits(mac):
    waiting = "pgrep -x kest-settings\nsleep 0.2\npgrep -x kest-settings\n"
    assert mac.run(SCRIPTS / "preinstall", "a.pkg", "/", "/", ends_after="2") == (0, "", BOOTOUT + waiting)


def test_each_agent_is_started_though_one_is_refused(mac):
    assert mac.run(SCRIPTS / "postinstall", "a.pkg", "/", "/", refused="gui/501") == (
        0, "postinstall: the agent was not started for user 501; it starts at the next login\n",
        PS + f"launchctl bootstrap gui/501 {PLIST}\nlaunchctl bootstrap gui/502 {PLIST}\n")


def test_agent_that_does_not_end_does_not_stop_the_installation(mac):
    status, output, _ = mac.run(SCRIPTS / "preinstall", "a.pkg", "/", "/", ends_after="100")
    assert status == 0 and "has not ended" in output


@pytest.mark.parametrize("script", ["preinstall", "postinstall"])
def test_no_user_or_another_volume(mac, script):
    nobody = "  248 Dock\n    0 loginwindow\n"
    status, _, calls = mac.run(SCRIPTS / script, "a.pkg", "/", "/", processes=nobody)
    assert status == 0 and "launchctl" not in calls
    assert mac.run(SCRIPTS / script, "a.pkg", "/Volumes/Other", "/Volumes/Other") == (0, "", "")


@pytest.fixture
def disk(mac, tmp_path):
    """The root folder of a Mac on which the agent, and another application, are installed."""
    disk = tmp_path / "mac disk"
    apps = disk / "Applications/Kestronics"
    for file in (apps / "Kest Settings.app/Contents/MacOS/kest-settings", apps / "Other.app", disk / PLIST[1:]):
        file.parent.mkdir(parents=True, exist_ok=True)
        file.touch()
    mac.environment["DESTDIR"] = str(disk)
    mac.environment["uninstall"] = shutil.copy(SOURCE / "packaging/macos/uninstall",
                                               apps / "Uninstall Kest Settings.command")
    return disk


def test_user_uninstalls(mac, disk):
    script = mac.environment["uninstall"]
    status, output, calls = mac.run(script, user="501")
    assert status == 0 and calls == f"id -u\nsudo {script}\nid -u\n{BOOTOUT}pkgutil --forget {LABEL}\n"
    assert "Kept: each user's settings, ~/Library/Application Support/Kestronics/Kest-Settings.*" in output
    assert [file.name for file in disk.rglob("*") if file.is_file()] == ["Other.app"]


@pytest.mark.usefixtures("disk")
def test_application_that_cannot_be_removed(mac):
    mac.add("rm", script='[ "$1" != -rf ] || exit 1; exec /bin/rm "$@"')
    script = mac.environment["uninstall"]
    status, _, calls = mac.run(script)
    assert status == 1 and "pkgutil" not in calls and pathlib.Path(script).exists()


APP = "build/macos/installer/root/Applications/Kestronics/Kest Settings.app"
PACKAGE = "build/macos/Kest-Settings-1.2.3.pkg"
COMPONENT = (f"codesign --verify --strict --deep {APP}\n"
             "pkgbuild --root build/macos/installer/root --component-plist packaging/macos/components.plist --ownership"
             f" recommended --scripts packaging/macos/scripts --identifier {LABEL} --version 1.2.3 --install-location /"
             " build/macos/installer/component.pkg\n"
             "productbuild --distribution build/macos/packaging/macos/distribution.xml"
             " --package-path build/macos/installer")
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
    """make_installer(OPTION..., VARIABLE=...): its status, its output, and the calls that sign and pack."""
    tree = tmp_path / "mein kest"
    shutil.copytree(SOURCE / "packaging", tree / "packaging")
    shutil.copy(SOURCE / "LICENSE", tree)
    mac.add("uname", script="echo Darwin")
    mac.add("cmake", script="""[ "$1" = --build ] || exit 0
        umask 077
        contents=build/macos/bin/kest-settings.app/Contents
        mkdir -p $contents/MacOS $contents/Resources
        echo CMAKE_PROJECT_VERSION:STATIC=1.2.3 >build/macos/CMakeCache.txt
        touch $contents/Info.plist $contents/MacOS/kest-settings build/macos/bin/kest-settings-terminal
        chmod u+x $contents/MacOS/kest-settings build/macos/bin/kest-settings-terminal""")
    mac.add("ninja", "codesign", "iconutil", "plutil", "productbuild", "xcrun")
    mac.add("lipo", script='[ -z "${one_processor-}" ]')
    mac.add("pkgbuild", script='find "$2" ! -type d -printf "%m %P\n" | sort -k 2 >"$work/payload"')

    def run(*options, **variables):
        status, output, calls = mac.run(tree / "packaging/macos/make_installer", *options, **variables)
        build = [line for line in calls.splitlines() if line.split()[0] in
                 ("cmake", "codesign", "pkgbuild", "productbuild", "xcrun")]
        return status, output, "\n".join(build).replace(f"{tree}/", "")
    return run


PROFILE = ("--notarize", "kest")
IDENTITIES = ("--sign-app", "App: K", "--sign-installer", "Installer: K", *PROFILE)
NOTARISED = (f" --timestamp --sign Installer: K {PACKAGE}\n"
             f"xcrun notarytool submit --wait --keychain-profile kest {PACKAGE}\nxcrun stapler staple {PACKAGE}")


@pytest.mark.parametrize("options, signature, end", [((), "--timestamp=none --sign -", f" {PACKAGE}"),
                                                     (IDENTITIES, "--timestamp --sign App: K", NOTARISED)])
def test_package(make_installer, tmp_path, options, signature, end):
    status, output, calls = make_installer(*options)
    sign = f"codesign --force --options runtime {signature} {APP}"
    assert calls.split("\n", 2)[2] == f"{sign}/Contents/MacOS/kest-settings-terminal\n{sign}\n{COMPONENT}{end}"
    assert status == 0 and output.splitlines()[-1] == PACKAGE
    assert (tmp_path / "payload").read_text() == PAYLOAD


@pytest.mark.parametrize("options, variables, error, missing", [
    ((), {"one_processor": "yes"}, "does not contain code for both processors", "pkgbuild"),
    (PROFILE, {}, "--notarize requires --sign-app and --sign-installer", "cmake")])
def test_refused(make_installer, options, variables, error, missing):
    status, output, calls = make_installer(*options, **variables)
    assert status == 1 and error in output and missing not in calls
