#!/usr/bin/env python3
"""Lets clang check that every guarded variable is accessed under its lock: check_thread_safety.py BUILD [ROOT]

Checks those sources of the libraries that mention a lock, with the include folders and macros of
BUILD/compile_commands.json. Prints clang's warnings; exit code 1 if there is a warning, or if nothing was checked.
"""
import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

FOLDERS = ("Src", "tvxcore/Src")
MENTIONS_A_LOCK = re.compile(r"Lock|Mutex|Guard|TVXCORE_")
WARNINGS = ["-Wno-everything", "-Wthread-safety", "-Wthread-safety-reference"]


def search_flags(command):
    """Returns the include, macro and language-standard flags of a compile command."""
    words = iter(shlex.split(command))
    flags = []
    for word in words:
        if word.startswith(("-I", "-D", "-std")):
            flags.append(word)
        elif word in ("-isystem", "-include"):
            flags += [word, next(words)]
    return flags


def sources(build, root):
    """Returns a clang command for each source to check, by path."""
    commands = {}
    for entry in json.loads((build / "compile_commands.json").read_text(encoding="utf-8")):
        path = Path(entry["directory"], entry["file"]).resolve()
        is_ours = any((root / folder) in path.parents for folder in FOLDERS)
        if is_ours and MENTIONS_A_LOCK.search(path.read_text(encoding="utf-8")):
            commands[path] = (["clang++", "-fsyntax-only", *WARNINGS, *search_flags(entry["command"]), str(path)],
                              entry["directory"])
    return commands


def warnings_of(command, folder):
    run = subprocess.run(command, cwd=folder, capture_output=True, text=True, check=False)
    return run.stderr if run.returncode or run.stderr else ""


def main():
    build = Path(sys.argv[1]).resolve()
    root = Path(sys.argv[2] if len(sys.argv) > 2 else Path(__file__).parent.parent).resolve()
    commands = sources(build, root)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        found = [text for text in pool.map(lambda item: warnings_of(*item), commands.values()) if text]
    print("".join(found), end="")
    return 1 if found or not commands else 0


sys.exit(main())
