"""Real programs under test: their output, their end, and conditions that are waited for."""

import codecs
import contextlib
import os
import re
import signal
import subprocess
import threading
import time

TIMEOUT = 20.0  # seconds: sanitizers on a busy machine are slow


def wait_until(condition, seconds=TIMEOUT):
    """Returns the condition's value once it is true, or its last value after the timeout."""
    end = time.monotonic() + seconds
    while not (value := condition()) and time.monotonic() < end:
        time.sleep(0.002)
    return value


class Program:
    """A process whose standard output and error are collected in `text`. Killed when the `with` block ends."""

    def __init__(self, command, **options):
        self.text = ""
        self._expected = 0  # everything before was found by `expect`
        options = {"stdin": subprocess.PIPE, "stdout": subprocess.PIPE, "stderr": subprocess.STDOUT, **options}
        self.process = subprocess.Popen(command, **options)
        self.pid = self.process.pid
        self._collector = threading.Thread(target=self._collect, daemon=True)
        self._collector.start()

    def _collect(self):
        decoder = codecs.getincrementaldecoder("utf-8")("replace")
        while self.process.stdout and (piece := os.read(self.process.stdout.fileno(), 65536)):
            self.text += decoder.decode(piece)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()

    def say(self, line):
        self.process.stdin.write((line + "\n").encode())
        self.process.stdin.flush()

    def signal(self, number=signal.SIGTERM):
        self.process.send_signal(number)

    def prints(self, pattern, seconds=TIMEOUT):
        """Returns the match of a regular expression in all the output, once there is one; None after the timeout."""
        return wait_until(lambda: re.search(pattern, self.text, re.M), seconds)

    def expect(self, text, seconds=TIMEOUT):
        """Waits for a text behind the one that was expected before, and returns its line. Fails after the timeout."""
        found = wait_until(lambda: self.text.find(text, self._expected) + 1, seconds)
        assert found, f"no {text!r} in:\n{self.text[self._expected:]}"
        self._expected = found - 1 + len(text)
        return self.text[self.text.rfind("\n", 0, found) + 1:].split("\n", 1)[0]

    def status(self, seconds=TIMEOUT):
        """Waits for the end and its output: the exit status, negative for a signal; None when it still runs."""
        with contextlib.suppress(subprocess.TimeoutExpired):
            self.process.wait(seconds)
            self._collector.join(1)  # longer only while others write to the same pipe
        return self.process.returncode
