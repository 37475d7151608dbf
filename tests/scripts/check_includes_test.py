"""Runs the check on a small tree of folders, with one include at a time in it."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "scripts" / "check_includes.py"
HEADERS = ("base/text.h", "controls/control.h", "settings/settings.h", "errors/procedure.h", "outlook/session.h",
           "cache/item_cache.h", "help/about.h", "app/app.h", "stores/sqlite/store.h", "stores/memory/store.h",
           "import/import.h", "desktop/program.h", "cli/ask.h")
WRONG = (("cache/a.cpp", '#include "app/app.h"'),                 # up
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
         ("cache/a.cpp", '#include "../outlook/session.h"'),
         ("common/everything.h", ""), ("stores/loose.h", ""), ("loose.h", ""))  # folders without a floor
RIGHT = (("app/a.cpp", '#include "help/about.h"'),
         ("help/a.cpp", '#include "errors/procedure.h"'),
         ("stores/sqlite/a.cpp", '#include "outlook/session.h"'),
         ("cli/a.cpp", '#include "stores/sqlite/store.h"'),
         ("cache/a.cpp", "#include <vector>"),
         ("cache/a.cpp", '/* once:\n#include "app/app.h"\n*/'))


class Check_Includes(unittest.TestCase):
    def test_names_wrong_includes_and_no_others(self):
        with tempfile.TemporaryDirectory() as folder:
            src = pathlib.Path(folder) / "src"
            for header in HEADERS:
                (src / header).parent.mkdir(parents=True, exist_ok=True)
                (src / header).write_text("")
            for cases, status in ((WRONG, 1), (RIGHT, 0)):
                for file, line in cases:
                    with self.subTest(file=file, line=line):
                        (src / file).parent.mkdir(exist_ok=True)
                        (src / file).write_text(f"// a comment\n{line}\n")
                        run = subprocess.run([sys.executable, CHECK, src], capture_output=True, text=True, check=False)
                        (src / file).unlink()
                        self.assertEqual(run.returncode, status, run.stderr)
                        self.assertEqual(len(run.stderr.splitlines()), status, run.stderr)
                        self.assertTrue(not line or not run.stderr or f"{file}:2: " in run.stderr, run.stderr)


if __name__ == "__main__":
    unittest.main()
