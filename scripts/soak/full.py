"""Fills /tmp and the flash, and frees them, while files are written.

Each file is the old one or the new one, each tool says what failed with exit status 3, and everything works as soon as
there is room again. /tmp and /setup are small file systems of their own here.
"""
import os
import re
import threading
import time

from phone import Phone, number_of, read_config, run, sealed



class Ballast:
    """A file that takes the room of a file system, up to the last byte or with some left."""

    def __init__(self, folder):
        self.path = f"{folder}/ballast"

    def free(self):
        if os.path.exists(self.path):
            os.unlink(self.path)

    def leave(self, room):
        with open(self.path, "ab", buffering=0) as file:
            try:
                while True:
                    file.write(b"\0" * 65536)
            except OSError:
                pass
            file.truncate(max(0, file.tell() - room))



class Target:
    """A file that a tool replaces: how, and which of its contents are whole."""

    def __init__(self, name, path, words, whole):
        self.name, self.path, self.words, self.whole = name, path, words, whole
        self.done = self.refused = self.failed = 0

    def content(self):
        try:
            with open(self.path, "rb") as file:
                return file.read()
        except FileNotFoundError:
            return None


class FullTrial:
    def __init__(self, trial):
        self.trial, self.phone, self.random = trial, Phone(trial), trial.random
        self.ballast = {"/tmp": Ballast("/tmp"), "/setup": Ballast("/setup")}
        self.number = self.lost = 0
        os.makedirs("/tmp/pack")
        for name in range(3):
            with open(f"/tmp/pack/{name}", "wb") as file:
                file.write(self.random.randbytes(50000))

        def value(group, key):
            return lambda path: number_of((read_config(path) or {}).get(group, {}).get(key)) is not None

        def verified(tool):
            return lambda path: self.phone.tyx(tool, "verify", path).returncode == 0

        def picture(path):
            with open(path, "rb") as file:
                content = file.read()
            return content.startswith(b"\x89PNG") and content.endswith(b"IEND\xaeB`\x82")

        self.targets = [
            Target("configuration", "/tmp/full.cfg", lambda v: ["config", "set", "/tmp/full.cfg", "G", "k", v],
                   value("G", "k")),
            Target("configuration on the flash", "/setup/full.cfg",
                   lambda v: ["config", "set", "/setup/full.cfg", "G", "k", v], value("G", "k")),
            Target("setting", "/setup/tyx_system.cfg", lambda v: ["settings", "set", "bluetooth-name", v],
                   value("SYS_IRDA_BT", "BluetoothName")),
            Target("setting with a copy", "/setup/tyx_theme.cfg", lambda v: ["settings", "set", "wallpaper", v],
                   value("THEME_CONFIG_TABLE", "ThemeWallpaperFile")),
            Target("pack", "/tmp/full.res", lambda v: ["pack", "create", "/tmp/full.res", "/tmp/pack"],
                   verified("pack")),
            Target("pack on the flash", "/setup/full.res", lambda v: ["pack", "create", "/setup/full.res", "/tmp/pack"],
                   verified("pack")),
            Target("skin", "/tmp/full.skn", lambda v: ["skin", "create", "/tmp/full.skn", "/tmp/pictures"],
                   verified("skin")),
            Target("picture of the screen", "/tmp/full.png", lambda v: ["screen", "shot", "/tmp/full.png"], picture),
            Target("picture of the skin", "/setup/full.png", lambda v: ["share", "dump", "SkinImage",
                                                                      "/setup/full.png"], picture),
        ]
        self.queue = Target("queued message", "/tmp/qcop-msg-absent", lambda v: [
            "bus", "send", "--queued", "TYX/Application/absent", "note(QString)", f"qstring:{v}"], None)
        self.notes_saved = self.notes_refused = 0

    def free(self):
        for ballast in self.ballast.values():
            ballast.free()

    def write(self, target, must_work=False):
        """Writes it once; what it was must not be half of anything afterwards."""
        self.number += 1
        before = target.content()
        done = self.phone.tyx(*target.words(sealed(self.number, self.random, 12000)))
        after = target.content()
        said = f"{target.name}: status {done.returncode}, {done.stderr.strip()[:200]!r}"
        if done.returncode == 0:
            target.done += 1
            whole = target.whole(target.path) if after is not None else False
        else:
            target.refused += 1
            self.trial.check(done.returncode == 3 and done.stderr.strip(), f"a full disk is not told: {said}")
            # Of a setting with a copy the file may have been saved, and its copy not.
            saved = target.name == "setting with a copy" and after is not None and target.whole(target.path)
            whole = after == before or saved
        if not self.trial.check(whole, f"neither the old file nor the new one: {said}"):
            target.failed += 1
        self.trial.check(not must_work or done.returncode == 0, f"there is room, but {said}")

    def send(self, must_work=False):
        """A message that waits: its file has it whole, or is as it was."""
        self.number += 1
        before = self.queue.content() or b""
        value = sealed(self.number, self.random, 6000)
        done = self.phone.tyx(*self.queue.words(value))
        after = self.queue.content() or b""
        said = f"queued message: status {done.returncode}, {done.stderr.strip()[:200]!r}"
        if done.returncode == 0:
            self.queue.done += 1
            record = after[len(before):]
            whole = after.startswith(before) and record.endswith(value.encode("utf-16-be"))
        else:
            self.queue.refused += 1
            self.trial.check(done.returncode == 3 and done.stderr.strip(), f"a full disk is not told: {said}")
            whole = after == before
        if not self.trial.check(whole, f"the file grew from {len(before)} to {len(after)} bytes: {said}"):
            self.queue.failed += 1
        self.trial.check(not must_work or done.returncode == 0, f"there is room, but {said}")
        if len(after) > 500_000:
            self.phone.tyx("queue", "drop", "absent")

    def note(self):
        """A note that cannot be saved is told, kept, and saved later."""
        self.phone.must("screen", "tap", 60, 302)
        self.number += 1
        title = f"note {self.number} end"
        self.phone.must("screen", "type", title)
        flash = self.ballast["/setup"]
        full = self.random.random() < 0.6
        if full:
            flash.leave(0)
        told = self.phone.log("notes")
        self.phone.must("screen", "tap", 40, 302)
        self.trial.until("notes tells whether it saved", lambda: title in self.phone.log("notes")[len(told):])
        if f"Not saved: {title}" in self.phone.log("notes"):
            self.notes_refused += 1
            self.trial.check(full, "a note was not saved though there is room")
            flash.free()
            self.trial.until("the notes ask", lambda: any(w["active"] and w["pid"] == self.phone.running["notes"].pid
                                                          for w in self.phone.windows()))
            self.phone.must("screen", "key", "Return")
            self.phone.must("screen", "tap", 40, 302)
        flash.free()
        self.trial.until(f"{title!r} is saved", lambda: f"\nSaved: {title}" in self.phone.log("notes"))
        self.notes_saved += 1
        saved = (read_config("/setup/notes.cfg") or {}).get("NOTES", {}).values()
        if not self.trial.check(title.replace(" ", "%20") in saved, f"{title!r} is not in the file of notes"):
            self.lost += 1

    def steady(self):
        """The disk has so much room before the write, and nobody else changes it."""
        for ballast in self.ballast.values():
            ballast.free()
            room = self.random.choice([None, 0, 4096, 8192, 16384, 40960])
            if room is not None:
                ballast.leave(room)
        for target in self.random.sample(self.targets, 4):
            self.write(target)
        self.send()
        self.free()

    def storm(self, seconds):
        """The disks fill up and become free while something is written."""
        stop = threading.Event()

        def weather():
            while not stop.is_set():
                for ballast in self.ballast.values():
                    ballast.leave(self.random.choice([0, 4096, 20480]))
                stop.wait(self.random.uniform(0, 0.01))
                self.free()
                stop.wait(self.random.uniform(0, 0.01))

        thread = threading.Thread(target=weather)
        thread.start()
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.write(self.random.choice(self.targets))
            self.send()
        stop.set()
        thread.join()
        self.free()

    def start_on_full_disk(self):
        """A phone that starts with full disks: it runs, or says why not; afterwards it is as any other."""
        self.phone.shut_down()
        for ballast in self.ballast.values():
            ballast.leave(0)
        self.phone.start_server()
        ran = self.phone.server.poll() is None
        if ran:
            self.phone.start_application("hello")
            self.phone.must("screen", "list")
        else:
            self.trial.check(self.phone.server.returncode == 1, f"status {self.phone.server.returncode} on a full disk")
        self.free()
        if not ran:
            self.phone.start_server()
            self.phone.start_application("hello")
        self.phone.start_application("notes")
        return ran

    def everything_works(self):
        self.free()
        for target in self.targets:
            self.write(target, must_work=True)
        self.send(must_work=True)
        leftovers = [name for folder in ("/tmp", "/setup") for name in os.listdir(folder)
                     if re.search(r"\.new$|\.[A-Za-z0-9]{6}$", name)]
        self.trial.check(not leftovers, f"half-written files were left behind: {leftovers}")

    def run(self):
        trial = self.trial
        self.phone.start_server()
        self.phone.must("skin", "extract", os.environ["TYX_RES_SKIN_FILE"], "/tmp/pictures")
        self.phone.start_application("hello")
        self.phone.start_application("notes")
        self.everything_works()
        rounds = starts = failed_starts = 0
        while trial.left() or rounds < 1:
            rounds += 1
            for _ in range(4):
                self.steady()
            self.note()
            self.storm(2)
            if rounds % 5 == 1:
                failures = trial.failed
                self.start_on_full_disk()
                starts += 1
                failed_starts += trial.failed > failures
        self.everything_works()
        self.phone.shut_down()
        for target in (*self.targets, self.queue):
            trial.row(f"written on disks that fill up: {target.name}", target.done + target.refused, target.failed,
                      f"{target.refused} refused with status 3")
        trial.row("notes", self.notes_saved, self.lost, f"{self.notes_refused} times only after there was room again")
        trial.row("starts of the phone with full disks", starts, failed_starts)


run(lambda trial: FullTrial(trial).run())
