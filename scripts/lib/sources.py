"""The sources of this project as git knows them, and what they include. Shared by the checks of scripts/."""

import os
import pathlib
import re
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
CODE = (".h", ".hpp", ".hh", ".c", ".cpp")
HEADERS = (".h", ".hpp", ".hh")
INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*([<"])([^>"]+)[>"]', re.M)

INCLUDE_FOLDERS = ["include", "interface/gentl/include", "genapi/include", "genapi/src", "producers/virtual/include",
                   "producers/virtual", "tools/ovi"]


def tracked(*endings, below=""):
    """The files under git's eye (and new ones that it does not ignore), as paths from the root."""
    listing = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", below or "."],
                             cwd=ROOT, capture_output=True, text=True, check=True).stdout
    return sorted(name for name in set(listing.split("\0")) if name.endswith(endings) and (ROOT / name).is_file())


def text_of(name):
    return (ROOT / name).read_text(encoding="utf-8")


def line_at(text, position):
    return text.count("\n", 0, position) + 1


def includes(text):
    """Each include of a text: its line, whether it stands in quotes, and what it names."""
    return [(line_at(text, match.start(2)), match[1] == '"', match[2]) for match in INCLUDE.finditer(text)]


def include_folders(name):
    """Where the build looks for what a file of this folder includes."""
    layer = re.match(r"src/\w+", name)
    layers = [f"src/{entry.name}/include" for entry in os.scandir(ROOT / "src") if entry.is_dir()]
    return [os.path.dirname(name)] + ([layer[0]] if layer else []) + INCLUDE_FOLDERS + layers
