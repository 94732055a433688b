#!/usr/bin/env python3
"""Runs the GDB sessions of a document, or tries the views of an installation.

    check_session.py GDB HOST DOCUMENT VIEWS [--write]    compares each session with what GDB prints (--write: updates it)
    check_session.py GDB HOST --installed BUILD LIBRARY   installs into a new folder; GDB must load the views by itself

A session is a block marked "gdb". Its first line starts GDB, "(gdb) " begins a command, and the lines below are what GDB
prints. Addresses, identifiers of threads, line numbers and frames of the C library are not compared.
"""
import os
import re
import subprocess
import sys
import tempfile
from pathlib import Path

BLOCK = re.compile(r"^```gdb\n\$ gdb --args session_host (\w+)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
PROMPT = "(gdb) "
SETTINGS = ["set pagination off", "set confirm off", "set startup-with-shell off", "set disable-randomization off",
            "set debuginfod enabled off", "set width 0", "set style enabled off", "set filename-display basename"]
NOISE = re.compile(r"^(\[Thread debugging|Using host libthread_db|\[New Thread|warning: |\d+\t\S+\.[cS]: |"
                   r"(#\d+ +)?(0x[0-9a-f]+ in )?(__\w+|\?\?|raise|\w*futex\w*|syscall) \()")

# Runs inside GDB: prints each command after the prompt, then its output.
DRIVER = """
import gdb
for command in {commands!r}:
    print({prompt!r} + command, flush=True)
    try:
        print(gdb.execute(command, to_string=True), end="", flush=True)
    except gdb.error as error:
        print(error, flush=True)
"""


def run_gdb(gdb, host, argument, commands, early=(), environment=None):
    """Returns what GDB prints for each command."""
    with tempfile.NamedTemporaryFile("w", suffix=".py") as driver:
        driver.write(DRIVER.format(commands=list(commands), prompt=PROMPT))
        driver.flush()
        options = [part for setting in [*SETTINGS, *early] for part in ("-iex", setting)]
        done = subprocess.run([gdb, "-nx", "-q", "-batch", *options, "-x", driver.name, "--args", host, argument],
                              text=True, capture_output=True, timeout=100, env={**os.environ, **(environment or {})})
    lines = [line.rstrip() for line in done.stdout.splitlines() if not NOISE.match(line)]
    return [re.sub(r"(?<= at )\S*/", "", line) for line in lines if line], done.stderr


def comparable(lines):
    text = "\n".join(line for line in lines if not re.match(r"^\d+\t", line))
    for pattern, replacement in ((r"0x[0-9a-f]+", "0x"), (r"LWP \d+", "LWP"), (r"(\.(?:h|cpp)):\d+", r"\1"),
                                 (r"line \d+", "line"), (r"Hardware w", "W"), (r"process \d+", "process"), (r"(?m)^#\d+ +", "#")):
        text = re.sub(pattern, replacement, text)
    return text


def check_document(gdb, host, document, views, write):
    text = Path(document).read_text(encoding="utf-8")
    failures = 0

    def renewed(match):
        nonlocal failures
        shown = [line for line in match[2].splitlines() if line]
        commands = [line[len(PROMPT):] for line in shown if line.startswith(PROMPT)]
        printed, errors = run_gdb(gdb, host, match[1], commands, [f"source {views}"])
        if comparable(printed) != comparable(shown):
            failures += 1
            print(f"session_host {match[1]} prints:\n" + "\n".join(printed) + f"\n{errors}\nthe document shows:\n{match[2]}")
        return f"```gdb\n$ gdb --args session_host {match[1]}\n" + "\n".join(printed) + "\n```"

    updated = BLOCK.sub(renewed, text)
    count = len(BLOCK.findall(text))
    if write:
        Path(document).write_text(updated, encoding="utf-8")
    print(f"{count} sessions")
    return 1 if failures or count < 3 else 0


def check_installed(gdb, host, build, library):
    with tempfile.TemporaryDirectory() as folder:
        prefix, root = Path(folder).resolve() / "prefix", Path(folder).resolve() / "root"
        for component in ("runtime", "dev"):
            install = ["cmake", "--install", build, "--component", component]
            subprocess.run([*install, "--prefix", prefix], check=True, capture_output=True)
        subprocess.run([*install, "--prefix", "/usr"], check=True, capture_output=True,
                       env={**os.environ, "DESTDIR": str(root)})
        moved = prefix.with_name("moved")
        prefix.rename(moved)
        libraries = next(moved.rglob(library)).parent
        script = f"{Path(library).resolve().name if '.so.' in library else library}-gdb.py"
        commands = ["break Show", "run", "print inReel.mName"]
        lines, errors = run_gdb(gdb, host, "leak", commands, [f"add-auto-load-safe-path {moved}"],
                                {"LD_LIBRARY_PATH": str(libraries)})
        trusted = [path for path in (root / "usr/share/gdb/auto-load/usr").rglob("*-gdb.py")]
        beside = [path for path in (root / "usr/lib").rglob("*-gdb.py")]
    if lines[-1:] != ['$1 = "A001", 1 handle']:
        print(f"the installed views ({script}) are not loaded:\n" + "\n".join(lines) + "\n" + errors)
        return 1
    if [path.name for path in trusted] != [script] or beside:
        print(f"/usr has the views at {trusted} and {beside}")
        return 1
    return 0


def main():
    gdb, host, *rest = sys.argv[1:]
    if rest[0] == "--installed":
        return check_installed(gdb, host, *rest[1:])
    return check_document(gdb, host, *rest[:2], "--write" in rest)


if __name__ == "__main__":
    sys.exit(main())
