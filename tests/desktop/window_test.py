"""The built window under real mouse and keyboard events, from tick to summary, and the store afterwards."""

import collections
import json
import unittest

from window_case import Window_Case, options_on, ticked
from window_session import TICK_BOX

DELETED = "Deleted Items"
SHOWN = {"ShowSelectedItems", "ShowUnselectedItems"}
MAIL = 43


class Window(Window_Case):
    def test_cleans_exactly_what_was_ticked_and_filtered(self):
        self.make_store(600)
        expected = self.content()
        chosen = [id for id, (folder, subject, item_class, unread) in expected.items()
                  if folder == "Inbox" and subject.lower().startswith("re") and item_class == MAIL and not unread]
        self.assertGreater(len(chosen), 1)
        for id in chosen:
            expected[id] = (DELETED, *expected[id][1:])
        window = self.open()
        window.tick_folder("Inbox")
        window.tick("chkSelectSubject")
        window.click("txtSelectSubject")
        window.wait("the keyboard in the box", lambda state: state["focus"] == "txtSelectSubject")
        window.type("re")
        window.tick("chkSelectType")
        window.tick("chkType(43)")
        self.wait_for_total(len(chosen))
        # Esc on the review leaves everything as it was; Enter begins.
        for key in ("Escape", "Return"):
            window.click("cmdRun")
            window.answer(f"{len(chosen)} items in 1 folder identified for cleaning.", key)
            if key == "Escape":
                self.wait_for_rest()
        window.answer(f' {len(chosen)} items were moved to the "Deleted Items" folder.')
        self.wait_for_rest()
        self.quit()
        self.assertEqual(self.content(), expected)
        # Opened again without arguments, it shows the same store.
        self.open(named=False)
        left = sum(folder == "Inbox" for folder, *_ in expected.values())
        self.window.wait("the Inbox without what was cleaned", lambda state: state["rows"] == left)
        self.quit()

    def test_picks_rows_by_mouse_and_keys_and_deletes_no_other(self):
        self.make_store(300)
        before = self.content()
        window = self.open()
        window.click_at(window.node("Sent Items")["rectangle"])
        window.wait("its rows", lambda state: state["widgets"]["lblCurrentFolder"]["label"].endswith("Sent Items"))
        window.tick("chkPermanentDelete")
        window.tick("chkSelectByRow")
        # A click on a row with a key held, or a key alone; the row that has the focus frame then; the marks of the
        # first eight rows, and of all others.
        steps = ((3, None, 3, "00100000", 0), (6, "shift", 6, "00111100", 0), (1, "shift", 1, "11100000", 0),
                 (5, "ctrl", 5, "11101000", 0), (2, "ctrl", 2, "10101000", 0), (0, "Down", 3, "10101000", 0),
                 (0, "Down", 4, "10101000", 0), (0, "space", 4, "00010000", 0), (0, "shift+Down", 5, "00011000", 0),
                 (0, "ctrl+a", 5, "11111111", 1), (0, "Home", 1, "11111111", 1), (0, "ctrl+space", 1, "01111111", 1),
                 (0, "shift+End", -1, "11111111", 1), (0, "Home", 1, "11111111", 1), (2, None, 2, "01000000", 0),
                 (4, "shift", 4, "01110000", 0), (7, "ctrl", 7, "01110010", 0), (3, "ctrl", 3, "01010010", 0))
        for row, key, frame, marks, rest in steps:
            if row:
                window.click_row(row, key)
            else:
                window.key(key)
            window.wait(f"{marks} after {key} in row {row}", lambda state: len(state["grid"]) > 8 and
                        state["row"] == (state["rows"] if frame < 0 else frame) and
                        "".join(shown["texts"][1] for shown in state["grid"]) ==
                        marks + str(rest) * (len(state["grid"]) - 8))
        picked = self.wait_for_total(3)["grid"]
        subjects = collections.Counter(row["texts"][4] for row in picked if row["texts"][1] == "1")
        # Enter is the safe answer to the second question.
        for key in ("Return", "alt+y"):
            self.wait_for_rest()
            window.click("cmdRun")
            window.answer("3 items identified for cleaning")
            window.answer("Permanently delete items in selected folders?", key)
        window.answer(" 3 items were deleted.")
        self.quit()
        after = self.content()
        gone = {id: before[id] for id in before if id not in after}
        self.assertEqual(collections.Counter(subject for _, subject, *_ in gone.values()), subjects)
        self.assertEqual({folder for folder, *_ in gone.values()}, {"Sent Items"})
        self.assertEqual(before, gone | after)

    def test_options_force_and_refuse_one_another_and_ask_before_everything_goes(self):
        self.make_store(400)
        expected = self.content()
        window = self.open()
        forced = SHOWN | {"PermanentDelete", "SelectFlagged", "SelectUnread"}

        def turn(option, boxes, then, folders):
            window.click("chk" + option)
            for words, key in boxes:
                window.answer(words, key)
            window.wait(f"the options {then}", lambda state: options_on(state) == then and
                        len(ticked(state)) == folders)

        def run(count, question, summary):
            for key in ("alt+n", "alt+y"):
                window.click("cmdRun")
                window.answer(count)
                window.answer(question, key)
                if key == "alt+y":
                    window.answer(summary)
                self.wait_for_rest()

        window.tick_folder("Inbox")
        unmark = "There is currently 1 marked folder that will be deleted.  Unmark it?"
        turn("DeleteFolders", [(unmark, "alt+n"), ("while default folders are selected.", "Return")], SHOWN, 1)
        turn("DeleteFolders", [(unmark, "alt+y")], forced | {"DeleteFolders", "MarkSubFolders"}, 0)
        turn("Turbo", [], forced | {"Turbo", "MarkSubFolders"}, 0)
        window.key("ctrl+r")
        window.wait("nothing chosen", lambda state: options_on(state) == SHOWN)
        window.tick_folder("Notes")
        turn("Turbo", [], forced | {"Turbo"}, 1)
        run(" in 1 folder identified for cleaning.", "Turbo selected.\r\nALL items in selected folders will be deleted.",
            " deleted.")
        window.key("ctrl+r")
        window.wait("nothing chosen", lambda state: options_on(state) == SHOWN)
        window.tick("chkDeleteFolders")
        window.tick_folder("Family")
        run("identified for deletion.", "ALL selected FOLDERS and their content", " deleted.")
        size = self.store.stat().st_size
        window.key("alt+f")
        window.key("c", "menu")
        window.key("Return", "box")  # it says how much was given back
        window.keyboard("window")
        self.assertLess(self.store.stat().st_size, size)
        self.quit()
        self.assertEqual(self.content(), {id: item for id, item in expected.items() if item[0] != "Notes" and
                                          "Family" not in item[0].split("/")})

    def test_works_without_a_mouse(self):
        self.make_store(300)
        window = self.open()
        # Typing finds a folder in the tree, Space ticks it: all of it with the key still down.
        window.click_at(window.node("Sample")["rectangle"])
        window.wait("the tree", lambda state: state["focus"] == "trvFolders")
        window.type("notes")
        window.key("Escape")
        window.xdotool("keydown", "space")
        window.wait("Notes ticked and current", lambda state: ticked(state)[0].startswith("Notes ") and
                    state["widgets"]["lblCurrentFolder"]["label"] == "Current Folder: Notes" and state["rows"] > 0)
        window.xdotool("keyup", "space")
        # What may not be ticked is refused with the key still down.
        window.type("deleted")
        window.key("Escape")
        window.xdotool("keydown", "space")
        window.box(DELETED)
        window.xdotool("keyup", "space")
        window.answer(DELETED)
        self.type_dates(window)
        # Nothing ticked, and the current folder stays in the list.
        rows = window.state()["rows"]
        window.key("ctrl+u")
        window.wait("no folder ticked", lambda state: not ticked(state) and state["rows"] == rows > 0)
        # The item that a row shows, by key and by mouse.
        window.click_at(window.node("Inbox")["rectangle"])
        for row in (4, 2):
            window.click_row(row, times=1 if row == 4 else 2)
            if row == 4:
                window.wait("row 4", lambda state: state["row"] == 4 and state["focus"] == "grdItems")
                window.key("Return")
            state = window.wait("the item", lambda state: "frmItem" in state["beside"])
            self.assertEqual(state["beside"]["frmItem"]["title"], state["grid"][row - 1]["texts"][4])
            window.key("Escape", "other")
            window.wait("no item", lambda state: not state["beside"])
        # Esc leaves everything as it is.
        window.key("ctrl+q")
        window.answer("Quit Tidyfold?", "Escape")
        self.wait_for_rest()
        self.quit()

    def type_dates(self, window):
        def box_says(text, complains=False):
            window.wait(f"the date {text}", lambda state: state["widgets"]["dtpCutoffDate"]["text"] == text and
                        ("lblNoDate" in state["widgets"]) == complains)

        window.click("chkSelectDate")
        window.wait("its box", lambda state: state["widgets"]["dtpCutoffDate"]["enabled"])
        window.key("Tab")
        window.wait("the box by Tab", lambda state: state["focus"] == "dtpCutoffDate")
        # Written in the locale's form or in the list's; what is shown then is what is in force.
        for written, key, shown in (("2015-12-31", "Return", "2015-12-31"), ("12/30/15", "Return", "2015-12-30"),
                                    ("1/2/1999", "Tab", "1999-01-02")):
            window.key("ctrl+a")
            window.type(written)
            window.key(key)
            box_says(shown)
        window.key("shift+Tab")
        window.wait("the box again", lambda state: state["focus"] == "dtpCutoffDate")
        # What is no date stays, is told, and Clean waits.
        window.key("ctrl+a")
        window.type("02/31/2014")
        for key in ("Tab", "Return", "ctrl+Return"):
            window.key(key)
            box_says("02/31/2014", True)
            state = window.wait("the keyboard there", lambda state: state["focus"] == "dtpCutoffDate")
            self.assertEqual(state["boxes"], [])
        window.key("Escape")
        box_says("1999-01-02")
        # One click on a day chooses it and closes the calendar; so does Enter.
        window.key("alt+Down")
        calendar = window.wait("the calendar", lambda state: "calCutoffDate" in state["widgets"])
        window.key("Right")
        window.key("Return")
        box_says("1999-01-03")
        window.wait("no calendar", lambda state: "calCutoffDate" not in state["widgets"])
        window.click("cmdCalendar")
        calendar = window.wait("the calendar", lambda state: "calCutoffDate" in state["widgets"])
        window.click_at(calendar["widgets"]["calCutoffDate"]["rectangle"])
        state = window.wait("no calendar", lambda state: "calCutoffDate" not in state["widgets"])
        self.assertRegex(state["widgets"]["dtpCutoffDate"]["text"], "^199[89]-[01][0-9]-[0-3][0-9]$")
        self.assertNotEqual(state["widgets"]["dtpCutoffDate"]["text"], "1999-01-03")
        window.click("chkSelectDate")

    def test_right_clicks_offer_and_choose_nothing_f6_goes_round_and_bars_move_the_panes(self):
        self.make_store(300)
        window = self.open()

        def menu_says(rectangle, across, key):
            """Opens the menu, goes to the entry and returns its help in the status bar."""
            window.keyboard("window")
            window.click_at(rectangle, across, button=3)
            window.key("Down", "menu")
            state = window.wait("its help", lambda state: state["said"])
            window.key(key, "menu")
            window.keyboard("window")
            return state["said"], len(ticked(state))

        notes = window.node("Notes")["rectangle"]
        self.assertEqual(menu_says(notes, 8, "Escape"), ("Tick the current folder", 0))
        window.wait("Notes current", lambda state: state["widgets"]["lblCurrentFolder"]["label"].endswith(" Notes"))
        self.assertEqual(menu_says(notes, 8, "Return"), ("Tick the current folder", 0))
        window.wait("Notes ticked", lambda state: ticked(state)[0].startswith("Notes "))
        # Protecting it takes the tick off; the box of a locked folder says why it stays empty.
        self.assertEqual(menu_says(notes, 8, "p"), ("Take the tick off the current folder", 1))

        def locked(state, lock):
            return [node["lock"] for node in state["tree"] if node["text"].startswith("Notes ")] == [lock]
        window.wait("Notes locked", lambda state: locked(state, "own") and not ticked(state))
        window.click_at(window.node("Inbox")["rectangle"])
        window.wait("the Inbox current, nothing said", lambda state: not state["panels"][0])
        window.click_at(notes, TICK_BOX)
        state = window.wait("why it is not ticked", lambda state: "is protected" in state["panels"][0])
        self.assertEqual((ticked(state), state["boxes"]), ([], []))
        self.assertTrue(state["widgets"]["lblCurrentFolder"]["label"].endswith(" Inbox"))
        window.click_at(notes)
        window.wait("Notes current", lambda state: state["widgets"]["lblCurrentFolder"]["label"].endswith(" Notes"))
        window.key("ctrl+k")
        window.wait("Notes without a lock", lambda state: locked(state, ""))
        self.export_notes(window)
        window.tick("chkSelectByRow")
        window.click_row(2)
        window.wait("the row picked", lambda state: state["grid"][1]["texts"][1] == "1")
        window.click_row(4, "shift")
        rows = self.wait_for_total(3)["grid"]
        self.assertEqual(menu_says(rows[0]["rectangle"], 40, "Escape"), ("Open the item of the current row", 0))
        self.assertEqual(window.wait("the first row", lambda state: state["row"] == 1)["grid"], rows)
        for pane in ("picSlider2", "frmOptions", "trvFolders", "picSlider", "grdItems"):
            window.key("F6")
            window.wait(pane, lambda state: state["focus"] in (pane, {"frmOptions": "chkMarkSubFolders"}.get(pane)))
        # The header has a menu of its own.
        x, y, width, height = window.state()["grid"][0]["rectangle"]
        window.click_at((x, y - height, width, height), button=3)
        window.key("Down", "menu")
        window.wait("its help", lambda state: state["said"].startswith("Put the rows in the order of"))
        window.key("Escape", "menu")
        window.keyboard("window")
        self.drag_bars(window)
        self.quit()

    def export_notes(self, window):
        """The current folder, through its dialog; Esc closes the report."""
        to = self.folder / "exported"
        to.mkdir()
        window.key("ctrl+shift+e")
        window.wait("the dialog", lambda state: "Export_Dialog" in state["beside"] and state["keyboard"] == "box")
        window.xdotool("key", "ctrl+a")
        window.xdotool("type", str(to))
        window.xdotool("key", "Return")
        window.wait("the report", lambda state: "dialog" in state["beside"] and state["keyboard"] == "box")
        window.xdotool("key", "Escape")
        window.keyboard("window")
        written = [file for file in to.rglob("*") if file.is_file() and not file.name.startswith(".")]
        self.assertEqual(len(written), window.state()["rows"])
        self.assertTrue(all(file.stat().st_size for file in written))

    def drag_bars(self, window):
        names = ("trvFolders", "picSlider", "grdItems", "picSlider2", "frmOptions")

        def panes(state):
            """Left edges and widths, from left to right; a pane that is closed has no width."""
            shown = [state["widgets"].get(name, {"rectangle": [0, 0, 0]})["rectangle"] for name in names]
            return [pane[0] for pane in shown], [pane[2] for pane in shown]

        def dragged(bar, by, what, condition):
            if by:
                x, y, width, height = window.usable(bar)["rectangle"]
                window.move_to(x + width // 2, y + height // 3, bar)
                window.xdotool("mousedown", 1)
                window.wait("a drag", lambda state: state["captured"])
                for step in range(1, 5):
                    window.xdotool("mousemove", max(x + width // 2 + by * step // 4, 0), y + height // 3)
                window.xdotool("mouseup", 1)

            def holds(state):
                left, width = panes(state)
                return (not state["captured"] and (width[0] == 0 or left[0] + width[0] == left[1]) and
                        (width[2] == 0 or left[2] == left[1] + width[1]) and
                        left[1] + width[1] + width[2] == left[3] and left[3] + width[3] == left[4] and
                        condition(left, width))
            return panes(window.wait(what + ", the panes side by side", holds))

        left, start = dragged(None, 0, "the panes", lambda _, width: width[0] > 0)
        dragged("picSlider", 60, "a wider tree", lambda _, width: width[0] == start[0] + 60 and
                width[2] == start[2] - 60)
        dragged("picSlider", -2000, "a closed tree", lambda now, width: width[0] == 0 and now[1] == left[0])
        dragged("picSlider", 2000, "a closed grid", lambda _, width: width[2] == 0 and width[4] > 0)
        dragged("picSlider", -2000, "a closed tree again", lambda _, width: width[0] == 0)
        _, open_ = dragged("picSlider", 200, "an open tree", lambda _, width: width[0] == 200)
        # The second bar changes the width of the window; the options keep theirs.
        dragged("picSlider2", -100, "a narrower window", lambda _, width: width[2] == open_[2] - 100 and
                width[4] == open_[4])
        dragged("picSlider2", 2000, "a window as wide as the screen, and within it", lambda now, width:
                width[2] >= open_[2] and now[4] + width[4] < 1280)
        dragged("picSlider2", -2000, "a window as narrow as it gets", lambda _, width: width[2] < open_[2] - 100 and
                width[4] == open_[4])

    def test_runs_shows_the_items_of_the_chosen_run_and_saves_them(self):
        self.make_store(300)
        went = [json.loads(self.cli("--store", self.store, "clean", "--folder", folder, "--yes", "--json"))["processed"]
                for folder in ("Notes", "Sent Items")]
        self.assertTrue(0 < went[0] != went[1] > 0, went)
        window = self.open()
        window.key("ctrl+l")

        def shows(items):
            def holds(state):
                widgets = state["beside"]["frmRuns"]["widgets"]
                return (widgets["grdRuns"]["rows"] == 2 and widgets["grdRunItems"]["rows"] == items and
                        state["keyboard"] == "other")
            window.wait(f"two runs, and of the chosen one {items}", holds)
        shows(went[1])
        window.key("Down", "other")
        shows(went[0])
        window.key("alt+s", "other")
        window.key("Return", "files")
        saved = self.folder / "run-1.csv"
        told = self.cli("runs", 1, "--csv").replace("\r\n", "\n")
        self.assertEqual(told.count("\n"), 1 + went[0])
        window.wait("the file", lambda _: saved.exists() and saved.read_text() == told)
        window.key("Escape", "other")
        window.wait("no other window", lambda state: not state["beside"])
        self.quit()


if __name__ == "__main__":
    unittest.main()
