"""kest-inspect beside hosts and agents, well and broken."""

import ctypes
import json
import os
import pathlib
import random
import re
import signal
import struct
import subprocess

import pytest

from harness.processes import Program, wait_until
from harness.studio import FACILITIES, FIFO, LAST_USER, SESSION, SETTINGS, VERSION, Agent, Host, SessionBus, program, report, run

LIBC = ctypes.CDLL(None)
LIBC.shmat.restype = ctypes.c_void_p
SESSION_BYTES = 3458217
DEFAULT_BUS = 3458152


def slot(number):
    return 1120 + 3376 * number


AGENT = slot(3)
PARAMETERS, TEXTS = AGENT + 144, AGENT + 656


class Segment:
    """A segment of the host as nothing but bytes: the offsets are those of the host, not of our headers."""

    def __init__(self, marker, size, *values):
        with open(marker, "a", encoding="ascii"):
            self.id = LIBC.shmget(LIBC.ftok(marker.encode(), 1), size, 0o1666)
        self.bytes = (ctypes.c_char * size).from_address(LIBC.shmat(self.id, None, 0))
        for offset, value in values:
            self.put(offset, value)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        LIBC.shmctl(self.id, 0, None)

    def put(self, offset, value):
        """Writes a text with its end, or a number."""
        data = value + b"\0" if isinstance(value, bytes) else struct.pack("i" if isinstance(value, int) else "f", value)
        self.bytes[offset:offset + len(data)] = data

    def put_bus(self, number, bus, label):
        self.put(slot(number), bus)
        self.put(slot(number) + 72, label)
        self.put(slot(number) + 68, 0x4B425553)


@pytest.fixture
def session(start):
    """A host's session segment, with the agent's record in slot 3."""
    start(Segment, VERSION, 8, (4, 64))
    return start(Segment, SESSION, SESSION_BYTES, (AGENT, b"KestSettings"))


def doctor(*prefix):
    """Returns the findings as "rank text", by subject."""
    ended = subprocess.run([*prefix, program("kest-inspect"), "doctor", "--json"], stdout=subprocess.PIPE, check=False)
    findings = json.loads(ended.stdout)["findings"]
    assert ended.returncode == any(found["rank"] == "wrong" for found in findings)
    assert all((found["remedy"] is None) == (found["rank"] == "ok") for found in findings)
    return {found["subject"]: f"{found['rank']} {found['text']}" for found in findings}


def test_finds_all_well_and_disturbs_nobody(host, agent):
    host.command('bus add bus-1 "Dial\\x07og"', "added")
    agent.choose("Monitoring Facility > Studio_A")
    host.expect("Facility Studio_A")
    found = doctor()
    assert found["host"] == f"ok process {host.pid}, 64 bit"
    assert found["agent"].startswith(f"ok process {agent.pid} (kest-settings-terminal)")
    assert f"read by process {agent.pid} (kest-settings-terminal)" in found["encoders' pipe"]
    text = run("kest-inspect", "session")[1]
    for shown in ("KBUS  bus-1                Dial\\x07og", "PhysMonConfig", "Studio_A"):
        assert shown in text
    report(11, "path: /tmp/out/Good_Film.wav", "P: 50")
    agent.expect("Good_Film: 50%")
    host.command("end", "host stopped")
    assert "FOREIGN WRITE" not in host.text


def test_leaves_no_trace(start):
    assert "session: none" in run("kest-inspect", "session")[1]
    assert run("kest-inspect", "session")[0] == 1
    assert not os.path.exists(SESSION) and not os.listdir("/tmp/home")
    start(Segment, VERSION, 8, (4, 64))
    session = start(Segment, SESSION, SESSION_BYTES, (AGENT, b"KestSettings"))
    with open(SESSION, "w", encoding="ascii") as marker:
        marker.write("data")
    before = session.bytes.raw
    assert run("kest-inspect", "session")[0] == 0
    assert session.bytes.raw == before
    assert os.path.getsize(SESSION) == 4


def test_any_bytes_are_printed_as_text_and_as_json(session):
    def printed():
        text, data = run("kest-inspect", "session")[1], run("kest-inspect", "session", "--json")[1]
        assert not re.search(r"[\x00-\x09\x0b-\x1f\x7f-\x9f]", text) and data.isascii()
        return text, json.loads(data)["session"]

    # With a bell, an escape and a quote, and without a terminator.
    label = bytes(byte if byte % 2 else 256 - byte for byte in range(1, 65))
    session.put_bus(1023, 64 * b"\x9b", label)
    session.put(DEFAULT_BUS, 64 * b"\x9b")
    for number, value in ((39, -6.6), (40, float("nan")), (41, 0.1)):
        session.put(PARAMETERS + 4 * number, value)
    session.put(TEXTS + 8, b"a\xc2\x9b\xff")
    session.put(TEXTS + 272 + 264, 7)  # no slot
    text, data = printed()
    assert "No volume information is received" in text and "a\\xC2\\x9B\ufffd" in text
    bus = data["clients"][1]
    assert (bus["slot"], bus["type"], bus["label"]) == (1023, "KBUS", label.decode("mac_roman"))
    assert data["defaultBus"]["label"] == bus["label"]
    values = {one["name"]: one["value"] for one in data["agent"]["parameters"]}
    assert values["LatencyCompensationControl"] is None and values["PhysMonConfig"] == 0.1
    session.bytes[:] = random.Random(1).randbytes(SESSION_BYTES)
    assert len(printed()[1]["clients"]) > 1000


def test_watch_prints_each_change_once(start):
    watch = start(Program, [program("kest-inspect"), "watch", "--interval", "10"])
    watch.expect("host down")
    with Segment(VERSION, 8, (4, 64)), Segment(SESSION, SESSION_BYTES, (AGENT, b"KestSettings")) as session:
        watch.expect("host up")
        watch.expect("parameter 4 SoloMode: 0")
        watch.expect("parameter 41 PhysMonConfig")
        assert "message" not in watch.text
        session.put_bus(7, b"bus-1", b"Dialog")
        session.put(PARAMETERS + 4 * 39, -7.0)
        session.put(PARAMETERS + 4 * 41, float("nan"))
        session.put(TEXTS + 8, b"Studio A")
        session.put(DEFAULT_BUS, b"bus-1")
        watch.expect("default bus Dialog (id bus-1)")
        session.put(slot(7) + 72, b"Speech")
        watch.expect("renamed")
        session.put(slot(7), b"bus-2")
        watch.expect("bus-2")
        session.put(slot(7) + 68, 0)
        watch.expect("bus-2")
    watch.expect("host down")
    with Segment(VERSION, 8, (4, 32)), Segment(SESSION, SESSION_BYTES):
        watch.expect("version word 32")
    watch.signal(signal.SIGINT)
    assert watch.status() == 0
    lines = [line.split(" ", 1)[1].strip() for line in watch.text.splitlines()]
    first = lines.index('client KBUS bus-1 "Dialog" came')
    assert lines[first:first + 10] == [
        'client KBUS bus-1 "Dialog" came', "message -7 (No volume information is received)",
        "parameter 41 PhysMonConfig: nan (no such configuration)", 'text 0 Facility: "Studio A"',
        "default bus Dialog (id bus-1)", 'client KBUS bus-1 "Speech" renamed, was "Dialog"',
        'client KBUS bus-1 "Speech" went', 'client KBUS bus-2 "Speech" came', 'client KBUS bus-2 "Speech" went', "host down"]


def test_doctor_examines_the_host(start):
    def finds(subject, finding):
        assert finding in doctor()[subject]

    assert "session segment" not in doctor()
    assert doctor()["host"] == "note none runs"
    with Segment(VERSION, 8) as version:
        with Segment(SESSION, 100):
            finds("host", "note process")  # its version word is not published yet
            finds("session segment", "wrong 100 bytes of 3458217")
        version.put(4, 64)
        finds("host", "wrong process")  # no session
        with Segment(SESSION, SESSION_BYTES):
            finds("session segment", "ok 3458217 bytes, mode 666, of")
            finds("agent's record", "wrong there is none")
            finds("session marker", "ok")
            os.rename(SESSION, "/tmp/kept")
            os.rename(VERSION, "/tmp/kept_version")
            finds("host", "keeps a session that nobody finds")
            os.symlink("/dev/null", SESSION)
            finds("session marker", "wrong")
            os.rename("/tmp/kept", SESSION)
            os.rename("/tmp/kept_version", VERSION)
            with open(SESSION, "w", encoding="ascii") as marker:
                marker.write("data")
            finds("session marker", "note")
        version.put(4, 32)
        finds("host", "wrong runs in 32 bit")
    with Host() as host:
        finds("agent's record", "ok slot 3, among")
        host.say("kill")
        host.status()
        finds("host", f"wrong process {host.pid} has ended")
    start(Host)  # removes what the other has left


def test_doctor_examines_the_agent_and_its_pipe(agent):
    def finds(finding):
        assert finding in doctor()["encoders' pipe"]

    agent.signal(signal.SIGSTOP)  # or it would repair the pipe
    finds(f"ok {FIFO}, read by process {agent.pid} (kest-settings-terminal)")
    os.chmod(FIFO, 0o600)
    finds("note")
    reader = os.open(FIFO, os.O_RDONLY | os.O_NONBLOCK)
    finds(f"wrong {FIFO} is read by process")
    os.close(reader)
    os.rename(FIFO, "/tmp/kept")
    finds("wrong the agent runs, but there is no")
    os.mkfifo(FIFO)
    finds("wrong the agent runs, but nobody reads")
    path_only = os.open(FIFO, os.O_PATH)
    finds("nobody reads")
    reader = os.open(FIFO, os.O_RDONLY | os.O_NONBLOCK)
    finds(f"wrong {FIFO} belongs to process {os.getpid()}")
    writer = os.open(FIFO, os.O_WRONLY)
    os.close(reader)
    finds("nobody reads")
    for descriptor in (path_only, writer):
        os.close(descriptor)
    os.remove(FIFO)
    os.mkdir(FIFO)
    finds("wrong")
    agent.signal(signal.SIGKILL)
    agent.status()
    finds("wrong")  # no agent can replace a folder
    os.rmdir(FIFO)
    assert doctor()["agent"] == "note none of this user runs"
    finds("ok none")
    pathlib.Path(FIFO).touch()
    finds("note")
    os.remove(FIFO)


SAVED = "mkdir -p \"$SETTINGS\"; rmdir \"$SETTINGS\"; printf '<PROPERTIES/>' >\"$SETTINGS\"; "
FOLDER = os.path.dirname(SETTINGS)


@pytest.mark.parametrize("command, subject, finding", [
    ("true", "settings file", "ok none yet, the defaults hold"),
    (SAVED, "settings file", "13 bytes"),
    (SAVED + "echo '<PROPERTIES><VALUE' >\"$SETTINGS\"", "settings file", "wrong"),
    (SAVED + "touch \"$SETTINGS.bad\"", "settings file", "note"),
    ("mkdir -p \"$SETTINGS\"", "settings file", "wrong"),
    ("mount -t tmpfs -o ro none .", "settings file", "wrong /tmp/home is on a read-only file system"),
    (SAVED + "chmod 555 \"$(dirname \"$SETTINGS\")\"", "settings file", f"wrong {FOLDER} is not writable"),
    ("mkdir Library; chmod 555 Library", "settings file", "wrong /tmp/home/Library is not writable"),
    ("touch Library", "settings file", "wrong /tmp/home/Library is a file, not a folder"),
    ("ln -s nothing Library", "settings file", "wrong /tmp/home/Library is a link, not a folder"),
    ("mkdir Library; chmod 700 Library; chown nobody Library", "settings file", "wrong /tmp/home/Library belongs to nobody"),
    ("chmod 755 .; chown nobody .", "settings file", "wrong /tmp/home belongs to nobody"),
    ("true", "facilities", "ok 1 in"),
    ("rmdir \"$FACILITIES/Studio_A\"", "facilities", "note none"),
    ("rm -r \"$FACILITIES\"; touch \"$FACILITIES\"", "facilities", "wrong"),
    ("printf 'ada\\nsecond line' >$LAST_USER", "last user", "ok ada"),
    ("ln -s nothing $LAST_USER", "last user", "wrong"),
    ("touch x; ln x $LAST_USER", "last user", "wrong"),
])
def test_doctor_examines_files(command, subject, finding):
    paths = {"SETTINGS": SETTINGS, "FACILITIES": FACILITIES, "LAST_USER": LAST_USER}
    if subprocess.run(["sh", "-ec", command], cwd="/tmp/home", env={**os.environ, **paths}, check=False).returncode:
        pytest.skip("in a user namespace no file can be given away")
    try:  # without root's right to write everything everywhere
        assert finding in doctor("setpriv", "--bounding-set=-all", "--inh-caps=-all")[subject]
    finally:
        subprocess.run(["umount", "/tmp/home"], stderr=subprocess.DEVNULL, check=False)


@pytest.mark.parametrize("name", ["kest-settings", "kest-settings-terminal"])
def test_command_in_the_text_ends_either_agent(start, name):
    start(SessionBus)
    agent = start(Program, [program(name)])
    agent.expect("fifo fd = ")
    command = re.search(rf"\({name}\).*: (kill \d+)$", run("kest-inspect", "doctor")[1], re.M).group(1)
    subprocess.run(command, shell=True, check=True)
    assert agent.status() == 0


def test_second_agent_is_found_whichever_has_the_pipe(start, agent):
    def finds(finding):
        assert finding in doctor()["encoders' pipe"]

    agent.signal(signal.SIGSTOP)  # one of them runs at a time, as each replaces the other's pipe
    second = start(Program, [program("kest-settings-terminal")], env={**os.environ, "HOME": "/tmp/home2"})
    second.expect("fifo fd = ")
    finds(f"belongs to process {second.pid} (kest-settings-terminal), not to this agent")
    second.signal(signal.SIGSTOP)
    agent.signal(signal.SIGCONT)
    agent.expect("was gone and is made again")
    finds(f"process {second.pid} (kest-settings-terminal) reads an earlier pipe of")
