#!/usr/bin/env python3
"""Checks what the documents point at: every relative link and picture is there, every heading that a link names stands in
its document, every file that a document mentions exists, and every picture is shown somewhere. Run by `script/test`."""

from __future__ import annotations

import re
import subprocess
import sys
from html.parser import HTMLParser
from pathlib import Path, PurePosixPath

ROOT = Path(__file__).resolve().parent.parent
PICTURES = "docs/pictures/"

# Where a path in a text may begin, apart from the text's own folder. The source files are called by their floors.
BASES = ("", "src", "src/platform")
ENDINGS = ("", ".h", ".cpp")

FENCE = re.compile(r"^ *(```|~~~).*?^ *\1 *$", re.MULTILINE | re.DOTALL)
SPAN = re.compile(r"(`+)(.+?)\1", re.DOTALL)
LINK = re.compile(r"\[[^\]]*\]\(\s*<?([^)\s>]+)>?[^)]*\)")
REFERENCE = re.compile(r"^ {0,3}\[[^\]]+\]:\s*<?(\S+?)>?\s*$", re.MULTILINE)
HEADING = re.compile(r"^#{1,6}\s+(.+?)\s*#*\s*$", re.MULTILINE)
OUTSIDE = re.compile(r"[a-z][a-z0-9+.-]*:|//")
# A path as it is written in a text: words of a file's name with slashes between them.
PATH = re.compile(r"(?<![\w./~$*-])[\w.+-]+(?:/[\w.+*-]+)+/?")


class Targets(HTMLParser):
    """What the HTML in a document points at."""

    def __init__(self) -> None:
        super().__init__()
        self.found: list[str] = []

    def handle_starttag(self, tag: str, attrs: list[tuple[str, str | None]]) -> None:
        """Takes the addresses of links and pictures."""
        for name, value in attrs:
            if name in ("href", "src") and value:
                self.found.append(value)
            elif name == "srcset" and value:
                self.found += [piece.split()[0] for piece in value.split(",") if piece.split()]


def anchors(text: str) -> set[str]:
    """The names by which links reach the headings of a document, as GitHub makes them."""
    made: set[str] = set()
    for title in HEADING.findall(FENCE.sub("", text)):
        plain = re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", title)
        name = re.sub(r"[^\w\- ]", "", plain.lower()).replace(" ", "-")
        number = 0
        while (candidate := f"{name}-{number}" if number else name) in made:
            number += 1
        made.add(candidate)
    return made


class Tree:
    """The files of the repository, and the folders above them."""

    def __init__(self) -> None:
        listed = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "-z"], cwd=ROOT,
                                capture_output=True, text=True, check=True).stdout.split("\0")
        self.files = {name for name in listed if name and (ROOT / name).exists()}
        self.folders = {str(parent) for name in self.files for parent in PurePosixPath(name).parents}

    def has(self, path: str) -> bool:
        """Whether a file, a folder, or anything that fits a pattern with asterisks is there."""
        if "*" in path:
            return any(PurePosixPath(name).match(path) for name in self.files | self.folders)
        return path in self.files or path in self.folders


def joined(folder: PurePosixPath, path: str) -> str | None:
    """The path from the repository's root; nothing when it leads out of it."""
    parts: list[str] = []
    for part in [*folder.parts, *PurePosixPath(path).parts]:
        if part == "..":
            if not parts:
                return None
            parts.pop()
        elif part != ".":
            parts.append(part)
    return "/".join(parts) or "."


class Document:
    """One document and what is wrong with it."""

    def __init__(self, tree: Tree, name: str) -> None:
        self.tree = tree
        self.name = name
        self.folder = PurePosixPath(name).parent
        self.text = (ROOT / name).read_text(encoding="utf-8")
        self.wrong: list[str] = []
        self.reached: set[str] = set()

    def check(self) -> None:
        """Finds all that is wrong."""
        prose = SPAN.sub("", FENCE.sub("", self.text))
        html = Targets()
        html.feed(prose)
        for target in [*LINK.findall(prose), *REFERENCE.findall(prose), *html.found]:
            if not OUTSIDE.match(target):
                self.check_link(target)
        code = [match[0] for match in FENCE.finditer(self.text)]
        code += [match[2] for match in SPAN.finditer(FENCE.sub("", self.text))]
        for piece in code:
            for path in PATH.findall(piece):
                self.check_mention(path)

    def check_link(self, target: str) -> None:
        """A link leads to a file of the repository, and to a heading of it if it names one."""
        path, _, anchor = target.partition("#")
        place = joined(self.folder, path) if path else self.name
        if place is None or not self.tree.has(place):
            self.wrong.append(f"the link {target} leads nowhere")
            return
        self.reached.add(place)
        if anchor and anchor not in anchors((ROOT / place).read_text(encoding="utf-8")):
            self.wrong.append(f"the link {target} names a heading that is not there")

    def check_mention(self, path: str) -> None:
        """A path that begins like one of ours is one of ours; one that begins with a dot is the reader's."""
        if path.startswith("."):
            return
        path = path.rstrip("/.,")
        first = path.partition("/")[0]
        bases = [PurePosixPath(base) for base in BASES]
        bases += [] if self.folder in bases else [self.folder]
        ours = [base for base in bases if joined(base, first) in self.tree.folders]
        if ours and not any(self.tree.has(f"{joined(base, path)}{ending}") for base in ours for ending in ENDINGS):
            self.wrong.append(f"{path} is mentioned and not there")


def main() -> int:
    """Prints what is wrong, a line each; 0 when nothing is."""
    tree = Tree()
    documents = [Document(tree, name) for name in sorted(tree.files) if name.endswith(".md")]
    complaints: list[str] = []
    for document in documents:
        document.check()
        complaints += [f"{document.name}: {complaint}" for complaint in document.wrong]
    shown = {name for document in documents for name in document.reached}
    complaints += [f"{name}: no document shows it" for name in sorted(tree.files)
                   if name.startswith(PICTURES) and name not in shown]
    for complaint in complaints:
        print(complaint, file=sys.stderr)
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
