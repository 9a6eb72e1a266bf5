#!/usr/bin/env python3
"""Drives backups, restores and imports of the real bmr end to end.

usage: bmr_backup_test.py BMR SAMPLEDB ALTER RANDOM_OPS DATA [unittest arguments]
"""
import base64
import contextlib
import json
import os
import pathlib
import shutil
import sqlite3
import stat
import subprocess
import zlib

from bmr_support import BMR, DATA, FAILING_DISK, Base, call, main


class BackupBase(Base):
    def keyless(self, command, *args, status=0, **kwargs):
        """Runs a command that asks for no passphrase."""
        done = subprocess.run([BMR, command, *map(str, args)], stdin=subprocess.DEVNULL, capture_output=True,
                              encoding="utf-8", timeout=120, **kwargs)
        self.assertEqual(done.returncode, status, f"bmr {command} {args}: {done.stdout}{done.stderr}")
        if status:
            self.assertRegex(done.stderr, r"\Abmr: [^\n]+")
        else:
            self.assertEqual(done.stderr, "")
        return done.stdout if status == 0 else done.stderr

    def backup(self, *args):
        return pathlib.Path(self.keyless("backup", self.file, *args).rstrip("\n"))

    def files(self):
        return sorted(p.name for p in self.folder.iterdir())


class Backups(BackupBase):
    def test_a_backup_is_a_plain_zlib_stream_and_comes_back_to_the_byte(self):
        self.sample(300)
        before = self.file.read_bytes()
        backup = self.backup()
        self.assertRegex(backup.name, r"\Aplans\d{12}\.bmz\Z")
        self.assertEqual(backup.parent, self.folder)
        self.assertEqual(stat.S_IMODE(backup.stat().st_mode), 0o600)
        raw = backup.read_bytes()
        name = str(self.file).encode("cp1252")
        self.assertEqual(raw[-len(name) - 6:], name + bytes([len(name), 3]) + len(before).to_bytes(4, "little"))
        self.assertEqual(zlib.decompress(raw[:-len(name) - 6]), before)
        self.assertEqual(self.file.read_bytes(), before)

        self.assertIn("--replace", self.keyless("restore", backup, status=1))
        self.assertEqual(self.files(), [self.file.name, backup.name])
        self.bmr("add", "todo", "--task", "later")
        later = self.file.read_bytes()
        self.assertEqual(self.keyless("restore", backup, "--replace"), f"{self.file}\n")
        self.assertEqual(self.file.read_bytes(), before)
        self.assertEqual(self.file.with_suffix(".bmb").read_bytes(), later)
        self.assertEqual(self.files(), ["plans.bmb", "plans.bmr", backup.name])
        self.assertIn("all whole", self.bmr("check"))
        self.file.unlink()
        self.assertEqual(self.keyless("restore", backup), f"{self.file}\n")
        self.assertEqual(self.file.read_bytes(), before)
        self.assertEqual(self.file.with_suffix(".bmb").read_bytes(), later, "no database took its place")

    def test_a_backup_of_another_machine_goes_where_it_is_told(self):
        self.sample(20)
        before = self.file.read_bytes()
        foreign = self.folder / "from afar.bmz"
        name = "C:\\Docs\\Größe.bmr".encode("cp1252")
        trailer = name + bytes([len(name), 3]) + len(before).to_bytes(4, "little")
        foreign.write_bytes(zlib.compress(before) + trailer)
        self.assertIn("C:\\Docs\\Größe.bmr", self.keyless("restore", foreign, status=1))
        other = self.folder / "other"
        self.assertIn("does not exist", self.keyless("restore", foreign, "--to", other, status=1))
        other.mkdir()
        self.assertEqual(self.keyless("restore", foreign, "--to", other), f"{other / 'Größe.bmr'}\n")
        self.assertEqual((other / "Größe.bmr").read_bytes(), before)
        self.assertIn("all whole", self.bmr("check", file=other / "Größe.bmr"))
        listed = json.loads(self.keyless("backups", self.folder, "--json"))
        self.assertEqual(listed, [{"file": str(foreign), "database": "C:\\Docs\\Größe.bmr", "date": None,
                                   "bytes": foreign.stat().st_size, "size": len(before), "whole": True}])

    def test_what_is_no_good_is_told_and_nothing_is_replaced(self):
        self.sample(20)
        backup = self.backup()
        good = backup.read_bytes()
        before = self.file.read_bytes()
        length = len(str(self.file)) + 6
        no_database = b"no database at all"
        bare = zlib.compress(no_database) + good[-length:-4] + len(no_database).to_bytes(4, "little")
        for raw, words in ((b"", "Zero length file."), (good[:-length], "compression format not recognized"),
                           (good[:200] + good[201:], "Backup failed."), (b"\0" * 100 + good[-length:], "Backup failed."),
                           (good[:-length] + b"rubbish" + good[-length:], "Backup failed."),
                           (bare, "nothing was replaced")):
            backup.write_bytes(raw)
            self.assertIn(words, self.keyless("restore", backup, "--replace", status=1))
            self.assertEqual(self.file.read_bytes(), before)
            self.assertEqual(self.files(), ["plans.bmr", backup.name])
        table = self.keyless("backups", self.folder)
        self.assertRegex(table, r"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d +(yes|NO) ")
        backup.write_bytes(good[:50] + bytes([good[50] ^ 1]) + good[51:])
        self.assertFalse(json.loads(self.keyless("backups", self.folder, "--json"))[0]["whole"])

        archive = self.folder / "old.bma"
        shutil.copy(self.file, archive)
        self.assertIn("ending", self.keyless("backup", archive, status=1))
        self.assertIn("File not found", self.keyless("backup", self.folder / "none.bmr", status=1))
        self.assertIn("does not exist", self.keyless("backup", self.file, "--to", self.folder / "none", status=1))

    def test_a_database_in_use_is_neither_copied_nor_replaced(self):
        self.sample(20)
        backup = self.backup()
        before = self.file.read_bytes()
        with contextlib.closing(sqlite3.connect(self.file, isolation_level=None)) as other:
            other.execute("BEGIN EXCLUSIVE")
            self.assertIn("in use", self.keyless("backup", self.file, status=1))
            self.assertIn("in use", self.keyless("restore", backup, "--replace", status=1))
        self.assertEqual(self.file.read_bytes(), before)
        self.assertEqual(self.files(), ["plans.bmr", backup.name])

    def test_a_kill_or_a_failing_disk_at_any_write_leaves_the_database(self):
        self.sample(20)
        backup = self.backup()
        before = self.file.read_bytes()
        whole = set()
        for words in ("!", "-"):
            for call_number in range(1, 12):
                env = {**os.environ, "LD_PRELOAD": str(FAILING_DISK), "FAIL_CALLS": f"{call_number}{words}"}
                done = subprocess.run([BMR, "restore", str(backup), "--replace"], env=env, capture_output=True)
                whole.add(done.returncode)
                former = self.file.with_suffix(".bmb")
                self.assertEqual((self.file if self.file.exists() else former).read_bytes(), before)
                self.assertLessEqual(set(self.files()), {"plans.bmr", "plans.bmb", "plans.bmb1", "plans.bmb2",
                                                         "plans.bmq", "plans.bm~", backup.name})
                self.keyless("restore", backup, "--replace")
                self.assertEqual(self.file.read_bytes(), before)
                self.assertNotIn("plans.bmq", self.files())
                self.assertNotIn("plans.bm~", self.files())
        self.assertIn(0, whole)
        self.assertGreater(len(whole), 1, "no call failed")


class Imports(BackupBase):
    def setUp(self):
        super().setUp()
        groups = json.loads((pathlib.Path(DATA) / "logic.json").read_text(encoding="utf-8"))["groups"]
        for vector in groups["PalmFile"]:
            path = self.folder / vector["file"]
            path.parent.mkdir(exist_ok=True)
            path.write_bytes(base64.b64decode(vector["bytes"]))
        self.bmr("new")

    def palm(self, section, file, *args, **kwargs):
        out = self.bmr("import", section, "--palm", self.folder / file, *args, **kwargs)
        return json.loads(out) if not kwargs.get("status") else out

    def test_a_dry_run_tells_and_an_import_does(self):
        told = self.palm("todo", "todo.dat", "--dry-run")
        self.assertEqual((told["added"], told["leftOut"], told["changed"]), (3, 0, 0))
        self.assertEqual(told["categories"], ["Business", "Personal"])
        self.assertEqual(self.listed("--all"), [])
        self.assertEqual(self.palm("todo", "todo.dat"), told)
        tasks = {t["Description"]: t for t in self.listed("--all", "--private")}
        self.assertEqual(len(tasks), 3)
        self.assertEqual((tasks["Pay rent"]["category"]["name"], tasks["Pay rent"]["Memo"]), ("Business", "nnn"))
        self.assertEqual((tasks["Pay rent"]["priority"], tasks["Pay rent"]["dueDate"]), (0, "2024-02-29"))
        again = self.palm("todo", "todo.dat")
        self.assertEqual((again["added"], again["leftOut"], again["known"], again["categories"]), (0, 3, 3, []))
        self.assertEqual(self.palm("todo", "todo.dat", "--known")["added"], 3)
        self.assertIn("all whole", self.bmr("check"))

    def test_memos_and_appointments(self):
        self.assertEqual(self.palm("memo", "memopad.dat")["added"], 4)
        memos = {m["Subject"]: m for m in self.listed("--private", section="memo")}
        self.assertEqual(memos["Shopping"]["Memo"], "Shopping\r\nmilk\r\nbread")
        self.assertEqual(memos["Shopping"]["category"]["name"], "Personal")
        told = self.palm("calendar", "datebook.dat")
        self.assertEqual((told["added"], told["leftOut"]), (8, 0))
        whats = {r["title"][:20]: r["what"] for r in told["reasons"]}
        self.assertIn("Personal", whats["last"])
        occurrences = json.loads(self.bmr("list", "calendar", "--from", "2023-05-10", "--to", "2023-06-30", "--json",
                                          "--private"))
        starts = [o["start"] for o in occurrences if o["subject"] == "daily"]
        self.assertEqual(starts[:3], ["2023-05-10T09:30", "2023-05-12T09:30", "2023-05-14T09:30"])
        weekly = [o["start"][:10] for o in occurrences if o["subject"] == "weekly"]
        self.assertEqual(weekly[:4], ["2023-05-10", "2023-05-12", "2023-05-15", "2023-05-19"],
                         "Mondays, Wednesdays and Fridays without the 17th, which was taken out")
        self.assertNotIn("2023-06-02", weekly)
        monthly = [o["start"][:10] for o in occurrences if o["subject"] == "monthly by weekday"]
        self.assertEqual(monthly, ["2023-05-31", "2023-06-28"])
        self.assertIn("all whole", self.bmr("check"))

    def test_what_cannot_be_read_is_told(self):
        self.assertIn("Filename must be MEMOPAD.DAT", self.palm("memo", "todo.dat", status=1))
        self.assertIn("File not found", self.palm("memo", "none/memopad.dat", status=1))
        self.assertIn("Wrong file version.", self.palm("memo", "wrong_tag/memopad.dat", status=1))
        self.assertIn("yet", self.palm("diary", "memopad.dat", status=1))
        told = self.palm("memo", "truncated_in_text/memopad.dat")
        self.assertEqual(told["added"], 2)


if __name__ == "__main__":
    main()
