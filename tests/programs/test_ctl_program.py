"""kest-settings-ctl with each agent that is built."""

import os
import pathlib
import signal

import pytest

from harness.processes import Program, wait_until
from harness.studio import FACILITIES, SETTINGS, SessionBus, agents, program, report, run, setting

ABORT = "Encoding History > Feature > Abort and Delete Output Folder"


def ctl(*arguments):
    return run("kest-settings-ctl", *arguments)


@pytest.fixture(params=agents())
def start_agent(start, request):
    """Starts the agent, ready for kest-settings-ctl."""
    def start_one():
        agent = start(Program, [program(request.param)])
        assert wait_until(lambda: ctl("menu")[0] == 0)
        return agent
    start(SessionBus)
    return start_one


def test_each_command_has_its_effect(start, host, start_agent):
    os.makedirs(FACILITIES + "/STUDIO_A")
    os.makedirs("/tmp/home/work/Older")
    agent = start_agent()
    assert "Solo Mode\n  (x) Latch\n  ( ) Exclusive (XOR)\n" in ctl("menu")[1]
    assert ctl("menu", "--json")[1].startswith('{"ok":true,"items":[{')
    assert "\nMonitoring Facility > Studio_A\n" in ctl("menu", "--paths")[1]
    assert ctl("get", "Solo Mode > Latch") == (0, "(x) Solo Mode > Latch\n", "")

    watches = [start(Program, [program("kest-settings-ctl"), "watch", *option]) for option in ([], ["--json"])]
    for watch in watches:
        assert wait_until(lambda: ctl("choose", "DAW Link Control")[0] == 0 and "DAW Link Control" in watch.text)
    assert ctl("choose", "speaker configuration > STEREO") == (0, "(x) Speaker Configuration > Stereo\n", "")
    assert setting("PhysMonConfig") == "1", "saved before the reply"
    host.expect("PhysMonConfig")
    watches[0].expect("changed Speaker Configuration > Stereo: on")
    watches[1].expect('"path":"Speaker Configuration > Stereo","what":"on"')

    encoder = start(Program, ["sleep", "1000"])
    os.makedirs("/tmp/home/work/Feature")
    report(encoder.pid, "path: /tmp/home/work/Feature/Feature.wav", "P: 5")
    watches[0].expect("Feature: 5%")
    for path, error in (("Speaker Configuration > Sterio", 'no item "Sterio" in Speaker Configuration; did you mean '
                         '"Speaker Configuration > Stereo"?'),
                        ("Monitoring Facility > studio_a", 'several items "Monitoring Facility > studio_a" differ only '
                         'in case; did you mean "Monitoring Facility > STUDIO_A"?'),
                        (ABORT, f'"{ABORT}" deletes files; confirm with --yes, or "yes": true in a request')):
        assert ctl("choose", path) == (1, "", f"kest-settings-ctl: {error}\n")
    assert os.path.exists("/tmp/home/work/Feature")
    assert ctl("choose", ABORT, "--yes") == (0, f"done: {ABORT}\n", "")
    assert encoder.status(0) == -signal.SIGKILL and not os.path.exists("/tmp/home/work/Feature")

    other = start(Program, ["sleep", "1000"])
    report(other.pid, "path: /tmp/home/work/Older/Older.wav", "P: 5")  # by another process, of an older folder
    watches[0].expect("Older: 5%")
    assert "was not seen writing to the pipe" in ctl("choose", ABORT.replace("Feature", "Older"), "--yes")[2]
    assert other.status(0) is None and os.path.exists("/tmp/home/work/Older")

    assert ctl("choose", "Quit Kest Settings") == (0, "Quit Kest Settings\n", "")
    assert agent.status() == 0
    watches[0].expect("the agent has closed the connection")
    assert watches[0].status() == 1
    assert ctl("menu") == (1, "", "kest-settings-ctl: no agent of this user is running\n")


def test_socket_is_in_the_runtime_folder_if_only_the_user_can_write_it(start_agent, tmp_path, monkeypatch):
    monkeypatch.setenv("XDG_RUNTIME_DIR", str(tmp_path))
    killed = start_agent()
    killed.signal(signal.SIGKILL)
    killed.status()
    assert (tmp_path / "kest-settings/socket").is_socket()
    agent = start_agent()  # replaces the socket that was left
    agent.signal()
    assert agent.status() == 0
    tmp_path.chmod(0o777)
    start_agent()
    assert not list(tmp_path.iterdir())
    assert (pathlib.Path(SETTINGS).parent / "Control/socket").is_socket()
