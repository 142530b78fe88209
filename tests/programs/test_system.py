"""The terminal agent with plain lines, hosts and encoders as processes that share only the system."""

import contextlib
import os
import signal
import stat
import subprocess

import pytest

from harness.processes import Program, wait_until
from harness.studio import FIFO, LAST_USER, SESSION, SETTINGS, Agent, Host, program, run, setting

FOLDER = os.path.dirname(SETTINGS)


@pytest.fixture
def encode(start):
    """Starts an encoder: encode("/out/Film.wav", "--seconds", "1")."""
    return lambda path, *options: start(Program, [program("encoder-simulator"), "--output", path, *options])


def start_with_number(start, pid, command):
    """Returns the process that has this number, or None where it cannot be chosen."""
    for _ in range(20):
        with contextlib.suppress(OSError), open("/proc/sys/kernel/ns_last_pid", "w", encoding="ascii") as last:
            last.write(str(pid - 1))
        if (process := start(Program, command)).pid == pid:
            return process
    return None


def test_choice_reaches_the_file_and_the_host(start, host, agent):
    choices = [("Solo Mode > Exclusive (XOR)", "SoloMode 1", "SoloMode", "1"),
               ("DAW Link Control", "DAWLinkControl 1", "DAWLinkControlSetting", "1"),
               ("Monitoring Facility > Studio_A", "Facility Studio_A", "Facility", "Studio_A")]
    for path, printed, key, stored in choices:
        agent.choose(path)
        host.expect(printed)
        assert setting(key) == stored
    agent.say("quit")
    assert agent.status() == 0
    text = start(Agent).text
    for line in ("(x) Exclusive (XOR)", "[x] DAW Link Control", "(x) Studio_A"):
        assert line in text
    host.command("end", "host stopped")
    assert "FOREIGN WRITE" not in host.text


def test_host_of_32_bits_is_refused_and_only_the_file_is_written(start):
    host = start(Host, "start 32")
    agent = start(Agent)
    assert "K3DHost running in wrong architecture (32 bits : should be 64 )" in agent.text
    agent.choose("Solo Mode > Exclusive (XOR)")
    agent.expect("changed Solo Mode > Exclusive (XOR): on")
    assert setting("SoloMode") == "1"
    assert not os.path.exists(LAST_USER)
    host.command("end", "host stopped")  # checks once more what was written
    assert "SoloMode" not in host.text


def test_removed_marker_is_logged_and_a_restart_of_the_host_recovers(host, agent):
    host.command("bus add bus-1 Dialog", "added")
    agent.expect("added Default Bus > Dialog")
    os.rename(SESSION, "/tmp/removed")  # its inode is not used again
    agent.expect(SESSION + " was removed while its segment still exists")
    host.command("start", "host started")
    host.command("bus add bus-2 Music", "added")
    agent.expect("added Default Bus > Music")


def test_buses_are_added_renamed_chosen_and_removed(start, host, agent):
    host.command("bus add bus-1 Dialog", "added")
    agent.expect("added Default Bus > Dialog")
    host.command('bus add bus-2 "Ch\\x8Fur"', "added")  # Mac OS Roman
    agent.expect("added Default Bus > Chèur")
    agent.choose("Default Bus > Chèur")
    host.expect("(id bus-2)")
    host.command("bus rename bus-2 Choir", "renamed")
    agent.expect("added Default Bus > Choir")
    agent.expect("changed Default Bus > Main Bus: on")
    host.say("kill")  # its segments stay
    assert host.status() == -signal.SIGKILL
    start(Host)
    agent.expect("removed Default Bus > Dialog")


def test_abort_ends_one_encoder_and_deletes_its_folder(agent, encode):
    film = encode("/tmp/out/Film/Film_Mix_Atm.wav", "--seconds", "100", "--steps", "100")
    other = encode("/tmp/out/Other/Other.wav", "--seconds", "100", "--steps", "100")
    assert agent.prints("added Encoding History > Film_Mix") and agent.prints("added Encoding History > Other")
    agent.choose("Encoding History > Film_Mix > Show Output Folder")
    agent.expect("output folder /tmp/out/Film")
    agent.choose("Encoding History > Film_Mix > Abort and Delete Output Folder")
    agent.expect("removed Encoding History > Film_Mix")
    assert film.status() == -signal.SIGKILL
    assert not os.path.exists("/tmp/out/Film")
    assert os.path.exists("/tmp/out/Other/Other.wav")
    assert other.status(0) is None


def test_encoder_is_not_mistaken_for_one_that_had_its_number_before(start, agent, encode):
    first = encode("/tmp/out/Film/Film_Mix_Atm.wav", "--seconds", "1", "--silent-at", "50")
    assert first.status() == 0
    agent.expect("Encoding History > Film_Mix: 50%")  # its last line
    script = f"exec 3>{FIFO}; echo pid: $$ , P: 10 >&3; sleep 1; echo pid: $$ , P: 11 >&3; exec sleep 100"
    second = start_with_number(start, first.pid, ["sh", "-c", script])
    if second is None:
        pytest.skip("the next process number cannot be chosen here")
    title = f"Encoding History > Process {second.pid}"
    agent.expect(f"added {title}: 10%")
    agent.choose("Encoding History > Film_Mix > Abort and Delete Output Folder")
    agent.expect("removed Encoding History > Film_Mix")
    assert not os.path.exists("/tmp/out/Film")
    agent.expect(f"changed {title}: 11%")  # it still runs
    agent.choose(title + " > Abort and Delete Output Folder")
    agent.expect("removed " + title)
    assert second.status() == -signal.SIGKILL


@pytest.mark.parametrize("script, status, line", [
    ("choose Solo Mode > Exclusive (XOR)", 0, "Quit Kest Settings"),  # no end of the line, no quit
    ("choose Mono\nchoose Solo Mode > Exclusive (XOR)\n", 1, 'no item "Mono"'),
    ("choose Encoding History > Clear History\nchoose Solo Mode > Exclusive (XOR)\nquit\n", 1, "is greyed"),
    ("choose Solo Mode\nchoose Solo Mode > Exclusive (XOR)\n", 1, "is a submenu"),
    ("open Mono\nchoose Solo Mode > Exclusive (XOR)\n", 1, 'no item "Mono"'),
    ("chose Mono\nchoose Solo Mode > Exclusive (XOR)\n", 1, "unknown command")])
def test_script_ends_with_status_1_if_a_choice_fails_and_the_next_one_is_made(script, status, line):
    ended, output, errors = run("kest-settings-terminal", text=script)
    assert ended == status
    assert line in output + errors
    assert setting("SoloMode") == "1"


def test_second_agent_ends_and_the_first_goes_on_without_input(start, agent, encode):
    assert os.path.getsize(LAST_USER) > 0
    for arguments, status in (({"stdin": subprocess.DEVNULL}, 0), ({}, 1)):  # a pipe is a script
        second = start(Program, [program("kest-settings-terminal")], **arguments)
        second.expect(f"already running (process {agent.pid}); kest-settings-ctl controls it")
        assert second.status() == status
    assert stat.S_ISFIFO(os.stat(FIFO).st_mode)
    agent.process.stdin.close()
    encode("/tmp/out/Late/Late_Film.wav", "--seconds", "1")
    agent.expect("Late_Film: 100%")
    agent.signal()
    assert agent.status() == 0
    assert not os.path.exists(FIFO)


class SmallDisk(Agent):
    """An agent whose settings folder is a file system of 128 KB."""

    def __init__(self, option="rw"):
        os.makedirs(FOLDER)
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size=128k,{option}", "test", FOLDER], check=True)
        super().__init__(stderr=subprocess.DEVNULL)

    def __exit__(self, *_):
        super().__exit__()
        subprocess.run(["umount", FOLDER], check=True)

    def fill(self):
        with contextlib.suppress(OSError), open(FOLDER + "/filler", "wb", buffering=0) as filler:
            while filler.write(bytes(4096)):
                pass

    def choose_stereo(self):
        before = len(self.errors())
        self.choose("Speaker Configuration > Stereo")
        assert wait_until(lambda: len(self.errors()) > before)

    def errors(self):
        """Returns what the log says about settings, without date and time."""
        return [line.split("<ERRO> ")[1] for line in self.text.splitlines() if "<ERRO> settings " in line]

    def quit(self):
        self.say("quit")
        assert self.status() == 0


def test_full_disk_is_reported_with_the_choice_and_again_at_the_end(start):
    agent = start(SmallDisk)
    agent.fill()
    before = setting("PhysMonConfig")
    agent.choose_stereo()
    agent.expect("changed Speaker Configuration > Stereo: on")
    agent.quit()
    reason = "(No space left on device): Speaker Configuration"
    assert agent.errors() == [
        f"settings not saved {reason}; in effect until the agent ends; {SETTINGS}",
        f"settings still not saved {reason}; lost, as the agent ends; {SETTINGS}"]
    assert setting("PhysMonConfig") == before != "1"


def test_choice_for_which_there_is_space_at_the_end_is_saved(start):
    agent = start(SmallDisk)
    agent.fill()
    agent.choose_stereo()
    os.remove(FOLDER + "/filler")
    agent.quit()
    assert len(agent.errors()) == 1
    assert setting("PhysMonConfig") == "1"


def test_all_settings_that_a_start_cannot_save_are_one_line(start):
    agent = start(SmallDisk, "ro")
    assert len(agent.errors()) == 1
    assert agent.errors()[0].startswith("settings not saved (Read-only file system): ")
    for title in ("HDX Aux Track Delay", "DAW Link Control", "Default Panner Objects", "Latency Compensation",
                  "Speaker Configuration"):
        assert title in agent.errors()[0]
    agent.choose_stereo()
    assert "): Speaker Configuration, " in agent.errors()[1]
    agent.quit()
    assert len(agent.errors()) == 3
