"""The tray agent on a private session bus, seen by a panel."""

import os
import signal

import pytest

from gi.repository import GLib

from harness.bus import FILE_MANAGER, Panel
from harness.processes import Program, wait_until
from harness.studio import FACILITIES, FIFO, SessionBus, program, report, setting

STEREO = ("Speaker Configuration", "Stereo")
HISTORY = "Encoding History"
MANY = 500_000


class Tray(Program):
    def __init__(self):
        super().__init__([program("kest-settings")])


@pytest.fixture
def bus(start):
    return start(SessionBus)


@pytest.fixture
def panel(start, bus):
    return start(Panel)


@pytest.fixture
def tray(start, panel):
    panel.start()
    agent = start(Tray)
    assert panel.wait(lambda: panel.items)
    return agent


def encode(pid, percentage, path="/tmp/out/Film_Mix.wav"):
    report(pid, "path: " + path, f"P: {percentage}")


def rows(panel):
    return panel.at(HISTORY).rows


def test_registers_with_each_new_panel_and_reports_that_there_is_none(start, panel):
    agent = start(Tray)
    agent.expect("No tray on this desktop yet")
    panel.start()
    assert panel.wait(lambda: len(panel.items) == 1), "a panel that starts late"
    panel.stop()
    panel.start()
    assert panel.wait(lambda: len(panel.items) == 2), "a panel that is started again"
    sender, path = panel.items[1]
    # GNOME loses items that are registered by name; Cinnamon opens the menu of such a path by left click.
    assert path == "/org/ayatana/NotificationItem/kest_settings"
    panel.unregister(f"{sender}0@{path}")
    panel.unregister(f"{sender}@{path}")
    assert panel.wait(lambda: len(panel.items) == 3), "a panel that has removed this item, and another one"
    for _ in range(27):
        panel.unregister(f"{sender}@{path}")
    assert panel.wait(lambda: len(panel.items) == 11)
    panel.settle()
    assert len(panel.items) == 11, "a watcher that keeps removing the item gets no more registrations"
    agent.signal()
    assert agent.status() == 0


def test_click_has_its_effect_and_both_items_are_updated(panel, tray):
    stereo, widest = panel.at(*STEREO).id, panel.at("Speaker Configuration", "KestMax 26.1").id
    panel.forget()
    panel.click(*STEREO)
    assert panel.wait(lambda: panel.updates)
    assert panel.updates == [{stereo: {"toggle-state": 1}, widest: {"toggle-state": 0}}]
    assert panel.layouts == []
    assert setting("PhysMonConfig") == "1"
    panel.click(*STEREO)
    assert panel.wait(lambda: len(panel.updates) == 2), "a panel may have changed the mark by itself"
    assert panel.updates[1][stereo]["toggle-state"] == 1
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
    assert panel.wait(lambda: panel.layouts)
    assert panel.layouts[0] == facilities.id, "the menu's opening prepares its submenus"
    stale, studio_a, studio_b = panel.layout(facilities.id).rows
    assert (stale.label, stale.properties["disposition"]) == ("Standard-Surround (not available)", "alert")
    assert studio_b.label == "Studio__B"
    assert [stale.id, studio_a.id] == [row.id for row in facilities.rows]


def test_panel_that_reads_level_by_level_gets_each_submenu_announced(panel, tray):
    def announced(menu):
        panel.forget()
        submenus = [row.id for row in panel.layout(menu, 1).rows if "children-display" in row.properties]
        panel.settle()
        return submenus, panel.layouts

    submenus, first = announced(0)
    assert len(submenus) >= 8
    assert first == submenus
    assert announced(0) == (submenus, []), "announced once"
    history = panel.at(HISTORY).id
    for pid in (11, 12):
        encode(pid, 1)
        assert panel.wait(lambda: history in panel.layouts)
        encodings, added = announced(history)
        assert added == encodings[-1:] != [], "only the encoding that is new"
    panel.stop()
    panel.start()
    assert panel.wait(lambda: len(panel.items) == 2)
    assert announced(0)[1] == submenus, "to a panel that is started again"


def test_panel_that_reads_the_whole_menu_gets_no_layout_while_a_menu_is_open(panel, tray):
    history = panel.at(HISTORY).id
    for pid in (11, 12):
        encode(pid, 100)
    assert panel.wait(lambda: len(rows(panel)) == 4)
    clear, _, first, _ = (row.id for row in rows(panel))

    def gets_layout():
        return panel.wait(lambda: panel.layouts)

    def gets_no_layout():
        panel.settle()
        return panel.layouts == []

    def add_while_open(pid):
        panel.forget()
        before = len(rows(panel))
        encode(pid, 1)
        assert panel.wait(lambda: len(rows(panel)) == before + 1)
        assert gets_no_layout()

    panel.send(0, "opened")  # MATE reports the whole menu only
    add_while_open(13)
    panel.send(clear, "clicked")
    assert panel.wait(lambda: panel.updates)
    assert panel.updates[0][first]["visible"] is False, "a removed row is hidden"
    assert gets_no_layout()
    panel.send(0, "closed")
    assert gets_layout()
    assert panel.layouts == [history]

    panel.send(history, "opened")  # Xfce its submenus only
    add_while_open(14)
    panel.call("AboutToShow", "(i)", history)
    assert gets_no_layout()
    panel.call("AboutToShow", "(i)", 0)
    assert gets_layout(), "a panel that did not report the closing"

    encoding = rows(panel)[2].id
    for menu, event in ((0, "opened"), (encoding, "opened"), (0, "closed")):
        panel.send(menu, event)
    add_while_open(15)
    panel.send(encoding, "closed")
    assert gets_layout(), "the last menu was closed"
    panel.send(0, "opened")
    add_while_open(16)
    panel.stop()
    panel.start()
    assert gets_layout(), "a panel that was killed while its menu was open"

    panel.layout(0, 1)  # as KDE
    panel.forget()
    panel.send(history, "opened")
    encode(17, 1)
    assert gets_layout(), "a panel that reads by level shows new rows in an open menu"


def test_panel_that_scrolls_its_submenus_gets_no_submenu_inside(panel, tray):
    kinds = ("type", "children-display")  # what GNOME's extension asks for
    encode(11, 7, "/tmp/out/My_Long_Film_Mix.wav")
    assert panel.wait(lambda: len(rows(panel)) == 3)
    abort = panel.at(HISTORY, "My__Long__Film  7%", "Abort and Delete Output Folder").id
    before = panel.layout(properties=kinds)
    row = before.at(HISTORY, "My__Long_Film  7%")
    assert row.rows == [] and "children-display" not in row.properties
    panel.forget()
    report(11, "P: 8")
    assert panel.wait(lambda: len(panel.updates) == 2)
    labels = [update[row.id]["label"] for update in panel.updates]
    assert labels == ["My__Long__Film  8%", "My__Long_Film  8%"], "the second for this panel alone"
    panel.send(row.id, "clicked")
    assert panel.wait(lambda: panel.layouts)
    after = panel.layout(properties=kinds)
    assert len(after.rows) == len(before.rows) + 2
    assert after.at("My__Long_Film: Abort and Delete Output Folder").id == abort
    panel.start(FILE_MANAGER)
    panel.send(after.at("My__Long_Film: Show Output Folder").id, "clicked")
    assert panel.wait(lambda: panel.shown_folders)


def test_percentage_is_one_update_of_one_label(panel, tray):
    encode(4711, 1)
    assert panel.wait(lambda: panel.layouts)
    history = panel.at(HISTORY)
    assert panel.layouts == [history.id]
    assert [row.label for row in history.rows][2:] == ["Film  1%"]
    panel.forget()
    for percentage in range(2, 50):
        report(4711, f"P: {percentage}")
        assert panel.wait(lambda: len(panel.updates) == percentage - 1)
        assert panel.updates[-1] == {history.rows[2].id: {"label": f"Film  {percentage}%"}}
    assert panel.layouts == []


def test_output_folder_is_shown_by_the_file_manager(panel, tray):
    panel.start(FILE_MANAGER)
    encode(4711, 1, "/tmp/Größe 1%/Film_Mix.wav")
    assert panel.wait(lambda: panel.layouts)
    panel.click(HISTORY, "Film  1%", "Show Output Folder")
    assert panel.wait(lambda: panel.shown_folders)
    assert panel.shown_folders == ["file:///tmp/Gr%C3%B6%C3%9Fe%201%25"]


def test_last_state_of_each_of_many_encodings_is_shown(panel, tray):
    films = range(1000, 1200)
    rounds = [lambda film: f"path: /tmp/out/Film {film}.wav", *[lambda _, p=p: f"P: {p}" for p in range(5, 100, 5)],
              lambda film: "P: 100" if film % 10 else "ERROR: disk full"]
    for fields in rounds:
        for film in films:
            report(film, fields(film))
    wanted = {"Clear History", "", *[f"Film {film}" + ("  100%" if film % 10 else " - Failed") for film in films]}
    assert panel.wait(lambda: {row.label for row in rows(panel)} == wanted)
    assert len(rows(panel)) == len(wanted)


def test_huge_calls_are_answered(panel, tray):
    def call_with_many(method, element, *others):
        panel.call_with(method, GLib.Variant.new_tuple(GLib.Variant.new_array(None, [element] * MANY), *others))

    stereo = GLib.Variant("i", panel.at(*STEREO).id)
    call_with_many("GetGroupProperties", stereo, GLib.Variant("as", []))
    call_with_many("AboutToShowGroup", stereo)
    panel.forget()
    call_with_many("EventGroup", GLib.Variant("(isvu)", (stereo.unpack(), "clicked", stereo, 0)))
    assert panel.wait(lambda: panel.updates)
    panel.settle()
    assert len(panel.updates) == 1, "equal clicks are one"
    assert panel.at(*STEREO).properties["toggle-state"] == 1


def test_agent_ends_with_the_bus(bus, tray):
    tray.expect("fifo fd")
    bus.signal(signal.SIGKILL)
    tray.expect("The session bus has ended")
    assert tray.status() == 1
    assert not os.path.exists(FIFO)


def test_agent_starts_and_ends_while_the_bus_is_stopped(start, bus, panel):
    panel.start()
    bus.signal(signal.SIGSTOP)
    agent = start(Tray)
    # Saved at each start; lines of encoders are shown from now on.
    assert wait_until(lambda: setting("HdxAuxTrackDelaySetting"))
    encode(4711, 1)
    bus.signal(signal.SIGCONT)
    assert panel.wait(lambda: panel.items)
    assert panel.wait(lambda: len(rows(panel)) == 3)

    bus.signal(signal.SIGSTOP)
    agent.signal()
    assert agent.status() == 0
    agent = start(Tray)
    agent.expect("fifo fd")
    agent.signal()
    assert agent.status() == 0
    bus.signal(signal.SIGCONT)
