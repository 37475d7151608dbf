"""Drives tidyfold-driven.exe under Wine on a virtual screen by mouse and keyboard."""

import pathlib
import subprocess

from window_session import Session


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class Wine_Window(Session):
    def __init__(self, wine, program, stores=(), screenshots=None, begin=None):
        self.wine, self.launcher, self.begin = str(wine), [str(wine)], begin
        self.screenshots = pathlib.Path(screenshots)
        super().__init__(program, stores)

    def path(self, file):
        return windows_path(file)

    def prepare(self):
        # A prefix of its own: one that was started without a screen shows no windows later.
        self.environment["WINEPREFIX"] = str(self.folder / "wine")
        self.run("wineboot", "--init")
        # In a Wine desktop the keyboard focus follows Windows' rules, not a window manager's.
        for key, name, value in ((r"HKCU\Software\Wine\Explorer", "Desktop", "Tests"),
                                 (r"HKCU\Software\Wine\Explorer\Desktops", "Tests", self.screen)):
            self.run("reg", "add", key, "/v", name, "/d", value, "/f")
        subprocess.run(["wineserver", "--wait"], env=self.environment, check=True)  # the desktop comes with the next
        # Wine's packaged fonts, and a fallback for missing characters.
        fonts = pathlib.Path(self.environment["WINEPREFIX"], "drive_c/windows/Fonts")
        for font in pathlib.Path("/usr/share/wine/fonts").glob("*.ttf"):
            if not (fonts / font.name).exists():
                (fonts / font.name).symlink_to(font)
        for name in ("Tahoma", "Tahoma Bold"):
            self.run("reg", "add", r"HKLM\Software\Microsoft\Windows NT\CurrentVersion\FontLink\SystemLink", "/v", name,
                     "/t", "REG_MULTI_SZ", "/d", "DejaVuSans.ttf,DejaVu Sans", "/f")
        if self.begin:
            self.begin(self)

    def run(self, *words):
        """Runs one of Wine's programs to its end; returns its output."""
        return subprocess.run([self.wine, *map(str, words)], env=self.environment, check=True, text=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout

    def quit(self):
        """Expects no failed checks of the toolkit."""
        status = super().quit()
        complaints = (self.folder / "output.txt").read_text(errors="replace")
        assert status == 0 and '" failed.' not in complaints, (status, complaints)

    def close(self):
        if "WINEPREFIX" in self.environment:
            subprocess.run(["wineserver", "-k"], env=self.environment, check=False)
        super().close()

    def picture(self, name):
        self.screenshots.mkdir(parents=True, exist_ok=True)
        super().picture(self.screenshots / f"windows-{name}.png")
