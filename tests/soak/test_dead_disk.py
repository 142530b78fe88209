"""A disk that does not answer any more, which a process has open and on which an encoder writes."""

import errno
import multiprocessing
import os
import signal
import struct
import subprocess

import pytest

from attacks import Agent, Program, encoder
from harness.studio import report

INIT = 26  # the kernel's first request
OPENS_WITHOUT_REQUEST = 1 << 24  # one of its options


def serve(device):
    """Answers the kernel's requests for a file system, of which only the root folder can be opened."""
    while True:
        _, kind, number = struct.unpack_from("IIQ", os.read(device, 1 << 20))
        status, answer = -errno.ENOSYS, b""
        if kind == INIT:
            status, answer = 0, struct.pack("IIIIHHII36x", 7, 31, 0, OPENS_WITHOUT_REQUEST, 1, 1, 4096, 1)
        os.write(device, struct.pack("IiQ", 16 + len(answer), status, number) + answer)


def mounted_disk(path):
    """Returns the process that serves the disk."""
    device = os.open("/dev/fuse", os.O_RDWR)
    options = f"fd={device},rootmode=40755,user_id=0,group_id=0"
    subprocess.run(["mount", "--mkdir", "-i", "-t", "fuse", "-o", options, "disk", path], pass_fds=[device], check=True)
    server = multiprocessing.get_context("fork").Process(target=serve, args=[device], daemon=True)
    server.start()
    os.close(device)
    return server


@pytest.mark.row("a disk that does not answer", "lines are read, the encoder is killed, SIGTERM ends the agent")
def test_dead_disk(row):
    for run in row.times(20, 2):
        server = mounted_disk(f"/tmp/disk{run}")
        daw = Program(["sh", "-c", f"exec 3</tmp/disk{run}; echo open; exec sleep 1000"])
        with Agent(stderr=subprocess.STDOUT) as agent, daw:
            daw.expect("open")
            os.kill(server.pid, signal.SIGSTOP)
            os.waitpid(server.pid, os.WUNTRACED)  # a request that it has read could never be given up
            report(daw.pid, "P: 1")
            with encoder(f"/tmp/disk{run}/Film/Picture.wav", "/", "") as film:
                row.expect(agent.prints("added Encoding History > Picture: 5%", 2), "not read")
                agent.choose_abort("Picture")
                row.expect(film.status(2) is not None, "not killed")
                agent.choose_abort("Picture")
                row.expect(agent.prints("is greyed", 1), "second click taken")
                agent.choose("Solo Mode", "Exclusive (XOR)")
                agent.choose("Solo Mode", "Latch")
                row.expect(agent.prints("changed Solo Mode > Latch: on", 1), "no choice meanwhile")
                row.expect_end(agent, 2, (1,))  # a command was refused
        server.kill()
