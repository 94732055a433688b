#!/usr/bin/env python3
"""Checks the project's rules for includes, folders of tests and public headers.

Floors: includes run only downwards. A file below Src or Inc belongs to the floor of its folder, a header of API/Inc to
the floor that its first line names ("// Floor: Threads"). A file in a platform folder belongs to the floor that its first
line names, else to the highest floor whose seam headers it includes. A seam header belongs to the lowest floor whose
portable code includes it. A folder without a floor is an error.
Libraries: tvxcore, tvxmediatypes and CRV include nothing of ORLFoundation, neither by name nor by a relative path.
Tests: each folder with tests is in the list of test programs or named by the room.cmake of the folder above.
Seam: OS headers and platform conditions occur only in the platform folders and in export headers (*Config.h).
Tools and examples: they include only public headers.
Foundation: ORLFoundation.h includes every public header.
Prints one line for each error; exit code 1 if there is an error. check_floors.py [ROOT]
"""
import re
import sys
from pathlib import Path

ROOT = Path(sys.argv[1] if len(sys.argv) > 1 else Path(__file__).parent.parent).resolve()

# Higher floors may include lower ones. Media has the same rank as Threads and includes only Strings and below.
RANK = {"Platform": 0, "Core": 1, "Memory": 2, "Objects": 3, "Strings": 4, "Threads": 5, "Media": 5, "Files": 6,
        "System": 7, "Diagnostics": 8, "Foundation": 9}

# Folders of Inc whose name is not that of their floor.
FLOOR_OF_FOLDER = {"Images": "System", "Sync": "Threads", "Resources": "System"}
PLATFORM_FOLDERS = ("Linux", "Win")

OS_HEADER = re.compile(
    r"^(windows|winsock2?|ws2tcpip|shlobj|shlwapi|shellapi|objbase|winternl|psapi|tlhelp32|bcrypt|ntsecapi|process|io|"
    r"conio|direct|unistd|fcntl|pthread|sched|dlfcn|dirent|liburing|poll|termios|syslog|pwd|grp|ftw|"
    r"semaphore|signal|ucontext|execinfo|link|elf|spawn|wchar_t)\.h$|^(sys|linux|asm|bits|X11)/", re.IGNORECASE)
CONDITION = re.compile(r"^\s*#\s*(?:if|ifdef|ifndef|elif)\b.*\b(?:_WIN32|_WIN64|__linux__|__MINGW\w*|__unix__)\b")
INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')
FLOOR = re.compile(r"^// Floor: (\w+)\s*$")


def sources(*patterns):
    for pattern in patterns:
        for path in sorted(ROOT.glob(pattern)):
            if path.suffix in (".h", ".cpp"):
                yield path


def includes(path):
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1)


def is_platform_file(path):
    parts = path.relative_to(ROOT).parts
    return "Linux" in parts or "Win" in parts or re.search(r"(^|[a-z])(Linux|Win)[A-Z]?\w*\.(h|cpp)$", path.name) \
        or path.name.startswith(("Linux", "Win"))


def folder_floor(path, base):
    parts = path.relative_to(ROOT / base).parts
    floor = FLOOR_OF_FOLDER.get(parts[0], parts[0]) if len(parts) > 1 else None
    return floor if floor in RANK else None


def header_floors(faults):
    floors = {}
    for path in sources("API/Inc/**/*.h"):
        floors[path.relative_to(ROOT / "API/Inc").as_posix()] = named_floor(path)
        if named_floor(path) is None:
            faults.append(f"{path.relative_to(ROOT)}:1: the first line names no floor")
    for path in sources("Inc/**/*.h"):
        floors[path.relative_to(ROOT / "Inc").as_posix()] = folder_floor(path, "Inc")
        if folder_floor(path, "Inc") is None:
            faults.append(f"{path.relative_to(ROOT)}:1: its folder is no floor")
    return floors


def check_folders(faults):
    for path in sources("Src/**/*"):
        if not in_platform_folder(path) and folder_floor(path, "Src") is None:
            faults.append(f"{path.relative_to(ROOT)}:1: its folder is no floor")


def named_floor(path):
    lines = path.read_text(encoding="utf-8").splitlines()
    match = FLOOR.match(lines[0]) if lines else None
    return match.group(1) if match and match.group(1) in RANK else None


def local_header(path, name):
    """Returns the header in Src that a relative include refers to, or None."""
    target = (path.parent / name).resolve()
    return target if target.is_file() and ROOT / "Src" in target.parents else None


def in_platform_folder(path):
    parts = path.relative_to(ROOT).parts
    return parts[0] == "Src" and parts[1] in PLATFORM_FOLDERS


def floor_of(path, floors):
    base = path.relative_to(ROOT).parts[0]
    if base == "API":
        return floors.get(path.relative_to(ROOT / "API/Inc").as_posix())
    return folder_floor(path, base)


def may_include(upper, lower):
    if upper == lower:
        return True
    return RANK[lower] < RANK[upper]


def floor_sources():
    return sources("API/Inc/**/*.h", "Inc/**/*.h", "Src/**/*.cpp", "Src/**/*.h")


def seam_rooms(floors):
    """Returns, for each seam header, the lowest floor that includes it."""
    rooms = {}
    for path in floor_sources():
        floor = None if in_platform_folder(path) else floor_of(path, floors)
        if floor is None or floor == "Platform":
            continue
        for _, name in includes(path):
            if floors.get(name) == "Platform":
                rooms[name] = min(floor, rooms.get(name, floor), key=RANK.get)
    return rooms


def platform_floor(path, rooms):
    floor = named_floor(path)
    if floor is not None:
        return floor
    floor = "Platform"
    for _, name in includes(path):
        header = local_header(path, name)
        below = platform_floor(header, rooms) if header and header != path else rooms.get(name, "Platform")
        floor = max(floor, below, key=RANK.get)
    return floor


def check_floors(floors, faults):
    rooms = seam_rooms(floors)
    for path in floor_sources():
        is_platform = in_platform_folder(path)
        floor = platform_floor(path, rooms) if is_platform else floor_of(path, floors)
        if floor is None:
            continue
        for number, name in includes(path):
            header = local_header(path, name)
            if header and in_platform_folder(header):
                if not is_platform:
                    faults.append(f"{path.relative_to(ROOT)}:{number}: a header of a platform folder, {name}")
                continue
            lower = floor_of(header, floors) if header else floors.get(name)
            if lower is not None and not may_include(floor, lower):
                faults.append(f"{path.relative_to(ROOT)}:{number}: floor {floor} includes {name} of floor {lower}")


def check_seam(faults):
    for path in sources("API/**/*", "Inc/**/*", "Src/**/*", "tvxcore/**/*", "tvxmediatypes/**/*", "CRV/**/*",
                        "Tools/**/*", "Examples/**/*"):
        if is_platform_file(path) or path.name.endswith("Config.h"):
            continue
        for number, name in includes(path):
            if OS_HEADER.search(name):
                faults.append(f"{path.relative_to(ROOT)}:{number}: system header {name} outside the platform folders")
        for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
            if CONDITION.match(line):
                faults.append(f"{path.relative_to(ROOT)}:{number}: platform condition outside the platform folders")


def check_libraries(faults):
    ours = {path.relative_to(ROOT / base).as_posix() for base in ("API/Inc", "Inc") for path in sources(f"{base}/**/*.h")}
    for library in ("tvxcore", "tvxmediatypes", "CRV"):
        for path in sources(f"{library}/**/*"):
            for number, name in includes(path):
                beside = (path.parent / name).resolve()
                outside = beside.is_file() and ROOT / library not in beside.parents
                if name in ours and not beside.is_file() or outside:
                    faults.append(f"{path.relative_to(ROOT)}:{number}: {library} includes {name} of a higher library")


def check_tests(faults):
    list_file = ROOT / "Tests/CMakeLists.txt"
    text = list_file.read_text(encoding="utf-8") if list_file.is_file() else ""
    rooms = re.search(r"foreach\(room ([^)]*)\)", text)
    listed = set(rooms.group(1).split()) if rooms else set()
    for path in sources("Tests/**/*"):
        if not path.name.endswith("Test.cpp"):
            continue
        parts = path.relative_to(ROOT / "Tests").parts
        room_file = ROOT / "Tests" / parts[0] / "room.cmake"
        room_text = room_file.read_text(encoding="utf-8") if room_file.is_file() else ""
        in_folder = len(parts) == 3 and f"orl_test_folder({parts[1]})" in room_text
        in_room = parts[0] in listed and (len(parts) == 2 or in_folder)
        if not in_room and "/".join(parts) not in room_text:
            faults.append(f"{path.relative_to(ROOT)}:1: no test program has it")


def check_hosts(faults):
    private = {path.relative_to(ROOT / "Inc").as_posix() for path in sources("Inc/**/*.h")}
    for path in sources("Tools/**/*", "Examples/**/*"):
        for number, name in includes(path):
            if name in private:
                faults.append(f"{path.relative_to(ROOT)}:{number}: a host includes the private header {name}")


def check_roof(faults):
    public = {path.name: path for path in sources("API/Inc/*.h")}
    reached, waiting = set(), ["ORLFoundation.h"]
    while waiting:
        name = waiting.pop()
        if name in public and name not in reached:
            reached.add(name)
            waiting.extend(included for _, included in includes(public[name]))
    for name in sorted(set(public) - reached):
        faults.append(f"API/Inc/{name}:1: ORLFoundation.h does not bring it in")


def main():
    faults = []
    floors = header_floors(faults)
    check_folders(faults)
    check_floors(floors, faults)
    check_seam(faults)
    check_libraries(faults)
    check_tests(faults)
    check_hosts(faults)
    check_roof(faults)
    for fault in faults:
        print(fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
