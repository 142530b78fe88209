"""The control socket by the thousand: connections, clients that do not read, clients that are killed, any bytes."""

import contextlib
import json
import os
import random
import signal
import socket
import time

import pytest

from attacks import Agent, Program, process_of, wait_until
from harness.studio import program

SOCKET = "/tmp/home/Library/Application Support/Kestronics/Control/socket"


def connect():
    client = socket.socket(socket.AF_UNIX)
    client.settimeout(10)
    client.connect(SOCKET)
    return client


def greeted():
    """Returns a connection whose greeting was read."""
    client = connect()
    assert b"protocol" in client.recv(4096)
    return client


def ask(client, **request):
    """Returns the reply; the greeting has been read."""
    client.sendall(json.dumps(request).encode() + b"\n")
    return json.loads(client.makefile().readline())


def works():
    with contextlib.suppress(OSError, AssertionError), greeted() as client:
        return ask(client, command="get", path="Solo Mode")["ok"]
    return False


@pytest.fixture
def agent(start):
    started = start(Agent)
    assert wait_until(lambda: os.path.exists(SOCKET) and works())
    return started


@pytest.mark.row("control: connections", "all answered, no descriptor left, at most 200 kB more")
def test_connections(agent, row):
    """Clients that ask, that only connect, and that leave before the reply."""
    before = process_of(agent).num_fds()
    used = None
    for i in row.times(10000, 500):
        with connect() as client:
            if i % 3 == 0:
                client.recv(4096)
                row.expect(ask(client, command="get", path="Solo Mode > Latch")["ok"], "wrong")
            elif i % 3 == 1:
                client.sendall(b'{"command":"menu"}\n')
        if i == row.count(1000, 50):
            used = process_of(agent).memory_full_info().uss // 1024
    row.expect(wait_until(lambda: process_of(agent).num_fds() <= before, 5), "descriptors")
    more = process_of(agent).memory_full_info().uss // 1024 - used
    row.note(f"{more} kB more")
    row.expect(more <= 200, "memory")


@pytest.mark.row("control: clients that do not read", "another client's choice takes less than 1 s")
def test_clients_that_do_not_read(agent, row):
    """They watch or ask for menus; the menu changes meanwhile."""
    worst = 0.0
    for _ in row.times(10, 1):
        clients = [greeted() for _ in range(14)]
        for i, client in enumerate(clients):
            client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1)
            client.settimeout(0.1)
            with contextlib.suppress(OSError):
                client.sendall(b'{"command":"watch"}\n' if i % 2 else b'{"command":"menu"}\n' * 2000)
        for _ in range(100):
            begin = time.monotonic()
            with greeted() as other:
                ask(other, command="choose", path="DAW Link Control")
            worst = max(worst, time.monotonic() - begin)
        for client in clients:
            client.close()
    row.note(f"14 at once, slowest {worst * 1000:.0f} ms")
    row.expect(worst < 1, "too slow")
    row.expect(works(), "hangs")


@pytest.mark.row("control: killed clients", "no descriptor left, and the agent works")
def test_killed_clients(agent, row):
    before = process_of(agent).num_fds()
    for _, command in row.times(334, 17, (["watch"], ["menu"], ["choose", "DAW Link Control"])):
        with Program([program("kest-settings-ctl"), *command]):
            time.sleep(random.random() * 0.01)
    row.expect(wait_until(lambda: process_of(agent).num_fds() <= before, 5), "descriptors")
    row.expect(works(), "hangs")


@pytest.mark.row("control: any bytes", "a reply to each request")
def test_any_bytes(agent, row):
    sample = b'{"command":"choose","path":"Solo Mode > Latch","yes":true}'
    for _ in row.times(5000, 300):
        text = bytearray(sample * random.choice([1, 1, 1, 40]))
        for _ in range(random.randrange(1, 8)):
            text[random.randrange(len(text))] = random.randrange(256)
        with greeted() as client:
            reply = b""
            client.sendall(bytes(text).replace(b"\n", b" ") + b"\n")
            with contextlib.suppress(OSError):
                reply = client.makefile("rb").readline()
            row.expect(reply, "no reply")
    row.expect(works(), "hangs")


@pytest.mark.row("control: killed agents", "the next one has its socket")
def test_killed_agents(row):
    """Each start replaces the socket that a killed agent has left."""
    for _ in row.times(200, 10):
        with Agent() as agent:
            row.expect(wait_until(lambda: os.path.exists(SOCKET) and works(), 5), "no socket")
            agent.signal(signal.SIGKILL)
            agent.status()
