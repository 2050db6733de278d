"""The help document in a browser without a display: links, pictures, contrast, widths, light and
dark, print. Called with the folder of the built resources.
"""

import os
import sys
import tempfile
import unittest

from selenium import webdriver
from selenium.webdriver.chrome.options import Options
from selenium.webdriver.chrome.service import Service

FOLDER = os.path.abspath(os.path.join(sys.argv[1], "Help"))
WIDTHS = 400, 640, 1000, 1087, 1088, 1400
HEIGHT = 900
SCHEMES = "light", "dark"
# What a text needs against its ground to be read with weak eyes.
LEAST_CONTRAST = 4.5

# The contrast of each element with words of its own, the smallest first.
CONTRASTS = """
const parts = color => color.match(/[\\d.]+/g).map(Number);
const light = color => {
  const [r, g, b] = parts(color).map(part => {
    part /= 255;
    return part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4;
  });
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
};
const groundOf = element => {
  for (let one = element; one; one = one.parentElement) {
    const color = getComputedStyle(one).backgroundColor;
    const alpha = parts(color)[3];
    if (alpha === undefined || alpha === 1) return color;
  }
  return getComputedStyle(document.body).backgroundColor;
};
return [...document.body.querySelectorAll('*')]
  .filter(one => [...one.childNodes].some(node => node.nodeType === 3 && node.data.trim()))
  .map(one => {
    const words = light(getComputedStyle(one).color), ground = light(groundOf(one));
    return [(Math.max(words, ground) + 0.05) / (Math.min(words, ground) + 0.05),
            one.textContent.slice(0, 40)];
  })
  .sort((one, other) => one[0] - other[0]);
"""

# What reaches beyond the window at the right.
TOO_WIDE = """
return [...document.body.querySelectorAll('*')]
  .filter(one => one.getBoundingClientRect().right > document.documentElement.clientWidth + 0.5)
  .map(one => one.tagName + ': ' + one.textContent.slice(0, 40));
"""

PICTURES = """
return [...document.images].map(one => [one.complete, one.naturalWidth,
                                        one.getBoundingClientRect().width]);
"""

# Follows each link, and says which ones do not bring their place into the window.
LOST_LINKS = """
const lost = [];
for (const link of document.querySelectorAll('a')) {
  const place = document.getElementById(decodeURIComponent(link.hash.slice(1)));
  scrollTo(0, 0);
  link.click();
  const top = place ? place.getBoundingClientRect().top : NaN;
  const atEnd = scrollY + innerHeight >= document.documentElement.scrollHeight - 2;
  if (!(Math.abs(top) < 40 || (atEnd && top >= 0 && top < innerHeight))) {
    lost.push(link.hash + ' ' + top);
  }
}
return lost;
"""


def startBrowser(folder):
    options = Options()
    options.binary_location = "/usr/bin/chromium"
    # Without the sandbox it runs for the administrator too; it loads nothing but the page.
    for argument in ("--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
                     "--hide-scrollbars", "--user-data-dir=" + folder):
        options.add_argument(argument)
    options.set_capability("goog:loggingPrefs", {"browser": "ALL"})
    return webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)


def onEachPage(test):
    """Calls a test with the address of each page."""
    def run(self):
        for name in sorted(os.listdir(FOLDER)):
            with self.subTest(name):
                test(self, "file://" + os.path.join(FOLDER, name))

    return run


class HelpInBrowser(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        cls.addClassCleanup(temporary.cleanup)
        cls.browser = startBrowser(temporary.name)
        cls.addClassCleanup(cls.browser.quit)

    def testHasSomethingToLookAt(self):
        self.assertIn("UserInterfaceSetupGuide_en.html", os.listdir(FOLDER))

    def show(self, address, width=1000, scheme="light", media=""):
        self.browser.execute_cdp_cmd("Emulation.setDeviceMetricsOverride", {
            "width": width, "height": HEIGHT, "deviceScaleFactor": 1, "mobile": False})
        self.browser.execute_cdp_cmd("Emulation.setEmulatedMedia", {
            "media": media, "features": [{"name": "prefers-color-scheme", "value": scheme}]})
        self.browser.get(address)

    def ask(self, script):
        return self.browser.execute_script(script)

    def ground(self):
        color = self.ask("return getComputedStyle(document.body).backgroundColor;")
        return sum(int(part) for part in color[4:-1].split(","))

    @onEachPage
    def testFitsEveryWidth(self, address):
        for width in WIDTHS:
            self.show(address, width)
            self.assertLessEqual(
                self.ask("return document.documentElement.scrollWidth;"), width)
            self.assertEqual(self.ask(TOO_WIDE), [], width)

    @onEachPage
    def testCanBeReadInLightAndDark(self, address):
        grounds = {}
        for scheme in SCHEMES:
            self.show(address, scheme=scheme)
            grounds[scheme] = self.ground()
            contrasts = self.ask(CONTRASTS)
            self.assertGreater(len(contrasts), 200)
            self.assertGreaterEqual(contrasts[0][0], LEAST_CONTRAST, contrasts[0])
        self.assertGreater(grounds["light"], 700)
        self.assertLess(grounds["dark"], 120)

    @onEachPage
    def testIsPrintedOnWhite(self, address):
        self.show(address, scheme="dark", media="print")
        self.assertEqual(self.ground(), 3 * 255)
        self.assertGreaterEqual(self.ask(CONTRASTS)[0][0], 7)

    @onEachPage
    def testShowsItsPictures(self, address):
        self.show(address, 400)
        pictures = self.ask(PICTURES)
        self.assertEqual(len(pictures), 13)
        for isComplete, width, shown in pictures:
            self.assertTrue(isComplete)
            self.assertGreater(width, 200)
            self.assertGreater(shown, 200)

    @onEachPage
    def testGoesWhereItsLinksSay(self, address):
        self.show(address)
        self.assertEqual(self.ask(LOST_LINKS), [])

    @onEachPage
    def testOpensAtAChapter(self, address):
        self.show("about:blank")
        self.show(address + "#keys")
        top = self.ask("return document.getElementById('keys').getBoundingClientRect().top;")
        self.assertLess(abs(top), 40)

    @onEachPage
    def testHasNoErrorsAndLoadsNothing(self, address):
        self.browser.get_log("browser")
        self.show(address)
        self.assertEqual(self.browser.get_log("browser"), [])
        loaded = self.ask("return performance.getEntriesByType('resource').map(e => e.name);")
        self.assertEqual([name for name in loaded if not name.startswith("data:")], [])


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
