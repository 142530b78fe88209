"""The encoders' pipe under attack: lost and replaced, flooded, and used by eight at once."""

import contextlib
import itertools
import os
import re
import stat

import pytest

from attacks import load, memory, process_of, python, wait_until
from harness.studio import FIFO, READY, is_pipe_read, report

WRITER = f"""
import sys
kind, first, count, more = sys.argv[1], *map(int, sys.argv[2:])
with open("{FIFO}", "wb", buffering=0) as pipe:
    for pid in range(first, first + count):
        path = f"pid: {{pid}} , path: /Volumes/Out/{{pid}}{{'p' * (pid % 500)}}/{{pid}}.wav\\n"
        progress = f"pid: {{pid}} , P: {{(pid + more) % 100}}\\n"
        pipe.write({{"no line end": "x" * 4000, "processes": progress, "paths": path + progress}}[kind].encode())
"""


def is_shown(agent, begin, pids=itertools.count(1)):
    """Reports for a new process. Returns whether the menu shows it, or one before since that output of the agent."""
    with contextlib.suppress(FileNotFoundError):
        if stat.S_ISFIFO(os.lstat(FIFO).st_mode) and is_pipe_read():
            report(next(pids), "P: 5")
    return re.search(r"added Encoding History > Process \d{1,4}: 5%", agent.text[begin:])


@pytest.mark.row("FIFO lost or replaced", "back within 2 s, no spin")
def test_lost_or_replaced(agent, row):
    def replace(kind):
        os.remove(FIFO)
        if kind == "file":
            os.mknod(FIFO)
        elif kind == "link":
            os.symlink("/dev/null", FIFO)
        elif kind == "pipe":
            os.mkfifo(FIFO)
        elif kind == "folder":
            os.mkdir(FIFO)

    assert wait_until(is_pipe_read)
    for _, kind in row.times(20, 1, ("nothing", "file", "link", "pipe", "folder")):
        begin = len(agent.text)
        replace(kind)
        row.expect(wait_until(lambda: is_shown(agent, begin), 2), f"{kind} too late")
    row.expect(load(agent) <= 0.1, "spins")


@pytest.mark.row("hostile writer: {kind}", "at most {megabytes} MB more memory, 100 ms of a processor for a full pipe")
@pytest.mark.parametrize("kind, size, full, quick, megabytes", [
    ("no line end", 4000, 250_000, 12_500, 8), ("processes", 22, 1_000_000, 100_000, 8),
    ("paths", 310, 1_000_000, 100_000, 16)])
def test_hostile_writer(agent, kind, size, full, quick, megabytes, row):
    assert wait_until(lambda: is_shown(agent, 0))
    base = memory(agent)
    count = row.count(full, quick)
    python(WRITER, kind, 100_000, count, 0).status(600)
    seconds = sum(process_of(agent).cpu_times()[:2]) * 65536 / (count * size)
    begin = len(agent.text)
    row.expect(wait_until(lambda: is_shown(agent, begin)), "not read any more")
    row.note(f"{memory(agent) - base} kB more, {seconds * 1000:.0f} ms")
    row.expect(memory(agent) - base <= megabytes * 1024, "memory")
    row.expect(seconds <= 0.1, "slow")


@pytest.mark.row("8 encoders at once", "nothing lost")
def test_encoders_at_once(agent, start, row):
    """Each reports for a thousand processes."""
    def shown():
        begin = len(agent.text)
        agent.say("menu")
        wait_until(lambda: READY in agent.text[begin:])
        return dict(re.findall(r"^    (\d+) +(\d+)%$", agent.text[begin:], re.M))

    assert wait_until(is_pipe_read)
    for i in row.times(15, 3):
        writers = [start(python, WRITER, "paths", first, 1000, i) for first in range(10_000, 18_000, 1000)]
        row.expect(all(writer.status(60) == 0 for writer in writers), "writer")
        wanted = {str(pid): str((pid + i) % 100) for pid in range(10_000, 18_000)}
        row.expect(wait_until(lambda: shown() == wanted, 10), "lines lost")
