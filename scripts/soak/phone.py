"""What the trials of scripts/soak.sh share: a phone inside the sandbox, its tools, what is checked, what is reported.

A trial runs inside scripts/sandbox: PIDs, System V objects, /tmp and the devices are this phone's own. Its logs go to a
folder outside, so that they last.
"""
import argparse
import json
import os
import random
import signal
import socket
import statistics
import struct
import subprocess
import sys
import threading
import time
import zlib

# Longer than any step of a phone takes on a machine that is busy with other things: what is not there by then, hangs.
PATIENCE = 30.0
STATUSES = range(4)  # done, answered no, wrong usage, failed


class Trial:
    """One trial: its length, its random numbers, what it counted, and what went wrong."""

    def __init__(self):
        parser = argparse.ArgumentParser()
        parser.add_argument("--seconds", type=float, required=True)
        parser.add_argument("--seed", type=int, required=True)
        parser.add_argument("--out", required=True)
        options = parser.parse_args()
        self.name = os.path.basename(sys.argv[0]).removesuffix(".py")
        self.out, self.seconds, self.seed = options.out, options.seconds, options.seed
        self.random = random.Random(f"{self.name} {options.seed}")
        self.rows, self.failures, self.failed_before = [], {}, 0  # what failed, and how often
        self.start = time.monotonic()
        self.lock = threading.Lock()

    def elapsed(self):
        return time.monotonic() - self.start

    def left(self, share=1.0):
        """Whether less than this share of the trial's time is over, and going on still makes sense."""
        return self.elapsed() < self.seconds * share and len(self.failures) < 20

    def fail(self, text):
        with self.lock:
            self.failures[text] = self.failures.get(text, 0) + 1
        print(f"FAIL {self.name}: {text}", flush=True)

    @property
    def failed(self):
        return sum(self.failures.values())

    def check(self, truth, text):
        if not truth:
            self.fail(text)
        return bool(truth)

    def row(self, what, times, lost=None, note=""):
        """A line of the report: what was done, how often, how much was lost or failed against what is promised.

        Without a number: the checks that failed since the last line.
        """
        if lost is None:
            lost = self.failed - self.failed_before
        self.failed_before = self.failed
        self.rows.append({"what": what, "times": times, "lost": lost, "note": note})
        print(f"  {what}: {times}, lost or failed {lost}{'; ' + note if note else ''}", flush=True)

    def until(self, what, predicate, seconds=PATIENCE):
        """Waits until the predicate holds; the seconds that took, or None and a failure."""
        begin = time.monotonic()
        while not predicate():
            if time.monotonic() - begin > seconds:
                self.fail(f"did not happen in {seconds:.0f} s: {what}")
                return None
            time.sleep(0.01)
        return time.monotonic() - begin

    def finish(self):
        result = {"name": self.name, "seed": self.seed, "seconds": self.elapsed(), "rows": self.rows,
                  "failures": self.failures}
        with open(f"{self.out}/result.json", "w", encoding="utf-8") as file:
            json.dump(result, file, indent=1)
        sys.exit(1 if self.failures else 0)


def run(main):
    """Runs a trial's main(trial). Whatever stops it, what it found is kept."""
    trial = Trial()
    try:
        main(trial)
    except Exception as error:  # a trial that breaks has not passed
        import traceback
        traceback.print_exc()
        trial.fail(f"the trial itself broke: {error!r}")
    trial.finish()


class Phone:
    """The server and the applications of the phone, and the tools that use it."""

    def __init__(self, trial, environment=None):
        self.trial = trial
        self.environment = {**os.environ, **(environment or {})}
        self.running = {}

    def start(self, name, *arguments, program=None):
        """Starts a program in the background; its output is NAME.log."""
        with open(f"{self.trial.out}/{name}.log", "ab") as log:
            process = subprocess.Popen([program or name, *arguments], stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                       env=self.environment)
        self.running[name] = process
        return process

    def log(self, name):
        try:
            with open(f"{self.trial.out}/{name}.log", encoding="utf-8", errors="replace") as file:
                return file.read()
        except FileNotFoundError:
            return ""

    def start_server(self):
        """Starts the GUI server; the seconds until it is on the bus, or None."""
        process = self.start("tyx-guiserver", "--platform", "offscreen", "--size", "240x320")
        return self.trial.until("the server is on the bus", lambda: process.poll() is not None
                                or self.tyx("bus", "wait", "TYX/QtServer", "--timeout", "1").returncode == 0)

    def start_application(self, name):
        process = self.start(name)
        self.trial.until(f"{name} is on the bus", lambda: process.poll() is not None
                         or self.tyx("bus", "wait", f"TYX/Application/{process.pid}",
                                     "--timeout", "1").returncode == 0)
        self.trial.check(process.poll() is None, f"{name} ended while it started, with status {process.returncode}")
        return process

    @property
    def server(self):
        return self.running["tyx-guiserver"]

    def tyx(self, *words, killed=False):
        """Runs the tool. One that hangs, or is ended by a signal that nobody sent, is a failure of the trial."""
        command = ["tyx", *map(str, words)]
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                   env=self.environment)
        return self.result(process, command, killed)

    def result(self, process, command, killed=False):
        shown = " ".join(word[:60] for word in command)
        try:
            out, err = process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            out, err = process.communicate()
            self.trial.fail(f"hung for {PATIENCE:.0f} s: {shown}")
        if process.returncode not in STATUSES and not (killed and process.returncode == -signal.SIGKILL):
            self.trial.fail(f"status {process.returncode} of: {shown}: {err.decode(errors='replace')[:300]}")
        return subprocess.CompletedProcess(command, process.returncode, out.decode(errors="replace"),
                                           err.decode(errors="replace"))

    def must(self, *words):
        """As tyx(), and it is a failure unless it is done."""
        done = self.tyx(*words)
        shown = " ".join(str(word)[:60] for word in words)
        self.trial.check(done.returncode == 0, f"tyx {shown}: status {done.returncode}: {done.stderr.strip()[:300]}")
        return done

    def windows(self):
        listed = self.tyx("screen", "list", "--json")
        return json.loads(listed.stdout) if listed.returncode == 0 else []

    def has_ended(self, process, what):
        return self.trial.until(f"{what} ends", lambda: process.poll() is not None)

    def shut_down(self):
        """Ends the phone by a message; everybody ends in good order."""
        self.must("bus", "send", "--strict", "TYX/System", "shutdown()")
        for name, process in self.running.items():
            if process.poll() is None:
                self.has_ended(process, name)
            self.trial.check(process.returncode == 0, f"{name} ended with status {process.returncode} at shut-down")
        self.running.clear()


def objects():
    """The System V objects of the phone: how many segments, semaphore sets, message queues."""
    def count(kind):
        with open(f"/proc/sysvipc/{kind}", encoding="ascii") as file:
            return len(file.readlines()) - 1
    return {kind: count(kind) for kind in ("shm", "sem", "msg")}


def sealed(number, rng, longest=1500):
    """A value that tells whether it is whole, and which one it is."""
    body = "".join(rng.choices("abcdefghijklmnopqrstuvwxyz", k=rng.randint(1, longest)))
    return f"{number}-{zlib.crc32(body.encode()):08x}-{body}"


def number_of(value):
    """The number of a sealed value; None: it is not whole."""
    parts = (value or "").split("-")
    whole = len(parts) == 3 and parts[0].isdigit() and parts[1] == f"{zlib.crc32(parts[2].encode()):08x}"
    return int(parts[0]) if whole else None


def read_config(path):
    """{group: {key: value}} of a configuration file, {} when there is none, None when it is not whole."""
    try:
        with open(path, "rb") as file:
            content = file.read()
    except FileNotFoundError:
        return {}
    groups, group = {}, None
    if content and not content.endswith(b"\n"):
        return None
    for line in content.decode(errors="replace").splitlines():
        key, equals, value = line.partition(" = ")
        if line.startswith("[") and line.endswith("]"):
            group = groups.setdefault(line[1:-1], {})
        elif equals and group is not None:
            group[key] = value
        else:
            return None
    return groups


def memory_kib(process, field="Pss"):
    with open(f"/proc/{process}/smaps_rollup", encoding="ascii") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(field + ":"))


def milliseconds(seconds):
    """Median and 99th percentile, as the report shows them."""
    if not seconds:
        return "none"
    ordered = sorted(seconds)
    return (f"{statistics.median(ordered) * 1000:.2f} / "
            f"{ordered[min(len(ordered) - 1, int(len(ordered) * 0.99))] * 1000:.2f} ms")


def qcstring(text):
    data = text.encode() + b"\0"
    return struct.pack(">I", len(data)) + data


class Bus:
    """A connection to the message bus, as any program may open it."""

    def __init__(self, channels=(), hello=True):
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.settimeout(PATIENCE)
        self.socket.connect(os.environ["XDG_RUNTIME_DIR"] + "/tyx-bus")
        self.stream = self.socket.makefile("rb")
        if hello:
            self.put(b"H", b"TYXBUS\0\1")
        for channel in channels:
            self.put(b"R", channel.encode())

    def put(self, kind, payload=b""):
        self.socket.sendall(struct.pack(">I", len(payload) + 1) + kind + payload)

    def send(self, channel, name, data=b""):
        channel, name = channel.encode(), name.encode()
        self.put(b"M", bytes([len(channel)]) + channel + struct.pack(">I", len(name)) + name + data)

    def frame(self):
        """The next frame: its type and payload; (b"", b"") at the end of the connection."""
        head = self.stream.read(5)
        if len(head) < 5:
            return b"", b""
        length, kind = struct.unpack(">Ic", head)
        return kind, self.stream.read(length - 1)

    def next_message(self):
        """Skips everything else; the name of the next message, or None at the end of the connection."""
        while True:
            kind, payload = self.frame()
            if kind == b"M":
                rest = payload[1 + payload[0]:]
                return rest[4:4 + struct.unpack(">I", rest[:4])[0]].decode(errors="replace")
            if kind in (b"", b"X"):
                return None

    def close(self):
        self.stream.close()
        self.socket.close()
