#!/usr/bin/env python3
"""Fails when a program needs a library that Windows does not bring along, or lacks one of its resources."""

import re
import subprocess
import sys

# In every Windows since 7.
SYSTEM = {name + ".dll" for name in """advapi32 comctl32 comdlg32 gdi32 gdiplus kernel32 msimg32 msvcrt ole32 oleacc
    oleaut32 rpcrt4 shell32 shlwapi user32 userenv uxtheme version wininet winmm winspool ws2_32 bcrypt""".split()}
SYSTEM.add("winspool.drv")
RESOURCES = {"Common-Controls", "PerMonitorV2", "VERSIONINFO", 'VALUE "ProductVersion", "'}


def output_of(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


for program in sys.argv[1:]:
    needed = {name.lower() for name in re.findall(r"DLL Name: (\S+)", output_of("x86_64-w64-mingw32-objdump", "-p", program))}
    assert needed, f"{program}: no imports were found"
    assert needed <= SYSTEM, f"{program} needs {needed - SYSTEM}"
    if program.endswith(".exe"):
        stack = re.search(r"SizeOfStackReserve\s+([0-9a-f]+)", output_of("x86_64-w64-mingw32-objdump", "-p", program))
        assert int(stack[1], 16) >= 64 << 20, f"{program} has too small a stack for deep folders: {stack[0]}"
        found = output_of("x86_64-w64-mingw32-windres", program) + open(program, "rb").read().decode("latin-1")
        wanted = RESOURCES | ({"RT_GROUP_ICON"} if program.endswith("tidyfold.exe") else set())
        missing = {resource for resource in wanted if resource not in found}
        assert not missing, f"{program} lacks {missing}"
