#!/usr/bin/env python3
"""Finds public declarations that the consumer does not touch: check_every_class.py [ROOT]

Checks that Tests/Consumer/EveryClass names each class and structure and, for each header that declares only functions
or constants, at least one of these. Exits with code 1 if a name is missing.
"""
import re
import sys
from pathlib import Path

FOLDERS = ("API/Inc", "tvxcore/Inc", "tvxmediatypes/Inc", "CRV/Inc")
CONSUMER = "Tests/Consumer/EveryClass"
NOT_FOR_HOSTS = {"Internal", "SmallBlocks", "Sync", "Debug"}  # hosts use these namespaces only through aliases

TOKEN = re.compile(r"""
    (?P<namespace>\bnamespace\s+(?P<space>\w+)\s*\{)
  | (?P<class>\b(?:class|struct)\s+(?:[A-Z]+_API\s+|ORL_LOCAL\s+)?(?P<name>\w+)(?:<[^;{}()]*>)?(?:\s*:[^;{}()]*)?\s*\{)
  | (?P<open>\{)
  | (?P<close>\})
  | (?P<function>\b[A-Z]+_API\b[^;{}()=]*?(?P<call>\w+)\s*\()
  | (?P<constant>\b(?:ORL_CONSTANT|constexpr|extern)\b[^;{}()=]*?(?P<value>\w+)\s*[=;])
""", re.VERBOSE)


def without_comments(text):
    text = re.sub(r"/\*.*?\*/", " ", text, flags=re.DOTALL)
    text = re.sub(r"//[^\n]*", " ", text)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", " ", text, flags=re.MULTILINE)


def declared(text):
    """Returns the names of the classes, and of the functions and constants, that a header declares for hosts."""
    classes, others = [], []
    scopes = []
    for match in TOKEN.finditer(without_comments(text)):
        hidden = any(scope in NOT_FOR_HOSTS for scope in scopes)
        if match["namespace"]:
            scopes.append(match["space"])
        elif match["class"]:
            if not hidden:
                classes.append(match["name"])
            scopes.append("")
        elif match["open"]:
            scopes.append("")
        elif match["close"]:
            if scopes:
                scopes.pop()
        elif not hidden and (match["call"] or match["value"]):
            others.append(match["call"] or match["value"])
    return classes, others


def main():
    root = Path(sys.argv[1]).resolve() if len(sys.argv) > 1 else Path(__file__).resolve().parent.parent.parent
    consumer = "\n".join(without_comments(path.read_text(encoding="utf-8"))
                         for path in sorted((root / CONSUMER).iterdir()))
    words = set(re.findall(r"\w+", consumer))
    headers = [path for folder in FOLDERS for path in sorted((root / folder).rglob("*.h"))]
    missing = 0
    count = 0
    for header in headers:
        classes, others = declared(header.read_text(encoding="utf-8"))
        count += len(classes)
        for name in classes:
            if name not in words:
                missing += 1
                print(f"{header.relative_to(root)}: the class {name} is not touched in {CONSUMER}")
        if not classes and others and not words.intersection(others):
            missing += 1
            print(f"{header.relative_to(root)}: nothing of it is touched in {CONSUMER}, as {others[0]}")
    print(f"{count} classes in {len(headers)} headers, {missing} missing")
    return 1 if missing or not count else 0


if __name__ == "__main__":
    sys.exit(main())
