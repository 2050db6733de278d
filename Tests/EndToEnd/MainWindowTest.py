"""The main window as a user has it: the real programs on a desktop of their own, real clicks and
keys, and reports of another process on the bus. What they did is seen in the mouse, in the files of
the library, and in what the background service is told."""

import json
import os
import plistlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))

from desktop_session import DesktopSession, crop, frames, middle, wait_until  # noqa: E402

DEMO = "NerinOptionDemo"
MAIN_SIZE = (1048, 720)
DIALOG_SIZE = (545, 155)
MACRO_SIZE = (1048, 633)
# The demonstration's panel stands on the right of the window.
DESKTOP_SIZE = (1900, 900)
PANEL = "The virtual mouse"
UNPLUG, PLUG_IN, SLOT_BUTTON = (90, 32), (254, 32), (172, 72)
# Of the list of profiles.
LIST_WIDTH, ROW_HEIGHT, BORDER = 188, 28, 1
# In the foot of the window, where there is nothing to point at.
NOWHERE = (420, 684)
# More than Tab has stops.
MOST_TABS = 80

# What the background service reports as "type".
SLOT_CHANGED, REMOVED, ATTACHED = 1, 100, 101


class Mouse:
    """Looks into the memory of a virtual mouse: into a copy, because a program holds it."""

    def __init__(self, memory, folder):
        self._memory = memory
        self._copy = os.path.join(folder, "mouse-copy")
        self._home = os.path.join(folder, "nobody")
        os.makedirs(self._home)

    def _ask(self, *arguments):
        shutil.copyfile(self._memory, self._copy)
        answer = subprocess.run(
            [os.path.join(BINARIES, "nerinctl"), "--virtual", self._copy, "--json", *arguments],
            env={"HOME": self._home}, stdout=subprocess.PIPE, check=True)
        return json.loads(answer.stdout)

    def slots(self):
        return self._ask("slots")

    def activeSlot(self):
        return next(slot["slot"] for slot in self.slots() if slot["active"])

    def slot(self, number):
        held = self._ask("read", "--slot", str(number))
        del held["slot"]
        return held

    def name(self, number):
        return self.slot(number)["name"]

    def mode(self, number):
        return self.slot(number)["mode"]


class WindowTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="nerin-window-"))
        self.desktop = self.enterContext(DesktopSession(self.folder, DESKTOP_SIZE))
        self.listener = self.desktop.listen()
        self.known = 0

    def support(self, program, *path):
        return os.path.join(self.desktop.home, "Library", "Application Support",
                            "com.corvex." + program, *path)

    def preferences(self, program):
        path = os.path.join(self.desktop.home, "Library", "Preferences",
                            "com.corvex.%s.plist" % program)
        if not os.path.exists(path):
            return {}
        with open(path, "rb") as file:
            return plistlib.load(file)

    def profiles(self, program):
        folder = self.support(program, "Profiles")
        return sorted(os.listdir(folder)) if os.path.isdir(folder) else []

    def assertTold(self, *messages):
        """What the background service was told since this was asked last, no more and no less."""
        wait_until(lambda: len(self.told()) >= self.known + len(messages), 30,
                   "the messages %s" % (messages,))
        told = self.told()[self.known:]
        self.known += len(told)
        self.assertEqual(told, list(messages))

    def told(self):
        return [(message.object, message.userInfo) for message in self.listener.messages
                if message.member == "NerinSettingChange"]

    def assertEnds(self, process):
        wait_until(lambda: process.poll() is not None, 30, "the program to end")
        self.assertEqual((process.returncode, self.desktop.log(process)), (0, ""))

    def dialog(self):
        return self.desktop.window(self.title, size=DIALOG_SIZE)

    def answer(self, button, dialog="WarningNeedSave"):
        """Clicks a button of the dialog that is up or comes up. The name of the dialog tells where
        its buttons are."""
        window = self.dialog()
        self.desktop.click(window, *middle(FRAMES[dialog][button]))
        wait_until(lambda: window not in [one.id for one in self.desktop.windows()], 30,
                   "the dialog to go")

    def isAsking(self):
        return any((window.width, window.height) == DIALOG_SIZE
                   for window in self.desktop.windows())


class WithoutAMouse(WindowTest):
    title = "NerinOption"

    def testTheUserCanDeclineToWait(self):
        # Of the machine's own devices the program sees none: a mouse that is really there is not
        # for a test to write to.
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


class DemoTest(WindowTest):
    title = DEMO

    def setUp(self):
        super().setUp()
        self.mouse = Mouse(self.support(DEMO, "mouse"), self.folder)
        self.start()

    def start(self):
        self.program = self.desktop.start(os.path.join(BINARIES, DEMO))
        self.window = self.desktop.window(DEMO, size=MAIN_SIZE)
        self.panel = self.desktop.window(PANEL)
        # It has its place when the mouse was read.
        right = self.desktop.geometry(self.window)[0] + MAIN_SIZE[0]
        wait_until(lambda: self.desktop.geometry(self.panel)[0] >= right, 30,
                   "the panel to stand beside the window")
        wait_until(lambda: self.desktop.isHearing(self.program), 30, "the program on the bus")

    def click(self, control):
        self.desktop.click(self.window, *middle(FRAMES["MainView"][control]))

    def clickPanel(self, place):
        self.desktop.click(self.panel, *place)

    def picture(self, *controls):
        picture = self.desktop.picture(self.window)
        return [crop(picture, FRAMES["MainView"][control]) for control in controls]

    def isRed(self, control):
        """What is selected, and what can be applied, is red for the most part."""
        pixels = self.picture(control)[0].rgb
        red = sum(r > 30 and r > 2 * g and r > 2 * b
                  for r, g, b in zip(pixels[0::3], pixels[1::3], pixels[2::3]))
        return red * 6 > len(pixels)

    def waitForRed(self, control):
        wait_until(lambda: self.isRed(control), 30, "%s to be red" % control)

    def enterName(self, name):
        self.click("profileNameTxt")
        self.desktop.key("ctrl+a")
        self.desktop.type(name)
        self.desktop.key("Return")

    def chooseProfile(self, row, count):
        """A click on a row, counted from 0, of the list of so many profiles."""
        self.click("currProfileBtn")
        listing = self.desktop.window(DEMO, size=(LIST_WIDTH, count * ROW_HEIGHT + 2 * BORDER))
        self.desktop.click(listing, LIST_WIDTH // 2, BORDER + row * ROW_HEIGHT + ROW_HEIGHT // 2)

    def waitForNoOther(self):
        wait_until(lambda: {one.id for one in self.desktop.windows()} == {self.window, self.panel},
                   30, "all but the window and the panel to go")

    def unplug(self):
        self.clickPanel(UNPLUG)
        self.dialog()


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
        self.click("linkProChk")
        self.click("linkProBtn")
        panel = self.desktop.window("Open")
        self.desktop.activate(panel)
        self.desktop.type(game)
        self.desktop.key("Return")
        # With the list of what the field would complete, which takes a click for itself.
        self.waitForNoOther()
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
        # The edit is not applied yet: the first time the user stays with it.
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
        self.desktop.signal("NerinDevStatus", type=REMOVED, value=0)
        self.assertTold(("121", None))
        self.assertEnds(self.program)

    def testCanBeDeclined(self):
        self.unplug()
        self.answer("cancelBtn", "WarningNoDevice")
        self.assertEnds(self.program)
        self.assertTold()

    def testEndsWhenTheMouseIsNotBack(self):
        self.desktop.signal("NerinDevStatus", type=REMOVED, value=0)
        self.answer("okBtn", "WarningNoDevice")
        self.assertEnds(self.program)
        self.assertTold()

    def testGoesOnWithTheMouseThatIsBack(self):
        self.waitForRed("profile1Btn")
        self.unplug()
        self.clickPanel(PLUG_IN)
        # Nobody hears of this while the dialog is up, so the slot has to be read again.
        self.clickPanel(SLOT_BUTTON)
        wait_until(lambda: self.mouse.activeSlot() == 2, 30, "the mouse to be in slot 2")
        self.assertTrue(self.isRed("profile1Btn"))
        self.answer("okBtn", "WarningNoDevice")
        self.waitForRed("profile2Btn")
        self.assertTold()
        self.click("profile7Btn")
        self.assertTold(("111", {"value1": 1, "value2": 6}))
        self.assertEqual(self.mouse.activeSlot(), 7)

    def testGoesOnWhenTheServiceReportsTheMouse(self):
        self.desktop.signal("NerinDevStatus", type=REMOVED, value=0)
        self.dialog()
        self.desktop.signal("NerinDevStatus", type=ATTACHED, value=0)
        self.answer("okBtn", "WarningNoDevice")
        self.click("profile3Btn")
        self.assertTold(("111", {"value1": 1, "value2": 2}))
        # And it is a removal again when it happens again.
        self.unplug()
        self.answer("cancelBtn", "WarningNoDevice")
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
        self.tabTo("profileNameTxt")
        # Tab selects what the field holds.
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
        """Goes on with Tab until the control shows that it has the keyboard."""
        without = self.picture(control)
        for _ in range(MOST_TABS):
            before = self.desktop.picture(self.window)
            self.desktop.key("Tab")
            wait_until(lambda: self.desktop.picture(self.window) != before, 30,
                       "Tab to show where it went")
            if self.picture(control) != without:
                return
        self.fail("Tab never came to %s" % control)


if __name__ == "__main__":
    BINARIES = os.path.abspath(sys.argv.pop(1))
    FRAMES = frames(os.path.join(os.path.dirname(BINARIES), "generated", "ArtworkFrames.h"))
    unittest.main()
