"""Help in the built window: What's This, the book, the browser window, About."""

import functools
import http.server
import os
import threading
import unittest

from window_case import PROGRAMS, Window_Case, ticked
from window_session import PATIENCE


class Pages(http.server.SimpleHTTPRequestHandler):
    """The files of a folder on the loopback address; allows them to be cached, as usual."""

    def do_GET(self):
        super().do_GET()
        self.server.asked.add(self.path)

    def end_headers(self):
        self.send_header("Cache-Control", "max-age=86400")
        super().end_headers()

    def log_message(self, *_):
        pass


class Help_Window(Window_Case):
    def serve(self, folder):
        """Returns the server and its address."""
        server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), functools.partial(Pages, directory=str(folder)))
        server.asked = set()
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        return server, f"http://127.0.0.1:{server.server_port}"

    def end(self):
        self.window.key("alt+F4")
        self.assertEqual(self.window.program.wait(PATIENCE), 0)
        self.window.close()

    def wait_for_window(self, name, title):
        return self.window.wait(f"{name} with the title {title}", lambda state: state["keyboard"] == "other" and
                                state["beside"][name]["title"] == title)["beside"][name]

    def close_by_escape(self, name):
        self.window.key("Escape", "other")
        self.window.wait(name + " to close", lambda state: name not in state["beside"])

    def ask_whats_this(self):
        self.window.key("shift+F1")
        self.window.wait("the pointer that asks", lambda state: state["pointer_asks"])

    def test_whats_this_shows_the_topic_of_what_is_clicked_and_the_click_does_nothing_else(self):
        self.make_store(200)
        window = self.open()
        before = window.wait("the options", lambda state: not state["widgets"]["chkMatchWord"]["enabled"])["widgets"]
        for control, topic in (("chkTurbo", "Turbo"), ("chkMatchWord", "Match Word"), ("chkType(44)", "Type: Notes"),
                               ("trvFolders", "Folder tree")):
            self.ask_whats_this()
            window.click_at(before[control]["rectangle"])
            self.wait_for_window("frmHelpViewer", "Help: " + topic)
            self.close_by_escape("frmHelpViewer")
            window.wait("a window where nothing has happened", lambda state: not state["pointer_asks"] and
                        state["widgets"] == before)
        self.ask_whats_this()
        window.key("Escape")
        window.wait("the usual pointer", lambda state: not state["pointer_asks"])
        window.tick("chkTurbo")
        window.key("F1")
        self.wait_for_window("frmHelpViewer", "Help: Tidyfold Help")
        self.close_by_escape("frmHelpViewer")
        # An open What's This ends with the window.
        self.ask_whats_this()
        self.end()

    @unittest.skipUnless(os.environ["TIDYFOLD_HAS_WEB_VIEW"] == "1", "Built without the view of Web pages.")
    def test_pages_have_a_window_that_keeps_its_size_and_a_site_that_is_gone_offers_the_book(self):
        self.make_store(200)
        server, site = self.serve(PROGRAMS)
        window = self.open(TIDYFOLD_SITE=site)
        window.key("ctrl+h")
        # The style sheet is requested when the page is shown.
        window.wait("the page requested", lambda _: {
            "/tidyfoldhelp/index.html", "/tidyfoldhelp/style.css"} <= server.asked)
        self.wait_for_window("frmHelpBrowser", "Tidyfold Help")
        window.xdotool("search", "--onlyvisible", "--name", "^Tidyfold Help$", "windowsize", 840, 620)

        def is_filled(state):
            browser = state["beside"]["frmHelpBrowser"]
            return (browser["rectangle"][2] == 840 and
                    browser["widgets"]["WebBrowser1"]["rectangle"] == browser["rectangle"])
        size = window.wait("the new size, filled by the page", is_filled)["beside"]["frmHelpBrowser"]["rectangle"][2:]
        # The main window stays usable, and the browser window is reused.
        window.tick_folder("Inbox")
        window.wait("the Inbox to be ticked", lambda state: ticked(state)[0].startswith("Inbox"))
        window.key("alt+h")
        window.key("a", "menu")
        about = self.wait_for_window("frmAbout", "About Tidyfold")["widgets"]
        self.assertEqual(about["lblHeading"]["label"], "Tidyfold")
        self.assertEqual(about["txtVersionNumber"]["text"], os.environ["TIDYFOLD_VERSION"])
        self.assertTrue(about["txtLicences"]["text"].startswith("Libraries that Tidyfold uses"))
        window.key("alt+h", "other")
        window.wait("the home page requested", lambda _: "/tidyfoldhelp/home.html" in server.asked)

        def is_home(state):
            browser = state["beside"]["frmHelpBrowser"]
            return browser["title"] == "Tidyfold - Tidyfold Help" and browser["rectangle"][2:] == size
        window.wait("the home page in the same window", is_home)
        self.close_by_escape("frmHelpBrowser")
        self.close_by_escape("frmAbout")
        self.end()
        # No server at the address, then one without the page.
        server.shutdown()
        server.server_close()
        for reason in ("", "The site answered with status 404."):
            window = self.open(TIDYFOLD_SITE=self.serve(self.folder)[1] if reason else site)
            window.key("ctrl+h")
            state = window.box("/tidyfoldhelp/index.html could not be loaded.\r\n" + reason)
            self.assertEqual(state["beside"]["frmHelpBrowser"]["rectangle"][2:], size)
            window.answer("The help book holds the same topics. Open it?", "alt+y")
            self.wait_for_window("frmHelpViewer", "Help: Tidyfold Help")
            self.close_by_escape("frmHelpViewer")
            self.close_by_escape("frmHelpBrowser")
            self.end()


if __name__ == "__main__":
    unittest.main()
