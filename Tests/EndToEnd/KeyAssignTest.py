"""Edits from the click in the main window to the bytes of the mouse, and back after a restart: each
function that a button can have, and the DPI levels. Also what happens to the windows of an edit
when the mouse is removed."""

import os
import unittest

from window_test import (DEMO, FRAMES, NOWHERE, UNPLUG, DemoTest, crop, listSize, middle,
                         wait_until)

# In the table of commands.
ROW_HEIGHT = 20

# Offsets in the memory file of the mouse.
IMAGES = 16 + 256
MACROS, MACRO_SIZE = 16 + 11 * 256 + 10 * 70, 2053
# Offsets in a slot's image, which starts with a header that the mouse does not keep.
HEADER, ACTIVE_LEVEL, FIRST_LEVEL, THIRD_LIGHT_MODE, BUTTONS = 4, 6, 7, 50, 58
ENTRY_SIZE = 5
# Offsets in a macro.
CHECKSUM, EVENTS = 3, 52

# The lists of a panel: width and entries.
KINDS = (177, ["Default", "Macro Key", "Mouse or Key Function", "DPI Function", "Launch Program",
               "Disable"])
MOUSE_FUNCTIONS = (264, ["Left Click", "Right Click", "Middle Click", "Button 4", "Button 5",
                         "Scroll Up", "Scroll Down", "Control + Left Arrow",
                         "Control + Right Arrow"])
DPI_FUNCTIONS = (264, ["Set DPI", "DPI Level Up", "DPI Level Down", "Show DPI",
                       "DPI Level Cycle"])
REPEATS = (264, ["Play Once", "Repeat by Count", "Repeat While Pressed", "Repeat Until Stopped"])
INSERTS = (195, ["Record before", "Record after", "Delay before", "Delay after"])
MACRO_LIST_WIDTH = 195

MACRO_PANEL = ("tkeyView", "SubTKeyView")
KEY_PANEL = ("singleKeyView", "SubSingleKeyView")
DPI_PANEL = ("sensitivityView", "SubSensitivityView")
LAUNCH_PANEL = ("launchProView", "SubLaunchProgramView")
SLIDER = (DPI_PANEL, ("subView", "SubSensitivityViewSub"), ("sliderView", "DpiSliderView"))

# Virtual key codes and the mouse's codes for them.
A, LEFT_SHIFT = 0, 56
LEFT_BUTTON = 120
USAGES = {A: 0x04, LEFT_SHIFT: 113, LEFT_BUTTON: 120}
PRESS, RELEASE, MOUSE_PRESS, MOUSE_RELEASE = 0, 1, 3, 4


def imageAt(byte):
    """The offset in the memory of a byte of the image of slot 1."""
    return IMAGES + byte - HEADER


def entryAt(position):
    return imageAt(BUTTONS + ENTRY_SIZE * position)


def macroReport(number, kind, count, name, events):
    """The report of a macro with these events (key code, flag, delay)."""
    stream = bytearray()
    for code, flag, delay in events:
        stream.append(USAGES[code] + (128 if flag in (RELEASE, MOUSE_RELEASE) else 0))
        if delay:
            stream += bytes([1, delay & 0xFF, delay >> 8])
    report = bytearray(MACRO_SIZE)
    report[:10] = [0xB0, 0, number, 0, kind, count, 1, len(stream) & 0xFF, len(stream) >> 8,
                   2 * len(name)]
    report[10:10 + 2 * len(name)] = name.encode("utf-16-le")
    report[EVENTS:EVENTS + len(stream)] = stream
    report[CHECKSUM] = -sum(report[4:-1]) & 0xFF
    return report


class PanelTest(DemoTest):
    """Starts with a saved and applied profile, so that only the edit changes anything."""

    def setUp(self):
        super().setUp()
        self.waitForRed("profile1Btn")
        self.click("profileNewBtn")
        self.waitForRed("applyBtn")
        self.apply()

    def apply(self):
        self.click("applyBtn")
        self.assertTold(("101", None))
        wait_until(lambda: not self.isRed("applyBtn"), 30, "Apply to have nothing to do")

    def restart(self):
        self.click("closeBtn")
        self.assertEnds(self.program)
        self.assertTold()
        self.start()
        self.waitForRed("profile1Btn")

    def captionFrame(self, caption):
        """The frame in the main window, where both maps have the same place."""
        left, top, _, _ = FRAMES["MainView"]["subView1"]
        x, y, width, height = FRAMES[self.mapOf(caption)][caption]
        return left + x, top + y, width, height

    def mapOf(self, caption):
        return next(screen for screen in ("MainViewSub1", "MainViewSub2")
                    if caption in FRAMES[screen])

    def showMapOf(self, caption):
        tab = "goLeftBtn" if self.mapOf(caption) == "MainViewSub1" else "goRightBtn"
        self.click(tab)
        self.waitForRed(tab)
        self.desktop.move(self.window, *NOWHERE)

    def captionPicture(self, caption):
        return crop(self.desktop.picture(self.window), self.captionFrame(caption))

    def openPanel(self, caption, kind):
        """Opens the panel of a button on the visible map."""
        self.desktop.click(self.window, *middle(self.captionFrame(caption)))
        panel = self.child("Button assignment", "KeyAssignView")
        self.choose(panel, "comSelBtn", KINDS, kind)
        return panel

    def choose(self, window, button, entries, title, *parts):
        width, titles = entries
        self.chooseRow(window.id, window.frame(button, *parts), titles.index(title), len(titles),
                       width)

    def assertMemory(self, expected):
        """All bytes of the mouse match."""
        held = self.mouse.memory()
        self.assertEqual(len(held), len(expected))
        self.assertEqual([(where, has, should) for where, (has, should)
                          in enumerate(zip(held, expected)) if has != should], [])


class Roads(PanelTest):
    def go(self, caption, index, kind, choose, entry, words, macro=None):
        """Follows one edit all the way. The mouse must then hold this entry for the button and the
        report of the macro, if there is one."""
        position = index if index < 14 else index + 3
        entry = bytes.fromhex(entry)
        self.showMapOf(caption)
        picture = self.captionPicture(caption)
        before = self.mouse.memory()
        expected = bytearray(before)
        where = entryAt(position)
        expected[where:where + ENTRY_SIZE] = entry
        panel = self.openPanel(caption, kind)
        choose(panel)
        self.assertMemory(before)
        panel.click("applyBtn")
        wait_until(lambda: self.mouse.memory()[where:where + ENTRY_SIZE] == entry, 30,
                   "the mouse to try it")
        panel.click("okBtn")
        self.waitForNoOther()
        self.waitForRed("applyBtn")
        self.apply()
        if macro:
            place = MACROS + MACRO_SIZE * position
            expected[place:place + MACRO_SIZE] = macro(position)
        self.assertMemory(expected)
        self.desktop.move(self.window, *NOWHERE)
        wait_until(lambda: self.captionPicture(caption) != picture, 30, "another caption")
        shown = self.captionPicture(caption)
        self.restart()
        self.showMapOf(caption)
        wait_until(lambda: self.captionPicture(caption) == shown, 30, "the same caption again")
        # A start sends the LED mode, which has a special value for the third light.
        expected[imageAt(THIRD_LIGHT_MODE)] = 2
        self.assertMemory(expected)
        self.assertEqual(self.mouse.slot(1)["buttons"][index]["function"], words)


class AssignedFunction(Roads):
    def testDefault(self):
        self.showMapOf("midleBtn1")
        panel = self.openPanel("midleBtn1", "Disable")
        panel.click("okBtn")
        self.waitForNoOther()
        self.waitForRed("applyBtn")
        self.apply()
        self.go("midleBtn1", 5, "Default", lambda panel: None, "0940400000", "DPI Level Up")

    def testMouseFunction(self):
        self.go("rightBtn", 1, "Mouse or Key Function",
                lambda panel: self.choose(panel, "selBtn", MOUSE_FUNCTIONS, "Button 4", KEY_PANEL),
                "0104000000", "Button 4")

    def testKey(self):
        def press(panel):
            field = panel.picture("newKeyEdt", KEY_PANEL)
            panel.click("keybordChk", KEY_PANEL)
            wait_until(lambda: panel.picture("newKeyEdt", KEY_PANEL) != field, 30,
                       "the field to wait for a key")
            waiting = panel.picture("newKeyEdt", KEY_PANEL)
            self.desktop.key("k")
            wait_until(lambda: panel.picture("newKeyEdt", KEY_PANEL) != waiting, 30,
                       "the key's name")

        self.go("leftBtn2", 10, "Mouse or Key Function", press, "02000e0000", "Key K")

    def testAKeyOfTheDesktop(self):
        """Alt+F4 closes a window, unless the capture owns the keyboard."""
        def press(panel):
            panel.click("keybordChk", KEY_PANEL)
            self.desktop.move(panel.id, *middle(panel.frame("oldKeyEdt", KEY_PANEL)))
            waiting = panel.picture("newKeyEdt", KEY_PANEL)
            self.desktop.strike("+Alt_L", 0.1, "+F4", 0.1, "-F4", 0.1, "-Alt_L")
            wait_until(lambda: panel.picture("newKeyEdt", KEY_PANEL) != waiting, 30,
                       "the key's name")
            self.child("Button assignment", "KeyAssignView")

        self.go("leftBtn2", 10, "Mouse or Key Function", press, "02003d0000", "Key F4")

    def testDpiFunction(self):
        def slide(panel):
            self.choose(panel, "selBtn", DPI_FUNCTIONS, "Set DPI", DPI_PANEL)
            x, y, width, height = panel.frame("dpiPro", *SLIDER)
            # The knob starts at 64 in the range 2 to 164.
            level = y + height // 2
            knob = x + height // 2 + (width - height) * 62 // 162
            before = panel.picture("dpiPro", *SLIDER)
            self.desktop.drag(panel.id, (knob, level), (x + width - 1, level))
            wait_until(lambda: panel.picture("dpiPro", *SLIDER) != before, 30, "the knob to move")
            self.desktop.key("Left", "Left", "Left", "Left")

        self.go("rightBtn1", 7, "DPI Function", slide, "10a0a00000", "Set DPI 8000 x 8000")

    def testLaunch(self):
        tool = os.path.join(self.folder, "tool.desktop")
        with open(tool, "w", encoding="utf-8") as file:
            file.write("[Desktop Entry]\nType=Application\nName=Tool\nExec=/bin/true\n")

        def pick(panel):
            before = panel.picture("pathTxt", LAUNCH_PANEL)
            panel.click("launchProBtn", LAUNCH_PANEL)
            self.desktop.activate(self.desktop.window("Choose a program"))
            self.desktop.key("ctrl+o")
            files = self.desktop.window("Open")
            self.desktop.activate(files)
            self.desktop.type(tool)
            self.desktop.key("Return")
            # Includes the completion list of the field, which would swallow a click.
            self.waitForNoOther(panel)
            wait_until(lambda: panel.picture("pathTxt", LAUNCH_PANEL) != before, 30, "the path")

        self.go("WhellDownBtn", 15, "Launch Program", pick, "0f07000000", "Launch Launch Program")
        self.assertEqual(self.preferences(DEMO)["Profile_0_15"], tool)

    def testDisable(self):
        self.go("bomBtn2", 3, "Disable", lambda panel: None, "ff774d0000", "Disable")


class RecordedMacro(Roads):
    def testIsEditedAndAssigned(self):
        self.record()
        kept = self.macros()["Combo"]
        self.assertEqual([event[:2] for event in kept],
                         [(LEFT_SHIFT, PRESS), (A, PRESS), (LEFT_SHIFT, RELEASE), (A, RELEASE),
                          (LEFT_BUTTON, MOUSE_PRESS), (LEFT_BUTTON, MOUSE_RELEASE)])
        self.assertEqual(kept[2][2], 500)
        # The display counts whole milliseconds.
        self.assertTrue(all(95 <= delay < 60000 for delay in (kept[0][2], kept[1][2])))

        def pick(panel):
            self.chooseRow(panel.id, panel.frame("tkeySelBtn", MACRO_PANEL), 0, 1,
                           MACRO_LIST_WIDTH)
            self.choose(panel, "repeatSelBtn", REPEATS, "Repeat by Count", MACRO_PANEL)
            count = self.child("Repeat count", "TkeyRepeatView")
            # The count has the keyboard focus and is selected.
            self.desktop.type("3")
            count.click("okBtn")
            self.waitForNoOther(panel)

        self.go("WhellUpBtn", 14, "Macro Key", pick, "0602030000", "Macro Combo, 3 times",
                macro=lambda position: macroReport(position, 4, 2, "Combo", kept))
        self.assertEqual(list(self.macros()), ["Combo"])

    def record(self):
        editor = self.openMacroEditor()
        editor.click("newMacroBtn")
        self.startRecording(editor)
        self.desktop.strike("+Shift_L", 0.1, "+a", 0.1, "-a", 0.1, "-Shift_L", 0.1)
        editor.click("commandTable")
        self.desktop.strike("+b", 0.1, "-b")
        self.stopRecording(editor)
        # The last command is selected.
        editor.click("delKeyBtn")
        editor.click("delKeyBtn")
        # Shift is released before the letter, and a pause follows.
        self.selectRow(editor, 3)
        editor.click("keyUpBtn")
        editor.click("insertKeyBtn")
        self.choose(editor, "insertBtn", INSERTS, "Delay after")
        editor.click("insertDefDelayTxt")
        self.desktop.key("ctrl+a")
        self.desktop.type("500")
        editor.click("insertIntBtn")
        editor.click("macroNameTxt")
        self.desktop.key("ctrl+a")
        self.desktop.type("Combo")
        editor.click("okBtn")
        self.waitForNoOther()

    def selectRow(self, editor, row):
        x, y, _, _ = editor.frame("commandTable")
        self.desktop.click(editor.id, x + 100, y + ROW_HEIGHT * row + ROW_HEIGHT // 2)


class DpiLevels(PanelTest):
    LEVEL_ONE = ("level1", "LevelView")

    def testATypedLevelIsAppliedAndFoundAgain(self):
        before = self.mouse.memory()
        expected = bytearray(before)
        # 1234 is not a multiple of 50. Typing into a level makes it the active one.
        expected[imageAt(FIRST_LEVEL)] = expected[imageAt(FIRST_LEVEL) + 1] = 24
        expected[imageAt(ACTIVE_LEVEL)] &= 0xF0
        self.assertNotEqual(before, expected)
        levels = self.openLevels()
        levels.click("dpiEdt", self.LEVEL_ONE)
        self.desktop.key("ctrl+a")
        self.desktop.type("1234")
        self.assertTold()
        levels.click("applyBtn")
        self.assertTold(("122", {"value1": True}))
        self.assertMemory(expected)
        shown = self.rest(levels).picture("level1")
        levels.click("okBtn")
        self.waitForNoOther()
        self.assertTold(("122", {"value1": False}))
        self.waitForRed("applyBtn")
        self.apply()
        self.assertMemory(expected)
        self.restart()
        expected[imageAt(THIRD_LIGHT_MODE)] = 2
        self.assertMemory(expected)
        levels = self.openLevels()
        self.rest(levels)
        wait_until(lambda: levels.picture("level1") == shown, 30, "the same level again")
        self.assertEqual(self.mouse.slot(1)["levels"][0], {"x": 1200, "y": 1200})
        levels.click("cancelBtn")
        self.waitForNoOther()

    def openLevels(self):
        self.click("preformanceBtn")
        return self.child("Advanced", "PerformanceView")

    def rest(self, levels):
        """Moves the pointer away from all controls."""
        self.desktop.move(levels.id, 4, 4)
        return levels


class RemovalUnderAPanel(PanelTest):
    def setUp(self):
        super().setUp()
        # With the service there, the program leaves the relaunch to it.
        self.desktop.own("com.corvex.NerinOption.Companion")

    def testTakesTheLevelSettingsAlong(self):
        panel = self.openPanel("midleBtn1", "DPI Function")
        panel.click("levelSettingBtn", DPI_PANEL)
        self.child("DPI levels", "LevelSettingView")
        self.clickPanel(UNPLUG)
        self.assertEndsWithARelaunch()

    def testTakesTheRepeatCountAlong(self):
        panel = self.openPanel("midleBtn1", "Macro Key")
        self.choose(panel, "repeatSelBtn", REPEATS, "Repeat by Count", MACRO_PANEL)
        self.child("Repeat count", "TkeyRepeatView")
        self.clickPanel(UNPLUG)
        self.assertEndsWithARelaunch()

    def assertEndsWithARelaunch(self):
        held = self.mouse.memory()
        self.assertTold(("121", None))
        self.assertEnds(self.program)
        self.assertMemory(held)
        # The edit is gone, and the mouse can be edited again.
        self.start()
        self.waitForRed("profile1Btn")
        self.assertEqual(self.mouse.slot(1)["buttons"][5]["function"], "DPI Level Up")
        self.assertFalse(self.isRed("applyBtn"))
        self.click("closeBtn")
        self.assertEnds(self.program)
        self.assertTold()


if __name__ == "__main__":
    unittest.main()
