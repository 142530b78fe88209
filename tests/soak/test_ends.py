"""Starts and ends: SIGTERM at every system call, outputs that nothing reads, too few resources, shared files."""

import contextlib
import fcntl
import os
import random
import re
import signal
import subprocess
import time

import pytest

from attacks import LOCK, STRACE, Program, Screen, is_running, trace, traced_calls, wait_until, wrong_end, write_now
from harness.studio import LAST_USER, READY, SESSION, VERSION, is_pipe_read, program, report, run, setting

KINDS = {"tray": "kest-settings", "lines": "kest-settings-terminal", "full screen": "kest-settings-terminal"}
HANDLED_FROM = 5  # system calls by which two starts may differ before the signal handlers exist
QUIET = dict.fromkeys(("stdin", "stdout", "stderr"), subprocess.DEVNULL)
LINES = b"".join(b"pid: %d , path: /x/Film.wav\npid: %d , P: 5\n" % (pid, pid) for pid in range(90000, 90040))


def play(kind, options, attack, seconds):
    """Starts an agent under strace, attacks it and waits for its end. Returns what is wrong, and the exit status."""
    with contextlib.suppress(FileNotFoundError):
        os.remove("/tmp/trace")
    tracer = ["strace", "-D", "-qq", "-o", "/tmp/trace", *options] if options else []
    is_screen = kind == "full screen"
    with Screen(*tracer) if is_screen else Program([*tracer, program(KINDS[kind])], **QUIET) as agent:
        attack(agent)
        wrong = wrong_end(agent, (0, -signal.SIGTERM), seconds)
        if is_screen and not agent.has_its_modes():
            wrong += " the terminal's modes are left"
        return wrong, agent.process.returncode


def signal_after(agent, seconds):
    """Encoders report all the time, then SIGTERM is sent."""
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        write_now(LINES)
    agent.signal()


def signal_when_idle(agent):
    time.sleep(0.5)
    agent.signal()


def signal_if_untouched(agent):
    """Sends SIGTERM to an agent that strace has not sent one: it has not come to that system call."""
    if not wait_until(lambda: "SIGTERM" in trace(), 1):
        agent.signal()


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.row("SIGTERM at a start, {kind}", "at all system calls: ends within 2 s, in order when it handles signals")
def test_at_every_system_call(bus, kind, row):
    for _ in range(2):  # the first start of all makes more calls
        play(kind, ["-e", "trace=all"], signal_when_idle, 2)
    calls = traced_calls(end="--- SIGTERM")
    handled = 0
    for _, i in row.times(1, 1, range(0, len(calls), row.count(1, 20))):
        name, number = calls[i]
        injection = ["-e", f"trace={name}", "-e", f"inject={name}:signal=SIGTERM:when={number}"]
        wrong, status = play(kind, injection, signal_if_untouched, 2)
        if trace().count("--- SIGTERM") == 2:  # the call was in its end, where a second signal kills it
            continue
        row.expect(not wrong, f"call {i}: {wrong}")
        row.expect(status == 0 or not 0 < handled < i - HANDLED_FROM, f"call {i}: killed although it handles signals")
        handled = handled or (i if status == 0 else 0)
    row.notes.append(f"handled from call {handled} of {len(calls)} on")
    row.expect(0 < handled < len(calls), "not handled")


@pytest.mark.parametrize("kind", KINDS)
@pytest.mark.row("SIGTERM while encoders report, {kind}", "ends in order within 2 s, on a slow disk within 5 s")
def test_while_encoders_report(bus, kind, row):
    slow = ["-f", "-e", "trace=openat,fsync,rename", "-e", "inject=openat,fsync,rename:delay_enter=15ms"]
    chance = random.Random(1)
    for options, shortest, longest, limit, tries in (([], 0, 0.06, 2, (200, 10)), (slow, 0.1, 1.5, 5, (10, 2))):
        for _ in row.times(*tries):
            delay = chance.uniform(shortest, longest)
            wrong, _ = play(kind, options, lambda agent: signal_after(agent, delay), limit)
            row.expect(not wrong, f"{delay:.2f} s: {wrong}")


@pytest.mark.parametrize("kind", ["tray", "lines"])
@pytest.mark.row("output that nothing reads, {kind}", "a choice is saved, SIGTERM ends it within 2 s")
def test_output_that_nothing_reads(bus, kind, row):
    """The tray agent's only line is about the tray, and it takes no choices here."""
    unread, output = os.pipe()
    os.write(output, bytes(fcntl.fcntl(output, fcntl.F_GETPIPE_SZ)))
    for i in row.times(20, 3):
        with Program([program(KINDS[kind])], stdout=output, stderr=output) as agent:
            row.expect(wait_until(is_pipe_read, 5), "not started")
            time.sleep(0.1)  # in the main loop or at the latest line
            if kind == "lines":
                agent.say("menu\n" * 200 + "choose Solo Mode > " + ("Latch" if i % 2 else "Exclusive (XOR)"))
                row.expect(wait_until(lambda: setting("SoloMode") == str(1 - i % 2), 5), "not saved")
            row.expect_end(agent, 2)
    os.close(output)
    os.close(unread)


@pytest.mark.row("stalled terminal: {kind}", "one SIGTERM ends it within 6 s, modes put back")
@pytest.mark.parametrize("kind, changes", [("Ctrl-S", 60), ("nothing read", 1500)])
def test_stalled_terminal(kind, changes, row):
    for _ in row.times(20, 2):
        with Screen() as agent:
            assert agent.terminal.prints("Quit")
            agent.terminal.signal(signal.SIGSTOP)
            if kind == "Ctrl-S":
                os.write(agent.master, b"\x13")
                time.sleep(0.02)
            for percentage in range(changes):
                report(os.getpid(), f"P: {percentage % 90}")
                os.write(agent.master, b"jk"[percentage % 2:][:1])
                time.sleep(0.001)
            row.expect_end(agent, 6, range(-64, 256))
            row.expect(agent.has_its_modes(), "modes left")


def starts_within(*command):
    """Returns whether an agent that a command starts works, or ends with one line and status 1."""
    with Program([*command, program("kest-settings-terminal")]) as agent:
        wait_until(lambda: not is_running(agent) or READY in agent.text, 5)
        if is_running(agent):
            agent.signal()
            return not wrong_end(agent)
        return agent.status() == 1 and agent.text.count("Kest Settings cannot start: ") == 1


@pytest.mark.row("few descriptors, no threads", "works, or one line and status 1")
def test_few_resources(row):
    threads = [[*STRACE, "-D", "-e", f"inject=clone3:error=EAGAIN:when={number}+"] for number in range(1, 6)]
    pipes = [[*STRACE, "-D", "-e", f"inject=pipe2:error=ENFILE:when={number}"] for number in range(1, 3)]
    descriptors = [["prlimit", f"--nofile={count}"] for count in range(4, 60, row.count(1, 6))]
    for _, command in row.times(1, 1, threads + pipes + descriptors):
        row.expect(starts_within(*command), command[-1])


@pytest.mark.row("closed standard streams", "the lock file holds one number")
def test_closed_standard_streams(row):
    for _, closed in row.times(1, 1, range(8)):
        redirections = " ".join(f"{stream}>&-" for stream in range(3) if closed & 1 << stream)
        with Program(["sh", "-c", f'exec "{program("kest-settings-terminal")}" {redirections}']) as agent:
            report(os.getpid(), "P: 5")
            time.sleep(0.05)
            with open(LOCK, encoding="utf-8") as file:
                row.expect(file.read() == f"{agent.pid}\n", "other text")
            row.expect_end(agent, 2)


@pytest.mark.row("HOME is a relative path", "one line, the home folder of the user database")
def test_home_is_a_relative_path(monkeypatch, row):
    """The home folder of the user database is an empty one for this."""
    own = os.path.expanduser("~root")
    subprocess.run(["mount", "-t", "tmpfs", "home", own], check=True)
    monkeypatch.setenv("HOME", "here")
    monkeypatch.chdir("/tmp")
    for _, command in row.times(1, 1, (["kest-settings-terminal"], ["kest-inspect", "doctor"])):
        status, *texts = run(*command, text="quit\n")
        lines = re.findall(".*HOME .* is used", "".join(texts))
        row.expect(status in (0, 1) and len(set(lines)) == 1, f"status {status}, {lines}")
    subprocess.run(["umount", "-l", own], check=True)
    row.expect(not os.path.exists("here") and not os.path.exists("Library"), "files in the current folder")


@pytest.mark.parametrize("kind", ["tray", "lines"])
@pytest.mark.row("files of another user, {kind}", "in shared folders never opened with O_CREAT")
def test_files_of_another_user_in_shared_folders(bus, kind, row):
    """Linux refuses that (fs.protected_regular)."""
    subprocess.run(["touch", LAST_USER, VERSION, SESSION], check=True)
    play(kind, ["-f", "-e", "trace=openat,open,creat"], signal_when_idle, 2)
    opens = re.findall(f'.*"(?:{LAST_USER}|{VERSION}|{SESSION})".*', trace())
    row.expect(len(opens) >= 3 and "O_CREAT" not in "".join(opens), "\n".join(opens))
