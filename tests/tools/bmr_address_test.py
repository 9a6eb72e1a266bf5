#!/usr/bin/env python3
"""Drives the address book of the real bmr end to end.

usage: bmr_address_test.py BMR SAMPLEDB ALTER RANDOM_OPS DATA [unittest arguments]
"""
import contextlib
import json
import shutil
import sqlite3
import stat

from bmr_support import BMR, DATA, FOREIGN_PASS, Base, call, main

COMS = [f"Com{i}" for i in range(1, 10)]


class AddressBase(Base):
    def add(self, *args, **kwargs):
        return int(self.bmr("add", "address", *args, **kwargs))

    def addresses(self, *args, **kwargs):
        return self.listed(*args, section="address", **kwargs)

    def change(self, statement, *values):
        with contextlib.closing(sqlite3.connect(self.file)) as db, db:
            db.execute(statement, values)


class Records(AddressBase):
    def test_every_field_goes_in_by_its_name_and_comes_back(self):
        self.bmr("new")
        key = self.add("--last-name", "Muster")
        empty, = self.addresses()
        given = {name: f"{name} Ł é" for name, value in empty.items() if value == "" and not name.startswith("ComLabel")
                 and name not in ("ComDisplay", "fileAs", "contact")}
        given.update({"Birthday": "1960-02-29", "Priority": 7, "ComDisplay": "2", "fileAs": "Filed – as",
                      "LastName": "Muster", "Notes": "one\r\ntwo\tthree"})
        labels = dict(zip(("ComLabel1", "ComLabel2", "ComLabel3", "ComLabel9"), ("Fax", "mobile", "7", "Website")))
        full = self.add(*(f"--field={name}={value}" for name, value in {**given, **labels}.items()), "--private")
        record = next(r for r in self.addresses() if r["fPK"] == full)
        given.update({f"ComLabel{i}": v for i, v in enumerate("387635599", 1)},
                     contact="Com3 Ł é (pager)", private=True, Private=True)
        self.assertEqual({name: record[name] for name in given}, given)
        self.assertEqual(set(record) - set(given),
                         {"fPK", "section", "fSec", "fSub", "UserNumber", "category"})
        self.assertEqual(empty["contact"], "")
        self.assertEqual([empty[f"ComLabel{i}"] for i in range(1, 10)], [""] * 9)
        self.assertIn("all whole", self.bmr("check"))
        self.bmr("delete", key)
        self.assertEqual([r["fPK"] for r in self.addresses()], [full])

    def test_a_record_is_filed_as_the_default_or_as_told(self):
        self.bmr("new")
        for args, filed in ((["--first-name", "Anna", "--last-name", "Muster"], "Muster, Anna"),
                            (["--company", "Acme", "--field", "HomeAddressCity=Graz"], "Acme"),
                            (["--company", "Acme", "--file-as", "The firm"], "The firm"),
                            (["--first-name", "Ζωή"], "Ζωή")):
            key = self.add(*args)
            self.assertEqual(json.loads(self.bmr("show", key, "--json"))["fileAs"], filed)
        before = self.file.read_bytes()
        for args, told in ((["--company", "Acme"], "Either LAST NAME"), (["--mobile", "1"], "Either LAST NAME"),
                           (["--last-name", "x", "--field", "ComLabel1=Telex"], "Work, Home"),
                           (["--last-name", "x", "--field", "ComDisplay=9"], "0 to 8"),
                           (["--last-name", "x", "--field", "Priority=256"], "0 to 255"),
                           (["--last-name", "x", "--birthday", "1903-10-14"], "beyond"),
                           (["--last-name", "x", "--birthday", "31.02."], "no date"),
                           (["--last-name", "x\ny"], "one line"),
                           (["--last-name", "x", "--notes", "y" * 65001], "65000"),
                           (["--last-name", "x", "--category", "None"], "no category")):
            self.assertIn(told, self.bmr("add", "address", *args, status=1), args)
        self.assertEqual(self.file.read_bytes(), before)

    def test_the_card_reads_as_on_the_screen(self):
        shutil.copy(f"{DATA}/foreign.bmr", self.file)
        key = next(r["fPK"] for r in self.addresses(secret=FOREIGN_PASS) if r["LastName"] == "Mitchell")
        card = json.loads(self.bmr("show", key, "--card", "--json", secret=FOREIGN_PASS))
        self.assertEqual(card, {"head": "Mitchell, Orla", "body":
                                "Work:\t555 0134\r\nMobile:\t555 0177\r\nAddress:\r\nHome:\r\nQuay Lane 4\r\nWexport"
                                "\r\nBirthday:\t1961-05-17\r\nNote:\r\nprefers calls in the evening"})
        text = self.bmr("show", key, "--card", secret=FOREIGN_PASS)
        self.assertIn("Mitchell, Orla\nWork: 555 0134\n", text)
        memo = self.rows("fSec = 14")[0][0]
        self.bmr("show", memo, "--card", secret=FOREIGN_PASS, status=1)
        self.assertIn("all whole", self.bmr("check", secret=FOREIGN_PASS))

    def test_private_ones_are_hidden_by_their_markers(self):
        self.sample(200, sections="address")
        every = self.addresses()
        self.change("UPDATE tt SET fEtx = x'00' WHERE fSec = 5")  # private records are hidden then
        shown = self.addresses()
        self.assertEqual(shown, [r for r in every if not r["private"]])
        self.assertTrue(0 < len(shown) < len(every))
        self.assertEqual(self.addresses("--private"), every)


class Files(AddressBase):
    def test_check_names_each_column_that_tells_something_else(self):
        self.sample(200, seed=4, sections="address")
        good = self.file.read_bytes()
        rows = self.addresses()
        hidden, shown = (next(r["fPK"] for r in rows if r["private"] is p and r["contact"]) for p in (True, False))
        for change, told in ((f"fT3 = (SELECT fT3 FROM tt WHERE fPK = {hidden})", "whether the address is private"),
                             ("fT2 = fT1", "fT2 does not tell the contact"), ("fT2 = fT3", "the contact"),
                             ("fR2 = 2147483647 - fR2", "out of alphabetical order")):
            self.file.write_bytes(good)
            self.change(f"UPDATE tt SET {change} WHERE fPK = ?", shown)
            done = call(BMR, "check", self.file)
            self.assertEqual(done.returncode, 1, change)
            self.assertRegex(done.stdout, f"fPK -?[0-9]+, fSec 11: .*{told}", change)
        # Without a name it is whole, and no list shows it.
        self.file.write_bytes(good)
        self.change("UPDATE tt SET fT1 = zeroblob(0), fR1 = 0, fR2 = 0 WHERE fPK = ?", shown)
        self.assertIn("note: 1 address has no name", self.bmr("check"))
        self.assertNotIn(shown, [r["fPK"] for r in self.addresses()])

    def test_the_export_is_the_list_in_lines_and_tabs(self):
        self.sample(300, seed=5, sections="address")
        text = self.folder / "out.txt"
        text.write_text("old")
        self.assertIn("300 addresses were written", self.bmr("export", "address", "--tab", text))
        self.assertEqual(stat.S_IMODE(text.stat().st_mode), 0o600)
        lines = text.read_bytes().decode("cp1252").split("\t\r\n")
        header = lines[0].split("\t")
        self.assertEqual(len(header), 60)
        # A line break inside a note stays, and a line ends only behind a tab.
        self.assertEqual(lines.pop(), "")
        rows = [dict(zip(header, line.split("\t"))) for line in lines[1:]]
        wanted = self.addresses()
        self.assertEqual(len(rows), len(wanted))
        for row, record in zip(rows, wanted):
            for name in header:
                value = record[name]
                shown = "" if value is None else str(value)
                self.assertEqual(row[name], shown, (name, record["fPK"]))
        for args in (["todo", "--tab", text], ["address"], ["address", "--tab", self.file],
                     ["address", "--tab", text, "--category", "None"]):
            held = text.read_bytes()
            call_args = call(BMR, "export", self.file, *args)
            self.assertNotEqual(call_args.returncode, 0, args)
            self.assertEqual(text.read_bytes(), held)
        self.bmr("export", "address", "--tab", text, "--category", "family")
        family = [r for r in wanted if r["category"]["name"] == "Family"]
        self.assertEqual(text.read_bytes().count(b"\t\r\n"), len(family) + 1)
        self.assertEqual({p.name for p in self.folder.iterdir()}, {self.file.name, "out.txt"})

    def test_vcards_go_out_and_come_in_whole(self):
        self.sample(200, seed=6, sections="address")
        cards = self.folder / "all.vcf"
        self.assertIn("200 addresses were written", self.bmr("export", "address", "--vcard", cards))
        self.assertIn("name and number are there", self.bmr("import", "address", "--vcard", cards, "--preview"))
        told = self.bmr("import", "address", "--vcard", cards)
        self.assertRegex(told, r"skipped 1 .* - it is there already\n")
        wanted = self.addresses()
        other = self.folder / "other.bmr"
        self.bmr("new", file=other)
        told = self.bmr("import", "address", "--vcard", cards, "--duplicates", "add", file=other)
        self.assertTrue(told.endswith("200 added, 0 merged, 0 skipped\n"), told[-80:])
        self.assertIn("all whole", self.bmr("check", file=other))
        found = {(r["fileAs"], r["Notes"], *(r[c] for c in COMS)): r for r in self.addresses(file=other)}
        for record in wanted:
            # The other file has no categories: their names stand in the notes.
            if record["category"]["number"]:
                note = f"Categories: {record['category']['name']}"
                record["Notes"] += ("\r\n" if record["Notes"] else "") + note
            twin = found[(record["fileAs"], record["Notes"], *(record[c] for c in COMS))]
            self.assertEqual({**twin, "fPK": 0, "category": 0}, {**record, "fPK": 0, "category": 0})

    def test_an_import_is_whole_or_none(self):
        self.bmr("new")
        cards = self.folder / "in.vcf"
        cards.write_bytes(b"BEGIN:VCARD\r\nVERSION:2.1\r\nN;CHARSET=ISO-8859-1:M\xfcller;Eva\r\nTEL;CELL:0664 1\r\n"
                          b"PHOTO;ENCODING=BASE64;JPEG:\r\n AAAA\r\n\r\nEND:VCARD\r\n"
                          b"BEGIN:VCARD\r\nTEL:1\r\nEND:VCARD\r\nBEGIN:VCARD\r\nFN:\x1b[31mRed\r\n")
        before = self.file.read_bytes()
        told = self.bmr("import", "address", "--vcard", cards, "--preview")
        self.assertEqual(told, "card    1 Müller, Eva - without PHOTO\nskip    2 (no name) - it has no name\n"
                               "skip    3 (no name) - the file ends within it\n")
        self.assertEqual(self.file.read_bytes(), before)
        told = self.bmr("import", "address", "--vcard", cards)
        self.assertEqual(told, "added   1 Müller, Eva - left out: PHOTO\nskipped 2 (no name) - it has no name\n"
                               "skipped 3 (no name) - the file ends within it\n1 added, 0 merged, 2 skipped\n")
        self.assertEqual([r["contact"] for r in self.addresses()], ["0664 1 (M)"])
        before = self.file.read_bytes()
        for args in (["--vcard", self.file], ["--vcard", self.folder / "none.vcf"], ["--vcard", self.folder],
                     ["--vcard", cards, "--category", "None"]):
            self.bmr("import", "address", *args, status=1)
        self.assertEqual(self.file.read_bytes(), before)


if __name__ == "__main__":
    main()
