"""What the window looks like: nothing that a person needs is cut off, and everything can be read."""

import subprocess
import unittest

from window_case import Window_Case

BUTTON_FRAME = 12  # pixels around a button's text at least


def luminance(colour):
    """As the Web Content Accessibility Guidelines define it."""
    parts = [value / 255 for value in colour]
    linear = [part / 12.92 if part <= 0.03928 else ((part + 0.055) / 1.055) ** 2.4 for part in parts]
    return 0.2126 * linear[0] + 0.7152 * linear[1] + 0.0722 * linear[2]


def contrast(one, other):
    darker, brighter = sorted((luminance(one), luminance(other)))
    return (brighter + 0.05) / (darker + 0.05)


class Look(Window_Case):
    def open_on(self, screen, **environment):
        """As the case before has left it, which may be larger; ends one that failed."""
        if self.window:
            self.window.close()
        self.screen = screen
        return self.open(**environment)

    def test_nothing_that_is_needed_is_cut_off_in_a_small_window(self):
        self.make_store(200)
        for screen, text in (("640x480", "1"), ("800x600", "1"), ("640x480", "1.75"), ("800x600", "1.75")):
            with self.subTest(screen=screen, text=text):
                window = self.open_on(screen, GDK_DPI_SCALE=text)
                window.key("ctrl+m")  # a narrow window may have no room for the tree
                window.usable("cmdRun")
                # The widest that both bars allow, and as small as the window gets.
                for bar, to in ((None, None), ("picSlider", 4000), ("picSlider2", -4000)):
                    if bar:
                        x, y, width, height = window.usable(bar)["rectangle"]
                        window.move_to(x + width // 2, y + height // 3, bar)
                        window.xdotool("mousedown", 1)
                        for end in (to // 2, to):
                            window.xdotool("mousemove", max(x + end, 0), y + height // 3)
                        window.xdotool("mouseup", 1)
                    state = window.wait("panes at rest", lambda state: not state["captured"] and
                                        state["widgets"]["cmdRun"]["rectangle"][2] > 0)
                    self.nothing_is_cut(state, screen)
                self.quit()

    def nothing_is_cut(self, state, screen):
        wide, high = map(int, screen.split("x"))
        widgets = state["widgets"]
        panel = widgets["frmOptions"]["rectangle"]
        for name, widget in widgets.items():
            x, y, width, height = widget["rectangle"]
            if name in ("cmdRun", "frmOptions", "txtFind", "grdItems"):
                self.assertTrue(0 <= x and x + width <= wide and 0 <= y and y + height <= high and width > 0, name)
            if name == "cmdRun":
                self.assertGreaterEqual(width, widget["text_width"] + BUTTON_FRAME, "the button's text")
            elif name.startswith(("chk", "lbl")) and panel[0] <= x < panel[0] + panel[2] and name != "lblCurrentFolder":
                # Below the panel's lower edge it is reached by scrolling.
                self.assertLessEqual(x + widget["text_width"], panel[0] + panel[2], name)
            elif name == "dtpCutoffDate":
                self.assertGreater(width, widget["text_width"], name)

    def pixels(self):
        """Rows of colours of the whole screen; the colours of buttons take a while to change."""
        self.window.picture(self.folder / "screen.png")
        data = subprocess.run(["convert", self.folder / "screen.png", "-depth", "8", "ppm:-"], check=True,
                              stdout=subprocess.PIPE).stdout
        _, size, _, raw = data.split(b"\n", 3)
        wide, _ = map(int, size.split())
        return lambda x, y: tuple(raw[3 * (y * wide + x):3 * (y * wide + x) + 3])

    def colours(self, pixel, rectangle):
        """How often each occurs in a rectangle."""
        x, y, width, height = rectangle
        count = {}
        for at_y in range(y + 2, y + height - 2):
            for at_x in range(x + 2, x + width - 2):
                colour = pixel(at_x, at_y)
                count[colour] = count.get(colour, 0) + 1
        return count

    def test_rows_that_go_stand_out_and_every_text_can_be_read_in_both_themes(self):
        self.make_store(300)
        for theme in ("Adwaita", "Adwaita:dark"):
            with self.subTest(theme=theme):
                window = self.open_on("1280x900", GTK_THEME=theme)
                window.tick_folder("Inbox")
                window.wait("rows that go and rows that stay", lambda state: {
                    row["texts"][1] for row in state["grid"][:12]} == {"0", "1"})
                window.click("cmdRun")
                window.answer("identified for cleaning", "Escape")
                self.wait_for_rest()
                window.xdotool("mousemove", 5, 5)
                state, pixel = window.state(), self.pixels()
                backgrounds = {}
                for row in state["grid"][:12]:
                    x, y, _, height = row["rectangle"]
                    # From the second cell on, texts.
                    x += row["rectangle"][2]
                    counts = self.colours(pixel, (x, y, 220, height))
                    background = max(counts, key=counts.get)
                    self.assertGreaterEqual(max(contrast(background, colour) for colour in counts), 4.5, row["texts"])
                    backgrounds.setdefault(row["texts"][1], set()).add(background)
                self.assertEqual({mark: len(seen) for mark, seen in backgrounds.items()}, {"0": 1, "1": 1})
                self.assertGreaterEqual(contrast(*backgrounds["0"], *backgrounds["1"]), 3)
                for name, widget in state["widgets"].items():
                    if not name.startswith(("chk", "lbl", "cmd")) or not widget["enabled"] or not widget["label"]:
                        continue
                    counts = self.colours(pixel, widget["rectangle"])
                    background = max(counts, key=counts.get)
                    self.assertGreaterEqual(max(contrast(background, colour) for colour in counts), 4.5, name)
                self.quit()


if __name__ == "__main__":
    unittest.main()
