#!/usr/bin/env python3
"""Takes the pictures of README and guide from the built window, on a sample store in a screen of its own.

    pictures.py PROGRAMS OUT [NAME...]

PROGRAMS is the folder with tidyfold-driven and tidyfold-cli; OUT is filled with PNG files. Without names: all.
"""

import datetime
import functools
import http.server
import os
import pathlib
import shutil
import subprocess
import sys
import threading
import time

sys.path.append(str(pathlib.Path(__file__).resolve().parent))
from window_session import TICK_BOX, Session  # noqa: E402

HOME = pathlib.Path("/home/anna")  # shows in titles and dialogs
FRAME_TOP, FRAME_BOTTOM = 20, 2  # pixels that the window manager adds
LARGE_TEXT = {"GDK_DPI_SCALE": "1.75"}


def mail(subject, day, sender="Anna Holloway", flag="", mozilla="0000"):
    """A message of an mbox, read."""
    return (f"From - Fri Jul 03 10:00:00 2015\nX-Mozilla-Status: {mozilla}\nStatus: RO\nX-Status: {flag}\n"
            f"From: {sender} <mail@example.org>\nSubject: {subject}\nMessage-ID: <{subject.replace(' ', '.')}@x>\n"
            f"Date: {datetime.date.fromisoformat(day):%a, %d %b %Y} 12:00:00 +0000\n\nHello\n\n")


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

    def take(self, window, name, part=None, still=True):
        """All of the screen, a part of it as left, top, width and height, or what changes all the time."""
        whole = HOME / "whole.png"
        if still:
            wide, high = window.screen.split("x")
            window.xdotool("mousemove", int(wide) - 2, int(high) - 2)
            time.sleep(0.4)
            window.picture(whole)
        else:
            subprocess.run(["import", "-window", "root", str(whole)], env=window.environment, check=True)
        if part:
            crop = ["-crop", "{2}x{3}+{0}+{1}".format(*part)]
        else:  # what the screen has around the window
            crop = ["-bordercolor", "black", "-border", "1", "-trim"]
        subprocess.run(["convert", str(whole), *crop, "+repage", "-strip", "-dither", "None", "-colors", "230",
                        "PNG8:" + str(self.out / (name + ".png"))], check=True)

    def take_front(self, window, name):
        """The box or window in front, with its frame."""
        def answer(*words):
            return subprocess.run(["xdotool", *words], env=window.environment, check=True,
                                  stdout=subprocess.PIPE).stdout.decode()
        place = dict(line.split("=") for line in answer("getactivewindow", "getwindowgeometry", "--shell").split())
        left, top, wide, high = (int(place[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))
        # xdotool adds the frame to the place twice.
        self.take(window, name, (left - 2, top - 2 * FRAME_TOP, wide + 2, high + FRAME_TOP + FRAME_BOTTOM))

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
            "about": self.about, "item": self.item, "runs": self.runs, "loading": self.loading,
            "whats-this": self.whats_this, "help-browser": self.help_browser,
            "help-browser-unreachable": lambda: self.help_browser("help-browser-unreachable", reachable=False),
            "protection": self.protection, "import": self.import_report, "export": self.export,
            "flagged": self.flagged, "keep-copy": self.keep_copy, "compact": self.compact,
            # The last: its run is killed, which the next window would tell.
            "run": self.run,
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

    def about(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.key("alt+h")
            window.key("a", "menu")
            window.wait("About", lambda state: "About" in str(state["beside"]))
            self.take(window, "about")

    def whats_this(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.key("shift+F1")
            window.wait("the pointer that asks", lambda state: state["pointer_asks"])
            window.click("chkTurbo")
            window.wait("its topic", lambda state: "Turbo" in state["beside"]["frmHelpViewer"]["title"])
            time.sleep(1)
            self.take(window, "whats-this")

    def help_browser(self, name="help-browser", reachable=True):
        pages = functools.partial(http.server.SimpleHTTPRequestHandler, directory=str(self.programs))
        with http.server.ThreadingHTTPServer(("127.0.0.1", 0), pages) as server:
            if reachable:
                threading.Thread(target=server.serve_forever, daemon=True).start()
            else:
                server.server_close()
            with self.open(self.store("Family mail", 900),
                           TIDYFOLD_SITE=f"http://127.0.0.1:{server.server_port}") as window:
                window.key("ctrl+h")
                window.wait("the window", lambda state: "frmHelpBrowser" in state["beside"])
                time.sleep(4)
                self.take(window, name)
            if reachable:
                server.shutdown()

    def item(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.click_row(4)
            window.key("Return")
            window.keyboard("other")
            self.take(window, "item")

    def runs(self):
        store = self.store("Cleaned mail", 900)
        for folder in ("Notes", "Sent Items"):
            self.cli("--store", store, "clean", "--folder", folder, "--yes")
        with self.open(store) as window:
            window.key("ctrl+l")
            window.wait("the runs", lambda state: state["beside"]["frmRuns"]["widgets"]["grdRunItems"]["rows"] > 0)
            self.take(window, "runs")

    def loading(self):
        self.store("Archive", 100000)
        shutil.rmtree(HOME / "config", ignore_errors=True)
        with Session(self.programs / "tidyfold-driven", [HOME / "Archive.tidyfold"], screen="1280x900",
                     folder=HOME) as window:
            window.wait("a half of it", lambda state: state["shown"] and state["done"] > state["to_do"] // 10)
            self.take(window, "loading", still=False)

    def run(self):
        store = self.store("Archive to clean", 100000)
        with self.open(store) as window:
            window.tick("chkPermanentDelete")
            window.tick_folder("Inbox")
            window.click("cmdRun")
            window.answer("identified for cleaning")
            window.answer("Permanently delete items in selected folders?", "alt+y")
            window.wait("a part of it", lambda state: state["to_do"] and state["done"] > state["to_do"] // 4)
            self.take(window, "run", still=False)

    def protection(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.click_at(window.node("Family -")["rectangle"])
            window.key("ctrl+k")
            window.click_at(window.node("Inbox")["rectangle"])
            window.key("ctrl+b")
            rectangle = window.node("Family -")["rectangle"]
            window.click_at(rectangle, button=3)
            window.keyboard("menu")
            self.take(window, "context-menu")
            self.take(window, "protection", (0, 58, 560, 540))

    def import_report(self):
        mbox = HOME / "Holidays.mbox"
        mbox.write_text("".join(mail(f"Photo {at}", "2015-07-03", mozilla="0008" if at in (9, 10) else "0000")
                                for at in range(12)) + "From - Fri Jul 03 10:30:00 2015\nFrom: anna@exam")
        with self.open(self.store("Family mail", 900)) as window:
            window.key("ctrl+i")
            window.wait("the dialog", lambda state: state["keyboard"] not in ("window", "menu"))
            window.xdotool("type", str(mbox))
            time.sleep(1)
            window.xdotool("key", "Return")
            window.wait("the report", lambda state: "dialog" in state["beside"] and state["keyboard"] == "box")
            window.xdotool("key", "Tab", "Tab", "space")
            self.take_front(window, "import")

    def export(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.key("ctrl+e")
            window.wait("the dialog", lambda state: "Export_Dialog" in state["beside"] and state["keyboard"] == "box")
            self.take_front(window, "export")

    def flagged(self):
        mbox = HOME / "Old mail.mbox"
        mbox.write_text("".join(mail(*fields) for fields in (
            ("Photos of the garden", "2014-12-31"), ("Invoice 2207", "2015-01-09", "Peter Lund", "F"),
            ("Re: Photos of the garden", "2015-01-18"), ("Your books are due", "2015-01-27", "Town library"),
            ("Insurance policy", "2015-02-05", "Peter Lund", "F"), ("Dinner on Friday", "2015-02-14", "Marta Reis"),
            ("New opening hours", "2015-02-23", "Town library"), ("Re: Dinner on Friday", "2015-03-04", "Marta Reis"))))
        store = HOME / "Letters.tidyfold"
        self.cli("--store", store, "import", mbox)
        with self.open(store) as window:
            window.click_at(window.node("Old mail -")["rectangle"])
            window.key("ctrl+m")
            state = window.wait("rows that go", lambda state: sum(row["texts"][1] == "1" for row in state["grid"]) == 6)
            left, top, wide, _ = state["widgets"]["grdItems"]["rectangle"]
            self.take(window, "flagged", (left, top, wide, 245))

    def keep_copy(self):
        with self.open(self.store("Family mail", 900)) as window:
            window.tick("chkPermanentDelete")
            window.click_at(window.usable("chkKeepCopy")["rectangle"], TICK_BOX)
            window.wait("the question where", lambda state: "Where to keep the copies" in state["boxes"])
            time.sleep(2)
            window.xdotool("key", "Return")
            window.wait("the tick", lambda state: state["widgets"]["chkKeepCopy"]["checked"])
            window.keyboard("window")
            time.sleep(1)
            window.tick_folder("Notes")
            window.click("cmdRun")
            window.box("identified for cleaning")
            self.take_front(window, "keep-copy")

    def compact(self):
        store = self.store("Old archive", 30000)
        self.cli("--store", store, "clean", "--folder", "Inbox", "--sub-folders", "--permanent", "--yes")
        with self.open(store) as window:
            window.key("alt+f")
            window.key("c", "menu")
            window.wait("the end", lambda state: state["keyboard"] == "box" and not state["beside"])
            time.sleep(2)
            self.take_front(window, "compact")


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
