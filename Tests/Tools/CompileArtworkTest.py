"""How the artwork compiler handles valid masters and refuses invalid ones."""

import contextlib
import io
import json
import os
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))
sys.dont_write_bytecode = True

import artwork_masters as masters  # noqa: E402
import compile_artwork as compiler  # noqa: E402

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


def decoded(path):
    """Width, height and rows of RGBA pixels of a picture with eight bits a channel."""
    with open(path, "rb") as file:
        content = file.read()
    position, data = 8, b""
    while position < len(content):
        length = int.from_bytes(content[position:position + 4], "big")
        kind = content[position + 4:position + 8]
        body = content[position + 8:position + 8 + length]
        if kind == b"IHDR":
            width, height = int.from_bytes(body[:4], "big"), int.from_bytes(body[4:8], "big")
            channels = {2: 3, 6: 4}[body[9]]
        elif kind == b"IDAT":
            data += body
        position += 12 + length
    data = zlib.decompress(data)
    stride = width * channels
    previous, rows = bytearray(stride), []
    for y in range(height):
        mode = data[y * (stride + 1)]
        row = bytearray(data[y * (stride + 1) + 1:(y + 1) * (stride + 1)])
        for index in range(stride):
            left = row[index - channels] if index >= channels else 0
            above = previous[index]
            corner = previous[index - channels] if index >= channels else 0
            if mode == 1:
                row[index] = (row[index] + left) & 255
            elif mode == 2:
                row[index] = (row[index] + above) & 255
            elif mode == 3:
                row[index] = (row[index] + (left + above) // 2) & 255
            elif mode == 4:
                guess = left + above - corner
                nearest = min((abs(guess - left), 0, left), (abs(guess - above), 1, above),
                              (abs(guess - corner), 2, corner))[2]
                row[index] = (row[index] + nearest) & 255
        previous = row
        rows.append([tuple(row[x:x + channels]) + ((255,) if channels == 3 else ())
                     for x in range(0, stride, channels)])
    return width, height, rows


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


class ShippedArtwork(unittest.TestCase):
    """The masters of this tree."""

    @classmethod
    def setUpClass(cls):
        cls.theme, cls.screens = masters.readScreens(os.path.join(ROOT, "Resources", "artwork"))

    def testHasEveryScreen(self):
        self.assertEqual([screen.name for screen in self.screens][:4],
                         ["MainView", "MainViewSub1", "MainViewSub2", "WarningNoDevice"])

    def testPicturesOfTheMouseFillTheirPlace(self):
        sizes = {screen.name: (screen.width, screen.height) for screen in self.screens}
        places = {control.name: control.frame for control in self.screens[0].controls}
        for view, screen in (("subView1", "MainViewSub1"), ("subView2", "MainViewSub2")):
            self.assertEqual((places[view].width, places[view].height), sizes[screen])

    def testDialogsHaveTheirSize(self):
        for screen in self.screens:
            if screen.name.startswith("Warning"):
                self.assertEqual((screen.width, screen.height), (545, 155))

    def frames(self, name):
        """The size of a screen and the frames of its controls."""
        screen = next(screen for screen in self.screens if screen.name == name)
        return ((screen.width, screen.height),
                {control.name: control.frame for control in screen.controls})

    def testWindowsOfKeysAndLevelsHaveTheirSize(self):
        self.assertEqual(self.frames("KeyAssignView")[0], (548, 359))
        self.assertEqual(self.frames("PerformanceView")[0], (545, 493))
        self.assertEqual(self.frames("PerformanceView")[1]["levelSelBtn"].width, 73)

    def testPanelsFillTheirPlace(self):
        for window, place, panel in (
                ("KeyAssignView", "tkeyView", "SubTKeyView"),
                ("KeyAssignView", "singleKeyView", "SubSingleKeyView"),
                ("KeyAssignView", "sensitivityView", "SubSensitivityView"),
                ("KeyAssignView", "sensitivityView", "SubSensitivityViewPlain"),
                ("KeyAssignView", "launchProView", "SubLaunchProgramView"),
                ("SubSensitivityView", "subView", "SubSensitivityViewSub"),
                ("SubSensitivityViewSub", "enableXYTxt", "EnableXYText"),
                ("SubSensitivityViewSub", "sliderView", "DpiSliderView"),
                ("PerformanceView", "sliderView", "DpiSliderView"),
                ("LevelSettingView", "sliderView", "DpiSliderViewXY")):
            with self.subTest(window=window, panel=panel):
                frame = self.frames(window)[1][place]
                self.assertEqual((frame.width, frame.height), self.frames(panel)[0])

    def testPanelsShareOnePlace(self):
        places = self.frames("KeyAssignView")[1]
        self.assertEqual(len({repr(places[name]) for name in (
            "tkeyView", "singleKeyView", "sensitivityView", "launchProView")}), 1)

    def testLevelsFillTheirPlaces(self):
        for window in ("PerformanceView", "LevelSettingView"):
            frames = self.frames(window)[1]
            for number in range(1, 6):
                frame = frames["level%d" % number]
                for level in ("LevelView", "LevelXYView"):
                    self.assertEqual((frame.width, frame.height), self.frames(level)[0])

    def testKnobFitsIntoTheSliders(self):
        knob = self.frames("Slider")[0]
        for screen, slider in (("DpiSliderView", "dpiPro"), ("DpiSliderViewXY", "dpiXPro"),
                               ("DpiSliderViewXY", "dpiYPro"), ("PerformanceView", "liftPro")):
            self.assertGreaterEqual(self.frames(screen)[1][slider].height, knob[1])

    def testMacroAndLightWindowsHaveTheirSize(self):
        self.assertEqual(self.frames("MacroView")[0], (1048, 633))
        self.assertEqual(self.frames("LightOptionView")[0], (678, 493))

    def testInsertControlsThatComeAndGoFillTheirPlace(self):
        places = self.frames("MacroView")[1]
        for name, screen in (("insertIntBtn", "MacroInsertDelay"),
                             ("insertAutoDelayChk", "MacroInsertAuto"),
                             ("insertLgnoreDelayChk", "MacroInsertWithout")):
            with self.subTest(name=name):
                size, frames = self.frames(screen)
                self.assertEqual((places[name].width, places[name].height), size)
                self.assertEqual((frames[name].width, frames[name].height), size)

    def testTheInsertButtonCoversThoseThatRecord(self):
        places = self.frames("MacroView")[1]
        cover, record, stop = (places[name] for name in
                               ("insertIntBtn", "insertRecordBtn", "insertStopBtn"))
        self.assertEqual((cover.x, cover.y, cover.height), (record.x, record.y, record.height))
        self.assertEqual((cover.x + cover.width, cover.y, cover.height),
                         (stop.x + stop.width, stop.y, stop.height))

    def testTheCommandListShowsWholeRows(self):
        self.assertEqual(self.frames("MacroView")[1]["commandTable"].height % 20, 0)

    def testLightsFillTheStage(self):
        stage = self.frames("LightOptionView")[1]["stageView"]
        for number in range(1, 5):
            self.assertEqual((stage.width, stage.height), self.frames("LightZone%d" % number)[0])

    def testTheColorBarShowsWhatItsValuesGive(self):
        with tempfile.TemporaryDirectory() as folder:
            compiler.renderAll(self.screens, folder, 2, "ColorBar|LightOptionView_Normal")
            width, height, rows = decoded(os.path.join(folder, "ColorBar.png"))
            window = decoded(os.path.join(folder, "LightOptionView_Normal.png"))[2]
        self.assertEqual((width, height), (40, 266))
        self.assertEqual((rows[0][20][:3], rows[265][20][:3]), ((0, 0, 0), (255, 255, 255)))
        self.assertEqual(len({row[20] for row in rows}), len(rows))
        frame = self.frames("LightOptionView")[1]["colorBarView"]
        half = self.frames("ColorKnob")[0][0] // 2
        self.assertEqual(frame.width - 2 * half, height)
        for value in range(height):
            shown = window[frame.y + frame.height // 2][frame.x + half + value]
            for one, other in zip(shown, rows[value][20]):
                self.assertLessEqual(abs(one - other), 1, value)

    def testPictureNamesAreUnique(self):
        names = [name for name, _, _ in compiler.pictures(self.screens)]
        self.assertEqual(len(names), len(set(names)))

    def testTypeHasThreeSizes(self):
        self.assertEqual({word["fontSize"] for screen in self.screens for word in screen.words},
                         {15, 12, 11})


class Contrast(unittest.TestCase):
    """Words are readable on their surfaces."""

    def setUp(self):
        self.colors = masters.readTheme(os.path.join(ROOT, "Resources", "artwork")).colors

    @staticmethod
    def luminance(color):
        parts = [int(color[index:index + 2], 16) / 255 for index in (1, 3, 5)]
        red, green, blue = (part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4
                            for part in parts)
        return 0.2126 * red + 0.7152 * green + 0.0722 * blue

    def ratio(self, one, other):
        light, dark = sorted((self.luminance(self.colors[one]),
                              self.luminance(self.colors[other])), reverse=True)
        return (light + 0.05) / (dark + 0.05)

    def testIsEnough(self):
        for word, surface in (("snow", "steel"), ("snow", "steelLit"), ("snow", "emberDeep"),
                              ("snow", "selection"), ("mist", "ink"), ("mist", "graphite"),
                              ("mist", "steel"), ("ink", "paper"), ("emberLit", "ink")):
            with self.subTest(word=word, surface=surface):
                self.assertGreaterEqual(self.ratio(word, surface), 4.5)


if __name__ == "__main__":
    unittest.main()
