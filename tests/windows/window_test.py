#!/usr/bin/env python3
"""The window on a store file, from tick to summary, the store afterwards, and help."""

import json
import pathlib
import re
import sqlite3
import subprocess
import sys
import tempfile

from window_session import PATIENCE
from wine_window import Wine_Window, windows_path

SITE = "http://help.invalid"


def ask_for_help(window, browsed):
    # The book opens in the system's viewer, which draws no pages under Wine.
    window.key("F1")
    window.keyboard("other")
    window.picture("help-book")
    window.key("alt+F4", "other")
    # Wine has no page engine, so the system's browser is used.
    window.key("ctrl+h")
    window.answer(f"opens in your Web browser:\r\n{SITE}/tidyfoldhelp/index.html")
    window.wait("the page in the browser", lambda _: browsed.exists() and
                browsed.read_text() == f"{SITE}/tidyfoldhelp/index.html\n")
    window.keyboard("window")
    window.xdotool("key", "alt+h", "a")
    window.wait("About", lambda state: state["beside"]["frmAbout"]["title"] == "About Tidyfold")
    window.keyboard("box")
    window.picture("about")
    window.key("Return", "box")
    window.keyboard("window")


def point_for_tooltips(window):
    """Windows shows the tip of what is right below the pointer, which in the tree and in the list is a part of it."""
    window.click_at(window.node("Outbox")["rectangle"], 50)
    window.wait("a list that leaves room", lambda state: 0 < len(state["grid"]) < 5)
    for part, tip in (("trvFolders", "Folder Tree - "), ("grdItems", "Items List - "), ("chkSelectUnread", "Remove unread")):
        x, y, width, height = window.usable(part)["rectangle"]
        window.move_to(x + width // 2, y + height - 12, part)
        window.xdotool("mousemove_relative", "1", "1")
        window.wait(f"the tooltip of {part}", lambda state: state["tooltip"].startswith(tip))


def move_to_another_monitor(window):
    """The panes keep their place in the window at another density, and come back with the first. Texts, rows, scroll
    bars and the window's frame would follow the density that the system tells, and Wine's stays the same; so heights
    are less exact."""
    def shape(state):
        return {name: state["widgets"][name]["rectangle"] for name in ("trvFolders", "grdItems", "cmdRun", "picSlider")}

    at_first = shape(window.state())
    first_row = window.state()["grid"][0]["rectangle"]
    corner = window.state()["widgets"]["panel"]["rectangle"]
    for density in (72, 96):
        draft = window.folder / "density"
        draft.write_text(str(density))
        draft.rename(str(window.state_file) + ".density")

        def follows(state):
            now, origin = shape(state), state["widgets"]["panel"]["rectangle"]
            return all(abs((now[name][side] - origin[side % 2] * (side < 2)) * 96 / density -
                           (at_first[name][side] - corner[side % 2] * (side < 2))) <= (12, 12, 12, 60)[side]
                       for name in at_first for side in range(4))
        window.wait(f"the window at {density} dots per inch", follows)
        if density == 72:
            window.picture("another-density")
    window.wait(f"the first row at {first_row}", lambda state: all(
        abs(state["grid"][0]["rectangle"][side] - first_row[side]) <= 2 for side in (1, 3)))


def ask_about_menus(window):
    """Entries of menus, those that cannot be chosen now too, by keys and by mouse, and none of them does anything."""
    def topics():
        return re.findall(r"navigate_url .*::/controls/(\w+)\.html", (window.folder / "output.txt").read_text(errors="replace"))

    for way, highlighted, topic in (("keys", "Tick the current folder and all", "mnuMarkBranch"),
                                    ("mouse", "Stop reading items", "mnuStopLoading")):
        before = window.state()["tree"]
        window.key("shift+F1")
        window.wait("the pointer that asks", lambda state: state["pointer_asks"] and state["captured"])
        if way == "keys":
            window.xdotool("key", "alt+o")
        else:
            x, y, *_ = window.state()["widgets"]["panel"]["rectangle"]
            window.xdotool("mousemove", x + 55, y - 10, "click", 1)
        for _ in range(10):
            if highlighted in (window.state() or {}).get("said", ""):
                break
            window.xdotool("key", "Down", "sleep", "0.2")
        window.wait(highlighted, lambda state: highlighted in state["said"])
        if way == "mouse":
            window.picture("whats-this-menu")
        window.xdotool("key", "Return")
        window.wait("the topic of " + topic, lambda _: topic in topics())
        window.keyboard("other")
        window.key("alt+F4", "other")
        window.keyboard("window")
        assert window.state()["tree"] == before
    assert topics() == ["mnuMarkBranch", "mnuStopLoading"], topics()


def add_deep_folders(store):
    """A thousand, each in the one before it, below Archive."""
    with sqlite3.connect(store) as file:
        folder = file.execute("SELECT id FROM folder WHERE name = 'Archive'").fetchone()[0]
        for depth in range(1000):
            folder = file.execute("INSERT INTO folder (parent, name, item_type) VALUES (?, ?, 0)",
                                  (folder, f"{depth}")).lastrowid
    file.close()


def main():
    wine, programs, screenshots = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]

    def cli(*words):
        return subprocess.run([wine, programs / "tidyfold-cli.exe", *words], check=True, capture_output=True,
                              text=True).stdout

    def counts(store):
        return {folder["path"]: folder["items"]
                for folder in json.loads(cli("--store", windows_path(store), "folders", "--json"))}

    with tempfile.TemporaryDirectory() as folder:
        store = pathlib.Path(folder) / "Privé store.tidyfold"
        cli("sample", windows_path(store), "--items", "600")
        add_deep_folders(store)
        expected = counts(store)
        assert len(expected) > 1000
        browser, browsed = pathlib.Path(folder) / "browser", pathlib.Path(folder) / "browsed"
        browser.write_text(f'#!/bin/sh\necho "$@" >>{browsed}\n')
        browser.chmod(0o755)

        def begin(window):
            window.environment["TIDYFOLD_SITE"] = SITE
            window.environment["WINEDEBUG"] = "-all,trace+htmlhelp"
            window.run("reg", "add", r"HKCU\Software\Wine\WineBrowser", "/v", "Browsers", "/d", browser, "/f")

        with Wine_Window(wine, programs / "tidyfold-driven.exe", [store], screenshots, begin) as window:
            window.answer("All Folders Loaded")
            window.picture("ready")
            window.tick_folder("Inbox")
            # Esc on the review begins no run: the log below has one.
            for key in ("Escape", "Return"):
                window.click("cmdRun")
                window.box("identified for cleaning")
                window.picture("confirmation")
                window.answer("identified for cleaning", key)
                if key == "Escape":
                    window.wait("no box", lambda state: not state["boxes"])
            window.answer("were moved to the \"Deleted Items\" folder")
            window.wait("rest", lambda state: not state["boxes"] and state["focus"] == "trvFolders" and
                        state["widgets"]["cmdRun"]["label"] == "&Clean")
            window.picture("cleaned")
            move_to_another_monitor(window)
            point_for_tooltips(window)
            ask_about_menus(window)
            ask_for_help(window, browsed)
            # The session ends in the middle of a question, and nobody is asked anything more.
            window.click_at(window.node("Archive")["rectangle"], 60)
            window.key("ctrl+b")
            window.click("cmdRun")
            window.box("identified for cleaning")
            window.run("wineboot", "--end-session")
            window.program.wait(PATIENCE)
            # The window and the command line share one log of runs.
            assert list(window.folder.glob("wine/drive_c/users/*/AppData/Local/Tidyfold/runs.sqlite"))
            logged = json.loads(window.run(programs / "tidyfold-cli.exe", "runs", "--json"))
        moved = logged[0]["processed"]
        assert moved > 0 and [run["state"] for run in logged] == ["ended"], logged
        expected["Inbox"] -= moved
        expected["Deleted Items"] += moved
        assert counts(store) == expected
        print(f"{moved} items of the Inbox were moved.")


if __name__ == "__main__":
    main()
