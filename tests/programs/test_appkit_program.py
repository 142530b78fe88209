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
        shown = ["xdotool", "search", "--onlyvisible", "--name", "^kest-settings"]
        assert wait_until(lambda: len(subprocess.run(shown, stdout=subprocess.PIPE, check=False).stdout.split()) == 2)


def row_of(title):
    """Returns the position of an item in the menu, from 1, with separators: that of its line in a terminal."""
    lines = run("kest-settings-terminal", text="quit\n")[1].splitlines()
    rows = [line for line in lines if line.startswith("  ") and not line.startswith("   ")]
    return 1 + next(row for row, line in enumerate(rows) if line.endswith(title))


def use_pointer(*commands):
    subprocess.run(["xdotool", *" ".join(commands).split()], check=True)


def move_to(row, column=60):
    return f"mousemove {column} {12 + 20 * row} "


def press(row):
    return move_to(row) + "mousedown 1 sleep 0.2 mouseup 1"


def chooses(commands, key, value):
    """A menu that is slow to appear misses the pointer, so that it can take more than one try."""
    def is_chosen():
        use_pointer(commands)
        return wait_until(lambda: setting(key) == value, 3)
    return wait_until(is_chosen)


def test_menu_and_submenu_that_is_filled_as_it_opens_take_choices(start):
    os.mkdir(FACILITIES + "/Studio B")
    toggle, facilities = row_of("DAW Link Control"), row_of("Monitoring Facility")
    start(AppKitAgent)
    assert chooses(press(toggle), "DAWLinkControlSetting", "1")
    os.mkdir(FACILITIES + "/Annex")
    # The stale choice is the second of four: Annex, Standard-Surround, Studio B, Studio_A.
    in_submenu = move_to(facilities) + "mousedown 1 sleep 0.5 " + move_to(3, 240) + "sleep 0.2 mouseup 1"
    assert chooses(in_submenu, "Facility", "Studio B")


@pytest.mark.parametrize("end", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, None])
def test_agent_ends_in_order(start, end):
    quit_row = row_of("Quit Kest Settings")
    agent = start(AppKitAgent)
    assert os.path.exists(FIFO)
    if end:
        agent.signal(end)
    else:
        use_pointer(press(quit_row))
    assert agent.status() == 0
    assert not os.path.exists(FIFO)


def test_agent_without_a_display_names_the_reason(start, monkeypatch):
    monkeypatch.delenv("DISPLAY")
    agent = start(Program, [program("kest-settings-appkit"), "-psn_0_4711", "-NSShowAllViews", "YES"])  # as macOS and Xcode do
    agent.expect("No screen")
    assert agent.status() == 1
