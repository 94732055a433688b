#!/usr/bin/env python3
"""Checks that check_thread_safety.py finds the one fault in each source: thread_safety_test.py SCRIPT INCLUDE_FOLDER..."""
import json
import subprocess
import sys
import tempfile
from pathlib import Path

START = """#include <ORLCriticalSection.h>
struct Counter
{
    ORL::CriticalSection mLock;
    int mCount TVXCORE_GUARDED_BY(mLock) = 0;
    void CountLocked() TVXCORE_REQUIRES(mLock) { ++mCount; }
    void Count()
    {
        %s
    }
};
"""

# The body of Count, and the expected warning; the warning is empty if the body is correct.
CASES = [
    ("const ORL::CriticalSectionLock lock(mLock); CountLocked();", ""),
    ("mLock.Lock(); ++mCount; mLock.Unlock();", ""),
    ("++mCount;", "writing variable 'mCount' requires holding mutex 'mLock'"),
    ("CountLocked();", "calling function 'CountLocked' requires holding mutex 'mLock'"),
    ("mLock.Lock(); ++mCount;", "mutex 'mLock' is still held at the end of function"),
    ("mLock.Unlock();", "releasing mutex 'mLock' that was not held"),
    ("{ const ORL::CriticalSectionLock lock(mLock); } ++mCount;", "writing variable 'mCount' requires holding"),
]


def said(script, includes, body):
    with tempfile.TemporaryDirectory() as folder:
        root = Path(folder)
        (root / "Src").mkdir()
        (root / "Src/Counter.cpp").write_text(START % body, encoding="utf-8")
        flags = " ".join(f"-I{include}" for include in includes)
        entry = {"directory": folder, "file": "Src/Counter.cpp", "command": f"c++ -std=c++17 {flags} -c x.cpp"}
        (root / "compile_commands.json").write_text(json.dumps([entry]), encoding="utf-8")
        run = subprocess.run([sys.executable, script, folder, folder], capture_output=True, text=True, check=False)
        return run.returncode, run.stdout + run.stderr


def main():
    script, *includes = sys.argv[1:]
    wrong = []
    for body, expected in CASES:
        status, text = said(script, includes, body)
        if status != (1 if expected else 0) or expected not in text or bool(text) != bool(expected):
            wrong.append(f"{body}: {status} {text}")
    with tempfile.TemporaryDirectory() as folder:
        Path(folder, "compile_commands.json").write_text("[]", encoding="utf-8")
        if subprocess.run([sys.executable, script, folder, folder], check=False).returncode != 1:
            wrong.append("a check of no source passes")
    print("\n".join(wrong))
    return 1 if wrong else 0


sys.exit(main())
