"""The masters of this tree: their sizes, how they fill each other's places, and their contrast."""

import os
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "Tools"))
sys.dont_write_bytecode = True

import artwork_masters as masters  # noqa: E402
import compile_artwork as compiler  # noqa: E402
from png_pixels import decoded  # noqa: E402


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
