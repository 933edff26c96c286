"""What the phone's tools say of themselves: reads --help of a program and of all its sub-commands into a tree.

Manual pages, shell completion and the check of the documents are made from this, so that they cannot differ from the
programs.
"""
import re
import shlex
import subprocess
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

DESCRIPTION_COLUMN = 30
SECTION = re.compile(r"^(Positionals|Options|Subcommands):$")


@dataclass
class Item:
    """An option, or something that stands at a place of its own."""
    names: list
    value: str = ""  # what kind of value it takes; empty: none
    required: bool = False
    many: bool = False
    places: int = 1
    about: str = ""


@dataclass
class Command:
    words: tuple
    about: str = ""
    usage: str = ""
    notes: list = field(default_factory=list)  # lines behind the lists
    positionals: list = field(default_factory=list)
    options: list = field(default_factory=list)
    commands: dict = field(default_factory=dict)

    @property
    def name(self):
        return " ".join(self.words)

    def all(self):
        yield self
        for command in self.commands.values():
            yield from command.all()

    def option(self, name):
        return next((option for option in self.options if name in option.names), None)


MARK = re.compile(r"\s+(?:REQUIRED|\.\.\.|x \d+|(?:Excludes|Needs): .*)")


def _item(head, about):
    names, _, rest = MARK.sub("", head).partition(" ")
    kind, _, limits = rest.strip().partition(":")  # INT:a number from 1 to 9, TEXT:WIDTHxHEIGHT, TEXT:{open,close}
    value = limits if kind == "TEXT" and limits and " " not in limits else kind
    places = re.search(r" x (\d+)", head)
    words = head.split()
    return Item(names.split(","), value, "REQUIRED" in words, "..." in words, int(places[1]) if places else 1, about)


def _rows(lines):
    """The rows of a list: what stands left, and what is said of it, which for a long one begins on the next line."""
    rows = []
    for number, line in enumerate(lines):
        following = lines[number + 1] if number + 1 < len(lines) else ""
        if line.startswith(" " * DESCRIPTION_COLUMN):
            rows[-1][1] = (rows[-1][1] + " " + line.strip()).strip()
        elif following.startswith(" " * DESCRIPTION_COLUMN):
            rows.append([line.strip(), ""])
        else:
            rows.append([line[:DESCRIPTION_COLUMN].strip(), line[DESCRIPTION_COLUMN:].strip()])
    return rows


def parse(words, text):
    command, section, rows = Command(tuple(words)), "", {}
    for line in text.splitlines():
        if heading := SECTION.match(line):
            section = heading[1]
        elif not line:
            section = "notes" if section else ""
        elif line.startswith("Usage: "):
            command.usage = line.removeprefix("Usage: ")
        elif not section:
            command.about = (command.about + " " + line).strip()
        elif section == "notes":
            command.notes.append(line)
        else:
            rows.setdefault(section, []).append(line)
    command.positionals = [_item(*row) for row in _rows(rows.get("Positionals", []))]
    command.options = [_item(*row) for row in _rows(rows.get("Options", []))]
    command.commands = dict.fromkeys(head for head, _ in _rows(rows.get("Subcommands", [])))
    return command


def read(program, runner=()):
    """The tree of a program, given by its path. RUNNER is what starts it in a cross build."""
    name = str(program).rsplit("/", 1)[-1]

    def one(words):
        line = [*runner, str(program), *words[1:], "--help"]
        answer = subprocess.run(line, capture_output=True, text=True, timeout=60)
        if answer.returncode != 0:
            raise SystemExit(f"{' '.join(words)} --help: status {answer.returncode}: {answer.stderr.strip()}")
        return parse(words, answer.stdout)

    root = one((name,))
    with ThreadPoolExecutor(4) as pool:
        level = [root]
        while level:
            children = [(parent, child) for parent in level for child in parent.commands]
            read_ones = pool.map(one, [parent.words + (child,) for parent, child in children])
            level = []
            for (parent, child), command in zip(children, read_ones):
                parent.commands[child] = command
                level.append(command)
    return root


class NoSuchCommand(Exception):
    pass


def check_words(root, words, complete=True):
    """Holds the words of a command line against the tree. COMPLETE: what is required must be there."""
    command, rest = root, list(words[1:])
    while rest and command.commands and not rest[0].startswith("-"):
        if rest[0] not in command.commands:
            raise NoSuchCommand(f"{command.name} has no command '{rest[0]}'")
        command = command.commands[rest.pop(0)]
    if command.commands and complete and not rest:
        raise NoSuchCommand(f"{command.name} wants a command")
    if command.words[1:] == ("lock", "run"):  # the words of another program follow
        return command
    given = 0
    while rest:
        word = rest.pop(0)
        if not re.match(r"^--?[a-z]", word):
            given += 1
            continue
        option = command.option(word.split("=")[0])
        if not option:
            raise NoSuchCommand(f"{command.name} has no option {word}")
        if option.value and "=" not in word:
            if complete and not rest:
                raise NoSuchCommand(f"{command.name} {word} wants a value")
            rest = rest[1:]
    most = sum(item.places for item in command.positionals)
    # The help tells the least number of places only: a way over the screen may have more than four.
    if given > most and not any(item.many or item.places >= 4 for item in command.positionals):
        raise NoSuchCommand(f"{command.name} takes {most} arguments, not {given}")
    least = sum(item.places for item in command.positionals if item.required)
    if complete and given < least:
        raise NoSuchCommand(f"{command.name} wants {least} arguments, not {given}")
    return command


def split_commands(line):
    """The simple commands of a shell line, each as its words; empty when the line cannot be read alone."""
    lexer = shlex.shlex(line, posix=True, punctuation_chars=True)
    lexer.whitespace_split = True
    lexer.commenters = "#"
    commands, words, skip = [], [], False
    try:
        for word in lexer:
            if word and set(word) <= set("();<>|&"):
                skip = word[0] in "<>"
                if not skip:
                    commands.append(words)
                    words = []
            elif skip:
                skip = False
            else:
                words.append(word)
    except ValueError:
        return []
    return [words for words in commands + [words] if words]
