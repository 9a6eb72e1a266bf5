#!/usr/bin/env python3
"""Drives the calendar of the real bmr end to end.

usage: bmr_calendar_test.py BMR SAMPLEDB ALTER RANDOM_OPS DATA [unittest arguments]
"""
import collections
import contextlib
import datetime
import json
import os
import re
import resource
import shutil
import signal
import sqlite3
import stat

from bmr_support import BMR, DATA, FAILING_DISK, FOREIGN_PASS, PASS, Base, call, main


class CalendarBase(Base):
    def add(self, subject, start, *args, **kwargs):
        return int(self.bmr("add", "calendar", "--subject", subject, "--start", start, *args, **kwargs))

    def occurrences(self, first, last, *args, **kwargs):
        return json.loads(self.bmr("list", "calendar", "--from", first, "--to", last, "--json", *args, **kwargs))

    def starts(self, first, last, *args):
        return [o["start"] for o in self.occurrences(first, last, *args)]


class Planning(CalendarBase):
    def test_a_year_is_planned_listed_and_told(self):
        self.bmr("new")
        dentist = self.add("Dentist – Łódź", "2027-01-05 09:00", "--duration", 45, "--location", "Harbour 12",
                           "--note", "a\nb", "--remind", 60)
        fair = self.add("Fair", "2027-01-05", "--all-day", "--private")
        choir = self.add("Choir", "2027-01-05 09:00", "--end", "2027-01-05 10:30", "--every", "2 weeks on tue,thu",
                         "--times", 5)
        night = self.add("Night", "2027-01-05 23:00", "--end", "2027-01-06 02:00")
        listed = self.occurrences("2027-01-04", "2027-01-10")
        self.assertEqual([o["fPK"] for o in listed], [fair, choir, dentist, night, choir])
        self.assertEqual(listed[2], {
            "fPK": dentist, "start": "2027-01-05T09:00", "end": "2027-01-05T09:45", "allday": False,
            "subject": "Dentist – Łódź", "location": "Harbour 12", "private": False, "recurring": False,
            "alarm": True})
        self.assertEqual((listed[0]["start"], listed[0]["end"], listed[0]["allday"], listed[0]["private"]),
                         ("2027-01-05T00:00", "2027-01-06T00:00", True, True))
        self.assertEqual((listed[1]["end"], listed[1]["recurring"]), ("2027-01-05T10:30", True))
        self.assertEqual(listed[3]["end"], "2027-01-06T02:00")
        shown = json.loads(self.bmr("show", dentist, "--json"))
        self.assertEqual((shown["ctlNotes"], shown["ctlAlarmTime"]), ("a\r\nb", "2027-01-05T08:00"))
        table = self.bmr("list", "calendar", "--from", "2027-01-05", "--to", "2027-01-05")
        self.assertRegex(table, r"2027-01-05 09:00 +09:45 +A +-?\d+ +Dentist – Łódź \(Harbour 12\)\n")
        self.assertRegex(table, r"2027-01-05 +all day +P +-?\d+ +Fair\n")
        rows = self.listed("--rows", section="calendar")
        self.assertEqual([r["fPK"] for r in rows], [fair, dentist, choir, night])
        self.bmr("delete", choir)
        self.assertEqual(len(self.occurrences("2027-01-01", "2027-12-31")), 3)
        self.assertIn("all whole", self.bmr("check"))

    def test_every_rule_gives_its_days(self):
        self.bmr("new")
        for rule, days in (
                ("day", ["01-06", "01-07", "01-08", "01-09"]),
                ("3 days", ["01-06", "01-09", "01-12", "01-15"]),
                ("workday", ["01-06", "01-07", "01-08", "01-11"]),
                ("week on mon,thu", ["01-07", "01-11", "01-14", "01-18"]),
                ("2 weeks on mon,thu", ["01-07", "01-18", "01-21", "02-01"]),
                ("month on 31", ["01-31", "03-03", "05-01", "07-01"]),
                ("month on first mon", ["02-01", "03-01", "04-05", "05-03"]),
                ("2 months on last fri", ["01-29", "03-26", "05-28", "07-30"]),
                ("year on second tue of may", ["05-11"])):
            key = self.add("x", "2027-01-06 10:00", "--every", rule, "--week", "mon")
            found = self.starts("2027-01-01", "2027-12-31", "--week", "mon")
            self.assertEqual([s[5:10] for s in found[:4]], days, rule)
            self.assertTrue(all(s.endswith("T10:00") for s in found), rule)
            self.bmr("delete", key)
        self.add("x", "2028-02-29 10:00", "--every", "year")
        self.assertEqual([self.starts(f"{year}-02-01", f"{year}-03-31")[0][:10] for year in (2028, 2029, 2030)],
                         ["2028-02-29", "2029-03-01", "2030-03-01"])

    def test_a_series_ends_as_it_is_told_and_its_weeks_begin_where_they_are_told(self):
        self.bmr("new")
        key = self.add("x", "2027-01-04 10:00", "--every", "week on mon,thu", "--times", 5)
        self.assertEqual(len(self.starts("2027-01-01", "2040-12-31")), 5)
        self.bmr("delete", key)
        key = self.add("x", "2027-01-04 10:00", "--every", "week on mon,thu", "--until", "2027-01-20")
        self.assertEqual(self.starts("2027-01-01", "2040-12-31")[-1], "2027-01-18T10:00")
        self.bmr("delete", key)
        # Sunday is the last day of one week or the first of the next.
        self.add("x", "2027-01-07 10:00", "--every", "2 weeks on thu,sun", "--week", "mon")
        self.assertEqual(self.starts("2027-01-01", "2027-01-20", "--week", "mon"),
                         ["2027-01-07T10:00", "2027-01-10T10:00"])
        self.assertEqual(self.starts("2027-01-01", "2027-01-20", "--week", "sun"),
                         ["2027-01-07T10:00", "2027-01-17T10:00"])
        self.assertEqual(self.starts("2027-01-01", "2027-01-20"), self.starts("2027-01-01", "2027-01-20", "--week", "sun"))

    def test_what_makes_no_sense_is_refused_and_nothing_stored(self):
        self.bmr("new")
        before = self.file.read_bytes()
        at = ["--start", "2027-01-05 09:00"]
        for args, told in (
                (["--subject", "x"], "start is required"), (at, "subject is required"),
                (["--subject", "  ", *at], "subject is required"),
                (["--subject", "x", "--start", "2027-01-05"], "has no time"),
                (["--subject", "x", "--start", "2027-02-30 09:00"], "no time of the form"),
                (["--subject", "x", "--start", "2069-04-15 09:00"], "Upper range limit"),
                (["--subject", "x", "--start", "1925-02-21 09:00"], "Lower range limit"),
                (["--subject", "x", *at, "--end", "2027-01-05 08:59"], "before the start"),
                (["--subject", "x", *at, "--duration", "-1"], "number of minutes"),
                (["--subject", "x", *at, "--duration", "30", "--all-day"], "Only one of"),
                (["--subject", "x", *at, "--times", "3"], "--every"),
                (["--subject", "x", *at, "--every", "day", "--times", "0"], "1 to 255"),
                (["--subject", "x", *at, "--every", "day", "--times", "256"], "1 to 255"),
                (["--subject", "x", *at, "--every", "day", "--times", "3", "--until", "2028-01-01"], "Only one of"),
                (["--subject", "x", *at, "--every", "day", "--until", "2027-01-04"], "before it begins"),
                (["--subject", "x", *at, "--every", "month on 31", "--until", "2027-01-30"], "before it begins"),
                (["--subject", "x", "--start", "2060-01-01 09:00", "--every", "year", "--times", "20"],
                 "Upper range limit"),
                (["--subject", "x", *at, "--every", "fortnight"], "2 weeks on mon,thu"),
                (["--subject", "x", *at, "--remind", "7"], "0 5 10"),
                (["--subject", "x", *at, "--category", "Home"], "no categories")):
            self.assertIn(told, self.bmr("add", "calendar", *args, status=1), args)
        self.bmr("add", "todo", "--task", "x", "--week", "mon", status=1)
        self.bmr("list", "todo", "--from", "2027-01-01", status=1)
        self.bmr("list", "calendar", "--rows", "--to", "2027-01-01", status=1)
        self.bmr("list", "calendar", "--from", "2027-01-02", "--to", "2027-01-01", status=1)
        self.assertEqual(self.file.read_bytes(), before)


class Samples(CalendarBase):
    def test_a_calendar_is_whole_and_has_all_that_there_can_be(self):
        self.sample(400, seed=3, sections="calendar")
        self.assertIn("all whole", self.bmr("check"))
        rows = self.listed("--rows", section="calendar")
        self.assertEqual(len(rows), 400)
        kinds = collections.Counter(int(r["ctlRedoString"][:2], 16) for r in rows if r.get("ctlRedoString"))
        self.assertEqual({k & 7 for k in kinds}, set(range(1, 8)))
        self.assertEqual({k >> 3 for k in kinds}, {0, 1, 2})
        self.assertTrue(20 < sum(r["ctlAllday"] for r in rows) < 100)
        week = self.occurrences("2026-11-16", "2026-11-22")
        self.assertTrue(10 < len(week) < 200, len(week))
        self.assertEqual([o["start"] for o in week], sorted(o["start"] for o in week))
        timed = [o for o in week if not o["allday"]]
        self.assertTrue(any(a["end"] > b["start"] for a, b in zip(timed, timed[1:])), "nothing overlaps")

    def test_check_names_each_column_that_tells_another_day(self):
        self.sample(300, seed=4, sections="calendar")
        good = self.file.read_bytes()
        for change, which, told in (
                ("fR3 = fR3 + 71049", "fSub < 148", "fR3 does not tell the day"),
                ("fR4 = fR4 + 73526", "fSub >= 148", "fR4 does not tell the first day"),
                ("fR2 = fR2 - 81578", "fSub >= 148", "fR2 does not tell the last day"),
                ("fSub = 0", "fSub >= 148", "fSub does not tell whether"),
                ("fSub = fSub + 148", "fSub < 100", "fSub does not tell whether"),
                ("fSub = CASE WHEN fSub < 172 THEN fSub + 4 ELSE fSub - 4 END", "fSub BETWEEN 148 AND 195",
                 "fSub does not tell the kind"),
                ("fT1 = fT2", "1", "fT1 does not tell the start"), ("fT2 = fT1", "1", "fT2 does not tell the time"),
                ("fT3 = fT1", "fSub < 148", "fT3 does not tell the recurrence")):
            self.file.write_bytes(good)
            with sqlite3.connect(self.file) as db:
                key = db.execute(f"SELECT fPK FROM tt WHERE fSec = 12 AND {which} ORDER BY fPK").fetchone()[0]
                db.execute(f"UPDATE tt SET {change} WHERE fPK = ?", (key,))
            db.close()
            done = call(BMR, "check", self.file)
            self.assertEqual(done.returncode, 1, change)
            self.assertIn(f"fPK {key}, fSec 12: {told}", done.stdout, change)
        # Two rows of a day that stand in each other's place.
        self.file.write_bytes(good)
        days = collections.defaultdict(list)
        for row in self.listed("--rows", section="calendar"):
            days[row["date"]].append((row["ctlAppoStart"], row["fPK"]))
        (_, early), (_, late) = next((d[0], d[1]) for d in days.values() if len(d) == 2 and d[0][0] < d[1][0])
        with sqlite3.connect(self.file) as db:
            keys = dict(db.execute("SELECT fPK, fR1 FROM tt WHERE fPK IN (?, ?)", (early, late)))
            for one, other in ((early, late), (late, early)):
                db.execute("UPDATE tt SET fR1 = ? WHERE fPK = ?", (keys[other], one))
        db.close()
        done = call(BMR, "check", self.file)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stdout, r"\AfPK (%s|%s), fSec 12: out of the order of its day" % (early, late))

    def test_another_programs_calendar_is_found(self):
        shutil.copy(f"{DATA}/foreign.bmr", self.file)
        found = self.occurrences("2026-12-01", "2026-12-31", secret=FOREIGN_PASS)
        self.assertEqual([(o["start"], o["recurring"]) for o in found],
                         [("2026-12-02T09:00", False), ("2026-12-02T19:00", True), ("2026-12-16T19:00", True),
                          ("2026-12-30T19:00", True)])

    def test_private_ones_follow_the_settings(self):
        self.sample(300, seed=5, sections="calendar")
        every = self.occurrences("2026-01-01", "2026-12-31")
        with contextlib.closing(sqlite3.connect(self.file)) as db, db:
            db.execute("UPDATE tt SET fEtx = x'00' WHERE fSec = 5")  # private records are hidden then
        shown = self.occurrences("2026-01-01", "2026-12-31")
        self.assertEqual(shown, [o for o in every if not o["private"]])
        self.assertLess(len(shown), len(every))
        self.assertEqual(self.occurrences("2026-01-01", "2026-12-31", "--private"), every)


class Archive(CalendarBase):
    def setUp(self):
        super().setUp()
        self.archive = self.folder / "old.bma"

    def calendar_rows(self, file):
        with contextlib.closing(sqlite3.connect(file)) as db:
            return set(db.execute("SELECT * FROM tt WHERE fSec = 12").fetchall())

    def test_what_is_old_moves_and_opens_by_itself(self):
        self.sample(300, seed=6, sections="calendar")
        before = self.calendar_rows(self.file)
        told = self.bmr("archive", "--until", "2026-11-20", "--to", self.archive)
        count = re.search(r"(\d+) series and (\d+) single appointments archived\n\Z", told)
        moved = self.calendar_rows(self.archive)
        self.assertEqual(len(moved), int(count[1]) + int(count[2]))
        self.assertEqual(moved | self.calendar_rows(self.file), before)
        self.assertFalse(moved & self.calendar_rows(self.file))
        self.assertIn("goes although it comes again", told)
        self.assertEqual(stat.S_IMODE(self.archive.stat().st_mode), 0o600)
        for file in (self.file, self.archive):
            self.assertIn("all whole", self.bmr("check", file=file))
        # Later more, under another passphrase.
        self.bmr("passwd", secret=f"{PASS}\nRed saucer 8!\n".encode())
        self.bmr("archive", "--until", "2026-11-30", "--to", self.archive, secret="Red saucer 8!")
        self.assertEqual(self.calendar_rows(self.archive) | self.calendar_rows(self.file), before)
        self.assertGreater(len(self.calendar_rows(self.archive)), len(moved))
        self.assertIn("all whole", self.bmr("check", file=self.archive, secret="Red saucer 8!"))
        self.bmr("check", file=self.archive, status=2)

    def test_the_day_itself_and_only_the_calendar(self):
        self.sample(20, sections="todo")
        self.add("gone", "2027-01-05 23:59")
        self.add("stays", "2027-01-06 00:00")
        self.add("begins on it", "2027-01-05 08:00", "--every", "day")
        self.bmr("archive", "--until", "2027-01-05")
        self.assertEqual({r["ctlSubject"] for r in self.listed("--rows", section="calendar")},
                         {"stays", "begins on it"})
        self.bmr("archive", "--until", "2069-04-14")
        self.assertEqual(self.listed("--rows", section="calendar"), [])
        self.assertEqual(len(self.listed("--all")), 20)
        self.assertEqual(list(self.folder.iterdir()), [self.file])

    def test_what_cannot_be_written_deletes_nothing(self):
        self.sample(60, seed=7, sections="calendar")
        other = self.folder / "other.bmr"
        self.bmr("new", file=other)
        (self.folder / "text.bma").write_text("Dear diary")
        locked = self.folder / "locked"
        locked.mkdir()
        before = self.calendar_rows(self.file)
        targets = [other, self.folder / "text.bma", self.folder, self.file, self.folder / "none" / "a.bma"]
        if os.geteuid() != 0:
            locked.chmod(0o500)
            targets.append(locked / "a.bma")
        for target in targets:
            held = target.read_bytes() if target.is_file() and target != self.file else None
            self.assertIn("Nothing was archived or deleted",
                          self.bmr("archive", "--until", "2026-11-20", "--to", target, status=1))
            self.assertEqual(self.calendar_rows(self.file), before, target)
            if held is not None:
                self.assertEqual(target.read_bytes(), held)
        self.assertIn("no date", self.bmr("archive", "--until", "soon", "--to", self.archive, status=1))
        size = self.file.stat().st_size

        def no_growth():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (size // 4, size // 4))
        done = call(BMR, "archive", self.file, "--until", "2026-11-20", "--to", self.archive, preexec_fn=no_growth)
        self.assertEqual(done.returncode, 1, done)
        self.assertFalse(self.archive.exists())
        self.assertEqual(self.calendar_rows(self.file), before)

    def test_a_program_that_dies_leaves_every_row_in_one_file(self):
        self.sample(60, seed=8, sections="calendar")
        good = self.file.read_bytes()
        before = self.calendar_rows(self.file)
        seen = set()
        for number in range(1, 400, 3):
            self.file.write_bytes(good)
            for left in set(self.folder.iterdir()) - {self.file}:
                left.unlink()
            done = call(BMR, "archive", self.file, "--until", "2026-11-20", "--to", self.archive,
                        env={**os.environ, "LD_PRELOAD": str(FAILING_DISK), "FAIL_CALLS": f"{number}!"})
            if done.returncode == 0:
                break
            self.assertLess(done.returncode, 0, done)
            call(BMR, "info", self.file)
            there = self.calendar_rows(self.file)
            archived = set()
            if self.archive.exists() and call(BMR, "info", self.archive).returncode == 0:
                archived = self.calendar_rows(self.archive)
            self.assertEqual(there | archived, before, number)
            self.assertFalse(there & archived, number)
            seen.add(len(archived) > 0)
        else:
            self.fail("the command never ends")
        self.assertEqual(seen, {False, True})


if __name__ == "__main__":
    main()
