#!/usr/bin/env python3
"""Checks that Scripts/docs reports declarations without a comment and links to missing pages: docs_test.py SCRIPT

Plants each mistake in a small tree and checks that the report names it; without mistakes there is no warning.
"""
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(sys.argv.pop(1)).resolve()

HEADER = """// Floor: Files
// A lamp.
//
//   ORL::Lamp lamp;
//   lamp.Switch(true);
#pragma once

namespace ORL {

/// A lamp, with one switch.
///
/// Owner:    the caller.
class Lamp
{
public:
    Lamp();
    ~Lamp();
    Lamp(const Lamp&) = delete;

    /// Switches it on or off. Windows paths such as \\\\server\\share and <angles> are text.
    void Switch(bool inOn);
    void Dim(int inPercent);

    bool IsOn() const; ///< returns whether it is on

@PLANTED@
private:
    bool mIsOn;
};

/// Returns the lamp of the process.
Lamp& TheLamp();

} // namespace ORL
"""


class Docs(unittest.TestCase):
    def run_with(self, planted="", readme="# Lamps\n\nSee [the guide](Docs/guide.md).\n"):
        with tempfile.TemporaryDirectory() as folder:
            tree = Path(folder) / "tree"
            files = {"API/Inc/ORLLamp.h": HEADER.replace("@PLANTED@", planted), "README.md": readme,
                     "CHANGELOG.md": "# Changes\n", "Docs/guide.md": "# Guide\n\n`Lamp::Switch` switches.\n",
                     "CMakeLists.txt": "project(ORLFoundation VERSION 7.8.9)\n"}
            for folder_name in ("tvxcore/Inc", "tvxmediatypes/Inc", "CRV/Inc"):
                files[folder_name + "/" + folder_name.split("/")[0] + "Empty.h"] = "// Nothing yet.\n#pragma once\n"
            for name, text in files.items():
                path = tree / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text, encoding="utf-8")
            output = Path(folder) / "out"
            done = subprocess.run([sys.executable, SCRIPT, "--source", tree, "--output", output], text=True,
                                  capture_output=True)
            pages = {page.name: page.read_text(encoding="utf-8") for page in (output / "html").glob("*.html")}
            return done.returncode, done.stdout + done.stderr, pages

    def test_a_documented_tree_has_no_warning_and_a_start_page_with_guides_and_search(self):
        status, report, pages = self.run_with()
        self.assertEqual(0, status, report)
        self.assertIn("Lamps", pages["index.html"])
        self.assertIn("7.8.9", pages["index.html"])
        self.assertIn("search", pages["index.html"])
        self.assertTrue(any("Guide" in text for name, text in pages.items() if name.startswith("md_")), pages.keys())
        lamp = pages["classORL_1_1Lamp.html"]
        self.assertIn("A lamp, with one switch.", lamp)
        self.assertIn("\\\\server\\share and &lt;angles&gt; are text", lamp)
        self.assertIn("returns whether it is on", lamp)

    def test_one_comment_holds_for_all_declarations_up_to_the_blank_line(self):
        _, _, pages = self.run_with()
        lamp = pages["classORL_1_1Lamp.html"]
        self.assertGreater(lamp.count("Switches it on or off."), lamp.count("returns whether it is on"))

    def test_an_example_is_code(self):
        _, _, pages = self.run_with()
        self.assertIn('class="fragment"', pages["ORLLamp_8h.html"])

    def test_an_undocumented_function_is_named(self):
        status, report, _ = self.run_with("    void Smash();\n")
        self.assertEqual(1, status)
        self.assertRegex(report, r"API/Inc/ORLLamp\.h:\d+: warning: Member Smash\(\)")

    def test_an_undocumented_variable_is_named(self):
        status, report, _ = self.run_with("    int mWatts;\n")
        self.assertEqual(1, status)
        self.assertIn("mWatts", report)

    def test_an_undocumented_class_is_named(self):
        status, report, _ = self.run_with("    struct Bulb\n    {\n        int mWatts; ///< power\n    };\n")
        self.assertEqual(1, status)
        self.assertIn("Bulb", report)

    def test_an_undocumented_function_below_a_comment_and_a_blank_line_is_named(self):
        status, report, _ = self.run_with("    /// Documented.\n    void First();\n\n    void Second();\n")
        self.assertEqual(1, status)
        self.assertIn("Second()", report)
        self.assertNotIn("First()", report)

    def test_a_link_to_a_missing_guide_is_named(self):
        status, report, _ = self.run_with(readme="# Lamps\n\nSee [the guide](Docs/missing.md).\n")
        self.assertEqual(1, status)
        self.assertIn("missing", report)


if __name__ == "__main__":
    unittest.main()
