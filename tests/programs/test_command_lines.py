"""The command lines of all programs: --help, --version, and the one line after a mistake."""

import os
import time

import pytest

from harness.studio import FIFO, program, run

AGENTS = [name for name in ("kest-settings", "kest-settings-terminal", "kest-settings-appkit")
          if os.path.exists(program(name))]
INSPECT, CTL, HOST, ENCODER = "kest-inspect", "kest-settings-ctl", "k3dhost-simulator", "encoder-simulator"
INTERVAL = "--interval: expected a number of milliseconds from 10"
MISTAKES = [
    *[(name, *mistake) for name in AGENTS
      for mistake in (("--verbose", "'--verbose'"), ("--version extra", "'extra'"), ("-v", "'-v'"))],
    *[(name, "--output /tmp/a --verbose", "--verbose") for name in (INSPECT, CTL, HOST, ENCODER)],
    (INSPECT, "", "session, watch or doctor"),
    (INSPECT, "sessions", "'sessions'"),
    (INSPECT, "session watch", "watch"),
    (INSPECT, "doctor --for 1", "--for are for watch"),
    (INSPECT, "watch --for", "--for: expected one value"),
    *[(INSPECT, "watch --interval " + wrong, INTERVAL) for wrong in ("9", "60001", "20x", "0x20", "99999999999", "2e1")],
    (INSPECT, ["watch", "--interval", ""], INTERVAL),
    (INSPECT, ["watch", "--interval", " 20"], INTERVAL),
    (CTL, "", "expected menu, get, choose or watch"),
    (CTL, "choose", "choose requires a PATH"),
    (CTL, "watch Solo", "unexpected argument 'Solo'"),
    (CTL, "get Solo --yes", "--yes is for choose"),
    (CTL, "menu --timeout 0", "--timeout: expected a number of seconds from 1"),
    (HOST, "--check --scenario -", "--scenario excludes --check"),
    (ENCODER, "--steps 5", "--output is required"),
    (ENCODER, ["--output", ""], "--output: expected a path"),
    (ENCODER, ["--output", "/tmp/a", "--type", "a b"], "--type: expected one word"),
    (ENCODER, "--output /tmp/a --seconds nan", "--seconds: expected a number of seconds from 0 to 86400"),
    (ENCODER, "--output /tmp/a --fail-at 101", "--fail-at: expected a percentage from 0 to 100"),
    (ENCODER, "--output /tmp/a --fail-at 10 --silent-at 10", "excludes"),
    (ENCODER, "--output " + 4000 * "a", "4000 bytes"),  # a relative path
]


@pytest.mark.parametrize("name, arguments, reason", MISTAKES)
def test_mistake_is_one_line_and_has_no_effect(name, arguments, reason):
    status, output, errors = run(name, *(arguments.split() if isinstance(arguments, str) else arguments))
    assert (status, output) == (2, "")
    assert errors.startswith(name + ": ") and reason in errors
    assert errors.count("\n") == 1 and errors.endswith("\n")
    assert not os.path.exists("/tmp/a")


@pytest.mark.parametrize("name", [*AGENTS, INSPECT, CTL, HOST, ENCODER])
def test_help_and_version_are_answered_and_nothing_is_started(name):
    status, output, errors = run(name, "--help")
    assert (status, errors) == (0, "")
    assert name + " " in output
    if name in AGENTS:
        status, output, errors = run(name, "--version")
        assert (status, errors) == (0, "")
        assert output.startswith(name + " ") and output.count("\n") == 1
    assert not os.listdir(os.environ["HOME"]) and not os.path.exists(FIFO)


def test_numbers_are_decimal():
    start = time.monotonic()
    assert run(INSPECT, "watch", "--json", "--interval", "010", "--for", "01")[0] == 0
    assert time.monotonic() - start >= 1
