#!/usr/bin/env python3
"""Takes the pictures of the Windows book from the built window, under Wine.

    windows_pictures.py WINE PROGRAMS OUT

WINE starts Wine, PROGRAMS is the folder with tidyfold-driven.exe and tidyfold-cli.exe; OUT is filled with PNG files.
"""

import pathlib
import sqlite3
import subprocess
import sys
import tempfile
import time

HOME = pathlib.Path(__file__).resolve().parents[1]
sys.path += [str(HOME / "scripts"), str(HOME / "tests" / "windows")]
from wine_window import Wine_Window, windows_path  # noqa: E402


class Pictures(Wine_Window):
    def __init__(self, wine, programs, store, out):
        self.out = out
        super().__init__(wine, programs / "tidyfold-driven.exe", [store], out)

    def whole(self, name):
        self.picture(name)
        return self.screenshots / f"windows-{name}.png"

    def keep(self, whole, name, rectangle):
        x, y, width, height = rectangle
        subprocess.run(["convert", whole, "-crop", f"{width}x{height}+{x}+{y}", "+repage", "-strip", "-dither", "None",
                        "-colors", "250", f"PNG8:{self.out / name}.png"], check=True)
        whole.unlink()

    def protection(self):
        node = self.node("Family")["rectangle"]
        self.click_at(node, 60)
        self.key("ctrl+k")
        self.tick_folder("Inbox")
        self.click_at(node, 60, button=3)
        time.sleep(1)  # the window tells nothing while a menu is open
        for _ in range(4):
            self.xdotool("key", "Down", "sleep", "0.2")
        x, y, width, _ = self.state()["widgets"]["trvFolders"]["rectangle"]
        self.keep(self.whole("protection"), "protection", (x - 8, y - 92, width + 300, 560))
        self.xdotool("key", "Escape")
        self.keyboard("window")

    def flagged(self):
        self.tick_folder("Sent Items")
        self.click_at(self.node("Sent Items")["rectangle"], 60)
        self.wait("rows that go", lambda state: any(row["texts"][-1] == "will go" for row in state["grid"]))
        x, y, *_ = self.state()["widgets"]["grdItems"]["rectangle"]
        self.keep(self.whole("flagged"), "flagged", (x, y, 666, 232))


def main():
    wine, programs, out = sys.argv[1], pathlib.Path(sys.argv[2]), pathlib.Path(sys.argv[3])
    with tempfile.TemporaryDirectory() as folder:
        store = pathlib.Path(folder) / "Family mail.tidyfold"
        subprocess.run([wine, programs / "tidyfold-cli.exe", "sample", windows_path(store), "--items", "3000"], check=True,
                       stdout=subprocess.DEVNULL)
        # The invented items have no flags.
        with sqlite3.connect(store) as file:
            file.execute("UPDATE item SET flag = 2 WHERE position % 4 = 1 AND class = 43")
        file.close()
        with Pictures(wine, programs, store, out) as window:
            window.answer("All Folders Loaded")
            for take in (window.protection, window.flagged):
                take()


if __name__ == "__main__":
    main()
