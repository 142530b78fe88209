"""The agent full screen in a pseudoterminal, whose output a terminal emulator draws."""

import os
import pty
import signal
import termios

import pexpect
import psutil
import pyte
import pytest

from harness.processes import wait_until
from harness.studio import READY, program, setting

AGENT = program("kest-settings-terminal")
ALTERNATE_SCREEN = 1049 << 5
CURSOR_SHOWN = 34  # terminfo's `screen` sets this mode too when it shows the cursor
FRESH_MODES = termios.tcgetattr(pty.openpty()[1])
DOWN, HOME, END, SUSPEND = "\x1b[B", "\x1b[H", "\x1b[F", "\x1a"


class Terminal(pexpect.spawn):
    """A program in a terminal of 80x24."""

    def __init__(self, command=AGENT, *arguments, shows=READY, **environment):
        self.screen = pyte.Screen(80, 24)
        self.stream = pyte.ByteStream(self.screen)
        environment = {**os.environ, "TERM": "screen", "LC_ALL": "C.UTF-8", "PS1": "ready$ ", **environment}
        super().__init__(command, list(arguments), dimensions=(24, 80), env=environment)
        self.delaybeforesend = None
        self.see(shows)

    def draw(self):
        try:
            while True:
                self.stream.feed(self.read_nonblocking(65536, timeout=0))
        except (pexpect.TIMEOUT, pexpect.EOF):
            return "\n".join(line.rstrip() for line in self.screen.display)

    def see(self, text):
        assert wait_until(lambda: text in self.draw()), f"no {text!r} on the screen:\n{self.draw()}"

    def type(self, keys, shows):
        self.send(keys)
        self.see(shows)

    def is_full_screen(self):
        return self.draw() and ALTERNATE_SCREEN in self.screen.mode

    def is_suspended(self):
        """Returns whether all that a shell has started is stopped, and the screen is the shell's."""
        states = {process.status() for process in psutil.Process(self.pid).children(recursive=True)}
        return states == {psutil.STATUS_STOPPED} and not self.is_full_screen()

    def suspend(self):
        self.type(SUSPEND, "Stopped")
        assert wait_until(self.is_suspended)

    def run_line(self, line, shows):
        """Has the shell run a line, with the screen empty."""
        self.draw()
        self.screen.erase_in_display(2)
        self.type(line + "\n", shows)

    def ends_in_order(self):
        """Waits for the end: cursor, mouse, keys, screen and the terminal's modes are then as before."""
        assert wait_until(lambda: not (self.draw() and self.isalive())) and self.draw()
        return self.screen.mode - {CURSOR_SHOWN} == pyte.Screen(80, 24).mode and termios.tcgetattr(self.child_fd) == FRESH_MODES


@pytest.fixture
def terminal(start):
    return start(Terminal)


def test_choices_by_keys_and_mouse_reach_the_file_and_the_host(host, terminal):
    terminal.type("\r", "> (x) Latch")
    terminal.type(DOWN + " ", "> (x) Exclusive (XOR)")
    host.expect("SoloMode 1")
    assert setting("SoloMode") == "1"
    terminal.type("\x1b[M &\"", "> (x) Latch")  # a click on column 5, line 1
    host.expect("SoloMode 0")
    host.say("bus add bus-1 Dialog")
    terminal.type("/dialog", "> Default Bus > Dialog")
    terminal.type("\r", "> ( ) Dialog")
    terminal.see("\nbus 1 : Dialog\n")  # what is printed has its line on the screen
    terminal.send("\r")
    host.expect("(id bus-1)")
    host.say("stop")
    terminal.see("no K3DHost, 2 buses")
    terminal.send("q")
    assert terminal.ends_in_order()


@pytest.mark.parametrize("end", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGSEGV, signal.SIGABRT, "\x03"])
def test_terminal_is_in_order_after_each_end(terminal, end):
    assert terminal.is_full_screen() and terminal.screen.cursor.hidden
    (terminal.send if end == "\x03" else terminal.kill)(end)
    assert terminal.ends_in_order()


def test_screen_follows_the_window(terminal):
    for columns, lines, text in ((50, 10, " 1-7 of "), (30, 6, "Window too small: 40x8 needed"), (80, 24, READY)):
        terminal.setwinsize(lines, columns)
        terminal.screen.resize(lines, columns)
        terminal.see(text)


def test_script_that_started_the_agent_is_suspended_continued_and_ended_with_it(start, tmp_path):
    """As ./run starts it. The script stops at once when the terminal asks it to, the agent only after it has left
    the screen; continued in between, it would stop a second time, unnoticed."""
    (tmp_path / "start").write_text(f"sleep 1000 &\n'{AGENT}'\nkill $!\n")
    shell = start(Terminal, "bash", "--norc", shows="ready$")
    shell.run_line(f"sh {tmp_path}/start", "> Solo Mode")
    for key, selected in 2 * [(END, "> " + READY), (HOME, "> Solo Mode")]:
        shell.suspend()
        shell.run_line("fg", "Solo Mode")
        shell.type(key, selected)
    shell.suspend()
    shell.run_line("bg", "ready$")  # in the background there is no screen
    assert wait_until(shell.is_suspended)
    shell.run_line("fg", "> Solo Mode")
    shell.suspend()
    started = psutil.Process(shell.pid).children(recursive=True)
    shell.sendline("kill %1")
    assert not psutil.wait_procs(started, timeout=20)[1]
    shell.sendline("exit")
    assert shell.ends_in_order()


def test_suspended_agent_that_crashes_leaves_the_screen_to_the_shell(start):
    shell = start(Terminal, "bash", "--norc", shows="ready$")
    shell.run_line(f"'{AGENT}'", "> Solo Mode")
    shell.suspend()
    shell.run_line(r"printf '\e[?1049h'; kill -ABRT %1; fg", "Aborted")  # as after the start of an editor
    assert shell.is_full_screen()


@pytest.mark.parametrize("environment, unicode, colour",
                         [({}, True, True), ({"NO_COLOR": "1"}, True, False), ({"LC_ALL": "C"}, False, True)])
def test_screen_uses_what_the_terminal_can_show_and_the_user_wants(start, environment, unicode, colour):
    terminal = start(Terminal, **environment)
    assert ("▸" in terminal.draw()) == unicode
    terminal.type("/standard\r", "> (x) Standard-Surround (not available)")
    cells = [cell for line in terminal.screen.buffer.values() for cell in line.values()]
    assert any(cell.fg == "red" for cell in cells) == colour


def test_dumb_terminals_and_pipes_get_plain_text(start):
    terminal = start(Terminal, TERM="dumb")
    assert not terminal.is_full_screen()
    terminal.type("choose Solo Mode > Exclusive (XOR)\n", "changed Solo Mode > Exclusive (XOR): on")
    terminal.sendline("quit")
    assert terminal.ends_in_order()
    assert start(Terminal, "sh", "-c", f"echo quit | '{AGENT}' | grep '{READY}'").ends_in_order()
