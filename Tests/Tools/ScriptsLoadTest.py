"""Every script finds what it imports, also one that no other test runs, like a benchmark."""

import importlib.machinery
import importlib.util
import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))
sys.dont_write_bytecode = True


def scripts():
    for folder in ("Benchmarks", "Tools"):
        for name in sorted(os.listdir(os.path.join(ROOT, folder))):
            path = os.path.join(ROOT, folder, name)
            if os.path.isfile(path) and (name.endswith(".py") or "." not in name):
                with open(path, encoding="utf-8") as file:
                    if name.endswith(".py") or "python3" in file.readline():
                        yield path


class ScriptsLoadTest(unittest.TestCase):
    def test_everyScriptLoads(self):
        before = list(sys.path)
        for path in scripts():
            with self.subTest(script=os.path.relpath(path, ROOT)):
                # As Python does for a program that it runs.
                sys.path[:] = [os.path.dirname(path), *before]
                # Not "__main__": a script does nothing but define its names.
                loader = importlib.machinery.SourceFileLoader("loaded", path)
                spec = importlib.util.spec_from_loader("loaded", loader)
                loader.exec_module(importlib.util.module_from_spec(spec))

    def test_theScriptsAreFound(self):
        names = {os.path.basename(path) for path in scripts()}
        self.assertLessEqual({"companion", "peers", "recording", "startup", "tour.py"}, names)


if __name__ == "__main__":
    unittest.main()
