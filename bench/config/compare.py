"""Prints the medians of benchmark files side by side, with their ratio to ZConfig's: compare.py FILE..."""
import json
import sys
from collections import defaultdict

times = defaultdict(dict)  # "work/entries" -> {who: microseconds}
for path in sys.argv[1:]:
    with open(path) as file:
        for run in json.load(file)["benchmarks"]:
            if run["aggregate_name"] != "median":
                continue
            work, who = run["run_name"].split("/")[0].split("_")
            # A save waits for the disk; the others are measured by what they compute, whatever else the machine does.
            clock = "real_time" if work == "save" else "cpu_time"
            times[f"{work}/{run['run_name'].split('/')[1]}"][who] = run[clock] / 1000

everyone = ["ZConfig", "floor", "GKeyFile", "QSettings", "KConfig"]
print("work/entries".ljust(18) + "".join(f"{who:>24}" for who in everyone))
for work, found in sorted(times.items(), key=lambda item: (item[0].split("/")[0], int(item[0].split("/")[1]))):
    cells = (f"{found[who]:12.1f} us ({found[who] / found['ZConfig']:4.2f}x)" if who in found else "-" for who in everyone)
    print(work.ljust(18) + "".join(f"{cell:>24}" for cell in cells))
