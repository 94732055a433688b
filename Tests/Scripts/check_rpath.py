#!/usr/bin/env python3
"""Checks the search paths of every program and shared library below a folder: check_rpath.py FOLDER

The loader resolves an empty or relative entry of RPATH or RUNPATH against the current folder, where any user may have
put a library. Exit code 1 if there is such an entry, or if the folder has fewer than 8 programs and libraries.
"""
import os
import re
import subprocess
import sys

ET_EXEC, ET_DYN = 2, 3
ENTRIES = re.compile(r"\((?:RPATH|RUNPATH)\).*\[(.*)\]")


def is_loaded(path):
    """Returns whether the file is an ELF program or shared library."""
    with open(path, "rb") as file:
        header = file.read(18)
    return header[:4] == b"\x7fELF" and int.from_bytes(header[16:18], "little") in (ET_EXEC, ET_DYN)


def loaded_files(folder):
    for root, _, names in os.walk(folder):
        for name in names:
            path = os.path.join(root, name)
            try:
                if not os.path.islink(path) and is_loaded(path):
                    yield path
            except FileNotFoundError:
                pass  # a different test deleted its file


def is_safe(entry):
    return entry.startswith("/") or entry == "$ORIGIN" or entry.startswith("$ORIGIN/")


def faults(path):
    tags = subprocess.run(["readelf", "-d", "-W", path], text=True, capture_output=True).stdout
    for match in ENTRIES.finditer(tags):
        for entry in match[1].split(":"):
            if not is_safe(entry):
                yield match[1]
                break


def main():
    count = 0
    bad = 0
    for path in loaded_files(sys.argv[1]):
        count += 1
        for entries in faults(path):
            bad += 1
            print(f"{path}: the loader searches the current folder: [{entries}]")
    print(f"{count} programs and libraries, {bad} with an entry that is not absolute")
    return 1 if bad or count < 8 else 0


if __name__ == "__main__":
    sys.exit(main())
