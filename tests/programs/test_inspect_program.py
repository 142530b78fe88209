"""kest-inspect beside hosts and agents, well and broken."""

import json
import os
import random
import re
import signal
import struct
import subprocess

import pytest

from harness.processes import Program
from harness.studio import (FACILITIES, FIFO, LAST_USER, SESSION, SESSION_BYTES, SETTINGS, VERSION, WITHOUT_RIGHTS, program,
                            report, run, segment)

# A second witness of the layout.
DEFAULT_BUS = 3458152
SLOT, SLOT_BYTES = 1120, 3376
RECORD, LAST = SLOT + 3 * SLOT_BYTES, SLOT + 1023 * SLOT_BYTES  # the agent's record, and a bus
PARAMETERS, TEXTS = RECORD + 144, RECORD + 656


def put(memory, *values):
    """Writes texts with their terminators, and numbers: put(SEGMENT, (OFFSET, VALUE) ...)."""
    for offset, value in values:
        data = value + b"\0" if isinstance(value, bytes) else struct.pack("i" if isinstance(value, int) else "f", value)
        memory[offset:offset + len(data)] = data


def doctor(subject, *prefix):
    """Returns "severity text" of a finding."""
    ended = subprocess.run([*prefix, program("kest-inspect"), "doctor", "--json"], stdout=subprocess.PIPE, check=False)
    findings = json.loads(ended.stdout)["findings"]
    assert ended.returncode == any(found["severity"] == "error" for found in findings)
    assert all((found["hint"] is None) == (found["severity"] == "ok") for found in findings)
    return "".join(f"{found['severity']} {found['text']}" for found in findings if found["subject"] == subject)


def test_any_bytes_are_printed_as_text_and_as_json(start):
    def printed():
        text, data = (run("kest-inspect", "session", *option)[1] for option in ([], ["--json"]))
        assert not re.search(r"[\x00-\x09\x0b-\x1f\x7f-\x9f]", text) and data.isascii()
        return text, json.loads(data)["session"]

    # With a bell, an escape and a quote, and without a terminator.
    label = bytes(byte if byte % 2 else 256 - byte for byte in range(1, 65))
    session = start(segment, SESSION, SESSION_BYTES)
    put(session, (RECORD, b"KestSettings"), (LAST, 64 * b"\x9b"), (LAST + 72, label), (LAST + 68, 0x4B425553),
        (DEFAULT_BUS, 64 * b"\x9b"), (PARAMETERS + 4 * 39, -6.6), (PARAMETERS + 4 * 40, float("nan")),
        (PARAMETERS + 4 * 41, 0.1), (TEXTS + 8, b"a\xc2\x9b\xff"), (TEXTS + 272 + 264, 7))  # no slot
    text, data = printed()
    assert "No volume information is received" in text and "a\\xC2\\x9B\ufffd" in text
    bus = data["clients"][1]
    assert (bus["slot"], bus["type"], bus["label"]) == (1023, "KBUS", label.decode("mac_roman"))
    assert data["defaultBus"]["label"] == bus["label"]
    values = {parameter["name"]: parameter["value"] for parameter in data["agent"]["parameters"]}
    assert values["LatencyCompensationControl"] is None and values["PhysMonConfig"] == 0.1
    session[:] = random.Random(1).randbytes(SESSION_BYTES)
    assert len(printed()[1]["clients"]) > 1000


def test_watch_prints_each_change_once_and_nobody_is_disturbed(start, host):
    watch = start(Program, [program("kest-inspect"), "watch", "--interval", "010"])
    watch.expect("parameter 41 PhysMonConfig")
    assert "message" not in watch.text
    for command, line in (("add bus-1 Dialog", '"Dialog" added'), ("rename bus-1 Speech", '"Speech" renamed, was "Dialog"'),
                          ("remove bus-1", '"Speech" removed')):
        before = len(watch.text)
        host.say("bus " + command)
        watch.expect(line)
        assert [printed[14:] for printed in watch.text[before:].splitlines()] == ["client KBUS bus-1 " + line]
    watch.signal(signal.SIGSTOP)
    host.command("start", "host started")  # another host
    watch.signal(signal.SIGCONT)
    watch.expect("host down")
    watch.expect("host up")
    watch.signal(signal.SIGINT)
    assert watch.status() == 0
    for command in (["session"], ["doctor"], ["watch", "--for", "01"]):
        assert run("kest-inspect", *command)[0] == 0
    host.command("end", "host stopped")
    assert "FOREIGN WRITE" not in host.text
    os.remove(SESSION)
    assert run("kest-inspect", "session")[0] == 1
    assert not os.path.exists(SESSION)


def test_doctor_examines_the_host(start):
    assert doctor("session segment") == "" and doctor("host") == "warning not running"
    version = start(segment, VERSION, 8)
    with segment(SESSION, 100):
        assert "its version word is not published yet" in doctor("host")
        assert "error 100 bytes of 3458217" in doctor("session segment")
    put(version, (4, 64))
    assert "but has no session" in doctor("host")
    start(segment, SESSION, SESSION_BYTES)
    assert "error missing in the session" in doctor("agent's record")
    with open(SESSION, "w", encoding="ascii") as key_file:
        key_file.write("data")
    assert "warning" in doctor("session key file")
    os.remove(VERSION)
    os.remove(SESSION)
    assert "has a session segment, but its key file is missing" in doctor("host")
    os.symlink("/dev/null", SESSION)
    assert "is a link" in doctor("session key file")


def test_doctor_examines_the_pipe(start, agent):
    pipe = "encoders' pipe"
    agent.signal(signal.SIGSTOP)  # or it would repair the pipe
    os.chmod(FIFO, 0o600)
    assert "warning" in doctor(pipe)
    with open(os.open(FIFO, os.O_RDWR), "rb"):
        assert f"error {FIFO} is read by process" in doctor(pipe)
    os.rename(FIFO, "/tmp/kept")
    assert "error the agent is running, but there is no" in doctor(pipe)
    os.mkfifo(FIFO)
    reader = os.open(FIFO, os.O_RDONLY | os.O_NONBLOCK)
    assert "belongs to process" in doctor(pipe)
    others = os.open(FIFO, os.O_WRONLY), os.open(FIFO, os.O_PATH)  # these do not read
    os.close(reader)
    assert "error the agent is running, but no process reads" in doctor(pipe)
    for descriptor in others:
        os.close(descriptor)

    # Of two agents one runs at a time, as each replaces the other's pipe.
    second = start(Program, [program("kest-settings-terminal")], env={**os.environ, "HOME": "/tmp/home2"})
    second.expect("fifo fd = ")
    name = f"process {second.pid} (kest-settings-terminal)"
    assert f"belongs to {name}, not to this agent" in doctor(pipe)
    second.signal(signal.SIGSTOP)
    agent.signal(signal.SIGCONT)
    agent.expect("was missing and is created again")
    assert f"{name} reads an earlier pipe of" in doctor(pipe)
    for one in (agent, second):
        one.signal(signal.SIGKILL)
        one.status()
    assert doctor("agent") == "warning not running" and "warning" in doctor(pipe)


SAVED = 'mkdir -p "$FOLDER"; cd "$FOLDER"; printf "<PROPERTIES/>" >Kest-Settings.xml; '


@pytest.mark.parametrize("command, subject, finding", [
    ("true", "settings file", "does not exist yet; the defaults are used"),
    (SAVED + "touch Kest-Settings.xml.bad", "settings file", "warning"),
    (SAVED + "rm *; mkdir Kest-Settings.xml", "settings file", "error"),
    (SAVED + "chmod 555 .", "settings file", "error /tmp/home/Library/Application Support/Kestronics is not writable"),
    ("mount -t tmpfs -o ro none .", "settings file", "error /tmp/home is on a read-only file system"),
    ("touch Library", "settings file", "error /tmp/home/Library is a file, not a folder"),
    ("ln -s nothing Library", "settings file", "error /tmp/home/Library is a link, not a folder"),
    ("chmod 755 .; chown nobody .", "settings file", "error /tmp/home belongs to nobody"),
    ('rmdir "$FACILITIES/Studio_A"', "facilities", "warning none"),
    ('rm -r "$FACILITIES"; touch "$FACILITIES"', "facilities", "error"),
    ("printf 'ada\\nsecond line' >$LAST_USER", "last user", "ok ada"),
    ("ln -s nothing $LAST_USER", "last user", "error"),
    ("touch x; ln x $LAST_USER", "last user", "error"),
    ("touch $FIFO", "encoders' pipe", "warning"),
    ("mkdir $FIFO", "encoders' pipe", "error")])
def test_doctor_examines_files(command, subject, finding):
    paths = {"FOLDER": os.path.dirname(SETTINGS), "FACILITIES": FACILITIES, "LAST_USER": LAST_USER, "FIFO": FIFO}
    if subprocess.run(["sh", "-ec", command], cwd="/tmp/home", env={**os.environ, **paths}, check=False).returncode:
        pytest.skip("in a user namespace no file can be given away")
    found = doctor(subject, *WITHOUT_RIGHTS)
    subprocess.run(["umount", "--quiet", "/tmp/home"], check=False)
    assert finding in found
