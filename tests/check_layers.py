#!/usr/bin/env python3
"""Refuses an include that points up the list of rooms, or into another section's forms, and a circle of files."""
import pathlib
import re
import sys

# Lower rooms first: a file may include its own room and every room before it.
ROOMS = ["base", "crypto", "engine", "store", "custody", "shell", "kit"]
SECTIONS = ["interchange", "backup"]  # and those that src/CMakeLists.txt lists
INCLUDE = re.compile(r'^\s*#\s*include\s+"([a-z_]+)/([A-Za-z0-9_]+)\.h"')
ENGINE = {
    "SQLiteCpp": ("engine/",), "sqlite3": ("engine/",), "botan": ("crypto/",),
    "unicode/": ("base/unicode",),
    "xcb": ("kit/platform_",), "windows.h": ("kit/platform_",),
}
SYSTEM = re.compile(r'^\s*#\s*include\s+[<"]([^>"]+)[>"]')


def has_screen(path):
    return path.stem.startswith(("frm", "forms")) or any(
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


def unit_of(path, headers, included):
    """The name of what a file is a part of. A header and the source of its name are one; so are the sources that
    divide the work of one header (frmTodo_build.cpp of frmTodo.h) and the hidden half of a class (db_impl.h)."""
    stem = path.stem.removesuffix("_impl")
    if path.suffix == ".h" or stem in headers:
        return stem
    while "_" in stem:
        stem = stem.rpartition("_")[0]
        if stem in headers and stem in included:
            return stem
    return path.stem


def circles(files):
    """One circle of includes for each knot of files in a room: a list of (unit, file and line that includes)."""
    rooms = {}
    for path in files:
        rooms.setdefault(path.parent, []).append(path)
    found = []
    for room, members in sorted(rooms.items()):
        headers = {path.stem for path in members if path.suffix == ".h"}
        arrows = {}
        for path in members:
            lines = enumerate(path.read_text(encoding="utf-8").splitlines(), 1)
            own = [(m.group(2).removesuffix("_impl"), n) for n, line in lines
                   if (m := INCLUDE.match(line)) and m.group(1) == room.name]
            unit = unit_of(path, headers, {name for name, _ in own})
            for name, number in own:
                if name != unit:
                    arrows.setdefault(unit, {}).setdefault(name, f"{room.name}/{path.name}:{number}")
        found += [[(unit, arrows[unit][target]) for unit, target in zip(circle, circle[1:] + circle[:1])]
                  for circle in shortest_circles(arrows)]
    return found


def shortest_circles(arrows):
    """The shortest way round through each unit that lies on a circle, but each unit is named only once."""
    named = set()
    found = []
    for start in sorted(arrows):
        ways = [[start]]
        seen = {start}
        while start not in named and ways:
            way = ways.pop(0)
            targets = arrows.get(way[-1], {})
            if start in targets:
                found.append(way)
                named.update(way)
                break
            fresh = sorted(set(targets) - seen)
            seen.update(fresh)
            ways += [way + [target] for target in fresh]
    return found


def main(root):
    bad = []
    source = pathlib.Path(root, "src")
    lists = (source / "CMakeLists.txt").read_text(encoding="utf-8")
    SECTIONS.extend(re.search(r"set\(BMR_SECTIONS ([^)]*)\)", lists).group(1).split())
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
    for circle in circles(files):
        units = [unit for unit, _ in circle]
        bad.append(f"a circle: {' -> '.join(units + units[:1])}\n" + "\n".join(
            f"    {where} includes {target}.h" for (_, where), target in zip(circle, units[1:] + units[:1])))
    print("\n".join(bad) if bad else f"{len(files)} files, every arrow points down and none goes round")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1] if len(sys.argv) > 1 else "."))
