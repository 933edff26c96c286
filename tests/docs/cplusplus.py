"""Compiles the C++ of the documents: all blocks in one unit for their syntax, whole programs into what runs."""
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

    def run(self, arguments, text):
        done = subprocess.run([*self.compile, *arguments], input=text, capture_output=True, text=True)
        return done.stderr if done.returncode else ""

    def syntax(self, blocks):
        """The compiler's complaints about all blocks together, each in a namespace of its own."""
        includes, bodies = [], []
        for number, block in enumerate(blocks):
            given, code = block.given, f'#line {block.line} "{block.page}"\n{block.code}'
            includes += INCLUDE.findall(given + code)
            if "body" in block.info.split():
                outside, mark, inside = given.rpartition(HERE)
                given, code = (outside, inside + code) if mark else ("", given + code)
                code = f"[[maybe_unused]] void shown()\n{{\n{code}}}\n"
            bodies.append(f"namespace example{number} {{\n{INCLUDE.sub(chr(10), given + code)}}}\n")
        unit = "".join(dict.fromkeys(includes)) + "".join(bodies)
        return self.run(["-fsyntax-only", "-Wno-unused", "-Wno-main", "-x", "c++", "-"], unit)

    def program(self, block, path):
        """Links a whole program; what is wrong, or nothing."""
        code = f'{block.given}#line {block.line} "{block.page}"\n{block.code}'
        return self.run(["-o", path, "-x", "c++", "-", "-x", "none", *self.libraries], code)


def is_program(block):
    return PROGRAM.search(block.code) is not None
