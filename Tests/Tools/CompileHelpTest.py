"""How the help document is compiled, and how its translations are kept in line."""

import contextlib
import io
import os
import struct
import sys
import tempfile
import unittest
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))
sys.dont_write_bytecode = True

import compile_help as compiler  # noqa: E402
import help_sources as sources  # noqa: E402
import update_help as updater  # noqa: E402

HEADER = 'msgid ""\nmsgstr ""\n"Content-Type: text/plain; charset=UTF-8\\n"\n'
TEXTS = (("Apply", "Apply", "Anwenden"), ("Applied to slot %1.", "Applied to slot %1.",
                                          "Auf Slot %1 angewendet."),
         ("Failed: %1.", "Failed: %1.", "Fehler: %1."), ("full", "the disk is full", "voll"),
         ("Two", "First. Second.", "Erstens. Zweitens."), ("A & B", "A & B", "A & B"))


def quoted(text):
    return '"%s"' % text.replace("\\", "\\\\").replace('"', '\\"')


def entry(chapter, english, translation, flag=""):
    return "\n%smsgctxt %s\nmsgid %s\nmsgstr %s\n" % (
        "#, %s\n" % flag if flag else "", quoted(chapter), quoted(english), quoted(translation))


class HelpTest(unittest.TestCase):
    def setUp(self):
        temporary = tempfile.TemporaryDirectory()
        self.addCleanup(temporary.cleanup)
        self.root = temporary.name
        self.folder = os.path.join(self.root, "help")
        self.texts = os.path.join(self.root, "texts")
        self.output = os.path.join(self.root, "out")
        os.makedirs(os.path.join(self.folder, "pictures"))
        os.makedirs(self.texts)
        self.write(self.texts, "LINGUAS", "de\n")
        self.write(self.texts, "Tooltip.pot", HEADER + "".join(
            "\n#. Main window: word\n#. Room: any\nmsgctxt %s\nmsgid %s\nmsgstr \"\"\n" %
            (quoted(name), quoted(english)) for name, english, _ in TEXTS))
        self.write(self.texts, "de.po", HEADER + '"X-Catalogue-Name: German\\n"\n' + "".join(
            entry(name, english, german) for name, english, german in TEXTS))
        self.write(self.folder, "help.css", "p { margin: 0; }\n")
        rows = b"\0\0\0\0" * 2
        with open(os.path.join(self.folder, "pictures", "a.png"), "wb") as file:
            file.write(b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR" + struct.pack(">II", 7, 2) +
                       zlib.compress(rows))
        self.document("<p>Press {Apply}.</p>")

    def write(self, folder, name, content):
        with open(os.path.join(folder, name), "w", encoding="utf-8") as file:
            file.write(content)

    def document(self, content):
        self.write(self.folder, "help.html", "<html><head><title>Help</title></head><body>"
                   "<h1>Help</h1><section id=\"a\"><h2>A</h2>%s</section></body></html>" % content)

    def german(self, *entries, title="Hilfe"):
        self.write(self.folder, "de.po", HEADER + entry("help", "Help", title) +
                   entry("a", "A", "A") + "".join(entries))

    def pages(self):
        return compiler.pages(self.folder, self.texts)

    def english(self, content):
        self.document(content)
        return self.pages()[0]["en"]

    def compile(self):
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            code = compiler.main([self.folder, self.texts, self.output])
        return code, errors.getvalue()

    def assertFails(self, words):
        code, errors = self.compile()
        self.assertEqual(code, 1)
        self.assertIn(words, errors)


class TextsOfTheProgram(HelpTest):
    def testStandAsTheWindowShowsThem(self):
        self.assertIn("Press <b>Apply</b>.", self.pages()[0]["en"])
        self.german(entry("a", "Press {Apply}.", "Klicken Sie auf {Apply}."))
        self.assertIn("Klicken Sie auf <b>Anwenden</b>.", self.pages()[0]["de"])

    def testAreFilledIn(self):
        self.assertIn("<b>Applied to slot 3</b>:",
                      self.english("<p>{Applied to slot %1.|3}: good.</p>"))
        self.assertIn("<b>Failed: the disk is full</b>", self.english("<p>{Failed: %1.|@full}</p>"))

    def testLoseThePeriodOfASingleSentenceOnly(self):
        self.assertIn("<p><b>First. Second.</b> More.</p>", self.english("<p>{Two} More.</p>"))
        self.assertIn("<p><b>First. Second</b>.</p>", self.english("<p>{Two}.</p>"))

    def testAreNoMarkup(self):
        self.assertIn("<b>A &amp; B</b>", self.english("<p>{A &amp; B}</p>"))

    def testMustExist(self):
        self.document("<p>{Aply}</p>")
        self.assertFails("{Aply} is no text of the program")

    def testMustBeFilledInWhole(self):
        self.document("<p>{Applied to slot %1.}</p>")
        self.assertFails("something is missing")
        self.document("<p>{Apply|3}</p>")
        self.assertFails("has no %1")


class Pages(HelpTest):
    def testHaveAListOfTheChapters(self):
        self.assertIn('<li><a href="#a">A</a></li>', self.pages()[0]["en"])

    def testHoldTheirPictures(self):
        page = self.english('<figure><img src="a.png" alt="Ground"/></figure>')
        self.assertRegex(page, 'src="data:image/png;base64,[^"]+"')
        self.assertRegex(page, 'width="7" height="2"')
        self.assertNotIn("a.png", page)

    def testNeedTheirPictures(self):
        self.document('<figure><img src="b.png" alt="Ground"/></figure>')
        self.assertFails("b.png")

    def testTranslateWhatIsInAPicture(self):
        self.document('<figure><img src="a.png" alt="Ground"/></figure>')
        self.german(entry("a", "Ground", "Grund &amp; Boden"))
        self.assertIn('alt="Grund &amp; Boden"', self.pages()[0]["de"])

    def testAreTheSameEachTime(self):
        self.assertEqual(self.pages(), self.pages())

    def testOfABrokenDocumentAreNotMade(self):
        self.write(self.folder, "help.html", "<html>")
        self.assertFails("help.html")


class Languages(HelpTest):
    def setUp(self):
        super().setUp()
        self.german(entry("a", "Press {Apply}.", "Drücken Sie {Apply}."))

    def files(self):
        return sorted(os.listdir(self.output))

    def testHaveAFileEach(self):
        self.assertEqual(self.compile(), (0, ""))
        self.assertEqual(self.files(), ["UserInterfaceSetupGuide_de.html",
                                        "UserInterfaceSetupGuide_en.html"])

    def testThatAreNotCompleteHaveNone(self):
        for broken in ("", entry("a", "Press {Apply}.", ""),
                       entry("a", "Press {Apply}.", "Drücken Sie {Apply}.", "fuzzy")):
            self.setUp()
            self.compile()
            self.german(broken)
            code, errors = self.compile()
            self.assertEqual(code, 0)
            self.assertIn("de.po lacks 1 paragraphs", errors)
            self.assertEqual(self.files(), ["UserInterfaceSetupGuide_en.html"])

    def testMustKeepTheTextsOfTheProgram(self):
        self.german(entry("a", "Press {Apply}.", "Drücken Sie Anwenden."))
        self.assertFails("de.po")

    def testMustKeepTheMarks(self):
        self.document('<p>Type <code>ls</code> in <a href="#a">A</a>.</p>')
        english = 'Type <code>ls</code> in <a href="#a">A</a>.'
        for wrong in ('<code>ls</code>', '<code>dir</code> <a href="#a">A</a>',
                      '<code>ls</code> <a href="#b">A</a>', '<code>ls</code> <a href="#a">A'):
            self.german(entry("a", english, wrong))
            self.assertFails("de.po")
        self.german(entry("a", english, 'In <a href="#a">B</a>: <code>ls</code>'))
        self.assertEqual(self.compile()[0], 0)

    def testNeedNoEntryForATextOfTheProgramAlone(self):
        self.document("<p>{Apply}, {Two}</p><p><code>ls</code></p>")
        self.german()
        self.assertEqual(self.compile(), (0, ""))

    def testMustBelongToTheDocument(self):
        self.german(entry("a", "Press {Apply}.", "Drücken Sie {Apply}."), entry("a", "Old", "Alt"))
        self.assertFails("run Tools/update_help.py")

    def testMustBeLanguagesOfTheProgram(self):
        self.write(self.folder, "nl.po", HEADER)
        self.assertFails("nl.po")

    def testAreNamedAsBrowsersNameThem(self):
        self.assertEqual([sources.languageTag(code) for code in ("de", "pt_BR", "zh_CN", "zh_TW")],
                         ["de", "pt-BR", "zh-Hans", "zh-Hant"])


class Update(HelpTest):
    def setUp(self):
        super().setUp()
        self.german(entry("a", "Press {Apply}.", "Drücken Sie {Apply}."))

    def entries(self):
        self.assertEqual(updater.main([self.folder]), 0)
        return [(one.msgctxt, one.msgid, one.msgstr, one.flags)
                for one in sources.load(os.path.join(self.folder, "de.po"))]

    def testKeepsWhatIsTheSame(self):
        self.assertEqual(self.entries(), [("help", "Help", "Hilfe", []), ("a", "A", "A", []),
                                          ("a", "Press {Apply}.", "Drücken Sie {Apply}.", [])])

    def testMarksWhatHasChanged(self):
        self.document("<p>Press {Apply} now.</p>")
        self.assertEqual(self.entries()[2], ("a", "Press {Apply} now.", "Drücken Sie {Apply}.",
                                             ["fuzzy"]))

    def testAddsWhatIsNewAndTakesOutWhatIsGone(self):
        self.document("<p>Something entirely different.</p>")
        self.assertEqual(self.entries()[2], ("a", "Something entirely different.", "", []))
        self.assertEqual(len(self.entries()), 3)


if __name__ == "__main__":
    unittest.main()
