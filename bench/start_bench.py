#!/usr/bin/env python3
"""Time from the start of the program to its passphrase prompt, against a bare window, and its resident memory then.

Usage: start_bench.py BUILD_FOLDER. Needs Xvfb, openbox and xdotool. Best of 9 runs each.
start      at most 1.6 times a bare window
resident   at most 64 MiB at the prompt
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import time

RUNS = 9


def display():
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
                              pass_fds=[write], stderr=subprocess.DEVNULL)
    name = ":" + os.read(read, 16).decode().strip()
    manager = subprocess.Popen(["openbox"], env={**os.environ, "DISPLAY": name}, stderr=subprocess.DEVNULL)
    time.sleep(0.5)
    return name, [manager, server]


def until_window(command, title, env):
    begin = time.monotonic()
    process = subprocess.Popen(command, env=env, stderr=subprocess.DEVNULL)
    while True:
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], env=env,
                               capture_output=True, check=False)
        if found.returncode == 0:
            break
        if time.monotonic() - begin > 20 or process.poll() is not None:
            sys.exit(f"{title!r} did not come up")
    took = time.monotonic() - begin
    status = pathlib.Path(f"/proc/{process.pid}/status").read_text(encoding="ascii")
    resident = int(status.split("VmRSS:")[1].split()[0]) / 1024
    process.kill()
    process.wait()
    return took, resident


def measure(build, name):
    with tempfile.TemporaryDirectory() as home:
        env = {**os.environ, "DISPLAY": name, "HOME": home, "XDG_CONFIG_HOME": home, "XDG_RUNTIME_DIR": home,
               "QT_QPA_PLATFORM": "xcb"}
        env.pop("WAYLAND_DISPLAY", None)
        file = os.path.join(home, "start.bmr")
        read, write = os.pipe()
        os.write(write, b"correct Horse 9\n")
        os.close(write)
        subprocess.run([build / "tools/bmr", "new", file, "--passphrase-fd", str(read)], pass_fds=[read], check=True)
        bare = min(until_window([build / "bench/bare_window"], "bare window", env)[0] for _ in range(RUNS))
        runs = [until_window([build / "src/brindlemere", file], "Database: START", env) for _ in range(RUNS)]
    return bare, min(took for took, _ in runs), max(size for _, size in runs)


def main(build):
    name, servers = display()
    try:
        bare, ours, resident = measure(pathlib.Path(build), name)
    finally:
        for server in servers:
            server.kill()
    over = ours / bare > 1.6 or resident > 64
    print(f"start     {ours * 1e3:8.1f} ms  base {bare * 1e3:8.1f} ms  ratio {ours / bare:5.2f}  limit 1.60")
    print(f"resident  {resident:8.1f} MiB  limit 64")
    return 1 if over else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))
