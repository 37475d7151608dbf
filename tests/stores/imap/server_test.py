#!/usr/bin/env python3
"""tidyfold-cli on Dovecot over the network, started as the user who runs this, on the loopback; doveadm is the judge."""

import base64
import contextlib
import getpass
import grp
import imaplib
import json
import os
import pathlib
import pwd
import shutil
import socket
import subprocess
import tempfile
import threading
import time
import unittest

CLI = os.environ.get("TIDYFOLD_CLI", "tidyfold-cli")
PATIENCE = 60  # seconds
# What is no name of this machine to the program, though it is this machine: encryption is then a must.
ELSEWHERE = "2130706433"
CONFIGURATION = """
protocols = imap
listen = 127.0.0.1
base_dir = {folder}/run
state_dir = {folder}/state
log_path = {folder}/log
default_internal_user = {user}
default_login_user = {user}
default_internal_group = {group}
mail_location = maildir:{folder}/mail
first_valid_uid = 1
auth_mechanisms = plain login
auth_failure_delay = 0
ssl_cert = <{folder}/{certificate}.pem
ssl_key = <{folder}/key.pem
service anvil {{
  chroot =
}}
service stats {{
  chroot =
}}
service imap-login {{
  chroot =
  inet_listener imap {{
    port = {plain}
  }}
  inet_listener imaps {{
    port = {tls}
    ssl = yes
  }}
}}
passdb {{
  driver = static
  args = password=geheim
}}
userdb {{
  driver = static
  args = uid={uid} gid={gid} home={folder}/home
}}
namespace inbox {{
  inbox = yes
  separator = /
  mailbox Papierkorb {{
    auto = create
    special_use = \\Trash
  }}
}}
"""


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


def run(*command, **how):
    return subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE, **how)


class Server:
    def __init__(self, folder, certificate="good"):
        self.folder, self.plain, self.tls = pathlib.Path(folder), free_port(), free_port()
        (self.folder / "home").mkdir(exist_ok=True)
        # It serves nobody's mail as the superuser.
        user = pwd.getpwnam("nobody" if os.geteuid() == 0 else getpass.getuser())
        text = CONFIGURATION.format(folder=folder, certificate=certificate, plain=self.plain, tls=self.tls, user=user.pw_name,
                                    group=grp.getgrgid(user.pw_gid).gr_name, uid=user.pw_uid, gid=user.pw_gid)
        (self.folder / "dovecot.conf").write_text(text)
        if os.geteuid() == 0:
            run("chown", "-R", f"{user.pw_uid}:{user.pw_gid}", folder)
        self.process = subprocess.Popen([shutil.which("dovecot", path="/usr/sbin:/usr/bin"), "-F", "-c",
                                         self.folder / "dovecot.conf"], stdout=subprocess.DEVNULL)
        end = time.monotonic() + PATIENCE
        while True:
            with contextlib.suppress(OSError), socket.create_connection(("127.0.0.1", self.plain)):
                return
            if self.process.poll() is not None or time.monotonic() > end:
                raise AssertionError("Dovecot does not start: " + (self.folder / "log").read_text())
            time.sleep(0.02)

    def stop(self):
        self.process.terminate()
        self.process.wait(PATIENCE)

    def content(self):
        """Mailbox and subject of every message, by doveadm."""
        found = run("doveadm", "-c", self.folder / "dovecot.conf", "-f", "tab", "fetch", "-u", "anna",
                    "mailbox hdr.subject", "mailbox", "*")
        return sorted(tuple(line.split("\t")) for line in found.stdout.splitlines()[1:])


class Proxy:
    """Cuts the connection for good or once, after so many bytes from the server."""

    def __init__(self, port, most, once):
        self.target, self.most, self.once, self.cuts = port, most, once, 0
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        with contextlib.suppress(OSError):
            while True:
                near = self.listener.accept()[0]
                far = socket.create_connection(("127.0.0.1", self.target))
                threading.Thread(target=self.pass_on, args=(near, far, False), daemon=True).start()
                threading.Thread(target=self.pass_on, args=(far, near, True), daemon=True).start()

    def pass_on(self, source, sink, counts):
        left = self.most if counts and not (self.once and self.cuts) else None
        with contextlib.suppress(OSError):
            while data := source.recv(left or 4096):
                sink.sendall(data)
                if left is not None:
                    left -= len(data)
                    if left == 0:
                        self.cuts += 1
                        break
        for end in (source, sink):
            with contextlib.suppress(OSError):
                end.shutdown(socket.SHUT_RDWR)


class Mail_Server(unittest.TestCase):
    def setUp(self):
        if not shutil.which("dovecot", path="/usr/sbin:/usr/bin") or not shutil.which("openssl"):
            if os.environ.get("CI") == "true":
                self.fail("Dovecot or openssl is not installed.")
            self.skipTest("Dovecot or openssl is not installed.")
        self.folder = tempfile.mkdtemp(prefix="tidyfold-mail-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        os.chmod(self.folder, 0o755)
        run("openssl", "genrsa", "-out", f"{self.folder}/key.pem", "2048")
        for name, host, days in (("good", "DNS:localhost,IP:127.0.0.1", "2"), ("expired", "DNS:localhost", "-1"),
                                 ("other", "DNS:mail.example.org", "2")):
            run("openssl", "req", "-new", "-key", f"{self.folder}/key.pem", "-subj", "/CN=Test", "-addext",
                f"subjectAltName={host}", "-out", f"{self.folder}/request")
            made = run("openssl", "x509", "-req", "-in", f"{self.folder}/request", "-signkey", f"{self.folder}/key.pem",
                       "-days", days, "-copy_extensions", "copy", "-out", f"{self.folder}/{name}.pem")
            self.assertEqual(made.returncode, 0, made.stderr)

    def start(self, certificate="good"):
        server = Server(self.folder, certificate)
        self.addCleanup(server.stop)
        return server

    def cli(self, address, *words, password="geheim", trusted="good"):
        home = f"{self.folder}/me"
        return run(CLI, "--store", address, "--password-command", f"echo '{password}'", *words,
                   env={"HOME": home, "PATH": os.environ["PATH"], "SSL_CERT_FILE": f"{self.folder}/{trusted}.pem"})

    def fill(self, server):
        other = imaplib.IMAP4("127.0.0.1", server.plain)
        other.login("anna", "geheim")
        for mailbox in ("INBOX", "Lists", "Lists/Old"):
            other.create(mailbox)
            for number in range(6):
                flags = {1: "", 2: "\\Seen \\Flagged"}.get(number, "\\Seen")
                other.append(mailbox, flags, None, f"Subject: {mailbox} {number}\r\n\r\nx\r\n".encode())
        return other

    def test_encryption_and_login(self):
        address = "imaps://anna@localhost:{tls}/"
        cases = (("good", address, "geheim", "good", "Papierkorb", 0),
                 ("good", "imap://anna@localhost:{plain}/", "geheim", "good", "Papierkorb", 0),
                 ("good", "imap://anna@" + ELSEWHERE + ":{plain}/", "geheim", "good", "Papierkorb", 0),
                 ("good", "imap://anna@" + ELSEWHERE + ":{plain}/", "geheim", "other", "prove that it is the right one", 1),
                 ("good", address, "falsch", "good", "did not let", 1),
                 ("good", address, "geheim", "other", "prove that it is the right one", 1),
                 ("good", "imaps://anna@localhost:{plain}/", "geheim", "good", "does not speak TLS", 1),
                 ("expired", address, "geheim", "expired", "prove that it is the right one", 1),
                 ("other", address, "geheim", "other", "prove that it is the right one", 1))
        server = None
        for certificate, place, password, trusted, words, fails in cases:
            with self.subTest(certificate=certificate, address=place, password=password, trusted=trusted):
                if server is None or server[0] != certificate:
                    if server:
                        server[1].stop()
                    server = (certificate, self.start(certificate))
                done = self.cli(place.format(tls=server[1].tls, plain=server[1].plain), "folders", password=password,
                                trusted=trusted)
                self.assertIn(words, done.stdout + done.stderr)
                self.assertEqual(done.returncode != 0, bool(fails))
                self.assertNotIn(password, done.stdout + done.stderr)

    def test_doveadm_agrees_about_every_strategy(self):
        server = self.start()
        other = self.fill(server)
        address = f"imaps://anna@localhost:{server.tls}/"

        def subjects(mailbox, numbers):
            return {(mailbox, f"{mailbox} {number}") for number in numbers}

        everything, plain = range(6), (0, 3, 4, 5)  # without the unread and the flagged one
        cases = ((("--folder", "Lists"), subjects("Lists", plain), True),
                 (("--folder", "Inbox", "--unread", "--flagged", "--permanent"), subjects("INBOX", everything), False),
                 (("--folder", "Lists", "--sub-folders", "--turbo"),
                  subjects("Lists", (1, 2)) | subjects("Lists/Old", everything), False))
        for words, gone, is_moved in cases:
            with self.subTest(words=words):
                before = server.content()
                done = self.cli(address, "clean", *words, "--yes", "--json")
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
                moved = {("Papierkorb", subject) for _, subject in gone} if is_moved else set()
                self.assertEqual(set(server.content()), (set(before) - gone) | moved)
                if not is_moved:
                    continue
                done = self.cli(address, "undo", "--yes")
                self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
                self.assertEqual(server.content(), before)
                done = self.cli(address, "clean", *words, "--yes")
                self.assertEqual(set(server.content()), (set(before) - gone) | moved)
        other.append("Lists/Old", "", None, b"Subject: gone with its folder\r\n\r\nx\r\n")
        done = self.cli(address, "clean", "--folder", "Lists/Old", "--delete-folders", "--yes")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        listed = run("doveadm", "-c", server.folder / "dovecot.conf", "mailbox", "list", "-u", "anna")
        self.assertEqual(sorted(listed.stdout.split()), ["INBOX", "Lists", "Papierkorb"])

    def test_what_another_program_changes_after_the_plan_stays(self):
        server = self.start()
        other = self.fill(server)
        address, plan = f"imaps://anna@localhost:{server.tls}/", f"{self.folder}/plan.json"
        for way in ((), ("--permanent",)):
            pathlib.Path(plan).unlink(missing_ok=True)
            mailbox, folder = ("INBOX", "Inbox") if way else ("Lists", "Lists")
            planned = self.cli(address, "clean", "--folder", folder, *way, "--dry-run", "--save-plan", plan)
            self.assertEqual(planned.returncode, 0, planned.stdout + planned.stderr)
            other.select(mailbox)
            other.store("4", "-FLAGS", "(\\Seen)")
            other.store("5", "+FLAGS", "(\\Flagged)")
            other.store("6", "+FLAGS", "(\\Deleted)")
            other.expunge()
            other.append(mailbox, "\\Seen", None, b"Subject: late\r\n\r\nx\r\n")
            self.cli(address, "clean", "--plan", plan, "--yes")
            left = {subject for box, subject in server.content() if box == mailbox}
            self.assertEqual(left, {f"{mailbox} {number}" for number in (1, 2, 3, 4)} | {"late"}, way)

    def test_connections_that_are_cut(self):
        server = self.start()
        other, cuts, told = self.fill(server), 0, 0
        for position in range(200, 3600, 170):
            for way, once in (((), True), (("--permanent",), False)):
                with self.subTest(position=position, way=way):
                    for mailbox in ("INBOX", "Papierkorb"):
                        other.select(mailbox)
                        if other.search(None, "ALL")[1][0]:
                            other.store("1:*", "+FLAGS", "(\\Deleted)")
                            other.expunge()
                    for number in range(3):
                        other.append("INBOX", "\\Seen", None, f"Subject: cut {number}\r\n\r\nx\r\n".encode())
                    before = {entry for entry in server.content() if not entry[1].startswith("cut")}
                    proxy = Proxy(server.plain, position, once)
                    done = self.cli(f"imap://anna@localhost:{proxy.port}/", "clean", "--folder", "Inbox", *way, "--yes",
                                    "--json")
                    proxy.listener.close()
                    cuts += proxy.cuts
                    content = server.content()
                    self.assertEqual({entry for entry in content if entry[0].startswith("Lists")},
                                     {entry for entry in before if entry[0].startswith("Lists")})
                    left = [entry for entry in content if entry[0] == "INBOX"]
                    trash = [entry for entry in content if entry[0] == "Papierkorb"]
                    if not way:
                        self.assertEqual(len(left) + len(trash), 3)
                    other.select("INBOX")
                    if once:
                        self.assertEqual(other.search(None, "DELETED")[1][0], b"")
                    if done.returncode == 0:
                        self.assertEqual(left, [])
                    if done.stdout.strip():
                        self.assertLessEqual(json.loads(done.stdout)["processed"], 3 - len(left))
                        told += once and json.loads(done.stdout)["processed"] == 3
        self.assertGreater(cuts, 10)
        self.assertGreater(told, 10, "one cut is made good")

    def test_logins(self):
        token, user = "t0ken", "anna"
        bearer = f"user={user}\1auth=Bearer {token}\1\1"
        # What is said, and what follows of it in base64.
        cases = (("AUTH=XOAUTH2 LOGINDISABLED SASL-IR", [("AUTHENTICATE XOAUTH2 ", bearer)]),
                 ("AUTH=XOAUTH2 LOGINDISABLED", [("AUTHENTICATE XOAUTH2", ""), ("", bearer)]),
                 ("AUTH=OAUTHBEARER LOGINDISABLED SASL-IR",
                  [("AUTHENTICATE OAUTHBEARER ",
                    f"n,a={user},\1host=localhost\1port=PORT\1auth=Bearer {token}\1\1")]),
                 ("AUTH=LOGIN", [("AUTHENTICATE LOGIN", ""), ("", user), ("", token)]),
                 ("AUTH=PLAIN", [("AUTHENTICATE PLAIN", ""), ("", f"\0{user}\0{token}")]),
                 ("", [(f'LOGIN "{user}" "{token}"', "")]))
        for capabilities, expected in cases:
            for refuses in (False, True):
                with self.subTest(capabilities=capabilities, refuses=refuses):
                    listener, said = socket.create_server(("127.0.0.1", 0)), []
                    port = listener.getsockname()[1]

                    def serve():
                        with contextlib.suppress(OSError):
                            stream = listener.accept()[0].makefile("rwb", buffering=0)
                            stream.write(f"* OK [CAPABILITY IMAP4rev1 {capabilities}] hi\r\n".encode())
                            tag = ""
                            while len(said) < len(expected):
                                line = stream.readline().decode().rstrip("\r\n")
                                if not said:
                                    tag, line = line.split(" ", 1)
                                said.append(line)
                                if len(said) < len(expected):
                                    stream.write(b"+ \r\n")
                            if refuses and "OAUTH" in capabilities:  # it says why, and waits for an answer
                                stream.write(b"+ eyJzdGF0dXMiOiI0MDEifQ==\r\n")
                                stream.readline()
                            stream.write(f"{tag} {'NO not today ' + token if refuses else 'OK in'}\r\n".encode())
                            while line := stream.readline().decode():
                                tag, word = line.split()[:2]
                                if word.startswith("CAPABILITY"):
                                    stream.write(b"* CAPABILITY IMAP4rev1\r\n")
                                elif word.startswith("LIST"):
                                    stream.write(b'* LIST () "/" INBOX\r\n')
                                elif word.startswith("STATUS"):
                                    stream.write(b"* STATUS INBOX (MESSAGES 0 UIDVALIDITY 1)\r\n")
                                stream.write(f"{tag} OK\r\n".encode())

                    thread = threading.Thread(target=serve, daemon=True)
                    thread.start()
                    done = self.cli(f"imap://{user}@localhost:{port}/", "folders", password=token)
                    listener.close()
                    self.assertEqual(said, [words + base64.b64encode(text.replace("PORT", str(port)).encode()).decode()
                                            for words, text in expected])
                    self.assertEqual(done.returncode != 0, refuses, done.stdout + done.stderr)
                    self.assertIn("not today" if refuses else "Inbox", done.stdout + done.stderr)
                    self.assertNotIn(token, done.stdout + done.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2, warnings="ignore")
