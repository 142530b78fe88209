"""The agent with AppKit's menu on a private display, used with the pointer."""

import os
import signal
import subprocess

import pytest

from harness.processes import Program, wait_until
from harness.studio import FACILITIES, FIFO, program, run, setting


class AppKitAgent(Program):
    def __init__(self):
        super().__init__([program("kest-settings-appkit")])
        self.expect("fifo fd")
        shown = "test $(xdotool search --onlyvisible --name '^kest-settings' | wc -l) = 2"  # its menu and its icon
        assert wait_until(lambda: subprocess.run(shown, shell=True, check=False).returncode == 0)


def move_to(title):
    """Returns the command to move to an item, whose position is that of its line in a terminal."""
    lines = run("kest-settings-terminal", text="quit\n")[1].splitlines()
    rows = [line for line in lines if line.startswith("  ") and not line.startswith("   ")]
    return f"mousemove 60 {32 + 20 * [line.endswith(title) for line in rows].index(True)}"


def use_pointer(commands):
    subprocess.run(["xdotool", *commands.split()], check=True)


def test_menu_and_submenu_that_is_filled_as_it_opens_take_choices(start):
    def chooses(commands, key, value):  # a menu that is slow to appear misses the pointer, and needs another try
        return wait_until(lambda: use_pointer(commands) or wait_until(lambda: setting(key) == value, 3))

    os.mkdir(FACILITIES + "/Studio B")
    toggle, facilities = move_to("DAW Link Control"), move_to("Monitoring Facility")
    start(AppKitAgent)
    assert chooses(toggle + " mousedown 1 sleep 0.2 mouseup 1", "DAWLinkControlSetting", "1")
    os.mkdir(FACILITIES + "/Annex")
    # The stale choice is the second of four: Annex, Standard-Surround, Studio B, Studio_A.
    assert chooses(facilities + " mousedown 1 sleep 0.5 mousemove 240 72 sleep 0.2 mouseup 1", "Facility", "Studio B")


@pytest.mark.parametrize("end", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, None])
def test_agent_ends_in_order(start, end):
    quit_item = move_to("Quit Kest Settings")
    agent = start(AppKitAgent)
    assert os.path.exists(FIFO)
    if end:
        agent.signal(end)
    else:
        use_pointer(quit_item + " mousedown 1 sleep 0.2 mouseup 1")
    assert agent.status() == 0
    assert not os.path.exists(FIFO)


def test_agent_without_a_display_names_the_reason(monkeypatch):
    monkeypatch.delenv("DISPLAY")
    arguments = ("-psn_0_4711", "-NSShowAllViews", "YES")  # as macOS and Xcode start it
    status, output, errors = run("kest-settings-appkit", *arguments)
    assert status == 1 and "no screen" in output + errors
