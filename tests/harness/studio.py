"""What surrounds the agent: files, the encoders' pipe, the simulated host and encoders. For a private namespace only."""

import contextlib
import ctypes
import os
import re
import subprocess

from harness.processes import TIMEOUT, Program, wait_until

FIFO = "/tmp/kest_settings_enc_progress_fifo"
SETTINGS = "/tmp/home/Library/Application Support/Kestronics/Kest-Settings.xml"
FACILITIES = "/Library/Application Support/Kestronics/MDA/Building blocks/Physical layouts"
LAST_USER = "/Users/Shared/.kestsettings_lastuser.txt"
SESSION, VERSION = "/tmp/LIPC_LIPC_SESSION", "/tmp/LIPC_LIPC_VERSION"  # the key files of the host's segments
SESSION_BYTES = 3458217
WITHOUT_RIGHTS = ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]  # then root needs permissions as others do
LIBC = ctypes.CDLL(None)
LIBC.shmat.restype = ctypes.c_void_p
READY = "Quit Kest Settings"  # the last line of the terminal's menu at the start


def program(name):
    """Returns the path of a program of the build under test. KEST_PROGRAMS is the folder of all of them."""
    return os.path.join(os.environ["KEST_PROGRAMS"], name)


def agents():
    """Returns the names of the agents that are built."""
    return [name for name in os.listdir(os.environ["KEST_PROGRAMS"])
            if name in ("kest-settings", "kest-settings-terminal", "kest-settings-appkit")]


def run(name, *arguments, text=""):
    """Runs a program of the build with `text` as its input: its exit status, output and errors."""
    ended = subprocess.run([program(name), *arguments], input=text, capture_output=True, text=True, check=False,
                           timeout=TIMEOUT)
    return ended.returncode, ended.stdout, ended.stderr


def fresh_home():
    """Removes what earlier programs have left, and makes one facility."""
    if os.environ["HOME"] != "/tmp/home":
        raise RuntimeError("run this in tools/private_namespaces")
    left = ("/tmp/home", "/Library/Application Support", LAST_USER, SESSION, VERSION, FIFO)
    subprocess.run(["rm", "-rf", *left], check=True)
    os.makedirs("/tmp/home")
    os.makedirs(FACILITIES + "/Studio_A")


@contextlib.contextmanager
def segment(key_file, size, mode=0o666):
    """Makes a segment of a host, and removes it when the `with` block ends: its bytes, and its id in `.id`."""
    with open(key_file, "a", encoding="ascii"):
        number = LIBC.shmget(LIBC.ftok(key_file.encode(), 1), size, 0o3000 | mode)
    memory = (ctypes.c_char * size).from_address(LIBC.shmat(number, None, 0))
    memory.id = number
    try:
        yield memory
    finally:
        LIBC.shmctl(number, 0, None)


def setting(key):
    """Returns the value of a key in the settings file, or None."""
    with contextlib.suppress(FileNotFoundError), open(SETTINGS, encoding="utf-8") as file:
        return dict(re.findall('name="(.*?)" val="(.*?)"', file.read())).get(key)


def is_pipe_read():
    """Returns whether the encoders' pipe exists and a process reads it."""
    try:
        os.close(os.open(FIFO, os.O_WRONLY | os.O_NONBLOCK))
    except OSError:
        return False
    return True


class Host(Program):
    """The simulated host, which obeys the commands of its scenario language."""

    def __init__(self):
        super().__init__([program("k3dhost-simulator"), "--scenario", "-"])
        self.command("start", "host started")

    def command(self, line, answer):
        """Sends a command, and waits for a line that contains the answer."""
        self.say(line)
        self.expect(answer)


class Agent(Program):
    """The terminal agent with plain lines, ready for commands."""

    def __init__(self, **options):
        super().__init__([program("kest-settings-terminal")], **options)
        self.expect(READY)
        assert wait_until(is_pipe_read)  # its thread can be later than the menu

    def choose(self, path):
        self.say("choose " + path)


def report(pid, *fields):
    """Writes lines of an encoder: report(4711, "path: /out/Film/Film.wav", "P: 5"). Fails without a reader."""
    assert wait_until(is_pipe_read), "nobody reads " + FIFO
    with open(FIFO, "wb", buffering=0) as pipe:
        for field in fields:
            pipe.write(f"pid: {pid} , {field}\n".encode())


class SessionBus(Program):
    """A D-Bus daemon, which all programs that are started afterwards use."""

    def __init__(self):
        os.environ["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/tmp/bus"
        super().__init__(["dbus-daemon", "--session", "--nofork", "--print-address", "--address=unix:path=/tmp/bus"])
        self.expect("unix:path")
