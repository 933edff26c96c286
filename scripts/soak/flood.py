"""Floods the bus and the devices from many processes, and measures what a well-behaved program feels of it.

Nothing may die, nobody who behaves may be sent away, and the server's memory must come back.
"""
import json
import multiprocessing
import os
import random
import socket
import struct
import threading
import time

from phone import Bus, Phone, memory_kib, milliseconds, qcstring, run

LARGEST = 1024 * 1024 - 4  # bytes of a message frame after its length
CLIENTS = 256
# Of the server's memory: what its allocator keeps of a flood, no matter how often that comes.
GROWTH_KIB = 24 * 1024
LOG_KIB = 256


class Probe(threading.Thread):
    """A program that behaves: sends to itself over the bus, and asks the server for the windows."""

    def __init__(self, number):
        super().__init__(daemon=True)
        self.channel = f"TYX/Soak/{number}"
        self.bus = Bus([self.channel])
        self.bus_times, self.screen_times = [], []
        self.lost, self.stopped = None, threading.Event()

    def ask(self, times, channel, name, data, answer):
        begin = time.monotonic()
        self.bus.send(channel, name, data)
        while (got := self.bus.next_message()) != answer:
            if got is None:
                raise ConnectionError("sent away")
        times.append(time.monotonic() - begin)

    def run(self):
        try:
            while not self.stopped.is_set():
                for _ in range(5):
                    self.ask(self.bus_times, self.channel, "ping", b"", "ping")
                    self.stopped.wait(0.005)
                self.ask(self.screen_times, "TYX/Screen", "windows(QCString)", qcstring(self.channel),
                         "windows(QByteArray)")
        except (OSError, ConnectionError) as error:
            self.lost = repr(error)

    def end(self):
        self.stopped.set()
        self.join()
        self.bus.close()


def again(stopped, count, rng, once):
    """Runs once(rng) until the flood stops; a connection that the server ends is opened anew."""
    while not stopped.is_set():
        try:
            once(rng, stopped, count)
        except (OSError, struct.error):
            stopped.wait(0.01)


def messages_to(channels, names):
    """Known and unknown messages with random bytes as arguments."""
    def once(rng, stopped, count):
        bus = Bus()
        while not stopped.is_set():
            name = rng.choice(names) if rng.random() < 0.8 else f"unknown{rng.random()}"
            bus.send(rng.choice(channels), name, rng.randbytes(rng.choice([0, 1, 4, 12, 40, 300, 5000])))
            with count.get_lock():
                count.value += 1
    return once


def large_frames(rng, stopped, count):
    """The largest frame, and one byte more."""
    bus = Bus()
    channel = f"TYX/Application/{rng.choice(['notes', 'nobody'])}"
    largest = LARGEST - 1 - 1 - len(channel) - 4 - len("large")
    for _ in range(20):
        bus.send(channel, "large", bytes(largest))
        with count.get_lock():
            count.value += 1
        if stopped.is_set():
            return
    bus.send(channel, "large", bytes(largest + 1))
    assert bus.frame()[0] in (b"W", b"X", b"")
    bus.close()


def garbage(rng, _stopped, count):
    """Bytes that are no frames, frames that are cut off, unknown types, lengths that lie."""
    with socket.socket(socket.AF_UNIX) as bus:
        bus.connect(os.environ["XDG_RUNTIME_DIR"] + "/tyx-bus")
        if rng.random() < 0.7:
            bus.sendall(struct.pack(">I", 9) + b"HTYXBUS\0\1")
        kind = rng.choice([b"M", b"R", b"Q", b"L", b"U", rng.randbytes(1)])
        length = rng.choice([0, 1, 3, 20, 0xFFFFFFFF, 0x7FFFFFFF, rng.randrange(2000)])
        bus.sendall(struct.pack(">I", length) + kind + rng.randbytes(rng.randrange(200)))
        with count.get_lock():
            count.value += 1


def silent(_rng, stopped, count):
    """Connections that never say hello, more of them than the server takes."""
    held = []
    for _ in range(CLIENTS + 64):
        if stopped.is_set():
            break
        held.append(Bus(hello=False))
        with count.get_lock():
            count.value += 1
    stopped.wait(6)
    for bus in held:
        bus.close()


def never_read(rng, stopped, count):
    """A client with a channel that does not read, and fills it until it is sent away."""
    bus = Bus([f"TYX/Soak/deaf{rng.random()}", "TYX/Soak/deaf"])
    sender = Bus()
    while not stopped.is_set():
        sender.send("TYX/Soak/deaf", "x", bytes(20000))
        with count.get_lock():
            count.value += 1
    bus.close()


def records(rng, stopped, count):
    """Random records into the keypad, the flip and headset, the touch panel."""
    devices = {path: os.open(path, os.O_WRONLY | os.O_NONBLOCK) for path in ("/dev/keypad0", "/dev/button",
                                                                            "/dev/tyx_ts")}
    try:
        while not stopped.is_set():
            for path, device in devices.items():
                try:
                    size = rng.choice([2, 4, 8, 16, 64, 1, 3]) if path == "/dev/tyx_ts" else rng.choice([2, 2, 4, 1])
                    os.write(device, rng.randbytes(size))
                    with count.get_lock():
                        count.value += 1
                except BlockingIOError:
                    stopped.wait(0.01)
    finally:
        for device in devices.values():
            os.close(device)


class FloodTrial:
    def __init__(self, trial):
        self.trial, self.phone = trial, Phone(trial)
        self.phone.start_server()
        for name in ("hello", "notes"):
            self.phone.start_application(name)
        pid = f"TYX/Application/{self.phone.running['notes'].pid}"
        described = json.loads(self.phone.must("bus", "describe", "--json").stdout)

        def names(channel):
            return [row["message"] for row in described if row["channel"] == channel]

        # Those that end or close an application are obeyed: that is no flood.
        harmless = [name for name in names("TYX/Application/PID") if name not in ("shutdown()", "quickQuit()")]
        harmless += [name for name in names("TYX/Application/NAME") if not name.startswith("manipulate")]
        self.floods = [
            ("messages to an application", messages_to(["TYX/Application/notes", pid], harmless), 3),
            ("messages to TYX/QtServer", messages_to(["TYX/QtServer"], [
                name for name in names("TYX/QtServer") if not name.startswith("manipulate")]), 3),
            ("messages to TYX/IMServer", messages_to(["TYX/IMServer"], names("TYX/IMServer")), 3),
            ("frames of 1 MiB", large_frames, 2),
            ("bytes that are no frames", garbage, 3),
            ("connections without hello", silent, 1),
            ("clients that do not read", never_read, 3),
            ("records of the devices", records, 1),
        ]
        self.probes = 0

    def measure(self, during):
        """Runs during() beside a well-behaved program; the times of its round trips."""
        self.probes += 1
        probe = Probe(self.probes)
        probe.start()
        during()
        probe.end()
        self.trial.check(probe.lost is None, f"a program that behaves was sent away: {probe.lost}")
        return probe

    def alive(self, what):
        for name, process in list(self.phone.running.items()):
            if process.poll() is None:
                continue
            # Keys and pen may choose "Exit".
            self.trial.check(name != "tyx-guiserver" and process.returncode == 0 and "records" in what,
                             f"{name} ended with status {process.returncode} during {what}")
            self.phone.start_application(name)
        self.trial.until(f"the server answers after {what}", lambda: self.phone.tyx("screen", "list").returncode == 0)
        for name in ("hello", "notes"):
            self.trial.until(f"{name} comes to the front after {what}", lambda n=name: self.is_raised(n))
        self.trial.until(f"the input methods answer after {what}",
                         lambda: "Keyboard" in self.phone.tyx("im", "list").stdout)

    def is_raised(self, name):
        """Asks for it. Who was flooded with orders to come to the front may still be obeying them."""
        process = self.phone.running[name]
        self.phone.must("bus", "send", f"TYX/Application/{process.pid}", "raise()")
        return any(window["active"] and window["pid"] == process.pid for window in self.phone.windows())

    def flood(self, what, once, senders, seconds):
        """One kind of flood; the times of round trips before, during and after, and what was sent."""
        failures = self.trial.failed
        before = self.measure(lambda: time.sleep(seconds / 5))
        stopped, count = multiprocessing.Event(), multiprocessing.Value("q")
        workers = [multiprocessing.Process(target=again, daemon=True, args=(
            stopped, count, random.Random(f"{what} {sender} {self.trial.seed}"), once)) for sender in range(senders)]
        refused = 0

        def during():
            nonlocal refused
            for worker in workers:
                worker.start()
            end = time.monotonic() + seconds
            while time.monotonic() < end:
                refused += self.phone.tyx("bus", "list").returncode != 0
                time.sleep(0.1)

        middle = self.measure(during)
        stopped.set()
        for worker in workers:
            worker.join(20)
            if worker.is_alive():
                worker.terminate()
        self.alive(what)
        after = self.measure(lambda: time.sleep(seconds / 5))
        return before, middle, after, count.value, refused, self.trial.failed - failures

    def run(self):
        trial = self.trial
        self.alive("the start")
        server = self.phone.server.pid
        first = memory_kib(server)
        memory = []
        totals = {}
        turns = 2 if trial.seconds >= 60 else 1
        seconds = max(0.4, trial.seconds / turns / len(self.floods) / 1.9)
        for _ in range(turns):
            for what, once, senders in self.floods:
                result = self.flood(what, once, senders, max(seconds, 6.5) if once is silent and turns > 1 else seconds)
                totals.setdefault(what, []).append(result)
            memory.append(memory_kib(server))
        for what, results in totals.items():
            note = []
            for which, name in enumerate(("before", "during", "after")):
                note.append(f"{name} {milliseconds([t for r in results for t in r[which].bus_times])} (bus), "
                            f"{milliseconds([t for r in results for t in r[which].screen_times])} (server)")
            refused = sum(r[4] for r in results)
            note.append(f"{refused} newcomers turned away" if refused else "no newcomer turned away")
            trial.row(f"flood: {what}", sum(r[3] for r in results), sum(r[5] for r in results), "; ".join(note))
        held = trial.check(memory[-1] < first + GROWTH_KIB, f"the server's memory grew from {first} to {memory} KiB")
        trial.row("memory of the server", turns, 0 if held else 1, "; ".join(
            [f"before {first} KiB", *(f"after flood {i + 1}: {m} KiB" for i, m in enumerate(memory))]))
        size = os.path.getsize(f"{trial.out}/tyx-guiserver.log") // 1024
        short = trial.check(size < LOG_KIB, f"the server's log has {size} KiB")
        trial.row("KiB in the log of the server", size, 0 if short else 1)
        self.phone.shut_down()


run(lambda trial: FloodTrial(trial).run())
