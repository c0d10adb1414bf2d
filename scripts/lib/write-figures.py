#!/usr/bin/env python3
"""Puts the rows that the benchmarks wrote between the two marks of a page, with the machine that they were measured on."""

import datetime
import os
import pathlib
import platform
import re
import subprocess
import sys

BEGIN, END = "<!-- figures: written by bench.sh -->\n", "<!-- end of figures -->\n"


def machine():
    processor = re.search(r"^model name\s*:\s*(.+)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    system = re.search(r'^PRETTY_NAME="?([^"\n]+)', pathlib.Path("/etc/os-release").read_text(), re.M)
    compiler = subprocess.run(["g++", "-dumpfullversion"], capture_output=True, text=True, check=True).stdout.strip()
    commit = subprocess.run(["git", "describe", "--always", "--dirty", "--exclude=*"], capture_output=True, text=True, check=True)
    return (f"{datetime.date.today()}, commit {commit.stdout.strip()}: {os.cpu_count()} cores of "
            f"{processor[1] if processor else platform.machine()}, {system[1] if system else platform.system()}, gcc {compiler}, "
            f"-O3. The load of the last minute was {os.getloadavg()[0]:.1f} at the end.")


def main(table, page):
    rows = pathlib.Path(table).read_text()
    head = "| Program | Figure | Measured | Target | | |\n|---|---|---|---|---|---|\n"
    text = pathlib.Path(page).read_text()
    if BEGIN not in text or END not in text:
        sys.exit(f"write-figures: {page} has no place for the figures")
    before, after = text.split(BEGIN)[0], text.split(END)[1]
    pathlib.Path(page).write_text(f"{before}{BEGIN}\n{machine()}\n\n{head}{rows}\n{END}{after}")


main(*sys.argv[1:])
