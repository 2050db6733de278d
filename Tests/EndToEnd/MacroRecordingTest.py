"""Recording a macro from real keys and clicks, up to its entry in the library."""

import os
import unittest

from window_test import DEMO, DemoTest, middle, wait_until

# Virtual key codes. The mouse buttons have codes of their own.
A, B, C, ALT, F4, LEFT_SHIFT, RIGHT_SHIFT = 0, 11, 8, 58, 118, 56, 60
LEFT, RIGHT, MIDDLE = 120, 121, 122
PRESS, RELEASE, MOUSE_PRESS, MOUSE_RELEASE = 0, 1, 3, 4
# How much shorter a recorded pause may be: the display counts whole milliseconds.
TOLERANCE = 5
# Much longer than the delay after which the display repeats a key.
HELD_SECONDS = 2


class RecordingTest(DemoTest):
    def setUp(self):
        super().setUp()
        self.waitForRed("profile1Btn")
        self.editor = self.openMacroEditor()
        self.editor.click("newMacroBtn")
        self.startRecording(self.editor)

    def finish(self):
        """Saves the macro. Returns its (code, flag) pairs and its pauses from the library."""
        self.stopRecording(self.editor)
        self.editor.click("okBtn")
        self.waitForNoOther()
        self.assertEqual(list(self.macros()), ["NewMacro_1"])
        kept = self.macros()["NewMacro_1"]
        return [event[:2] for event in kept], [event[2] for event in kept]

    def quit(self):
        self.click("closeBtn")
        self.assertEnds(self.program)
        self.assertTold()


class RecordedKeys(RecordingTest):
    # Key codes of the display. The name of the right Shift key would press another key.
    SHIFT_KEYS = "50", "62"

    def testAreRowsInOrderWithTheirPauses(self):
        gaps = [100, 300, 150, 50, 200]
        keys = ["+a", "-a", "+b", "+c", "-b", "-c"]
        steps = [keys[0]]
        for gap, key in zip(gaps, keys[1:]):
            steps += [gap / 1000, key]
        took = self.desktop.strike(*steps)
        rows, pauses = self.finish()
        self.assertEqual(rows, [(A, PRESS), (A, RELEASE), (B, PRESS), (C, PRESS), (B, RELEASE),
                                (C, RELEASE)])
        self.assertEqual(pauses[-1], 0)
        for gap, pause in zip(gaps, pauses):
            self.assertGreaterEqual(pause, gap - TOLERANCE)
        self.assertLessEqual(sum(pauses), took * 1000 + TOLERANCE)
        self.quit()

    def testAHeldKeyIsOnePress(self):
        took = self.desktop.strike("+a", HELD_SECONDS, "-a")
        rows, pauses = self.finish()
        self.assertEqual(rows, [(A, PRESS), (A, RELEASE)])
        self.assertGreaterEqual(pauses[0], HELD_SECONDS * 1000 - TOLERANCE)
        self.assertLessEqual(pauses[0], took * 1000 + TOLERANCE)
        self.quit()
        # The display did repeat the key.
        path = os.path.join(self.desktop.state("com.corvex." + DEMO), "com.corvex.%s.log" % DEMO)
        with open(path, encoding="utf-8") as file:
            words = [line.split()[-1] for line in file]
        self.assertGreater(words.count("keyDown"), 2)
        self.assertEqual(words.count("keyUp"), 1)

    def testOneOfTwoShiftKeysThatIsLetGoIsAPress(self):
        left, right = self.SHIFT_KEYS
        self.desktop.strike("+" + left, 0.05, "+" + right, 0.05, "-" + left, 0.05, "-" + right,
                            0.05, "+" + right, 0.05, "-" + right)
        rows, _ = self.finish()
        self.assertEqual(rows, [(LEFT_SHIFT, PRESS), (RIGHT_SHIFT, PRESS), (LEFT_SHIFT, PRESS),
                                (RIGHT_SHIFT, RELEASE), (RIGHT_SHIFT, PRESS),
                                (RIGHT_SHIFT, RELEASE)])
        self.quit()

    def testThatCloseAWindowAreRecordedInstead(self):
        closing = "+Alt_L", 0.05, "+F4", 0.05, "-F4", 0.05, "-Alt_L"
        self.desktop.strike(*closing)
        self.stopRecording(self.editor)
        self.editor.click("applyBtn")
        wait_until(lambda: self.macros(), 30, "the library to be kept")
        self.assertEqual([event[:2] for event in self.macros()["NewMacro_1"]],
                         [(ALT, PRESS), (F4, PRESS), (F4, RELEASE), (ALT, RELEASE)])
        # The keys have their usual effect again.
        self.desktop.strike(*closing)
        self.waitForNoOther()
        self.quit()

    def testOfAnotherWindowAreItsOwn(self):
        self.desktop.strike("+a", 0.05, "-a")
        self.desktop.activate(self.panel)
        self.desktop.strike("+b", 0.05, "-b")
        self.desktop.activate(self.editor.id)
        self.desktop.strike("+c", 0.05, "-c")
        rows, _ = self.finish()
        self.assertEqual(rows, [(A, PRESS), (A, RELEASE), (C, PRESS), (C, RELEASE)])
        self.quit()

    def testBeyondTheLimitAreToldOfOverTheEditor(self):
        steps = []
        for letter in "abcdefghijklmnopqrst":
            steps += ["+" + letter, 0.01, "-" + letter, 0.01]
        self.desktop.strike(*steps)
        known = {one.id for one in self.desktop.windows()}
        self.desktop.strike("+a", 0.05, "-a")

        def message():
            return next((one for one in self.desktop.windows() if one.id not in known), None)
        wait_until(message, 30, "the message")
        # The message has the keyboard focus, and the keys that close it do not close the editor.
        self.desktop.strike("+Alt_L", 0.05, "+F4", 0.05, "-F4", 0.05, "-Alt_L")
        wait_until(lambda: message() is None, 30, "the message to be answered")
        rows, _ = self.finish()
        self.assertEqual(len(rows), 40)
        self.quit()


class RecordedClicks(RecordingTest):
    def testAreRowsAndTheStopButtonIsNone(self):
        place = middle(self.editor.frame("commandTable"))
        for button in (1, 3, 2):
            self.desktop.click(self.editor.id, *place, button=button)
        # Controls that are disabled while recording count as ordinary places.
        self.editor.click("newMacroBtn")
        self.editor.click("defDelayTxt")
        self.desktop.strike("+a", 0.1, "-a")
        rows, pauses = self.finish()
        self.assertEqual(rows, [(LEFT, MOUSE_PRESS), (LEFT, MOUSE_RELEASE),
                                (RIGHT, MOUSE_PRESS), (RIGHT, MOUSE_RELEASE),
                                (MIDDLE, MOUSE_PRESS), (MIDDLE, MOUSE_RELEASE),
                                (LEFT, MOUSE_PRESS), (LEFT, MOUSE_RELEASE),
                                (LEFT, MOUSE_PRESS), (LEFT, MOUSE_RELEASE),
                                (A, PRESS), (A, RELEASE)])
        self.assertTrue(all(0 <= pause < 60000 for pause in pauses))
        self.assertGreaterEqual(pauses[-2], 100 - TOLERANCE)
        self.quit()


if __name__ == "__main__":
    unittest.main()
