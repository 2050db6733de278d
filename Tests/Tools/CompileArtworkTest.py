"""How the artwork compiler handles valid masters and refuses invalid ones."""

import contextlib
import io
import json
import os
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))
sys.dont_write_bytecode = True

import artwork_masters as masters  # noqa: E402
import compile_artwork as compiler  # noqa: E402
from png_pixels import decoded  # noqa: E402

THEME_CSS = """
:root { --ink: #000000; --glow: #FF0000; }
.key { fill: #00FF00; }
.Over .key { fill: var(--glow); }
.wordKey { font-size: 12px; font-weight: 500; fill: #FFFFFF; }
.Over .wordKey { fill: var(--glow); }
"""
THEME_SVG = """<svg xmlns="http://www.w3.org/2000/svg"><defs><path id="tick" d="M0 0L4 4"/></defs></svg>"""
MASTER = """<svg xmlns="http://www.w3.org/2000/svg" width="40" height="30" viewBox="0 0 40 30">
  <defs><polyline id="lead" points="2,20 30,20 30,25"/></defs>
  <rect width="40" height="30" fill="var(--ink)"/>
  <g id="okBtn" data-kind="button" transform="translate(4 2)">
    <rect class="frame key" width="16" height="10" rx="3"/>
  </g>
  <rect id="barView" data-kind="image" x="24" y="2" width="8" height="8" class="key"/>
  <text data-text-key="OK" data-for="okBtn" data-padding="2 2" class="wordKey">OK</text>
  <text data-text-key="Title" data-box="0 14 40 4" data-align="left" class="wordKey">Title</text>
  <g id="Line1"><use href="#lead" stroke="#FFFFFF" fill="none"/></g>
</svg>"""
SCREENS = {"Panel": {"controls": ["okBtn", "barView"], "lines": ["Line1"]}}


class CompilerTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.output = os.path.join(self.folder, "output")
        self.write("theme.css", THEME_CSS)
        self.write("theme.svg", THEME_SVG)
        self.write("screens.json", json.dumps(SCREENS))
        self.write("Panel.svg", MASTER)

    def write(self, name, content):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(content)

    def read(self, name):
        with open(os.path.join(self.folder, name), "rb") as file:
            return file.read()

    def change(self, old, new):
        self.assertIn(old, MASTER)
        self.write("Panel.svg", MASTER.replace(old, new))

    def screen(self):
        return masters.readScreens(self.folder)[1][0]

    def assertRefused(self, *parts):
        """The compiler, run as a program, exits with 1 and reports the error and its place."""
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            self.assertEqual(compiler.main([self.folder]), 1)
        for part in parts:
            self.assertIn(part, errors.getvalue())


class Frames(CompilerTest):
    def testComeFromTheDrawing(self):
        frame = self.screen().controls[0].frame
        self.assertEqual((frame.x, frame.y, frame.width, frame.height, frame.radius),
                         (4, 2, 16, 10, 3))

    def testFollowAMovedGroup(self):
        self.change("translate(4 2)", "translate(5 6)")
        frame = self.screen().controls[0].frame
        self.assertEqual((frame.x, frame.y), (5, 6))

    def testAMissingControlIsNamed(self):
        self.change("id=\"okBtn\"", "id=\"okButton\"")
        self.assertRefused("Panel.svg", "missing control", "\"okBtn\"")

    def testAnUnknownControlIsNamed(self):
        self.write("screens.json", json.dumps({"Panel": {"controls": ["barView"]}}))
        self.write("Panel.svg", MASTER.replace("data-for=\"okBtn\"", "data-for=\"barView\""))
        self.assertRefused("Panel.svg", "\"okBtn\" is no control")

    def testAnIdThatIsThereTwiceIsRefused(self):
        self.change("id=\"lead\"", "id=\"okBtn\"")
        self.assertRefused("\"okBtn\" is there twice")

    def testAControlOutsideItsScreenIsRefused(self):
        self.change("translate(4 2)", "translate(4 21)")
        self.assertRefused("\"okBtn\"", "outside its screen of 40x30")

    def testOverlappingControlsAreRefused(self):
        self.change("x=\"24\"", "x=\"19\"")
        self.assertRefused("\"okBtn\"", "\"barView\"", "overlap")

    def testControlsThatTouchAreFine(self):
        self.change("x=\"24\"", "x=\"20\"")
        self.assertEqual(len(self.screen().controls), 2)

    def testControlsOfDifferentPagesMayShareAPlace(self):
        self.write("Panel.svg", MASTER
                   .replace("id=\"okBtn\"", "id=\"okBtn\" data-page=\"a\"")
                   .replace("x=\"24\"", "data-page=\"b\" x=\"19\""))
        self.assertEqual(len(self.screen().controls), 2)

    def testAHalfPixelIsRefused(self):
        self.change("translate(4 2)", "translate(4.5 2)")
        self.assertRefused("\"okBtn\"", "4.5 is not a whole number")

    def testARotatedControlIsRefused(self):
        self.change("translate(4 2)", "rotate(4)")
        self.assertRefused("\"okBtn\"", "rotate(4)")

    def testAGroupWithoutFrameIsRefused(self):
        self.change("frame key", "key")
        self.assertRefused("\"okBtn\"", "no rectangle")

    def testAViewBoxThatScalesIsRefused(self):
        self.change("0 0 40 30", "0 0 80 60")
        self.assertRefused("viewBox")

    def testABrokenMasterIsNamed(self):
        self.write("Panel.svg", MASTER[:-8])
        self.assertRefused("Panel.svg")

    def testTheHeaderHasThem(self):
        theme, screens = masters.readScreens(self.folder)
        text = compiler.header(theme, screens)
        self.assertIn("struct Panel {", text)
        self.assertIn("static constexpr Frame okBtn{4, 2, 16, 10, 3};", text)
        self.assertIn("inline constexpr std::uint32_t glow = 0xFF0000;", text)
        self.assertIn("{\"Line1\", {0, 16, 35, 14, 0}},", text)

    def testOfAPictureWithoutControlsAreNoTable(self):
        self.write("screens.json", json.dumps({"Panel": {"controls": []}}))
        self.write("Panel.svg", MASTER.replace("data-kind", "data-part")
                   .replace("data-for=\"okBtn\" data-padding=\"2 2\"", "data-box=\"0 0 9 9\""))
        theme, screens = masters.readScreens(self.folder)
        text = compiler.header(theme, screens)
        self.assertIn("struct Panel {", text)
        self.assertNotIn("> controls", text)

    def testOfALineHoldItsRectangles(self):
        self.change("<g id=\"Line1\">", "<g id=\"Line1\"><rect x=\"24\" y=\"4\" width=\"10\" "
                    "height=\"8\"/>")
        self.assertEqual(repr(self.screen().lines[0][1]), "0,0 39x30")


class Words(CompilerTest):
    def testStandInTheirControlLessThePadding(self):
        word = self.screen().words[0]
        self.assertEqual([word[name] for name in ("key", "x", "y", "width", "height", "align")],
                         ["OK", 6, 2, 12, 10, "center"])

    def testHaveAColorForEachState(self):
        colors = self.screen().words[0]["colors"]
        self.assertEqual((colors["Normal"], colors["Over"], colors["Down"]),
                         ("#FFFFFF", "#FF0000", "#FFFFFF"))

    def testOutsideControlsAreOnlyInTheNormalPicture(self):
        self.assertEqual(list(self.screen().words[1]["colors"]), ["Normal"])

    def testWithoutKeyAreRefused(self):
        self.change("data-text-key=\"Title\"", "")
        self.assertRefused("\"Title\" has no data-text-key")

    def testOfAnUnknownClassAreRefused(self):
        self.change("class=\"wordKey\">Title", "class=\"wordLost\">Title")
        self.assertRefused(".wordLost")

    def testForAnUnknownControlAreRefused(self):
        self.change("data-for=\"okBtn\"", "data-for=\"noBtn\"")
        self.assertRefused("\"noBtn\"")

    def testMustBeInTheCatalogue(self):
        catalogue = os.path.join(self.folder, "Tooltip.xml")
        self.write("Tooltip.xml", "<T><Lan name='US'><Item name='OK' text='OK'/></Lan></T>")
        errors = io.StringIO()
        with contextlib.redirect_stderr(errors):
            self.assertEqual(compiler.main([self.folder, "--catalogue", catalogue]), 1)
        self.assertIn("\"Title\" is not in Tooltip.xml", errors.getvalue())


class Variants(CompilerTest):
    def testKeepTheirOwnElementsOnly(self):
        self.write("Panel.svg", MASTER.replace("id=\"barView\"",
                                               "id=\"barView\" data-in=\"WarningA\""))
        self.write("screens.json", json.dumps({"Panel": {"variants": {
            "WarningA": ["okBtn", "barView"], "WarningB": ["okBtn"]}}}))
        screens = masters.readScreens(self.folder)[1]
        self.assertEqual([(screen.name, [control.name for control in screen.controls])
                          for screen in screens],
                         [("WarningA", ["okBtn", "barView"]), ("WarningB", ["okBtn"])])

    def testMayHaveTheNameOfTheirMaster(self):
        self.write("Panel.svg", MASTER.replace("id=\"barView\"",
                                               "id=\"barView\" data-in=\"Panel\""))
        self.write("screens.json", json.dumps({"Panel": {"variants": {
            "Panel": ["okBtn", "barView"], "PanelPlain": ["okBtn"]}}}))
        self.assertEqual([screen.name for screen in masters.readScreens(self.folder)[1]],
                         ["Panel", "PanelPlain"])

    def testWithoutStatesHaveTheirOwnNames(self):
        self.write("screens.json", json.dumps({"Panel": {"single": True, "variants": {
            "IconA": ["okBtn", "barView"], "IconB": ["okBtn", "barView"]}}}))
        screens = masters.readScreens(self.folder)[1]
        self.assertEqual([name for name, _, _ in compiler.pictures(screens)], ["IconA", "IconB"])


class Pictures(CompilerTest):
    def compile(self, folder="output"):
        self.assertEqual(compiler.main([self.folder, "--pictures",
                                        os.path.join(self.folder, folder)]), 0)

    def picture(self, name):
        return decoded(os.path.join(self.output, name))

    def testAreThereForEveryStateAndScale(self):
        self.compile()
        self.assertEqual(sorted(os.listdir(self.output)), sorted(
            name + suffix + ".png" for suffix in ("", "@2x") for name in
            ["Panel_" + state for state in masters.STATES] + ["Line1"]))
        self.assertEqual(self.picture("Panel_Normal.png")[:2], (40, 30))
        self.assertEqual(self.picture("Panel_Normal@2x.png")[:2], (80, 60))

    def testShowTheirState(self):
        self.compile()
        self.assertEqual(self.picture("Panel_Normal.png")[2][7][12], (0, 255, 0, 255))
        self.assertEqual(self.picture("Panel_Over.png")[2][7][12], (255, 0, 0, 255))

    def testOfOtherStatesHoldOnlyTheControls(self):
        self.compile()
        self.assertEqual(self.picture("Panel_Normal.png")[2][25][5], (0, 0, 0, 255))
        self.assertEqual(self.picture("Panel_Over.png")[2][25][5], (0, 0, 0, 0))

    def testOfAScreenThatChangesAsAWholeAreWhole(self):
        self.change("viewBox=\"0 0 40 30\">", "viewBox=\"0 0 40 30\" data-whole=\"yes\">")
        self.compile()
        self.assertEqual(self.picture("Panel_Over.png")[2][25][5], (0, 0, 0, 255))
        self.assertEqual(list(self.screen().words[1]["colors"]), list(masters.STATES))

    def testWithoutStatesHaveTheNameOfTheirMaster(self):
        self.write("screens.json", json.dumps({"Panel": {
            "single": True, "controls": ["okBtn", "barView"]}}))
        self.compile()
        self.assertEqual(sorted(os.listdir(self.output)), ["Panel.png", "Panel@2x.png"])
        self.assertEqual(self.picture("Panel.png")[2][7][12], (0, 255, 0, 255))

    def testHaveNoWords(self):
        self.compile()
        drawn = self.read("output/Panel_Normal.png")
        for text in ("OK</text>", "Title</text>"):
            self.assertIn(text, MASTER)
        without = ElementTree.fromstring(MASTER)
        for element in without.findall(masters.svgTag("text")):
            without.remove(element)
        self.write("Panel.svg", ElementTree.tostring(without, encoding="unicode"))
        self.compile()
        self.assertEqual(self.read("output/Panel_Normal.png"), drawn)

    def testOfALineHoldNothingElse(self):
        self.compile()
        rows = self.picture("Line1.png")[2]
        self.assertEqual(rows[7][12], (0, 0, 0, 0))
        self.assertGreater(rows[20][10][3], 0)

    def testAreTheSameEveryTime(self):
        self.compile()
        self.compile("again")
        for name in os.listdir(self.output):
            self.assertEqual(self.read("output/" + name), self.read("again/" + name), name)

    def testThatAreRightAlreadyAreNotWrittenAgain(self):
        self.compile()
        path = os.path.join(self.output, "Panel_Normal.png")
        os.utime(path, (1000, 1000))
        self.compile()
        self.assertEqual(os.stat(path).st_mtime, 1000)


    def testThatAreReplacedStayWholeForAProgramThatMappedThem(self):
        self.compile()
        with open(os.path.join(self.output, "Panel_Normal.png"), "rb") as mapped:
            before = os.fstat(mapped.fileno()).st_size
            self.change("rx=\"3\"", "rx=\"1\"")
            self.compile()
            self.assertEqual(os.fstat(mapped.fileno()).st_size, before)
            self.assertNotEqual(mapped.read(), self.read("output/Panel_Normal.png"))
        self.assertEqual([name for name in os.listdir(self.output) if "new" in name], [])


class WordFiles(CompilerTest):
    def compile(self):
        self.assertEqual(compiler.main([self.folder, "--words", self.output]), 0)
        return sorted(os.listdir(self.output))

    def testAreThereForEachScreenWithWords(self):
        self.assertEqual(self.compile(), ["Panel.json"])
        content = json.loads(self.read("output/Panel.json"))
        self.assertEqual([word["text"] for word in content["words"]], ["OK", "Title"])
        self.assertEqual(content["states"], list(masters.STATES))

    def testOfAScreenThatLostItsWordsAreGone(self):
        self.compile()
        without = ElementTree.fromstring(MASTER)
        for element in without.findall(masters.svgTag("text")):
            without.remove(element)
        self.write("Panel.svg", ElementTree.tostring(without, encoding="unicode"))
        self.assertEqual(self.compile(), [])


class DecodedPictures(CompilerTest):
    """What the program maps instead of decoding a PNG."""

    def startWith(self, *names):
        self.write("screens.json", json.dumps(
            {"Panel": dict(SCREENS["Panel"], startUp=list(names))}))

    def compile(self):
        self.assertEqual(compiler.main([self.folder, "--pictures", self.output, "--decoder",
                                        os.environ["DECODE_PICTURE"]]), 0)

    def pixels(self, name):
        """Width, height, whether some are transparent, the pieces and rows of RGBA pixels."""
        content = self.read("output/" + name)
        numbers = memoryview(content).cast("I")
        self.assertEqual(content[:4], b"NPX1")
        width, height, hasAlpha, count = numbers[1:5]
        rows = [[(0, 0, 0, 0)] * width for _ in range(height)]
        pieces, at = [], 5 + 4 * count
        for index in range(count):
            x, y, pieceWidth, pieceHeight = piece = tuple(numbers[5 + 4 * index:9 + 4 * index])
            pieces.append(piece)
            for row in rows[y:y + pieceHeight]:
                for column, pixel in enumerate(numbers[at:at + pieceWidth], x):
                    row[column] = (pixel >> 16 & 255, pixel >> 8 & 255, pixel & 255, pixel >> 24)
                at += pieceWidth
        self.assertEqual(at, len(numbers))
        return width, height, hasAlpha, pieces, rows

    def testAreThoseOfTheStart(self):
        self.startWith("Panel_Normal", "Panel_Over")
        self.compile()
        self.assertEqual(sorted(name for name in os.listdir(self.output) if "decoded" in name),
                         ["Panel_Normal.decoded", "Panel_Over.decoded"])

    def testHoldThePixelsOfTheirPngs(self):
        self.startWith("Panel_Normal", "Panel_Over")
        self.compile()
        for name in ("Panel_Normal", "Panel_Over"):
            width, height, _, _, rows = self.pixels(name + ".decoded")
            multiplied = [[tuple((channel * pixel[3] * 2 + 255) // 510 for channel in pixel[:3]) +
                           (pixel[3],) for pixel in row]
                          for row in decoded(os.path.join(self.output, name + ".png"))[2]]
            self.assertEqual((width, height), (40, 30))
            self.assertEqual(rows, multiplied, name)

    def testLeaveOutWhatIsTransparent(self):
        self.startWith("Panel_Over")
        self.compile()
        _, _, hasAlpha, pieces, _ = self.pixels("Panel_Over.decoded")
        self.assertEqual(hasAlpha, 1)
        # The button and the bar stand less than eight pixels apart.
        self.assertEqual(pieces, [(4, 2, 28, 10)])
        self.change("x=\"24\" y=\"2\" width=\"8\"", "x=\"32\" y=\"2\" width=\"8\"")
        self.compile()
        self.assertEqual(self.pixels("Panel_Over.decoded")[3], [(4, 2, 16, 10), (32, 2, 8, 8)])

    def testOfAPictureThatIsNotThereAreRefused(self):
        self.startWith("Panel_Normal", "Panel_Hovered")
        self.assertRefused("Panel.svg", "\"Panel_Hovered\"")

    def testAreInTheHeader(self):
        self.startWith("Panel_Over")
        self.assertEqual(compiler.main([self.folder, "--header",
                                        os.path.join(self.folder, "Frames.h")]), 0)
        self.assertIn(b"startUpPictures{\n    \"Panel_Over\",\n};", self.read("Frames.h"))


if __name__ == "__main__":
    unittest.main()
