"""Many processes at once on everything that processes of a phone share, and a clock that jumps."""
import glob
import os
import random
import re
import subprocess
import threading
import time

from phone import PATIENCE, Phone, memory_kib, number_of, objects, read_config, run, sealed

SKINS = os.path.dirname(os.environ["TYX_RES_SKIN_FILE"])
APPLICATIONS = 50


def at_once(count, work):
    """Runs work(number) in so many threads; all of them begin together."""
    barrier = threading.Barrier(count)

    def begin(number):
        barrier.wait()
        work(number)

    threads = [threading.Thread(target=begin, args=(number,)) for number in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def registry_lock(trial, phone, seconds):
    """A counter that is read, added to and written, only by who has the lock."""
    with open("/tmp/counter", "w", encoding="ascii") as file:
        file.write("0\n")
    counted, busy = [0] * 16, [0] * 16
    end = time.monotonic() + seconds

    def count(number):
        while time.monotonic() < end:
            done = phone.tyx("lock", "run", "sh", "-c", "read n </tmp/counter; echo $((n + 1)) >/tmp/counter")
            if done.returncode == 0:
                counted[number] += 1
            else:
                trial.check("busy" in done.stderr, f"the registry lock: {done.stderr.strip()}")
                busy[number] += 1

    at_once(16, count)
    with open("/tmp/counter", encoding="ascii") as file:
        lost = sum(counted) - int(file.read())
    trial.check(lost == 0, f"{lost} increments under the registry lock were lost")
    trial.check(objects()["sem"] == 0, f"the registry lock left a semaphore set: {objects()}")
    trial.row("counted under the registry lock, 16 processes at a time", sum(counted), lost,
              f"found it busy {sum(busy)} times; each had it {min(counted)} to {max(counted)} times")


def transactions(trial, seconds):
    """Eight processes count in one settings file."""
    path, rounds, total = "/setup/transactions.cfg", 50, 0
    end = time.monotonic() + seconds
    while time.monotonic() < end or total == 0:
        writers = [subprocess.Popen(["settingswriter", path, f"own{number}", str(rounds)], stdout=subprocess.PIPE)
                   for number in range(8)]
        for writer in writers:
            failed = int(writer.communicate(timeout=4 * PATIENCE)[0] or -1)
            trial.check(failed == 0 and writer.returncode == 0,
                        f"{failed} transactions failed, status {writer.returncode}")
        total += len(writers) * rounds
    lost = total - int((read_config(path) or {}).get("G", {}).get("all", 0))
    trial.check(lost == 0, f"{lost} increments in settings transactions were lost")
    trial.row("settings transactions of eight processes", total, lost)


def saves(trial, phone, seconds):
    """Eight programs save one file, each all of what it read: the last one wins, and the file is always whole."""
    path, saved, refused = "/setup/saves.cfg", [0] * 8, [0] * 8
    end, torn = time.monotonic() + seconds, 0

    def save(number):
        rng = random.Random(f"{number} {trial.seed}")
        while time.monotonic() < end:
            done = phone.tyx("config", "set", path, "G", f"k{number}", sealed(saved[number] + 1, rng))
            saved[number] += done.returncode == 0
            if done.returncode != 0:
                trial.check(done.stderr.strip(), "a save failed and did not say why")
                refused[number] += 1

    def look():
        nonlocal torn
        while time.monotonic() < end:
            content = read_config(path)
            whole = content is not None and all(number_of(value) for value in content.get("G", {}).values())
            torn += not trial.check(whole, f"{path} is not whole")
            time.sleep(0.001)

    at_once(9, lambda number: look() if number == 8 else save(number))
    trial.row("saves of one configuration file by eight writers", sum(saved), torn, f"{sum(refused)} refused, as busy")


def status_table(trial, phone, seconds):
    """Each field has one writer; neighbours stay, and a watcher sees the last value of each."""
    fields = ["country", "usb-connection", "total-duration", "blending-color", "network-id", "service-name",
              "cphs-operator-name", "timing-phone-lock"]
    texts = {"network-id", "service-name", "cphs-operator-name"}
    last, sets, wrong = {}, [0] * len(fields), [0] * len(fields)
    watcher = subprocess.Popen(["tyx", "status", "watch", "signal", *fields], stdout=subprocess.PIPE, text=True)
    seen = {}
    threading.Thread(target=lambda: [seen.update([line.split()]) for line in watcher.stdout], daemon=True).start()
    trial.until("the watcher of the status table is there", lambda: [
        phone.must("status", "set", "signal", bars) for bars in (1, 2)] and seen)
    end = time.monotonic() + seconds

    def write(number):
        field, rng = fields[number], random.Random(f"{number} {trial.seed}")
        while time.monotonic() < end:
            value = "".join(rng.choices("abcdefgh", k=rng.randint(1, 14))) if field in texts else str(rng.randrange(2))
            phone.must("status", "set", field, value)
            last[field] = value
            sets[number] += 1
            got = phone.must("status", "get", field).stdout.strip()
            wrong[number] += not trial.check(got == value, f"status {field}: set to {value!r}, is {got!r}")

    at_once(len(fields), write)
    trial.until("the watcher of the status table has seen the last value of each text", lambda: all(
        seen.get(field) == last[field] for field in texts), 10)
    watcher.terminate()
    watcher.wait()
    for field, value in last.items():
        got = phone.must("status", "get", field).stdout.strip()
        trial.check(got == value, f"status {field}: at the end {got!r} and not {value!r}")
    trial.row("sets of the status table by eight processes", sum(sets), sum(wrong))


def dump(phone, path):
    """What the shared image shows, as a PNG; None while another is being stored."""
    if phone.tyx("share", "dump", "SkinImage", path).returncode != 0:
        return None
    with open(path, "rb") as file:
        return file.read()


def switched_skin(trial, phone, seconds):
    """The skin is switched while others read the shared image; in the end it is the one that was set last."""
    pictures = {"light": dump(phone, "/tmp/skin.png")}
    phone.must("settings", "set", "theme-skin", f"{SKINS}/dark.skn")
    trial.until("the dark skin is shared", lambda: dump(phone, "/tmp/skin.png") not in (None, pictures["light"]))
    pictures["dark"] = dump(phone, "/tmp/skin.png")
    end, mixed, dumps, refused, switches = time.monotonic() + seconds, 0, [0] * 5, [0] * 5, 0

    def use(number):
        nonlocal mixed, switches
        while time.monotonic() < end:
            if number == 0:
                skin = "dark" if switches % 2 else "light"
                phone.must("settings", "set", "theme-skin", f"{SKINS}/{skin}.skn")
                switches += 1
                continue
            image = dump(phone, f"/tmp/skin{number}.png")
            dumps[number] += 1
            refused[number] += image is None
            mixed += image is not None and image not in pictures.values()

    at_once(5, use)
    for shown, is_set in (("light" if switches % 2 else "dark", True), ("dark", False), ("light", False)):
        if not is_set:
            phone.must("settings", "set", "theme-skin", f"{SKINS}/{shown}.skn")
        trial.until(f"the skin that was set last, {shown}, is shared",
                    lambda skin=shown: dump(phone, "/tmp/skin.png") == pictures[skin])
    trial.row("dumps of the shared image while the skin is switched", sum(dumps),
              note=f"{switches} switches; {sum(refused)} dumps refused, as another is being stored; "
              f"{mixed} mixed of two skins")


def made_image(trial, phone, seconds):
    """Eight applications find no shared image, and all make it. The server still has the one that was removed."""
    light, made, end = dump(phone, "/tmp/skin.png"), 0, time.monotonic() + seconds
    while time.monotonic() < end or made == 0:
        for segment in re.findall(r"^SkinImage .* segment (\d+)", phone.must("share", "list").stdout, re.M):
            subprocess.run(["ipcrm", "-m", segment], check=True)
        os.unlink("/tmp/UTIL_ShareImage_SkinImage")
        before = objects()["shm"]
        applications = []
        at_once(8, lambda number: applications.append(phone.start(f"hello{number}", program="hello")))
        for process in applications:
            trial.until("an application is there that makes the image", lambda p=process: p.poll() is not None
                        or phone.tyx("bus", "wait", f"TYX/Application/{p.pid}", "--timeout", "1").returncode == 0)
        trial.check(dump(phone, "/tmp/skin.png") == light, "eight made the shared image at once, and it is not it")
        trial.check(objects()["shm"] <= before + 1, f"eight made {objects()['shm'] - before} segments")
        made += 1
        for process in applications:
            phone.must("bus", "send", f"TYX/Application/{process.pid}", "shutdown()")
            phone.has_ended(process, "an application")
            trial.check(process.returncode == 0, f"an application ended with status {process.returncode}")
        for name in [name for name, process in phone.running.items() if process in applications]:
            del phone.running[name]
    trial.row("the shared image made by eight applications at once", made)


def many_applications(trial, phone, count):
    """So many applications are started at once, until each has its window on the screen."""
    server = memory_kib(phone.server.pid)
    begin = time.monotonic()
    processes = [phone.start(f"application{number}", program="hello" if number % 2 else "doodle")
                 for number in range(count)]
    pids = {process.pid for process in processes}
    trial.until(f"{count} applications show their windows",
                lambda: pids <= {window["pid"] for window in phone.windows()}, 4 * PATIENCE)
    took = time.monotonic() - begin
    ended = [process.returncode for process in processes if process.poll() is not None]
    trial.check(not ended, f"of {count} applications some ended: {ended}")
    memory = sum(memory_kib(process.pid) for process in processes if process.poll() is None)
    grown = memory_kib(phone.server.pid) - server
    phone.must("bus", "send", f"TYX/Application/{processes[0].pid}", "raise()")
    trial.until("one of them comes to the front", lambda: any(
        window["active"] and window["pid"] == processes[0].pid for window in phone.windows()))
    phone.shut_down()
    trial.row("applications started at once", count,
              note=f"all drawn after {took:.2f} s; {memory / count / 1024:.1f} MiB each (PSS), "
              f"the server {grown / count / 1024:.2f} MiB more for each")


def servers(trial, phone, seconds):
    """Of servers that start at once, on what killed ones left, one serves and the others say so and end."""
    rounds, end = 0, time.monotonic() + seconds
    while time.monotonic() < end or rounds < 2:
        rounds += 1
        processes = []
        at_once(3, lambda number: processes.append(phone.start(
            f"server{number}", "--platform", "offscreen", "--size", "240x320", program="tyx-guiserver")))
        trial.until("two of three servers end", lambda: sum(p.poll() is not None for p in processes) >= 2)
        alive = [process for process in processes if process.poll() is None]
        trial.check(all(process.returncode == 1 for process in processes if process.poll() is not None),
                    f"servers ended with {[process.poll() for process in processes]}")
        phone.must("bus", "wait", "TYX/QtServer", "--timeout", f"{PATIENCE:.0f}")
        phone.must("screen", "list")
        if not trial.check(len(alive) == 1, f"{len(alive)} of three servers run"):
            break
        if rounds % 2:
            alive[0].kill()
        else:
            alive[0].terminate()
        alive[0].wait()
        trial.check(alive[0].returncode in (0, -9), f"the server ended with status {alive[0].returncode}")
        phone.running.clear()
    trial.row("three servers started at once", rounds)


def jumping_clock(trial, seconds):
    """The wall clock of the whole phone jumps, as when the network tells the time; the monotonic one goes on."""
    library = glob.glob("/usr/lib/*/faketime/libfaketimeMT.so.1")
    if not trial.check(library, "libfaketime is missing"):
        return
    clock = "/tmp/clock"
    phone = Phone(trial, {"LD_PRELOAD": library[0], "FAKETIME_TIMESTAMP_FILE": clock, "FAKETIME_NO_CACHE": "1",
                          "FAKETIME_DONT_FAKE_MONOTONIC": "1", "NO_FAKE_STAT": "1"})

    def jump(to):
        with open(f"{clock}.new", "w", encoding="ascii") as file:
            file.write(to + "\n")
        os.rename(f"{clock}.new", clock)

    jump("+0")
    phone.start_server()
    phone.start_application("hello")
    phone.start_application("notes")
    jumps = ["+3600", "-3600", "+86400", "-86400", "@1970-01-02 00:00:00", "@2038-01-19 03:14:06",
             "@2000-02-29 23:59:59", "@2100-01-01 00:00:00", "+0"]
    done, end = 0, time.monotonic() + seconds
    while time.monotonic() < end or done < len(jumps):
        phone.tyx("queue", "drop", "absent")
        phone.must("bus", "send", "--queued", "TYX/Application/absent", "before")
        to = jumps[done % len(jumps)] if done < len(jumps) else trial.random.choice(jumps)
        jump(to)
        done += 1
        now = subprocess.run(["date", "+%s"], env=phone.environment, capture_output=True, check=True).stdout
        ahead = int(now) > time.time() + 60
        phone.must("bus", "send", "--queued", "TYX/Application/absent", "after")
        waiting = phone.must("queue", "show", "absent").stdout
        trial.check("after" in waiting and ("before" in waiting) != ahead,
                    f"after the jump to {to} these messages wait: {waiting!r}")
        for name in ("hello", "notes"):
            pid = phone.running[name].pid
            phone.must("bus", "send", f"TYX/Application/{pid}", "raise()")
            trial.until(f"{name} comes to the front after a jump to {to}", lambda p=pid: any(
                window["active"] and window["pid"] == p for window in phone.windows()))
        phone.must("settings", "set", "bluetooth-name", f"Jump {done}")
        name = phone.must("settings", "get", "bluetooth-name").stdout.strip()
        trial.check(name == f"Jump {done}", f"a setting is lost: {name}")
        phone.must("screen", "tap", 60, 302)
        phone.must("screen", "type", f"jump {done}")
        phone.must("screen", "tap", 40, 302)
        trial.until("a note is saved", lambda: f"Saved: jump {done}" in phone.log("notes"))
        used = processor_time(phone.server.pid)
        time.sleep(0.3)
        trial.check(processor_time(phone.server.pid) - used < 0.2, f"the server is busy for ever after a jump to {to}")
    phone.shut_down()
    trial.row("jumps of the clock", done, note="an hour, a day, to 1970, 2000, 2038, 2100 and back")


def processor_time(process):
    with open(f"/proc/{process}/stat", encoding="ascii", errors="replace") as file:
        fields = file.read().rpartition(")")[2].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def main(trial):
    phone, part = Phone(trial), trial.seconds / 10
    registry_lock(trial, phone, 2 * part)
    transactions(trial, part)
    saves(trial, phone, part)
    servers(trial, phone, part)
    phone.start_server()
    phone.start_application("doodle")
    status_table(trial, phone, part)
    switched_skin(trial, phone, part)
    made_image(trial, phone, part)
    phone.shut_down()
    phone.start_server()
    many_applications(trial, phone, APPLICATIONS if trial.seconds > 20 else 12)
    jumping_clock(trial, part)


run(main)
