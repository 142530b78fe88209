"""The soak parts about aborts: encoders, what is no encoder, and an agent whose rows are aborted."""

import os
import re
import resource
import signal
import subprocess
import sys
import time

from fixture import FIFO, Part, Program, wait_until

HOME = "/tmp/home"
WORK = HOME + "/work"  # encoders write into folders in it
ENCODER = """
exec 3>"$1"; mkdir -p "$3" 2>&-; [ -z "$4" ] || echo audio >"$3/$4"
printf 'pid: %d , path: %s\\n' $$ "$2" >&3; printf 'pid: %d , type: Main\\npid: %d , P: 5\\n' $$ $$ >&3
exec sleep 1000"""


def encoder(reported, folder, file="out.wav", **options):
    """A process that reports a path, has the pipe open and has written a file into a folder."""
    child = Program(["sh", "-c", ENCODER, "sh", FIFO, reported, folder, file], stdout=subprocess.DEVNULL, **options)
    return child


def bystander():
    """A process that has nothing to do with encoders."""
    return Program(["sleep", "1000"], stdout=subprocess.DEVNULL)


def is_running(process):
    return process.ends(0) is None


def put(path, text="precious"):
    """A file that is older than every process that starts from now on."""
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, "w") as file:
        file.write(text)
    time.sleep(0.06)
    return path


class Agent(Program):
    """The text agent. Its log is read from standard output only."""

    def __init__(self, part, **options):
        command = options.pop("command", [])
        options.setdefault("stderr", subprocess.DEVNULL)
        super().__init__(command + [part.program("kest-settings-terminal")], **options)
        if not self.prints("Quit Kest Settings", 20):
            raise RuntimeError("the agent does not start: " + self.text)

    def __exit__(self, *_):
        if self.ends(0) is None:
            self.say("quit")
            self.ends(3)
        super().__exit__()  # the pipe of one that was killed is in the way of another user's agent

    def rows(self):
        """The titles of the rows whose Abort is not greyed."""
        start = len(self.text)
        self.say("menu")
        if not wait_until(lambda: "Quit Kest Settings" in self.text[start:], 20):
            return []
        history = re.search(r"Clear History.*?\n    --------\n(.*?)^  \S", self.text[start:], re.S | re.M)
        return re.findall(r"^    (\S.*?)(?: +\d+%)?\n +Show Output Folder.*\n +Abort and Delete Output Folder$",
                          history.group(1) if history else "", re.M)

    def has_row(self, title):
        return wait_until(lambda: title in self.rows(), 10)

    def clear(self):
        self.say("choose Encoding History > Clear History")
        wait_until(lambda: not self.rows())

    def choose_abort(self, title):
        self.say(f"choose Encoding History > {title} > Abort and Delete Output Folder")

    def abort(self, title, meanwhile=lambda: None):
        """Aborts one row. Returns its log lines when the abort has ended, or None when the row did not appear."""
        return self.abort_shown(title, meanwhile) if self.has_row(title) else None

    def abort_shown(self, title, meanwhile=lambda: None):
        """Aborts a row that is in the menu. Returns its log lines when the abort has ended."""
        start = len(self.text)
        self.choose_abort(title)
        meanwhile()
        escaped = re.escape(title)
        wait_until(lambda: re.search(rf"removed Encoding History > {escaped}\n", self.text[start:]) or
                   "<ERRO> abort" in self.text[start:] or self.ends(0) is not None, 20)
        time.sleep(0.01)
        return re.findall(r"<ERRO> abort (.*)", self.text[start:])

    def abort_all(self):
        wait_until(self.rows)
        for title in self.rows():
            self.abort(title)


def end(agent):
    """Sends SIGTERM. Returns whether the process has ended within five seconds."""
    def has_ended():
        try:
            with open(f"/proc/{agent}/stat", encoding="ascii") as stat:
                return " Z " in stat.read()
        except OSError:
            return True

    if not has_ended():
        os.kill(agent, signal.SIGTERM)
    return wait_until(has_ended)


def abort_part():
    """A part that may delete anything, as all of it is its own."""
    part = Part()
    with open("/proc/self/mountinfo", encoding="utf-8") as mounts:
        if not any(" / / " in line and " private_world " in line for line in mounts):
            sys.exit("not in a private world: nothing is tried")
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    os.makedirs(WORK)
    return part
