"""Commands during loading and during a run."""

import unittest

from window_case import Window_Case, under_way
from window_session import PATIENCE


def far_along(state):
    return state["shown"] and state["done"] > state["to_do"] // 5


class Middle(Window_Case):
    def wait_for_change(self, what, was, further):
        """Waits for the progress of long work to change."""
        self.window.wait(what, lambda now: not now["boxes"] and (
            not under_way(now) or (now["done"] > was["done"]) == further))

    def test_of_loading(self):
        self.make_store(120000)
        before = self.content()
        window = self.open(wait=False)
        for refresh in ("F5", "ctrl+F5"):
            state = self.key_in_the_middle("loading", far_along, refresh)
            self.wait_for_change("loading from further back", state, False)
        for answer in ("Escape", "alt+n"):
            state = self.key_in_the_middle("loading", under_way, "ctrl+q")
            self.assertTrue(under_way(window.box("Quit Tidyfold?")))
            window.answer("Quit Tidyfold?", answer)
            self.wait_for_change("loading to go on", state, True)
        # One message for all passes.
        self.assertEqual(window.box("All Folders Loaded")["boxes_closed"], 2)
        window.answer("All Folders Loaded")
        window.key("F5")
        self.key_in_the_middle("loading", far_along, "ctrl+q")
        window.press("Quit Tidyfold?", "alt+y")
        self.assertEqual(window.program.wait(PATIENCE), 0)
        window.close()
        self.open(wait=False)
        self.key_in_the_middle("loading", far_along, "alt+F4")
        self.assertEqual(self.window.program.wait(PATIENCE), 0)
        self.assertEqual(self.content(), before)

    def test_of_a_run(self):
        self.make_store(100000)
        before = self.content()
        window = self.open()
        for key, question in (("Escape", "Quit processing records?"), ("alt+F4", "Quit Tidyfold?")):
            window.tick("chkPermanentDelete")  # off again after each run
            window.tick_folder("Inbox")
            window.click("cmdRun")
            window.answer("identified for cleaning")
            window.answer("Permanently delete items in selected folders?", "alt+y")
            # Asks twice; the run continues in between.
            first = self.key_in_the_middle("a run", under_way, key)
            window.press(question, "alt+n")
            self.key_in_the_middle("the run going on", lambda now: under_way(now) and not now["boxes"] and
                                   now["done"] > first["done"], key)
            window.press(question, "alt+y")
            if key == "Escape":
                window.answer("items were deleted.")
                self.wait_for_rest()
        self.assertEqual(window.program.wait(PATIENCE), 0)
        after = self.content()
        gone = [item for id, item in before.items() if id not in after]
        self.assertTrue(gone)
        self.assertEqual({(folder, unread) for folder, _, _, unread in gone}, {("Inbox", False)})
        self.assertTrue(after.items() <= before.items())


if __name__ == "__main__":
    unittest.main()
