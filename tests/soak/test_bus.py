"""A session bus that is stopped, huge and malformed calls: tray agent and kest-inspect go on."""

import random
import signal
import time

import pytest
from gi.repository import GLib

from attacks import Program, Tray, is_running, memory, process_of, wait_until
from harness.bus import Panel
from harness.studio import FIFO, SessionBus, is_pipe_read, program, report

ENCODERS = range(1000, 1100)


def flood(seconds):
    """Progress of many encoders; 77 % in the end."""
    def lines(percentage):
        return "".join(f"pid: {pid} , P: {percentage}\n" for pid in ENCODERS).encode()

    end = time.monotonic() + seconds
    with open(FIFO, "wb", buffering=0) as pipe:
        while time.monotonic() < end:
            pipe.write(lines(random.randrange(100)))
        pipe.write(lines(77))


class WatchingPanel(Panel):
    """A panel that has seen the agent's item."""

    def __enter__(self):
        self.start()
        assert self.wait(lambda: self.items), "no item"
        return self

    def labels(self, row=None):
        row = row or self.layout()
        return [row.label] + [label for child in row.rows for label in self.labels(child)]


@pytest.mark.row("start with a stopped bus", "works, doctor says so, ends at SIGTERM; then the item appears")
def test_start_with_a_stopped_bus(row):
    for run in row.times(20, 4):
        with SessionBus() as bus:
            bus.signal(signal.SIGSTOP)
            with Tray() as agent:
                row.expect(wait_until(is_pipe_read, 5), "no pipe")
                with Program([program("kest-inspect"), "doctor"]) as doctor:
                    row.expect(doctor.prints("error +tray +the D-Bus session bus does not answer", 4), "doctor")
                if run % 2 == 0:
                    bus.signal(signal.SIGCONT)
                    with WatchingPanel():
                        pass
                row.expect_end(agent, 2)


@pytest.mark.row("progress while the bus is stopped", "memory grows by at most 8 MB; then the menu is right")
def test_progress_while_the_bus_is_stopped(start, bus, row):
    seconds = row.count(60, 5)
    row.notes.append(f"{seconds} s")
    agent = start(Tray)
    panel = start(WatchingPanel)
    for encoder in ENCODERS:
        report(encoder, f"path: /out/Film {encoder}/Film {encoder}.wav", "P: 0")
    flood(1)
    before = memory(agent)
    panel.forget()
    bus.signal(signal.SIGSTOP)
    flood(seconds)
    growth = memory(agent) - before
    bus.signal(signal.SIGCONT)
    wanted = {f"Film {encoder}  77%" for encoder in ENCODERS}
    row.expect(panel.wait(lambda: all(f"{{'label': '{label}'}}" in str(panel.updates) for label in wanted)), "signals")
    row.expect(wait_until(lambda: wanted <= set(panel.labels()), 2), "menu wrong")

    quiet = process_of(agent).num_ctx_switches().voluntary
    time.sleep(2)
    quiet = process_of(agent).num_ctx_switches().voluntary - quiet
    row.notes.append(f"{growth / 1024:.1f} MB, {quiet} wake-ups in 2 s")
    row.expect(growth <= 8192, "memory")
    row.expect(quiet <= 2, "busy")


@pytest.mark.row("huge and malformed calls", "each is answered, and the agent goes on")
def test_huge_and_malformed_calls(start, bus, row):
    many = row.count(1_000_000, 200_000)
    same, different = [5] * many, list(range(many))
    zero = GLib.Variant("i", 0)
    calls = [("GetGroupProperties", "(aias)", same, []), ("GetGroupProperties", "(aias)", different, []),
             ("AboutToShowGroup", "(ai)", same), ("AboutToShowGroup", "(ai)", different),
             ("EventGroup", "(a(isvu))", [(5, "hovered", zero, 0)] * (many // 10)),
             ("EventGroup", "(a(isvu))", [(item, "opened", zero, 0) for item in range(many // 10)]),
             ("GetLayout", "(iias)", 0, 2**31 - 1, ["label"] * many),
             ("EventGroup", "(a(isvu))", [(1, "\ufffe", zero, 0)]), ("Event", "(isvu)", 1, "\ufffe", zero, 0),
             ("GetProperty", "(is)", 1, "\ufffe"), ("GetLayout", "(s)", "0"), ("EventGroup", "(ai)", [1])]
    agent = start(Tray)
    for _, (method, *arguments) in row.times(1, 1, calls):
        with WatchingPanel() as panel:
            try:
                panel.call(method, *arguments)
            except GLib.Error as error:
                is_answered = "NoReply" not in error.message and "Timeout" not in error.message
                row.expect(is_answered, f"{method}: {error.message}")
    report(4711, "path: /out/A/Film \ufffe\U0001fffe.wav", "P: 5")
    with WatchingPanel() as panel:
        row.expect(wait_until(lambda: "Film \ufffd\ufffd  5%" in panel.labels(), 2), "a label that the bus refuses")
    row.expect(is_running(agent), "ended")
