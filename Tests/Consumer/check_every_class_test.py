#!/usr/bin/env python3
"""Checks that check_every_class.py reports each declaration that the consumer in a small source tree does not use."""
import subprocess
import sys
import tempfile
from pathlib import Path

SCRIPT = Path(__file__).resolve().parent / "check_every_class.py"

TREE = {
    "API/Inc/ORLFile.h": """
        // class Comment {};
        namespace ORL {
        class Later;
        class ORL_API File : public Base
        {
        public:
            struct Times { int mFirst; };
        };
        namespace Internal { struct Hidden {}; }
        template <class T> class Holder {};
        } // namespace ORL
        """,
    "API/Inc/ORLPaths.h": "namespace ORL { ORL_API bool Exists(const File& inFile);\nORL_API void Make(); }\n",
    "API/Inc/ORLSizes.h": "namespace ORL { ORL_CONSTANT int kSmall = 1;\ninline constexpr int kLarge = 2; }\n",
    "API/Inc/ORLSwitches.h": "#define ORL_SWITCH 1\n",
    "tvxcore/Inc/tvxcore/Text.h": "struct TVXCORE_API Text\n{\n};\n",
    "Tests/Consumer/EveryClass/Touch.cpp": "File Times Holder Exists kLarge Text // Comment\n",
}

# The name that is removed from the consumer, and the expected message.
MISSING = [
    ("File", "API/Inc/ORLFile.h: the class File is not touched"),
    ("Times", "API/Inc/ORLFile.h: the class Times is not touched"),
    ("Holder", "API/Inc/ORLFile.h: the class Holder is not touched"),
    ("Exists", "API/Inc/ORLPaths.h: nothing of it is touched"),
    ("kLarge", "API/Inc/ORLSizes.h: nothing of it is touched"),
    ("Text", "tvxcore/Inc/tvxcore/Text.h: the class Text is not touched"),
]


def run(tree):
    with tempfile.TemporaryDirectory() as root:
        for name, text in tree.items():
            path = Path(root) / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text, encoding="utf-8")
        return subprocess.run([sys.executable, SCRIPT, root], text=True, capture_output=True)


def main():
    failures = 0
    whole = run(TREE)
    if whole.returncode != 0 or "4 classes in 5 headers, 0 missing" not in whole.stdout:
        failures += 1
        print(f"the whole tree: {whole.stdout}{whole.stderr}")
    consumer = "Tests/Consumer/EveryClass/Touch.cpp"
    for word, expected in MISSING:
        said = run({**TREE, consumer: TREE[consumer].replace(word + " ", "// " + word + "\n", 1)})
        if said.returncode != 1 or expected not in said.stdout or "1 missing" not in said.stdout:
            failures += 1
            print(f"without {word}: {said.stdout}{said.stderr}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
