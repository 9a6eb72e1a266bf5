#!/usr/bin/env python3
"""Runs the tests of a binary on screens of their own, each with a window manager and, where it can be had, an accessibility
bus. Ends with 77 where there can be no screen."""
import json
import os
import shutil
import subprocess
import sys
import tempfile

SKIP = 77
SCREENS = 3
LAUNCHER = "/usr/libexec/at-spi-bus-launcher"
STATUS = ["--dest=org.a11y.Bus", "/org/a11y/bus"]


def end(process):
    process.terminate()
    try:
        process.wait(5)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def send(*arguments):
    return subprocess.run(["dbus-send", "--session", "--print-reply=literal", *arguments], capture_output=True,
                          text=True, check=True).stdout.strip()


def accessible(command):
    """Inside a session bus of our own: turns accessibility on, as a user of a screen reader has it."""
    os.environ["BMR_TEST_BUS"] = send(*STATUS, "org.a11y.Bus.GetAddress")
    send(*STATUS, "org.freedesktop.DBus.Properties.Set", "string:org.a11y.Status", "string:IsEnabled",
         "variant:boolean:true")
    return subprocess.call(command)


def main(command):
    for program in ("Xvfb", "openbox"):
        if not shutil.which(program):
            print(f"skipped: {program} is not installed")
            return SKIP
    if os.path.exists(LAUNCHER) and all(map(shutil.which, ("dbus-run-session", "dbus-send", "dbus-monitor"))):
        command = ["dbus-run-session", "--", sys.executable, __file__, "--accessible", *command]
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
        environment = {name: value for name, value in os.environ.items()
                       if not name.startswith(("XDG_", "DBUS_", "AT_SPI_"))}
        environment.update(DISPLAY=":" + display, HOME=home, XDG_RUNTIME_DIR=home, QT_QPA_PLATFORM="xcb")
        environment.pop("WAYLAND_DISPLAY", None)
        manager = subprocess.Popen(["openbox", "--sm-disable"], env=environment, stderr=subprocess.DEVNULL)
        try:
            return subprocess.call(command, env=environment)
        finally:
            end(manager)
            end(server)


def patiently(command):
    """Three programs and a window manager share one clock here. Where the machine was too busy to let them keep time, what
    failed gets another try on a fresh screen; a fault that is always there fails each time."""
    with tempfile.TemporaryDirectory() as folder:
        report = os.path.join(folder, "report.json")
        again = []
        for last in (False, False, True):
            status = main([*command, f"--gtest_output=json:{report}", *again])
            if status in (0, SKIP) or last:
                return status
            if failed := failures(report):
                again = [f"--gtest_filter={':'.join(failed)}"]
                os.environ["GTEST_TOTAL_SHARDS"] = "1"
                os.environ["GTEST_SHARD_INDEX"] = "0"
            print("once more, on a fresh screen", flush=True)


def failures(report):
    """The names of the tests that failed; none where the tests did not come to their end and left no report."""
    try:
        with open(report, encoding="utf-8") as file:
            suites = json.load(file)["testsuites"]
        os.remove(report)
    except FileNotFoundError:
        return []
    return [f"{suite['name']}.{test['name']}" for suite in suites for test in suite["testsuite"] if "failures" in test]


def side_by_side(command):
    """The tests mostly wait for the hands of a typist, so several screens share the machine. Gives the first status that
    is not 0."""
    shards = [subprocess.Popen(
        [sys.executable, __file__, "--one", *command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
        env={**os.environ, "GTEST_TOTAL_SHARDS": str(SCREENS), "GTEST_SHARD_INDEX": str(index)})
        for index in range(SCREENS)]
    status = 0
    for shard in shards:
        print(shard.communicate()[0], end="", flush=True)
        status = status or shard.returncode
    return status


if __name__ == "__main__":
    WAYS = {"--one": patiently, "--accessible": accessible}
    way = WAYS.get(sys.argv[1])
    sys.exit(way(sys.argv[2:]) if way else side_by_side(sys.argv[1:]))
