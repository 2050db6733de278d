"""The check of the includes accepts the tree as it is, and refuses what would make a circle."""

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

TREE = os.path.abspath(sys.argv.pop(1))
LAYERS = ("Action", "App", "CommandLine", "Kit", "MacroPlayer", "View", "VirtualMouse")


class CheckIncludes(unittest.TestCase):
    def setUp(self):
        self.tree = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.tree)
        for layer in LAYERS:
            shutil.copytree(os.path.join(TREE, layer), os.path.join(self.tree, layer))

    def check(self):
        script = os.path.join(TREE, "Packaging", "check-includes.sh")
        return subprocess.run([script, self.tree], stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, check=False, encoding="utf-8")

    def append(self, path, line):
        with open(os.path.join(self.tree, path), "a", encoding="utf-8") as file:
            file.write(line + "\n")

    def assertRefused(self, path, line, reason):
        self.append(path, line)
        result = self.check()
        self.assertEqual(result.returncode, 1, result.stdout)
        self.assertIn(path, result.stdout)
        self.assertIn(reason, result.stdout)

    def testTheTreeIsAccepted(self):
        result = self.check()
        self.assertEqual(result.returncode, 0, result.stdout)

    def testALayerMayNotIncludeFromAbove(self):
        self.assertRefused("Action/Edit/SlotOperations.cpp", '#include "View/Main/MainView.h"',
                           "Action may include only")

    def testTheCodecAndThePlayerDoNotKnowEachOther(self):
        self.assertRefused("Action/Wire/MacroImage.cpp", '#include "MacroPlayer/MacroPlayback.h"',
                           "Action may include only")
        self.assertRefused("MacroPlayer/MacroPlayback.cpp", '#include "Action/Wire/KeyCodes.h"',
                           "MacroPlayer may include only")

    def testAFolderOfActionMayNotIncludeFromAbove(self):
        self.assertRefused("Action/Wire/KeyCodes.cpp",
                           '#include "Action/Catalogue/FunctionCatalogue.h"',
                           "Action/Wire may include only these folders of Action: Record Wire")

    def testAFolderMayNotIncludeEverythingAtOnce(self):
        self.assertRefused("Action/Device/DeviceLink.cpp", '#include "Action/NerinAction.h"',
                           "Action/Device may include only")

    def testAFolderOfViewMayNotIncludeFromAbove(self):
        self.assertRefused("View/Windows/ChildView.h", '#include "View/Dpi/LevelView.h"',
                           "View/Windows may include only these folders of View: Screen Windows")

    def testAFolderNeedsAPlaceInTheLadder(self):
        os.mkdir(os.path.join(self.tree, "View", "Attic"))
        self.append("View/Attic/Box.h", '#include "View/Main/MainView.h"')
        result = self.check()
        self.assertEqual(result.returncode, 1, result.stdout)
        self.assertIn("View has folders without a place", result.stdout)

    def testALayerWithoutQtMayNotUseIt(self):
        self.assertRefused("Action/Record/Records.h", "#include <QString>", "must not use Qt")

    def testAMutableGlobalNeedsAnOwner(self):
        self.assertRefused("Action/Record/Records.h", "inline int counter = 0;", "ProcessWide")


if __name__ == "__main__":
    unittest.main()
