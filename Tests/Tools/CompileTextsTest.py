"""How the texts are compiled, kept in line with the template, and taken over from a catalogue."""

import contextlib
import io
import os
import shutil
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))
sys.dont_write_bytecode = True

import compile_texts as compiler  # noqa: E402
import text_sources as sources  # noqa: E402
import update_texts as updater  # noqa: E402

HEADER = 'msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n'


def entry(name, english, translation="", note="Main window: word\nRoom: 10 letters", controls=""):
    lines = ["#. " + line for line in note.split("\n")]
    if controls:
        lines.append("#: " + controls)
    for keyword, text in (("msgctxt", name), ("msgid", english), ("msgstr", translation)):
        lines.append('%s "%s"' % (keyword, text.replace('"', '\\"')))
    return "\n" + "\n".join(lines) + "\n"


class TextsTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.folder = temporary.name
        self.write("LINGUAS", "# in this order\nfr\nde\n")
        self.template(entry("Quit", "Quit"))
        self.language("de", "German", entry("Quit", "Quit", "Beenden"))
        self.language("fr", "French", entry("Quit", "Quit", "Quitter"))

    def write(self, name, content):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(content)

    def read(self, name):
        with open(os.path.join(self.folder, name), encoding="utf-8") as file:
            return file.read()

    def template(self, *entries):
        self.write("Tooltip.pot", HEADER + "".join(entries))

    def language(self, code, name, *entries):
        self.write(code + ".po", HEADER + '"X-Catalogue-Name: %s\\n"\n' % name + "".join(entries))

    # The texts of the catalogue: language, name, text, view and tag of each item.
    def items(self):
        root = ElementTree.fromstring(compiler.catalogue(self.folder).encode())
        return [(section.get("name"), item.get("name"), item.get("text"), item.get("viewID"),
                 item.get("btnID")) for section in root for item in section.iter("Item")]

    def assertRefuses(self, *words):
        with self.assertRaises(sources.TextsError) as raised:
            compiler.catalogue(self.folder)
        for word in words:
            self.assertIn(word, str(raised.exception))


class Compile(TextsTest):
    def testPutsEnglishFirstAndTheOthersInTheGivenOrder(self):
        self.assertEqual(self.items(), [("US", "Quit", "Quit", "0", ""),
                                        ("French", "Quit", "Quitter", "0", ""),
                                        ("German", "Quit", "Beenden", "0", "")])

    def testGivesATextToEachOfItsControls(self):
        self.template(entry("Quit", "Quit", controls="view4:273 view1:130"))
        self.assertEqual(self.items()[2:4], [("French", "Quit", "Quitter", "4", "273"),
                                             ("French", "Quit", "Quitter", "1", "130")])

    def testLeavesOutWhatIsNotTranslated(self):
        self.language("de", "German", entry("Quit", "Quit"))
        self.language("fr", "French")
        self.assertEqual(self.items(), [("US", "Quit", "Quit", "0", "")])

    def testLeavesOutATranslationThatIsMarkedFuzzy(self):
        self.language("de", "German", "\n#, fuzzy" + entry("Quit", "Quit", "Beenden"))
        self.assertNotIn("German", [item[0] for item in self.items()])

    def testWritesATextWithoutRoomEmptyInEveryLanguage(self):
        self.template(entry("Nothing", "Nothing", note="Nowhere: x\nRoom: 0 letters",
                            controls="view4:270"))
        self.language("de", "German")
        self.language("fr", "French")
        self.assertEqual(self.items(), [(language, "Nothing", "", "4", "270")
                                        for language in ("US", "French", "German")])

    def testKeepsEveryCharacterOfATextAndOfAName(self):
        self.template(entry('a "b" <c> & \'d\'', "“é”…\u00a0%1"))
        self.language("de", "German")
        self.language("fr", "French")
        self.assertEqual(self.items(), [("US", 'a "b" <c> & \'d\'', "“é”…\u00a0%1", "0", "")])

    def testGivesTheSameBytesEachTime(self):
        self.assertEqual(compiler.catalogue(self.folder), compiler.catalogue(self.folder))

    def testWritesNothingWhenItRefuses(self):
        self.template(entry("", "Quit"))
        output = os.path.join(self.folder, "out", "Tooltip.xml")
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            self.assertEqual(compiler.main([self.folder, output]), 1)
        self.assertIn("Tooltip.pot:", errors.getvalue())
        self.assertFalse(os.path.exists(output))


class Refusals(TextsTest):
    def testNamesFileAndLineOfATextThatIsThereTwice(self):
        self.template(entry("Quit", "Quit"), entry("Quit", "Leave"))
        self.assertRefuses("Tooltip.pot:", '"Quit"', "twice")
        self.template(entry("Quit", "Quit"))
        self.language("de", "German", entry("Quit", "Quit", "A"), entry("Quit", "Quit", "B"))
        self.assertRefuses("de.po:", "twice")

    def testWantsTheNoteForTheTranslator(self):
        self.template(entry("Quit", "Quit", note="Room: 10 letters"))
        self.assertRefuses("where it stands")
        self.template(entry("Quit", "Quit", note="Main window: word"))
        self.assertRefuses("how long")
        self.template(entry("Quit", "Quit", note="Main window: word\nRoom: short"))
        self.assertRefuses("Room: short")

    def testWantsControlsThatHaveNoOtherText(self):
        self.template(entry("Quit", "Quit", controls="main.cpp:12"))
        self.assertRefuses("main.cpp:12")
        self.template(entry("Quit", "Quit", controls="view1:5"),
                      entry("Leave", "Leave", controls="view1:5"))
        self.assertRefuses("view1:5", "Quit")

    def testTakesNoTranslationOfATextThatIsNotThere(self):
        self.language("de", "German", entry("Leave", "Leave", "Verlassen"))
        self.assertRefuses("de.po:", "Leave", "not in the template")

    def testTakesNoTranslationOfAnotherEnglishText(self):
        self.template(entry("Quit", "Leave"))
        self.assertRefuses("fr.po:", "another English text")

    def testWantsThePlaceholdersOfTheEnglishText(self):
        self.template(entry("At", "%1 of %2"))
        self.language("fr", "French", entry("At", "%1 of %2", "%2 : %1"))
        self.language("de", "German", entry("At", "%1 of %2", "%1 von"))
        self.assertRefuses("de.po:", "%1 %2")

    def testTakesNothingLongerThanTheRoom(self):
        self.language("de", "German", entry("Quit", "Quit", "Elf Zeichen"))
        self.assertRefuses("11 letters", "10")
        self.language("de", "German", entry("Quit", "Quit", "終了終了終了"))
        self.assertRefuses("12 letters", "10")

    def testWantsTheOrderToNameTheFiles(self):
        self.write("LINGUAS", "de\n")
        self.assertRefuses("LINGUAS", "fr")
        self.write("LINGUAS", "de\nfr\nit\n")
        self.assertRefuses("LINGUAS", "it")

    def testWantsANameOfItsOwnForEachLanguage(self):
        self.language("de", "French", entry("Quit", "Quit", "Beenden"))
        self.assertRefuses("French")
        self.write("de.po", HEADER)
        self.assertRefuses("de.po", "X-Catalogue-Name")

    def testNamesTheFileThatIsNoPo(self):
        self.write("de.po", HEADER + 'msgid "broken\nnonsense\n')
        self.assertRefuses("de.po")


class Update(TextsTest):
    def testGivesALanguageTheTemplatesEntriesNotesAndOrder(self):
        self.template(entry("Menu", "Menu", note="Main window: menu\nRoom: 12 letters"),
                      entry("Quit", "Quit"))
        self.language("de", "German", entry("Old", "Old", "Alt"), entry("Quit", "Quit", "Beenden"))
        updater.updateAll(self.folder)
        content = self.read("de.po")
        self.assertNotIn("Old", content)
        self.assertIn("#. Main window: menu\n#. Room: 12 letters\nmsgctxt \"Menu\"", content)
        self.assertLess(content.index('msgid "Menu"'), content.index('msgid "Quit"'))
        self.assertIn(("German", "Quit", "Beenden", "0", ""), self.items())

    def testMarksATranslationWhoseEnglishTextHasChanged(self):
        self.template(entry("Quit", "Leave"))
        updater.updateAll(self.folder)
        self.assertIn("#, fuzzy\n#| msgid \"Quit\"", self.read("de.po"))
        self.assertEqual([item[0] for item in self.items()], ["US"])
        updater.updateAll(self.folder)
        self.assertIn("#, fuzzy\n#| msgid \"Quit\"", self.read("de.po"))

    def testChangesNothingThatIsInLine(self):
        updater.updateAll(self.folder)
        before = self.read("de.po")
        updater.updateAll(self.folder)
        self.assertEqual(self.read("de.po"), before)


class Import(TextsTest):
    def importFrom(self, sections):
        self.write("Old.xml", "<Tooltip>%s</Tooltip>" % sections)
        output = io.StringIO()
        with contextlib.redirect_stdout(output):
            self.assertEqual(
                updater.main([self.folder, "--import", os.path.join(self.folder, "Old.xml")]), 0)
        return output.getvalue()

    def testTakesWhatTheSourcesLack(self):
        said = self.importFrom(
            '<Lan name="US"><Item name="Quit" text="Quit" viewID="1" btnID="5"/>'
            '<Item name="New" text="New one" viewID="0" btnID=""/></Lan>'
            '<Lan name="German"><Item name="New" text="Neu" viewID="0" btnID=""/></Lan>')
        self.assertIn("New", said)
        self.assertEqual(self.items(), [("US", "Quit", "Quit", "1", "5"),
                                        ("US", "New", "New one", "0", ""),
                                        ("French", "Quit", "Quitter", "1", "5"),
                                        ("German", "Quit", "Beenden", "1", "5"),
                                        ("German", "New", "Neu", "0", "")])

    def testKeepsWhatTheSourcesHave(self):
        before = self.items()
        said = self.importFrom(
            '<Lan name="US"><Item name="Quit" text="Leave" viewID="0" btnID=""/></Lan>'
            '<Lan name="German"><Item name="Quit" text="Raus" viewID="0" btnID=""/></Lan>')
        self.assertIn("Leave", said)
        self.assertEqual(self.items(), before)


class Shipped(unittest.TestCase):
    FOLDER = os.path.join(ROOT, "Resources", "Texts")

    def testTheLanguagesAreInLineWithTheTemplate(self):
        names = [name for name in os.listdir(self.FOLDER)
                 if os.path.isfile(os.path.join(self.FOLDER, name))]
        with tempfile.TemporaryDirectory() as folder:
            for name in names:
                shutil.copy(os.path.join(self.FOLDER, name), folder)
            updater.updateAll(folder)
            for name in names:
                with open(os.path.join(self.FOLDER, name), "rb") as shipped, \
                        open(os.path.join(folder, name), "rb") as updated:
                    self.assertEqual(shipped.read(), updated.read(),
                                     name + ": run Tools/update_texts.py")


if __name__ == "__main__":
    unittest.main()
