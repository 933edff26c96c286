"""A page of the documents as the check sees it: fenced blocks, links, headings, words between backticks."""
import re
from dataclasses import dataclass, field
from pathlib import Path

FENCE = re.compile(r"^( *)```(\S*) *(.*)$")
GIVEN = re.compile(r"^<!-- given ?(.*)$")
LINK = re.compile(r'(?:!?\[[^\]]*\]\(|<img [^>]*\bsrc=")([^)\s"]+)')


@dataclass
class Block:
    page: str
    line: int  # of the first line of the code
    language: str
    info: str  # what follows the language
    code: str
    given: str = ""  # the hidden lines before it

    @property
    def where(self):
        return f"{self.page}:{self.line}"


@dataclass
class Page:
    name: str
    blocks: list = field(default_factory=list)
    links: list = field(default_factory=list)  # (line, target)
    spans: list = field(default_factory=list)  # (line, text between backticks)
    anchors: set = field(default_factory=set)
    faults: list = field(default_factory=list)


def anchor(heading):
    """As the usual viewers make it of a heading."""
    text = re.sub(r"[^\w\- ]", "", heading.replace("`", "").lower())
    return text.strip().replace(" ", "-")


class _Reader:
    def __init__(self, name, text):
        self.page = Page(name)
        self.lines = text.splitlines()
        self.at = 0
        self.given = ""

    def read(self):
        while self.at < len(self.lines):
            line = self.lines[self.at]
            self.at += 1
            if found := FENCE.match(line):
                self.fenced(found)
            elif found := GIVEN.match(line):
                self.hidden(found[1])
            elif line.startswith("    ") and line.strip() and self.begins_block():
                self.page.faults.append(f"{self.page.name}:{self.at}: code without a fence: its language is not known")
            elif line.strip():
                self.prose(line)
        return self.page

    def begins_block(self):
        return self.at >= 2 and not self.lines[self.at - 2].strip()

    def until(self, is_end):
        start = self.at
        while self.at < len(self.lines) and not is_end(self.lines[self.at]):
            self.at += 1
        self.at += 1
        return start, self.lines[start:self.at - 1]

    def fenced(self, found):
        start, code = self.until(lambda line: line.strip() == "```")
        indent = len(found[1])
        text = "\n".join(line[indent:] for line in code) + "\n"
        self.page.blocks.append(Block(self.page.name, start + 1, found[2], found[3], text, self.given))
        self.given = ""

    def hidden(self, first):
        if "-->" in first:
            self.given = first.split("-->")[0].strip() + "\n"
            return
        _, code = self.until(lambda line: line.strip() == "-->")
        self.given = "\n".join(code) + "\n"

    def prose(self, line):
        self.given = ""
        if line.startswith("#"):
            self.page.anchors.add(anchor(line.lstrip("#").strip()))
        self.page.spans += [(self.at, span) for span in re.findall(r"`([^`]+)`", line)]
        self.page.links += [(self.at, target) for target in LINK.findall(re.sub(r"`[^`]*`", "", line))]


def read(root):
    """All pages, by their names below ROOT."""
    files = [root / "README.md", *sorted((root / "docs").rglob("*.md"))]
    names = [str(file.relative_to(root)) for file in files]
    return {name: _Reader(name, Path(file).read_text()).read() for name, file in zip(names, files)}
