"""What the tests share: agents, encoders, strace, and the terms on which an agent ends."""

import collections
import contextlib
import fcntl
import os
import pty
import re
import signal
import subprocess
import termios
import time

import psutil

from harness.processes import Program, wait_until
from harness.studio import FIFO, READY, SETTINGS, is_pipe_read, program

SOURCES = os.path.abspath(os.path.join(os.path.dirname(__file__), "../.."))
HOME = "/tmp/home"
WORK = HOME + "/work"  # encoders write into folders in it
LOCK = os.path.join(os.path.dirname(SETTINGS), "Kest-Settings.lock")
STRACE = ["strace", "-f", "-qq", "-o", "/tmp/trace"]
ENCODER = """
exec 3>"$1"; mkdir -p "$3" 2>&-; [ -z "$4" ] || echo audio >"$3/$4"
printf 'pid: %d , path: %s\\n' $$ "$2" >&3; printf 'pid: %d , enc_type: Main\\npid: %d , P: 5\\n' $$ $$ >&3
exec sleep 1000"""


def driver(*arguments, preset=None):
    """Returns a command of Driver.cpp, perhaps of another build."""
    path = os.environ["KEST_SOAK_DRIVER"]
    return [path.replace("/dev/", f"/{preset}/") if preset else path, *arguments]


def encoder(reported, folder, file="out.wav"):
    """Starts a process that reports a path, has the pipe open and has written a file into a folder."""
    assert wait_until(is_pipe_read)
    return Program(["sh", "-c", ENCODER, "sh", FIFO, reported, folder, file], stdout=subprocess.DEVNULL)


def encoder_in(folder, title):
    """Starts an encoder whose output is in the folder that it reports."""
    return encoder(f"{folder}/{title}.wav", folder, title + ".wav")


def is_running(process):
    return process.status(0) is None


def put(path):
    """Writes a file that is older than every process that starts from now on."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w", encoding="ascii") as file:
        file.write("precious")
    time.sleep(0.06)
    return path


def write_now(lines):
    """Writes to the encoders' pipe without waiting, if an agent reads it and it is not full."""
    with contextlib.suppress(OSError), open(os.open(FIFO, os.O_WRONLY | os.O_NONBLOCK), "wb", buffering=0) as pipe:
        pipe.write(lines)


def process_of(program):
    """Returns what the system knows of a program."""
    return psutil.Process(program.pid)


def load(process):
    """Returns the share of a processor that a program uses in the next second."""
    before = sum(process_of(process).cpu_times()[:2])
    time.sleep(1)
    return sum(process_of(process).cpu_times()[:2]) - before


def memory(process):
    """Returns the resident memory in kB."""
    return process_of(process).memory_info().rss // 1024


def wrong_end(process, statuses=(0,), seconds=2):
    """Waits for the end of an agent. Returns what is wrong with it, or nothing; ends and removes what is left."""
    status = process.status(seconds)
    left = os.path.exists(FIFO)
    Program.__exit__(process)
    with contextlib.suppress(FileNotFoundError):
        os.remove(FIFO)
    if status not in statuses:
        return f"status {status}"
    if left and status in (0, 1):
        return "the pipe is left"
    # There is none if it has another home, or had no time for it.
    if os.path.exists(LOCK) and subprocess.run(["flock", "--nonblock", LOCK, "true"], check=False).returncode != 0:
        return "the lock is held"
    return ""


@contextlib.contextmanager
def traced(agent, *options):
    """Runs the block with strace on all threads of the agent."""
    with Program(["strace", "-f", "-o", "/tmp/trace", "-p", str(agent.pid), *options]) as tracer:
        assert tracer.prints("attached")
        yield
        tracer.signal()  # strace detaches; SIGKILL would leave a thread stopped
        tracer.status()


def trace():
    with contextlib.suppress(FileNotFoundError), open("/tmp/trace", encoding="utf-8", errors="replace") as file:
        return file.read()
    return ""


def traced_calls(begin="", end="$ ^"):
    """Returns the calls of the last trace from a text to an expression: their names, each with its number among those
    of its name and thread, from 1 on."""
    numbers = collections.Counter()
    calls = []
    text = re.split(end, trace())[0]
    for call in re.finditer(r"^(?:(\d+) +)?(\w+)\(", text, re.M):
        numbers[call.groups()] += 1
        if call.start() >= text.index(begin):
            calls.append((call[2], numbers[call.groups()]))
    return calls


class Agent(Program):
    """The agent with plain lines, perhaps started by another command. Its log is read from standard output only."""

    def __init__(self, *within, command=None, **options):
        command = command or [program("kest-settings-terminal")]
        super().__init__([*within, *command], **{"stderr": subprocess.DEVNULL, **options})
        self.expect(READY)

    def __exit__(self, *_):
        if is_running(self):
            with contextlib.suppress(BrokenPipeError):
                self.say("quit")
            self.status(3)
        super().__exit__()

    def choose(self, *path):
        self.say("choose " + " > ".join(path))

    def rows(self):
        """Returns the titles of the encodings whose Abort is not greyed."""
        start = len(self.text)
        self.say("menu")
        if not wait_until(lambda: READY in self.text[start:]):
            return []
        history = re.search(r"Clear History.*?\n    --------\n(.*?)^  \S", self.text[start:], re.S | re.M)
        return re.findall(r"^    (\S.*?)(?: +\d+%)?\n +Show Output Folder.*\n +Abort and Delete Output Folder$",
                          history.group(1) if history else "", re.M)

    def has_row(self, title):
        return wait_until(lambda: title in self.rows(), 10)

    def choose_abort(self, title):
        self.choose("Encoding History", title, "Abort and Delete Output Folder")

    def abort(self, title, meanwhile=lambda: None):
        """Aborts a row that is in the menu. Returns its log lines when the abort has ended."""
        start = len(self.text)
        self.choose_abort(title)
        meanwhile()
        wait_until(lambda: f"removed Encoding History > {title}\n" in self.text[start:] or
                   "<ERRO> abort" in self.text[start:] or not is_running(self))
        time.sleep(0.01)
        return re.findall(r"<ERRO> abort (.*)", self.text[start:])


class Tray(Program):
    def __init__(self, **options):
        super().__init__([program("kest-settings")], **options)


class Screen(Program):
    """The text agent, full screen in a terminal of 80x24 that is read by `terminal`, perhaps started by strace."""

    def __init__(self, *within):
        self.master, slave = pty.openpty()
        termios.tcsetwinsize(slave, (24, 80))
        self.modes = termios.tcgetattr(slave)
        self.terminal = Program(["cat"], stdin=self.master)
        super().__init__([*within, program("kest-settings-terminal")], stdin=slave, stdout=slave, stderr=slave,
                         start_new_session=True, preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(slave)

    def __exit__(self, *_):
        super().__exit__()
        self.terminal.__exit__()
        os.close(self.master)

    def has_its_modes(self):
        return termios.tcgetattr(self.master) == self.modes
