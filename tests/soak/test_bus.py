"""A session bus that is stopped or ends, huge and malformed calls: the tray agent goes on, or ends in order."""

import functools
import itertools
import signal
import time
from array import array

import pytest
from gi.repository import GLib

from attacks import Program, Tray, is_running, memory, process_of, wait_until, wrong_end
from harness.bus import MENU, Panel
from harness.studio import FIFO, SessionBus, is_pipe_read, report

ENCODERS = range(1000, 1100)


def flood(seconds):
    """Progress of many encoders; 77 % in the end."""
    end = time.monotonic() + seconds
    with open(FIFO, "wb", buffering=0) as pipe:
        for percentage in itertools.cycle(range(1, 100)):
            is_over = time.monotonic() > end
            pipe.write("".join(f"pid: {pid} , P: {77 if is_over else percentage}\n" for pid in ENCODERS).encode())
            if is_over:
                break


class WatchingPanel(Panel):
    """A panel that has seen the agent's item."""

    def __enter__(self):
        self.start()
        assert self.wait(lambda: self.items), "no item"
        return self

    def labels(self, row=None):
        row = row or self.layout()
        return [row.label] + [label for child in row.rows for label in self.labels(child)]


@pytest.mark.row("start with a stopped bus", "works, ends at SIGTERM; the item appears when the bus goes on")
def test_start_with_a_stopped_bus(row):
    for run in row.times(20, 4):
        with SessionBus() as bus:
            bus.signal(signal.SIGSTOP)
            with Tray() as agent:
                row.expect(wait_until(is_pipe_read, 5), "no pipe")
                if run % 2 == 0:
                    bus.signal(signal.SIGCONT)
                    with WatchingPanel():
                        pass
                row.expect_end(agent, 2)


@pytest.mark.row("progress while the bus is stopped", "memory grows by at most 8 MB; then the menu is right")
def test_progress_while_the_bus_is_stopped(start, bus, row):
    seconds = row.count(60, 5)
    row.note(f"{seconds} s")
    agent = start(Tray)
    panel = start(WatchingPanel)
    for encoder in ENCODERS:
        report(encoder, f"path: /out/Film {encoder}/Film {encoder}.wav", "P: 0")
    flood(1)
    monitor = start(Program, ["dbus-monitor", "--session", f"type='signal',interface='{MENU}'"])
    assert monitor.prints("NameAcquired")
    before = memory(agent)
    bus.signal(signal.SIGSTOP)
    flood(seconds)
    growth = memory(agent) - before
    stopped = len(monitor.text)
    bus.signal(signal.SIGCONT)
    wanted = {f"Film {encoder}  77%" for encoder in ENCODERS}
    row.expect(wait_until(lambda: all(label in monitor.text[stopped:] for label in wanted), 5), "not informed")
    row.expect(wait_until(lambda: wanted <= set(panel.labels()), 2), "menu wrong")

    quiet = process_of(agent).num_ctx_switches().voluntary
    time.sleep(2)
    quiet = process_of(agent).num_ctx_switches().voluntary - quiet
    row.note(f"{growth / 1024:.1f} MB, {quiet} wake-ups in 2 s")
    row.expect(growth <= 8192, "memory")
    row.expect(quiet <= 2, "busy")


@pytest.mark.row("huge and malformed calls", "each is answered, and the agent goes on")
def test_huge_and_malformed_calls(start, bus, row):
    many = row.count(1_000_000, 200_000)
    number, text = (functools.partial(GLib.Variant, kind) for kind in "is")
    many_of = functools.partial(GLib.Variant.new_array, None)

    def event(item, name):
        return GLib.Variant("(isvu)", (item, name, number(0), 0))

    def ids(values):
        return GLib.Variant.new_from_bytes(GLib.VariantType("ai"), GLib.Bytes(array("i", values).tobytes()), True)

    calls = [("GetGroupProperties", ids([5] * many), GLib.Variant("as", [])),
             ("GetGroupProperties", ids(range(many)), GLib.Variant("as", [])),
             ("AboutToShowGroup", ids([5] * many)), ("AboutToShowGroup", ids(range(many))),
             ("EventGroup", many_of([event(5, "hovered")] * (many // 10))),
             ("EventGroup", many_of([event(item, "opened") for item in range(many // 10)])),
             ("GetLayout", number(0), number(2**31 - 1), many_of([text("label")] * many)),
             ("EventGroup", many_of([event(1, "\ufffe")])),
             ("Event", number(1), text("\ufffe"), GLib.Variant("v", number(0)), GLib.Variant("u", 0)),
             ("GetProperty", number(1), text("\ufffe")), ("GetLayout", text("0")), ("EventGroup", ids([1]))]
    agent = start(Tray)
    for _, (method, *arguments) in row.times(1, 1, calls):
        with WatchingPanel() as panel:
            try:
                panel.call_with(method, GLib.Variant.new_tuple(*arguments))
            except GLib.Error as error:
                is_answered = "NoReply" not in error.message and "Timeout" not in error.message
                row.expect(is_answered, f"{method}: {error.message}")
    report(4711, "path: /out/A/Film \ufffe\U0001fffe.wav", "P: 5")
    with WatchingPanel() as panel:
        row.expect(wait_until(lambda: "Film \ufffd\ufffd  5%" in panel.labels(), 2), "a label that the bus refuses")
    row.expect(is_running(agent), "ended")


@pytest.mark.row("a session bus that ends", "one line, status 1, nothing left")
def test_bus_ends(row):
    for run in row.times(20, 4):
        with SessionBus() as bus, Tray() as agent:
            if run % 2 == 0:
                with WatchingPanel():
                    pass
            wait_until(is_pipe_read)
            bus.signal(signal.SIGKILL)
            wrong = wrong_end(agent, [1])
            row.expect(not wrong, wrong)
            row.expect(wait_until(lambda: agent.text.count("The session bus has ended"), 1) == 1, "not one line")
