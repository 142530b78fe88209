"""The agent full screen: keys and mouse events are written to a pseudoterminal, and a terminal emulator draws the output."""

import fcntl
import os
import pty
import signal
import termios

import psutil
import pyte
import pytest

from harness.processes import Program, wait_until
from harness.studio import program, setting

AGENT = program("kest-settings-terminal")
CURSOR_KEY_ALONE = 34  # set by terminfo's entry `screen` whenever the cursor is shown
ALTERNATE_SCREEN = 1049 << 5
DOWN, HOME, END, ENTER, SUSPEND = "\x1b[B", "\x1b[H", "\x1b[F", "\r", "\x1a"


class Terminal(Program):
    """A program in a terminal of 80x24."""

    def __init__(self, *command, **environment):
        self.screen = pyte.Screen(80, 24)
        self.stream = pyte.ByteStream(self.screen)
        self.keys, self.tty = pty.openpty()
        os.set_blocking(self.keys, False)
        self.resize(80, 24)
        self.modes = self._modes()
        super().__init__(command or [AGENT], stdin=self.tty, stdout=self.tty, stderr=self.tty, start_new_session=True,
                         preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0),
                         env={**os.environ, "TERM": "screen", "LC_ALL": "C.UTF-8", "PS1": "ready$ ", **environment})

    def __exit__(self, *_):
        if self.status(0) is None:
            for child in psutil.Process(self.pid).children(recursive=True):
                child.kill()
        super().__exit__()
        os.close(self.keys)
        os.close(self.tty)

    def _modes(self):
        return termios.tcgetattr(self.tty), self.screen.mode - {CURSOR_KEY_ALONE}

    def press(self, keys):
        os.write(self.keys, keys.encode())

    def command(self, line):
        """Has the shell run a line, with the screen empty."""
        self.draw()
        self.screen.erase_in_display(2)
        self.press(line + "\r")

    def resize(self, columns, lines):
        termios.tcsetwinsize(self.tty, (lines, columns))
        self.screen.resize(lines, columns)

    def draw(self):
        """Returns what the screen shows now."""
        try:
            while output := os.read(self.keys, 65536):
                self.stream.feed(output)
        except BlockingIOError:
            pass
        return "\n".join(line.rstrip() for line in self.screen.display)

    def see(self, text):
        assert wait_until(lambda: text in self.draw()), f"no {text!r} on the screen:\n{self.draw()}"

    def is_full_screen(self):
        self.draw()
        return ALTERNATE_SCREEN in self.screen.mode

    def is_stopped(self):
        """Waits until all that a shell has started is stopped, and the screen is the shell's."""
        def is_so():
            started = psutil.Process(self.pid).children(recursive=True)
            return started and all(process.status() == psutil.STATUS_STOPPED for process in started)
        return wait_until(is_so) and not self.is_full_screen()

    def is_in_order(self):
        """Waits for the program's end: cursor, mouse, keys, screen and the terminal's modes are as before."""
        assert wait_until(lambda: (self.draw(), self.process.poll())[1] is not None)
        self.draw()
        return self._modes() == self.modes


@pytest.fixture
def terminal(start):
    agent = start(Terminal)
    agent.see("Quit Kest Settings")
    return agent


@pytest.fixture
def shell(start):
    terminal = start(Terminal, "bash", "--norc", "--noprofile")
    terminal.see("ready$")
    return terminal


def test_choices_by_keys_and_mouse_reach_the_file_and_the_host(host, terminal):
    terminal.press(ENTER)
    terminal.see("> (x) Latch")
    terminal.press(DOWN + " ")
    host.expect("SoloMode 1")
    assert setting("SoloMode") == "1"
    terminal.see("> (x) Exclusive (XOR)")
    terminal.press("\x1b[M &\"")  # column 5, line 1
    host.expect("SoloMode 0")
    terminal.see("> (x) Latch")

    terminal.press("/dialog")
    terminal.see("no item holds this")
    host.say("bus add bus-1 Dialog")
    terminal.see("> Default Bus > Dialog")
    terminal.see("K3DHost: 2 buses, changed ")
    terminal.press(ENTER)
    terminal.see("> ( ) Dialog")
    terminal.see("\nbus 1 : Dialog\n")  # what is printed has its line on the screen
    terminal.press(ENTER)
    host.expect("(id bus-1)")
    host.say("stop")
    terminal.see("no K3DHost, 2 buses")
    terminal.press("q")
    assert terminal.is_in_order()


@pytest.mark.parametrize("end", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP, signal.SIGSEGV, signal.SIGABRT, "\x03"])
def test_terminal_is_in_order_after_each_end(terminal, end):
    assert terminal.is_full_screen()
    assert terminal.screen.cursor.hidden
    if isinstance(end, str):
        terminal.press(end)
    else:
        terminal.signal(end)
    assert terminal.is_in_order()


def test_screen_follows_the_window(terminal):
    terminal.resize(50, 10)
    terminal.see(" 1-7 of ")
    terminal.resize(30, 6)
    terminal.see("Window too small: 40x8 needed")
    terminal.resize(80, 24)
    terminal.see("Quit Kest Settings")


def test_agent_is_suspended_and_continued_or_ended(shell):
    shell.command(f"'{AGENT}'")
    shell.see("Quit Kest Settings")
    shell.press(SUSPEND)
    shell.see("Stopped")
    assert not shell.is_full_screen()
    shell.command("fg")
    shell.see("Quit Kest Settings")
    assert shell.is_full_screen()
    shell.press("/default bus\r\r")
    shell.see("> (x) Main Bus")
    shell.press(SUSPEND)
    shell.see("Stopped")
    shell.command("kill %1")
    assert wait_until(lambda: not psutil.Process(shell.pid).children())
    shell.command("exit")
    assert shell.is_in_order()


def test_script_that_started_the_agent_is_suspended_and_continued_with_it(shell):
    """As ./run starts it. The script stops at once when the terminal asks it to, the agent only after it has left
    the screen; continued in between, it would stop a second time, unnoticed."""
    with open("/tmp/start", "w", encoding="utf-8") as script:
        script.write(f"sleep 1000 &\n'{AGENT}'\nkill $!\n")
    shell.command("sh /tmp/start")
    shell.see("> Solo Mode")
    for key, selected in 2 * [(END, "> Quit Kest Settings"), (HOME, "> Solo Mode")]:
        shell.press(SUSPEND)
        shell.see("Stopped")
        assert shell.is_stopped()
        shell.command("fg")
        shell.press(key)
        shell.see(selected)
    shell.press(SUSPEND)
    shell.see("Stopped")
    shell.command("bg")
    assert shell.is_stopped(), "there is no screen in the background"
    shell.command("fg")
    shell.see("> Solo Mode")
    shell.press("q")
    shell.see("ready$")
    shell.command("exit")
    assert shell.is_in_order()


def test_progress_moves_while_the_menu_is_open(start, terminal):
    terminal.press("/encoding history\r\r")
    terminal.see("Kest Settings > Encoding History")
    start(Program, [program("encoder-simulator"), "--output", "/tmp/out/Film/Film_Mix_Atm.wav", "--seconds", "2",
                    "--steps", "4"])
    terminal.see("█░")
    terminal.see("█] 100%")
    assert "░" not in terminal.draw()


@pytest.mark.parametrize("environment, unicode, colour",
                         [({}, True, True), ({"NO_COLOR": "1"}, True, False), ({"LC_ALL": "C"}, False, True)])
def test_screen_uses_what_the_terminal_can_show_and_the_user_wants(start, environment, unicode, colour):
    terminal = start(Terminal, **environment)
    terminal.see("Quit Kest Settings")
    assert ("▸" in terminal.draw()) == unicode
    terminal.press("/standard\r")
    terminal.see("> (x) Standard-Surround (not available)")
    cells = [cell for line in terminal.screen.buffer.values() for cell in line.values()]
    assert any(cell.fg == "red" for cell in cells) == colour


def test_dumb_terminals_and_pipes_get_plain_text(start):
    terminal = start(Terminal, TERM="dumb")
    terminal.see("Quit Kest Settings")
    assert not terminal.is_full_screen()
    terminal.press("choose Solo Mode > Exclusive (XOR)\r")
    terminal.see("changed Solo Mode > Exclusive (XOR): on")
    terminal.press("quit\r")
    assert terminal.is_in_order()
    terminal = start(Terminal, "sh", "-c", f"echo quit | '{AGENT}' | grep Quit.Kest")
    terminal.see("Quit Kest Settings")
    assert terminal.is_in_order()
