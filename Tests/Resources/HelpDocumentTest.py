"""The help document as it is built: what it links to, what it quotes, and that all languages have
the same. Called with the folder of the sources and the folder of the built resources.
"""

import collections
import os
import re
import sys
import unittest
import xml.etree.ElementTree as ElementTree
from html.parser import HTMLParser

SOURCES, RESOURCES = sys.argv[1:3]
FOLDER = os.path.join(RESOURCES, "Help")
MOST_BYTES = 2 * 1024 * 1024
# Paragraphs that happen to be the same in another language, such as "Logo: …".
MOST_SAME = 2
ONE_OF = ("br", "img", "meta")
# The languages of the catalogue by the names of the pages.
CATALOGUE = {"en": "US", "zh-Hant": "TC", "zh-Hans": "SC", "cs": "Czech", "fr": "French",
             "de": "German", "el": "Greek", "it": "Italian", "ja": "Japanese", "ko": "Korean",
             "pl": "Polish", "pt-BR": "Portuguese(Brazil)", "ru": "Russian", "es": "Spanish",
             "tr": "Turkish"}
# Footers, warnings and messages that need no explanation of their own.
CLEAR = {
    # The second sentence of a question, which is shown with the first.
    "WarningNoDeviceDetail", "WarningNeedSaveDetail", "WarningResetDetail",
    "WarningNeedLeftDetail", "WarningNoItemDetail", "WarningNoPermissionDetail",
    "WarningNeedsReplugDetail", "WarningSilentMouseDetail", "WarningMouseInUseDetail",
    # Shown by no window.
    "The mouse did not answer.", "The profile library could not be saved.",
    "Are you sure you want to Clear Commands?",
}


class Page(HTMLParser):
    """What a page consists of."""

    def __init__(self, path):
        super().__init__()
        with open(path, encoding="utf-8") as file:
            self.text = file.read()
        self.elements, self.ids, self.bold = [], [], []
        self.words = collections.Counter()
        self._open = []
        self.feed(self.text)

    def handle_starttag(self, tag, attrs):
        self.elements.append((tag, dict(attrs)))
        if "id" in dict(attrs):
            self.ids.append(dict(attrs)["id"])
        if tag not in ONE_OF:
            self._open.append(tag)
        if tag == "b":
            self.bold.append("")

    def handle_endtag(self, tag):
        assert self._open.pop() == tag, "%s is closed in the wrong place" % tag

    def handle_data(self, data):
        if self._open and self._open[-1] == "b":
            self.bold[-1] += data

    def structure(self):
        """The elements without those that stand within a sentence, whose order is free."""
        return [(tag, attributes.get("id"), attributes.get("src"))
                for tag, attributes in self.elements
                if tag not in ("b", "em", "kbd", "code", "a", "html", "meta")]


def languageOf(name):
    return re.fullmatch(r"UserInterfaceSetupGuide_(.+)\.html", name)[1]


PAGES = {languageOf(name): Page(os.path.join(FOLDER, name)) for name in sorted(os.listdir(FOLDER))}


def catalogueTexts(language):
    root = ElementTree.parse(os.path.join(RESOURCES, "Tooltip.xml")).getroot()
    sections = {section.get("name"): section for section in root.findall("Lan")}
    return {item.get("name"): item.get("text")
            for name in ("US", CATALOGUE[language]) for item in sections[name].findall("Item")}


def inEachLanguage(test):
    """Calls a test with each language and its page."""
    def run(self):
        for language, page in PAGES.items():
            with self.subTest(language):
                test(self, language, page)

    return run


class TheHelp(unittest.TestCase):
    def testIsThereInEnglish(self):
        self.assertIn("en", PAGES)

    @inEachLanguage
    def testIsInTheLanguageOfItsName(self, language, page):
        self.assertEqual(dict(page.elements)["html"]["lang"], language)

    @inEachLanguage
    def testHasAPlaceForEveryLink(self, _, page):
        links = [attributes["href"] for tag, attributes in page.elements if tag == "a"]
        self.assertGreater(len(links), 13)
        self.assertEqual([link for link in links if link[1:] not in page.ids], [])
        self.assertEqual(len(page.ids), len(set(page.ids)))

    @inEachLanguage
    def testHasEveryChapterThatAWindowOpens(self, _, page):
        opened = set()
        for layer in ("View", "App"):
            for folder, _, files in os.walk(os.path.join(SOURCES, layer)):
                for file in files:
                    with open(os.path.join(folder, file), encoding="utf-8") as source:
                        text = source.read()
                    opened.update(re.findall(r'helpdocument::serve\([^;]*?"([a-z-]+)"\)', text))
                    for body in re.findall(r"helpChapter\(\) const (?:override )?\{(.*?)\}\n", text,
                                           re.DOTALL):
                        opened.update(re.findall(r'return "([a-z-]+)"', body))
        self.assertGreater(len(opened), 12)
        self.assertEqual(opened - set(page.ids), set())

    @inEachLanguage
    def testNeedsNothingElse(self, _, page):
        self.assertLess(len(page.text.encode()), MOST_BYTES)
        self.assertNotRegex(page.text, r"<(script|link|iframe|object)|\son\w+=|url\(|@import")
        for tag, attributes in page.elements:
            self.assertTrue(attributes.get("src", "data:").startswith("data:"))
            self.assertTrue(attributes.get("href", "#").startswith("#"))
            if tag == "img":
                self.assertTrue(attributes["alt"])

    @inEachLanguage
    def testQuotesTheTextsOfTheProgram(self, language, page):
        patterns = [re.compile(re.sub(r"%\d", ".+", re.escape(text.rstrip(".。"))) + "[.。]?")
                    for text in catalogueTexts(language).values() if text]
        wrong = [bold for bold in page.bold
                 if not any(pattern.fullmatch(bold) for pattern in patterns)]
        self.assertEqual(wrong, [])
        self.assertGreater(len(page.bold), 150)

    @inEachLanguage
    def testHasTheSameInEveryLanguage(self, _, page):
        english = PAGES["en"]
        self.assertEqual(page.structure(), english.structure())
        self.assertEqual(collections.Counter(tag for tag, _ in page.elements),
                         collections.Counter(tag for tag, _ in english.elements))

    @inEachLanguage
    def testIsTranslatedWhereItIsNotEnglish(self, language, page):
        def paragraphs(page):
            return re.findall(r"<(?:p|li|dd)>(.*?)</(?:p|li|dd)>", page.text)

        english = set(paragraphs(PAGES["en"]))
        same = [one for one in paragraphs(page) if one in english]
        self.assertTrue(language == "en" or len(same) <= MOST_SAME, same)

    def testExplainsEveryQuestionAndMessage(self):
        sys.path.insert(0, os.path.join(SOURCES, "Tools"))
        sys.dont_write_bytecode = True
        from help_sources import englishOf, namesIn, paragraphsOf, readDocument
        from text_sources import readTemplate
        document = readDocument(os.path.join(SOURCES, "Resources", "Help"))
        explained = {name for _, element in paragraphsOf(document)
                     for name in namesIn(englishOf(element))}
        places = ("Main window: footer", "Main window: reason", "Warning: word", "Message: ")
        texts = {text.name for text in readTemplate(os.path.join(SOURCES, "Resources", "Texts"))
                 if text.where.startswith(places)}
        self.assertGreater(len(texts), 50)
        # Explain it in Resources/Help/help.html.
        self.assertEqual(texts - explained - CLEAR, set())
        self.assertEqual(CLEAR - texts, set())
        self.assertEqual(CLEAR & explained, set())


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
