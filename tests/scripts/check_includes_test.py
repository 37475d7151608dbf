"""Plants includes, right and wrong ones, in a small house and looks at what the check says to them."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPTS = pathlib.Path(__file__).resolve().parents[2] / "scripts"
sys.path.insert(0, str(SCRIPTS))
import check_includes  # noqa: E402

HEADERS = ("base/text.h", "controls/control.h", "settings/settings.h", "errors/procedure.h", "outlook/session.h", "cache/item_cache.h",
           "help/about.h", "app/app.h", "stores/sqlite/store.h", "stores/memory/store.h", "import/import.h",
           "desktop/program.h", "cli/ask.h")


class Check_Includes(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.src = pathlib.Path(folder.name) / "src"
        for header in HEADERS:
            self.write(header, "")

    def write(self, file, text):
        (self.src / file).parent.mkdir(parents=True, exist_ok=True)
        (self.src / file).write_text(text, encoding="utf-8")

    def complaints(self, file, line):
        """What is said when `line` stands in src/`file`."""
        self.write(file, f"// a comment\n{line}\n")
        found = list(check_includes.problems(self.src))
        (self.src / file).unlink()
        return found

    def test_a_wrong_include_is_named(self):
        for file, line in (("cache/a.cpp", '#include "app/app.h"'),                 # up
                           ("cache/a.cpp", "  #  include <app/app.h>"),
                           ("controls/a.h", '#include "settings/settings.h"'),      # sideways
                           ("help/a.cpp", '#include "outlook/session.h"'),          # stands apart
                           ("app/a.cpp", '#include "stores/sqlite/store.h"'),       # a concrete store
                           ("import/a.cpp", '#include "stores/sqlite/store.h"'),
                           ("stores/sqlite/a.cpp", '#include "stores/memory/store.h"'),
                           ("stores/sqlite/a.cpp", '#include "cache/item_cache.h"'),
                           ("desktop/a.cpp", '#include "cli/ask.h"'),               # front ends
                           ("app/a.cpp", '#include "desktop/program.h"'),
                           ("cache/a.cpp", '#include "outlook/not_there.h"'),
                           ("cache/a.cpp", '#include "../outlook/session.h"')):
            with self.subTest(file=file, line=line):
                found = self.complaints(file, line)
                self.assertEqual(len(found), 1)
                self.assertIn(f"{file}:2: ", found[0])

    def test_a_folder_without_a_floor_is_named(self):
        for file in ("common/everything.h", "stores/loose.h", "loose.h"):
            with self.subTest(file=file):
                self.assertEqual(len(self.complaints(file, "")), 1)

    def test_the_exit_status_tells(self):
        for line, status in (("", 0), ('#include "app/app.h"', 1)):
            self.write("cache/a.cpp", line)
            run = subprocess.run([sys.executable, SCRIPTS / "check_includes.py", self.src], capture_output=True,
                                 check=False)
            self.assertEqual(run.returncode, status)

    def test_right_includes_pass(self):
        for file, line in (("app/a.cpp", '#include "help/about.h"'),
                           ("help/a.cpp", '#include "errors/procedure.h"'),
                           ("stores/sqlite/a.cpp", '#include "outlook/session.h"'),
                           ("cli/a.cpp", '#include "stores/sqlite/store.h"'),
                           ("cache/a.cpp", "#include <vector>"),
                           ("cache/a.cpp", '/* once:\n#include "app/app.h"\n*/')):
            with self.subTest(file=file, line=line):
                self.assertEqual(self.complaints(file, line), [])


if __name__ == "__main__":
    unittest.main()
