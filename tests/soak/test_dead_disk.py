"""A disk that does not answer any more, on which a process has a file open and an encoder writes."""

import errno
import multiprocessing
import os
import signal
import stat
import struct
import subprocess

import pytest

from attacks import Agent, Program, encoder
from harness.studio import report

LOOKUP, GETATTR, OPEN, INIT = 1, 3, 14, 26  # requests of the kernel


class Disk:
    """A file system in a process: each folder contains every name, those with a dot are files."""

    def __init__(self, path):
        self.device = os.open("/dev/fuse", os.O_RDWR)
        options = f"fd={self.device},rootmode=40755,user_id=0,group_id=0"
        subprocess.run(["mount", "--mkdir", "-i", "-t", "fuse", "-o", options, "disk", path], pass_fds=[self.device],
                       check=True)
        self.nodes = 2
        self.server = multiprocessing.get_context("fork").Process(target=self._serve, daemon=True)
        self.server.start()
        os.close(self.device)

    def _serve(self):
        while True:
            request = os.read(self.device, 1 << 20)
            _, kind, number, node = struct.unpack_from("IIQQ", request)
            answer = self._answer(kind, node, request[40:])
            status, data = (-errno.ENOSYS, b"") if answer is None else (0, answer)
            os.write(self.device, struct.pack("IiQ", 16 + len(data), status, number) + data)

    def _answer(self, kind, node, data):
        if kind == INIT:
            return struct.pack("IIIIHHII36x", 7, 31, 0, 0, 1, 1, 4096, 1)
        if kind == LOOKUP:
            self.nodes += 2
            node = self.nodes + (b"." in data)
            return struct.pack("QQQQII", node, 0, 0, 0, 0, 0) + self._attributes(node)
        if kind == GETATTR:
            return struct.pack("QII", 0, 0, 0) + self._attributes(node)
        return struct.pack("QII", 0, 0, 0) if kind == OPEN else None

    def _attributes(self, node):
        mode = stat.S_IFREG | 0o644 if node % 2 and node > 1 else stat.S_IFDIR | 0o755
        return struct.pack("QQQQQQIIIIIIIIII", node, 0, 0, 0, 0, 0, 0, 0, 0, mode, 2, 0, 0, 0, 4096, 0)


@pytest.mark.row("a disk that does not answer", "lines are read, the encoder is killed, SIGTERM ends the agent")
def test_dead_disk(row):
    for run in row.times(20, 2):
        disk = Disk(f"/tmp/disk{run}")
        daw = Program(["sh", "-c", f"exec 3</tmp/disk{run}/Film.wav; echo open; exec sleep 1000"])
        with Agent(stderr=subprocess.STDOUT) as agent, daw:
            daw.expect("open")
            # After the answer to this one the kernel sends no requests for the end of a file's use.
            os.close(os.open(f"/tmp/disk{run}/Other.wav", os.O_RDONLY))
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
