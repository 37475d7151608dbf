#!/usr/bin/env python3
"""The window on a store file, from tick to summary, the store afterwards, and help."""

import json
import pathlib
import subprocess
import sys
import tempfile

from wine_window import Wine_Window, windows_path

SITE = "http://help.invalid"


def counts(wine, cli, store):
    """Items by folder, from the command line."""
    run = subprocess.run([wine, cli, "--store", windows_path(store), "folders", "--json"], check=True,
                         capture_output=True, text=True)
    return {folder["path"]: folder["items"] for folder in json.loads(run.stdout)}


def ask_for_help(window, browsed):
    def in_front(what):
        window.wait(f"{what} in front", lambda: window.state().get("keyboard") == what)
    # The book opens in the system's viewer, which draws no pages under Wine.
    in_front("window")
    window.x("key", "F1")
    in_front("other")
    window.picture("help-book")
    window.x("key", "alt+F4")
    in_front("window")
    # Wine has no page engine, so the system's browser is used.
    window.x("key", "ctrl+h")
    window.answer(f"opens in your Web browser:\r\n{SITE}/tidyfoldhelp/index.html")
    window.wait("the page in the browser", lambda: browsed.exists() and browsed.read_text().strip())
    assert browsed.read_text() == f"{SITE}/tidyfoldhelp/index.html\n"
    window.x("key", "alt+h", "a")
    window.wait("About", lambda: window.state()["beside"].get("frmAbout", {}).get("title") == "About Tidyfold")
    in_front("box")
    window.picture("about")
    window.x("key", "Return")
    in_front("window")


def main():
    wine, programs, screenshots = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    cli = programs / "tidyfold-cli.exe"
    with tempfile.TemporaryDirectory() as folder:
        store = pathlib.Path(folder) / "Privé store.tidyfold"
        subprocess.run([wine, cli, "sample", windows_path(store), "--items", "600"], check=True,
                       stdout=subprocess.DEVNULL)
        before = counts(wine, cli, store)
        inbox = next(path for path in before if path.endswith("Inbox"))
        deleted = next(path for path in before if path.endswith("Deleted Items"))
        assert before[inbox] > 0

        browser, browsed = pathlib.Path(folder) / "browser", pathlib.Path(folder) / "browsed"
        browser.write_text(f'#!/bin/sh\necho "$@" >>{browsed}\n')
        browser.chmod(0o755)

        def prepare(run, environment):
            environment["TIDYFOLD_SITE"] = SITE
            run("reg", "add", r"HKCU\Software\Wine\WineBrowser", "/v", "Browsers", "/d", browser, "/f")

        window = Wine_Window(wine, programs / "tidyfold-driven.exe", ["--store", windows_path(store)], screenshots, prepare)
        try:
            window.answer("All Folders Loaded")
            window.picture("ready")
            window.tick_folder("Inbox")
            run = window.wait("the button", lambda: window.widget("cmdRun"))
            window.click(run["rectangle"])
            window.box("identified for cleaning")
            window.picture("confirmation")
            window.answer("identified for cleaning", "Escape")
            # Esc on the review begins no run: the log below has one.
            run = window.wait("the button again", lambda: not window.state()["boxes"] and window.widget("cmdRun"))
            window.click(run["rectangle"])
            window.answer("identified for cleaning")
            window.answer("were moved to the \"Deleted Items\" folder")
            window.wait("rest", lambda: not window.state()["boxes"]
                        and window.state()["widgets"]["cmdRun"]["label"] == "&Clean"
                        and window.state()["focus"] == "trvFolders")
            window.picture("cleaned")
            ask_for_help(window, browsed)
            window.quit()
            # The window and the command line share one log of runs.
            assert list(window.folder.glob("wine/drive_c/users/*/AppData/Local/Tidyfold/runs.sqlite"))
            logged = json.loads(window.run(cli, "runs", "--json"))
        finally:
            window.close()

        after = counts(wine, cli, store)
        moved = before[inbox] - after[inbox]
        assert moved > 0 and after[deleted] == before[deleted] + moved, (before, after)
        assert [(run["state"], run["processed"]) for run in logged] == [("ended", moved)], logged
        others = set(before) - {inbox, deleted}
        assert {path: after[path] for path in others} == {path: before[path] for path in others}
        print(f"{moved} items of the Inbox were moved.")


if __name__ == "__main__":
    main()
