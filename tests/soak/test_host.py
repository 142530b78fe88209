"""The host is killed, its segments are in any state, calls are interrupted, the clock moves; exits while all work."""

import contextlib
import glob
import itertools
import os
import pathlib
import random
import re
import signal
import subprocess
import time

import pytest

from attacks import Agent, Program, driver, load, traced, wait_until, write_now
from harness.studio import (FACILITIES, FIFO, LIBC, SESSION, SESSION_BYTES, WITHOUT_RIGHTS, Host, is_pipe_read, program,
                            segment, setting)

SLOTS = range(1120, SESSION_BYTES, 3376)
OWN = [(SLOTS[3] + 144, 512 + 272), (3458152, 65)]  # what the agent may change: its record, the default bus
RECORDS = [(SLOTS[3], b"KestSettings\0"), (SLOTS[9], b"bus-1\0"), (SLOTS[9] + 68, b"SUBKDialog\0")]
CLOCK = pathlib.Path("/tmp/clock")
INTERRUPTED = "write,poll,ppoll,fsync,wait4,clock_nanosleep"


@pytest.mark.row("host killed", "0 crashes, right at the first operation after each restart")
def test_host_is_killed(start, row):
    """It is killed while it starts, or while the agent works."""
    agent = start(Agent, command=driver("agent", "200"))
    chance = random.Random(4711)
    for i in row.times(200, 20):
        with Program([program("k3dhost-simulator"), "--scenario", "-"]) as host:
            host.say("start\nbus add bus-1 Dialog")
            if i % 4:
                host.expect("Dialog added")
                agent.choose("Solo Mode", "Exclusive (XOR)")
                row.expect(host.prints("^SoloMode 1$", 10), "wrong")
            agent.say("choose Default Bus > Dialog\nchoose DAW Link Control\n" * 20)
            time.sleep(chance.uniform(0, 0.004))
            host.signal(signal.SIGKILL)
            row.expect("FOREIGN" not in host.text, "foreign write")
        agent.choose("Solo Mode", "Latch")
        agent.expect("changed Solo Mode > Latch: on" if i % 4 else "DAW Link Control")
    row.expect_end(agent, 2, (0, 1))


def is_detached(session):
    with open("/proc/sysvipc/shm", encoding="ascii") as segments:
        return any(line.split()[1] == str(session.id) and line.split()[6] == "1" for line in segments)


def has_changed_only_its_own(session, before):
    """Returns whether only the agent's bytes have changed, and the agent is not attached."""
    now = bytearray(session.raw)
    for begin, length in OWN if len(now) >= SESSION_BYTES else []:
        now[begin:begin + length] = before[begin:begin + length]
    return now == before and wait_until(lambda: is_detached(session), 5)


STATES = {  # the sizes of the sessions that are there one after the other
    "none": [], "one byte": [1], "one byte too small": [SESSION_BYTES - 1], "exact": [SESSION_BYTES],
    "larger": [SESSION_BYTES + 100000],
    "removed while attached": [SESSION_BYTES], "no permission": [SESSION_BYTES],
    "replaced under its key": [SESSION_BYTES, 1, 4096, SESSION_BYTES - 1] * 13}


CHOICES = ["Solo Mode > Exclusive (XOR)", "Monitoring Facility > " + "f" * 199, "Speaker Configuration > Stereo",
           "Default Bus > Dialog", "Solo Mode > Latch", "Speaker Configuration > Surround 5.1"]


def operate(agent, operations):
    agent.say("choose " + "\nchoose ".join(itertools.islice(itertools.cycle(CHOICES), operations)))
    agent.say("menu")
    agent.expect("Quit Kest Settings", 60)


@pytest.mark.row("segment states", "0 signals, 0 foreign bytes, 0 attachments left")
def test_segment_states(row):
    os.makedirs(f"{FACILITIES}/{'f' * 199}")
    for _, (state, sizes) in row.times(1, 1, STATES.items()):
        with Agent(*WITHOUT_RIGHTS, command=driver("agent", "1000")) as agent:
            operate(agent, row.count(1000, 40) if not sizes else 1)
            for size in sizes:
                with segment(SESSION, size, 0 if state == "no permission" else 0o666) as session:
                    for offset, text in RECORDS if size > SLOTS[10] else []:
                        session[offset:offset + len(text)] = text
                    before = session.raw
                    for _ in range(2):
                        operate(agent, row.count(500, 20) // len(sizes) + 1)
                        if state == "removed while attached":
                            LIBC.shmctl(session.id, 0, None)
                    row.expect(has_changed_only_its_own(session, before), f"{state}: foreign bytes or attachments")
            row.expect_end(agent, 10, (0, 1))
        subprocess.run(["rm", "-f", SESSION], check=True)


@pytest.mark.row("{kind}", "same results as without, no spin")
@pytest.mark.parametrize("kind", ["interrupted calls", "clock moved"])
def test_session(start, kind, row):
    """Every second call of many kinds is interrupted, or the clock moves a day on, then two back."""
    clock = {"LD_PRELOAD": glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")[0], "FAKETIME_NO_CACHE": "1",
             "FAKETIME_TIMESTAMP_FILE": str(CLOCK), "FAKETIME_DONT_FAKE_MONOTONIC": "1"}
    clock = clock if kind == "clock moved" else {}
    CLOCK.write_text("+0")
    host = start(Host)
    agent = start(Agent, env={**os.environ, **clock})
    with contextlib.nullcontext() if clock else traced(agent, "-e", "trace=" + INTERRUPTED, "-e",
                                                       f"inject={INTERRUPTED}:error=EINTR:when=1+2"):
        CLOCK.write_text("+1d")
        agent.choose("Solo Mode", "Exclusive (XOR)")
        host.expect("SoloMode 1")
        host.command("bus add bus-1 Dialog", "Dialog added")
        CLOCK.write_text("-1d")
        agent.expect("added Default Bus > Dialog")
        agent.choose("Default Bus", "Dialog")
        host.expect("(id bus-1)")
        encoder = start(Program, [program("encoder-simulator"), "--output", "/tmp/out/Film/Film.wav", "--seconds", "60",
                                  "--steps", "600"])
        assert wait_until(agent.rows)
        idle = load(agent)
        row.expect(agent.abort(agent.rows()[0]) == [] and encoder.status() == -signal.SIGKILL, "not aborted")
        row.expect(not os.path.exists("/tmp/out/Film"), "folder left")
        row.expect_end(agent, 3)
    row.expect(setting("SoloMode") == "1", "not saved")
    row.expect(len(re.findall("SoloMode|bus-1", host.text)) == 3, "written twice")
    row.notes.append(f"{idle:.0%} of a core when idle")
    row.expect(idle <= 0.1, "spins")


@pytest.mark.row("exits", "0 reports of sanitizers, all under 300 ms")
def test_exits(start, row):
    """Bus plug-ins, encoders and the user are at work at the end; a hundred passes of the monitor fit into an exit."""
    host = start(Host)
    chance = random.Random(4711)
    for preset, full, quick in (("dev", 1000, 40), ("asan", 150, 10), ("tsan", 60, 5)):
        slowest = 0
        for i in row.times(full, quick):
            with (open("/tmp/reports", "w+", encoding="utf-8") as reports,
                  Program(driver("agent", "100", preset=preset), stdout=subprocess.DEVNULL, stderr=reports) as agent):
                if i % 4:  # or it ends while it starts
                    wait_until(is_pipe_read)
                end = time.monotonic() + chance.uniform(0, 0.012)
                while time.monotonic() < end:
                    host.say("bus add bus-1 Dialog\nbus remove bus-1")
                    agent.say(chance.choice(["choose Solo Mode > Latch", "choose Solo Mode > Exclusive (XOR)\nmenu"]))
                    write_now(b"pid: 4711 , path: /x/Film.wav\npid: 4711 , P: 0.5\npid: 4711")
                    time.sleep(0.0005)
                seconds = row.expect_end(agent, 2, (0,) if os.path.exists(FIFO) else (0, -signal.SIGTERM))
                row.expect(seconds < 0.3, f"{preset}: {seconds:.1f} s")
                reports.seek(0)
                row.expect("Sanitizer" not in reports.read(), f"{preset}: report")
                slowest = max(slowest, seconds)
        row.notes.append(f"{preset} slowest {slowest * 1000:.0f} ms")
