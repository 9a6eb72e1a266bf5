#!/usr/bin/env python3
"""Installs a build into a folder of its own and looks at what stands there.

usage: install_test.py CMAKE BUILD_FOLDER forms|no-forms
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile


def run_path(program):
    sections = subprocess.run(["readelf", "-d", program], capture_output=True, encoding="utf-8", check=True).stdout
    return [line for line in sections.splitlines() if "RUNPATH" in line or "RPATH" in line]


def main(cmake, build, forms):
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([cmake, "--install", build, "--prefix", folder], check=True, stdout=subprocess.DEVNULL)
        root = pathlib.Path(folder)
        faults = []
        for name in ["bmr"] + (["brindlemere"] if forms else []):
            program = root / "bin" / name
            if not os.access(program, os.X_OK):
                faults.append(f"{name} is not installed")
                continue
            started = subprocess.run([program, "--version"], capture_output=True, encoding="utf-8",
                                     env={**os.environ, "QT_QPA_PLATFORM": "offscreen"})
            if started.returncode != 0 or not started.stdout:
                faults.append(f"{name} --version: {started}")
            faults += [f"{name}: {line.strip()}" for line in run_path(program)]
        entries = list(root.glob("share/applications/*.desktop"))
        if forms and len(entries) != 1:
            faults.append(f"desktop files: {entries}")
        for entry in entries if shutil.which("desktop-file-validate") else []:
            said = subprocess.run(["desktop-file-validate", entry], capture_output=True, encoding="utf-8")
            if said.returncode != 0 or said.stdout:
                faults.append(said.stdout)
    print("\n".join(faults) or "installed as it should be")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2], sys.argv[3] == "forms"))
