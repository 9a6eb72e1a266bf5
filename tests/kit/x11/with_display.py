#!/usr/bin/env python3
"""Runs a command on a screen of its own, with a window manager. Ends with 77 where that cannot be had."""
import os
import shutil
import subprocess
import sys
import tempfile

SKIP = 77


def end(process):
    process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def main(command):
    for program in ("Xvfb", "openbox"):
        if not shutil.which(program):
            print(f"skipped: {program} is not installed")
            return SKIP
    read, write = os.pipe()
    with tempfile.TemporaryDirectory() as home:
        server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
            pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        display = os.read(read, 16).decode().strip()
        if not display:
            print("skipped: Xvfb did not start")
            end(server)
            return SKIP
        # Nothing of the user's own desktop may take part.
        environment = {name: value for name, value in os.environ.items() if not name.startswith(("XDG_", "DBUS_"))}
        environment.update(DISPLAY=":" + display, HOME=home, XDG_RUNTIME_DIR=home, QT_QPA_PLATFORM="xcb")
        environment.pop("WAYLAND_DISPLAY", None)
        manager = subprocess.Popen(["openbox", "--sm-disable"], env=environment, stderr=subprocess.DEVNULL)
        try:
            return subprocess.call(command, env=environment)
        finally:
            end(manager)
            end(server)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
