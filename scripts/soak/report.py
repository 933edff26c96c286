"""Prints docs/soak.md from what the trials found: report.py LOGS MINUTES SEED"""
import datetime
import glob
import json
import os
import re
import sys

ABOUT = {
    "kill": "Programs are killed with SIGKILL at random moments while keys are typed and files are written.",
    "full": "/tmp (6 MiB) and the flash (512 KiB) fill up and become free while files are written.",
    "locked": "The flash is mounted read-only.",
    "flood": "Many processes flood the bus and the devices. Times are the median and the 99th percentile of the round "
             "trips of one program that behaves: of a message to itself (bus), and of a question to the server "
             "(server).",
    "contention": "Many processes at once on what they share, and a clock that jumps.",
}


def machine():
    with open("/proc/meminfo", encoding="ascii") as file:
        memory = int(re.search(r"MemTotal: *(\d+)", file.read())[1]) / 1024 / 1024
    load = os.getloadavg()[2]
    return (f"{os.cpu_count()} processors ({os.uname().machine}), {memory:.0f} GiB, Linux "
            f"{os.uname().release.split('-')[0]}; load over the last 15 minutes {load:.1f}")


def main(logs, minutes, seed):
    print("# Soak\n\nWhat phones went through, each in a sandbox, and what they lost. `scripts/soak.sh` ran the trials "
          "and wrote this\npage; each stands in a file of `scripts/soak/`, with its checks.\n")
    print(f"{datetime.date.today()}, {minutes} minutes, seed {seed}. {machine()}.")
    for name, about in ABOUT.items():
        for path in glob.glob(f"{logs}/{name}/result.json"):
            with open(path, encoding="utf-8") as file:
                result = json.load(file)
            print(f"\n## {name}\n\n{about} {result['seconds']:.0f} s.\n")
            print("| what was done | times | lost or failed | |\n|---|---|---|---|")
            for row in result["rows"]:
                print(f"| {row['what']} | {row['times']} | {row['lost']} | {row['note']} |")
            failures = result["failures"]
            print(f"\nChecks that failed: {sum(failures.values()) or 'none'}.")
            for text, times in list(failures.items())[:20]:
                print(f"- {times} times: {text}")


main(*sys.argv[1:])
