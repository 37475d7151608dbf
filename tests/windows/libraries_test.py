#!/usr/bin/env python3
"""A program that needs a library of the compiler's runs on the machine that built it, and on no other; and without its
resources it is no program of Windows'."""

import re
import subprocess
import sys

# What every Windows since 7 brings along.
SYSTEM = {name + ".dll" for name in """advapi32 comctl32 comdlg32 gdi32 gdiplus kernel32 msimg32 msvcrt ole32 oleacc
    oleaut32 rpcrt4 shell32 shlwapi user32 userenv uxtheme version wininet winmm winspool ws2_32 bcrypt""".split()}
SYSTEM.add("winspool.drv")


def main():
    wrong = 0
    for program in sys.argv[1:]:
        headers = subprocess.run(["x86_64-w64-mingw32-objdump", "-p", program], check=True, capture_output=True,
                                 text=True).stdout
        needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", headers)}
        if not needed:
            sys.exit(f"{program}: no imports were found; was it read at all?")
        for name in sorted(needed - SYSTEM):
            print(f"{program} needs {name}", file=sys.stderr)
            wrong += 1
        resources = subprocess.run(["x86_64-w64-mingw32-windres", program], capture_output=True, text=True).stdout
        print(resources[:3000]) #XX
        if not program.endswith(".exe"):
            continue
        resources = subprocess.run(["x86_64-w64-mingw32-windres", program], check=True, capture_output=True,
                                   text=True).stdout + open(program, "rb").read().decode("latin-1")
        has_window = program.endswith("tidyfold.exe")
        for resource in ("Common-Controls", "PerMonitorV2", "VERSIONINFO", 'VALUE "ProductVersion", "',
                         *(["RT_GROUP_ICON"] if has_window else [])):
            if resource not in resources:
                print(f"{program}: {resource} is missing in its resources", file=sys.stderr)
                wrong += 1
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()
