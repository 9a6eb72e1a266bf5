#!/usr/bin/env python3
"""Drives the real bmr and sampledb end to end.

usage: bmr_test.py BMR SAMPLEDB ALTER DATA [unittest arguments]
"""
import contextlib
import json
import os
import pathlib
import pty
import resource
import select
import shutil
import signal
import sqlite3
import stat
import subprocess
import termios
import time
from concurrent.futures import ThreadPoolExecutor

from bmr_support import ALTER, BMR, DATA, FAILING_DISK, FOREIGN_PASS, PASS, Base, call, main


class ADay(Base):
    def test_a_task_from_its_first_to_its_last_hour(self):
        self.bmr("new")
        self.assertEqual(stat.S_IMODE(self.file.stat().st_mode), 0o600)
        self.assertIn("exists", self.bmr("new", status=1))
        keys = [int(self.bmr("add", "todo", *args)) for args in (
            ["--task", "Überweisung – 35 €", "--note", "a\nb", "--due", "2026-11-30", "--priority", "high"],
            ["--task", "Call \x1b[31mthe plumber", "--private"],
            ["--task", "File papers", "--due", "2020-02-29", "--priority", "low"])]
        records = self.listed()
        # Overdue first, then by date, then what has none.
        self.assertEqual([r["fPK"] for r in records], [keys[2], keys[0], keys[1]])
        first = records[1]
        self.assertEqual(first, {
            "fPK": keys[0], "section": "Todo", "fSec": 15, "fSub": 0, "Description": "Überweisung – 35 €",
            "Memo": "a\r\nb", "Private": False, "UserNumber": 0, "priority": 0, "dueDate": "2026-11-30",
            "completed": False, "completedDate": None, "hasNote": True,
            "category": {"number": 0, "name": "Unfiled"}})
        self.assertEqual((records[2]["Private"], records[2]["dueDate"], records[2]["priority"]), (True, None, 1))
        table = self.bmr("list", "todo")
        self.assertIn("Überweisung – 35 €", table)
        self.assertNotIn("\x1b", table)
        self.assertNotIn("\\x1b", self.bmr("show", keys[1]))

        self.bmr("done", keys[0])
        self.bmr("done", keys[0])
        self.assertEqual(len(self.listed()), 2)
        done = [r for r in self.listed("--all") if r["completed"]]
        self.assertEqual([r["fPK"] for r in done], [keys[0]])
        self.assertEqual(done[0]["completedDate"], time.strftime("%Y-%m-%d"))
        self.assertEqual(done[0]["Memo"], "a\r\nb")

        self.bmr("delete", keys[2])
        self.assertIn("No record found", self.bmr("show", keys[2], status=1))
        self.assertIn("No record found", self.bmr("delete", keys[2], status=1))
        self.bmr("compact")
        self.assertEqual(json.loads(self.bmr("info", "--json"))["records"], {"Todo": 2})
        self.assertIn("all whole", self.bmr("check"))

    def test_only_records_of_sections_can_be_deleted_or_done(self):
        shutil.copy(f"{DATA}/foreign.bmr", self.file)
        for key in (r[0] for r in self.rows("fSec < 11")):
            self.bmr("delete", key, secret=FOREIGN_PASS, status=1)
        memo = self.rows("fSec = 14")[0][0]
        self.bmr("done", memo, secret=FOREIGN_PASS, status=1)
        key = int(self.bmr("add", "todo", "--task", "x", "--category", "office", secret=FOREIGN_PASS))
        self.assertEqual([r["fPK"] for r in self.listed("--category", "OFFICE", secret=FOREIGN_PASS)], [key])
        self.bmr("add", "todo", "--task", "x", "--category", "Harbour", secret=FOREIGN_PASS, status=1)

    def test_every_script_is_kept_and_what_is_amiss_is_told(self):
        self.bmr("new")
        self.bmr("add", "memo", "--field", "Subject=Łódź", "--field", "Memo=Ελιές\nλεμόνια")
        self.bmr("add", "memo", "--subject", "Lz")
        shown = self.listed(section="memo")
        self.assertEqual([r["Subject"] for r in shown], ["Łódź", "Lz"])
        self.assertEqual(shown[0]["Memo"], "Ελιές\r\nλεμόνια")
        self.assertFalse([name for name in shown[0] if name.startswith("field")])
        self.assertEqual(self.bmr("check").count("\n"), 1)
        for how, status, told in (("stale", 0, "note: "), ("mangle", 1, "malformed")):
            subprocess.run([ALTER, self.file, how], check=True, input=PASS.encode())
            done = call(BMR, "check", self.file)
            self.assertEqual(done.returncode, status, done)
            self.assertIn(told, done.stdout)
            if status == 0:
                self.assertEqual(self.listed(section="memo")[0]["Subject"], "Lodge")
        self.bmr("add", "memo", "--subject", "x", "--field", "Colour=blue", status=1)
        self.bmr("add", "memo", "--subject", "x\ny", status=1)
        self.bmr("add", "memo", "--subject", "Ł" * 32498, status=1)

    def test_what_cannot_be_kept_is_refused_in_words(self):
        self.bmr("new")
        before = self.file.read_bytes()
        for args in (["--due", "2026-02-30"], ["--due", "2069-04-15"], ["--due", "1925-02-21"],
                     ["--priority", "urgent"]):
            self.bmr("add", "todo", "--task", "x", *args, status=1)
        for section, option in (("todo", "--task"), ("memo", "--subject")):
            for blank in ("", "   "):
                self.assertIn("is required", self.bmr("add", section, option, blank, status=1))
        for command in (["list", "drawer"], ["add", "drawer", "--task", "x"]):
            self.assertRegex(self.bmr(*command, status=1), "sections are .*memo.*todo.*confidential")
        version = subprocess.run([BMR, "--version"], capture_output=True, encoding="utf-8")
        self.assertEqual((version.returncode, version.stderr), (0, ""))
        self.assertRegex(version.stdout, r"\Abmr \d+\.\d+\.\d+\n\Z")
        self.assertEqual(self.file.read_bytes(), before)


class Reading(Base):
    """A command that reads leaves every byte of the file, whatever an opening would mend in it."""

    def read_all(self, secret=PASS):
        before = self.file.read_bytes()
        key = self.rows("fSec = 15")[0][0]
        for command in (["list", "todo"], ["show", key, "--private"], ["dump"], ["info"]):
            self.bmr(*command, secret=secret)
        call(BMR, "check", self.file, secret=secret)  # it may find what was done to the file
        self.assertEqual(self.file.read_bytes(), before)
        self.assertEqual(os.listdir(self.folder), [self.file.name])

    def test_what_an_opening_would_mend_stays_as_it_is(self):
        self.sample(5)
        good = self.file.read_bytes()
        for change in ("SELECT 1", "UPDATE tt SET fT2 = zeroblob(42) WHERE fSec = 2",
                       "UPDATE tt SET fT2 = NULL WHERE fSec = 2", "UPDATE tt SET fT2 = '0' WHERE fSec = 2",
                       "DELETE FROM tt WHERE fSec = 5", "UPDATE tt SET fEtx = zeroblob(40) WHERE fSec = 5",
                       "DELETE FROM tt WHERE fSec = 1 AND fSub = 3",
                       "INSERT INTO tt SELECT * FROM tt WHERE fSec = 15", "PRAGMA journal_mode = WAL"):
            with self.subTest(change):
                self.file.write_bytes(good)
                with sqlite3.connect(self.file) as db:
                    db.execute(change).fetchall()
                db.close()
                self.read_all()
        # A command that writes still mends it.
        self.file.write_bytes(good)
        with sqlite3.connect(self.file) as db:
            db.execute("INSERT INTO tt SELECT * FROM tt WHERE fSec = 15")
            db.execute("DELETE FROM tt WHERE fSec = 5")
        db.close()
        self.bmr("add", "todo", "--task", "x")
        self.assertEqual(len(self.rows("fSec = 15")), 6)
        self.assertEqual(len(self.rows("fSec = 5")), 1)

    def test_a_save_that_was_broken_off_is_taken_back_and_told(self):
        self.sample(5)
        good = self.file.read_bytes()
        db = sqlite3.connect(self.file, isolation_level=None)
        db.execute("PRAGMA cache_size = 5")
        db.execute("BEGIN IMMEDIATE")
        db.execute("UPDATE tt SET fT3 = zeroblob(9000)")
        torn, journal = self.file.read_bytes(), self.folder / "plans.bmr-journal"
        broken_off = journal.read_bytes()
        db.execute("ROLLBACK")
        db.close()
        self.assertNotEqual(torn, good)
        self.file.write_bytes(torn)
        journal.write_bytes(broken_off)
        done = call(BMR, "list", self.file, "todo", "--all", "--json")
        self.assertEqual(done.returncode, 0, done)
        self.assertEqual(len(json.loads(done.stdout)), 5)
        self.assertRegex(done.stderr, r"\Abmr: note: [^\n]*taken back[^\n]*\n\Z")
        self.assertFalse(journal.exists())
        self.assertEqual(self.file.read_bytes(), good)


class FailingDisk(Base):
    """Each call by which a command writes fails in turn: what it says must be what stands in the file."""

    def each_failure(self, command, *args, secret=PASS):
        """Runs the command on the same file again and again; ends behind its last call. A few failures do not
        matter to it: a folder need not be synced for a journal that is empty."""
        before = self.file.read_bytes()
        quiet = 0
        for number in range(1, 200):
            self.file.write_bytes(before)
            done = call(BMR, command, self.file, *args, secret=secret,
                        env={**os.environ, "LD_PRELOAD": str(FAILING_DISK), "FAIL_CALLS": str(number)})
            if done.stderr:
                self.assertRegex(done.stderr, r"\Abmr: [^\n]+\n\Z" if done.returncode else
                                 r"\A(bmr: warning: [^\n]+\n)+\Z", number)
            quiet = 0 if done.stderr else quiet + 1
            if quiet == 6:
                return
            yield done
        self.fail("the command never ends")

    def test_an_added_record_is_told_by_its_key_and_only_then(self):
        self.bmr("new")
        warned = refused = 0
        for done in self.each_failure("add", "todo", "--task", "stamps"):
            stands = [str(r["fPK"]) for r in self.listed()]
            self.assertEqual(done.stdout.split(), stands, done)
            self.assertEqual(len(stands), 0 if done.returncode else 1, done)
            refused += done.returncode != 0
            warned += done.returncode == 0 and done.stderr != ""
        self.assertGreater(warned, 3)
        self.assertGreater(refused, 3)

    def test_a_new_passphrase_holds_when_the_command_says_so(self):
        self.bmr("new")
        said = {0: 0, 1: 0}
        for done in self.each_failure("passwd", secret=f"{PASS}\nRed saucer 8!\n".encode()):
            said[done.returncode] += 1
            self.bmr("list", "todo", secret=PASS if done.returncode else "Red saucer 8!")
        self.assertGreater(said[0], 3)
        self.assertGreater(said[1], 3)


class Passphrases(Base):
    def test_a_change_leaves_the_keys_and_the_records(self):
        self.sample(20)
        fixed = "fSec >= 11 OR (fSec = 1 AND fSub < 3)"
        before = self.rows(fixed)
        self.bmr("passwd", secret=f"{PASS}\nRed saucer 8!\n".encode())
        self.assertEqual(self.rows(fixed), before)
        self.assertIn("Password not correct", self.bmr("list", "todo", status=2))
        self.bmr("check", secret="Red saucer 8!")
        self.assertIn("left unchanged", self.bmr("passwd", secret=b"Red saucer 8!\n", status=1))
        self.bmr("check", secret="Red saucer 8!")

    def test_a_wrong_one_gives_status_2_and_changes_nothing(self):
        self.bmr("new")
        before = self.file.read_bytes()
        # Each ends with the forced pause: they wait at the same time, each over a file of its own.
        waiting = []
        with ThreadPoolExecutor() as pool:
            for number, (secret, command) in enumerate((("not this one", ["list", "todo"]), ("short", ["check"]),
                                                        ("not this one", ["add", "todo", "--task", "x"]))):
                file = self.folder / str(number) / "plans.bmr"
                file.parent.mkdir()
                shutil.copy(self.file, file)
                waiting.append((file, pool.submit(self.bmr, *command, file=file, secret=secret, status=2)))
        for file, done in waiting:
            done.result()
            self.assertEqual(file.read_bytes(), before)
            self.assertEqual(list(file.parent.iterdir()), [file])
        self.bmr("list", "todo", secret=b"", status=1)
        self.assertIn("character 3", self.bmr("list", "todo", secret="abŁcdefgh", status=1))
        self.assertEqual(self.file.read_bytes(), before)
        self.bmr("new", file=self.folder / "b.bmr", secret="short", status=1)
        self.assertFalse((self.folder / "b.bmr").exists())

    def terminal(self, *args):
        """Starts bmr on a terminal of its own, until it asks."""
        pid, master = pty.fork()
        if pid == 0:
            os.execv(BMR, [BMR, *args])
        self.addCleanup(os.close, master)
        text = self.read_until(master, "passphrase")
        self.assertFalse(termios.tcgetattr(master)[3] & termios.ECHO)
        return pid, master, text

    def read_until(self, master, word):
        text = ""
        while word.lower() not in text.lower():
            self.assertTrue(select.select([master], [], [], 20)[0], f"no {word} in {text!r}")
            try:
                text += os.read(master, 4096).decode()
            except OSError:  # the other end is gone
                break
        return text

    def test_the_terminal_asks_without_echo(self):
        self.bmr("new")
        pid, master, text = self.terminal("info", str(self.file))
        limits = pathlib.Path(f"/proc/{pid}/limits")
        if limits.exists():
            self.assertRegex(limits.read_text(), r"Max core file size +0 +0")
        os.write(master, (PASS + "\n").encode())
        text += self.read_until(master, "records of no kind at all")
        self.assertIn("Admin", text)
        self.assertNotIn("kettle", text)
        self.assertEqual(os.waitpid(pid, 0)[1], 0)

    def test_a_broken_off_prompt_gives_the_echo_back(self):
        self.bmr("new")
        pid, master, _ = self.terminal("info", str(self.file))
        os.write(master, b"half a pass\x03")
        self.read_until(master, "nothing more")
        status = os.waitpid(pid, 0)[1]
        self.assertTrue(os.WIFSIGNALED(status), status)
        self.assertTrue(termios.tcgetattr(master)[3] & termios.ECHO)


class BadFiles(Base):
    def refused(self, path, *, secret=PASS, status=1):
        before = path.read_bytes() if path.is_file() else None
        words = ""
        for command in (["list", "todo"], ["check"], ["add", "todo", "--task", "x"], ["compact"]):
            words = self.bmr(*command, file=path, secret=secret, status=status)
        if before is not None:
            self.assertEqual(path.read_bytes(), before)
        return words

    def test_what_is_no_database_stays_as_it_is(self):
        self.bmr("new")
        whole = self.file.read_bytes()
        for name, content in (("empty", b""), ("text", b"Dear diary,\n" * 500), ("cut", whole[:len(whole) // 2]),
                              ("head", whole[:50]), ("noise", os.urandom(8192))):
            path = self.folder / f"{name}.bmr"
            path.write_bytes(content)
            self.refused(path)
        self.refused(self.folder)
        self.refused(self.folder / "absent.bmr")
        self.assertFalse((self.folder / "absent.bmr").exists())

    def test_one_that_may_not_be_read_or_is_in_use(self):
        self.bmr("new")
        if os.geteuid() != 0:
            self.file.chmod(0)
            self.bmr("list", "todo", status=1)
            self.file.chmod(0o600)
        other = sqlite3.connect(self.file, isolation_level=None)
        other.execute("BEGIN EXCLUSIVE")
        self.bmr("list", "todo", status=1)
        other.close()
        self.bmr("list", "todo")

    def test_a_full_disk_leaves_the_file_as_it_was(self):
        self.bmr("new")
        before = self.file.read_bytes()
        def no_growth():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (len(before), len(before)))
        done = call(BMR, "add", self.file, "todo", "--task", "x", "--note", "y" * 60000, preexec_fn=no_growth)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"\Abmr: [^\n]+\n\Z")
        self.assertEqual(self.file.read_bytes(), before)
        self.assertEqual(list(self.folder.iterdir()), [self.file])
        self.bmr("check")

    def test_unknown_classes_are_listed_by_number_and_never_touched(self):
        self.sample(2)
        with contextlib.closing(sqlite3.connect(self.file)) as db, db:
            for key, section in ((71, 4), (72, 20), (73, 200), (74, 255), (75, 2000)):
                db.execute("INSERT INTO tt (fPK, fSec, fSub, fEtx, fT1) VALUES (?, ?, 0, ?, ?)",
                           (key, section, os.urandom(26), os.urandom(10)))
            db.execute("UPDATE tt SET fEtx = x'00' WHERE fSec = 5")  # private records are hidden then
        before = self.rows("fPK BETWEEN 71 AND 75")
        self.assertEqual(len(before), 5)
        def unknown(records):
            return {r["fPK"]: r["section"] for r in records if r["section"].startswith("class")}
        expected = {71: "class 4", 72: "class 20", 73: "class 200", 74: "class 255", 75: "class 2000"}
        self.assertEqual(unknown(json.loads(self.bmr("dump", "--json"))), expected)
        self.assertIn("section: class 20\n", self.bmr("dump"))
        self.assertEqual(unknown([json.loads(self.bmr("show", 72, "--json"))]), {72: "class 20"})
        self.assertEqual(json.loads(self.bmr("info", "--json"))["records"]["class 200"], 1)
        self.assertEqual(call(BMR, "check", self.file).stdout.count("unknown to this version"), 5)
        for command in ("delete", "done"):
            self.assertIn("does not know", self.bmr(command, 72, status=1))
        self.bmr("add", "todo", "--task", "x")
        self.bmr("compact")
        self.assertEqual(self.rows("fPK BETWEEN 71 AND 75"), before)

    def test_a_newer_one_is_left_alone(self):
        self.bmr("new")
        subprocess.run([ALTER, self.file, "newer"], check=True, input=PASS.encode())
        self.assertIn("more recent", self.refused(self.file))


class Foreign(Base):
    def expected(self, value):
        if not isinstance(value, dict):
            return value
        if "at" in value:
            return value["at"].replace(" ", "T")
        return value[next(key for key in ("date", "time", "hex") if key in value)]

    def test_a_file_of_another_program_dumps_as_it_tells(self):
        shutil.copy(f"{DATA}/foreign.bmr", self.file)
        before = self.file.read_bytes()
        dump = json.loads(self.bmr("dump", "--json", secret=FOREIGN_PASS))
        with open(f"{DATA}/foreign.json", encoding="utf-8") as told:
            rows = {row["fPK"]: row for row in json.load(told)["rows"]}
        self.assertEqual(sorted(r["fPK"] for r in dump), sorted(rows))
        fields = 0
        for record in dump:
            row = rows[record["fPK"]]
            self.assertEqual((record["fSec"], record["fSub"]), (row["fSec"], row["fSub"]))
            if "categories" in row:
                self.assertEqual([[c["name"], c["number"]] for c in record["categories"]], row["categories"])
                continue
            for key, value in row.get("payload", {}).items():
                number, name = key.split(" ", 1)
                if name in ("PwVerifier", "WrappedKey"):
                    self.assertNotIn(name, record)
                    continue
                name = f"field{number}" if name.startswith("reserved") else name
                self.assertEqual(record[name], self.expected(value), f"{record['fPK']} {key}")
                fields += 1
            if "category" in row and row["fSec"] != 16:
                self.assertEqual(record["category"]["name"], row["category"])
            if row["fSec"] == 15:
                column = row["columns"]
                self.assertEqual(record["priority"], column["fR1"]["priority"])
                self.assertEqual(record["dueDate"],
                                 column["fR3"]["date"] if column["fR3"]["hasDueDate"] else None)
                self.assertEqual(record["completedDate"],
                                 column["fR2"]["date"] if column["fR2"]["completed"] else None)
                self.assertEqual(record["hasNote"], column["fF2"]["hasNote"])
        self.assertGreater(fields, 140)
        self.assertIn("all whole", self.bmr("check", secret=FOREIGN_PASS))
        self.assertEqual(self.file.read_bytes(), before)


class Samples(Base):
    def test_a_thousand_tasks_are_whole_believable_and_repeatable(self):
        self.sample(1000, seed=5)
        self.assertIn("all whole", self.bmr("check"))
        records = self.listed("--all")
        self.assertEqual(len(records), 1000)
        self.assertGreater(len({r["Description"] for r in records}), 300)
        for name, low, high in (("Private", 60, 200), ("completed", 250, 600), ("hasNote", 200, 500)):
            self.assertTrue(low < sum(r[name] for r in records) < high, name)
        self.assertGreater(len({r["category"]["name"] for r in records}), 5)
        other = self.folder / "other.bmr"
        self.sample(1000, seed=5, file=other)
        bare = lambda rs: sorted(json.dumps(r, sort_keys=True) for r in (dict(r, fPK=0) for r in rs))
        self.assertEqual(bare(self.listed("--all", file=other)), bare(records))

    def test_the_other_sections_are_whole_and_check_finds_what_stands_out_of_order(self):
        self.sample(900, seed=3, sections=None)
        self.assertEqual(json.loads(self.bmr("info", "--json"))["records"],
                         {"Memo": 129, "Todo": 129, "Confidential": 129, "Calendar": 129, "Address": 128,
                          "Diary": 128, "Budget 1": 101, "Budget 2": 21, "Budget 3": 6})
        self.assertIn("all whole", self.bmr("check"))
        memos = self.listed(section="memo")
        self.assertGreater(len({m["Subject"] for m in memos}), 100)
        self.assertTrue(all(m["DateCreated"] <= m["DateLastModified"] <= "2026-11-21" for m in memos))
        secrets = self.listed(section="confidential")
        self.assertGreater(len({r["kind"]["number"] for r in secrets}), 12)
        self.assertTrue(any(r["n0"] == "" for r in secrets))
        first, second = next((a, b) for a, b in zip(memos, memos[1:])
                             if a["Subject"][:3] == b["Subject"][:3] and a["Subject"] < b["Subject"])
        with sqlite3.connect(self.file) as db:
            db.execute("UPDATE tt SET fR1 = (SELECT fR1 FROM tt WHERE fPK = ?) + 1 WHERE fPK = ?",
                       (second["fPK"], first["fPK"]))
        done = call(BMR, "check", self.file)
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"fPK {first['fPK']}, fSec 14: out of alphabetical order",
                      done.stdout)

    def test_private_records_follow_the_settings(self):
        self.sample(200)
        private = {r["fPK"] for r in self.listed("--all") if r["Private"]}
        self.assertTrue(private)
        subprocess.run([ALTER, self.file, "hide"], check=True, input=PASS.encode())
        shown = self.listed("--all")
        self.assertEqual(len(shown), 200 - len(private))
        self.assertFalse(any(r["Private"] for r in shown))
        self.assertEqual(len(self.listed("--all", "--private")), 200)
        key = private.pop()
        self.bmr("show", key, status=1)
        self.bmr("delete", key, status=1)
        self.bmr("show", key, "--private")
        dump = self.bmr("dump", "--json")
        self.assertNotIn(f'"fPK":{key},', dump)
        self.assertNotIn("half-written", dump)

    def test_check_names_what_does_not_decode(self):
        self.sample(50)
        keys = [row[0] for row in self.rows("fSec = 15")]
        with sqlite3.connect(self.file) as db:
            db.execute("UPDATE tt SET fEtx = randomblob(64) WHERE fPK = ?", (keys[7],))
            db.execute("UPDATE tt SET fT1 = (SELECT fT1 FROM tt WHERE fPK = ?) WHERE fPK = ?", (keys[1], keys[9]))
        done = call(BMR, "check", self.file)
        self.assertEqual(done.returncode, 1)
        self.assertIn(f"fPK {keys[7]}, fSec 15", done.stdout)
        self.assertIn("faults", done.stderr)
        self.assertNotIn(keys[7], [r["fPK"] for r in self.listed("--all") if r.get("Private") is False])


if __name__ == "__main__":
    main()
