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
OPENS_WITHOUT_REQUEST = 1 << 24  # of its options


class Disk:
    """A file system in a process, of which only the root folder can be opened."""

    def __init__(self, path):
        self.device = os.open("/dev/fuse", os.O_RDWR)
        options = f"fd={self.device},rootmode=40755,user_id=0,group_id=0"
        subprocess.run(["mount", "--mkdir", "-i", "-t", "fuse", "-o", options, "disk", path], pass_fds=[self.device],
                       check=True)
        self.server = multiprocessing.get_context("fork").Process(target=self._serve, daemon=True)
        self.server.start()
        os.close(self.device)

    def _serve(self):
        while True:
            _, kind, number = struct.unpack_from("IIQ", os.read(self.device, 1 << 20))
            is_init = kind == INIT
            answer = struct.pack("IIIIHHII36x", 7, 31, 0, OPENS_WITHOUT_REQUEST, 1, 1, 4096, 1) if is_init else b""
            status = 0 if is_init else -errno.ENOSYS
            os.write(self.device, struct.pack("IiQ", 16 + len(answer), status, number) + answer)


@pytest.mark.row("a disk that does not answer", "lines are read, the encoder is killed, SIGTERM ends the agent")
def test_dead_disk(row):
    for run in row.times(20, 2):
        disk = Disk(f"/tmp/disk{run}")
        daw = Program(["sh", "-c", f"exec 3</tmp/disk{run}; echo open; exec sleep 1000"])
        with Agent(stderr=subprocess.STDOUT) as agent, daw:
            daw.expect("open")
            os.kill(disk.server.pid, signal.SIGSTOP)
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
        disk.server.kill()
