#!/usr/bin/env python3
"""Checks check_floors.py on a small tree with one wrong include at a time: floors_test.py SCRIPT"""
import subprocess
import sys
import tempfile
from pathlib import Path

HOUSE = {
    "API/Inc/ORLFoundation.h": "// Floor: Foundation\n#include <ORLLock.h>\n#include <ORLFile.h>\n",
    "API/Inc/ORLLock.h": "// Floor: Core\n",
    "API/Inc/ORLFile.h": "// Floor: Files\n",
    "Inc/Platform/Pages.h": "// Floor: Platform\n",
    "Inc/Platform/Files.h": "// Floor: Platform\n",
    "Src/Memory/Pages.cpp": "#include <Platform/Pages.h>\n",
    "Src/Files/File.cpp": "#include <ORLFile.h>\n#include <Platform/Files.h>\n#include <Platform/Pages.h>\n",
    "Src/Files/FileParts.h": "#include <ORLLock.h>\n",
    "Src/Linux/LinuxPages.cpp": "#include <Platform/Pages.h>\n#include <ORLLock.h>\n",
    "Src/Linux/LinuxFile.h": "#include <Platform/Files.h>\n",
    "Src/Linux/LinuxFile.cpp": '#include "LinuxFile.h"\n#include <ORLFile.h>\n',
    "Src/Win/WinLock.cpp": "// Floor: Core\n#include <ORLLock.h>\n",
}

# A file, its new text, and the expected message.
FAULTS = [
    ("Src/Memory/Pages.cpp", "#include <ORLFile.h>\n", "floor Memory includes ORLFile.h of floor Files"),
    ("API/Inc/ORLLock.h", "// Floor: Core\n#include <ORLFile.h>\n", "floor Core includes ORLFile.h of floor Files"),
    ("Src/Linux/LinuxPages.cpp", "#include <Platform/Pages.h>\n#include <ORLFile.h>\n",
     "floor Memory includes ORLFile.h of floor Files"),
    ("Src/Win/WinLock.cpp", "// Floor: Core\n#include <ORLFile.h>\n", "floor Core includes ORLFile.h of floor Files"),
    ("Src/Win/WinLock.cpp", '#include "../Files/FileParts.h"\n',
     "floor Platform includes ../Files/FileParts.h of floor Files"),
    ("Src/Memory/Pages.cpp", '#include "../Files/FileParts.h"\n',
     "floor Memory includes ../Files/FileParts.h of floor Files"),
    ("Src/Files/File.cpp", '#include <Platform/Files.h>\n#include "../Linux/LinuxFile.h"\n',
     "a header of a platform folder, ../Linux/LinuxFile.h"),
]


def said(script, house):
    with tempfile.TemporaryDirectory() as root:
        for name, text in house.items():
            path = Path(root, name)
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        run = subprocess.run([sys.executable, script, root], capture_output=True, text=True, check=False)
        return run.returncode, run.stdout + run.stderr


def main():
    wrong = []
    status, text = said(sys.argv[1], HOUSE)
    if status != 0 or text:
        wrong.append(f"the house without a fault: {status} {text}")
    for name, contents, expected in FAULTS:
        status, text = said(sys.argv[1], {**HOUSE, name: contents})
        if status != 1 or text.count("\n") != 1 or not text.startswith(name) or expected not in text:
            wrong.append(f"{name} with {contents!r}: {status} {text!r}")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
