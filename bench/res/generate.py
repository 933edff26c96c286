"""Makes the resource files that bench_res asks, in the working directory: generate.py TYX RCC GLIB_COMPILE_RESOURCES"""
import itertools
import random
import subprocess
import sys

tyx, rcc, glib = sys.argv[1:4]
WORDS = """alarm arrow battery bell browser calculator calendar call camera card chat clock cloud contact copy cut
disk down edit email error file flight folder game globe grid hand heart help home icon image info key left list lock
mail map memo menu message mic minus music mute network next note page paste pause pen phone play plus power radio
right search send signal""".split()


def names(kind, count):
    if kind == "numbers":
        return [f"icon_{number:06d}.g" for number in range(count)]
    random.seed(count)
    chosen = random.sample(list(itertools.product(WORDS, repeat=3)), count)
    return ["_".join(words) + ".g" for words in chosen]


with open("one", "w") as one:
    one.write("0123456789abcdef")
for kind, count in itertools.product(("words", "numbers"), (100, 10000, 200000)):
    stem = f"{kind}{count}"
    asked = names(kind, count)
    # A folder for a thousand names each: the compiler of GResource takes minutes for more in one.
    folders = [f"{number // 1000}/{name}" for number, name in enumerate(asked)]
    chosen = random.sample(range(count), min(count, 4096))
    with open(f"{stem}.names", "w") as file:
        file.writelines(asked[number] + "\n" for number in chosen)
    with open(f"{stem}.paths", "w") as file:
        file.writelines(folders[number] + "\n" for number in chosen)
    with open(f"{stem}.manifest", "w") as file:
        file.writelines(f"one\t{name}\n" for name in asked)
    with open(f"{stem}.qrc", "w") as file:
        file.write('<RCC><qresource prefix="/">')
        file.writelines(f'<file alias="{name}">one</file>' for name in asked)
        file.write("</qresource></RCC>")
    with open(f"{stem}.gresource.xml", "w") as file:
        file.write('<gresources><gresource prefix="/">')
        file.writelines(f'<file alias="{path}">one</file>' for path in folders)
        file.write("</gresource></gresources>")
    subprocess.run([tyx, "pack", "create", f"{stem}.tyx", f"{stem}.manifest"], check=True, stderr=subprocess.DEVNULL)
    subprocess.run([rcc, "--binary", "--no-compress", "-o", f"{stem}.rcc", f"{stem}.qrc"], check=True)
    subprocess.run([glib, f"--target={stem}.gresource", f"{stem}.gresource.xml"], check=True)
