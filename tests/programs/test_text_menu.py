"""The terminal agent with plain lines: what it answers to commands that it cannot carry out."""

import os

from harness.studio import FACILITIES


def test_each_command_that_is_not_carried_out_has_a_reason(agent):
    for command, answer in (("choose \x1b[2J", 'no item "?[2J" in the menu'),
                            ("open Latency Compensation", 'no item "Latency Compensation" in the menu'),  # hidden
                            ("open DAW Link Control", '"DAW Link Control" is not a submenu'),
                            (8192 * "x" + "quit", "line too long: maximum 4096 bytes")):
        agent.say(command)
        agent.expect(answer)


def test_item_whose_name_is_like_a_path_is_chosen(agent):
    os.makedirs(FACILITIES + "/Ann\x7f > ex")
    agent.say("open Monitoring Facility")
    agent.choose("Monitoring Facility > Ann? > ex")
    agent.say("open Monitoring Facility")
    agent.expect("(x) Ann? > ex")
