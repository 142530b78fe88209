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
