"""The terminal agent with plain lines, beside the simulated host."""

from harness.studio import setting
from harness.processes import wait_until


def test_choice_is_saved_and_reaches_the_host(host, agent):
    agent.choose("Solo Mode > Exclusive (XOR)")
    host.expect("SoloMode 1")
    assert wait_until(lambda: setting("SoloMode") == "1")
