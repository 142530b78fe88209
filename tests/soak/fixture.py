"""The soak parts that attack whole programs: processes, conditions and rows. Runs in a private world."""

import os
import re
import subprocess
import sys
import threading
import time

FIFO = "/tmp/kest_settings_enc_progress_fifo"
SETTINGS = "Library/Application Support/Kestronics/Kest-Settings.xml"


class Part:
    """A part of the soak: `PART [--quick] BUILD_DIR`. Starts itself again inside tools/private_world."""

    def __init__(self):
        arguments = sys.argv[1:]
        if os.environ.get("KEST_SOAK_INSIDE") != "1":
            world = os.path.join(os.path.dirname(__file__), "../../tools/private_world")
            os.environ["KEST_SOAK_INSIDE"] = "1"
            os.execv(world, [world, sys.executable, os.path.abspath(sys.argv[0]), *arguments])
        self.quick = "--quick" in arguments
        self.build = [a for a in arguments if a != "--quick"][0]
        self.missed = False
        os.makedirs(os.environ["HOME"], exist_ok=True)

    def program(self, name):
        return os.path.join(self.build, "bin", name)

    def count(self, full, quick):
        return quick if self.quick else full

    def row(self, fault, goal, reached, holds):
        """Prints one line of the table; `holds` is whether the goal is reached."""
        print("row", fault, goal, reached, "holds" if holds else "misses", sep="\t", flush=True)
        self.missed = self.missed or not holds

    def finish(self):
        sys.exit(1 if self.missed else 0)


def wait_until(condition, seconds=5.0):
    """Returns whether the condition became true in time."""
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            return False
        time.sleep(0.002)
    return True


class Program:
    """A process whose output is collected. Killed when the `with` block ends."""

    def __init__(self, command, **options):
        self.text = ""
        options = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "stderr": subprocess.STDOUT, **options}
        self.process = subprocess.Popen(command, **options)
        self.pid = self.process.pid
        if self.process.stdout:
            threading.Thread(target=self._collect, daemon=True).start()

    def _collect(self):
        while piece := os.read(self.process.stdout.fileno(), 65536):
            self.text += piece.decode(errors="replace")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()

    def say(self, line):
        self.process.stdin.write((line + "\n").encode())
        self.process.stdin.flush()

    def prints(self, pattern, seconds=5.0):
        """Returns whether the output contains a match of the regular expression in time."""
        return wait_until(lambda: re.search(pattern, self.text), seconds)

    def ends(self, seconds=5.0):
        """Returns the exit status, negative for a signal; None when it still runs after that time."""
        try:
            return self.process.wait(seconds)
        except subprocess.TimeoutExpired:
            return None


def text_agent(part, **options):
    """The agent with plain lines, ready for commands."""
    agent = Program([part.program("kest-settings-terminal")], **options)
    if not agent.prints("Quit Kest Settings"):
        raise RuntimeError("the agent does not start: " + agent.text)
    return agent


def report(pid, *fields):
    """Writes lines of an encoder: report(4711, "path: /out/Film/Film.wav", "P: 5"). Raises without a reader."""
    opened = []

    def open_pipe():
        try:
            opened.append(os.open(FIFO, os.O_WRONLY | os.O_NONBLOCK))
        except OSError:
            return False
        return True

    if not wait_until(open_pipe):
        raise RuntimeError("nobody reads " + FIFO)
    os.set_blocking(opened[0], True)
    with open(opened[0], "wb", buffering=0) as pipe:
        for field in fields:
            pipe.write(f"pid: {pid} , {field}\n".encode())


class SessionBus(Program):
    """A D-Bus daemon, which all programs that are started afterwards use."""

    def __init__(self):
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/bus"
        super().__init__(["dbus-daemon", "--session", "--nofork", "--print-address", "--address=unix:path=/tmp/bus"])
        if not self.prints("unix:path"):
            raise RuntimeError("no session bus: " + self.text)

    def __exit__(self, *_):
        super().__exit__()
        os.remove("/tmp/bus")
