#!/usr/bin/env python3
"""Fails on an include that does not go down.

    scripts/check_includes.py [SRC]     SRC: the folder of the sources, src/ of this project by default

Each folder under src/ stands on a floor and may include itself and lower floors, so that the list of floors is
the architecture. Stores and importers stand behind the object model and may include nothing above it; only the
front ends include them, and nothing includes the front ends. A folder that is not in the list is an error: add it
first.
"""

import pathlib
import re
import sys

FLOORS = {
    "base": 0,
    "controls": 1, "settings": 1,
    "errors": 2, "layout": 2,
    "outlook": 3,
    "plan": 4, "runs": 4,
    "cache": 5,
    "grid": 6,
    "marking": 7,
    "clean": 8,
    "help": 8,
    "app": 9,
}
BEHIND = ("stores", "mail", "import", "export")
IN_FRONT = ("desktop", "cli", "companion")

# What lies behind and may be included from there too: what went out is read back, live stores keep what they
# read of headers. One place opens stores of every kind, and all may read messages.
ALLOWED = {("export", "import"), ("stores/maildir", "stores/header_cache"),
           ("stores/imap", "stores/header_cache"), ("stores/imap", "stores/sqlite")}

# The highest floor that a folder may include, if not the one below its own.
CEILINGS = {"help": FLOORS["errors"], **{folder: FLOORS["outlook"] for folder in BEHIND}}

SOURCES = (".h", ".hpp", ".c", ".cpp", ".inc", ".rc")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]*)"|<([^>\n]*)>)', re.MULTILINE)


def folder_of(path):
    """The folder of a path relative to src/, each store by itself; None for a path without folder."""
    parts = pathlib.PurePosixPath(path).parts[:-1]
    if not parts:
        return None
    return "/".join(parts[:2]) if parts[0] == "stores" else parts[0]


def is_known(folder):
    top, _, below = folder.partition("/")
    return (top in FLOORS or top in BEHIND or top in IN_FRONT) and (top == "stores") == bool(below)


def objection(folder, other):
    """Why `folder` may not include `other`, both known; None if it may."""
    top, other_top = folder.split("/")[0], other.split("/")[0]
    if folder == other:
        return None
    if other_top in IN_FRONT:
        return "nothing includes a front end"
    if top in IN_FRONT:
        return None
    if (folder, other) in ALLOWED or (folder == "stores/opening" and other_top == "stores") \
            or (other == "mail" and top in BEHIND):
        return None
    if other_top in BEHIND:
        return "only the front ends name a concrete store, an importer or an exporter"
    ceiling = CEILINGS.get(top, FLOORS.get(top, 0) - 1)
    if FLOORS[other_top] > ceiling:
        return f"{other}/ is on floor {FLOORS[other_top]}, and {folder}/ includes floor {ceiling} at the most" \
            if ceiling >= 0 else f"{folder}/ is on the lowest floor and includes only itself"
    return None


def without_comments(text):
    """Removes /* */ comments but keeps the number of lines."""
    return re.sub(r"/\*.*?\*/", lambda comment: "\n" * comment.group().count("\n"), text, flags=re.DOTALL)


def problems(src):
    """Yields a line of text for each wrong include."""
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
                yield f'{where}: "{name}" is not a file in {src}/ (includes are relative to it)'
            elif other is not None and is_known(other) and (src / name).is_file():
                why = objection(folder, other)
                if why:
                    yield f"{where}: {folder}/ may not include {name}: {why}"
    for folder in sorted(unknown):
        yield f"{src}/{folder}: this folder has no floor; add it in {pathlib.Path(__file__).name}"


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
