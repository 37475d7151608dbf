#!/usr/bin/env python3
"""The Debian package of what was built: it passes lintian and appstreamcli, goes into an empty root, both programs run from
there, shells complete what it brings, and nothing is left of it once it is removed.

    package_test.py SOURCES BUILD_FOLDER
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

SOURCES, BUILD = map(pathlib.Path, sys.argv[1:3])
PATIENCE = 60  # seconds, for anything that is waited for
NEEDED = ("dpkg-buildpackage", "dh", "lintian", "appstreamcli", "desktop-file-validate", "fakeroot", "Xvfb", "xdotool")


def run(*command, **how):
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True, **how)
    assert done.returncode == 0, f"{command} ended with {done.returncode}:\n{done.stdout[-3000:]}\n{done.stderr[-3000:]}"
    return done.stdout


class Package(unittest.TestCase):
    def setUp(self):
        missing = [program for program in NEEDED if shutil.which(program) is None]
        if missing and os.environ.get("CI") != "true":
            self.skipTest(f"{', '.join(missing)} missing")
        self.assertEqual(missing, [])
        self.root = pathlib.Path(tempfile.mkdtemp(prefix="tidyfold-root-"))
        self.addCleanup(shutil.rmtree, self.root, ignore_errors=True)

    def dpkg(self, *arguments):
        as_root = [] if os.geteuid() == 0 else ["fakeroot"]
        # Its libraries are this system's, not the empty root's.
        run(*as_root, "dpkg", f"--root={self.root}", "--force-not-root", "--force-depends", *arguments)

    def files(self):
        return {str(path.relative_to(self.root)) for path in self.root.rglob("*")}

    def see_the_window(self, store):
        numbers, number = os.pipe()
        screen = subprocess.Popen(["Xvfb", "-displayfd", str(number), "-screen", "0", "1024x768x24"], pass_fds=[number],
                                  stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (screen.terminate(), screen.wait()))
        display = ":" + os.read(numbers, 16).decode().strip()
        environment = {**os.environ, "DISPLAY": display, "HOME": str(self.root / "home"), "GDK_BACKEND": "x11"}
        program = subprocess.Popen([self.root / "usr/bin/tidyfold", store], env=environment, stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (program.kill(), program.wait()))
        until = time.monotonic() + PATIENCE
        while True:
            self.assertIsNone(program.poll(), "the window has ended")
            self.assertLess(time.monotonic(), until, "no window came")
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "Tidyfold"], env=environment,
                                   capture_output=True, text=True).stdout
            if found:
                return
            time.sleep(0.1)

    def test_installs_runs_and_leaves_nothing_behind(self):
        run(SOURCES / "package", "--built", BUILD)
        (package,) = (SOURCES / "build/package").glob("tidyfold_*.deb")
        for folder in ("info", "updates", "triggers"):
            (self.root / "var/lib/dpkg" / folder).mkdir(parents=True)
        (self.root / "var/lib/dpkg/status").touch()
        self.dpkg("--install", package)
        for file in ("share/tidyfold/Tidyfold20.chm", "share/tidyfold/tidyfoldhelp/index.html",
                     "share/icons/hicolor/48x48/apps/org.tidyfold.Tidyfold.png", "share/man/man1/tidyfold-cli-clean.1.gz"):
            self.assertTrue((self.root / "usr" / file).is_file(), file)

        (self.root / "home").mkdir()
        store = self.root / "home/sample.tidyfold"
        cli = self.root / "usr/bin/tidyfold-cli"
        run(cli, "sample", store, "--items", 50)
        self.assertIn("Inbox", run(cli, "--store", store, "folders"))
        self.see_the_window(store)
        completion = self.root / "usr/share/bash-completion/completions/tidyfold-cli"
        for words, wanted in {("tidyfold-cli", "cl"): "clean", ("tidyfold-cli", "clean", "--dry"): "--dry-run",
                              ("tidyfold-cli", "export", "--as", "ma"): "maildir"}.items():
            shown = run("bash", "-c", f'source "$0"; COMP_WORDS=("$@"); COMP_CWORD={len(words) - 1}; _tidyfold_cli '
                        '2>/dev/null; echo "${COMPREPLY[@]}"', completion, *words)
            self.assertEqual(shown.split(), [wanted])

        self.dpkg("--purge", "tidyfold")
        left = {file for file in self.files() if not file.startswith(("var/lib/dpkg", "var/log", "home"))}
        self.assertLessEqual(left, {"var", "var/lib", "usr", "."})


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
