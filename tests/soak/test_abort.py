"""Abort under attack: links, mounts, protected folders."""

import os
import subprocess
import sys

import pytest

from attacks import HOME, WORK, Program, encoder, encoder_in, is_running, put, wait_until

EXCHANGE = """
import ctypes, sys
one, other = (a.encode() for a in sys.argv[1:])
while True:
    ctypes.CDLL(None).renameat2(-100, one, -100, other, 2)
"""


@pytest.mark.row("abort: links exchanged", "nothing deleted outside the encoder's folder")
def test_path_is_exchanged_all_the_time(agent, row):
    """It leads to the encoder's own folder and, every few microseconds, to one that holds the home folder."""
    base = "/tmp/exchanged"
    os.makedirs(base)
    os.symlink(base + "/decoy", base + "/link")
    os.symlink("/tmp", base + "/other")
    precious = put(HOME + "/kept/precious")
    with Program([sys.executable, "-c", EXCHANGE, base + "/link", base + "/other"]):
        for i in row.times(200, 12):
            title = f"linked-{i:05}"
            with encoder(f"{base}/link/home/{title}.wav", base + "/decoy/home", title + ".wav") as child:
                assert agent.has_row(title)
                agent.abort(title)
                row.expect(not is_running(child), "encoder not ended")
            row.expect(os.path.exists(precious), "home folder lost")


@pytest.mark.row("abort: a mount in the folder", "its content is kept, one log line")
def test_mounts_in_the_folder(agent, row):
    """Another folder is mounted inside the output folder, before or while it is deleted."""
    for i, is_late in row.times(10, 2, (False, True)):
        title = f"mount-{is_late}-{i:03}"
        folder = f"{WORK}/{title}"
        point = folder + "/a/b/c"
        kept = put(f"{HOME}/masters/{title}/master.wav")
        many = folder + "/many"
        os.makedirs(many)
        for number in range(20000 if is_late else 0):
            os.mknod(f"{many}/{number}")
        os.makedirs(point)  # after the others: it is deleted last

        def mount():
            if is_late:
                wait_until(lambda: len(os.listdir(many)) < 20000, 5)
            subprocess.run(["mount", "--bind", os.path.dirname(kept), point], stderr=subprocess.DEVNULL, check=False)

        if not is_late:
            mount()
        with encoder_in(folder, title):
            assert agent.has_row(title)
            lines = agent.abort(title, mount if is_late else lambda: None)
        row.expect(os.path.exists(kept), "content deleted")
        was_mounted = subprocess.run(["umount", point], stderr=subprocess.DEVNULL, check=False).returncode == 0
        row.expect(lines or not was_mounted, "no line")


@pytest.mark.row("abort: protected folders", "all kinds are kept, row and one log line each")
def test_protected_folders(agent, row):
    """Encoders really write into folders which are never deleted. The table of mount points escapes the blank."""
    drives = [HOME + "/drives/one", "/Volumes/disk", WORK + "/a drive"]
    for point in drives:
        subprocess.run(["mount", "--mkdir", "-t", "tmpfs", "drive", point], check=True)
    settings = HOME + "/Library/Application Support/Kestronics"
    folders = ["/Users/me", "/Users/Shared", "/Users", "/Library/Fonts", "/Library", "/Volumes", *drives,
               "/opera", HOME + "/.ssh", HOME + "/.ssh/keys", HOME + "/Documents", HOME + "/Library",
               HOME + "/Library/Logs", os.path.dirname(settings), settings, settings + "/inner",
               HOME + "/drives", HOME + "/drives/../drives", HOME + "/linked", HOME, "/tmp"]
    os.makedirs(HOME + "/elsewhere/deep")
    os.symlink(HOME + "/elsewhere/deep", HOME + "/linked")
    for _, folder in row.times(1, 1, folders):
        kept = put(folder + "/keep/precious")
        title = f"listed-{row.tried:05}"
        with encoder_in(folder, title):
            assert agent.has_row(title)
            row.expect(agent.abort(title), f"{folder} without a line")
        row.expect(os.path.exists(kept), f"{folder} deleted")
        row.expect(agent.has_row(title), f"{folder} without a row")
