"""Times the packing of a folder of 10 000 files: packing.py ROUNDS TYX FLOOR RCC GLIB_COMPILE_RESOURCES"""
import os
import random
import statistics
import subprocess
import sys
import time

rounds = int(sys.argv[1])
tyx, floor, rcc, glib = sys.argv[2:]
os.makedirs("folder", exist_ok=True)
random.seed(1)
names = [f"{random.choice('abcdefghijklmnopqrst')}{random.randrange(10**8)}_{number}.png" for number in range(10000)]
for name in os.listdir("folder"):
    os.remove(f"folder/{name}")
for name in names:
    with open(f"folder/{name}", "wb") as file:
        file.write(random.randbytes(random.randrange(200, 3000)))  # as small icons are
with open("folder.qrc", "w") as file:
    file.write("<RCC><qresource>" + "".join(f"<file>folder/{name}</file>" for name in names) + "</qresource></RCC>")
with open("folder.gresource.xml", "w") as file:
    entries = "".join(f"<file>folder/{name}</file>" for name in names)
    file.write(f'<gresources><gresource prefix="/">{entries}</gresource></gresources>')

commands = {
    "tyx pack create": [tyx, "pack", "create", "packed.tyx", "folder"],
    "floor": [floor, "folder", "packed.floor"],
    "rcc": [rcc, "--binary", "--no-compress", "-o", "packed.rcc", "folder.qrc"],
    "glib-compile-resources": [glib, "--target=packed.gresource", "folder.gresource.xml"],
}
seconds = {who: [] for who in commands}
for _ in range(rounds):
    for who, command in commands.items():
        os.sync()
        begin = time.perf_counter()
        subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
        seconds[who].append(time.perf_counter() - begin)
ours = statistics.median(seconds["tyx pack create"])
for who, all_seconds in seconds.items():
    median = statistics.median(all_seconds)
    print(f"{who:<24} {median * 1000:8.1f} ms ({median / ours:.2f}x)")
