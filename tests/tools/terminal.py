#!/usr/bin/env python3
"""The line of progress of orv convert, on a pseudo terminal.

usage: terminal.py ORV
"""
import fcntl
import os
import pathlib
import pty
import re
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time

WIPE = b"\r\x1b[K"
# Degrees, minutes and seconds take longer to read than numbers.
BLOCK = b"9d30m15.5sE,52d31m12.25sN\n" * 20000
BAR = rb"orv: \[#*\s*\]\s+\d+ %, \d+\.\d million points/s, (\d+ s|\d+:\d\d min|\d+:\d\d h) left"
BYTES = rb"orv: \d+\.\d MB, \d+\.\d million points/s"
failures = 0


def check(holds, what, shown=b""):
    global failures
    if not holds:
        print(f"{what}: {shown[:300]!r}")
        failures += 1


class Run:
    """orv with a terminal for its messages; `feed` is what it reads, from a file or through a pipe for some seconds."""

    def __init__(self, orv, file=None, feed_seconds=0.0, tail=b"", more=(), variables=None, columns=120):
        mine, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("4H", 24, columns, 0, 0))
        environment = {key: value for key, value in os.environ.items() if key != "NO_COLOR"}
        environment.update({"TERM": "xterm", **(variables or {})})
        self.shown, self.first = b"", None
        self.start = time.monotonic()
        command = [orv, "convert", "--from", "EPSG:4326", "--to", "EPSG:32633", "--jobs", "1", *more, *([file] if file else [])]
        child = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.DEVNULL, stderr=theirs, env=environment)
        os.close(theirs)
        reader = threading.Thread(target=self.read, args=(mine,))
        reader.start()
        while not file and time.monotonic() < self.start + feed_seconds:
            child.stdin.write(BLOCK)
        child.stdin.write(tail)
        child.stdin.close()
        self.status = child.wait()
        self.seconds = time.monotonic() - self.start
        reader.join()
        os.close(mine)

    def read(self, terminal):
        while True:
            try:
                part = os.read(terminal, 65536)
            except OSError:  # the other end is closed
                return
            if not part:
                return
            self.first = self.first or time.monotonic() - self.start
            self.shown += part

    def lines(self):
        """What stood in the line, one after the other, without colours."""
        return [re.sub(rb"\x1b\[\d*m", b"", part) for part in self.shown.split(WIPE)]


def main():
    orv = sys.argv[1]
    with tempfile.TemporaryDirectory() as name:
        file = pathlib.Path(name) / "points.csv"
        size = 50
        while True:  # until the work lasts long enough
            file.write_bytes(BLOCK * size)
            run = Run(orv, file)
            if run.seconds > 1.5 or size > 2000:
                break
            size *= 2
        check(run.first is not None and run.first >= 1.0, f"nothing before a second, at {run.first}", run.shown)
        check(all(re.fullmatch(BAR, line) for line in run.lines()[1:-1]) and len(run.lines()) > 2, "the bar", run.shown)
        check(run.lines()[-1] == b"" and run.shown.endswith(WIPE), "it is wiped at the end", run.shown[-200:])
        check(b"\x1b[36m" in run.shown and b"\x1b[0m" in run.shown, "it has a colour", run.shown)
        shares = [int(re.search(rb"(\d+) %", line).group(1)) for line in run.lines()[1:-1]]
        check(shares == sorted(shares) and shares[-1] > shares[0] or len(shares) == 1, f"it moves on: {shares}")

        plain = Run(orv, file, variables={"NO_COLOR": "1"}, columns=30)
        check(b"\x1b[36m" not in plain.shown and b"orv: [" in plain.shown, "NO_COLOR", plain.shown)
        check(all(len(line) <= 29 for line in plain.lines()), "it is cut to the terminal", plain.shown)
        for more, variables in ((["--quiet"], {}), ([], {"TERM": "dumb"})):
            silent = Run(orv, file, more=more, variables=variables)
            check(silent.shown == b"", f"{more} {variables} show nothing", silent.shown)
        redirected = subprocess.run([orv, "convert", "--from", "EPSG:4326", "--to", "EPSG:32633", file], check=False,
                                    stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        check(redirected.stderr == b"", "nothing but on a terminal", redirected.stderr)

    # Through a pipe, whose size is not known; a message takes the place of the line.
    pipe = Run(orv, feed_seconds=1.5, tail=b"x,y\n")
    check(pipe.first is not None and pipe.first >= 1.0, f"nothing before a second, at {pipe.first}", pipe.shown)
    check(pipe.status == 1, "the status")
    parts = pipe.lines()
    message = [part for part in parts if b"line " in part]
    check(len(message) == 1 and re.match(rb"orv: line \d+: 'x' is neither", message[0]) is not None, "the message", pipe.shown)
    check(any(re.fullmatch(BYTES, part) for part in parts), "the bytes", pipe.shown)
    short = Run(orv, tail=b"9,52\n")
    check(short.shown == b"" and short.status == 0, "short work shows nothing", short.shown)
    print(f"{failures} failures")
    return 1 if failures else 0


sys.exit(main())
