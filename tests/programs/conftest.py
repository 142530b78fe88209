"""Tests of whole programs, in a private namespace for each file. KEST_PROGRAMS is the folder of the programs."""

import contextlib

import pytest

from harness.studio import Agent, Host, fresh_home


@pytest.fixture(autouse=True)
def _home():
    fresh_home()


@pytest.fixture
def start():
    """Starts programs, start(Host) or start(Agent), that end with the test."""
    with contextlib.ExitStack() as running:
        yield lambda kind, *arguments, **options: running.enter_context(kind(*arguments, **options))


@pytest.fixture
def host(start):
    return start(Host)


@pytest.fixture
def agent(start):
    return start(Agent)
