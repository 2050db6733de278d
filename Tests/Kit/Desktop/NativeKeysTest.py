"""The keys of a real X server. Each is pressed by its code, and the window must report the right
Mac key. Arguments: the tree, the program PrintKeys."""

import collections
import json
import os
import subprocess
import sys
import tempfile
import time
import unittest

TREE, PROGRAM = sys.argv[1:3]
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.join(TREE, "Tools"))

from desktop_session import DesktopSession, wait_until  # noqa: E402

SHIFT, CAPS_LOCK = 0x20000, 0x10000
FLAGS = {54: 0x100000, 55: 0x100000, 56: SHIFT, 60: SHIFT, 57: CAPS_LOCK, 58: 0x80000, 61: 0x80000,
         59: 0x40000, 62: 0x40000}
# The maximum of an X server. Only Wayland can report the Fn key.
MAXIMUM_X_CODE = 255
# evdev codes.
A, LEFT_SHIFT, RIGHT_SHIFT, CAPS, END_MARK, F24 = 30, 42, 54, 58, 88, 194

Event = collections.namedtuple("Event", "kind key flags repeat time")


def fixture(name):
    with open(os.path.join(TREE, "Tests", "Fixtures", name), encoding="utf-8") as file:
        return json.load(file)


def xCode(evdevCode):
    # The leading zero makes it a code; a plain "9" would be the name of a key.
    return "%04d" % (evdevCode + 8)


class NativeKeys(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="native-keys-")
        self.addCleanup(folder.cleanup)
        self.desktop = DesktopSession(folder.name, size=(640, 480))
        self.enterContext(self.desktop)

    def start(self, *arguments):
        self.program = self.desktop.start(PROGRAM, *arguments)
        wait_until(lambda: self.lines()[-1:] == ["focus in"], 30, "the keyboard")
        self.seen = len(self.lines())

    def lines(self):
        # The log also contains Qt's own messages.
        return [line for line in self.desktop.log(self.program).splitlines()
                if line.split(" ")[0] in ("KeyDown", "KeyUp", "FlagsChanged", "focus")]

    def xdotool(self, *arguments):
        subprocess.run(["xdotool", *arguments], env=self.desktop.environment, check=True)

    def down(self, evdevCode):
        self.xdotool("keydown", xCode(evdevCode))

    def up(self, evdevCode):
        self.xdotool("keyup", xCode(evdevCode))

    def events(self):
        """The events since the last call. They arrive in order, so a key pressed twice now marks
        their end."""
        self.xdotool("key", xCode(END_MARK), xCode(END_MARK))
        end = [("KeyDown", "111"), ("KeyUp", "111")] * 2
        wait_until(lambda: [tuple(line.split()[:2]) for line in self.lines()[-len(end):]] == end,
                   20, "the key that ends the row")
        lines = self.lines()[self.seen:]
        self.seen += len(lines)
        return [Event(kind, *map(int, numbers))
                for kind, *numbers in (line.split() for line in lines[:-len(end)])]

    def testTellsEveryKeyByItsMacCode(self):
        codes = {name: int(code) for code, name in fixture("mac-key-names.json").items()}
        keys = {int(code): codes[name] for code, name in fixture("native-keys.json").items()}
        pressed = [code for code in sorted(keys) if code + 8 <= MAXIMUM_X_CODE]
        self.assertEqual([code for code in keys if code not in pressed], [464])
        self.assertEqual(len(pressed), 131)
        # The window manager takes some of the keys unless they are grabbed.
        self.start("--grab")
        expected = []
        for code in pressed:
            key, flag = keys[code], FLAGS.get(keys[code])
            if flag:
                expected += [("FlagsChanged", key, flag), ("FlagsChanged", key, 0)]
            else:
                expected += [("KeyDown", key, 0), ("KeyUp", key, 0)]
        # Caps Lock is pressed twice, so that it is off for the keys that follow.
        sequence = []
        for code in pressed:
            sequence += [xCode(code)] * (2 if keys[code] == 57 else 1)
        # A key without a Mac code is not reported.
        self.xdotool("key", "--delay", "4", *sequence, xCode(F24))
        heard = self.events()
        self.assertEqual([event[:3] for event in heard], expected)
        self.assertFalse(any(event.repeat for event in heard))
        times = [event.time for event in heard]
        self.assertEqual(times, sorted(times))
        self.assertGreater(times[-1], times[0])

    def testTellsAHeldKeyOnceAndItsRepeatsAsSuch(self):
        self.start()
        for _ in range(2):
            self.down(A)
            wait_until(lambda: len(self.lines()) - self.seen >= 15, 20, "repeats")
            self.up(A)
            heard = self.events()
            self.assertEqual(heard[0][:4], ("KeyDown", 0, 0, 0))
            self.assertEqual({event[:4] for event in heard[1:-1]}, {("KeyDown", 0, 0, 1)})
            self.assertEqual(heard[-1][:4], ("KeyUp", 0, 0, 0))
            # Longer than a press, because a key repeats only after a delay.
            self.assertGreater(heard[-1].time - heard[0].time, 300)

    def testKeepsTheFlagOfThePairWhileOneShiftIsDown(self):
        self.start()
        for step, code in ((self.down, LEFT_SHIFT), (self.down, RIGHT_SHIFT), (self.up, LEFT_SHIFT),
                           (self.down, A), (self.up, A), (self.up, RIGHT_SHIFT)):
            step(code)
        heard = self.events()
        self.assertEqual([event[:3] for event in heard], [
            ("FlagsChanged", 56, SHIFT), ("FlagsChanged", 60, SHIFT), ("FlagsChanged", 56, SHIFT),
            ("KeyDown", 0, SHIFT), ("KeyUp", 0, SHIFT), ("FlagsChanged", 60, 0)])

    def testAlternatesCapsLockAndLearnsItsStateFromTheServer(self):
        self.start()
        self.xdotool("key", xCode(CAPS), xCode(A), xCode(CAPS), xCode(A), xCode(CAPS))
        heard = self.events()
        self.assertEqual([event[:3] for event in heard], [
            ("FlagsChanged", 57, CAPS_LOCK), ("KeyDown", 0, CAPS_LOCK), ("KeyUp", 0, CAPS_LOCK),
            ("FlagsChanged", 57, 0), ("KeyDown", 0, 0), ("KeyUp", 0, 0),
            ("FlagsChanged", 57, CAPS_LOCK)])

        # A second window takes the keyboard focus, and Caps Lock is turned off there.
        other = self.desktop.start(PROGRAM)
        wait_until(lambda: self.lines()[-1:] == ["focus out"], 20, "the loss of the keyboard")
        wait_until(lambda: "focus in" in self.desktop.log(other), 20, "the other window")
        self.xdotool("key", xCode(CAPS))
        wait_until(lambda: "FlagsChanged 57 0 " in self.desktop.log(other), 20, "Caps Lock")
        self.assertNotIn("FlagsChanged 57 %d " % CAPS_LOCK, self.desktop.log(other))
        self.desktop.stop(other)
        wait_until(lambda: self.lines()[-1:] == ["focus in"], 20, "the keyboard again")
        self.seen = len(self.lines())
        self.xdotool("key", xCode(A))
        self.assertEqual([event[:3] for event in self.events()],
                         [("KeyDown", 0, 0), ("KeyUp", 0, 0)])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[3:])
