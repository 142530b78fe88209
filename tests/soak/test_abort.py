"""Abort under attack: links, mounts, protected folders, reused process ids, forged lines, refused kills, slow disks."""

import os
import signal
import subprocess
import time

import pytest

from attacks import (HOME, STRACE, USER, WORK, Agent, Program, UserAgent, bystander, encoder, encoder_in, has_ended,
                     is_running, process_of, put, python, wait_until)
from harness.studio import FIFO, program, report

EXCHANGE = """
import ctypes, sys
one, other = (a.encode() for a in sys.argv[1:])
while True:
    ctypes.CDLL(None).renameat2(-100, one, -100, other, 2)
"""


@pytest.mark.row("abort: genuine encoders", "killed, folder and row gone")
def test_genuine_encoders(agent, row):
    for i in row.times(50, 5):
        title = f"genuine-{i:05}"
        folder = f"{WORK}/{title}"
        command = [program("encoder-simulator"), "--output", f"{folder}/{title}.wav", "--seconds", "1000"]
        with Program(command) as child:
            row.expect(agent.abort(title) == [] and child.status() == -signal.SIGKILL, "not killed")
            row.expect(not os.path.exists(folder), "folder left")
            row.expect(title not in agent.rows(), "row left")


@pytest.mark.row("abort: links exchanged", "nothing deleted outside the encoder's folder")
def test_path_is_exchanged_all_the_time(agent, row):
    """It leads to the encoder's own folder and, every few microseconds, to one that holds the home folder."""
    base = "/tmp/exchanged"
    os.makedirs(base)
    os.symlink(base + "/decoy", base + "/link")
    os.symlink("/tmp", base + "/other")
    with python(EXCHANGE, base + "/link", base + "/other"):
        for i in row.times(200, 12):
            precious = put(HOME + "/kept/precious")
            title = f"linked-{i:05}"
            with encoder(f"{base}/link/home/{title}.wav", base + "/decoy/home", title + ".wav") as child:
                row.expect(agent.abort(title) is not None and not is_running(child), "encoder not ended")
            row.expect(os.path.exists(precious), "home folder lost")
            agent.clear()


@pytest.mark.row("abort: a mount in the folder", "its content is kept, one log line")
def test_mounts_in_the_folder(agent, row):
    """A drive or another folder is mounted inside the output folder, before or while it is deleted."""
    for i, kind in row.times(10, 2, ("bind", "drive", "deep", "late")):
        title = f"mount-{kind}-{i:03}"
        folder = f"{WORK}/{title}"
        point = folder + ("/a/b/c" if kind == "deep" else "/drive")
        kept = put(f"{HOME}/masters/{title}/master.wav")
        source = ["-t", "tmpfs", "drive"] if kind == "drive" else ["--bind", os.path.dirname(kept)]
        many = folder + "/many"
        os.makedirs(many)
        for number in range(20000 if kind == "late" else 0):
            os.mknod(f"{many}/{number}")
        os.makedirs(point)  # after the others: it is deleted last

        def mount():
            subprocess.run(["mount", *source, point], stderr=subprocess.DEVNULL, check=False)

        def mount_late():
            wait_until(lambda: len(os.listdir(many)) < 20000, 5)
            mount()

        if kind != "late":
            mount()
        if kind == "drive":
            kept = put(point + "/master.wav")
        with encoder_in(folder, title):
            lines = agent.abort(title, mount_late if kind == "late" else lambda: None)
        row.expect(os.path.exists(kept), "content deleted")
        was_mounted = subprocess.run(["umount", point], stderr=subprocess.DEVNULL, check=False).returncode == 0
        row.expect(lines or not was_mounted, "no line")


@pytest.mark.row("abort: a drive with a blank in its name", "refused with its path")
def test_drive_with_a_blank_in_its_name(agent, row):
    """The table of the mount points escapes the blank."""
    drive = WORK + "/a drive"
    subprocess.run(["mount", "--mkdir", "-t", "tmpfs", "drive", drive], check=True)
    with encoder_in(drive, "on-drive"):
        text = "; ".join(agent.abort("on-drive") or [])
        row.expect(text.endswith("it is or contains the mount point " + drive), text)


def with_number(number, start):
    """Starts processes until one has the number, which must be free."""
    for _ in range(200):
        with open("/proc/sys/kernel/ns_last_pid", "w", encoding="ascii") as last:
            last.write(str(number - 1))
        process = start()
        if process.pid == number:
            return process
        process.__exit__()
    raise RuntimeError("the number does not come again")


def ended_encoder(agent, title):
    """Runs an encoder until its row is in the menu; returns its process id and its file."""
    folder = f"{WORK}/{title}"
    with encoder_in(folder, title) as child:
        agent.has_row(title)
        time.sleep(0.03)  # start times are counted in hundredths of a second
        return child.pid, f"{folder}/{title}.wav"


@pytest.mark.row("abort: a number comes again", "finished masters are kept")
def test_number_of_a_finished_encoding_is_reused(agent, row):
    """The new process reports no usable path."""
    script = 'echo "pid: $$ , $2" >"$1"; echo "pid: $$ , P: 7" >"$1"; exec sleep 1000'
    for i, line in row.times(20, 2, ("type: Main", "path: /tmp/" + "x" * 1100 + "/film.wav")):
        title = f"master-{row.tried:05}"
        number, master = ended_encoder(agent, title)
        report(number, "P: 100")
        wait_until(lambda: title not in agent.rows(), 5)
        if i % 2:
            agent.clear()
        with with_number(number, lambda: Program(["sh", "-c", script, "sh", FIFO, line])):
            agent.abort_all()
        row.expect(os.path.exists(master), "deleted")
        agent.clear()


@pytest.mark.row("abort: a failed encoder's number", "another program that has it survives")
def test_number_of_a_failed_encoder_is_reused(agent, row):
    for i in row.times(20, 2):
        number, _ = ended_encoder(agent, f"failed-{i:05}")
        with with_number(number, bystander) as other:
            agent.abort(f"failed-{i:05}")
            row.expect(is_running(other), "killed")


@pytest.mark.row("abort: a forged path", "older files of the user are kept")
def test_forged_path_under_the_number_of_a_running_encoder(agent, row):
    for i, target in row.times(10, 2, ("Documents", "Documents/Thesis", "Music/Album", ".ssh", "work/older")):
        kept = put(f"{HOME}/{target}/kept-{i}.wav")
        title = f"forged-{row.tried:05}"
        with encoder_in(f"{WORK}/{title}", title) as child:
            agent.has_row(title)
            report(child.pid, "path: " + kept, "P: 6")
            if not agent.has_row(f"kept-{i}"):
                agent.has_row(title)
            agent.abort_all()
        row.expect(os.path.exists(kept), "deleted")
        agent.clear()


@pytest.mark.row("abort: a forged number", "DAW, agent, its threads and parent survive")
def test_forged_numbers_of_processes_that_are_no_encoders(row):
    for i, kind in row.times(10, 2, ("DAW", "DAW without a path", "agent", "thread", "parent")):
        kept = put(f"{HOME}/Sessions/Song/song-{i:05}.wav")
        with bystander() as daw, Agent("sh", "-c", '"$0"; :') as parent:
            agent, = process_of(parent).children()
            thread = max(thread.id for thread in agent.threads())
            number = {"agent": agent.pid, "thread": thread, "parent": parent.pid}.get(kind, daw.pid)
            report(number, *([] if kind == "DAW without a path" else ["path: " + kept]), "P: 50")
            parent.abort_all()
            row.expect(is_running(daw) and is_running(parent) and not has_ended(agent), "killed")
            row.expect(os.path.exists(kept), "folder deleted")


@pytest.mark.row("abort: protected folders", "all kinds are kept, row and one log line each")
def test_protected_folders(agent, row):
    """Encoders really write into folders which are never deleted."""
    drive = HOME + "/drives/one"
    for point in (drive, "/Volumes/disk"):
        subprocess.run(["mount", "--mkdir", "-t", "tmpfs", "drive", point], check=True)
    settings = HOME + "/Library/Application Support/Kestronics"
    folders = ["/Users/me", "/Users/Shared", "/Users", "/Library/Fonts", "/Library", "/Volumes/disk", "/Volumes",
               "/opera", HOME + "/.ssh", HOME + "/.ssh/keys", HOME + "/Documents", HOME + "/Library",
               HOME + "/Library/Logs", os.path.dirname(settings), settings, settings + "/inner", drive,
               HOME + "/drives", HOME + "/drives/../drives", HOME + "/linked", HOME, "/tmp"]
    os.makedirs(HOME + "/elsewhere/deep")
    os.symlink(HOME + "/elsewhere/deep", HOME + "/linked")
    for _, folder in row.times(1, 1, folders):
        kept = put(folder + "/keep/precious")
        title = f"listed-{row.tried:05}"
        with encoder_in(folder, title):
            row.expect(agent.abort(title), f"{folder} without a line")
        row.expect(os.path.exists(kept), f"{folder} deleted")
        row.expect(agent.has_row(title), f"{folder} without a row")
        agent.clear()


@pytest.mark.row("abort: the kill is refused", "folder and row stay, one log line")
def test_encoder_of_another_user(start, row):
    """Its folder is the user's own."""
    agent = start(UserAgent)
    for i in row.times(20, 2):
        title = f"foreign-{i:05}"
        folder = f"{agent.folder}/{title}"
        with encoder(f"{folder}/{title}.wav", "/", "") as child:
            subprocess.run([*agent.identity, "sh", "-c", f"mkdir {folder}; >{folder}/{title}.wav"], check=True)
            row.expect(len(agent.abort(title) or []) == 1 and is_running(child), "not one line")
            row.expect(os.path.exists(f"{folder}/{title}.wav"), "deleted")
            row.expect(agent.has_row(title), "row gone")


@pytest.mark.row("abort: no process to be had", "complete, or the row stays and one log line")
def test_no_process_left_to_start(start, row):
    agent = start(UserAgent)
    subprocess.run([*agent.identity, "prlimit", f"--pid={agent.pid}", "--nproc=1:1"], check=True)
    for i in row.times(10, 2):
        title = f"noproc-{i:05}"
        with encoder_in(f"{agent.folder}/{title}", title, user=USER, group=USER, extra_groups=[]) as child:
            lines = agent.abort(title)
            done = not is_running(child) and not os.path.exists(f"{agent.folder}/{title}")
            row.expect(done or (lines and agent.has_row(title)), "looked complete and was not")


@pytest.mark.row("abort: a slow disk", "the menu works, a second click does nothing, SIGTERM ends it")
def test_deletion_takes_ten_seconds(row):
    for i in row.times(5, 1):
        title = f"slow-{i:05}"
        slow = [*STRACE, "-e", "trace=unlinkat", "-e", "inject=unlinkat:delay_enter=10000000"]
        with Agent(*slow, stderr=subprocess.STDOUT) as tracer, encoder_in(f"{WORK}/{title}", title) as child:
            tracer.has_row(title)
            tracer.choose_abort(title)
            child.status(2)
            time.sleep(0.2)
            tracer.choose_abort(title)
            tracer.choose("Solo Mode", ("Exclusive (XOR)", "Latch")[i % 2])
            row.expect(tracer.prints(r"changed Solo Mode > .*: on", 1), "no choice")
            row.expect(tracer.prints("is greyed", 1), "second click taken")
            agent, = process_of(tracer).children()
            agent.terminate()
            row.expect(wait_until(lambda: has_ended(agent), 2), "not ended within 2 s")
