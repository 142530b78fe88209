"""scripts/demo and scripts/with_simulators wait for the host, and end with a status when one of their programs fails."""

import os
import pathlib
import shutil

import pytest

from harness.stand_ins import StandIns

SOURCE = pathlib.Path(__file__).parents[2]
HOST = """if [ "$1" = --check ]; then exec test -e "$work/host-runs"; fi
    trap "exit 0" TERM
    [ -z "${dies-}" ] || (sleep; sleep; sleep; sleep; sleep; kill -KILL $$) &
    sleep; sleep; sleep; : >"$work/host-runs"
    while :; do sleep; done"""
AGENT = 'test -e "$work/host-runs" || exit 9; cat >/dev/null'
ENCODER = "case $* in *Film_Mix*) kill -KILL $$ ;; esac"
REFUSED = 'case $1 in --scenario) echo "no memory for a segment" ;; esac; exit 1'


@pytest.mark.parametrize("status, program, script, printed", [
    (0, "", "", ""),
    (1, "kest-settings-terminal", AGENT + "; exit 1", "the agent ended with status 1"),
    (1, "encoder-simulator", "exit 0", "the encoding that the agent aborts ended with status 0"),
    (1, "encoder-simulator", ENCODER + "; exit 1", "the other encoding ended with status 1"),
    (1, "k3dhost-simulator", "dies=yes\n" + HOST, "the host ended with status 137"),
    (1, "k3dhost-simulator", REFUSED, "The simulated host did not start")])
def test_each_step_that_fails_ends_the_demo(tmp_path, status, program, script, printed):
    got, output = play(tmp_path, "scripts/demo", program, script)
    assert got == status and printed in output


@pytest.mark.parametrize("status, program, script, printed", [
    (7, "", "", ""), (1, "k3dhost-simulator", REFUSED, "no memory for a segment")])
def test_command_beside_the_simulators(tmp_path, status, program, script, printed):
    got, output = play(tmp_path, "scripts/with_simulators", program, script, "sh", "-c", 'test -e "$work/host-runs" && exit 7')
    assert got == status and printed in output


def play(folder, script, program, changed, *arguments):
    """Runs a script with these programs, one of them changed: its status and its output. It leaves no files."""
    os.chdir(SOURCE)
    programs = StandIns(folder)
    for name, body in (("k3dhost-simulator", HOST), ("kest-settings-terminal", AGENT), ("encoder-simulator", ENCODER)):
        programs.add(name, script=changed if name == program else body)
    programs.add("sleep", script=f"exec {shutil.which('sleep')} 0.05")
    temporary = folder / "temporary"
    temporary.mkdir()
    status, output, _ = programs.run(script, programs.tools, *arguments, TMPDIR=str(temporary),
                                     KEST_HOST_LOG=str(folder / "host.log"))
    assert not os.listdir(temporary)
    return status, output
