"""Other programs read what was exported: mutt and mblaze list the same mail that Tidyfold lists, with its marks.

Needs mutt and mblaze (mlist, mhdr); where they are absent, the tests say so and are skipped. With CI=true their
absence is a failure.
"""

import collections
import json
import os
import pathlib
import pty
import re
import select
import shutil
import signal
import subprocess
import tempfile
import unittest

CLI = os.path.join(os.environ["TIDYFOLD_PROGRAMS"], "tidyfold-cli")
LONGEST_SILENCE = 20  # seconds
FOLDERS = ["Inbox", "Drafts", "Family/Recipes"]


def needs(*programs):
    missing = [program for program in programs if shutil.which(program) is None]
    if missing and os.environ.get("CI") == "true":
        raise AssertionError(f"{', '.join(missing)} missing")
    return unittest.skipIf(missing, f"{', '.join(missing)} missing")


def stop(pid):
    try:
        os.kill(pid, signal.SIGKILL)
        os.waitpid(pid, 0)
    except (ProcessLookupError, ChildProcessError):
        pass


def plain(subject):
    return re.sub(r"\s+", " ", subject).strip()


class Other_Programs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.store = self.folder / "store.tidyfold"
        self.run_cli("sample", self.store, "--items", "3000")

    def run_cli(self, *words):
        environment = {**os.environ, "XDG_STATE_HOME": str(self.folder / "state")}
        return subprocess.run([CLI, *map(str, words)], env=environment, check=True, capture_output=True, text=True).stdout

    def expected(self, path):
        """(subject, unread) of each message of a folder."""
        items = json.loads(self.run_cli("--store", self.store, "items", "--folder", path, "--unread", "--flagged", "--json"))
        self.assertGreater(len(items), 10)
        return collections.Counter((plain(item["subject"]), item["unread"]) for item in items)

    def listed_by_mutt(self, mailbox):
        settings = self.folder / "muttrc"
        settings.write_text('set index_format="@%Z@%s@"\nset quit=yes move=no timeout=1 arrow_cursor=yes\n'
                            f'set folder="{self.folder}"\n')
        pid, terminal = pty.fork()
        if pid == 0:
            os.environ.update(HOME=str(self.folder), TERM="xterm", LC_ALL="C.UTF-8")
            # One screen for all rows; the key is read once they are shown.
            os.execvp("sh", ["sh", "-c", 'stty rows 2000 cols 300; exec mutt -n -F "$1" -R -f "$2" -e "push x"', "sh",
                             str(settings), str(mailbox)])
        self.addCleanup(stop, pid)
        screen = b""
        while select.select([terminal], [], [], LONGEST_SILENCE)[0]:
            try:
                screen += os.read(terminal, 1 << 16)
            except OSError:  # it has ended
                break
        rows = re.findall("@([^@\x1b]*)@([^@\x1b]*)@", screen.decode("utf-8", "replace"))
        return collections.Counter((plain(subject), "N" in flags or "O" in flags) for flags, subject in rows)

    @needs("mutt")
    def test_mutt_lists_maildirs_and_mboxes(self):
        for form in ("maildir", "mbox"):
            self.run_cli("--store", self.store, "export", self.folder / form, "--as", form)
            for path in FOLDERS:
                mailbox = self.folder / form / path
                if form == "mbox":
                    mailbox = mailbox / (mailbox.name + ".mbox")
                self.assertEqual(self.listed_by_mutt(mailbox), self.expected(path), f"{form} {path}")

    @needs("mlist", "mhdr")
    def test_mblaze_lists_maildirs(self):
        self.run_cli("--store", self.store, "export", self.folder / "maildir")
        for path in FOLDERS:
            files = subprocess.run(["mlist", self.folder / "maildir" / path], check=True, capture_output=True).stdout
            subjects = subprocess.run(["mhdr", "-d", "-h", "subject"], input=files, check=True, capture_output=True)
            lines = subjects.stdout.decode("utf-8").splitlines()
            names = files.decode("utf-8").splitlines()
            self.assertEqual(len(lines), len(names))
            listed = collections.Counter(
                (plain(line), "S" not in name.rsplit(":2,", 1)[1]) for line, name in zip(lines, names))
            self.assertEqual(listed, self.expected(path), path)


if __name__ == "__main__":
    unittest.main()
