#!/usr/bin/env bash
# Runs the benchmarks beside their peers and writes docs/benchmarks.md: bench.sh [NAME...]   (all of bench/run-NAME; a
# quarter of an hour, on a machine that does nothing else)
# With names, those are measured again; the figures of the others stay as they were measured last.
. "$(dirname "$0")/common.sh"
case ${1:-} in -h | --help) sed -n '2,4s/^# //p' "$0"; exit 0 ;; esac
names=("$@")
if [ ${#names[@]} -eq 0 ]; then
  for run in "$project"/bench/run-*; do names+=("${run##*/run-}"); done
fi
for name in "${names[@]}"; do
  [ -x "$project/bench/run-$name" ] || { echo "bench.sh: there is no bench/run-$name" >&2; exit 2; }
done
ensure_packages python3 python3-matplotlib
results=$project/build/bench/results
mkdir -p "$results"
for name in "${names[@]}"; do
  say "$name"
  # Kept only when it came to its end.
  "$project/bench/run-$name" | tee "$results/$name.part"
  mv "$results/$name.part" "$results/$name.txt"
done
/usr/bin/python3 "$project/bench/report/report.py" "$results" "$project/docs"
echo "docs/benchmarks.md and docs/pictures/benchmarks.svg: look at them, then commit"
