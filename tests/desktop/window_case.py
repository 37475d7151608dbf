"""The built window on a store of its own, and what that store holds."""

import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import tempfile
import unittest

from window_session import Session

# How the toolkit and what it stands on begin their messages.
COMPLAINT = re.compile(r"(Gtk|Gdk|GLib|Pango|Atk)[A-Za-z-]*-(CRITICAL|WARNING)|^In pixman_")
PROGRAMS = pathlib.Path(os.environ["TIDYFOLD_PROGRAMS"])


def ticked(state):
    return [node["text"] for node in state["tree"] if node["checked"]]


def options_on(state):
    return {name[3:] for name, widget in state["widgets"].items() if widget.get("checked")}


def under_way(state):
    return state["to_do"] > 0


class Window_Case(unittest.TestCase):
    silent = True  # whether the toolkit has to be, on standard error

    def setUp(self):
        for tool in ("Xvfb", "openbox", "xdotool"):
            if not shutil.which(tool):
                (self.fail if os.environ.get("CI") == "true" else self.skipTest)(tool + " is not installed.")
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tidyfold-window-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.store = self.folder / "sample.tidyfold"
        self.window = None
        self.screen = "1280x900"
        self.addCleanup(self.check_output)

    def check_output(self):
        """The toolkit has nothing new to complain of."""
        if not self.silent:
            return
        output = self.folder / "output.txt"
        said = output.read_text(errors="replace").splitlines() if output.exists() else []
        self.assertEqual({re.sub(r".*\*\*: [0-9:.]+ ", "", line) for line in said if COMPLAINT.search(line)}, set())

    def cli(self, *words):
        """On the test's store, with the log of runs that the window has."""
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        return subprocess.run([PROGRAMS / "tidyfold-cli", *map(str, words)], check=True, stdout=subprocess.PIPE,
                              env=environment | {"HOME": str(self.folder)}).stdout.decode()

    def make_store(self, items):
        self.cli("sample", self.store, "--items", items, "--name", "Sample")

    def content(self):
        """Folder, subject, class and unread of every item, by EntryID."""
        items = self.cli("--store", self.store, "items", "--folder", "/", "--sub-folders", "--unread", "--json")
        return {item["entry_id"]: tuple(item[name] for name in ("folder", "subject", "class", "unread"))
                for item in json.loads(items)}

    def open(self, named=True, wait=True, **environment):
        """On the store or, if not named, on what was open last. Waits until everything is loaded."""
        self.window = Session(PROGRAMS / "tidyfold-driven", [self.store] if named else [], folder=self.folder,
                              environment=environment, screen=self.screen)
        self.addCleanup(self.window.close)
        if wait:
            self.window.answer("All Folders Loaded")
        return self.window

    def quit(self):
        self.assertEqual(self.window.quit(), 0)
        self.window.close()

    def wait_for_total(self, total):
        return self.window.wait(f"a total of {total}", lambda state: (state["panels"][2] + " ").startswith(
            f"Total Selected:  {total} "))

    def wait_for_rest(self):
        return self.window.wait("rest", lambda state: not state["boxes"] and
                                state["widgets"]["cmdRun"]["label"] == "&Clean")

    def key_in_the_middle(self, what, condition, key):
        """Stops the program when the condition holds until the key is pressed; returns that state."""
        state = self.window.wait(what, lambda now: now["keyboard"] == "window" and condition(now))
        self.window.program.send_signal(signal.SIGSTOP)
        self.window.xdotool("key", key)
        self.window.program.send_signal(signal.SIGCONT)
        return state
