#!/usr/bin/env python3
"""Memos, confidential records and the generator on the command line."""
import os
import subprocess
import time

from bmr_support import BMR, PASS, RANDOM_OPS, Base, call, main


class Catalogue(Base):
    def test_memos_stand_in_order_and_keep_their_fields(self):
        self.bmr("new")
        keys = {s: int(self.bmr("add", "memo", "--subject", s, "--body", f"about {s}\nand more", *more))
                for s, more in (("Abend", ["--private"]), ("Abc", []), ("Übersicht", []), ("Aarhus", []))}
        records = self.listed(section="memo")
        subjects = [r["Subject"] for r in records]
        self.assertEqual([s for s in subjects if s.startswith("Ab")], ["Abc", "Abend"])
        memo = next(r for r in records if r["fPK"] == keys["Abend"])
        today = time.strftime("%Y-%m-%d")
        self.assertEqual(memo, {
            "fPK": keys["Abend"], "section": "Memo", "fSec": 14, "fSub": 0, "UserNumber": 0, "Private": True,
            "DateCreated": today, "DateLastModified": today, "Subject": "Abend",
            "Memo": "about Abend\r\nand more", "category": {"number": 0, "name": "Unfiled"}})
        self.assertNotIn("about", self.bmr("list", "memo"))
        before = self.file.read_bytes()
        for args in (["memo"], ["memo", "--subject", "x", "--task", "y"], ["memo", "--subject", "a\nb"],
                     ["todo", "--task", "x", "--body", "y"], ["confidential", "--kind", "17"],
                     ["confidential", "--n0", "x"], ["confidential", "--kind", "1", "--category", "x"]):
            self.bmr("add", *args, status=1)
        self.assertIn("65001", self.bmr("add", "memo", "--subject", "x", "--body", "y" * 65001, status=1))
        self.assertEqual(self.file.read_bytes(), before)
        self.bmr("delete", keys["Abc"])
        self.assertNotIn("Abc", [r["Subject"] for r in self.listed(section="memo")])
        self.assertIn("all whole", self.bmr("check"))

    def test_a_file_is_whole_after_many_operations(self):
        self.bmr("new")
        done = call(RANDOM_OPS, self.file, "--operations", 10000, "--seed", time.time_ns() % 100000)
        self.assertEqual((done.returncode, done.stderr), (0, ""), done.args)
        self.assertIn("all whole", self.bmr("check"))

    def add_card(self, secrets, *args, status=0):
        reader, writer = os.pipe()
        os.write(writer, f"{PASS}\n{secrets}".encode())
        os.close(writer)
        done = subprocess.run([BMR, "add", self.file, "confidential", *args, "--passphrase-fd", str(reader),
                               "--secret-fd", str(reader)], pass_fds=[reader], capture_output=True, encoding="utf-8")
        os.close(reader)
        self.assertEqual(done.returncode, status, done.stderr)
        return int(done.stdout) if status == 0 else done.stderr

    def test_secrets_come_by_descriptor_and_stay_masked(self):
        self.bmr("new")
        key = self.add_card("Tr0ub–dor\n", "--kind", "1", "--n0", "Harbour", "--n1", "https://h.example", "--private")
        other = self.add_card("", "--kind", "5", "--n1", "Quay 1\nPorto")  # no secret field, no name
        before = self.file.read_bytes()
        self.assertIn("Password of Web Login", self.add_card("x\n", "--kind", "1", "--n3", "hunter2", status=1))
        self.assertIn("no n4", self.add_card("x\n", "--kind", "1", "--n4", "x", status=1))
        self.add_card("", "--kind", "1", "--n0", "x", status=1)  # its line is missing
        self.assertEqual(self.file.read_bytes(), before)
        record, = self.listed("--kind", "1", section="confidential")
        self.assertEqual(record, {
            "fPK": key, "section": "Confidential", "fSec": 16, "fSub": 0, "n0": "Harbour", "n1": "https://h.example",
            "n2": "", "n3": "Tr0ub–dor", "n4": "", "notes": "", "DateLastModified": time.strftime("%Y-%m-%d"),
            "Private": True, "UserName": 0, "kind": {"number": 1, "caption": "Web Login"}})
        self.assertEqual([r["fPK"] for r in self.listed(section="confidential")], [key, other])
        for shown in (self.bmr("show", key), self.bmr("dump"), self.bmr("list", "confidential")):
            self.assertIn("Harbour", shown)
            self.assertNotIn("Tr0ub", shown)
        self.assertIn("n3 (Password): Tr0ub–dor", self.bmr("show", key, "--plain"))
        self.assertIn("all whole", self.bmr("check"))

    def test_generated_passwords_follow_the_recipe_and_tell_their_strength(self):
        def made(*args, status=0):
            done = subprocess.run([BMR, "generate", *args], capture_output=True, encoding="utf-8")
            self.assertEqual(done.returncode, status, done.stderr)
            return done
        seen = {made("--length", "30", "--no-upper", "--no-punctuation", "--readable").stdout for _ in range(5)}
        self.assertEqual(len(seen), 5)
        for text in seen:
            self.assertRegex(text, r"\A[a-km-np-z2-9]{30}\n\Z")
        self.assertEqual(made("--length", "10", "--no-lower", "--no-upper", "--no-punctuation").stderr,
                         "33 bits of entropy\n")
        self.assertRegex(made("--words", "5").stdout, r"\A[a-z]+(-[a-z]+){4}\n\Z")
        for args in (["--length", "3"], ["--words", "1"], ["--words", "4", "--no-lower"],
                     ["--no-lower", "--no-upper", "--no-digits", "--no-punctuation"]):
            made(*args, status=1)


if __name__ == "__main__":
    main()
