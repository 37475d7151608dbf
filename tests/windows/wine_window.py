"""Drives tidyfold-driven.exe under Wine on a virtual screen by mouse and keyboard."""

import json
import os
import pathlib
import shutil
import subprocess
import tempfile
import time

PATIENCE = 90  # seconds, for anything that is waited for
SCREEN = "1280x900"


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Wine_Window:
    def __init__(self, wine, program, arguments=(), screenshots=None, prepare=None):
        self.wine = str(wine)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tidyfold-wine-"))
        self.state_file = self.folder / "state.json"
        self.screenshots = pathlib.Path(screenshots) if screenshots else None
        self.children = []
        self.last_state = {}
        read, write = os.pipe()
        self.start(["Xvfb", "-displayfd", str(write), "-screen", "0", SCREEN + "x24", "-nolisten", "tcp"],
                   pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as told:
            display = told.readline().strip()
        # A prefix of its own: one that was started without a screen shows no windows later.
        self.environment = dict(os.environ, DISPLAY=":" + display, WINEPREFIX=str(self.folder / "wine"),
                                TIDYFOLD_WINDOW_STATE=windows_path(self.state_file))
        self.run("wineboot", "--init")
        # In a Wine desktop the keyboard focus follows Windows' rules, not a window manager's.
        for key, name, value in ((r"HKCU\Software\Wine\Explorer", "Desktop", "Tests"),
                                 (r"HKCU\Software\Wine\Explorer\Desktops", "Tests", SCREEN)):
            self.run("reg", "add", key, "/v", name, "/d", value, "/f")
        subprocess.run(["wineserver", "--wait"], env=self.environment, check=True)  # the desktop comes with the next
        self.give_fonts()
        if prepare:
            prepare(self.run, self.environment)
        with open(self.folder / "errors.txt", "wb") as errors:
            self.program = self.start([str(wine), str(program), *arguments], stderr=errors)

    def run(self, *words):
        """Runs one of Wine's programs to its end; returns its output."""
        return subprocess.run([self.wine, *map(str, words)], env=self.environment, check=True, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def give_fonts(self):
        """Links Wine's packaged fonts and a fallback for missing characters."""
        fonts = pathlib.Path(self.environment["WINEPREFIX"], "drive_c/windows/Fonts")
        for font in pathlib.Path("/usr/share/wine/fonts").glob("*.ttf"):
            if not (fonts / font.name).exists():
                (fonts / font.name).symlink_to(font)
        for name in ("Tahoma", "Tahoma Bold"):
            self.run("reg", "add", r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink", "/v", name,
                     "/t", "REG_MULTI_SZ", "/d", "DejaVuSans.ttf,DejaVu Sans", "/f")

    def quit(self):
        """Quits by keyboard; expects exit status 0 and no failed checks of the toolkit."""
        self.x("key", "ctrl+q")
        self.answer("Quit Tidyfold?", "alt+y")
        self.program.wait(60)
        complaints = (self.folder / "errors.txt").read_text(encoding="utf-8")
        assert self.program.returncode == 0 and '" failed.' not in complaints, (self.program.returncode, complaints)

    def start(self, command, **how):
        environment = getattr(self, "environment", dict(os.environ))
        child = subprocess.Popen(command, env=environment, **{"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL,
                                                              **how})
        self.children.append(child)
        return child

    def close(self):
        subprocess.run(["wineserver", "-k"], env=self.environment, check=False)
        for child in reversed(self.children):
            if child.poll() is None:
                child.terminate()
            child.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def x(self, *words, check=True):
        run = subprocess.run(["xdotool", *map(str, words)], env=self.environment, check=check, capture_output=True,
                             text=True)
        return run.stdout.strip()

    def wait(self, what, condition):
        """Waits until the condition is true and returns its value."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            found = condition()
            if found:
                return found
            if hasattr(self, "program") and self.program.poll() is not None:
                raise AssertionError(f"The program ended ({self.program.returncode}) before {what}.")
            time.sleep(0.05)
        self.picture("failed")
        raise AssertionError(f"There was never {what}. The last state: {json.dumps(self.state())[:3000]}")

    def state(self):
        """The last state that the program wrote; the file is missing for a moment while it is replaced."""
        try:
            self.last_state = json.loads(self.state_file.read_text(encoding="utf-8"))
        except (OSError, ValueError):
            pass
        return self.last_state

    def picture(self, name):
        if self.screenshots:
            self.screenshots.mkdir(parents=True, exist_ok=True)
            subprocess.run(["import", "-window", "root", self.screenshots / f"windows-{name}.png"],
                           env=self.environment, check=True)

    def click(self, rectangle, across=0.5):
        left, top, width, height = rectangle
        x = left + (width * across if across < 1 else across)
        self.x("mousemove", round(x), round(top + height / 2), "click", 1)

    def box(self, words):
        """Waits for a message box with these words to have the keyboard."""

        def there():
            boxes = self.state().get("boxes")
            return boxes and words in boxes[-1]
        self.wait(f'the box "{words}"', there)
        self.wait("its keyboard", lambda: self.state().get("keyboard") == "box")

    def answer(self, words, key="Return"):
        self.box(words)
        closed = self.state()["boxes_closed"]
        end = time.monotonic() + PATIENCE
        while self.state().get("boxes_closed") == closed and time.monotonic() < end:
            self.x("key", key)
            pause = time.monotonic() + 1
            while self.state().get("boxes_closed") == closed and time.monotonic() < pause:
                time.sleep(0.05)
        assert self.state()["boxes_closed"] > closed, f'The box "{words}" was never closed.'

    def tick_option(self, name):
        widget = self.wait(f"{name}, usable", lambda: self.widget(name))
        was = widget["checked"]
        self.click(widget["rectangle"], 8)
        self.wait(f"{name}, turned", lambda: (self.widget(name) or {}).get("checked") == (not was))

    def widget(self, name):
        widget = self.state().get("widgets", {}).get(name)
        return widget if widget and widget["enabled"] else None

    def node(self, name):
        return next((node for node in self.state().get("tree", []) if node["text"].startswith(name + " ")), None)

    def tick_folder(self, name):
        node = self.wait(f"the folder {name}", lambda: self.node(name))
        left, top, width, height = node["rectangle"]
        # The check box is left of the text.
        self.click((left, top, width, height), 12)
        self.wait(f"{name}, ticked", lambda: self.node(name)["checked"])
