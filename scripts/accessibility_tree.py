#!/usr/bin/env python3
"""Prints what a screen reader is told by a program on the desktop's bus: one line per object, indented, with its
role, its name and its states. With --toggle NAME, does the tick's own action in the tree's row NAME instead.

    accessibility_tree.py PROGRAM [--json] [--toggle NAME]
"""

import argparse
import json
import sys
import warnings

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

warnings.simplefilter("ignore", DeprecationWarning)
TOLD = {Atspi.StateType.FOCUSED: "focused", Atspi.StateType.CHECKED: "checked", Atspi.StateType.EXPANDED: "expanded",
        Atspi.StateType.SELECTED: "selected", Atspi.StateType.ACTIVE: "active", Atspi.StateType.MODAL: "modal"}
MOST_CHILDREN = 60  # of one object; a list may have a million


def find_program(name):
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        program = desktop.get_child_at_index(index)
        if program is not None and program.get_name() == name:
            return program
    return None


def describe(accessible):
    states = accessible.get_state_set()
    described = {"role": accessible.get_role_name(), "name": accessible.get_name() or "",
                 "states": [word for state, word in TOLD.items() if states.contains(state)], "children": []}
    if not states.contains(Atspi.StateType.ENABLED):
        described["states"].append("disabled")
    return described


def walk(accessible, shown_only=True):
    described = describe(accessible)
    for index in range(min(accessible.get_child_count(), MOST_CHILDREN)):
        child = accessible.get_child_at_index(index)
        if child is None:
            continue
        if shown_only and not child.get_state_set().contains(Atspi.StateType.SHOWING) and child.get_role() not in (
                Atspi.Role.MENU, Atspi.Role.MENU_ITEM, Atspi.Role.CHECK_MENU_ITEM, Atspi.Role.RADIO_MENU_ITEM):
            continue
        described["children"].append(walk(child, shown_only))
    return described


def lines(described, depth=0):
    states = " (" + ", ".join(described["states"]) + ")" if described["states"] else ""
    yield "  " * depth + described["role"] + ' "' + described["name"].replace("\n", " ") + '"' + states
    for child in described["children"]:
        yield from lines(child, depth + 1)


def toggle(accessible, name):
    """Whether the object that can be toggled, and whose name begins so, was found and has done it."""
    actions = accessible.get_action_iface()
    if actions and (accessible.get_name() or "").startswith(name + " "):
        for number in range(actions.get_n_actions()):
            if Atspi.Action.get_action_name(actions, number) == "toggle":
                return Atspi.Action.do_action(actions, number)
    children = (accessible.get_child_at_index(at) for at in range(min(accessible.get_child_count(), MOST_CHILDREN)))
    return any(toggle(child, name) for child in children if child is not None)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--json", action="store_true")
    parser.add_argument("--toggle", metavar="NAME")
    arguments = parser.parse_args()
    program = find_program(arguments.program)
    if program is None:
        sys.exit(f"No program {arguments.program} is told of on this bus.")
    if arguments.toggle:
        sys.exit(0 if toggle(program, arguments.toggle) else f"Nothing named {arguments.toggle} can be toggled.")
    tree = walk(program)
    print(json.dumps(tree) if arguments.json else "\n".join(lines(tree)))


if __name__ == "__main__":
    main()
