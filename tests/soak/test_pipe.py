"""The encoders' pipe in use by others: floods, foreign readers, a second agent."""

import os
import re
import subprocess
import sys
import time

import pytest

from attacks import Agent, Program, Tray, load, memory, process_of, wait_until
from harness.studio import FIFO, is_pipe_read, report

WRITER = f"""
import sys
kind, count = sys.argv[1], int(sys.argv[2])
with open("{FIFO}", "wb", buffering=0) as pipe:
    for pid in range(100_000, 100_000 + count):
        path = f"pid: {{pid}} , path: /Volumes/Out/{{pid}}{{'p' * (pid % 500)}}/{{pid}}.wav\\n"
        progress = f"pid: {{pid}} , P: {{pid % 100}}\\n"
        refused = "x" * 5000 + f"\\npid: {{pid}} , path: /{{'p' * 1100}}\\n"
        pipe.write({{"no line end": "x" * 4000, "refused lines": refused, "processes": progress,
                     "paths": path + progress}}[kind].encode())
"""


@pytest.mark.row("hostile writer: {kind}",
                 "at most {megabytes} MB more memory, 10 kB of log, 100 ms of a processor for a full pipe")
@pytest.mark.parametrize("kind, size, full, quick, megabytes", [
    ("no line end", 4000, 250_000, 12_500, 8), ("refused lines", 6120, 100_000, 10_000, 8),
    ("processes", 22, 1_000_000, 100_000, 8), ("paths", 310, 1_000_000, 100_000, 16)])
def test_hostile_writer(start, kind, size, full, quick, megabytes, row):
    agent = start(Agent, stderr=subprocess.STDOUT)
    report(1, "P: 5")
    agent.expect("added Encoding History > Process 1: 5%")
    time.sleep(0.3)  # until all of its start is done
    base = memory(agent)
    count = row.count(full, quick)
    Program([sys.executable, "-c", WRITER, kind, str(count)]).status(600)
    seconds = sum(process_of(agent).cpu_times()[:2]) * 65536 / (count * size)
    report(2, "P: 5", "P: 5")  # the first may be behind a line without end
    agent.expect("added Encoding History > Process 2: 5%")
    logged = len("".join(re.findall(r"^.*<\w{4}> .*\n", agent.text, re.M)))
    row.notes.append(f"{memory(agent) - base} kB more, {logged} bytes of log, {seconds * 1000:.0f} ms")
    row.expect(memory(agent) - base <= megabytes * 1024, "memory")
    row.expect(logged <= 10_000, "log")
    row.expect(seconds <= 0.1, "slow")


class Reader(Program):
    """Another process that reads the pipe, and so takes lines from the agent."""

    def __init__(self):
        super().__init__(["dd", "if=" + FIFO, "of=/dev/null"])
        assert wait_until(lambda: os.readlink(f"/proc/{self.pid}/fd/0") == FIFO)


@pytest.mark.row("quit under two foreign readers", "all quits, both programs")
def test_two_readers_take_the_line_that_wakes_the_reader(bus, row):
    for _, kind in row.times(120, 10, (Agent, Tray)):
        with kind() as agent:
            assert wait_until(is_pipe_read)
            with Reader(), Reader():
                time.sleep(0.005)  # until both wait
                row.expect_end(agent, 3)


@pytest.mark.row("two agents", "at most 6 lines in 5 to 15 s, the reason among them, no spin")
def test_two_agents_replace_each_other_s_pipe(start, row):
    agents = []
    for home in ("/tmp/home", "/tmp/home2"):
        agents.append(start(Agent, stderr=subprocess.STDOUT, env={**os.environ, "HOME": home}))
        report(4711, "P: 5")  # by an encoder that has left the pipe when it is replaced
        agents[-1].expect(": 5%")
    before = [len(agent.text) for agent in agents]
    time.sleep(row.count(15, 5))
    # Every line of the log is printed twice, on standard output and standard error.
    lines = sum(len(set(agent.text[begin:].split("\n")) - {""}) for agent, begin in zip(agents, before))
    row.notes.append(f"{lines} lines")
    row.expect(lines <= 6, "too many lines")
    row.expect(any("is replaced by another process" in agent.text for agent in agents), "no reason")
    row.expect(all(load(agent) <= 0.1 for agent in agents), "spins")
