#!/usr/bin/env python3
"""The guide of each system is whole, describes that system alone, and has a topic for every message of the program."""

import html
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).parents[2]
GUIDE, SOURCES = ROOT / "docs/help", ROOT / "src"
# What none but the system itself has.
FOREIGN = {"windows": r"Linux|XDG_|~/\.|import\.html|export\.html|Keep a Copy First|[Ii]mport(ing)? (your )?mail",
           "others": r"regsvr32 /n|HKEY_|%LOCALAPPDATA%|/CurrentUser"}

# --- The guide


def topics(folder, system):
    files = sorted(str(file.relative_to(GUIDE)) for end in ("html", "hhc", "hhk") for file in GUIDE.rglob("*." + end))
    files = [file for file in files if system != "windows" or
             not (GUIDE / file).read_text(encoding="utf-8").startswith("<!--others-->")]
    subprocess.run(["cmake", f"-DSYSTEM={system}", f"-DFROM={GUIDE}", f"-DTO={folder}", f"-DTOPICS={';'.join(files)}",
                    "-P", GUIDE / "system_topics.cmake"], check=True)
    return {file: (folder / file).read_text(encoding="utf-8") for file in files}


def check_whole(pages, system):
    for name, text in pages.items():
        assert "<!--" not in text, f"{name} for {system} holds a mark"
        for link in re.findall(r'(?:href|"Local" value|src)="([^"]+)"', text):
            file, _, anchor = link.partition("#")
            target = (GUIDE / name).parent / file if file else GUIDE / name
            key = str(target.resolve().relative_to(GUIDE))
            assert key in pages or (target.is_file() and target.suffix not in (".html",)), f"{name} -> {link}: {system}"
            assert not anchor or f'name="{anchor}"' in pages[key], f"{name} -> {link}: {system}"
        foreign = re.search(FOREIGN[system], text)
        assert not foreign or name == "stores.html", f"{name} for {system} says {foreign[0]}"


# --- The messages


def code_of(file):
    return re.sub(r'("(?:[^"\\\n]|\\.)*")|//[^\n]*', lambda found: found[1] or "", file.read_text(encoding="utf-8"))


def statements(code, beginnings):
    """What stands in the parentheses after each beginning."""
    for found in re.finditer(beginnings, code):
        depth, at, in_text = 1, found.end(), False
        while depth and at < len(code):
            if code[at] == "\\":
                at += 1
            elif code[at] == '"':
                in_text = not in_text
            elif not in_text:
                depth += {"(": 1, "{": 1, ")": -1, "}": -1}.get(code[at], 0)
            at += 1
        yield code[found.end():at - 1]


def words_of(text):
    return re.findall(r"[\w']+", text)


def pieces(statement):
    """The texts that it puts together, without what stands between them."""
    joined = re.sub(r'(?<!\\)"\s*"', "", statement)
    for literal in re.findall(r'"((?:[^"\\]|\\.)*)"', joined):
        for line in re.split(r"\\r\\n|\\n", literal.replace('\\"', '"').replace("\\t", " ")):
            if len(words_of(line)) >= 3:
                yield line


SHOWN = r"(?:message_box_?|box)(?:\.|->)(?:Show|Ask_Number)\(|Show_Error\("
THROWN = r"\b(?:Automation_Error|Store_Open_Error|Import_Error|Export_Error|Run_Log_Error)(?: \w+)?[({]"
# In a file that hands a variable or a function's text to a box: the sentences that these are made from.
HANDED = r"(?:\+?=|return)\s[^;{}]*;"
# No box shows these: they tell the program what an Outlook or a store does not offer, or developers what went wrong.
UNSEEN = {"The folder s table has no column", "This Outlook is too old for that", "The folder is not one of Outlook s",
          "GetObject Did Not Work", "Outlook gave no object where one was asked for",
          "The message comes from another store", "A text could not be compressed"}


def messages():
    for file in sorted(SOURCES.rglob("*.cpp")):
        part = file.relative_to(SOURCES).parts[0]
        if part in ("cli", "companion"):
            continue
        code = code_of(file)
        found = [list(pieces(statement)) for statement in [*statements(code, SHOWN), *statements(code, THROWN)]]
        if re.search(SHOWN + r"\s*[a-zA-Z]", code):
            found += [[piece] for handed in re.findall(HANDED, code) for piece in pieces(handed)
                      if re.fullmatch(r"[A-Z].*[.?!]", piece)]
        yield from ((str(file.relative_to(ROOT)), texts) for texts in found if texts)


def topics_of_messages(pages):
    told = []
    for name, text in pages.items():
        if name.startswith("messages-"):
            for bold in re.findall(r'<p class="message"><b>(.*?)</b>', text, re.DOTALL):
                told += [" ".join(words_of(part.replace("'", " "))) for part in html.unescape(bold).split("...")]
    return {text for text in told if len(words_of(text)) >= 2}


def check_messages(told):
    missing = []
    for file, found in messages():
        found = [" ".join(words_of(piece.replace("'", " "))) for piece in found]
        if UNSEEN.isdisjoint(found) and not any(piece in text or (text in piece and len(text.split()) >= 4)
                                               for piece in found for text in told):
            missing.append(f"{file}: {found}")
    assert not missing, f"{len(missing)} messages without a topic:\n" + "\n".join(missing)


def main():
    texts = set()
    with tempfile.TemporaryDirectory() as folder:
        for system in FOREIGN:
            pages = topics(pathlib.Path(folder, system), system)
            check_whole(pages, system)
            texts |= topics_of_messages(pages)
        check_messages(texts)


if __name__ == "__main__":
    sys.exit(main())
