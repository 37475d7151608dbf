#!/usr/bin/env python3
"""Fails on an include that goes the wrong way through the house.

    scripts/check_includes.py [SRC]     SRC: the folder of the sources, src/ of this project by default

The folders under src/ are floors. A folder includes itself and floors below its own, so that the list of floors
stays the architecture. Stores and importers stand behind the object model and know nothing above it; only the
front ends name them, and nobody names the front ends. A folder that is not in the list is refused: it has to be
given its place here first.
"""

import pathlib
import re
import sys

FLOORS = {
    "base": 0,
    "controls": 1, "settings": 1,
    "errors": 2, "layout": 2,
    "outlook": 3,
    "cache": 4, "runs": 4,
    "grid": 5,
    "marking": 6,
    "clean": 7,
    "help": 7,
    "app": 8,
}
BEHIND = ("stores", "import", "export")
IN_FRONT = ("desktop", "cli", "companion")

# The highest floor that a folder may include, where that is not simply the one below its own.
CEILINGS = {"help": FLOORS["errors"], **{folder: FLOORS["outlook"] for folder in BEHIND}}

SOURCES = (".h", ".hpp", ".c", ".cpp", ".inc", ".rc")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]*)"|<([^>\n]*)>)', re.MULTILINE)


def folder_of(path):
    """The folder of a path relative to src/; each store is a folder of its own. None: the path names none."""
    parts = pathlib.PurePosixPath(path).parts[:-1]
    if not parts:
        return None
    return "/".join(parts[:2]) if parts[0] == "stores" else parts[0]


def is_known(folder):
    top, _, below = folder.partition("/")
    return (top in FLOORS or top in BEHIND or top in IN_FRONT) and (top == "stores") == bool(below)


def objection(folder, other):
    """Why `folder` may not include `other`, both known; None: it may."""
    top, other_top = folder.split("/")[0], other.split("/")[0]
    if folder == other:
        return None
    if other_top in IN_FRONT:
        return "nothing includes a front end"
    if top in IN_FRONT:
        return None
    if other_top in BEHIND:
        return "only the front ends name a concrete store, an importer or an exporter"
    ceiling = CEILINGS.get(top, FLOORS.get(top, 0) - 1)
    if FLOORS[other_top] > ceiling:
        return f"{other}/ is on floor {FLOORS[other_top]}, and {folder}/ includes floor {ceiling} at the most" \
            if ceiling >= 0 else f"{folder}/ is on the lowest floor and includes only itself"
    return None


def without_comments(text):
    """The same text, the same number of lines, with blanks where /* */ comments were."""
    return re.sub(r"/\*.*?\*/", lambda comment: "\n" * comment.group().count("\n"), text, flags=re.DOTALL)


def problems(src):
    """One line of text for each include that is wrong."""
    src = pathlib.Path(src)
    unknown = set()
    for path in sorted(file for file in src.rglob("*") if file.suffix in SOURCES):
        folder = folder_of(path.relative_to(src).as_posix())
        if folder is None or not is_known(folder):
            unknown.add(folder or ".")
            continue
        text = without_comments(path.read_text(encoding="utf-8", errors="replace"))
        for include in INCLUDE.finditer(text):
            quoted, angled = include.groups()
            name = quoted if quoted is not None else angled
            where = f"{path}:{text.count(chr(10), 0, include.start()) + 1}"
            other = folder_of(name)
            if quoted is not None and (".." in pathlib.PurePosixPath(name).parts or not (src / name).is_file()):
                yield f'{where}: "{name}" is no file of {src}/ (includes are written from there)'
            elif other is not None and is_known(other) and (src / name).is_file():
                why = objection(folder, other)
                if why:
                    yield f"{where}: {folder}/ may not include {name}: {why}"
    for folder in sorted(unknown):
        yield f"{src}/{folder}: this folder has no floor; give it one in {pathlib.Path(__file__).name}"


def main():
    src = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parents[1] / "src"
    if not src.is_dir():
        sys.exit(f"{src}: there is no such folder")
    found = list(problems(src))
    for line in found:
        print(line, file=sys.stderr)
    if found:
        sys.exit(1)
    print("Every include goes down.")


if __name__ == "__main__":
    main()
