"""Prints the medians of bench_res side by side, with their ratio to ours: compare.py FILE"""
import json
import sys
from collections import defaultdict

times = defaultdict(dict)  # (work, kind, entries) -> {who: microseconds}
with open(sys.argv[1]) as file:
    for run in json.load(file)["benchmarks"]:
        if run["aggregate_name"] == "median":
            name, kind, entries = run["run_name"].split("/")[:3]
            work, who = name.split("_")
            scale = {"ns": 1000, "ms": 0.001}[run["time_unit"]]
            times[work, int(kind), int(entries)][who] = run["real_time" if work == "write" else "cpu_time"] / scale

everyone = ["Tyx", "floor", "scan", "GResource", "QResource"]
print("work, names, entries".ljust(30) + "".join(f"{who:>22}" for who in everyone))
for (work, kind, entries), found in sorted(times.items()):
    title = f"{work} {('words', 'numbers')[kind]} {entries}"
    cells = (f"{found[who]:.2f} us ({found[who] / found['Tyx']:.2f}x)" if who in found else "-" for who in everyone)
    print(title.ljust(30) + "".join(f"{cell:>22}" for cell in cells))
