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
    silent = False  # GTK (3.24) keeps the accessibles of boxes that have closed, and complains when they are read

    def setUp(self):
        super().setUp()
        if subprocess.run([PYTHON, "-c", "import gi; gi.require_version('Atspi', '2.0')"], check=False,
                          stderr=subprocess.DEVNULL).returncode != 0:
            (self.fail if os.environ.get("CI") == "true" else self.skipTest)("The bindings of AT-SPI are missing.")
        bus = subprocess.Popen(["dbus-daemon", "--session", "--print-address", "--nofork"], text=True,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(bus.wait)
        self.addCleanup(bus.terminate)
        self.addCleanup(bus.stdout.close)
        self.bus = {"DBUS_SESSION_BUS_ADDRESS": bus.stdout.readline().strip(), "NO_AT_BRIDGE": "0", "GTK_A11Y": "1"}

    def walk(self, *words):
        return subprocess.run([PYTHON, WALKER, "tidyfold-driven", *words], env=self.window.environment, check=True,
                              text=True, stdout=subprocess.PIPE, timeout=120).stdout

    def wait_told(self, what, condition):
        """Until the tree, which follows the window, says so."""
        for _ in range(30):
            try:
                tree = json.loads(self.walk("--json"))
            except subprocess.CalledProcessError:
                continue  # the bus has not answered in time
            if condition(tree):
                return tree
        self.fail("Not told: " + what)

    def test_window_question_and_run_are_told_and_a_tick_ticks(self):
        self.make_store(400)
        window = self.open(**self.bus)
        # The tick's own action ticks this folder and no other; what the rules refuse stays unticked.
        for folder, then in (("Inbox", ["Inbox"]), ("Notes", ["Inbox", "Notes"]), ("Notes", ["Inbox"])):
            self.walk("--toggle", folder)
            window.wait(f"{folder} by its tick", lambda state: [
                text.split(" - ")[0] for text in ticked(state)] == then)
        self.walk("--toggle", "Deleted Items")
        window.answer("Deleted Items")
        self.assertEqual([text.split(" - ")[0] for text in ticked(window.state())], ["Inbox"])
        window.click_at(window.node("Inbox")["rectangle"])
        window.click_row(2)
        row = window.wait("the row", lambda state: state["row"] == 2 and state["focus"] == "grdItems")
        texts = [" ".join(text.split()) for text in row["grid"][1]["texts"][2:] if text]
        tree = self.wait_told("the row", lambda tree: found(tree, name="row 2 of"))
        told = found(tree, name="row 2 of")[0]
        self.assertIn("focused", told["states"])
        self.assertTrue(told["name"].startswith(", ".join(texts)), told["name"])
        self.assertTrue(told["name"].endswith(f"row 2 of {row['rows']}"), told["name"])
        for role, name in (("panel", "Columns: Goes, Type"), ("status bar", "Total Selected"), ("text", "Cut-off date"),
                           ("text", "Subject begins with"), ("text", "Find in list"), ("menu", "Options"),
                           ("check box", "Permanent Delete"), ("push button", "Clean")):
            self.assertTrue(found(tree, role, name), f"{role} {name}")
        inbox = [cell["states"] for cell in found(tree, "table cell", "Inbox ")]
        self.assertEqual(["checked" in states for states in inbox], [True, False], "the tick, and then the text")
        window.click("cmdRun")
        window.box("identified for cleaning")
        self.wait_told("the review", lambda tree: [
            window for window in found(tree, "dialog") if "modal" in window["states"] and
            found(window, "label", "identified for cleaning")])
        window.answer("identified for cleaning")
        window.box("moved to the")
        self.wait_told("the summary", lambda tree: found(tree, name="were moved to the"))
        window.answer("moved to the")
        self.wait_for_rest()
        self.quit()


if __name__ == "__main__":
    unittest.main()
