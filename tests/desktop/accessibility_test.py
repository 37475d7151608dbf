"""What a screen reader is told, through a session bus of the test's own."""

import json
import os
import pathlib
import subprocess
import unittest

from window_case import Window_Case, ticked

PYTHON = "/usr/bin/python3"  # the distribution's, for which it has the bindings
WALKER = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "accessibility_tree.py"


def found(tree, role=None, name=None):
    """Every object of the tree with this role, and with this text in its name."""
    here = [tree] if (role is None or tree["role"] == role) and (name is None or name in tree["name"]) else []
    return here + [hit for child in tree["children"] for hit in found(child, role, name)]


class Accessibility(Window_Case):
    def setUp(self):
        super().setUp()
        if subprocess.run([PYTHON, "-c", "import gi; gi.require_version('Atspi', '2.0')"], check=False,
                          stderr=subprocess.DEVNULL).returncode != 0:
            (self.fail if os.environ.get("CI") == "true" else self.skipTest)("The bindings of AT-SPI are missing.")
        self.bus = subprocess.Popen(["dbus-daemon", "--session", "--print-address", "--nofork"], text=True,
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(self.bus.wait)
        self.addCleanup(self.bus.terminate)
        self.address = self.bus.stdout.readline().strip()
        self.addCleanup(self.bus.stdout.close)

    def open_told(self):
        return self.open(DBUS_SESSION_BUS_ADDRESS=self.address, NO_AT_BRIDGE="0", GTK_A11Y="1")

    def walk(self, *words):
        return subprocess.run([PYTHON, WALKER, "tidyfold-driven", *words], env=self.window.environment, check=True, text=True,
                              stdout=subprocess.PIPE, timeout=120).stdout

    def tree(self):
        return json.loads(self.walk("--json"))

    def wait_told(self, what, condition):
        """Until the tree says so; it follows the window."""
        for _ in range(30):
            tree = self.tree()
            if condition(tree):
                return tree
        self.fail("Not told: " + what)

    def test_window_question_and_run_are_told(self):
        self.make_store(400)
        window = self.open_told()
        window.tick_folder("Inbox")
        window.click_row(2)
        row = window.wait("the row", lambda state: state["row"] == 2 and state["focus"] == "grdItems")
        texts = [" ".join(text.split()) for text in row["grid"][1]["texts"][2:] if text]
        tree = self.wait_told("the row", lambda tree: found(tree, name="row 2 of"))
        told = found(tree, name="row 2 of")[0]
        self.assertIn("focused", told["states"])
        self.assertTrue(told["name"].startswith(", ".join(texts)), told["name"])
        self.assertTrue(found(tree, name="Columns: Goes, Type"), "the headers")
        self.assertTrue(found(tree, "status bar", "Total Selected"), "the status line")
        for role, name in (("text", "Cut-off date"), ("text", "Subject begins with"), ("text", "Find in list"),
                           ("check box", "Permanent Delete"), ("push button", "Clean"), ("menu", "Options")):
            self.assertTrue(found(tree, role, name), f"{role} {name}")
        # The Inbox and its tick stand in one row of the tree.
        self.assertTrue(any("checked" in cell["states"] for row in found(tree, "table cell") if any(
            text["name"].startswith("Inbox ") for text in row["children"]) for cell in row["children"]))
        window.click("cmdRun")
        window.box("identified for cleaning")
        tree = self.wait_told("the review", lambda tree: found(tree, "dialog"))
        self.assertTrue(found(tree, name="identified for cleaning"))
        window.answer("identified for cleaning")
        window.box("moved to the")
        self.wait_told("the summary", lambda tree: found(tree, name="were moved to the"))
        window.answer("moved to the")
        self.wait_for_rest()
        self.quit()


if __name__ == "__main__":
    unittest.main()
