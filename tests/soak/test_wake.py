"""The encoders' pipe, the session bus and shared files in use by others: nothing blocks, both programs end at once."""

import itertools
import os
import pwd
import re

import signal
import subprocess
import time

import pytest

from attacks import STRACE, Agent, Program, Tray, open_pipe, process_of, remove_pipe, wait_until
from harness.studio import FIFO, program

MARKER = "/Users/Shared/.kestsettings_lastuser.txt"
SHARED_FILES = [MARKER, "/tmp/LIPC_LIPC_VERSION", "/tmp/LIPC_LIPC_SESSION"]


class LoudTray(Tray):
    """The tray agent on a bus without a tray, after its start."""

    def __init__(self, **options):
        super().__init__(**options)
        assert self.prints("No tray") and self.prints("fifo fd = ")


class LoudAgent(Agent):
    """The text agent with all that it prints."""

    def __init__(self, **options):
        super().__init__(stderr=subprocess.STDOUT, **options)


class Reader(Program):
    """Another process that reads the pipe, and so takes lines from the agent."""

    def __init__(self):
        super().__init__(["dd", "if=" + FIFO, "of=/dev/null"])
        assert wait_until(lambda: os.readlink(f"/proc/{self.pid}/fd/0") == FIFO)


@pytest.mark.row("quit under two foreign readers", "all quits, both programs")
def test_two_readers_take_the_line_that_wakes_the_reader(bus, row):
    for _, kind in row.times(120, 10, (LoudAgent, LoudTray)):
        with kind() as agent:
            os.close(open_pipe())
            with Reader(), Reader():
                time.sleep(0.005)  # until both wait
                row.expect_end(agent, 3)


def write_all(encoder, text, seconds):
    """Writes through a non-blocking end; returns whether all of it was taken in time."""
    end = time.monotonic() + seconds
    while text and time.monotonic() < end:
        try:
            text = text[os.write(encoder, text):]
        except BlockingIOError:
            time.sleep(0.001)
    return not text


@pytest.mark.row("the pipe's path is occupied", "no encoder with an earlier pipe blocks")
def test_path_of_the_pipe_is_occupied(start, bus, row):
    """Encoders write on, 200 kB each, while a folder that is not empty is at the path."""
    for kind in (LoudAgent, LoudTray):
        with kind():
            encoders = []
            for _ in row.times(4, 2):
                encoders.append(open_pipe())
                os.remove(FIFO)
                os.makedirs(FIFO + "/full")
                time.sleep(1.2)  # a pass of the monitor
                for encoder in encoders:
                    row.expect(write_all(encoder, b"pid: 4711 , P: 5\n" * 12000, 1), "blocked")
                os.rmdir(FIFO + "/full")  # the empty folder is replaced
            for encoder in [*encoders, open_pipe()]:
                os.close(encoder)
        remove_pipe()


@pytest.mark.row("two agents", "at most 6 lines in 5 to 15 s, the reason among them, doctor names the other")
def test_two_agents_replace_each_other_s_pipe(start, bus, row):
    agents = [start(LoudAgent), start(LoudTray, env={**os.environ, "HOME": "/tmp/home2"})]
    before = [len(agent.text) for agent in agents]
    time.sleep(row.count(15, 5))
    # Every line of the log is printed twice, on standard output and standard error.
    lines = sum(len(set(agent.text[begin:].split("\n")) - {""}) for agent, begin in zip(agents, before))
    row.note(f"{lines} lines")
    row.expect(lines <= 6, "too many lines")
    row.expect(any("is replaced by another process" in agent.text for agent in agents), "no reason")
    doctor = subprocess.run([program("kest-inspect"), "doctor"], capture_output=True, text=True, check=False)
    row.expect(re.search(f"encoders' pipe .*process {agents[1].pid} ", doctor.stdout), "not named by doctor")


@pytest.mark.row("doctor with a stopped bus", "says so within 4 s")
def test_doctor_with_a_stopped_bus(bus, start, row):
    """The bus accepts connections and never answers."""
    bus.signal(signal.SIGSTOP)
    end = time.monotonic() + 4
    for doctor in [start(Program, [program("kest-inspect"), "doctor"]) for _ in row.times(16, 4)]:
        row.expect(doctor.status(max(0.1, end - time.monotonic())) is not None, "too late")
        row.expect(doctor.prints("error +tray +the session bus does not answer", 1), "not said")
    bus.signal(signal.SIGCONT)


@pytest.mark.row("HOME is unusable", "no crash, one line, the home folder of the user database")
def test_home_is_unusable(bus, row):
    """The home folder of the user database is an empty one for this."""
    own = pwd.getpwuid(os.getuid()).pw_dir
    subprocess.run(["mount", "-t", "tmpfs", "home", own], check=True)
    usable = ["/tmp/home/", "/", None]
    values = ["~", "~/x", "~root", "here", ".", "", "/tmp/" + "a" * 5000, b"/tmp/\xff", *usable]
    commands = [["kest-settings-terminal"], ["kest-settings"], ["kest-inspect", "doctor"]]
    for _, (value, (name, *arguments)) in row.times(1, 1, itertools.product(values, commands)):
        environment = {**os.environ, "HOME": value}
        if value is None:
            del environment["HOME"]
        with Program([program(name), *arguments], env=environment, cwd="/tmp") as started:
            started.prints("Quit Kest Settings|No tray|[0-9]+ error", 5)
            started.signal()
            status = started.status(5)
            statuses = (0, 1, -signal.SIGTERM) if name == "kest-inspect" else (0,)
            row.expect(status in statuses, f"{value}: status {status}")
            reported = len(set(re.findall(r".*HOME .* is used", started.text)))
            row.expect(reported == (value not in usable), f"{value}: {reported} lines")
    subprocess.run(["umount", "-l", own], check=True)
    row.expect(not os.path.exists("/tmp/here") and not os.path.exists("/tmp/Library"), "files in the current folder")


@pytest.mark.row("files of another user in shared folders", "never opened with O_CREAT")
def test_files_of_another_user_in_shared_folders(bus, row):
    """Linux refuses that (fs.protected_regular)."""
    for name in ("kest-settings-terminal", "kest-settings"):
        for path in SHARED_FILES:
            open(path, "a", encoding="utf-8").close()
        with Program([*STRACE, "-e", "trace=openat,open,creat", program(name)]) as tracer:
            tracer.prints("Quit Kest Settings|No tray")
            process_of(tracer).children()[0].terminate()
            tracer.status()
        with open("/tmp/trace", encoding="utf-8", errors="replace") as calls:
            opens = [line for line in calls if any(f'"{path}"' in line for path in SHARED_FILES)]
        row.expect(len(opens) >= 3, "not opened")
        for _, line in row.times(1, 1, opens):
            row.expect("O_CREAT" not in line, line)
