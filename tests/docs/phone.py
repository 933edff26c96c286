"""Runs inside the sandbox: a phone, and the shell blocks of one page on it. Reads its orders as JSON from standard
input and prints what went wrong, one fault after the other, as JSON."""
import json
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

LONGEST = 60  # seconds that anything may take before it counts as hanging

# What goes on until somebody stops it is started, seen to wait for what it is to show, and stopped at the end.
PREAMBLE = r"""
waiting=()
tyx() {
  case "$*" in
    "bus send --"* | *--count*) command tyx "$@"; return ;;
    "bus send"*) # nobody is told when nobody hears it
      command tyx bus list | awk -v channel="$3" '$2 == channel { found = 1 } END { exit !found }' ||
        { echo "nobody has the channel '$3'" >&2; return 1; }
      command tyx "$@"; return ;;
    "bus monitor"* | "settings watch"* | "status watch"* | "im watch"* | "lock hold"*) ;;
    *) command tyx "$@"; return ;;
  esac
  command tyx "$@" <> /tmp/never > /dev/null &
  waiting+=($!)
  until grep -q '^Name:.tyx' /proc/$!/status && grep -q '^State:.*sleeping' /proc/$!/status; do kill -0 $!; done
}
scripts/in-phone() { "$@"; } # we are on the phone already
./scripts/in-phone() { "$@"; }
finish() {
  status=$?
  set +v
  for each in "${waiting[@]}"; do
    kill "$each" || { echo "what should go on until it is stopped has ended" >&2; status=1; }
  done
  wait
  exit $status
}
trap finish EXIT
set -eu
"""


def bash(text, folder):
    process = subprocess.Popen(["bash", "-c", text], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               stdin=subprocess.DEVNULL, errors="replace", text=True, start_new_session=True)
    try:
        output, _ = process.communicate(timeout=LONGEST)
        return process.returncode, output
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        return -1, f"{process.communicate()[0]}\nstill running after {LONGEST} seconds"


def run_script(block, folder):
    status, output = bash(PREAMBLE + block["given"] + "\nset -v\n" + block["code"], folder)
    last = "\n".join(output.splitlines()[-20:])
    return "" if status == 0 else f"status {status}\n{last}"


def commands_of(code):
    """A console block as pairs of a command and the lines that it shows."""
    pairs = []
    for line in code.splitlines():
        if line.startswith("$ "):
            pairs.append((line[2:], []))
        elif line.startswith("> ") and pairs and not pairs[-1][1]:
            pairs[-1] = (pairs[-1][0] + "\n" + line[2:], [])
        elif pairs:
            pairs[-1][1].append(line)
    return pairs


def same(expected, shown):
    """Three dots stand for anything in a line, and for any lines when they are alone."""
    pattern = ""
    for line in expected:
        pattern += r"(?:.*\n)*?" if line.strip() == "..." else ".*".join(map(re.escape, line.split("..."))) + r"\n"
    return re.fullmatch(pattern, "".join(line.rstrip() + "\n" for line in shown.splitlines())) is not None


def run_console(block, folder):
    pairs = commands_of(block["code"])
    script = "set +e\n" + "".join(f"{command}\nprintf '\\n== end of command: %s ==\\n' $?\n" for command, _ in pairs)
    status, output = bash(PREAMBLE + block["given"] + "\n" + script, folder)
    *shown, _ = parts = re.split(r"\n== end of command: (\d+) ==\n", output)
    if status != 0 or len(parts) != 2 * len(pairs) + 1:
        return f"status {status}\n{output}"
    return "\n".join(f"$ {command}\nshows, with status {ended},\n{was}\ninstead of\n" + "\n".join(expected)
                     for (command, expected), was, ended in zip(pairs, shown[::2], shown[1::2])
                     if ended != "0" or not same(expected, was))


def run_program(path, number, folder):
    """An application is asked to end when it is on the bus; any other program ends by itself."""
    process = subprocess.Popen([path], cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                               env=os.environ | {"EXAMPLE": str(number)})
    channel = f"TYX/Application/{process.pid}"
    for _ in range(LONGEST):
        asked = subprocess.run(["tyx", "bus", "wait", channel, "--timeout", "1"], capture_output=True)
        if asked.returncode == 0:
            subprocess.run(["tyx", "bus", "send", channel, "shutdown()"], check=True)
            break
        if process.poll() is not None:
            break
    try:
        output, _ = process.communicate(timeout=LONGEST)
    except subprocess.TimeoutExpired:
        process.kill()
        return "does not end"
    return "" if process.returncode == 0 else f"status {process.returncode}\n{output}"


def has_focus(title):
    listed = subprocess.run(["tyx", "screen", "list"], capture_output=True, text=True).stdout
    return re.search(rf" active +{title}$", listed, re.M) is not None


def start_phone():
    """The server and two applications, of which Hello has the focus."""
    server = subprocess.Popen(["tyx-guiserver", "--platform", "offscreen"], stderr=subprocess.DEVNULL)
    subprocess.run(["tyx", "bus", "wait", "TYX/QtServer", "--timeout", str(LONGEST)], check=True)
    applications = []
    for program, title in (("notes", "Notes"), ("hello", "Hello")):
        applications.append(subprocess.Popen([program], stderr=subprocess.DEVNULL))
        end = time.monotonic() + LONGEST
        while not has_focus(title):  # each question waits for its answer
            if time.monotonic() > end:
                raise SystemExit(f"the window of {program} does not come up")
    return server, applications


def lay_out(folder):
    """What a reader sees who stands in the tree, but the folder can be written to."""
    for entry in Path(__file__).resolve().parents[2].iterdir():
        if entry.name != "build" and not entry.name.startswith("."):
            (folder / entry.name).symlink_to(entry)
    os.mkfifo("/tmp/never")  # what is read from it never comes


def main():
    orders = json.load(sys.stdin)
    server, applications = start_phone()
    folder = Path("/tmp/home")
    lay_out(folder)
    faults = []
    for block in orders["blocks"]:
        run = run_console if block["language"] == "console" else run_script
        if fault := run(block, folder):
            faults.append(f'{block["where"]}: {fault}')
    for where, path, number in orders["programs"]:
        if fault := run_program(path, number, folder):
            faults.append(f"{where}: {fault}")
    if server.poll() is not None:
        faults.append("the GUI server ended")
    server.send_signal(signal.SIGTERM)
    server.wait(LONGEST)
    for application in applications:
        application.wait(LONGEST)
    print(json.dumps(faults))


main()
