"""scripts/demo and scripts/with_simulators wait for the host, and end with a status when one of their programs fails."""

import os
import pathlib
import shutil

import pytest

from harness.stand_ins import StandIns

HOST = """if [ "$1" = --check ]; then exec test -e "$work/host-runs"; fi
    trap "exit 0" TERM
    [ -z "${dies-}" ] || (sleep; sleep; sleep; sleep; sleep; kill -KILL $$) &
    sleep; sleep; sleep; : >"$work/host-runs"
    while :; do sleep; done"""
AGENT = 'test -e "$work/host-runs" || exit 9; cat >/dev/null'
ENCODER = "case $* in *Film_Mix*) kill -KILL $$ ;; esac"
REFUSED = 'case $1 in --scenario) echo "no memory for a segment" ;; esac; exit 1'
DEMO = ["scripts/demo"]
BESIDE = ["scripts/with_simulators", "sh", "-c", 'test -e "$work/host-runs" && exit 7']


@pytest.mark.parametrize("script, status, changed, printed", [
    (DEMO, 0, {}, ""),
    (DEMO, 1, {"kest-settings-terminal": AGENT + "; exit 1"}, "the agent ended with status 1"),
    (DEMO, 1, {"encoder-simulator": "exit 0"}, "the encoding that the agent aborts ended with status 0"),
    (DEMO, 1, {"encoder-simulator": ENCODER + "; exit 1"}, "the other encoding ended with status 1"),
    (DEMO, 1, {"k3dhost-simulator": "dies=yes\n" + HOST}, "the host ended with status 137"),
    (DEMO, 1, {"k3dhost-simulator": REFUSED}, "The simulated host did not start"),
    (BESIDE, 7, {}, ""),
    (BESIDE, 1, {"k3dhost-simulator": REFUSED}, "no memory for a segment")])
def test_status_and_no_files_are_left(tmp_path, monkeypatch, script, status, changed, printed):
    monkeypatch.chdir(pathlib.Path(__file__).parents[2])
    programs = StandIns(tmp_path)
    originals = {"k3dhost-simulator": HOST, "kest-settings-terminal": AGENT, "encoder-simulator": ENCODER}
    for name, body in {**originals, **changed, "sleep": f"exec {shutil.which('sleep')} 0.05"}.items():
        programs.add(name, script=body)
    got, output, _ = programs.run(script[0], programs.tools, *script[1:], KEST_HOST_LOG=str(tmp_path / "host.log"))
    assert got == status and printed in output
    assert not os.listdir(programs.temporary)
