#!/usr/bin/env python3
"""The window on a store file, from tick to summary, and what it leaves in the store."""

import json
import pathlib
import subprocess
import sys
import tempfile

from wine_window import Wine_Window, windows_path


def counts(wine, cli, store):
    """Items by folder, as the command line tells them."""
    run = subprocess.run([wine, cli, "--store", windows_path(store), "folders", "--json"], check=True,
                         capture_output=True, text=True)
    return {folder["path"]: folder["items"] for folder in json.loads(run.stdout)}


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

        window = Wine_Window(wine, programs / "tidyfold.exe", ["--store", windows_path(store)], screenshots)
        try:
            window.answer("All Folders Loaded")
            window.picture("ready")
            window.tick_folder("Inbox")
            run = window.wait("the button", lambda: window.widget("cmdRun"))
            window.click(run["rectangle"])
            window.box("identified for cleaning")
            window.picture("confirmation")
            window.answer("identified for cleaning")
            window.answer("were moved to the \"Deleted Items\" folder")
            window.wait("rest", lambda: not window.state()["boxes"]
                        and window.state()["widgets"]["cmdRun"]["label"] == "&Clean")
            window.picture("cleaned")
            window.x("key", "ctrl+q")
            window.answer("Quit Tidyfold?", "alt+y")
            window.program.wait(60)
            assert window.program.returncode == 0, window.program.returncode
        finally:
            window.close()

        after = counts(wine, cli, store)
        moved = before[inbox] - after[inbox]
        assert moved > 0 and after[deleted] == before[deleted] + moved, (before, after)
        others = set(before) - {inbox, deleted}
        assert {path: after[path] for path in others} == {path: before[path] for path in others}
        print(f"{moved} items of the Inbox were moved.")


if __name__ == "__main__":
    main()
