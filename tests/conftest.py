import contextlib

import pytest

from harness.studio import SessionBus


@pytest.fixture
def start():
    """Starts programs, start(Host) or start(Agent), that end with the test."""
    with contextlib.ExitStack() as running:
        yield lambda kind, *arguments, **options: running.enter_context(kind(*arguments, **options))


@pytest.fixture
def bus(start):
    return start(SessionBus)
