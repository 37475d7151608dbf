#!/usr/bin/env python3
"""Makes the Windows icon from the picture that the program draws its own icon with.

    packaging/make_icon.py APPLICATION_ICON.CPP OUT.ICO
"""

import pathlib
import re
import subprocess
import sys
import tempfile

SIDES = (16, 24, 32, 48, 64, 128, 256)


def main():
    source, icon = map(pathlib.Path, sys.argv[1:3])
    picture = re.search(r"<svg.*</svg>", source.read_text(encoding="utf-8"), re.DOTALL)
    if not picture:
        sys.exit(f"{source}: there is no <svg> picture in it")
    with tempfile.TemporaryDirectory() as folder:
        drawn = []
        for side in SIDES:
            # Drawn at its size: a picture made smaller afterwards loses its edges.
            png = pathlib.Path(folder, f"{side}.png")
            subprocess.run(["rsvg-convert", "--width", str(side), "--height", str(side), "--output", png],
                           input=picture.group().encode(), check=True)
            drawn.append(png)
        subprocess.run(["convert", *drawn, icon], check=True)


if __name__ == "__main__":
    main()
