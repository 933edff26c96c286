"""A flash that is mounted read-only: the phone starts and is used, what cannot be saved is told, nothing hangs."""
from phone import Phone, run


def main(trial):
    phone = Phone(trial)
    phone.start_server()
    phone.start_application("notes")
    refused = rounds = 0
    while trial.left(0.1) or rounds < 1:
        rounds += 1
        for words in (["settings", "set", "bluetooth-name", f"Name {rounds}"],
                      ["settings", "set", "language", "de-de"],
                      ["settings", "set", "wallpaper", f"/tmp/{rounds}.png"],
                      ["config", "set", "/setup/soak.cfg", "G", "k", f"{rounds}"],
                      ["pack", "create", "/setup/soak.res", "/usr/share/common-licenses"],
                      ["screen", "shot", "/setup/soak.png"]):
            done = phone.tyx(*words)
            trial.check(done.returncode == 3 and done.stderr.strip(),
                        f"tyx {' '.join(words)}: status {done.returncode}, {done.stderr.strip()!r}")
            refused += 1
        default = phone.must("settings", "get", "bluetooth-name").stdout.strip()
        trial.check(default == "Q300 BT", f"the setting that could not be saved is {default!r}")
    phone.must("config", "set", "/tmp/soak.cfg", "G", "k", "1")
    # A note that cannot be saved stays on the screen, and its application declines to end before the server does.
    phone.must("screen", "tap", 60, 302)
    phone.must("screen", "type", "kept")
    phone.must("screen", "tap", 40, 302)
    trial.until("the notes tell that it is not saved", lambda: "Not saved: kept" in phone.log("notes"))
    phone.must("bus", "send", "--strict", "TYX/System", "shutdown()")
    for name, process in phone.running.items():
        phone.has_ended(process, name)
        trial.check(process.returncode in ((0, 1) if name == "notes" else (0,)),
                    f"{name} ended with status {process.returncode}")
    trial.row("saves on a flash that is read-only", refused + 1,
              note="each told with status 3; the phone starts and ends")


run(main)
