#!/usr/bin/env python3
"""The installer installs everything, and the uninstaller removes exactly that."""

import pathlib
import subprocess
import sys
import time


def main():
    wine, prefix, installer = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    place = prefix / "drive_c/Program Files/Tidyfold"
    menu = prefix / "drive_c/ProgramData/Microsoft/Windows/Start Menu/Programs/Tidyfold.lnk"
    uninstall_key = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tidyfold"
    program_key = r"HKLM\Software\Classes\TidyDll.TidyMAPIUtils"

    def has_key(key):
        return subprocess.run([wine, "reg", "query", key, "/reg:64"], capture_output=True).returncode == 0

    def check(installed):
        files = ["tidyfold.exe", "tidyfold-cli.exe", "TidyDll.dll", "Tidyfold20.chm", "tidyfoldhelp/index.html",
                 "uninstall.exe"]
        found = {name: (place / name).is_file() for name in files}
        found["start menu"] = menu.is_file()
        found["uninstall key"] = has_key(uninstall_key)
        found["companion"] = has_key(program_key)
        wrong = [name for name, there in found.items() if there != installed]
        assert not wrong, f"{'missing' if installed else 'left'}: {wrong}"

    if place.exists():
        sys.exit(f"{place} is there before anything was installed.")
    subprocess.run([wine, installer, "/S"], check=True)
    check(True)
    own = place / "my store.tidyfold"
    own.write_text("mine")
    subprocess.run([wine, "C:\\Program Files\\Tidyfold\\tidyfold-cli.exe", "--version"], check=True)
    subprocess.run([wine, "C:\\Program Files\\Tidyfold\\uninstall.exe", "/S"], check=True)
    # The uninstaller continues in a copy of itself; it removes the key last.
    end = time.monotonic() + 60
    while has_key(uninstall_key) and time.monotonic() < end:
        time.sleep(0.1)
    check(False)
    assert own.read_text() == "mine", "A person's own file went with the program."
    own.unlink()
    place.rmdir()  # fails unless empty


if __name__ == "__main__":
    main()
