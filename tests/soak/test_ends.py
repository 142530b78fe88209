"""SIGTERM at every system call of a start and on a slow disk, outputs that nothing reads, too few resources."""

import contextlib
import itertools
import os
import random
import resource
import signal
import subprocess
import time

import pytest

from attacks import LOCK, Agent, Program, Terminal, Tray, is_running, traced_calls, wait_until, wrong_end
from harness.studio import FIFO, READY, is_pipe_read, program, report, setting

KINDS = {"tray": "kest-settings", "lines": "kest-settings-terminal", "full screen": "kest-settings-terminal"}
HANDLED_FROM = 5  # system calls by which two starts may differ before the signal handlers exist
QUIET = dict.fromkeys(("stdin", "stdout", "stderr"), subprocess.DEVNULL)


def play(kind, options, attack, seconds):
    """Starts an agent under strace, attacks it and waits for its end. Returns what is wrong, and the exit status."""
    with contextlib.suppress(FileNotFoundError):
        os.remove("/tmp/trace")
    with contextlib.ExitStack() as opened:
        terminal = opened.enter_context(Terminal()) if kind == "full screen" else None
        streams = terminal.options() if terminal else QUIET
        tracer = ["strace", "-D", "-qq", "-o", "/tmp/trace", *options] if options else []
        agent = opened.enter_context(Program([*tracer, program(KINDS[kind])], **streams))
        attack(agent)
        wrong = wrong_end(agent, (0, -signal.SIGTERM), seconds)
        if not wrong and terminal and not terminal.has_its_modes():
            wrong = "the terminal's modes are left"
        return wrong, agent.process.returncode


def signal_if_untouched(agent):
    """Sends SIGTERM to an agent that strace has not sent one: it has not come to that system call."""
    def is_signalled():
        with contextlib.suppress(FileNotFoundError), open("/tmp/trace", "rb") as trace:
            return b"SIGTERM" in trace.read()

    if not wait_until(is_signalled, 1):
        agent.signal()


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.row("SIGTERM at a start, {kind}", "at all system calls: ends within 2 s, in order when it handles signals")
def test_at_every_system_call(bus, kind, row):
    for _ in range(2):  # the first start of all makes more calls
        play(kind, ["-e", "trace=all"], lambda agent: (time.sleep(0.5), agent.signal()), 2)
    calls = traced_calls(end="--- SIGTERM")
    handled = 0
    for _, i in row.times(1, 1, range(0, len(calls), row.count(1, 20))):
        name, number = calls[i]
        injection = ["-e", f"trace={name}", "-e", f"inject={name}:signal=SIGTERM:when={number}"]
        wrong, status = play(kind, injection, signal_if_untouched, 2)
        row.expect(not wrong, f"call {i}: {wrong}")
        row.expect(status == 0 or not 0 < handled < i - HANDLED_FROM, f"call {i}: killed although it handles signals")
        handled = handled or (i if status == 0 else 0)
    row.note(f"handled from call {handled} of {len(calls)} on")
    row.expect(0 < handled < len(calls), "not handled")


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.row("SIGTERM on a slow disk, {kind}", "ends within 5 s, in order")
def test_on_a_slow_disk(bus, kind, row):
    slow = ["-f", "-e", "trace=openat,fsync,rename", "-e", "inject=openat,fsync,rename:delay_enter=15ms"]
    for run in row.times(10, 2):
        delay = random.Random(run).uniform(0.1, 1.5)
        wrong, _ = play(kind, slow, lambda agent: (time.sleep(delay), agent.signal()), 5)
        row.expect(not wrong, f"{delay:.2f} s: {wrong}")


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.row("SIGTERM while encoders report, {kind}", "ends within 2 s, in order")
def test_while_encoders_report(bus, kind, row):
    lines = b"".join(b"pid: %d , path: /x/Film.wav\npid: %d , P: 5\n" % (pid, pid) for pid in range(90000, 90040))
    chance = random.Random(1)

    def attack(agent):
        stop = time.monotonic() + chance.uniform(0, 0.06)
        while time.monotonic() < stop:
            with contextlib.suppress(OSError):  # there is no pipe yet, or it is full
                with open(os.open(FIFO, os.O_WRONLY | os.O_NONBLOCK), "wb", buffering=0) as encoder:
                    encoder.write(lines)
        agent.signal()

    for _ in row.times(200, 10):
        wrong, _ = play(kind, [], attack, 2)
        row.expect(not wrong, wrong)


@contextlib.contextmanager
def unread_pipe(is_full):
    unread, output = os.pipe()
    os.set_blocking(output, False)
    with contextlib.suppress(BlockingIOError):
        while is_full and os.write(output, b"x" * 4096):
            pass
    os.set_blocking(output, True)
    yield output
    os.close(output)
    os.close(unread)


@pytest.mark.row("output that nothing reads", "a choice is saved, SIGTERM ends it within 2 s")
def test_output_that_nothing_reads(row):
    for run in row.times(20, 3):
        command = [program("kest-settings-terminal")]
        with unread_pipe(False) as output, Program(command, stdout=output, stderr=output) as agent:
            wait_until(is_pipe_read)
            for _ in range(200):  # 2 kB of output each: three times what the pipe holds
                agent.say("menu")
            agent.say("choose Solo Mode > " + ("Latch" if run % 2 else "Exclusive (XOR)"))
            row.expect(wait_until(lambda: setting("SoloMode") == str(1 - run % 2), 5), "not saved")
            row.expect_end(agent, 2)


@pytest.mark.row("the tray's output is full", "SIGTERM ends it within 2 s")
def test_output_of_the_tray(bus, row):
    """Its only line is about the tray."""
    for _ in row.times(10, 2):
        with unread_pipe(True) as output, Tray(stdout=output, stderr=output) as agent:
            row.expect(wait_until(is_pipe_read, 5), "not started")
            time.sleep(0.1)  # in the main loop or at the latest line
            row.expect_end(agent, 2)


@pytest.mark.row("stalled terminal: {kind}", "one SIGTERM ends it within 6 s, modes put back")
@pytest.mark.parametrize("kind, changes", [("Ctrl-S", 60), ("nothing read", 1500)])
def test_stalled_terminal(kind, changes, row):
    """The menu changes meanwhile."""
    for _ in row.times(20, 2):
        with Terminal() as terminal, Program([program("kest-settings-terminal")], **terminal.options()) as agent:
            wait_until(lambda: b"Quit" in terminal.drawn)
            terminal.stop_reading()
            if kind == "Ctrl-S":
                os.write(terminal.master, b"\x13")
                time.sleep(0.02)
            for percentage in range(changes):
                report(os.getpid(), f"P: {percentage % 90}")
                os.write(terminal.master, b"jk"[percentage % 2:][:1])
                time.sleep(0.001)
            row.expect_end(agent, 6, range(-64, 256))
            row.expect(terminal.has_its_modes(), "modes left")


@pytest.mark.row("flood of refused lines", "at most 10 kB of log a minute")
def test_flood_of_refused_lines(start, row):
    """Another user's lines that are too long, as fast as they are read."""
    agent = start(Agent, stderr=subprocess.STDOUT)
    assert wait_until(is_pipe_read)
    before = len(agent.text)
    end = time.monotonic() + row.count(20, 2)
    with open(FIFO, "wb", buffering=0) as pipe:
        for pid in itertools.takewhile(lambda _: time.monotonic() < end, itertools.count()):
            pipe.write(b"x" * 5000 + b"\n" + b"pid: %d , path: /" % pid + b"p" * 1100 + b"\n")
    row.note(f"{2 * pid} lines: {len(agent.text) - before} bytes")
    row.expect(len(agent.text) - before <= 10000, "too much log")
    row.expect_end(agent, 2)


def limited(limit, value, user=0):
    def apply():
        if user:
            os.setgid(user)
            os.setuid(user)
        resource.setrlimit(limit, (value, value))
    return apply


def fails_with_one_line_or_works(preexec, **environment):
    with Program([program("kest-settings-terminal")], preexec_fn=preexec, env={**os.environ, **environment}) as agent:
        wait_until(lambda: not is_running(agent) or READY in agent.text, 5)
        if is_running(agent):
            agent.signal()
            return not wrong_end(agent)
        time.sleep(0.05)
        return agent.status() == 1 and len(agent.text.strip().splitlines()) == 1


@pytest.mark.row("few descriptors", "works, or one line and status 1")
def test_few_descriptors(row):
    for _, limit in row.times(1, 1, range(4, 60, row.count(1, 6))):
        row.expect(fails_with_one_line_or_works(limited(resource.RLIMIT_NOFILE, limit)), f"limit {limit}")


@pytest.mark.row("no threads", "works, or one line and status 1")
def test_no_threads(row):
    subprocess.run(["install", "-d", "-o", "65534", "/tmp/nobody"], check=True)
    for _, limit in row.times(1, 1, range(1, 8, row.count(1, 3))):
        starved = limited(resource.RLIMIT_NPROC, limit, 65534)
        row.expect(fails_with_one_line_or_works(starved, HOME="/tmp/nobody"), f"limit {limit}")


@pytest.mark.row("closed standard streams", "the lock file holds one number")
def test_closed_standard_streams(row):
    """Nothing is printed into the lock file."""
    for _, closed in row.times(1, 1, range(8)):
        redirections = " ".join(f"{stream}>&-" for stream in range(3) if closed & 1 << stream)
        with Program(["sh", "-c", f'exec "{program("kest-settings-terminal")}" {redirections}']) as agent:
            report(os.getpid(), "P: 5")
            time.sleep(0.05)
            with open(LOCK, encoding="utf-8") as file:
                row.expect(file.read() == f"{agent.pid}\n", "other text")
            row.expect_end(agent, 2)
