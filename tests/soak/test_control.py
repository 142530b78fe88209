"""The control socket by the thousand: connections, clients that are killed, clients that do not read."""

import contextlib
import json
import os
import random
import socket
import time

import pytest

from attacks import Agent, Program, process_of, wait_until
from harness.studio import SETTINGS, program

SOCKET = os.path.dirname(SETTINGS) + "/Control/socket"


def greeted():
    """Returns a connection whose greeting was read."""
    client = socket.socket(socket.AF_UNIX)
    client.settimeout(10)
    client.connect(SOCKET)
    assert b"protocol" in client.recv(4096)
    return client


def ask(client, request):
    client.sendall(request + b"\n")
    return client.makefile("rb").readline()


def works():
    with contextlib.suppress(OSError, AssertionError), greeted() as client:
        return json.loads(ask(client, b'{"command":"choose","path":"DAW Link Control"}'))["ok"]
    return False


def leave():
    """Leaves before the reply, if it asks for anything."""
    with greeted() as client:
        client.sendall(random.choice([b"", b'{"command":"menu"}\n']))
    return True


@pytest.fixture
def agent(start):
    started = start(Agent)
    assert wait_until(works)
    return started


@pytest.mark.row("control: hostile clients", "a reply to each request, no descriptor left, at most 200 kB more")
def test_hostile_clients(agent, row):
    before = process_of(agent).num_fds()
    used = None
    for i, play in row.times(5000, 300, (works, leave)):
        row.expect(play(), f"{play.__name__}: no reply")
        if i == row.count(500, 30):
            used = process_of(agent).memory_full_info().uss // 1024
    for _, command in row.times(334, 17, (["watch"], ["menu"], ["choose", "DAW Link Control"])):
        with Program([program("kest-settings-ctl"), *command]):
            time.sleep(random.random() * 0.01)  # then it is killed
    row.expect(wait_until(lambda: process_of(agent).num_fds() <= before, 5), "descriptors")
    row.expect(works(), "hangs")
    more = process_of(agent).memory_full_info().uss // 1024 - used
    row.notes.append(f"{more} kB more")
    row.expect(more <= 200, "memory")


@pytest.mark.row("control: clients that do not read", "another client's choice takes less than 1 s")
def test_clients_that_do_not_read(agent, row):
    """They watch or ask for menus; the menu changes meanwhile."""
    for _ in row.times(10, 1):
        clients = [greeted() for _ in range(14)]
        for i, client in enumerate(clients):
            client.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 1)
            client.settimeout(0.1)
            with contextlib.suppress(OSError):
                client.sendall(b'{"command":"watch"}\n' if i % 2 else b'{"command":"menu"}\n' * 2000)
        for _ in range(100):
            begin = time.monotonic()
            row.expect(works() and time.monotonic() - begin < 1, "hangs or is slow")
        for client in clients:
            client.close()
