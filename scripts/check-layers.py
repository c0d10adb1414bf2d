#!/usr/bin/env python3
"""Fails when a file includes what its folder must not see: calls go downwards only.

The tables below are the rule. A folder that is missing there must be entered before its files can be checked.
"""

import os
import re
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "lib"))
import sources

# Each folder, and those whose headers its files may include besides its own. Of two that fit a file the longer counts.
# What another layer may see lies in the include/ folder of its layer; nobody reaches past that.
MAY_SEE = {
    "include": [],
    "interface": [],
    "src/platform": [],
    "src/core": ["include", "src/platform"],
    "src/gentl": ["include", "interface", "genapi/include", "src/core", "src/platform"],
    "src/features": ["include", "genapi/include", "src/core", "src/gentl", "src/platform"],
    "src/discovery": ["include", "genapi/include", "src/core", "src/gentl", "src/features", "src/platform"],
    "src/acquisition": ["include", "interface", "src/core", "src/gentl", "src/features", "src/platform"],
    "src/filetransfer": ["include", "src/core", "src/gentl", "src/features", "src/platform"],
    "src/diagnostics": ["include", "src/core", "src/platform"],
    "src/api": ["include", "src/core", "src/gentl", "src/features", "src/discovery", "src/acquisition", "src/filetransfer",
                "src/diagnostics"],
    "genapi/include": [],
    "genapi/src/platform": [],
    "genapi/src/base": ["genapi/include", "genapi/src/platform"],
    "genapi/src/formula": ["genapi/src/base"],
    "genapi/src/model": ["genapi/include", "genapi/src/base"],
    "genapi/src/nodemap": ["genapi/include", "genapi/src/base", "genapi/src/model", "genapi/src/nodes"],
    "genapi/src/nodes": ["genapi/include", "genapi/src/base", "genapi/src/formula", "genapi/src/model", "genapi/src/nodemap"],
    "genapi/src/adapters": ["genapi/include", "genapi/src/base"],
    "producers/virtual": ["interface"],
    # The tool is an application: it sees the public interface, and where it looks into a producer or a description by
    # itself, that interface and the engine's. It loads producers as the library does, with the same code.
    "tools/ovi": ["include", "tools/ovi/description", "tools/ovi/platform"],
    "tools/ovi/commands": ["include", "tools/ovi"],
    "tools/ovi/check": ["interface", "genapi/include", "tools/ovi"],
    "tools/ovi/description": ["genapi/include", "tools/ovi"],
    "tools/ovi/doctor": ["include", "interface", "tools/ovi"],
    "tools/ovi/platform": ["src/platform", "tools/ovi"],
    "examples": ["include", "producers/virtual/include"],
}
PROOF = ("tests/", "bench/", "fuzz/")  # They may look into everything.

# Headers of other libraries and of the operating system, and where they may be used.
SYSTEM_FOLDERS = ["src/platform", "genapi/src/platform", "producers/virtual/platform", "tools/ovi/platform"]
OUTSIDE = [
    (r"(boost/.*)", ["src/discovery"]),
    (r"(plog/.*)", ["src/core"]),
    (r"(pugixml\.hpp)", ["genapi/src/model"]),
    (r"(miniz\.h)", ["genapi/include/ovi_genapi", "genapi/src/nodemap", "src/gentl", "producers/virtual/camera",
                     "tools/ovi/doctor"]),
    (r"(png\.h)", ["producers/virtual/picture", "tools/ovi"]),
    (r"(CLI/.*|nlohmann/.*)", ["tools/ovi"]),
    (r"((windows|io|dbghelp|shl\w*|shellapi|unistd|fcntl|dlfcn|poll|signal|spawn|elf|link|execinfo|ucontext|pthread)\.h"
     r"|(sys|linux|net|netinet|arpa)/.*)", SYSTEM_FOLDERS),
]
# The systems are told apart in the same folders, and where an interface is declared.
SYSTEM_MACRO = re.compile(r"^[ \t]*#[ \t]*(?:el)?if.*\b(_WIN32|_WIN64|__linux__|__unix__|__APPLE__)\b", re.M)
SYSTEM_MACRO_FOLDERS = SYSTEM_FOLDERS + ["include", "interface", "producers/virtual/include", "genapi/include"]

def within(name, folder):
    return name.startswith(folder + "/")


def folder_of(name):
    fitting = [folder for folder in MAY_SEE if within(name, folder)]
    return max(fitting, key=len) if fitting else None


def target_of(name, included, known):
    for folder in sources.include_folders(name):
        candidate = os.path.normpath(os.path.join(folder, included))
        if candidate in known:
            return candidate
    return None


def trouble_with_own(folder, target):
    seen = folder_of(target)
    if seen == folder:
        return None
    if not any(within(target, allowed) for allowed in MAY_SEE[folder]):
        return f"{folder} must not see {seen or os.path.dirname(target)}"
    if re.match(r"src/", target) and not re.match(r"src/(\w+)/include/\1/", target):
        return f"{target} is for {seen} alone"
    return None


def trouble_with_outside(name, included):
    for pattern, folders in OUTSIDE:
        if re.fullmatch(pattern, included) and not any(within(name, folder) for folder in folders):
            return f"<{included}> belongs in {', '.join(folders)} alone"
    return None


def check(name, known):
    folder = folder_of(name)
    if folder is None:
        return [(1, f"{os.path.dirname(name)} has no entry in the table of scripts/check-layers.py")]
    text = sources.text_of(name)
    found = []
    for line, quoted, included in sources.includes(text):
        target = target_of(name, included, known)
        if target:
            trouble = trouble_with_own(folder, target)
        elif quoted:
            trouble = f'"{included}" is no header of ours; other libraries stand in angle brackets'
        else:
            trouble = trouble_with_outside(name, included)
        if trouble:
            found.append((line, trouble))
    if not any(within(name, allowed) for allowed in SYSTEM_MACRO_FOLDERS):
        for match in SYSTEM_MACRO.finditer(text):
            found.append((sources.line_at(text, match.start()), f"{match[1]} belongs in {', '.join(SYSTEM_FOLDERS)} alone"))
    return found


def main():
    known = set(sources.tracked(*sources.CODE))
    files = [name for name in sorted(known) if not name.startswith(PROOF)]
    count = 0
    for name in files:
        for line, trouble in check(name, known):
            print(f"{name}:{line}: {trouble}")
            count += 1
    print(f"check-layers: {len(files)} files, {count} findings")
    return 1 if count else 0


sys.exit(main())
