#!/usr/bin/env python3
"""Programs are signed with the key that the environment names; without one they are left alone, and that is said."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile


def main():
    sign, program = sys.argv[1], pathlib.Path(sys.argv[2])
    with tempfile.TemporaryDirectory() as folder:
        key, certificate, store, password = (os.path.join(folder, name) for name in
                                             ("key.pem", "certificate.pem", "key.p12", "password"))
        pathlib.Path(password).write_text("secret")
        subprocess.run(["openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out", certificate,
                        "-days", "2", "-subj", "/CN=Test", "-addext", "extendedKeyUsage=codeSigning"],
                       check=True, capture_output=True)
        subprocess.run(["openssl", "pkcs12", "-export", "-inkey", key, "-in", certificate, "-out", store,
                        "-passout", "file:" + password], check=True)
        copy = pathlib.Path(folder, program.name)
        for named in (False, True):
            shutil.copy(program, copy)
            environment = {name: value for name, value in os.environ.items() if not name.startswith("TIDYFOLD_SIGNING")}
            if named:
                environment |= {"TIDYFOLD_SIGNING_KEY": store, "TIDYFOLD_SIGNING_PASSWORD": password}
            said = subprocess.run([sign, copy], env=environment, check=True, capture_output=True, text=True).stdout
            assert said.startswith("Signed" if named else "Unsigned"), said
            verified = subprocess.run(["osslsigncode", "verify", "-CAfile", certificate, "-in", copy], capture_output=True)
            assert (verified.returncode == 0) == named, verified.stdout
            assert named or copy.read_bytes() == program.read_bytes()


if __name__ == "__main__":
    main()
