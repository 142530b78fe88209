"""Tests of whole programs, in a private namespace for each file. KEST_PROGRAMS is the folder of the programs."""

import pytest

from harness.studio import Agent, Host, fresh_home


@pytest.fixture(autouse=True)
def _home():
    fresh_home()


@pytest.fixture
def host(start):
    return start(Host)


@pytest.fixture
def agent(start):
    return start(Agent)
