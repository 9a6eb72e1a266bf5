#!/usr/bin/env python3
"""Refuses an include that points up the list of rooms, or into another section's forms."""
import pathlib
import re
import sys

# Lower rooms first: a file may include its own room and every room before it.
ROOMS = ["base", "crypto", "engine", "store", "custody", "shell", "kit"]
SECTIONS = ["calendar", "tasks", "notes", "budget", "address", "confidential", "interchange", "backup"]
INCLUDE = re.compile(r'^\s*#\s*include\s+"([a-z_]+)/([A-Za-z0-9_]+)\.h"')
ENGINE = {
    "SQLiteCpp": ("engine/",), "sqlite3": ("engine/",), "botan": ("crypto/",),
    "unicode/": ("base/unicode",),
    "xcb": ("kit/platform_",), "windows.h": ("kit/platform_",),
}
SYSTEM = re.compile(r'^\s*#\s*include\s+[<"]([^>"]+)[>"]')


def has_screen(path):
    return path.stem.startswith("frm") or any(
        SYSTEM.match(line) and SYSTEM.match(line).group(1).startswith("Q")
        for line in path.read_text(encoding="utf-8").splitlines())


def allowed(room, target, path, stem):
    if room == target or room in ("app", ""):
        return True
    if target == "app":
        return False
    if room in ROOMS:
        return target in ROOMS and ROOMS.index(target) < ROOMS.index(room) and not (
            target == "kit" and room != "kit")
    if target in ROOMS:
        return target != "kit" or has_screen(path)
    # Sections may use each other's records and rules, never each other's forms.
    return not stem.startswith("frm")


def main(root):
    bad = []
    source = pathlib.Path(root, "src")
    files = sorted(p for p in source.rglob("*") if p.suffix in (".h", ".cpp"))
    for path in files:
        relative = path.relative_to(source)
        room = relative.parts[0] if len(relative.parts) > 1 else ""
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            own = INCLUDE.match(line)
            if own and own.group(1) in ROOMS + SECTIONS + ["app"]:
                if not allowed(room, own.group(1), path, own.group(2)):
                    bad.append(f"{relative}:{number}: {room} must not include {own.group(1)}/{own.group(2)}.h")
                continue
            system = SYSTEM.match(line)
            if system:
                for name, homes in ENGINE.items():
                    if system.group(1).lower().startswith(name.lower()) and not str(relative).startswith(homes):
                        bad.append(f"{relative}:{number}: only {homes[0]} may name {system.group(1)}")
                if room in ROOMS and room != "kit" and system.group(1).startswith("Q"):
                    bad.append(f"{relative}:{number}: {room} knows no Qt")
    print("\n".join(bad) if bad else f"{len(files)} files, every arrow points down")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1] if len(sys.argv) > 1 else "."))
