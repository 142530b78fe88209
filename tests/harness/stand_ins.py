"""Scripts under test, with small programs in place of the system's."""

import os
import subprocess


class StandIns:
    """Programs in a folder at the front of PATH. Each records its calls; `run` runs a script that calls them."""

    def __init__(self, folder):
        self.tools = folder / "tools"
        self.tools.mkdir()
        self.calls = folder / "calls"
        self.temporary = folder / "temporary"  # for the scripts' own files
        self.temporary.mkdir()
        self.environment = {**os.environ, "PATH": f"{self.tools}:{os.environ['PATH']}", "work": str(folder),
                            "TMPDIR": str(self.temporary)}

    def add(self, *names, script=""):
        for name in names:
            file = self.tools / name
            file.write_text(f'#!/bin/sh\necho "{name} $*" >>"$work/calls"\n{script}\n')
            file.chmod(0o755)

    def run(self, *command, **variables):
        """Runs a command. Returns its exit status, its output, and the calls, one a line."""
        self.calls.write_text("")
        done = subprocess.run(command, env={**self.environment, **variables}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
        return done.returncode, done.stdout, self.calls.read_text()
