"""Runs clang-tidy over the units of build/tidy, two or more at a time, and says each finding once.

A unit that was clean before and reads the same text as then is not checked again: the cache folder holds an empty file
for each clean unit, named by a hash over the tool, its configuration, the command and every file that the unit reads.
"""

import argparse
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
FINDING = re.compile(r"^(?P<path>/[^:]+):(?P<line>\d+):(?P<column>\d+): (?:error|warning): (?P<text>.*)$")
KEPT_DAYS = 30


def sources_of(unit):
    """The sources that one unit is made of: those that it includes where the build put several together."""
    text = pathlib.Path(unit["file"]).read_text()
    return re.findall(r'^#include "(/.*\.cpp)"$', text, re.M) or [unit["file"]]


def chosen_units(folders):
    units = json.loads((ROOT / "build/tidy/compile_commands.json").read_text())
    below = tuple(str(ROOT / folder) for folder in folders)
    return [unit for unit in units
            if any(source == folder or source.startswith(folder + "/") for source in sources_of(unit) for folder in below)]


def files_read(unit):
    """All files that the preprocessor opens for a unit, or nothing when it fails: then clang-tidy tells why."""
    command = shlex.split(unit["command"])
    command = command[1:] if os.path.basename(command[0]) == "ccache" else command
    command = [word for word, before in zip(command, [""] + command) if word not in ("-c", "-o") and before != "-o"]
    run = subprocess.run(command + ["-M", "-MT", "unit"], cwd=unit["directory"], capture_output=True, text=True)
    names = shlex.split(run.stdout.replace("\\\n", " "))[1:] if run.returncode == 0 else []
    return sorted({os.path.join(unit["directory"], name) for name in names})


def key_of(unit, settings):
    here = str(ROOT)
    digest = hashlib.sha256(settings)
    digest.update(unit["command"].replace(here, ".").encode())
    read = files_read(unit)
    for name in read:
        content = pathlib.Path(name).read_bytes()
        digest.update(name.replace(here, ".").encode() + b"\0")
        digest.update(content.replace(here.encode(), b"."))
    return digest.hexdigest() if read else None


def findings_of(output):
    """The findings in clang-tidy's output, one line each."""
    found = []
    for line in output.splitlines():
        match = FINDING.match(line)
        if not match:
            continue
        path = os.path.relpath(os.path.normpath(match["path"]), ROOT)
        text = f"{path}:{match['line']}:{match['column']}: {match['text'].replace(',-warnings-as-errors', '')}"
        found.append(text)
    return found


def check(unit, options, settings):
    key = key_of(unit, settings)
    mark = options.cache / key if key else None
    if mark and mark.exists():
        mark.touch()
        return "unchanged", [], ""
    command = [options.tool, "-p", str(ROOT / "build/tidy"), "--quiet", unit["file"]]
    run = subprocess.run(command, cwd=ROOT, capture_output=True, text=True)
    found = findings_of(run.stdout)
    if run.returncode != 0 and not found:
        return "failed", [], run.stdout + run.stderr
    if mark and not found:
        mark.touch()
    return "checked", found, ""


def forget_old(folder):
    limit = time.time() - KEPT_DAYS * 24 * 3600
    for mark in folder.iterdir():
        if mark.stat().st_mtime < limit:
            mark.unlink(missing_ok=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    parser.add_argument("folders", nargs="+")
    options = parser.parse_args()
    options.cache = pathlib.Path(os.environ.get("XDG_CACHE_HOME") or pathlib.Path.home() / ".cache") / "ovi-tidy"
    options.cache.mkdir(parents=True, exist_ok=True)
    forget_old(options.cache)
    version = subprocess.run([options.tool, "--version"], capture_output=True, check=True).stdout
    settings = b"\0".join([version, (ROOT / ".clang-tidy").read_bytes()])

    units = chosen_units(options.folders)
    if not units:
        print(f"check-tidy: nothing to check below {' '.join(options.folders)}", file=sys.stderr)
        return 2
    said, states = set(), []
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        for state, found, trouble in pool.map(lambda unit: check(unit, options, settings), units):
            states.append(state)
            if trouble:
                print(trouble, file=sys.stderr)
            for text in found:
                if text not in said:
                    said.add(text)
                    print(text, flush=True)
    print(f"check-tidy: {len(units)} units, {states.count('unchanged')} of them unchanged since they were clean; "
          f"{len(said)} findings")
    return 1 if said or "failed" in states else 0


sys.exit(main())
