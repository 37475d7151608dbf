#!/usr/bin/env python3
"""The installer installs everything where it is told, brings it up to date there, says by its exit status what went
wrong, and the uninstaller removes exactly what it brought."""

import os
import pathlib
import shutil
import subprocess
import sys
import time

NOT_WRITTEN, RUNNING, NO_COMPANION = 2, 3, 4
UNINSTALL_KEY = r"\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tidyfold"
COMPANION_KEY = r"\Software\Classes\TidyDll.TidyMAPIUtils"
MENU = "Microsoft/Windows/Start Menu/Programs/Tidyfold.lnk"


def main():
    wine, prefix, installer = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    drive = prefix / "drive_c"
    person = next((drive / "users").glob("[!P]*"))

    def run(*words, status=0, **how):
        done = subprocess.run([wine, *words], **how)
        assert done.returncode == status, f"{words} ended with {done.returncode}, not {status}"

    def has_key(key):
        return subprocess.run([wine, "reg", "query", key, "/reg:64"], capture_output=True).returncode == 0

    def wait(what, condition):
        end = time.monotonic() + 60
        while not condition():
            assert time.monotonic() < end, f"Waited in vain for {what}."
            time.sleep(0.1)

    def check(installed, place, root="HKLM"):
        menu = drive / "ProgramData" if root == "HKLM" else person / "AppData/Roaming"
        files = ["tidyfold.exe", "tidyfold-cli.exe", "TidyDll.dll", "Tidyfold20.chm", "tidyfoldhelp/index.html",
                 "uninstall.exe"]
        found = {name: (place / name).is_file() for name in files}
        found |= {"start menu": (menu / MENU).is_file(), "uninstall key": has_key(root + UNINSTALL_KEY),
                  "companion": has_key(root + COMPANION_KEY)}
        wrong = [name for name, there in found.items() if there != installed]
        assert not wrong, f"{'missing' if installed else 'left'}: {wrong}"
        other = "HKCU" if root == "HKLM" else "HKLM"
        for key in (UNINSTALL_KEY, COMPANION_KEY):
            assert not has_key(other + key), f"{other + key} is there, too"

    def uninstall(place, windows_place, root="HKLM"):
        run(windows_place + r"\uninstall.exe", "/S")
        # The uninstaller continues in a copy of itself; it removes the key last.
        wait("the end of the uninstaller", lambda: not has_key(root + UNINSTALL_KEY))
        check(False, place, root)

    usual = drive / "Program Files/Tidyfold"
    elsewhere, windows_elsewhere = drive / "Elsewhere/Tidyfold", r"C:\Elsewhere\Tidyfold"
    own = elsewhere / "my store.tidyfold"
    try:
        # What cannot be written is told, and nothing counts as installed.
        (elsewhere / "Tidyfold20.chm").mkdir(parents=True)
        run(installer, "/S", rf"/D={windows_elsewhere}", status=NOT_WRITTEN)
        (elsewhere / "Tidyfold20.chm").rmdir()
        assert not has_key("HKLM" + UNINSTALL_KEY)

        # The companion cannot be registered where the system's own program for that is missing.
        without = {**os.environ, "WINEPREFIX": str(prefix), "WINEDEBUG": "-all", "LC_ALL": "C.UTF-8",
                   "WINEDLLOVERRIDES": "mscoree,mshtml,regsvr32.exe="}
        done = subprocess.run(["wine", installer, "/S", rf"/D={windows_elsewhere}"], env=without)
        assert done.returncode == NO_COMPANION, done.returncode

        # Again, where it is; what an older version left goes, a person's own does not.
        stale = elsewhere / "tidyfoldhelp/of-an-older-version.html"
        for file in (stale, own):
            file.write_text("mine")
        run(installer, "/S")
        check(True, elsewhere)
        assert not stale.exists() and not usual.exists()
        run(windows_elsewhere + r"\tidyfold-cli.exe", "--version")

        # While it runs, nothing is replaced, nor removed.
        before = (elsewhere / "tidyfold.exe").stat().st_mtime_ns
        running = subprocess.Popen([wine, windows_elsewhere + r"\tidyfold.exe", "--store", r"C:\none.tidyfold"])
        try:
            wait("Tidyfold to run", lambda: "tidyfold.exe" in subprocess.run(
                [wine, "wmic", "process", "get", "name"], capture_output=True).stdout.decode("utf-16", "replace"))
            run(installer, "/S", status=RUNNING)
            run(windows_elsewhere + r"\uninstall.exe", "/S", rf"_?={windows_elsewhere}", status=RUNNING)
            check(True, elsewhere)
            assert (elsewhere / "tidyfold.exe").stat().st_mtime_ns == before
        finally:
            subprocess.run([wine, "taskkill", "/f", "/im", "tidyfold.exe"], capture_output=True)
            running.wait()

        uninstall(elsewhere, windows_elsewhere)
        assert own.read_text() == "mine", "A person's own file went with the program."

        # For one person; settings that a person made stay.
        run("reg", "add", r"HKCU\Software\Tidyfold\Protected Folders", "/v", "x", "/d", "y", "/f", capture_output=True)
        run(installer, "/S", "/CurrentUser")
        place = person / "AppData/Local/Programs/Tidyfold"
        check(True, place, "HKCU")
        uninstall(place, rf"C:\users\{person.name}\AppData\Local\Programs\Tidyfold", "HKCU")
        assert has_key(r"HKCU\Software\Tidyfold\Protected Folders")
    finally:
        # What a failure leaves would be taken for an installation the next time.
        for key in (r"HKCU\Software\Tidyfold\Protected Folders", "HKLM" + UNINSTALL_KEY, "HKCU" + UNINSTALL_KEY):
            subprocess.run([wine, "reg", "delete", key, "/f", "/reg:64"], capture_output=True)
        if (drive / "Elsewhere").is_dir():
            shutil.rmtree(drive / "Elsewhere")


if __name__ == "__main__":
    main()
