"""The main window as the user has it: the real programs on a private desktop, real clicks and keys,
and reports of another process on the bus. The effects are checked in the mouse, in the files of the
library, and in the messages to the background service."""

import os
import unittest

from window_test import (ATTACHED, BINARIES, DEMO, MAIN_SIZE, NOWHERE, PLUG_IN, REMOVED,
                         SLOT_BUTTON, SLOT_CHANGED, UNPLUG, DemoTest, WindowTest, wait_until)

MACRO_SIZE = (1048, 633)
# More than there are Tab stops.
MAXIMUM_TABS = 80


class WithoutAMouse(WindowTest):
    title = "NerinOption"

    def testTheUserCanDeclineToWait(self):
        # The program sees none of the machine's own devices: a test must not write to a real
        # mouse.
        devices = os.path.join(self.folder, "devices")
        os.makedirs(os.path.join(devices, "sys"))
        os.makedirs(os.path.join(devices, "dev"))
        program = self.desktop.start(
            os.path.join(BINARIES, "NerinOption"), LD_PRELOAD="libumockdev-preload.so.0",
            UMOCKDEV_DIR=devices, ASAN_OPTIONS="verify_asan_link_order=0")
        window = self.desktop.window(self.title, size=MAIN_SIZE)
        self.assertEqual(self.desktop.geometry(window)[2:], MAIN_SIZE)
        self.answer("cancelBtn", "WarningNoDevice")
        self.assertEnds(program)
        self.assertTold()
        self.assertEqual(self.profiles(self.title), [])
        self.assertEqual(self.preferences(self.title), {})


class MainJob(DemoTest):
    KEPT = ("profile4Btn", "currProfileBtn", "profileNameTxt", "normalModeBtn", "battleModeBtn",
            "linkProChk", "applyBtn")

    def testIsDoneAndFoundAgain(self):
        factory = self.mouse.slot(4)
        self.chooseSlotTwo()
        self.makeDayWatch()
        self.applyAndLink()
        self.nameSlotThree()
        self.useDayWatchInSlotFour(factory)
        self.quitAndFindItAgain()

    def chooseSlotTwo(self):
        self.waitForRed("profile1Btn")
        self.click("profile2Btn")
        self.assertTold(("111", {"value1": 1, "value2": 1}))
        self.waitForRed("profile2Btn")
        self.assertFalse(self.isRed("profile1Btn"))
        self.assertEqual(self.mouse.activeSlot(), 2)

    def makeDayWatch(self):
        self.assertEqual(self.mouse.name(2), "Profile#2")
        self.assertFalse(self.isRed("applyBtn"))
        self.click("profileNewBtn")
        self.waitForRed("applyBtn")
        self.assertEqual(self.profiles(DEMO), [])
        self.enterName("Day watch")
        wait_until(lambda: self.profiles(DEMO) == ["Day watch.pro"], 30, "the profile's file")
        self.assertEqual(self.mouse.name(2), "Day watch")

    def applyAndLink(self):
        self.assertEqual(self.mouse.mode(2), "normal")
        self.click("battleModeBtn")
        self.answer("okBtn", "WarningBattle")
        self.waitForRed("battleModeBtn")
        self.assertEqual(self.mouse.mode(2), "battle")
        game = os.path.join(self.folder, "game.desktop")
        with open(game, "w", encoding="utf-8") as file:
            file.write("[Desktop Entry]\n")
        self.linkProgram(game)
        self.assertTold()
        unapplied = self.fileOf("Day watch")
        self.click("applyBtn")
        self.assertTold(("101", None))
        wait_until(lambda: not self.isRed("applyBtn"), 30, "Apply to have nothing to do")
        self.assertNotEqual(self.fileOf("Day watch"), unapplied)
        self.assertEqual(self.preferences(DEMO)["LinkApp"],
                         {"Profile_1": game, "IsActive_Profile_1": True})

    def fileOf(self, profile):
        with open(self.support(DEMO, "Profiles", profile + ".pro"), "rb") as file:
            return file.read()

    def nameSlotThree(self):
        self.click("profile3Btn")
        self.assertTold(("111", {"value1": 1, "value2": 2}))
        self.click("profileNewBtn")
        self.enterName("Night raid")
        wait_until(lambda: len(self.profiles(DEMO)) == 2, 30, "the second profile's file")
        # The edit is not applied yet. The user first decides to stay.
        self.click("profile4Btn")
        self.answer("cancelBtn")
        self.waitForRed("profile3Btn")
        self.assertTold()
        self.click("profile4Btn")
        self.answer("okBtn")
        self.assertTold(("101", None), ("111", {"value1": 1, "value2": 3}))
        self.assertEqual(self.mouse.name(3), "Night raid")

    def useDayWatchInSlotFour(self, factory):
        self.assertEqual(self.mouse.slot(4), factory)
        self.chooseProfile(0, 2)
        self.waitForRed("applyBtn")
        self.waitForRed("battleModeBtn")
        self.click("applyBtn")
        self.assertTold(("101", None))
        written = self.mouse.slot(4)
        self.assertEqual(written, self.mouse.slot(2))
        self.assertEqual((written["name"], written["mode"]), ("Day watch", "battle"))
        self.assertNotEqual(written["zones"], factory["zones"])
        self.assertEqual(self.profiles(DEMO), ["Day watch.pro", "Night raid.pro"])

    def quitAndFindItAgain(self):
        self.desktop.move(self.window, *NOWHERE)
        wait_until(lambda: not self.isRed("applyBtn"), 30, "Apply to have nothing to do")
        shown = self.picture(*self.KEPT)
        slots = self.mouse.slots()
        contents = [self.mouse.slot(number) for number in (2, 3, 4)]
        self.click("closeBtn")
        self.assertEnds(self.program)
        self.assertTold()
        self.start()
        self.desktop.move(self.window, *NOWHERE)
        wait_until(lambda: self.picture(*self.KEPT) == shown, 30, "the window to look as before")
        self.assertEqual(self.mouse.slots(), slots)
        self.assertEqual([self.mouse.slot(number) for number in (2, 3, 4)], contents)
        self.click("cancelBtn")
        self.assertEnds(self.program)
        self.assertTold()


class Messages(DemoTest):
    def testTheMenuSwitchesTheOsd(self):
        for isOn in (False, True):
            self.click("menuBtn")
            wait_until(lambda: len(self.desktop.windows()) == 3, 30, "the menu")
            # The second entry.
            self.desktop.key("Down", "Down", "Return")
            self.assertTold(("110", {"value1": isOn}))
            self.assertIs(self.preferences(DEMO)["OSDTag"], isOn)
            self.waitForNoOther()

    def testASlotIsToldOnlyWhenItIsAnother(self):
        self.waitForRed("profile1Btn")
        self.click("profile1Btn")
        self.click("profile10Btn")
        self.assertTold(("111", {"value1": 1, "value2": 9}))
        self.assertEqual(self.mouse.activeSlot(), 10)


class Removal(DemoTest):
    def testUnderAChildWindowEndsWithARelaunch(self):
        self.click("MacroSettingBtn")
        self.desktop.window("Macro editor", size=MACRO_SIZE)
        self.clickPanel(UNPLUG)
        self.assertTold(("121", None))
        self.assertEnds(self.program)
        # No service runs here, so that the program starts itself anew.
        def newWindow():
            return next((one.id for one in self.desktop.windowsTitled(DEMO)
                         if (one.width, one.height) == MAIN_SIZE), None)

        self.window = wait_until(newWindow, 30, "the new program")
        self.waitForRed("profile1Btn")
        self.click("closeBtn")
        wait_until(lambda: not self.desktop.windowsTitled(DEMO), 30, "the new program to end")

    def testCanBeDeclined(self):
        self.unplug()
        self.answer("cancelBtn", "WarningNoDevice")
        self.assertEnds(self.program)
        self.assertTold()

    def testEndsWhenTheMouseIsNotBack(self):
        self.unplug()
        self.answer("okBtn", "WarningNoDevice")
        self.assertEnds(self.program)
        self.assertTold()

    def testGoesOnWithTheMouseThatIsBack(self):
        self.waitForRed("profile1Btn")
        self.clickPanel(SLOT_BUTTON)
        self.waitForRed("profile2Btn")
        self.assertTold(("111", {"value1": 1, "value2": 1}))
        self.unplug()
        self.clickPanel(PLUG_IN)
        # Nobody has to answer the dialog.
        wait_until(lambda: not self.isAsking(), 30, "the dialog to go")
        self.waitForRed("profile2Btn")
        self.assertTold()
        self.click("profile7Btn")
        self.assertTold(("111", {"value1": 1, "value2": 6}))
        self.assertEqual(self.mouse.activeSlot(), 7)

    def testOfWhichTheServiceTellsButTheWindowSeesNothingChangesNothing(self):
        self.waitForRed("profile1Btn")
        self.desktop.signal("NerinDevStatus", type=REMOVED, value=0)
        self.desktop.signal("NerinDevStatus", type=ATTACHED, value=0)
        self.click("profile3Btn")
        self.assertTold(("111", {"value1": 1, "value2": 2}))
        self.assertFalse(self.isAsking())
        # A real removal is seen.
        self.unplug()
        self.answer("cancelBtn", "WarningNoDevice")
        self.assertEnds(self.program)


class SecondStart(DemoTest):
    def testBringsTheFirstToTheFrontAndEnds(self):
        self.waitForRed("profile1Btn")
        self.desktop.activate(self.panel)
        second = self.desktop.start(os.path.join(BINARIES, DEMO))
        self.assertEnds(second)
        wait_until(lambda: self.desktop.activeWindow() == self.window, 30,
                   "the window to be in front")
        self.assertEqual(len([one for one in self.desktop.windowsTitled(DEMO)]), 1)
        self.click("closeBtn")
        self.assertEnds(self.program)
        # The name is free again.
        self.start()
        self.click("closeBtn")
        self.assertEnds(self.program)


class SlotOfTheMouse(DemoTest):
    def testIsFollowedWithoutAQuestion(self):
        self.click("profileNewBtn")
        self.waitForRed("applyBtn")
        self.desktop.signal("NerinDevStatus", type=SLOT_CHANGED, value=4)
        self.assertTold(("111", {"value1": 1, "value2": 4}))
        self.waitForRed("profile5Btn")
        self.assertFalse(self.isAsking())
        self.assertEqual(self.profiles(DEMO), [])
        self.assertEqual(self.mouse.name(1), "Profile#1")
        self.clickPanel(SLOT_BUTTON)
        self.assertTold(("111", {"value1": 1, "value2": 5}))
        self.waitForRed("profile6Btn")
        self.assertFalse(self.isAsking())
        self.assertEqual(self.mouse.activeSlot(), 6)


class Keyboard(DemoTest):
    def testAloneDoesTheMainJob(self):
        self.waitForRed("profile1Btn")
        self.desktop.move(self.window, *NOWHERE)
        self.desktop.activate(self.window)
        self.tabTo("profile1Btn")
        self.desktop.key("Right")
        self.assertTold(("111", {"value1": 1, "value2": 1}))
        self.desktop.key("Right")
        self.assertTold(("111", {"value1": 1, "value2": 2}))
        self.tabTo("profileNewBtn")
        self.desktop.key("space")
        self.waitForRed("applyBtn")
        # The name of the new profile is selected.
        self.desktop.type("Blind")
        self.desktop.key("Return")
        wait_until(lambda: self.profiles(DEMO) == ["Blind.pro"], 30, "the profile's file")
        self.tabTo("normalModeBtn")
        self.desktop.key("Right")
        dialog = self.dialog()
        wait_until(lambda: self.desktop.activeWindow() == dialog, 30,
                   "the dialog to have the keyboard")
        self.desktop.key("Return")
        self.waitForRed("battleModeBtn")
        self.desktop.key("ctrl+s")
        self.assertTold(("101", None))
        self.assertEqual((self.mouse.name(3), self.mouse.mode(3)), ("Blind", "battle"))
        self.tabTo("MacroSettingBtn")
        self.desktop.key("space")
        child = self.desktop.window("Macro editor", size=MACRO_SIZE)
        self.desktop.activate(child)
        self.desktop.key("Escape")
        self.waitForNoOther()
        wait_until(lambda: self.desktop.activeWindow() == self.window, 30,
                   "the keyboard to be back at the window")
        self.tabTo("cancelBtn")
        self.desktop.key("Return")
        self.assertEnds(self.program)
        self.assertTold()

    def tabTo(self, control):
        """Presses Tab until the control shows the keyboard focus."""
        without = self.picture(control)
        for _ in range(MAXIMUM_TABS):
            before = self.desktop.picture(self.window)
            self.desktop.key("Tab")
            wait_until(lambda: self.desktop.picture(self.window) != before, 30,
                       "Tab to show where it went")
            if self.picture(control) != without:
                return
        self.fail("Tab never came to %s" % control)


if __name__ == "__main__":
    unittest.main()
