"""What the tests of the command line share: they run the real bmr and sampledb.

usage of each: TEST.py BMR SAMPLEDB ALTER RANDOM_OPS DATA [unittest arguments]
"""
import contextlib
import json
import os
import pathlib
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

BMR, SAMPLEDB, ALTER, RANDOM_OPS, DATA = sys.argv[1:6]
FAILING_DISK = pathlib.Path(ALTER).with_name("libfailing_disk.so")
PASS = "Blue kettle 7 – Ü"
FOREIGN_PASS = "correct Horse 9"


def call(program, *args, secret=PASS, **kwargs):
    """Runs a program that reads `secret` from a descriptor of its own."""
    args = [str(a) for a in args]
    reader, writer = os.pipe()
    os.write(writer, secret if isinstance(secret, bytes) else (secret + "\n").encode())
    os.close(writer)
    try:
        return subprocess.run([program, *args, "--passphrase-fd", str(reader)], pass_fds=[reader],
                              capture_output=True, encoding="utf-8", timeout=120, **kwargs)
    finally:
        os.close(reader)


class Base(unittest.TestCase):
    def setUp(self):
        # In memory where there is room: every store waits for the disk.
        room = os.path.isdir("/dev/shm") and shutil.disk_usage("/dev/shm").free >= 512 << 20
        self.folder = pathlib.Path(tempfile.mkdtemp(dir="/dev/shm" if room else None))
        self.addCleanup(shutil.rmtree, self.folder)
        self.file = self.folder / "plans.bmr"

    def bmr(self, command, *args, file=None, secret=PASS, status=0):
        done = call(BMR, command, file or self.file, *args, secret=secret)
        self.assertEqual(done.returncode, status, f"bmr {command} {args}: {done.stdout}{done.stderr}")
        if status:
            self.assertRegex(done.stderr, r"\Abmr: [^\n]+\n\Z")
        else:
            self.assertEqual(done.stderr, "")
        self.assertEqual(sorted(self.folder.glob("*-journal")), [])
        return done.stdout if status == 0 else done.stderr

    def listed(self, *args, section="todo", **kwargs):
        return json.loads(self.bmr("list", section, "--json", *args, **kwargs))

    def sample(self, records, seed=1, file=None, sections="todo"):
        done = call(SAMPLEDB, file or self.file, "--records", records, "--seed", seed, "--today", "2026-11-21",
                    *(["--sections", sections] if sections else []))
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def rows(self, condition):
        with contextlib.closing(sqlite3.connect(self.file)) as db:
            return db.execute(f"SELECT * FROM tt WHERE {condition} ORDER BY fPK").fetchall()


def main():
    unittest.main(argv=[sys.argv[0], *sys.argv[6:]], verbosity=1)
