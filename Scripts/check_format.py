#!/usr/bin/env python3
"""Checks that every C++ file of the tree has the style of .clang-format. check_format.py [--write] [ROOT]

Each version of clang-format formats differently, so only one version is used. --write formats the files instead.
Prints each file that differs; exit code 1 if any file differs.
"""
import subprocess
import sys
from pathlib import Path

TOOL = "clang-format-14"
FOLDERS = ("API", "Bench", "CRV", "Examples", "Fuzz", "Inc", "Scripts", "Src", "Tests", "Tools", "tvxcore", "tvxmediatypes")


def sources(root):
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix in (".h", ".cpp") and "Corpus" not in path.parts:
                yield path


def formatted(path):
    return subprocess.run([TOOL, str(path)], capture_output=True, check=True).stdout


def main():
    arguments = [argument for argument in sys.argv[1:] if argument != "--write"]
    root = Path(arguments[0] if arguments else Path(__file__).parent.parent).resolve()
    faults = 0
    for path in sources(root):
        text = formatted(path)
        if text == path.read_bytes():
            continue
        if "--write" in sys.argv:
            path.write_bytes(text)
        else:
            print(f"{path.relative_to(root)}: not formatted (Scripts/check_format.py --write does it)")
            faults += 1
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
