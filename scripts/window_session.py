"""Drives tidyfold-driven on a virtual screen by mouse and keyboard, for tests, pictures and measurements."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

PATIENCE = 60  # seconds, for anything that is waited for
TICK_BOX = 8  # pixels from the left edge of a check box or node
DOUBLE_CLICK = 0.5  # seconds; two presses at the same place of a widget count as one within them


class Session:
    """A window on one or more stores. Ends with its `with` block, or by close()."""

    launcher = []  # what starts the program, where it does not start by itself

    def __init__(self, program, stores=(), screen="1280x900", environment=None, folder=None):
        self.folder = pathlib.Path(folder or tempfile.mkdtemp(prefix="tidyfold-session-"))
        self.keeps_folder = folder is not None
        self.screen, self.processes, self.program = screen, [], None
        self.pressed = {}
        self.pixels = int((environment or {}).get("GDK_SCALE", 1))  # of the screen, across one that the program tells
        self.state_file = self.folder / "window.json"
        self.output = open(self.folder / "output.txt", "ab")
        # The person's theme, settings and screen stay out of it.
        self.environment = {name: value for name, value in os.environ.items()
                            if not name.startswith(("XDG_", "GTK_", "GDK_", "WAYLAND_"))}
        self.environment |= {"HOME": str(self.folder), "XDG_CONFIG_HOME": str(self.folder / "config"),
                             "NO_AT_BRIDGE": "1", "GDK_BACKEND": "x11",
                             "TIDYFOLD_WINDOW_STATE": self.path(self.state_file)} | (environment or {})
        self.state_file.unlink(missing_ok=True)
        try:
            reading, writing = os.pipe()
            self.start(["Xvfb", "-displayfd", str(writing), "-screen", "0", screen + "x24", "-nolisten", "tcp"],
                       pass_fds=[writing])
            os.close(writing)
            with os.fdopen(reading) as pipe:
                self.environment["DISPLAY"] = ":" + pipe.readline().strip()
            self.prepare()
            command = [*self.launcher, str(program)]
            for store in stores:
                command += ["--store", self.path(store)]
            self.program = self.start(command)
        except BaseException:
            self.close()
            raise

    def path(self, file):
        """A file's path as the program knows it."""
        return str(file)

    def prepare(self):
        """A window that opens before the window manager runs never gets the keyboard."""
        ready = self.folder / "managed"
        ready.unlink(missing_ok=True)
        self.start(["openbox", "--sm-disable", "--startup", f"touch '{ready}'"])
        end = time.monotonic() + PATIENCE
        while not ready.exists():
            assert time.monotonic() < end, "The window manager has not started."
            time.sleep(0.01)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.kill()
            process.wait()
        self.processes = []
        self.output.close()
        if not self.keeps_folder:
            shutil.rmtree(self.folder, ignore_errors=True)

    def start(self, command, **how):
        process = subprocess.Popen(command, env=self.environment, stdout=self.output, stderr=self.output, **how)
        self.processes.append(process)
        return process

    # --- What the window shows

    def state(self):
        """The last state that the program wrote; none before the first."""
        try:
            return json.loads(self.state_file.read_text(encoding="utf-8", errors="replace"))
        except (FileNotFoundError, PermissionError, ValueError):
            return None

    def wait(self, what, condition):
        """The first state for which the condition holds; it does not where something is not told."""
        end, state = time.monotonic() + PATIENCE, None
        while True:
            state = self.state() or state
            try:
                if state and condition(state):
                    return state
            except LookupError:
                pass
            ended = self.program.poll()
            if ended is not None or time.monotonic() > end:
                printed = (self.folder / "output.txt").read_text(errors="replace")[-2000:]
                raise AssertionError(f"Waited in vain for {what}. The program " + (
                    "is running" if ended is None else f"ended ({ended})") + f", has printed:\n{printed}\nand shows:\n"
                    + json.dumps(state)[:6000])
            time.sleep(0.01)

    def usable(self, control):
        return self.wait(control + ", usable", lambda state: state["widgets"][control]["enabled"])["widgets"][control]

    def node(self, name):
        """A node's text is its folder's name and, in parentheses, a count."""
        def nodes(state):
            return [node for node in state["tree"] if node["text"].startswith(name + " ")]
        return nodes(self.wait("the folder " + name, lambda state: nodes(state) and
                               state["widgets"]["trvFolders"]["enabled"]))[0]

    def keyboard(self, owner):
        """Waits until keys go to the window, a box, a menu, a file dialog, or another window."""
        return self.wait(f"the keyboard to be of: {owner}", lambda state: state["keyboard"] == owner)

    def box(self, words):
        """Waits for a message box with these words that has the keyboard."""
        return self.wait("a box that says " + words, lambda state: words in state["boxes"][-1] and
                         state["keyboard"] == "box")

    # --- What a person does

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *map(str, arguments)], env=self.environment, check=True)

    def key(self, key, owner="window"):
        self.keyboard(owner)
        self.xdotool("key", key)

    def type(self, text):
        self.keyboard("window")
        self.xdotool("type", text)

    def click_at(self, rectangle, across=None, button=1, times=1):
        """In the middle, or so many pixels from the left."""
        x, y, width, height = rectangle
        self.move_to(x + (width // 2 if across is None else across), y + height // 2, (width, height, across, button))
        if button == 1:
            self.xdotool("click", "--repeat", times, "--delay", 50, button)
        else:  # held for a while, as a person does: a menu stays open
            self.xdotool("mousedown", button, "sleep", 0.2, "mouseup", button)

    def move_to(self, x, y, place):
        """Before a press at this place of a widget, which is not to be the second of a double click."""
        time.sleep(max(0, self.pressed.get(place, 0) + DOUBLE_CLICK - time.monotonic()))
        self.pressed[place] = time.monotonic()
        self.xdotool("mousemove", x * self.pixels, y * self.pixels)

    def click(self, control):
        self.click_at(self.usable(control)["rectangle"])

    def tick(self, option):
        widget = self.usable(option)
        self.click_at(widget["rectangle"], TICK_BOX)
        self.wait(option + ", turned", lambda state: state["widgets"][option]["checked"] != widget["checked"])

    def tick_folder(self, name):
        node = self.node(name)
        self.click_at(node["rectangle"], TICK_BOX)
        self.wait(name + ", ticked", lambda state: any(
            now["text"].startswith(name + " ") and now["checked"] != node["checked"] for now in state["tree"]))

    def click_row(self, row, key=None, **how):
        state = self.wait(f"row {row}", lambda state: len(state["grid"]) >= row)
        if key:
            self.xdotool("keydown", key)
        self.click_at(state["grid"][row - 1]["rectangle"], **how)
        if key:
            self.xdotool("keyup", key)

    def press(self, words, key="Return"):
        """Presses a key in the box with these words; returns how many boxes had been closed before."""
        state = self.box(words)
        self.xdotool("key", key)
        return state["boxes_closed"]

    def answer(self, words, key="Return"):
        closed = self.press(words, key)
        self.wait("the box to go", lambda state: state["boxes_closed"] > closed)

    def quit(self):
        """By keyboard. Returns the exit status."""
        self.key("ctrl+q")
        self.press("Quit Tidyfold?", "alt+y")
        return self.program.wait(PATIENCE)

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
