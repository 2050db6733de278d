"""What the tests through the accessibility tree share: the tree of the demonstration's accessible
objects, and a test case with the program on a private desktop.

A test file that uses it is called as FILE.py BUILD [unittest options], where BUILD is the folder
that holds bin and generated.
"""

import json
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

top = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(top, "Tools"))

from desktop_session import DesktopSession, frames, wait_until  # noqa: E402
from saved_profiles import linkedPrograms  # noqa: E402

BUILD = os.path.abspath(sys.argv.pop(1) if len(sys.argv) > 1 else "build/dev")
TITLE = "NerinOptionDemo"
# Leaves room beside the window for the demonstration's panel.
DESKTOP_SIZE = (1800, 900)
ANSWER_SECONDS = 20


class Tree:
    """The accessible objects of the program. Every call reads them again."""

    def __init__(self):
        # The module looks for its bus when it is loaded.
        import pyatspi
        self.api = pyatspi
        self._application = wait_until(self._find, ANSWER_SECONDS, "the program in the tree")
        self._application.setCacheMask(pyatspi.cache.NONE)

    def _find(self):
        desktop = self.api.Registry.getDesktop(0)
        return next((one for one in desktop if one is not None and one.name == TITLE), None)

    def windows(self):
        return [one for one in self._application if one is not None and self.has(one, "SHOWING")]

    def window(self, name):
        def look():
            return next((one for one in self.windows() if one.name == name), None)

        return wait_until(look, ANSWER_SECONDS, "the window \"%s\"" % name)

    def below(self, accessible):
        for child in accessible:
            if child is not None:
                yield child
                yield from self.below(child)

    def has(self, accessible, state):
        return accessible.getState().contains(getattr(self.api, "STATE_" + state))

    def place(self, accessible):
        box = accessible.queryComponent().getExtents(self.api.DESKTOP_COORDS)
        return box.x, box.y, box.width, box.height

    def shown(self, window):
        return [one for one in self.below(window) if self.has(one, "SHOWING")]

    def named(self, window, name, role=None):
        """The visible control of this name, as soon as there is one."""
        def look():
            return next((one for one in self.shown(window) if one.name == name and
                         role in (None, one.getRoleName())), None)

        return wait_until(look, ANSWER_SECONDS, "the control \"%s\"" % name)

    def press(self, accessible):
        """Performs the main action of a control, which is its first."""
        if not self.has(accessible, "SENSITIVE"):
            raise AssertionError("\"%s\" cannot be pressed" % accessible.name)
        if not accessible.queryAction().doAction(0):
            raise AssertionError("\"%s\" did not take its action" % accessible.name)


class AccessibleTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.mkdtemp(prefix="accessibility-")
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        # A process can read only one tree, so the tests share the desktop.
        cls.desktop = cls.enterClassContext(
            DesktopSession(cls.folder, DESKTOP_SIZE, accessibility=True))
        os.environ.update(cls.desktop.environment)
        cls.screens = frames(os.path.join(BUILD, "generated", "ArtworkFrames.h"))

    def setUp(self):
        for folder in (self.support, self.desktop.state("com.corvex.NerinOptionDemo")):
            shutil.rmtree(folder, ignore_errors=True)
        Path(self.desktop.preferences("com.corvex.NerinOptionDemo")).unlink(missing_ok=True)
        self.process = self.desktop.start(os.path.join(BUILD, "bin", "NerinOptionDemo"),
                                          QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        self.addCleanup(self.desktop.stop, self.process)
        self.desktop.window(TITLE)
        self.tree = Tree()
        self.main = self.tree.window(TITLE)
        # The name appears once the slot has been read.
        self.tree.named(self.main, "Left button: Left Click")

    # What the mouse and the library hold --------------------------------------------------------

    @property
    def support(self):
        return self.desktop.support("com.corvex.NerinOptionDemo")

    def mouse(self, *arguments):
        """The answer of nerinctl on a copy of the memory, which the program has locked."""
        memory = os.path.join(self.folder, "mouse")
        shutil.copyfile(os.path.join(self.support, "mouse"), memory)
        answer = subprocess.run(
            [os.path.join(BUILD, "bin", "nerinctl"), "--virtual", memory, "--json", *arguments],
            env={**self.desktop.environment, "HOME": self.folder}, capture_output=True, text=True,
            check=True)
        return json.loads(answer.stdout)

    def slot(self, number):
        return self.mouse("read", "--slot", str(number))

    def activeSlot(self):
        return next(one["slot"] for one in self.mouse("slots") if one["active"])

    def library(self):
        """{name of a saved profile: the program that it is linked to, or None}."""
        return linkedPrograms(self.support)

    def press(self, name, window=None):
        self.tree.press(self.tree.named(window or self.main, name))
