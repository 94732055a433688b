#!/usr/bin/env python3
"""Checks that check_floors.py reports each broken rule in a small source tree: floors_test.py SCRIPT"""
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
    "Inc/Memory/PageList.h": "",
    "Inc/Sync/Policy.h": "#include <ORLLock.h>\n",
    "Src/Threads/Gate.cpp": "#include <Sync/Policy.h>\n#include <Memory/PageList.h>\n",
    "tvxcore/Src/Text.cpp": '#include "Text.h"\n#include <tvxcore/String.h>\n',
    "tvxcore/Src/Text.h": "",
    "tvxcore/Inc/tvxcore/String.h": "",
    "CRV/Src/Report.cpp": "",
    "Tests/CMakeLists.txt": "foreach(room Core\n        Files)\n",
    "Tests/Core/LockTest.cpp": "",
    "Tests/Files/FileTest.cpp": "",
    "Tests/Files/Borders/BordersTest.cpp": "",
    "Tests/Files/Disks/DiskTest.cpp": "",
    "Tests/Files/room.cmake": "orl_test_folder(Disks)\nadd_executable(borders Files/Borders/BordersTest.cpp)\n",
}

# A file, its new contents, and the message that the script must print for it.
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
    ("Inc/Memory/PageList.h", "#include <ORLFile.h>\n", "floor Memory includes ORLFile.h of floor Files"),
    ("Inc/Sync/Policy.h", "#include <ORLFile.h>\n", "floor Threads includes ORLFile.h of floor Files"),
    ("Inc/Sundry/List.h", "", "its folder is no floor"),
    ("Inc/List.h", "", "its folder is no floor"),
    ("Src/Sundry/List.cpp", "", "its folder is no floor"),
    ("Src/List.cpp", "", "its folder is no floor"),
    ("API/Inc/ORLLock.h", "#pragma once\n", "the first line names no floor"),
    ("Src/Files/File.cpp", "#include <ORLFile.h>\n#include <Platform/Files.h>\n#include <unistd.h>\n",
     "system header unistd.h outside the platform folders"),
    ("Src/Files/FileParts.h", "#ifdef _WIN32\n#endif\n", "platform condition outside the platform folders"),
    ("tvxcore/Src/Text.h", "#include <ORLLock.h>\n", "tvxcore includes ORLLock.h of a higher library"),
    ("tvxcore/Src/Text.h", "#include <Memory/PageList.h>\n", "tvxcore includes Memory/PageList.h of a higher library"),
    ("tvxcore/Src/Text.h", '#include "../../API/Inc/ORLLock.h"\n',
     "tvxcore includes ../../API/Inc/ORLLock.h of a higher library"),
    ("CRV/Src/Report.cpp", '#include "../../Src/Files/FileParts.h"\n',
     "CRV includes ../../Src/Files/FileParts.h of a higher library"),
    ("Tests/Lost/LostTest.cpp", "", "no test program has it"),
    ("Tests/Core/Deeper/DeeperTest.cpp", "", "no test program has it"),
    ("Tests/Files/Deeper/DeeperTest.cpp", "", "no test program has it"),
    ("Tests/Files/Disks/Deeper/DeeperTest.cpp", "", "no test program has it"),
    ("Tools/orl/main.cpp", "#include <Memory/PageList.h>\n", "a host includes the private header Memory/PageList.h"),
    ("API/Inc/ORLLost.h", "// Floor: Core\n", "ORLFoundation.h does not bring it in"),
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
