"""Faults by the thousand: each test is a row of the table that is printed at the end, @pytest.mark.row(FAULT, GOAL)."""

import collections
import os
import resource
import subprocess
import time

import psutil
import pytest

from attacks import SOURCES, Agent, wrong_end
from harness.studio import fresh_home

TABLE = [("fault", "wanted", "reached", "")]


def pytest_addoption(parser):
    parser.addoption("--quick", action="store_true", help="less of each fault")
    parser.addoption("--preset", help="the build that is attacked; default: release, and dev for tests/soak/Driver.cpp")


def pytest_configure(config):
    config.addinivalue_line("markers", "row(fault, goal): what the test adds to the table; {kind} is a parameter")
    config.addinivalue_line("markers", "full: not in a quick run")
    with open("/proc/self/mountinfo", encoding="utf-8") as mounts:
        if not any(" / / " in line and " private_namespaces " in line for line in mounts):
            pytest.exit("not in private namespaces: nothing is attacked; run tests/soak/run", 2)
    preset = config.getoption("--preset")
    os.environ["KEST_PROGRAMS"] = f"{SOURCES}/build/{preset or 'release'}/bin"
    os.environ["KEST_SOAK_DRIVER"] = f"{SOURCES}/build/{preset or 'dev'}/bin/soak"
    os.environ["TERM"] = "xterm"
    os.environ["TSAN_OPTIONS"] = "atexit_sleep_ms=0"  # it waits for the threads that print
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


class Row:
    def __init__(self, is_quick):
        self.is_quick = is_quick
        self.tried = 0
        self.faults = collections.Counter()
        self.notes = []  # measured numbers, which are printed

    def count(self, full, quick):
        return quick if self.is_quick else full

    def times(self, full, quick, kinds=None):
        """Counts and yields numbers, each with each kind if there are kinds; fewer in a quick run."""
        for i in range(self.count(full, quick)):
            for kind in kinds if kinds is not None else [None]:
                self.tried += 1
                yield i if kinds is None else (i, kind)
        assert self.tried > 0, "nothing to try"

    def expect(self, holds, fault):
        """Adds a fault when the condition does not hold."""
        if not holds:
            self.faults[fault] += 1

    def expect_end(self, agent, seconds, statuses=(0,)):
        """Sends SIGTERM to an agent, which must end in order in that time. Returns the seconds that it took."""
        begin = time.monotonic()
        agent.signal()
        wrong = wrong_end(agent, statuses, seconds)
        self.expect(not wrong, wrong)
        return time.monotonic() - begin

    def reached(self):
        faults = [f"{times} x {fault}" for fault, times in self.faults.items()] or ["no fault"]
        return ", ".join([*([f"{self.tried} tries"] if self.tried else []), *self.notes, *faults])


@pytest.fixture
def row(request):
    """The row of the test, which fails with a fault."""
    fault, goal = request.node.get_closest_marker("row").args
    added = Row(request.config.getoption("--quick"))
    if added.is_quick and request.node.get_closest_marker("full"):
        pytest.skip("only in a full run")
    yield added
    names = request.node.callspec.params if hasattr(request.node, "callspec") else {}
    outcome = "misses" if added.faults else "holds"
    TABLE.append((fault.format(**names), goal.format(**names), added.reached(), outcome))
    assert not added.faults, added.reached()


@pytest.fixture(autouse=True)
def _home():
    """Ends all other processes of these private namespaces, and removes what they have left."""
    for process in psutil.process_iter():
        if process.pid not in (1, os.getpid(), os.getppid()):
            process.kill()
    for mounted in reversed(psutil.disk_partitions(all=True)):
        if mounted.mountpoint.startswith(("/tmp/", "/Volumes/")):
            subprocess.run(["umount", "-l", mounted.mountpoint], check=False)
    subprocess.run(["find", "/tmp", "-xdev", "-mindepth", "1", "-delete"], check=True)
    fresh_home()


@pytest.fixture
def agent(start):
    return start(Agent)


def pytest_runtest_logreport(report):
    if report.failed and report.when != "teardown":
        reason = str(report.longrepr).strip().split("\n")[-1]
        TABLE.append((report.nodeid.split("::")[-1], "ends in order", reason, "misses"))


def pytest_terminal_summary(terminalreporter):
    for fault, goal, reached, outcome in TABLE:
        terminalreporter.write_line(f"{fault:38} | {goal:54} | {reached:44} | {outcome}")
    missed = sum(outcome == "misses" for *_, outcome in TABLE)
    terminalreporter.write_line(f"{len(TABLE) - 1 - missed} rows hold, {missed} do not")
