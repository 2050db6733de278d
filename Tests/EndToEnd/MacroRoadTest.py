"""The whole road of a macro: recording it, editing two pauses, testing it, assigning it to a button,
reviewing what Apply would change, Apply, and undo. Once with the keys alone, and once through the
tree of accessible objects alone, but for the keys that are recorded. The keyboard's test only looks
into the tree, to see where the focus is.

MacroRoadTest.py BUILD [unittest options], where BUILD is the folder that holds bin and generated.
"""

import os
import unittest
from xml.etree import ElementTree

from accessible_test import ANSWER_SECONDS, AccessibleTest, wait_until

# More than there are Tab stops in a window.
MOST_TABS = 80
WHEEL_UP = 14
A, B = 0, 11
PRESS, RELEASE = 0, 1


class RoadTest(AccessibleTest):
    def macros(self):
        """The macros in the library: {name: [(key code, flag, delay)]}."""
        tree = ElementTree.parse(os.path.join(self.support, "MenuInfo.xml"))
        return {item.get("title"): [tuple(int(key.get(one)) for one in
                                          ("keyCode", "keyFlag", "delay"))
                                    for key in item.findall("KeyItem")]
                for item in tree.find("MacroList")}

    def function(self):
        return self.slot(1)["buttons"][WHEEL_UP]["function"]

    def canUse(self, name, window, isUsable=True):
        wait_until(lambda: self.tree.has(self.tree.named(window, name), "SENSITIVE") == isUsable,
                   ANSWER_SECONDS, "the state of \"%s\"" % name)

    def text(self, name, window, role=None):
        return self.tree.named(window, name, role).queryText().getText(0, -1)

    def strikeKeys(self):
        self.desktop.strike("+a", 0.1, "-a", 0.1, "+b", 0.1, "-b", 0.1)

    def findPopUp(self, name, window):
        return next((one for one in self.tree.shown(window)
                     if one.name == name and one.childCount > 0), None)

    def popUp(self, name, window):
        """A pop-up panel stands in the tree below the window that opens it."""
        return wait_until(lambda: self.findPopUp(name, window), ANSWER_SECONDS,
                          "the panel \"%s\"" % name)

    def popUpGone(self, name, window):
        wait_until(lambda: not self.findPopUp(name, window), ANSWER_SECONDS,
                   "the panel \"%s\" to go" % name)

    def assertPlayed(self, editor):
        """The pane of the test has played the edited pauses to the end, and nothing is wrong."""
        pane = self.popUp("What the mouse will send", editor)
        wait_until(lambda: "End" in self.text("What the mouse will send", pane, "text"),
                   ANSWER_SECONDS, "the end of the macro")
        lines = self.text("What the mouse will send", pane, "text").splitlines()
        self.assertEqual([line.split("\t")[1] for line in lines],
                         ["Press A", "Release A", "Press B", "Release B", "End"])
        times = [int(line.split(" ")[0]) for line in lines]
        self.assertEqual((times[0], times[1], times[4]), (0, 120, times[3]))
        self.assertEqual(times[2] - times[1], 250)
        self.assertNotIn("Warnings", [one.name for one in self.tree.shown(pane)])

    def assertKept(self):
        kept = self.macros()["Combo"]
        self.assertEqual([event[:2] for event in kept],
                         [(A, PRESS), (A, RELEASE), (B, PRESS), (B, RELEASE)])
        self.assertEqual([event[2] for event in kept[:2]], [120, 250])

    def gone(self, title):
        wait_until(lambda: title not in [one.name for one in self.tree.windows()], ANSWER_SECONDS,
                   "\"%s\" to go" % title)

    def assertListed(self):
        """The list of changes has the macro."""
        changes = self.popUp("What would Apply change?", self.main)
        wait_until(lambda: any(one.name.startswith("Take back: Wheel up") and "Combo" in one.name
                               for one in self.tree.shown(changes)), ANSWER_SECONDS,
                   "the change in the list")

    def assertUndone(self):
        self.tree.named(self.main, "Wheel up: Scroll Up")
        self.canUse("Apply", self.main)
        # The mouse keeps what was applied until the next Apply.
        self.assertIn("Combo", self.function())


class ByKeyboardAlone(RoadTest):
    def focused(self, window):
        return next((one for one in self.tree.shown(window)
                     if self.tree.has(one, "FOCUSED") and one.name), None)

    def goTo(self, name, window, key="Tab"):
        """Walks to the control with Tab."""
        seen = []
        for _ in range(MOST_TABS):
            at = wait_until(lambda: self.focused(window), ANSWER_SECONDS, "a focus")
            if at.name.startswith(name):
                return
            seen.append(at.name)
            self.desktop.key(key)
            wait_until(lambda: self.focused(window) not in (None, at), ANSWER_SECONDS,
                       "the focus to leave \"%s\"" % at.name)
        self.fail("no \"%s\" in %s" % (name, seen))

    def use(self, name, window, key="Tab"):
        self.goTo(name, window, key)
        self.desktop.key("space")

    def setPause(self, milliseconds, editor):
        """Of the selected line, and back to the lines."""
        self.goTo("Pause after the selected line", editor)
        self.desktop.key("ctrl+a")
        self.desktop.type(str(milliseconds))
        self.desktop.key("Return")
        wait_until(lambda: self.text("Pause after the selected line", editor) == str(milliseconds),
                   ANSWER_SECONDS, "the pause")
        self.backToLines(editor)

    def backToLines(self, editor):
        table = self.tree.named(editor, "Commands", "table")
        for _ in range(MOST_TABS):
            if self.tree.has(table, "FOCUSED"):
                return
            at = self.focused(editor)
            self.desktop.key("shift+Tab")
            wait_until(lambda: self.tree.has(table, "FOCUSED") or self.focused(editor) != at,
                       ANSWER_SECONDS, "the focus to move")
        self.fail("no way back to the lines")

    def record(self):
        self.use("Open Macro editor", self.main)
        editor = self.tree.window("Macro editor")
        self.use("Create New Macro", editor)
        # The new macro's name has the focus and is selected.
        wait_until(lambda: self.tree.has(self.tree.named(editor, "Macro name"), "FOCUSED"),
                   ANSWER_SECONDS, "the focus of the name")
        self.desktop.type("Combo")
        self.desktop.key("ctrl+r")
        self.canUse("Create New Macro", editor, False)
        self.strikeKeys()
        self.desktop.key("ctrl+r")
        self.canUse("Create New Macro", editor)
        return editor

    def testAMacroGoesTheWholeRoad(self):
        self.use("Create a new profile", self.main)
        self.canUse("Apply", self.main)
        editor = self.record()
        self.backToLines(editor)
        self.desktop.key("ctrl+Home")
        self.setPause(120, editor)
        self.desktop.key("Down")
        self.setPause(250, editor)
        self.use("Test what the mouse will send", editor)
        self.assertPlayed(editor)
        self.desktop.key("Escape")
        self.popUpGone("What the mouse will send", editor)
        self.use("Close", editor)
        self.gone("Macro editor")
        self.assertKept()

        self.use("Wheel up: Scroll Up", self.main)
        panel = self.tree.window("Button assignment")
        self.use("Function", panel)
        self.desktop.type("Macro")
        self.desktop.key("Return")
        self.use("Select a macro", panel)
        self.desktop.type("Combo")
        self.desktop.key("Return")
        self.use("Close", panel)
        self.gone("Button assignment")
        self.tree.named(self.main, "Wheel up: Combo")

        self.use("What would Apply change?", self.main)
        self.assertListed()
        self.desktop.key("Escape")
        self.popUpGone("What would Apply change?", self.main)
        self.use("Apply", self.main, "shift+Tab")
        self.canUse("Apply", self.main, False)
        self.assertIn("Combo", self.function())
        self.desktop.key("ctrl+z")
        self.assertUndone()


class ThroughTheTreeAlone(RoadTest):
    def setPause(self, row, milliseconds, editor):
        self.assertTrue(self.tree.named(editor, "Commands", "table").queryTable()
                        .addRowSelection(row))
        field = self.tree.named(editor, "Pause after the selected line")
        field.queryComponent().grabFocus()
        wait_until(lambda: self.tree.has(field, "FOCUSED"), ANSWER_SECONDS, "the focus")
        self.assertTrue(field.queryEditableText().setTextContents(str(milliseconds)))
        # Going to another control commits it.
        self.tree.named(editor, "Time strip").queryComponent().grabFocus()
        wait_until(lambda: ("%d ms" % milliseconds) in
                   [one.name for one in self.tree.shown(editor)], ANSWER_SECONDS, "the pause")

    def choose(self, button, entry, window):
        self.tree.press(next(one for one in self.tree.shown(window)
                             if one.name.startswith(button)))
        self.tree.press(self.tree.named(window, entry, "list item"))

    def testAMacroGoesTheWholeRoad(self):
        self.press("Create a new profile")
        self.press("Open Macro editor")
        editor = self.tree.window("Macro editor")
        self.press("Create New Macro", editor)
        name = self.tree.named(editor, "Macro name")
        self.assertTrue(name.queryEditableText().setTextContents("Combo"))
        self.press("Record", editor)
        self.canUse("Create New Macro", editor, False)
        self.strikeKeys()
        self.press("Stop", editor)
        self.canUse("Create New Macro", editor)
        self.setPause(0, 120, editor)
        self.setPause(1, 250, editor)
        self.press("Test what the mouse will send", editor)
        self.assertPlayed(editor)
        self.desktop.key("Escape")
        self.popUpGone("What the mouse will send", editor)
        self.press("Close", editor)
        self.gone("Macro editor")
        self.assertKept()

        self.press("Wheel up: Scroll Up")
        panel = self.tree.window("Button assignment")
        self.choose("Function", "Macro Key", panel)
        self.choose("Select a macro", "Combo", panel)
        self.press("Close", panel)
        self.gone("Button assignment")
        self.tree.named(self.main, "Wheel up: Combo")
        self.press("What would Apply change?")
        self.assertListed()
        self.desktop.key("Escape")
        self.popUpGone("What would Apply change?", self.main)
        self.press("Apply")
        self.canUse("Apply", self.main, False)
        self.assertIn("Combo", self.function())
        self.desktop.key("ctrl+z")
        self.assertUndone()


if __name__ == "__main__":
    # The bindings cause warnings of their own.
    unittest.main(verbosity=2, warnings="ignore")
