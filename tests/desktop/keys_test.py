"""The built window without a mouse: every key of its menus in every pane, and the whole way by keys alone."""

import unittest

from window_case import Window_Case, options_on, ticked
from window_session import PATIENCE

# As xdotool has them.
NAMES = {"Return": "Return", "Enter": "Return", "Esc": "Escape", "Space": "space"}
# In a text box, these belong to it.
EDITING = {"Ctrl+A", "Ctrl+C"}
# With the option that a box needs.
BOXES = {"txtFind": None, "dtpCutoffDate": "chkSelectDate", "txtSelectSubject": "chkSelectSubject"}
PANES = ("trvFolders", "grdItems", *BOXES, "chkMarkSubFolders")


def xdotool_key(key):
    *modifiers, last = key.split("+")
    return "+".join([word.lower() for word in modifiers] + [NAMES.get(last, last if len(last) > 1 else last.lower())])


SHOWN = {"ShowSelectedItems", "ShowUnselectedItems"}


class Keys(Window_Case):
    def settle(self):
        """Leaves whatever a command has opened, by Esc, which changes nothing."""
        window = self.window

        def at_rest(state):
            return (state["keyboard"] == "window" and state["focus"] and not state["boxes"] and
                    not state["beside"] and not state["commands_under_way"] and not state["pointer_asks"] and
                    state["widgets"]["cmdRun"]["label"] == "&Clean" and not state["to_do"])
        for _ in range(20):
            state = window.wait("a rest or something to leave", lambda state: at_rest(state) or
                                state["pointer_asks"] or state["keyboard"] in ("box", "files", "other", "menu"))
            if at_rest(state):
                return
            window.xdotool("key", "Escape")
            window.wait("something left", lambda now: at_rest(now) or any(now[part] != state[part] for part in (
                "keyboard", "boxes", "boxes_closed", "pointer_asks", "beside")))
        self.fail("There is always something more to leave.")

    def test_every_key_of_every_menu_does_in_every_pane_what_the_menu_says(self):
        self.make_store(60)
        window = self.open()
        entries = window.wait("the menus", lambda state: len(state["menus"]) > 40)["menus"]
        keys = [entry["key"] for entry in entries]
        self.assertEqual(len(keys), len(set(keys)), "No key is given twice.")
        pressed = set()
        for pane in PANES:
            for entry in entries:
                label, key = entry["label"], entry["key"]
                if (key in EDITING and pane in BOXES) or key in ("Esc", "Ctrl+W"):
                    continue
                self.go_to(pane)
                if label == "Mark Folder":
                    window.key("ctrl+shift+m")
                    window.wait("no tick", lambda state: not ticked(state) and not state["commands_under_way"])
                now = {at["key"]: at for at in window.state()["menus"]}[key]
                if not now["enabled"]:
                    continue
                self.press(label, key, pane)
                pressed.add(key)
        # Of the keys that need something first: columns that are shown, and rows that may be picked.
        self.go_to("trvFolders")
        for first, label, key in ((None, "Show All Folders", "Alt+A"), (None, "Folder", "Ctrl+1"),
                                  (None, "Show All Folders", "Alt+A"), ("Journal", "Entry", "Ctrl+5"),
                                  (None, "Select By Row", "Alt+W"), (1, "Select Row", "Ctrl+Space"),
                                  (None, "Select All Rows", "Ctrl+A")):
            if first == 1:
                window.click_row(first)
            elif first:
                window.click_at(window.node(first)["rectangle"])
            window.wait(label, lambda state: any(entry["key"] == key and entry["enabled"] for entry in state["menus"]))
            self.press(label, key, "the list")
            pressed.add(key)
        # Ctrl+9 sorts by a column that is hidden at first.
        self.assertEqual({key for key in keys if key not in pressed}, {"Esc", "Ctrl+9", "Ctrl+W"},
                         "These could not be used in any pane.")
        # Without its last store the window asks what to open; Esc there leaves the program.
        window.key("ctrl+w")
        window.wait("the welcome window", lambda state: "frmWelcome" in state["beside"] and state["keyboard"] == "box")
        window.xdotool("key", "Escape")
        self.assertEqual(window.program.wait(PATIENCE), 0)

    def press(self, label, key, pane):
        window = self.window
        before = len(window.state()["commands"])
        window.key(xdotool_key(key))
        state = window.wait(f"{key} in {pane} to do {label}", lambda state: len(state["commands"]) > before)
        self.assertEqual(state["commands"][before:], [label], f"{key} in {pane}")
        self.settle()

    def go_to_list(self):
        """A second click where one has just been would open the item."""
        if self.window.state()["focus"] != "grdItems":
            self.window.click_row(1)

    def go_to(self, pane):
        """With the Inbox current and ticked, the option that the pane needs, and a row that has the frame."""
        window = self.window
        option = BOXES.get(pane)

        def inbox_ticked(state):
            return any(text.startswith("Inbox ") for text in ticked(state))
        if options_on(window.state()) - {option and option[3:]} != SHOWN:
            window.key("ctrl+r")
            window.wait("the first options", lambda state: options_on(state) == SHOWN and not state["commands_under_way"])
        if not window.state()["widgets"]["lblCurrentFolder"]["label"].endswith(" Inbox"):
            window.click_at(window.node("Inbox")["rectangle"])
            window.wait("the Inbox", lambda state: state["widgets"]["lblCurrentFolder"]["label"].endswith(" Inbox"))
        if any(node["lock"] for node in window.state()["tree"]):
            window.key("ctrl+k")
            window.wait("no lock", lambda state: not any(node["lock"] for node in state["tree"]))
        if not inbox_ticked(window.state()):
            window.key("ctrl+m")
            window.wait("the Inbox ticked", lambda state: inbox_ticked(state) and not state["commands_under_way"])
        if option and not window.state()["widgets"][option]["checked"]:
            window.tick(option)
        if not window.state()["row"]:
            window.click_row(1)
            window.wait("a row", lambda state: state["row"] == 1)
        if window.state()["focus"] == pane:
            return
        if pane == "grdItems":
            self.go_to_list()
        elif pane == "trvFolders":
            window.click_at(window.node("Inbox")["rectangle"])
        elif pane in BOXES:
            window.click(pane)
        else:  # a click would tick it
            self.go_to_list()
            window.wait("the list", lambda state: state["focus"] == "grdItems")
            window.key("F6")
            window.wait("the second bar", lambda state: state["focus"] == "picSlider2")
            window.key("F6")
        window.wait(pane, lambda state: state["focus"] == pane)

    def test_from_the_welcome_window_to_the_summary_by_keys_alone(self):
        window = self.open(named=False, wait=False)

        def waits(what, condition):
            return window.wait(what, condition)
        waits("the welcome window", lambda state: "frmWelcome" in state["beside"] and state["keyboard"] == "box")
        window.xdotool("key", "F1")
        waits("its help", lambda state: "frmHelpViewer" in state["beside"])
        window.xdotool("key", "Escape")
        waits("the welcome window", lambda state: "frmHelpViewer" not in state["beside"] and state["keyboard"] == "box")
        window.xdotool("key", "alt+s")
        waits("the question where", lambda state: state["keyboard"] == "files")
        window.xdotool("key", "ctrl+a")
        window.xdotool("type", str(self.store))
        window.xdotool("key", "Return")
        # Do not show this again: a tick, and it is not.
        window.box("All Folders Loaded")
        window.xdotool("key", "alt+d")
        window.answer("All Folders Loaded")
        self.wait_for_rest()
        waits("the store's name", lambda state: state["title"] == "sample - Tidyfold")
        waits("the keyboard in the window", lambda state: state["keyboard"] == "window" and state["focus"])
        while window.state()["focus"] != "trvFolders":
            before = window.state()["focus"]
            window.key("Tab")
            waits("the next part", lambda state: state["focus"] != before)
        window.type("notes")
        window.key("Escape")
        window.key("space")
        state = waits("Notes ticked", lambda state: ticked(state) and ticked(state)[0].startswith("Notes "))
        window.key("ctrl+f")
        window.type("the")
        waits("fewer rows shown", lambda state: " shown; what will go stays the same" in
              state["widgets"]["lblFound"]["label"])
        window.key("Down")
        window.key("F9")
        waits("the preview", lambda state: "txtPreview" in state["widgets"] and
              "the" in state["widgets"]["txtPreview"]["text"].lower())
        count = waits("a total", lambda state: state["panels"][2].startswith("Total Selected"))["panels"][2]
        window.key("ctrl+Return")
        window.answer("1 folder identified for cleaning.")
        window.answer('moved to the "Deleted Items" folder.')
        self.wait_for_rest()
        self.quit()
        # As it was left; the box is not shown again.
        window = self.open(named=False, wait=False)
        state = window.wait("the window", lambda state: state["shown"] and not state["to_do"] and
                            state["widgets"]["cmdRun"]["label"] == "&Clean" and "txtPreview" in state["widgets"] and
                            state["focus"] and state["keyboard"] == "window")
        self.assertEqual(state["boxes_closed"], 0)
        self.quit()


if __name__ == "__main__":
    unittest.main()
