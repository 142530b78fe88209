"""The terminal agent with plain lines, hosts and encoders as processes that share only the system."""

import contextlib
import os
import subprocess

import pytest

from harness.processes import Program, wait_until
from harness.studio import FACILITIES, FIFO, LAST_USER, SESSION, SETTINGS, Agent, program, report, run, setting

FOLDER = os.path.dirname(SETTINGS)
EXCLUSIVE = "Solo Mode > Exclusive (XOR)"


def test_choice_reaches_the_file_and_the_host(start, host, agent):
    os.makedirs(FACILITIES + "/Ann\x7f > ex")
    agent.say("open Monitoring Facility")
    for path, printed, stored in ((EXCLUSIVE, "SoloMode 1", "1"),
                                  ("Monitoring Facility > Studio_A", "Facility Studio_A", "Studio_A"),
                                  ("Monitoring Facility > Ann? > ex", "Facility Ann", "Ann&#127; &gt; ex")):
        agent.choose(path)
        host.expect(printed)
        assert setting(printed.split()[0]) == stored
    report(4711, "path: /tmp/out/Film/Film_Mix.wav", "P: 5")
    agent.expect("added Encoding History > Film: 5%")
    agent.choose("Encoding History > Film > Show Output Folder")
    agent.expect("output folder /tmp/out/Film")
    agent.say("quit")
    assert agent.status() == 0
    text = start(Agent).text
    assert "(x) Exclusive (XOR)" in text and "(x) Ann? > ex" in text
    host.command("end", "host stopped")
    assert "FOREIGN WRITE" not in host.text


def test_buses_are_shown_and_a_host_without_key_file_is_logged_until_it_restarts(host, agent):
    host.command('bus add bus-2 "Ch\\x8Fur"', "added")  # Mac OS Roman
    agent.expect("added Default Bus > Chèur")
    agent.choose("Default Bus > Chèur")
    host.expect("(id bus-2)")
    host.command("bus rename bus-2 Choir", "renamed")
    agent.expect("added Default Bus > Choir")
    agent.expect("changed Default Bus > Main Bus: on")
    os.rename(SESSION, "/tmp/removed")  # its inode is not used again
    agent.expect(SESSION + " was removed while its segment still exists")
    host.command("start", "host started")
    agent.expect("removed Default Bus > Choir")


@pytest.mark.parametrize("line, printed", [
    ("", "Quit Kest Settings"), ("choose \x1b[2J", 'no item "?[2J" in the menu'), ("choose Solo Mode", "is a submenu"),
    ("choose Encoding History > Clear History", "is greyed"), ("chose Mono", "unknown command"),
    ("open Latency Compensation", 'no item "Latency Compensation" in the menu'),  # hidden
    ("open DAW Link Control", '"DAW Link Control" is not a submenu'),
    pytest.param(8192 * "x" + "quit", "line too long: maximum 4096 bytes", id="too long")])
def test_script_ends_with_status_1_if_a_line_fails_and_the_unended_last_one_is_run(line, printed):
    status, output, errors = run("kest-settings-terminal", text=f"{line}\nchoose {EXCLUSIVE}")
    assert status == bool(line) and printed in output + errors
    assert setting("SoloMode") == "1"


def test_second_agent_ends_and_the_first_goes_on_without_input(start, agent):
    assert os.path.getsize(LAST_USER) > 0
    for arguments, status in (({"stdin": subprocess.DEVNULL}, 0), ({}, 1)):  # a pipe is a script
        second = start(Program, [program("kest-settings-terminal")], **arguments)
        second.expect(f"already running (process {agent.pid}); kest-settings-ctl controls it")
        assert second.status() == status
    start(Program, [program("encoder-simulator"), "--output", "/tmp/out/Late/Late_Film.wav", "--seconds", "1"])
    agent.process.stdin.close()
    agent.expect("Late_Film: 100%")
    agent.signal()
    assert agent.status() == 0
    assert not os.path.exists(FIFO)


@contextlib.contextmanager
def settings_on_a_disk(options):
    """With `ro` in its options the disk is read-only, otherwise full."""
    os.makedirs(FOLDER)
    subprocess.run(["mount", "-t", "tmpfs", "-o", options, "test", FOLDER], check=True)
    with contextlib.suppress(OSError), open(FOLDER + "/filling", "wb", buffering=0) as file:
        while file.write(bytes(4096)):
            pass
    yield
    subprocess.run(["umount", FOLDER], check=True)


@pytest.mark.parametrize("is_writable_at_the_end", [False, True])
@pytest.mark.parametrize("options, reason", [("ro", "Read-only file system"), ("size=64k", "No space left on device")])
def test_what_cannot_be_saved_is_one_line_and_saved_at_the_end_if_possible(
        start, options, reason, is_writable_at_the_end):
    def errors():
        return [line.split("<ERRO> settings ")[1] for line in agent.text.splitlines() if "<ERRO> settings " in line]

    start(settings_on_a_disk, options)
    agent = start(Agent, stderr=subprocess.DEVNULL)
    agent.choose("Speaker Configuration > Stereo")
    assert wait_until(lambda: len(errors()) == 2)
    if is_writable_at_the_end:
        subprocess.run(["mount", "-o", "remount,rw,size=1m", FOLDER], check=True)
    agent.say("quit")
    assert agent.status() == 0
    why = (f"({reason}): Speaker Configuration, Latency Compensation, Default Panner Objects, DAW Link Control, "
           "HDX Aux Track Delay")
    lines = 2 * [f"not saved {why}; in effect until the agent ends; {SETTINGS}"]  # at the start, and of the choice
    if not is_writable_at_the_end:
        lines.append(f"still not saved {why}; lost, as the agent ends; {SETTINGS}")
    assert errors() == lines
    assert (setting("PhysMonConfig") == "1") == is_writable_at_the_end
