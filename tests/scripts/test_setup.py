"""./run, ./test and the scripts that they call, where something is missing, refused or interrupted."""

import os
import pathlib
import re
import shutil
import subprocess

import pytest

from harness.stand_ins import StandIns

SOURCE = pathlib.Path(__file__).parents[2]


@pytest.fixture
def system(tmp_path, monkeypatch):
    """A checkout, the current folder, on a system whose packages for a build are installed."""
    tree = tmp_path / "mein kest (alt)"
    shutil.copytree(SOURCE / "scripts", tree / "scripts")
    for name in ("run", "test", "CMakePresets.json"):
        shutil.copy(SOURCE / name, tree)
    monkeypatch.chdir(tree)
    system = StandIns(tmp_path)
    installed = f" {' '.join((tree / 'scripts/build_packages').read_text().split())} "
    system.environment.update(installed=installed)
    system.add("uname", script="echo Linux")
    system.add("id", script='if [ "$1" = -u ]; then echo "${user:-0}"; else echo anna; fi')
    system.add("dpkg-query", script='for package; do :; done; case $installed in *" $package "*) echo "ii " ;; *) exit 1 ;; esac')
    system.add("apt-get", script="""case "$*" in *unknown*) echo "E: Unable to locate package unknown"; exit 100 ;; esac
        echo "pmstatus:first:40.5:Unpacking first (amd64)" """)
    system.add("cmake", script="""[ "$1" = --build ] || exit 0
        for step in 1 2 3 4 5 6 7 8 9 10; do for part in 1 2; do echo "[$step/10] Compiling $step"; done; done
        trap 'sleep 0.5; echo stopped; echo cleaned up >>"$work/calls"; exit 1' INT
        [ -z "${interrupted-}" ] || { kill -INT 0; sleep 10; }
        [ -z "${broken-}" ] || { echo "error: broken"; exit 1; }""")
    system.add("sudo", script='[ -z "${refused-}" ] || exit 1; user=0 exec "$@"')
    yield system
    assert not os.listdir(system.temporary)


INSTALL = "scripts/install_packages"
PREPARE = ("scripts/prepare", "dev", "build")
UNINTERRUPTED = ("env", "--default-signal=INT", "setsid", "--wait")
CONFIGURED = ("sh", "-c", 'mkdir -p build/dev && echo "CMAKE_HOME_DIRECTORY:INTERNAL=${checkout-$PWD}" '
              '>build/dev/CMakeCache.txt && exec "$@"', "sh")
NEVER = r"\A(?!(.|\n)*{})(.|\n)*"


@pytest.mark.parametrize("status, command, variables, printed, called", [
    (0, ("./run", "--help"), {}, r"^usage: \./run.*\n\Z", ""),
    (0, ("./test", "--help"), {}, r"^usage: .*presets: dev asan tsan coverage appkit.*\n\Z", ""),
    (2, ("./test", "asna"), {}, r"^test: unknown preset 'asna'; presets: dev asan.*\n\Z", ""),
    (0, (INSTALL, "first", "second"), {}, r" 40 % Unpacking first \(amd64\)", "apt-get .*install .*first second\n"),
    (1, (INSTALL, "first", "unknown"), {}, "The Debian package unknown could not be", "apt-get"),
    (1, (INSTALL, "first", "second"), {"user": "1000", "refused": "yes"},
     "Run as root: apt-get install --no-install-recommends first second", NEVER.format("apt-get") + "sudo"),
    (1, (INSTALL, "unknown"), {"user": "1000"},
     NEVER.format("Run as root") + "The Debian package unknown could not be", "sudo"),
    (0, PREPARE, {}, r"\A(?=(.*\n){11}\Z)(.|\n)* 40 % Compiling 4", "cmake"),
    (0, (*CONFIGURED, *PREPARE), {}, "", "cmake"),
    (1, (*CONFIGURED, *PREPARE), {"checkout": "/before"}, r"\A.*delete build/.*\n\Z", NEVER.format("cmake") + r"\Z"),
    (1, PREPARE, {"broken": "yes"}, "error: broken(.|\n)*preset dev failed", "cmake"),
    (130, (*UNINTERRUPTED, *PREPARE), {"interrupted": "yes"}, "Run the same command again", "cleaned up")])
def test_script(system, status, command, variables, printed, called):
    got, output, calls = system.run(*command, **variables)
    assert got == status and re.search(printed, output, re.M), output
    assert re.search(called, calls), calls


def test_another_system_than_debian(system):
    (system.tools / "dpkg-query").unlink()
    for name in ("sh", "sed", "grep", "tr", "mktemp", "dirname", "rm", "date"):
        (system.tools / name).symlink_to(shutil.which(name))
    status, output, _ = system.run(*PREPARE, PATH=str(system.tools))
    assert status == 0 and "packages: g++ cmake ninja-build" in output


def test_every_script_removes_its_temporary_files_on_a_signal():
    """A shell does not run its EXIT trap when a signal ends it."""
    find = ["grep", "-rlIF", "--exclude-dir=build", "--exclude-dir=.git", "--exclude=*.py", "$(mktemp", "."]
    for script in subprocess.run(find, cwd=SOURCE, capture_output=True, text=True, check=True).stdout.split():
        assert re.search("^ *trap .* (INT TERM HUP|HUP)$", (SOURCE / script).read_text(), re.M), script
