"""The command lines of all programs: --help, --version, and the one line after a mistake."""

import os

import pytest

from harness.studio import FIFO, agents, run

INSPECT, CTL, HOST, ENCODER = "kest-inspect", "kest-settings-ctl", "k3dhost-simulator", "encoder-simulator"
INTERVAL = "--interval: expected a number of milliseconds from 10"
MISTAKES = [  # program, arguments, reason
    *[(name, *mistake) for name in agents()
      for mistake in (("--verbose", "'--verbose'"), ("--version,extra", "'extra'"), ("-v", "'-v'"))],
    *[(name, "--output,/tmp/a,--verbose", "--verbose") for name in (INSPECT, CTL, HOST, ENCODER)],
    *[(INSPECT, "watch,--interval," + wrong, INTERVAL)
      for wrong in ("9", "60001", "20x", "0x20", "99999999999", "2e1", "", " 20")],
    (INSPECT, "", "session, watch or doctor"),
    (INSPECT, "sessions", "'sessions'"),
    (INSPECT, "doctor,--for,1", "--for are only valid with watch"),
    (INSPECT, "watch,--for", "--for: expected one value"),
    (CTL, "", "expected menu, get, choose or watch"),
    (CTL, "choose", "choose requires a PATH"),
    (CTL, "watch,Solo", "unexpected argument 'Solo'"),
    (CTL, "get,Solo,--yes", "--yes is only valid with choose"),
    (CTL, "menu,--timeout,0", "--timeout: expected a number of seconds from 1"),
    (ENCODER, "--output,", "--output: expected a path"),
    (ENCODER, "--output,/tmp/a,--type,a b", "--type: expected one word"),
    (ENCODER, "--output,/tmp/a,--seconds,nan", "--seconds: expected a number of seconds from 0 to 86400"),
    (ENCODER, "--output,/tmp/a,--fail-at,101", "--fail-at: expected a percentage from 0 to 100"),
    (ENCODER, "--output,/tmp/a,--fail-at,10,--silent-at,10", "excludes"),
    (ENCODER, "--output," + 4000 * "a", "4000 bytes"),  # a relative path
]


@pytest.mark.parametrize("name, arguments, reason", MISTAKES)
def test_mistake_is_one_line_and_has_no_effect(name, arguments, reason):
    status, output, errors = run(name, *(arguments.split(",") if arguments else ()))
    assert (status, output) == (2, "")
    assert errors.startswith(name + ": ") and reason in errors and errors.index("\n") == len(errors) - 1
    assert not os.path.exists("/tmp/a")


@pytest.mark.parametrize("name", [*agents(), INSPECT, CTL, HOST, ENCODER])
def test_help_and_version_are_answered_and_nothing_is_started(name):
    for option in ("--help", "--version") if name in agents() else ("--help",):
        status, output, errors = run(name, option)
        assert (status, errors) == (0, "")
        assert name + " " in output and (option == "--help" or output.index("\n") == len(output) - 1)
    assert not os.listdir("/tmp/home") and not os.path.exists(FIFO)
