#!/usr/bin/env python3
"""Drives the budgets and the diary of the real bmr end to end.

usage: bmr_budget_test.py BMR SAMPLEDB ALTER RANDOM_OPS DATA [unittest arguments]
"""
import contextlib
import csv
import decimal
import json
import os
import shutil
import sqlite3
import stat
import subprocess
import time

from bmr_support import ALTER, DATA, FOREIGN_PASS, PASS, Base, main

CREDIT, DEBIT, PRIVATE_CREDIT, PRIVATE_DEBIT = range(4)


class BudgetBase(Base):
    def add(self, amount, *args, section="budget1", **kwargs):
        return int(self.bmr("add", section, "--amount", amount, *args, **kwargs))

    def entries(self, *args, section="budget1", **kwargs):
        return self.listed(*args, section=section, **kwargs)

    def summary(self, *args, section="budget1"):
        return json.loads(self.bmr("summary", section, "--json", *args))

    def change(self, statement, *values):
        with contextlib.closing(sqlite3.connect(self.file)) as db, db:
            db.execute(statement, values)

    def hide_private(self):
        done = subprocess.run([ALTER, self.file, "hide"], input=PASS + "\n", capture_output=True, encoding="utf-8")
        self.assertEqual(done.returncode, 0, done.stderr)


class Ledger(BudgetBase):
    def test_entries_are_kept_listed_by_date_and_deleted(self):
        self.bmr("new")
        rent = self.add("980", "--debit", "--date", "2026-05-03", "--item", "Miete – Łódź", "--partner", "Okoye",
                        "--payment", "Bank Transfer", "--note", "a\nb", "--private")
        salary = self.add("2700.1234", "--date", "2026-05-01", "--item", "Salary", "--payment", "2")
        bread = self.add("12.50*3", "--debit", "--date", "2026-06-30", "--item", "Bread")
        other = self.add("1", section="budget3")
        listed = self.entries()
        self.assertEqual([e["fPK"] for e in listed], [salary, rent, bread])
        self.assertEqual(listed[1], {
            "fPK": rent, "section": "Budget 1", "fSec": 17, "fSub": 2, "Description": "Miete – Łódź",
            "BizPartner": "Okoye", "Note": "a\r\nb", "Private": True, "UserNumber": 0, "date": "2026-05-03",
            "CDBW": PRIVATE_DEBIT, "paymentType": 2, "hasNote": True, "amount": "980.0000",
            "category": {"number": 0, "name": "Unfiled"}})
        self.assertEqual([e["amount"] for e in listed], ["2700.1234", "980.0000", "37.5000"])
        self.assertEqual([e["fPK"] for e in self.entries("--from", "2026-05-01", "--to", "2026-05-31")],
                         [salary, rent])
        self.assertEqual([e["fPK"] for e in self.entries("--from", "2026-05-04")], [bread])
        self.assertEqual(self.entries(section="budget3")[0]["date"], time.strftime("%Y-%m-%d"))
        self.assertEqual(json.loads(self.bmr("show", bread, "--json"))["amount"], "37.5000")
        self.assertRegex(self.bmr("list", "budget1"), r"2026-05-03 +debit +N +980\.00 +P +Unfiled +Miete – Łódź\n")
        self.bmr("delete", other)
        self.assertEqual(self.entries(section="budget3"), [])
        self.assertIn("all whole", self.bmr("check"))

    def test_what_makes_no_sense_is_refused_and_nothing_stored(self):
        self.bmr("new")
        before = self.file.read_bytes()
        for amount in (" ", "x", "1.234,56", "1234567890123456", "922337203685477.5808", "1/0"):
            self.assertIn("no valid amount", self.bmr("add", "budget1", f"--amount={amount}", status=1), amount)
        for args, told in ((["--item", "x"], "amount is required"),
                           (["--amount", "1", "--date", "2026-02-30"], "YYYY-MM-DD"),
                           (["--amount", "1", "--date", "2069-04-15"], "Upper range limit"),
                           (["--amount", "1", "--payment", "10"], "0 to 9"),
                           (["--amount", "1", "--item", "x" * 65001], "65001"),
                           (["--amount", "1", "--category", "none"], "no category")):
            self.assertIn(told, self.bmr("add", "budget1", *args, status=1), args)
        for args in (["summary", "todo"], ["summary", "budget1", "--from", "2026-02-02", "--to", "2026-02-01"],
                     ["list", "budget1", "--rows"], ["list", "budget1", "--from", "x"],
                     ["import", "diary", "--csv", DATA + "/none.csv"],
                     ["import", "budget1", "--csv", DATA + "/none.csv"]):
            self.bmr(*args, status=1)
        self.assertEqual(self.file.read_bytes(), before)
        for amount, kept in (("1e3", "1000.0000"), ("(5)", "-5.0000"), ("-3", "-3.0000"), ("0", "0.0000")):
            key = int(self.bmr("add", "budget2", f"--amount={amount}"))
            self.assertEqual(json.loads(self.bmr("show", key, "--json"))["amount"], kept)

    def test_summaries_add_up_by_class_and_hide_what_is_private(self):
        self.bmr("new")
        for i, (amount, args) in enumerate((("10.0001", []), ("2", ["--debit"]), ("5", ["--private"]),
                                            ("0.0009", ["--private", "--debit"]))):
            self.add(amount, "--date", f"2026-01-{10 + i}", *args)
        self.add("100", "--date", "2026-02-01")
        told = self.summary("--from", "2026-01-01", "--to", "2026-01-31")
        self.assertEqual(told["totals"], ["10.0001", "2.0000", "5.0000", "0.0009"])
        self.assertEqual(told["categories"], [{"number": 0, "name": "Unfiled", "amounts": told["totals"]}])
        self.assertEqual(self.summary("--from", "2026-02-02", "--to", "2026-02-02")["totals"], ["0.0000"] * 4)
        table = self.bmr("summary", "budget1", "--from", "2026-01-01", "--to", "2026-01-31")
        self.assertRegex(table, r"Unfiled +10\.00 +5\.00 +15\.00 +2\.00 +0\.00 +2\.00 +8\.00 +5\.00 +13\.00\n")
        self.assertEqual([e["CDBW"] for e in self.entries("--to", "2026-01-31")],
                         [CREDIT, DEBIT, PRIVATE_CREDIT, PRIVATE_DEBIT])

    def test_what_a_row_hides_by_is_the_flag_of_its_record(self):
        self.bmr("new")
        public, secret = self.add("1", "--item", "public"), self.add("2", "--item", "secret", "--private")
        self.change("UPDATE tt SET fR1 = fR1 + 2 WHERE fPK = ?", public)
        check = self.bmr("check")
        self.assertIn("all whole", check)
        self.assertRegex(check, rf"note: fPK {public}, fSec 17: the private bit of fR1")
        self.change("UPDATE tt SET fF2 = 1 WHERE fPK = ?", secret)
        self.change("UPDATE tt SET fT1 = fEtx WHERE fPK = ?", public)
        self.assertIn("2 faults", self.bmr("check", status=1))
        self.assertEqual([e["amount"] for e in self.entries() if e["fPK"] == public], ["0.0000"])
        self.bmr("add", "diary", "--text", "x")
        self.hide_private()
        self.assertEqual([e["fPK"] for e in self.entries()], [public])
        self.assertEqual(len(self.entries("--private")), 2)
        self.assertEqual(self.listed(section="diary"), [])
        self.assertEqual(len(self.listed("--private", section="diary")), 1)
        self.assertEqual(self.summary()["totals"], ["0.0000", "0.0000", None, None])
        self.bmr("show", secret, status=1)
        path = self.folder / "out.csv"
        self.assertIn("1 exported", self.bmr("export", "budget1", "--csv", path))

    def test_foreign_files_are_read_whole(self):
        shutil.copyfile(os.path.join(DATA, "foreign.bmr"), self.file)
        self.assertEqual([(e["date"], e["amount"], e["CDBW"], e["Description"])
                          for e in self.entries(secret=FOREIGN_PASS)],
                         [("2026-11-01", "2750.0000", CREDIT, "Salary March"),
                          ("2026-11-18", "23.4500", DEBIT, "Groceries")])
        self.assertEqual([(e["date"], e["text"]) for e in self.listed(section="diary", secret=FOREIGN_PASS)],
                         [("2026-11-19", "Walked along the canal, herons again.")])
        self.assertIn("all whole", self.bmr("check", secret=FOREIGN_PASS))
        self.bmr("add", "diary", "--date", "2026-11-19", "--text", "Later.", secret=FOREIGN_PASS)
        self.assertEqual(self.listed(section="diary", secret=FOREIGN_PASS)[0]["text"],
                         "Walked along the canal, herons again.\r\n\r\nLater.")
        self.assertIn("all whole", self.bmr("check", secret=FOREIGN_PASS))


class Tables(BudgetBase):
    BANK = ("Kontoauszug;\n\nBuchungstag;Empfänger;Verwendungszweck;Betrag\n"
            "05.01.2026;Bäckerei;Brot;-1.012,50\n31.01.2026;Arbeit;Lohn;2.500,00\n31.02.2026;x;y;1,00\n")

    def test_a_banks_table_is_taken_in_once(self):
        self.bmr("new")
        path = self.folder / "bank.csv"
        path.write_bytes(self.BANK.encode("cp1252"))
        self.assertIn("2 imported, 0 left out, 1 refused", self.bmr("import", "budget2", "--csv", path))
        self.assertEqual([(e["date"], e["amount"], e["CDBW"], e["Description"], e["BizPartner"])
                          for e in self.entries(section="budget2")],
                         [("2026-01-05", "1012.5000", DEBIT, "Brot", "Bäckerei"),
                          ("2026-01-31", "2500.0000", CREDIT, "Lohn", "Arbeit")])
        again = self.bmr("import", "budget2", "--csv", path)
        self.assertIn("0 imported, 2 left out", again)
        self.assertIn("line 4: is there already", again)
        self.assertIn("2 imported", self.bmr("import", "budget2", "--csv", path, "--duplicates", "add"))
        self.assertIn("2 imported", self.bmr("import", "budget3", "--csv", path, "--columns", "date,item,note,amount"))
        self.assertEqual(self.entries(section="budget3")[0]["Note"], "Brot")
        self.assertIn("no column", self.bmr("import", "budget3", "--csv", path, "--columns", "date,when", status=1))
        self.assertIn("all whole", self.bmr("check"))

    def test_what_is_exported_comes_back_the_same(self):
        self.sample(240, seed=5, sections="budget")
        path = self.folder / "out.csv"
        told = self.entries()
        self.assertIn(f"{len(told)} exported", self.bmr("export", "budget1", "--csv", path))
        self.assertEqual(stat.S_IMODE(path.stat().st_mode), 0o600)
        with open(path, newline="", encoding="utf-8") as file:
            rows = list(csv.reader(file))
        self.assertEqual(rows[0][:4], ["Date", "Item", "Credit", "Debit"])
        self.assertEqual(len(rows), len(told) + 1)
        other = self.folder / "other.bmr"
        self.bmr("new", file=other)
        self.assertIn(f"{len(told)} imported", self.bmr("import", "budget1", "--csv", path, file=other))

        def contents(entries):
            return sorted((e["date"], e["amount"], e["CDBW"], e["Description"], e["BizPartner"], e["Note"], e["Private"],
                           e["paymentType"], e["category"]["name"]) for e in entries)
        self.assertEqual(contents(self.entries(file=other)), contents(told))
        self.assertIn("all whole", self.bmr("check", file=other))
        day = told[0]["date"]
        count = len([e for e in told if e["date"] == day])
        self.assertIn(f"{count} exported", self.bmr("export", "budget1", "--csv", path, "--from", day, "--to", day))

    def test_bad_tables_are_told(self):
        self.bmr("new")
        before = self.file.read_bytes()
        path = self.folder / "bad.csv"
        for content in (b"", b"\0\0\0", b"a,b\n", b"Date,Amount\n\"2026-01-01", b"," * 5000, b"\xff\xfe"):
            path.write_bytes(content)
            self.bmr("import", "budget1", "--csv", path, status=1)
        self.assertEqual(self.file.read_bytes(), before)


class Diary(BudgetBase):
    def test_a_day_has_one_page_that_grows(self):
        self.bmr("new")
        first = int(self.bmr("add", "diary", "--date", "2026-05-03", "--text", "Morning – 北京\nfog"))
        self.assertEqual(int(self.bmr("add", "diary", "--date", "2026-05-03", "--text", "Evening")), first)
        self.bmr("add", "diary", "--date", "2026-05-01", "--text", "May")
        pages = self.listed(section="diary")
        self.assertEqual([(p["date"], p["text"]) for p in pages],
                         [("2026-05-01", "May"), ("2026-05-03", "Morning – 北京\r\nfog\r\n\r\nEvening")])
        self.assertEqual([p["date"] for p in self.listed("--from", "2026-05-02", section="diary")], ["2026-05-03"])
        self.assertEqual(json.loads(self.bmr("show", first, "--json"))["date"], "2026-05-03")
        self.assertEqual(len(self.rows("fSec=13")), 2)
        self.assertIn("all whole", self.bmr("check"))
        before = self.file.read_bytes()
        for args in (["--date", "2026-05-03"], ["--date", "x", "--text", "y"], ["--date", "2069-04-15", "--text", "y"],
                     ["--text", "x" * 70000], ["--date", "2026-05-03", "--text", "x" * 64990]):
            self.bmr("add", "diary", *args, status=1)
        self.assertEqual(self.file.read_bytes(), before)

    def test_two_pages_of_a_day_and_columns_that_lie_are_named(self):
        self.sample(30, sections="diary")
        one, two, three = [row[0] for row in self.rows("fSec=13")][:3]
        self.change("UPDATE tt SET fR2 = (SELECT fR2 FROM tt WHERE fPK = ?), fEtx = (SELECT fEtx FROM tt WHERE "
                    "fPK = ?), fT1 = (SELECT fT1 FROM tt WHERE fPK = ?) WHERE fPK = ?", one, one, one, two)
        self.assertIn("1 faults", self.bmr("check", status=1))
        self.change("UPDATE tt SET fR2 = fR2 - 71049 * 40000 / 10 WHERE fPK = ?", three)
        self.assertIn("2 faults", self.bmr("check", status=1))


class Samples(BudgetBase):
    def test_a_household_is_believable_and_whole(self):
        self.sample(1200, seed=4, sections="budget,diary")
        self.assertIn("all whole", self.bmr("check"))
        entries = self.entries()
        self.assertEqual(sum(len(self.entries(section=f"budget{i}")) for i in (1, 2, 3)), 600)
        self.assertEqual({e["CDBW"] for e in entries}, {0, 1, 2, 3})
        self.assertGreater(len({e["category"]["name"] for e in entries}), 6)
        self.assertGreater(len({e["date"][:7] for e in entries}), 12)
        dates = [p["date"] for p in self.listed(section="diary")]
        self.assertEqual(len(dates), 600)
        self.assertEqual(len(set(dates)), 600)
        told = self.summary("--from", "1950-01-01", "--to", "2069-01-01")
        for kind in range(4):
            exact = sum(decimal.Decimal(e["amount"]) for e in entries if e["CDBW"] == kind)
            self.assertEqual(decimal.Decimal(told["totals"][kind]), exact)
            self.assertEqual(sum(decimal.Decimal(c["amounts"][kind]) for c in told["categories"]), exact)


if __name__ == "__main__":
    main()
