"""Prints the medians of a benchmark file, each with its ratio to the bare configuration file's: compare.py FILE"""
import json
import sys

with open(sys.argv[1]) as file:
    medians = {run["run_name"]: run["cpu_time"] / 1000 for run in json.load(file)["benchmarks"]
               if run["aggregate_name"] == "median"}
for name, time in medians.items():
    print(f"{name:22}{time:9.2f} us{time / medians[name.split('_')[0] + '_ZConfig']:8.2f}x")
