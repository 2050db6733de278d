"""The road of a linked program, with the real window, the real companion and a mouse on emulated nodes:
a program is linked to a slot in the window, starts, is shown, and ends."""

import os
import signal
import time
import unittest

from gi.repository import GLib

from window_test import BINARIES, MAIN_SIZE, Mouse, WindowTest, crop, wait_until
from private_session import NotificationServer

WINDOW, COMPANION = "NerinOption", "com.corvex.NerinOption.Companion"
COMPANION_PATH = "/com/corvex/NerinOption/Companion"
PAINTER, LETTERS = "Painter", "Letters"
IN_FRONT = "Slot 3, because Painter is in front"
BY_HAND = "Slot 1, the last one chosen by hand"
# Of the main window: its place is worked out, not drawn.
FOOTER = (176, 664, 440, 40)


class Road(WindowTest):
    title = WINDOW

    def setUp(self):
        super().setUp()
        self.display = NotificationServer(self.desktop.address)
        self.addCleanup(self.display.close)
        memory = os.path.join(self.folder, "mouse")
        nodes = self.desktop.start(os.path.join(BINARIES, "MouseOnNodes"), memory)
        wait_until(lambda: self.desktop.log(nodes).endswith("\n"), 30, "the nodes of the mouse")
        self.mouse = Mouse(memory, self.folder)
        # The programs see none of the machine's own devices.
        self.devices = {
            "LD_PRELOAD": "libumockdev-preload.so.0",
            "UMOCKDEV_DIR": self.desktop.log(nodes).strip(),
            "ASAN_OPTIONS": self.desktop.environment.get("ASAN_OPTIONS", "") +
            ":verify_asan_link_order=0"}
        self.startCompanion()
        self.program = self.desktop.start(os.path.join(BINARIES, WINDOW), **self.devices)
        self.window = self.desktop.window(WINDOW, size=MAIN_SIZE)
        self.standApart()
        self.waitForRed("profile1Btn")

    def standApart(self):
        """Where the windows of this desktop do not place themselves."""

    def startCompanion(self):
        self.companion = self.desktop.start(os.path.join(BINARIES, "nerin-companion"),
                                            **self.devices)
        wait_until(self.explanation, 30, "the companion")

    def explanation(self):
        """Why the mouse has its slot; None without a companion."""
        try:
            return self.desktop.property(COMPANION, COMPANION_PATH, COMPANION, "Explanation")
        except GLib.Error:
            return None

    def assertSays(self, sentence):
        wait_until(lambda: self.explanation() == sentence, 30, sentence)

    def assertShown(self, summary, body):
        """The last thing that is shown on the screen for a moment."""
        try:
            wait_until(lambda: self.display.shown[-1:] == [(summary, body)], 30, summary)
        except TimeoutError:
            self.fail("%s, %s is not shown, but %s" % (summary, body, self.display.shown))

    def footer(self):
        return crop(self.desktop.picture(self.window), FOOTER)

    def settledFooter(self):
        """The footer once it has not changed for a while."""
        def look():
            before = self.footer()
            time.sleep(0.4)
            return before if self.footer() == before else None
        return wait_until(look, 30, "a quiet footer")

    def startProgram(self, name):
        program = self.desktop.start(os.path.join(BINARIES, "PlainWindow"), name)
        self.desktop.window(name)
        return program

    def linkSlotThree(self):
        """To a program that the desktop knows as Painter."""
        entry = os.path.join(self.folder, "painter.desktop")
        with open(entry, "w", encoding="utf-8") as file:
            file.write("[Desktop Entry]\nType=Application\nName=%s\nStartupWMClass=%s\n" %
                       (PAINTER, PAINTER))
        self.click("profile3Btn")
        self.waitForRed("profile3Btn")
        self.click("profileNewBtn")
        self.waitForRed("applyBtn")
        self.enterName("Painting")
        self.linkProgram(entry)
        self.click("applyBtn")
        wait_until(lambda: not self.isRed("applyBtn"), 30, "Apply to have nothing to do")
        self.assertEqual(self.preferences(WINDOW)["LinkApp"],
                         {"Profile_2": entry, "IsActive_Profile_2": True})
        self.assertEqual(self.mouse.activeSlot(), 3)

    def assertOnSlot(self, number):
        """The mouse, and the window that shows it."""
        wait_until(lambda: self.mouse.activeSlot() == number, 30, "slot %d" % number)
        self.waitForRed("profile%dBtn" % number)

    def testALinkedProgramGetsItsSlotAndGivesItBack(self):
        self.linkSlotThree()
        self.click("profile1Btn")
        self.assertOnSlot(1)
        self.assertSays(BY_HAND)
        byHand = self.settledFooter()

        painter = self.startProgram(PAINTER)
        self.assertOnSlot(3)
        self.assertSays(IN_FRONT)
        self.assertShown("Slot 3: Painting", IN_FRONT)
        wait_until(lambda: self.footer() != byHand, 30, "the reason in the footer")

        self.desktop.stop(painter)
        self.assertOnSlot(1)
        self.assertSays(BY_HAND)
        self.assertShown("Slot 1: Profile#1", BY_HAND)
        wait_until(lambda: self.footer() == byHand, 30, "the reason of before")

        # The slot is that of the program in front, whatever else runs.
        self.startProgram(PAINTER)
        self.assertOnSlot(3)
        self.startProgram(LETTERS)
        self.assertOnSlot(1)

        self.click("closeBtn")
        self.assertEnds(self.program)
        self.assertEqual(self.desktop.stop(self.companion), 0)
        self.assertEqual(self.desktop.log(self.companion), "")

    def testTheFooterSaysNothingOfACompanionThatWasKilled(self):
        silent = self.settledFooter()
        self.linkSlotThree()
        # What the window says of its own deeds is gone with the slot.
        self.click("profile1Btn")
        self.assertOnSlot(1)
        self.startProgram(PAINTER)
        self.assertOnSlot(3)
        self.assertSays(IN_FRONT)
        told = self.settledFooter()
        self.assertNotEqual(told, silent)
        self.companion.send_signal(signal.SIGKILL)
        wait_until(lambda: self.footer() == silent, 30, "the reason to go")
        self.startCompanion()
        wait_until(lambda: self.footer() == told, 30, "the reason to be back")


if __name__ == "__main__":
    unittest.main()
