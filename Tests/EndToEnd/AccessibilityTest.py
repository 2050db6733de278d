"""The program for users who neither see the window nor point at it. Reads the demonstration's tree
of accessible objects, compares it with the controls of the artwork, and does the main job through
it, up to the contents of the virtual mouse and the library.

AccessibilityTest.py BUILD [unittest options], where BUILD is the folder that holds bin and
generated.
"""

import json
import os
import unittest

from accessible_test import ANSWER_SECONDS, AccessibleTest, top, wait_until

SCENERY = {"subView1", "subView2", "lineImgView", "progressBar"}
STEP_ITEMS = {"normalModeBtn", "battleModeBtn", "goLeftBtn", "goRightBtn",
              *("profile%dBtn" % number for number in range(1, 11))}
# Only the place of a caption shows which button it belongs to, so its name must say so.
CAPTIONS = {
    "MainViewSub1": {"leftClickBtn": "Left button: Left Click",
                     "rightBtn": "Right button: Right Click",
                     "WhellBtn": "Wheel button: Middle Click",
                     "WhellUpBtn": "Wheel up: Scroll Up",
                     "WhellDownBtn": "Wheel down: Scroll Down"},
    "MainViewSub2": {"bomBtn1": "Thumb button 1: Home",
                     "bomBtn2": "Thumb button 2: End"},
}


def isForTheEye(control):
    """Controls that only show something: the pictures, and the dots that mark the buttons of the
    mouse on them. The captions are what the user presses."""
    return control in SCENERY or "Tag" in control


class AccessibilityTest(AccessibleTest):
    # The tree -----------------------------------------------------------------------------------

    def expected(self, map):
        """{control: frame in the window} for the window with one of its two maps."""
        with open(os.path.join(top, "Resources", "artwork", "screens.json"),
                  encoding="utf-8") as file:
            listed = json.load(file)
        left, top_, _, _ = self.screens["MainView"]["subView1"]
        controls = {name: self.screens["MainView"][name]
                    for name in listed["MainView"]["controls"] if not isForTheEye(name)}
        for name in listed[map]["controls"]:
            if not isForTheEye(name):
                x, y, width, height = self.screens[map][name]
                controls[name] = x + left, y + top_, width, height
        return controls

    def found(self, map):
        """{control: the accessible object in the control's place in the artwork}."""
        windowX, windowY, _, _ = self.tree.place(self.main)
        # Leaves out containers, which cover the places of their children.
        objects = {self.tree.place(one): one for one in self.tree.shown(self.main)
                   if one.childCount == 0}
        found = {}
        for control, (x, y, width, height) in self.expected(map).items():
            for place, one in objects.items():
                middleX, middleY = windowX + x + width // 2, windowY + y + height // 2
                if (place[0] <= middleX < place[0] + place[2] and
                        place[1] <= middleY < place[1] + place[3] and
                        place[2] <= width and place[3] <= height):
                    found[control] = one
        return found

    def checkControls(self, map):
        found = self.found(map)
        self.assertEqual(sorted(self.expected(map)), sorted(found))
        for control, one in found.items():
            with self.subTest(control=control):
                role = one.getRoleName()
                self.assertTrue(one.name.strip(), "it has no name")
                if control in STEP_ITEMS:
                    self.assertEqual("radio button", role)
                elif control == "linkProChk":
                    self.assertEqual("check box", role)
                elif control == "profileNameTxt":
                    self.assertIn(role, ("text", "entry"))
                    self.assertTrue(self.tree.has(one, "EDITABLE"))
                else:
                    self.assertEqual("push button", role)
                if control != "profileNameTxt":
                    self.assertGreater(one.queryAction().nActions, 0)
                if control in CAPTIONS[map]:
                    self.assertEqual(CAPTIONS[map][control], one.name)
        # There are no duplicates and no two controls with the same name.
        named = [(one.getRoleName(), one.name) for one in self.tree.shown(self.main)
                 if one.childCount == 0 and one.getRoleName() != "filler"]
        # The arrow that lists what Apply would change has no place in the artwork.
        self.assertEqual(1, named.count(("push button", "What would Apply change?")))
        self.assertEqual(len(found) + 1, len(named))
        self.assertEqual(len(found), len({one.name for one in found.values()}))
        self.assertEqual("OK", found["okBtn"].name)
        return found

    def testSaysEveryControlOfTheWindow(self):
        self.assertEqual("frame", self.main.getRoleName())
        found = self.checkControls("MainViewSub1")
        for control, isChecked in (("profile1Btn", True), ("profile2Btn", False),
                                   ("normalModeBtn", True), ("battleModeBtn", False),
                                   ("goLeftBtn", True), ("goRightBtn", False),
                                   ("linkProChk", False)):
            self.assertEqual(isChecked, self.tree.has(found[control], "CHECKED"), control)
        for control, isEnabled in (("applyBtn", False), ("okBtn", False), ("cancelBtn", True)):
            self.assertEqual(isEnabled, self.tree.has(found[control], "SENSITIVE"), control)
        self.tree.press(found["goRightBtn"])
        self.tree.named(self.main, "Thumb button 1: Home")
        side = self.checkControls("MainViewSub2")
        self.assertTrue(self.tree.has(side["goRightBtn"], "CHECKED"))
        self.assertFalse(self.tree.has(side["goLeftBtn"], "CHECKED"))

    # The main job -------------------------------------------------------------------------------

    def chooseSlot(self, number):
        self.press("Switch to profile %d page" % number)
        wait_until(lambda: self.activeSlot() == number, ANSWER_SECONDS, "slot %d" % number)
        tab = self.tree.named(self.main, "Switch to profile %d page" % number)
        wait_until(lambda: self.tree.has(tab, "CHECKED"), ANSWER_SECONDS, "the tab of the slot")

    def nameField(self):
        return self.tree.named(self.main, "Profile name")

    def writtenName(self):
        return self.nameField().queryText().getText(0, -1)

    def apply(self):
        self.press("Apply")
        button = self.tree.named(self.main, "Apply")
        wait_until(lambda: not self.tree.has(button, "SENSITIVE"), ANSWER_SECONDS,
                   "the end of Apply")

    def testDoesTheMainJob(self):
        self.assertEqual("Profile#1", self.writtenName())
        self.chooseSlot(3)
        wait_until(lambda: self.writtenName() == "Profile#3", ANSWER_SECONDS, "the slot's name")

        self.press("Create a new profile")
        wait_until(lambda: self.writtenName() == "NewPF_1", ANSWER_SECONDS, "the new name")
        field = self.nameField()
        field.queryComponent().grabFocus()
        self.assertTrue(field.queryEditableText().setTextContents("Arena"))
        wait_until(lambda: self.tree.has(field, "FOCUSED"), ANSWER_SECONDS, "the focus")
        # Going to another control commits the name; Cancel would not.
        self.tree.named(self.main, "Create a new profile").queryComponent().grabFocus()
        wait_until(lambda: self.slot(3)["name"] == "Arena", ANSWER_SECONDS, "the name on the mouse")
        self.assertEqual("Arena", self.writtenName())

        self.press("Switch to Battle LED Mode")
        question = self.tree.window("The LEDs change to Battle mode")
        self.assertEqual("normal", self.slot(3)["mode"])
        self.assertEqual("dialog", question.getRoleName())
        self.press("OK", question)
        wait_until(lambda: self.slot(3)["mode"] == "battle", ANSWER_SECONDS, "the mode")

        self.press("Enable link to program")
        link = self.tree.named(self.main, "Enable link to program")
        wait_until(lambda: self.tree.has(link, "CHECKED"), ANSWER_SECONDS, "the check mark")
        self.assertIsNone(self.library()["Arena"])
        self.apply()
        self.assertEqual({"Arena": ""}, self.library())

        self.chooseSlot(5)
        self.assertEqual("Profile#5", self.slot(5)["name"])
        self.chooseProfile("Arena")
        wait_until(lambda: self.writtenName() == "Arena", ANSWER_SECONDS, "the chosen profile")
        self.tree.named(self.main, "Select one profile: Arena")
        self.apply()
        slot = self.slot(5)
        self.assertEqual(("Arena", "battle"), (slot["name"], slot["mode"]))
        self.assertEqual([button["function"] for button in self.slot(3)["buttons"]],
                         [button["function"] for button in slot["buttons"]])

        # Only the button in the foot has this name.
        self.press("Cancel")
        wait_until(lambda: self.process.poll() is not None, ANSWER_SECONDS, "the end")
        self.assertEqual(0, self.process.returncode, self.desktop.log(self.process))

    def chooseProfile(self, name):
        self.press("Select one profile")
        self.tree.press(self.tree.named(self.main, name, "list item"))


if __name__ == "__main__":
    # The bindings cause warnings of their own.
    unittest.main(verbosity=2, warnings="ignore")
