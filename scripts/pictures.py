#!/usr/bin/env python3
"""Takes the pictures of README and guide from the built window, on a sample store in a screen of its own.

    pictures.py PROGRAMS OUT [NAME...]

PROGRAMS is the folder with tidyfold-driven and tidyfold-cli; OUT is filled with PNG files. Without names: all.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parent))
from window_session import Session  # noqa: E402

HOME = pathlib.Path("/home/anna")  # shows in titles and dialogs
LARGE_TEXT = {"GDK_DPI_SCALE": "1.75"}


class Pictures:
    def __init__(self, programs, out):
        self.programs, self.out = pathlib.Path(programs), pathlib.Path(out)
        self.out.mkdir(parents=True, exist_ok=True)
        HOME.mkdir()

    def cli(self, *words):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("XDG_")}
        subprocess.run([self.programs / "tidyfold-cli", *map(str, words)], check=True, stdout=subprocess.DEVNULL,
                       env=environment | {"HOME": str(HOME)})

    def store(self, name, items):
        file = HOME / (name + ".tidyfold")
        if not file.exists():
            self.cli("sample", file, "--items", items, "--name", name)
        return file

    def open(self, store, screen="1280x900", maximize=False, **environment):
        shutil.rmtree(HOME / "config", ignore_errors=True)
        window = Session(self.programs / "tidyfold-driven", [store], screen=screen, folder=HOME,
                         environment=environment)
        window.answer("All Folders Loaded")
        window.wait("the keyboard", lambda state: state["keyboard"] == "window" and state["focus"])
        if maximize:
            wide, high = map(int, screen.split("x"))
            # The frame around it takes some.
            window.xdotool("getactivewindow", "windowsize", wide - 2, high - 24)
            window.xdotool("getactivewindow", "windowmove", "0", "0")
            time.sleep(0.5)
        return window

    def take(self, window, name):
        wide, high = window.screen.split("x")
        window.xdotool("mousemove", int(wide) - 2, int(high) - 2)
        time.sleep(0.4)
        whole = HOME / "whole.png"
        window.picture(whole)
        subprocess.run(["convert", str(whole), "-strip", "-dither", "None", "-colors", "230",
                        "PNG8:" + str(self.out / (name + ".png"))], check=True)

    def choose(self, window, preview=True):
        """The Inbox ticked, filters set, the frame on a row that goes."""
        window.key("ctrl+m")
        window.key("alt+t")
        window.wait("the date filter", lambda state: state["widgets"]["chkSelectDate"]["checked"])
        state = window.wait("rows", lambda state: state["rows"] > 5)
        goes = next((at for at, row in enumerate(state["grid"], 1) if row["texts"][1] == "1"), 2)
        window.click_row(goes)
        if preview:
            window.key("F9")
            window.wait("the preview", lambda state: "txtPreview" in state["widgets"] and
                        "\n\n" in state["widgets"]["txtPreview"]["text"])

    def ready(self, name, items=900, preview=True, **how):
        window = self.open(self.store("Family mail" if items < 10000 else "Archive", items), **how)
        with window:
            self.choose(window, preview=preview)
            self.take(window, name)

    # --- The pictures, by name

    def all(self):
        return {
            "ready": lambda: self.ready("ready"),
            "dark": lambda: self.ready("dark", GTK_THEME="Adwaita:dark"),
            "small": lambda: self.ready("small", screen="800x600", maximize=True),
            "tiny": lambda: self.ready("tiny", screen="640x480", maximize=True, preview=False),
            "notebook": lambda: self.ready("notebook", items=100000, screen="1366x768", maximize=True),
            "large": lambda: self.ready("large", items=100000, screen="2560x1440", maximize=True),
            "scaled": lambda: self.ready("scaled", screen="2560x1800", GDK_SCALE="2"),
            "large-text": lambda: self.ready("large-text", screen="1366x768", maximize=True, **LARGE_TEXT),
            "tiny-large-text": lambda: self.ready("tiny-large-text", screen="640x480", maximize=True, preview=False,
                                                  **LARGE_TEXT),
            "search": self.search, "by-row": self.by_row, "confirmation": self.confirmation,
            "view-menu": self.view_menu, "calendar-dark": self.calendar, "menus": self.options_menu,
        }

    def search(self):
        with self.open(self.store("Family mail", 900)) as window:
            self.choose(window, preview=False)
            window.key("ctrl+f")
            window.type("holloway")
            window.wait("fewer rows", lambda state: "shown" in state["widgets"]["lblFound"]["label"])
            self.take(window, "search")

    def by_row(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.click_at(window.node("Sent Items")["rectangle"])
            window.tick("chkSelectByRow")
            window.click_row(3)
            window.click_row(8, "shift")
            window.click_row(11, "ctrl")
            self.take(window, "by-row")

    def confirmation(self):
        with self.open(self.store("Family mail", 900)) as window:
            self.choose(window, preview=False)
            window.tick_folder("Sent Items")
            window.click("cmdRun")
            window.box("identified for cleaning")
            self.take(window, "confirmation")

    def view_menu(self):
        with self.open(self.store("Family mail", 900)) as window:
            self.choose(window, preview=False)
            window.key("alt+v")
            window.keyboard("menu")
            self.take(window, "view-menu")

    def options_menu(self):
        with self.open(self.store("Family mail", 900)) as window:
            self.choose(window, preview=False)
            window.key("alt+s")
            window.keyboard("menu")
            self.take(window, "menus")

    def calendar(self):
        with self.open(self.store("Family mail", 900), GTK_THEME="Adwaita:dark") as window:
            self.choose(window, preview=False)
            window.click("cmdCalendar")
            window.wait("the calendar", lambda state: "calCutoffDate" in state["widgets"])
            self.take(window, "calendar-dark")


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    pictures = Pictures(sys.argv[1], sys.argv[2])
    try:
        every = pictures.all()
        for name in sys.argv[3:] or every:
            every[name]()
            print(name, flush=True)
    finally:
        shutil.rmtree(HOME, ignore_errors=True)


if __name__ == "__main__":
    main()
