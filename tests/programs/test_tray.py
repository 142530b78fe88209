"""The tray agent on a private session bus, seen by a panel."""

import os
import signal

import pytest

from gi.repository import GLib

from harness.bus import FILE_MANAGER, WATCHER, Panel
from harness.processes import Program
from harness.studio import FACILITIES, FIFO, program, report, setting

STEREO = ("Speaker Configuration", "Stereo")
HISTORY = "Encoding History"


@pytest.fixture
def panel(start, bus):
    return start(Panel)


@pytest.fixture
def tray(start, panel):
    panel.start()
    agent = start(Program, [program("kest-settings")])
    assert panel.wait(lambda: panel.items)
    return agent


def encode(panel, pid, percentage=1, path="/tmp/out/Film_Mix.wav"):
    """Reports a new encoding, and waits for its row."""
    before = len(panel.at(HISTORY).rows)
    report(pid, "path: " + path, f"P: {percentage}")
    assert panel.wait(lambda: len(panel.at(HISTORY).rows) == before + (1 if before > 1 else 2))
    panel.settle()


def test_registers_with_each_new_panel_and_reports_that_there_is_none(start, panel):
    agent = start(Program, [program("kest-settings")])
    agent.expect("No tray on this desktop yet")
    panel.start()
    for count in (1, 2, 3):  # a panel that starts late, and one that is started again
        assert panel.wait(lambda: len(panel.items) == count)
        if count < 3:
            panel.restart()
    sender, path = panel.items[1]
    # GNOME loses items that are registered by name; Cinnamon opens the menu of such a path by left click.
    assert path == "/org/ayatana/NotificationItem/kest_settings"
    # The signals that another item is removed, and that its own is, by a watcher that would go on for ever.
    for item, times, registrations in ((f"{sender}0@{path}", 1, 3), (f"{sender}@{path}", 30, 12)):
        for _ in range(times):
            panel.bus.emit_signal(None, "/StatusNotifierWatcher", WATCHER, "StatusNotifierItemUnregistered",
                                  GLib.Variant("(s)", (item,)))
        assert panel.wait(lambda: len(panel.items) >= registrations)
        panel.settle()
        assert len(panel.items) == registrations
    agent.signal()
    assert agent.status() == 0


def test_click_has_its_effect_and_both_items_are_updated(panel, tray):
    stereo, widest = panel.at(*STEREO).id, panel.at("Speaker Configuration", "KestMax 26.1").id
    panel.click(*STEREO)
    assert panel.wait(lambda: panel.updates)
    assert panel.updates == [{stereo: {"toggle-state": 1}, widest: {"toggle-state": 0}}] and panel.layouts == []
    assert setting("PhysMonConfig") == "1"
    panel.call("EventGroup", "(a(isvu))", 1000 * [(stereo, "clicked", GLib.Variant("i", 0), 0)])
    with pytest.raises(GLib.Error):  # not a character of a text
        panel.call("EventGroup", "(a(isvu))", [(stereo, "\ufffe", GLib.Variant("i", 0), 0)])
    panel.settle()
    # Once, as equal clicks are one; a panel may have changed the mark.
    assert panel.updates[1:] == [{stereo: {"toggle-state": 1}}]
    panel.click("Quit Kest Settings")
    assert tray.status() == 0


def test_opening_reports_changes_by_a_signal_only_and_keeps_the_ids(panel, tray):
    facilities = panel.at("Monitoring Facility")
    for _ in range(100):
        assert panel.call("AboutToShow", "(i)", facilities.id) == (False,)
    panel.settle()
    assert panel.layouts == []
    os.mkdir(FACILITIES + "/Studio_B")
    # KDE ignores the next update of a menu for which this is true.
    assert panel.call("AboutToShow", "(i)", 0) == (False,)
    assert panel.wait(lambda: panel.layouts[:1] == [facilities.id]), "the menu's opening prepares its submenus"
    stale, studio_a, studio_b = panel.layout(facilities.id).rows
    assert (stale.label, stale.properties["disposition"]) == ("Standard-Surround (not available)", "alert")
    assert studio_b.label == "Studio__B" and [stale.id, studio_a.id] == [row.id for row in facilities.rows]


def test_panel_that_reads_level_by_level_gets_each_submenu_announced(panel, tray):
    def announced(menu):
        panel.forget()
        submenus = [row.id for row in panel.layout(menu, 1).rows if "children-display" in row.properties]
        panel.settle()
        return submenus, panel.layouts

    submenus, first = announced(0)
    assert first == submenus and len(submenus) >= 8
    assert announced(0) == (submenus, []), "announced once"
    for pid in (4711, 4712):
        encode(panel, pid)
        encodings, added = announced(panel.at(HISTORY).id)
        assert added == encodings[-1:] != [], "only the encoding that is new"
    panel.restart()
    assert panel.wait(lambda: len(panel.items) == 2)
    assert announced(0)[1] == submenus, "to a panel that is started again"


def test_panel_that_reads_the_whole_menu_gets_no_layout_while_a_menu_is_open(panel, tray):
    history = panel.at(HISTORY).id
    encode(panel, 4711)
    encode(panel, 4712, 100)
    clear, _, first, second = (row.id for row in panel.at(HISTORY).rows)

    cases = [([(0, "opened")], lambda: panel.send(0, "closed")),  # MATE reports the whole menu only
             ([(history, "opened")], lambda: panel.call("AboutToShow", "(i)", 0)),  # Xfce its submenus only
             ([(0, "opened"), (first, "opened"), (0, "closed")], lambda: panel.send(first, "closed")),
             ([(0, "opened")], panel.restart)]  # a panel that is killed while its menu is open
    for pid, (events, close) in enumerate(cases, 4713):
        for event in events:
            panel.send(*event)
        panel.forget()
        encode(panel, pid)
        panel.call("AboutToShow", "(i)", history)
        panel.settle()
        assert panel.layouts == []
        if close == panel.restart:  # a removed row is hidden
            panel.send(clear, "clicked")
            assert panel.wait(lambda: {"visible": False} in [update.get(second) for update in panel.updates])
            assert panel.layouts == []
        close()
        assert panel.wait(lambda: history in panel.layouts)

    panel.layout(0, 1)  # as KDE
    panel.send(history, "opened")
    panel.forget()
    encode(panel, 4717)
    assert panel.layouts == [history], "a panel that reads by level shows new rows in an open menu"


def test_panel_that_scrolls_its_submenus_gets_no_submenu_inside(start, panel, tray):
    other = start(Panel)
    other.items = panel.items
    kinds = ("type", "children-display")  # what GNOME's extension requests
    encode(panel, 4711, 7, "/tmp/Größe 1%/My_Long_Film_Mix.wav")
    abort = panel.at(HISTORY, "My__Long__Film  7%", "Abort and Delete Output Folder").id
    before = panel.layout(properties=kinds)
    row = before.at(HISTORY, "My__Long_Film  7%")
    assert row.rows == [] and "children-display" not in row.properties
    panel.forget()
    for percentage in range(8, 50):
        panel.updates, other.updates = [], []
        report(4711, f"P: {percentage}")
        assert panel.wait(lambda: len(panel.updates) == 2)
        other.settle()
        to_all, to_this = ({row.id: {"label": f"{title}  {percentage}%"}} for title in ("My__Long__Film", "My__Long_Film"))
        assert (other.updates, panel.updates, panel.layouts) == ([to_all], [to_all, to_this], [])
    panel.send(row.id, "clicked")
    assert panel.wait(lambda: panel.layouts)
    after = panel.layout(properties=kinds)
    assert len(after.rows) == len(before.rows) + 2
    assert after.at("My__Long_Film: Abort and Delete Output Folder").id == abort
    panel.start(FILE_MANAGER)
    panel.send(after.at("My__Long_Film: Show Output Folder").id, "clicked")
    assert panel.wait(lambda: panel.shown_folders)
    assert panel.shown_folders == ["file:///tmp/Gr%C3%B6%C3%9Fe%201%25"]


def test_agent_ends_with_the_bus(bus, tray):
    tray.expect("fifo fd")
    bus.signal(signal.SIGKILL)
    tray.expect("The session bus has ended")
    assert tray.status() == 1
    assert not os.path.exists(FIFO)
