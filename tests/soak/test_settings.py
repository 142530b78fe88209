"""A start with a choice that is killed, fails or has no room on the disk."""

import collections
import concurrent.futures
import os
import re
import subprocess
import tempfile

import pytest

from attacks import driver, traced_calls

NAME = "Kest-Settings.xml"
KILLED = -9
FILE_CALLS = ("openat read write lseek fsync close rename link unlink access newfstatat fstat readlink getdents64 "
              "fcntl mkdir").split()
ERRORS = ("ENOSPC", "EIO", "EINTR", "EACCES", "EDQUOT", "EXDEV")


def settings_text(size, mode):
    rows = f'  <VALUE name="SoloMode" val="{mode}"/>\r\n'
    for i in range(size // 130):
        rows += f'  <VALUE name="Key{i}" val="{"x" * 100}"/>\r\n'
    return f'<?xml version="1.0" encoding="UTF-8"?>\r\n\r\n<PROPERTIES>\r\n{rows}</PROPERTIES>\r\n'.encode()


def folder_with(size, is_cut=False):
    """Makes a folder with a settings file, perhaps a damaged one, and its backup."""
    folder = tempfile.mkdtemp()
    text = settings_text(size, 1)
    for name, content in ((NAME, text[:100] if is_cut else text), (NAME + ".last", text)):
        with open(os.path.join(folder, name), "wb") as file:
            file.write(content)
    return folder


def start(folder, *choice, within=()):
    """Starts the settings, with a choice perhaps. Returns the exit status and the solo mode."""
    run = subprocess.run([*within, *driver("settings", folder, *choice)], stdout=subprocess.PIPE,
                         stderr=subprocess.DEVNULL, timeout=10, restore_signals=False, check=False)  # no SIGXFSZ
    return run.returncode, "".join(re.findall(r"^mode (.*)", run.stdout.decode(), re.M))


def choose(within, size, is_cut=False, statuses=(0, 3)):
    """Chooses mode 2 where mode 1 is in the file, and starts again. Returns the choice's status, and what is wrong."""
    folder = folder_with(size, is_cut)
    status, _ = start(folder, "2", within=within)
    _, mode = start(folder)
    strays = [name for name in os.listdir(folder) if "_temp" in name]
    if status not in statuses or mode not in ("1", "2") or strays:
        return status, f"status {status}, mode {mode}, strays {strays}"
    if status == 0 and mode != "2":
        return status, "said that it was saved"
    with open(os.path.join(folder, NAME), "rb") as file:
        return status, "" if file.read() == settings_text(size, mode) else "other text"


def injected(injection):
    """Returns the command that starts another one with a fault in a system call."""
    call = injection.split(":")[0]
    return ["strace", "-qq", "-o", "/dev/null", "-e", "trace=" + call, "-e", "inject=" + injection]


def calls_of_a_choice(size, is_cut=False):
    start(folder_with(size, is_cut), "2", within=["strace", "-o", "/tmp/trace"])
    return traced_calls('write(1, "begin')


def choose_within_all(row, commands, size, is_cut=False, statuses=(0, 3)):
    """Makes a choice within each command, some at once. Returns the number of each exit status."""
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        outcomes = list(pool.map(lambda command: choose(command, size, is_cut, statuses), commands))
    for _, (command, (_, wrong)) in row.times(1, 1, zip(commands, outcomes)):
        row.expect(not wrong, f"{command[-1]}: {wrong}")
    return collections.Counter(status for status, _ in outcomes)


@pytest.mark.row("death in a save", "killed at every system call: 0 lost, 0 strays")
def test_death_in_a_save(row):
    """A call that a run does not reach kills nothing."""
    kills = 0
    for size, is_cut in ((300, False), (6000, False), (40000, False), (6000, True)):
        deaths = [injected(f"{name}:signal=SIGKILL:when={number}") for name, number in calls_of_a_choice(size, is_cut)]
        kills += choose_within_all(row, deaths[::row.count(1, 12)], size, is_cut, (0, 3, KILLED))[KILLED]
    row.notes.append(f"{kills} kills")
    row.expect(kills >= row.count(300, 20), "too few kills")


@pytest.mark.row("full disk, I/O errors, unreadable file", 'old or new state, never "saved" when not')
def test_errors(row):
    calls = [(name, number) for name, number in calls_of_a_choice(6000) if name in FILE_CALLS]
    errors = [injected(f"{name}:error={error}:when={number}{on}") for error in ERRORS
              for on in ("", "+") for name, number in calls]
    choose_within_all(row, errors[::row.count(1, 23)], 6000)
    row.expect(row.tried >= row.count(500, 20), "too few errors")
    flushes = [injected(f"fsync:error=EIO:when={number}") for number in (2, 3)]  # of the settings file and its folder
    choose_within_all(row, flushes, 6000, statuses=(3,))
    for size, step in row.count([(6000, 61), (20000, 205)], [(6000, 320)]):
        choose_within_all(row, [["prlimit", f"--fsize={limit}"] for limit in range(1, size + 400, step)], size)
    row.notes.append(f"{row.tried} errors and short writes")
