#!/usr/bin/env python3
"""Makes the Windows icon from the picture.

    packaging/make_icon.py PICTURE.SVG OUT.ICO
"""

import pathlib
import subprocess
import sys
import tempfile

SIDES = (16, 24, 32, 48, 64, 128, 256)


def main():
    picture, icon = map(pathlib.Path, sys.argv[1:3])
    with tempfile.TemporaryDirectory() as folder:
        drawn = []
        for side in SIDES:
            # Drawn at its size: a picture made smaller afterwards loses its edges.
            png = pathlib.Path(folder, f"{side}.png")
            subprocess.run(["rsvg-convert", "--width", str(side), "--height", str(side), "--output", png, picture], check=True)
            drawn.append(png)
        subprocess.run(["convert", *drawn, icon], check=True)


if __name__ == "__main__":
    main()
