#!/usr/bin/env python3
"""The window without a store file cleans Outlook: the test server, which a script fills and reads."""

import json
import pathlib
import sys
import tempfile

from wine_window import Wine_Window, windows_path

FILL = """
Set control = CreateObject("Tidyfold.TestOutlook")
control.Reset
control.AddStore "Personal Folders", True
Set top = control.TopFolder(1)
For i = 1 To top.Folders.Count
  If top.Folders.Item(i).Name = "Inbox" Then Set inbox = top.Folders.Item(i)
Next
received = DateSerial(2015, 3, 1)
never = DateSerial(4501, 1, 1)
For i = 1 To 12
  control.AddItem 1, inbox.StoreID, inbox.EntryID, 43, "Sender " & i, "Subject " & i, "Text", (i > 10), (i = 10), _
    received, received, never, never, never
Next
"""
COUNT = """
Set top = CreateObject("Outlook.Application").GetNamespace("MAPI").Folders.Item(1)
For i = 1 To top.Folders.Count
  WScript.Echo top.Folders.Item(i).Name & "=" & top.Folders.Item(i).Items.Count
Next
"""


def main():
    wine, programs, server, screenshots = sys.argv[1], *map(pathlib.Path, sys.argv[2:5])

    def script(window, text):
        with tempfile.NamedTemporaryFile("w", suffix=".vbs") as file:
            file.write(text)
            file.flush()
            return window.run("cscript", "//nologo", windows_path(file.name))

    def begin(window):
        window.run(server, "/RegServer")
        window.run("regsvr32", "/s", windows_path(programs / "TidyDll.dll"))
        script(window, FILL)

    with Wine_Window(wine, programs / "tidyfold-driven.exe", [], screenshots, begin) as window:
        window.answer("All Folders Loaded")
        senders = {row["texts"][3] for row in window.state()["grid"]}
        assert senders == {f"Sender {i}" for i in range(1, 13)}, senders
        window.tick_folder("Inbox")
        window.click("cmdRun")
        window.answer("9 items in 1 folder identified for cleaning")
        window.answer("9 items were moved to the \"Deleted Items\" folder")
        window.quit()
        counts = dict(line.split("=") for line in script(window, COUNT).splitlines())
        left = {name: int(count) for name, count in counts.items() if count != "0"}
        assert left == {"Inbox": 3, "Deleted Items": 9}, counts

        def cli(*words):
            return window.run(programs / "tidyfold-cli.exe", "--outlook", *words)

        undone = json.loads(cli("undo", "--yes", "--json"))
        assert undone["put_back"] == 9, undone
        folders = {folder["path"]: folder["items"] for folder in json.loads(cli("folders", "--json"))}
        assert folders["Inbox"] == 12 and folders["Deleted Items"] == 0, folders
        cleaned = json.loads(cli("clean", "--folder", "Inbox", "--subject", "Subject 1", "--permanent", "--yes", "--json"))
        assert cleaned["processed"] == 1, cleaned
        items = json.loads(cli("items", "--folder", "Inbox", "--json"))
        assert sorted(item["sender"] for item in items) == sorted(f"Sender {i}" for i in range(2, 10)), items


if __name__ == "__main__":
    main()
