"""The windows on a Wayland desktop: the same jobs as on an X server, by real clicks and keys, and what
is different there."""

import unittest

import KeyAssignTest
import MacroRecordingTest
import MainWindowTest
from wayland_test import OnWayland
from window_test import wait_until

# The compositor's own shortcut. `kill` asks the window to close.
ALT_F4_CLOSES = "bindsym Mod1+F4 kill"
A, B = 0, 11
PRESS, RELEASE = 0, 1


class MainJob(OnWayland, MainWindowTest.MainJob):
    pass


class RecordedMacro(OnWayland, KeyAssignTest.RecordedMacro):
    pass


class RecordedClicks(OnWayland, MacroRecordingTest.RecordedClicks):
    pass


class RecordedKeys(OnWayland, MacroRecordingTest.RecordedKeys):
    """Alt+F4 is recorded, because the compositor gives up its shortcuts meanwhile."""

    bindings = ALT_F4_CLOSES
    SHIFT_KEYS = "Shift_L", "Shift_R"


class Capture(OnWayland, KeyAssignTest.AssignedFunction):
    bindings = ALT_F4_CLOSES


class Focus(OnWayland, MacroRecordingTest.RecordingTest):
    """A recording whose window loses the keyboard, or is closed."""

    def testAKeyThatIsHeldIsLetGoInTheMacro(self):
        self.desktop.strike("+a", 0.2)
        self.desktop.activate(self.panel)
        self.desktop.strike("-a")
        self.desktop.activate(self.editor.id)
        rows, pauses = self.finish()
        self.assertEqual(rows, [(A, PRESS), (A, RELEASE)])
        self.assertTrue(195 <= pauses[0] < 30000, pauses)
        self.quit()

    def testACloseStopsAndKeeps(self):
        self.desktop.strike("+a", 0.05, "-a", 0.05, "+b", 0.05)
        state = self.editor.picture("recordStateTxt")
        self.desktop.close(self.editor.id)
        wait_until(lambda: self.editor.picture("recordStateTxt") != state, 30,
                   "the recording to end")
        self.desktop.strike("-b")
        self.editor.click("okBtn")
        self.waitForNoOther()
        self.assertEqual([event[:2] for event in self.macros()["NewMacro_1"]],
                         [(A, PRESS), (A, RELEASE), (B, PRESS), (B, RELEASE)])
        self.quit()


if __name__ == "__main__":
    unittest.main()
