"""The windows on a Wayland desktop: the same jobs as on an X server, by real clicks and keys, and what
is different there."""

import os
import signal
import time
import unittest

import CompanionRoadTest
import KeyAssignTest
import MacroRecordingTest
import MainWindowTest
from wayland_test import OnSway, OnWayland
from window_test import BINARIES, DEMO, DESKTOP_SIZE, FRAMES, MAIN_SIZE, PANEL, crop, wait_until
from wayland_session import WaylandSession

# The compositor's own shortcut. `kill` asks the window to close.
ALT_F4_CLOSES = "bindsym Mod1+F4 kill"
A, B = 0, 11
PRESS, RELEASE = 0, 1


class MainJob(OnWayland, MainWindowTest.MainJob):
    pass


class Road(OnSway, CompanionRoadTest.Road):
    def standApart(self):
        self.desktop.place(self.window, 0, 0)
        self.desktop.activate(self.window)


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


class Windows(OnWayland):
    """Which window has the keyboard, and what closes."""

    # Otherwise sway only marks a window that a program wants in front.
    bindings = "focus_on_window_activation smart"
    # A place of the main window that no child window covers, once those are moved away.
    CORNER = (12, 300)
    ASIDE = (600, 100)

    def setUp(self):
        super().setUp()
        self.waitForRed("profile1Btn")

    def testAreKnownByTheNameOfTheDesktopEntry(self):
        self.assertEqual(self.desktop.applicationId(self.window), "com.corvex." + DEMO)

    def testAListClosesOnAClickBesideIt(self):
        self.click("profileNewBtn")
        self.waitForRed("applyBtn")
        isGone = self.openList(self.window, FRAMES["MainView"]["currProfileBtn"])
        self.desktop.click(self.window, *self.CORNER)
        wait_until(isGone, 30, "the list to go")
        self.click("battleModeBtn")
        self.dialog()

    def assertKeepsTheKeyboard(self, child):
        """The window below can be clicked, and the keys still go to the child."""
        self.desktop.place(child, *self.ASIDE)
        self.desktop.rest()
        self.desktop.click(self.window, *self.CORNER)
        self.desktop.command("[con_id=%d] focus" % self.window)
        wait_until(lambda: self.desktop.activeWindow() == child, 30, "the keyboard to come back")
        self.desktop.key("Escape")
        self.waitForNoOther()

    def testAChildWindowKeepsTheKeyboard(self):
        self.click("MacroSettingBtn")
        self.assertKeepsTheKeyboard(self.desktop.window("Macro editor"))

    def testAboutKeepsTheKeyboard(self):
        self.openList(self.window, FRAMES["MainView"]["menuBtn"])
        self.desktop.key("Down", "Return")
        self.assertKeepsTheKeyboard(self.desktop.window("About NerinOption"))

    def testAFilePanelKeepsTheKeyboard(self):
        self.click("profileImportBtn")
        self.assertKeepsTheKeyboard(self.desktop.window("Open"))


class Panel(OnWayland):
    def standApart(self):
        self.panelAtStart = self.desktop.picture(self.panel)
        super().standApart()

    def testIsNotBehindTheWindow(self):
        wait_until(lambda: self.desktop.picture(self.panel) == self.panelAtStart, 30,
                   "the panel as it was at the start")


class Pictures(OnWayland):
    """What the compositor shows."""

    RED = (0xE5, 0x26, 0x2F)
    APPLY_SECONDS = 30

    def testTheLineOfAnApplyGrows(self):
        self.waitForRed("profile1Btn")
        self.click("profileNewBtn")
        self.waitForRed("applyBtn")
        self.click("applyBtn")
        lengths = set()
        end = time.monotonic() + self.APPLY_SECONDS
        # The program is held for each look, so that it cannot be done before it is seen.
        while not self.received() and time.monotonic() < end:
            os.kill(self.program.pid, signal.SIGSTOP)
            try:
                lengths.add(self.lengthOfLine())
            finally:
                os.kill(self.program.pid, signal.SIGCONT)
            time.sleep(0.01)
        self.assertTold(("101", None))
        self.assertGreaterEqual(len(lengths - {0}), 3, lengths)
        wait_until(lambda: self.lengthOfLine() == 0, 30, "the line to go")

    def testAWindowIsSharpOnTheScreenThatItIsMovedTo(self):
        self.waitForRed("profile1Btn")
        with WaylandSession(os.path.join(self.folder, "sharp"), MAIN_SIZE, scale=2) as sharp:
            sharp.start(os.path.join(BINARIES, DEMO))
            window = sharp.window(DEMO, size=MAIN_SIZE)
            sharp.window(PANEL)
            sharp.place(window, 0, 0)
            sharp.activate(window)
            self.desktop.addScreen(2)
            self.desktop.place(self.window, DESKTOP_SIZE[0], 0)
            wait_until(lambda: self.mapOfButtons(self.desktop, self.window) ==
                       self.mapOfButtons(sharp, window), 30, "the picture that is drawn for 2x")

    @staticmethod
    def mapOfButtons(desktop, window):
        """The map of the buttons in pixels of the screen, where no pointer rests."""
        return crop(desktop.picture(window), (0, 272, 1472, 912))

    def lengthOfLine(self):
        x, y, width, height = FRAMES["MainView"]["progressBar"]
        line = crop(self.desktop.picture(self.window), (x, y + height // 2, width, 1)).rgb
        return sum(tuple(line[i:i + 3]) == self.RED for i in range(0, len(line), 3))


if __name__ == "__main__":
    unittest.main()
