#!/usr/bin/env python3
"""Fails when a header does not compile alone: each brings what it needs. Those for C are tried in both languages.

A header that a source of the build includes before anything else has proved itself there and is not tried again.
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "lib"))
import sources

ELSEWHERE = "platform/windows/"  # the build for Windows alone
PROOF = ("tests/", "bench/", "fuzz/")
FOR_C = ("include/ovi/ovi.h", "interface/gentl/include/gentl_interface/", "producers/virtual/include/ovi_virtual/")
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache")
LIBRARIES = pathlib.Path(os.environ.get("OVI_DEPS_DIR") or CACHE / "ovi-deps") / "native/include"
OBJECTS = sources.ROOT / "build/headers"


def proved_by_the_build():
    """The headers that are the first include of a source that the build for this platform compiles."""
    proved = set()
    for source in sources.tracked(".cpp"):
        includes = sources.includes(sources.text_of(source))
        if not includes or ELSEWHERE in source:
            continue
        for folder in sources.include_folders(source):
            header = os.path.normpath(os.path.join(folder, includes[0][2]))
            if (sources.ROOT / header).is_file():
                proved.add(header)
                break
    return proved


def tries(name, proved):
    if name not in proved:
        yield "c++", "c++20"
    if name.endswith(".h") and name.startswith(FOR_C):
        yield "c", "c11"


def check(name, proved):
    """What the compilers say against a header."""
    folders = [word for folder in sources.include_folders(name)[1:] for word in ("-I", folder)]
    said = []
    for language, standard in tries(name, proved):
        compiler = "g++" if language == "c++" else "gcc"
        source = OBJECTS / f"{name.replace('/', '-')}.{'cpp' if language == 'c++' else 'c'}"
        source.write_text(f'#include "{name}"\n')
        command = ["ccache", compiler, f"-std={standard}", "-Wall", "-Wextra", "-Werror", "-I.", *folders,
                   "-isystem", str(LIBRARIES), "-c", str(source), "-o", f"{source}.o"]
        run = subprocess.run(command, cwd=sources.ROOT, capture_output=True, text=True)
        if run.returncode != 0:
            said.append(run.stderr)
    return said


def main():
    OBJECTS.mkdir(parents=True, exist_ok=True)
    headers = [name for name in sources.tracked(*sources.HEADERS)
               if ELSEWHERE not in name and not name.startswith(PROOF)]
    proved = proved_by_the_build()
    count = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for said in pool.map(lambda name: check(name, proved), headers):
            count += len(said)
            print("".join(said), end="")
    print(f"check-headers: {len(headers)} headers, {len(proved.intersection(headers))} of them by the build, {count} findings")
    return 1 if count else 0


sys.exit(main())
