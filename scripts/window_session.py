"""Runs build/bin/tidyfold-driven on a virtual screen by mouse and keyboard, for pictures and measurements."""

import json
import os
import pathlib
import subprocess
import tempfile
import time


class Session:
    """A window on one or more stores. Ends with its `with` block."""

    def __init__(self, program, stores=(), screen="1280x900", environment=None):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tidyfold-session-"))
        self.state_file = self.folder / "window.json"
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("XDG_", "GTK_", "GDK_", "WAYLAND_"))}
        self.environment |= {"HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder / "config"),
                             "NO_AT_BRIDGE": "1", "GDK_BACKEND": "x11",
                             "TIDYFOLD_WINDOW_STATE": str(self.state_file)} | (environment or {})
        reading, writing = os.pipe()
        self.processes = [subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", screen + "x24", "-nolisten", "tcp"],
            pass_fds=[writing], stderr=subprocess.DEVNULL)]
        os.close(writing)
        with os.fdopen(reading) as pipe:
            self.environment["DISPLAY"] = ":" + pipe.readline().strip()
        ready = self.folder / "managed"
        self.processes.append(self._start(["openbox", "--sm-disable", "--startup", f"touch '{ready}'"]))
        self._until("the window manager", ready.exists)
        command = [str(program)]
        for store in stores:
            command += ["--store", str(store)]
        self.program = self._start(command)
        self.processes.append(self.program)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
            process.wait()
        subprocess.run(["rm", "-rf", str(self.folder)], check=True)

    def _start(self, command):
        return subprocess.Popen(command, env=self.environment, stdout=subprocess.DEVNULL,
                                stderr=subprocess.DEVNULL)

    @staticmethod
    def _until(what, condition, patience=120):
        end = time.monotonic() + patience
        while not (held := condition()):
            if time.monotonic() > end:
                raise TimeoutError("Waited in vain for " + what)
            time.sleep(0.01)
        return held

    def state(self):
        try:
            return json.loads(self.state_file.read_text(errors="replace"))
        except FileNotFoundError:
            return None

    def wait(self, what, condition):
        return self._until(what, lambda: (state := self.state()) and condition(state) and state)

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, check=True)

    def click_at(self, x, y, button=1):
        self.xdotool("mousemove", x, y, "click", button)

    def middle(self, control):
        x, y, width, height = self.wait(control, lambda state: control in state["widgets"])["widgets"][control][
            "rectangle"]
        return x + width // 2, y + height // 2

    def tick(self, option):
        x, y, _, height = self.wait(option, lambda state: state["widgets"][option]["enabled"])["widgets"][option][
            "rectangle"]
        self.click_at(x + 8, y + height // 2)

    def folder_at(self, name):
        state = self.wait("the folder " + name, lambda now: any(
            node["text"].startswith(name + " ") for node in now.get("tree", [])))
        return next(node["rectangle"] for node in state["tree"] if node["text"].startswith(name + " "))

    def tick_folder(self, name):
        x, y, _, height = self.folder_at(name)
        self.click_at(x + 8, y + height // 2)

    def click_row(self, row, key=None, button=1):
        x, y, width, height = self.wait("row", lambda state: len(state["grid"]) >= row)["grid"][row - 1]["rectangle"]
        if key:
            self.xdotool("keydown", key)
        self.click_at(x + width // 2, y + height // 2, button)
        if key:
            self.xdotool("keyup", key)

    def answer(self, words, key="Return"):
        closed = self.wait("a box that says " + words, lambda state: state["boxes"] and
                           words in state["boxes"][-1])["boxes_closed"]
        self.wait("the box's keyboard", lambda state: state["keyboard"] == "box")
        self.xdotool("key", key)
        self.wait("the box to go", lambda state: state["boxes_closed"] > closed)

    def picture(self, path):
        """The whole screen, once it stands still."""
        last = None
        for _ in range(20):
            subprocess.run(["import", "-window", "root", str(path)], env=self.environment, check=True)
            now = pathlib.Path(path).read_bytes()
            if now == last:
                return
            last = now
            time.sleep(0.15)
