"""System calls of an abort and of the encoders' pipe fail, one at a time."""

import contextlib
import os
import subprocess

import pytest

from attacks import (HOME, STRACE, WORK, Agent, Program, encoder_in, is_running, put, traced, traced_calls,
                     wait_until)
from harness.studio import FIFO, is_pipe_read, report

# Not ENOENT, and ESRCH only where the process is waited for: these say that nothing is left to do.
ERRORS = {
    "clone3": ["EAGAIN"], "fchmod": ["EPERM"], "fcntl": ["EIO"], "getdents64": ["EIO"], "kill": ["EPERM"],
    "mknodat": ["EACCES", "EEXIST"], "newfstatat": ["EIO"], "openat": ["EACCES", "EMFILE", "EIO"],
    "pidfd_open": ["ENOSYS", "EMFILE"], "pidfd_send_signal": ["EPERM", "EINTR", "ESRCH"], "poll": ["EINTR"],
    "read": ["EIO", "EINTR"], "readlink": ["EIO", "EACCES"], "statx": ["EIO", "EACCES"], "unlink": ["EACCES"],
    "unlinkat": ["EACCES", "ENOTEMPTY", "EIO"],
}


def play_all(row, play, every):
    """Plays a run, and again with each error in each call of it, in a quick one with some."""
    assert not play()
    injections = [f"inject={name}:error={error}:when={number}" for name, number in sorted(set(traced_calls()))
                  for error in ERRORS.get(name, [])]
    for _, injection in row.times(1, 1, injections[::row.count(1, every)]):
        wrong = play("-e", injection)
        row.expect(not wrong, f"{injection}: {wrong}")


def others(title):
    """Returns all that is in the home folder, except in this encoder's folder and the settings."""
    command = ["find", HOME, "(", "-name", title, "-o", "-name", "Library", ")", "-prune", "-o", "-printf", "%p %C@\\n"]
    return sorted(line for line in subprocess.check_output(command, text=True).splitlines() if WORK + " " not in line)


def aborted(agent, title, options):
    """Aborts an encoder under strace, and again without. Returns what is wrong, or nothing."""
    folder = f"{WORK}/{title}"
    with encoder_in(folder, title) as child:
        agent.has_row(title)
        os.makedirs(folder + "/.hidden/below/empty")
        os.symlink(HOME + "/masters", folder + "/link")
        before = others(title)
        with traced(agent, *options):
            lines = agent.abort(title)
        if not is_running(agent):
            return "" if agent.status() in (0, 1) else f"status {agent.status()}"
        if is_running(child) and not os.path.exists(f"{folder}/{title}.wav"):
            return "deleted while the encoder runs"
        done = not is_running(child) and not os.path.exists(folder)
        if (title in agent.rows()) == done or len(lines) != (not done) or others(title) != before:
            return f"done {done}, row {title in agent.rows()}, {lines}, from {before} to {others(title)}"
        again = [] if done else agent.abort(title)
        return f"second click: {again}" if again != [] or os.path.exists(folder) else ""


@pytest.mark.row("abort: system calls fail", "complete, or one line and complete by the next click")
def test_abort(row):
    put(HOME + "/masters/master.wav")

    def play(*options):
        with Agent() as agent:
            return aborted(agent, f"failing-{row.tried:05}", options)

    play_all(row, play, 23)


def started(*options):
    """Starts an agent under strace, reports to it and quits. Returns what is wrong, or nothing."""
    with Agent(*STRACE, *options, stderr=subprocess.STDOUT) as agent, Program(["sleep", "1000"]) as child:
        def is_decided():
            with contextlib.suppress(OSError):  # a pipe that is replaced meanwhile
                if is_pipe_read():
                    report(child.pid, f"path: {WORK}/reported/reported.wav", "P: 5")
            return "received error -> quitting" in agent.text or "reported" in agent.rows()

        works = wait_until(is_decided, 10)
        agent.say("quit")
        status = agent.status(10)
        works = works and not ("EINTR" in options[-1] and "quitting" in agent.text)
        return "" if status == 0 and works else f"status {status}: {agent.text[-300:]}"


@pytest.mark.row("encoders' pipe: system calls fail", "works within seconds, or one line that it is not read")
def test_pipe_of_the_encoders(row):
    play_all(row, lambda *options: started("-P", FIFO, *options), 5)
    row.expect(not started("-P", FIFO, "-e", "inject=read:error=EINTR:when=1"), "an interrupted read")
    row.expect(not started("-e", "inject=pipe2:error=ENFILE:when=2"), "no pipe for the reader's wake-ups")
