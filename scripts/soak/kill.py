"""Kills the programs of a phone at random moments, while keys are typed and files are saved.

Whatever was acknowledged must be there afterwards, every file whole, and the phone usable without a hand on it.
"""
import random
import re
import signal
import subprocess
import threading
import time
from urllib.parse import unquote

from phone import Phone, memory_kib, number_of, objects, read_config, run, sealed

APPLICATIONS = ("notes", "hello", "doodle")


class Writer(threading.Thread):
    """Does one thing again and again, as processes that may be killed too. Only one writes each of its values."""

    def __init__(self, trial, phone, name, words):
        super().__init__(daemon=True, name=name)
        self.trial, self.phone, self.words = trial, phone, words
        self.random = random.Random(f"{name} {trial.seed}")
        self.tried = self.done = self.killed = self.refused = 0
        self.acknowledged = []
        self.process, self.stopped = None, threading.Event()

    def run(self):
        while not self.stopped.is_set():
            number = self.tried + 1
            self.tried = number
            command = ["tyx", *self.words(number, self.random)]
            self.process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                            stderr=subprocess.PIPE)
            status = self.phone.result(self.process, command, killed=True).returncode
            if status == 0:
                self.done = number
                self.acknowledged.append(number)
            elif status == -signal.SIGKILL:
                self.killed += 1
            else:
                self.refused += 1
            self.stopped.wait(self.random.uniform(0, 0.1))

    def kill(self):
        """Whether there was a process to kill."""
        process = self.process
        if not process or process.poll() is not None:
            return False
        process.kill()
        return True


class KillTrial:
    def __init__(self, trial):
        self.trial, self.phone = trial, Phone(trial)
        self.random = trial.random
        self.recoveries, self.kills, self.failed, self.lost, self.stuck_locks = {}, {}, {}, 0, 0
        self.files = {  # value that is written: the file, its group and key, the command
            "setting": ("/setup/tyx_system.cfg", "SYS_IRDA_BT", "BluetoothName",
                        lambda n, r: ["settings", "set", "bluetooth-name", sealed(n, r)]),
            "setting with a copy": ("/setup/tyx_theme.cfg", "THEME_CONFIG_TABLE", "ThemeWallpaperFile",
                                    lambda n, r: ["settings", "set", "wallpaper", sealed(n, r)]),
            "configuration": ("/tmp/soak.cfg", "G", "k",
                              lambda n, r: ["config", "set", "/tmp/soak.cfg", "G", "k", sealed(n, r)]),
        }
        self.writers = {name: Writer(trial, self.phone, name, row[3]) for name, row in self.files.items()}
        self.writers["queued message"] = Writer(trial, self.phone, "queued message", lambda n, r: [
            "bus", "send", "--queued", "TYX/Application/absent", "count(int)", f"int:{n}"])
        self.writers["keys"] = Writer(trial, self.phone, "keys", self.typed)
        self.writers["registry lock"] = Writer(trial, self.phone, "registry lock", lambda n, r: [
            "lock", "run", "sleep", f"{r.uniform(0, 0.05):.3f}"])

    @staticmethod
    def typed(_number, rng):
        """Digits into the note that is open; the button at the left, which begins and ends one."""
        if rng.random() < 0.4:
            return ["touch", "tap", "40", "302"]
        if rng.random() < 0.1:
            return ["im", rng.choice(["show", "hide", "hide"])]
        if rng.random() < 0.1:
            return ["keys", "flip", rng.choice(["open", "close"])]
        return ["keys", "type", "".join(rng.choices("0123456789*#", k=rng.randint(1, 8)))]

    def start_phone(self):
        """The seconds until all of it is there."""
        begin = time.monotonic()
        self.phone.start_server()
        self.trial.check(self.phone.server.poll() is None,
                         f"the server ended at its start with status {self.phone.server.returncode}")
        for name in APPLICATIONS:
            self.phone.start_application(name)
        self.trial.until("the process of the input methods is there", self.host)
        return time.monotonic() - begin

    def host(self):
        found = re.search(r"^ *(\d+)  TYX/IMHost$", self.phone.tyx("bus", "list").stdout, re.M)
        return int(found[1]) if found else None

    def answers(self):
        """Those that live do what they are told."""
        self.phone.must("screen", "list")
        before = self.phone.log("hello").count("Message: soak")
        self.phone.must("bus", "send", "TYX/Application/hello", "soak")
        self.trial.until("hello tells of a message", lambda: self.phone.log("hello").count("Message: soak") > before)
        before = self.phone.log("notes").count("Notes: ")
        self.phone.must("bus", "send", f"TYX/Application/{self.phone.running['notes'].pid}", "openDoc(QString)",
                        "qstring:")
        self.trial.until("notes looks for a word", lambda: self.phone.log("notes").count("Notes: ") > before)

    def check_values(self):
        for name, (path, group, key, _) in self.files.items():
            writer = self.writers[name]
            for file in (path, "/tmp/tyx_theme.cfg") if name == "setting with a copy" else (path,):
                least = writer.done
                content = read_config(file)
                if not self.trial.check(content is not None, f"{file} is not whole"):
                    self.lost += 1
                    continue
                value = content.get(group, {}).get(key)
                if value is None and least == 0:
                    continue
                number = number_of(value)
                if not self.trial.check(number is not None and least <= number <= writer.tried,
                                        f"{file}: {name} number {number}, but {least} was acknowledged"):
                    self.lost += 1
                    writer.done = 0  # told once
        for file in ("/tmp/tyx_system.cfg", "/setup/notes.cfg"):
            self.trial.check(read_config(file) is not None, f"{file} is not whole")

    def check_notes(self):
        """Every note that was told to be saved."""
        told = re.findall(r"^Saved: (.*)$", self.phone.log("notes"), re.M)
        notes = (read_config("/setup/notes.cfg") or {}).get("NOTES", {}).values()
        titles = [unquote(note).split("\n")[0][:40].strip() for note in notes]
        for title in told:
            if title.strip() in titles:
                titles.remove(title.strip())
            elif not self.trial.check(False, f"the note {title!r} was saved and is not there"):
                self.lost += 1
        return len(told)

    def check_messages(self):
        """Every queued message that was taken waits, once and in order."""
        writer = self.writers["queued message"]
        shown = self.phone.must("queue", "show", "absent").stdout
        waiting = [int(number.replace(" ", ""), 16) for number in re.findall(r"count\(int\) +4 +(.*)$", shown, re.M)]
        self.trial.check(waiting == sorted(set(waiting)), "messages that wait are out of order or there twice")
        missing = set(writer.acknowledged) - set(waiting)
        if not self.trial.check(not missing, f"messages were taken and do not wait: {sorted(missing)[:10]}"):
            self.lost += len(missing)
        return len(waiting)

    def kill_application(self):
        name = self.random.choice(APPLICATIONS)
        process = self.phone.running[name]
        process.kill()
        process.wait()
        begin = time.monotonic()
        self.trial.until(f"the window of the killed {name} is gone",
                         lambda: all(window["pid"] != process.pid for window in self.phone.windows()))
        self.phone.start_application(name)
        return "application", time.monotonic() - begin

    def kill_host(self):
        before = self.host()
        if before is None:
            return None
        subprocess.run(["kill", "-KILL", str(before)], check=True)
        took = self.trial.until("another process of the input methods runs", lambda: self.host() not in (None, before))
        return "input method host", took

    def kill_server(self):
        self.phone.server.kill()
        self.phone.server.wait()
        for name in APPLICATIONS:
            process = self.phone.running[name]
            if self.phone.has_ended(process, f"{name}, whose server was killed,") is not None:
                self.trial.check(process.returncode >= 0,
                                 f"{name} died of signal {-process.returncode} with its server")
            else:
                process.kill()
        if self.random.random() < 0.5:  # the next one dies while it starts
            process = self.phone.start("tyx-guiserver", "--platform", "offscreen", "--size", "240x320")
            time.sleep(self.random.uniform(0, 0.15))
            process.kill()
            process.wait()
            self.kills["server that starts"] = self.kills.get("server that starts", 0) + 1
        took = self.start_phone()
        self.phone.must("status", "set", "signal", "3")
        self.trial.check(self.phone.must("status", "get", "signal").stdout.strip() == "3", "the status table is dead")
        self.phone.must("share", "dump", "SkinImage", "/tmp/skin.png")
        return "server", took

    def kill_all(self):
        """As a battery that is taken out, but that /tmp and the System V objects stay."""
        for name in self.random.sample(list(self.writers), 3):
            self.writers[name].kill()
        for process in self.random.sample(list(self.phone.running.values()), len(self.phone.running)):
            process.kill()
        for process in self.phone.running.values():
            process.wait()
        return "all programs at once", self.start_phone()

    def kill_tool(self):
        name = self.random.choice(list(self.writers))
        return (f"tool, {name}", 0.0) if self.writers[name].kill() else None

    def kill_locker(self):
        """Who holds the registry lock is killed: the next one has it, at the latest when its child has ended too."""
        holder = subprocess.Popen(["tyx", "lock", "hold"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL)
        if self.random.random() < 0.5:
            holder.stdout.readline()
        else:
            time.sleep(self.random.uniform(0, 0.03))
        holder.kill()
        holder.communicate()
        begin = time.monotonic()

        def taken():
            done = self.phone.tyx("lock", "run", "true")
            if "tyx doctor" in done.stderr and "died" in done.stderr and time.monotonic() - begin > 5:
                self.stuck_locks += 1
                subprocess.run("ipcrm --all=sem", shell=True, check=True)
            return done.returncode == 0

        took = self.trial.until("the registry lock is free again", taken)
        return "holder of the registry lock", took

    def run(self):
        trial = self.trial
        self.start_phone()
        self.answers()
        kinds = [(self.kill_application, 6), (self.kill_tool, 8), (self.kill_server, 3), (self.kill_host, 3),
                 (self.kill_locker, 3), (self.kill_all, 2)]
        for writer in self.writers.values():
            writer.start()
        time.sleep(1)
        baseline, memory = objects(), memory_kib(self.phone.server.pid)
        # Each once, then as it comes.
        first = [kill for kill, _ in kinds]
        while trial.left() or first:
            kill = first.pop(0) if first else self.random.choices(*zip(*kinds))[0]
            time.sleep(self.random.uniform(0, 0.5))
            failures = trial.failed
            killed = kill()
            if kill != self.kill_tool:
                self.answers()
            self.check_values()
            if killed:
                what, took = killed
                self.kills[what] = self.kills.get(what, 0) + 1
                self.recoveries.setdefault(what, []).append(took or 0)
                self.failed[what] = self.failed.get(what, 0) + (trial.failed > failures)
        for writer in self.writers.values():
            writer.stopped.set()
        for writer in self.writers.values():
            writer.join()
        self.report(baseline, memory)

    def report(self, baseline, memory):
        trial = self.trial
        self.answers()
        self.check_values()
        saved = self.check_notes()
        waiting = self.check_messages()
        self.phone.must("lock", "run", "true")
        after = objects()
        kept = after["sem"] == 0 and after["shm"] <= baseline["shm"] and after["msg"] <= baseline["msg"]
        trial.check(kept, f"System V objects leaked: {baseline} became {after}")
        last = memory_kib(self.phone.server.pid)
        self.phone.shut_down()
        for what, times in sorted(self.kills.items()):
            took = max(self.recoveries.get(what, [0]))
            note = f"longest {took:.2f} s until all was there again" if took else ""
            trial.row(f"SIGKILL: {what}", times, self.failed.get(what, 0), note)
        written = sum(writer.done for writer in self.writers.values())
        trial.row("values, notes, messages that were acknowledged", written, self.lost,
                  f"{saved} notes saved, {waiting} messages wait, keys and taps came {self.writers['keys'].done} times")
        trial.row("System V objects at the end", sum(after.values()), 0 if kept else 1,
                  f"{sum(baseline.values())} before; the first server had {memory} KiB, the last {last} KiB; "
                  f"{self.stuck_locks} locks that their maker died over were removed by hand")


run(lambda trial: KillTrial(trial).run())
