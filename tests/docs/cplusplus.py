"""Compiles the C++ of the documents, all of it in one unit: what costs is to read the headers."""
import json
import re
import shlex
import subprocess

PROGRAM = re.compile(r"^int main\(", re.M)
INCLUDE = re.compile(r"^#include .*\n", re.M)
HERE = "// here\n"  # in the hidden lines: what stands above it is no part of the function around a body


class Compiler:
    """As the examples of the build tree are compiled."""

    def __init__(self, build):
        commands = json.loads((build / "compile_commands.json").read_text())
        words = shlex.split(next(each["command"] for each in commands if each["file"].endswith("hello/hello.cpp")))
        words = [word for word in words if not word.endswith("ccache")]
        self.compile = [*words[:words.index("-o")], "-O0", "-g0"]
        self.libraries = [f"-L{build}/lib", f"-Wl,-rpath,{build}/lib", "-ltyxappbase-xscale-r",
                          "-lQt6Widgets", "-lQt6Gui", "-lQt6Core"]

    def build(self, blocks, path):
        """Makes one program of all blocks, each in a namespace of its own; EXAMPLE in its environment tells which of them
        it is, by its place. What is wrong, or nothing."""
        includes, bodies, calls = ["#include <cstdlib>\n"], [], []
        for number, block in enumerate(blocks):
            given, code = block.given, f'#line {block.line} "{block.page}"\n{block.code}'
            includes += INCLUDE.findall(given + code)
            if "body" in block.info.split():
                outside, mark, inside = given.rpartition(HERE)
                given, code = (outside, inside + code) if mark else ("", given + code)
                code = f"[[maybe_unused]] void shown()\n{{\n{code}}}\n"
            bodies.append(f"namespace example{number} {{\n{INCLUDE.sub(chr(10), given + code)}}}\n")
            if is_program(block):
                arguments = "" if "int main()" in block.code else "argc, argv"
                calls.append(f"    case {number}: return example{number}::main({arguments});\n")
        main = "int main([[maybe_unused]] int argc, [[maybe_unused]] char **argv)\n{\n" \
            f"    switch (std::atoi(std::getenv(\"EXAMPLE\"))) {{\n{''.join(calls)}    default: return 1;\n    }}\n}}\n"
        unit = "".join(dict.fromkeys(includes)) + "".join(bodies) + main
        done = subprocess.run([*self.compile, "-Wno-unused", "-Wno-main", "-o", path, "-x", "c++", "-", "-x", "none",
                               *self.libraries], input=unit, capture_output=True, text=True)
        return done.stderr if done.returncode else ""


def is_program(block):
    return PROGRAM.search(block.code) is not None
