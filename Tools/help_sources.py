"""Reads the sources of the help document: the English text, and a gettext PO file for each other
language with one entry a paragraph.

The English text is "help.html", well-formed XML. A paragraph is an element of PARAGRAPHS. In it
{Apply} stands for a text of the program by its name in Resources/Texts, so that the document says
what the window shows in each language; {Applied to slot %1.|3} fills in what the program replaces,
and an argument like @Logo is a text of the program, too.
"""

import os
import re
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import escape, unescape

from text_sources import (ENGLISH, Language, TextsError, load, readCodes, readLanguage,
                          readTemplate)

DOCUMENT = "help.html"
PARAGRAPHS = ("title", "h1", "h2", "h3", "p", "li", "dt", "dd", "th", "td", "figcaption")
# Where the language of the document is named in another way than its file.
LANGUAGE_TAGS = {"pt_BR": "pt-BR", "zh_TW": "zh-Hant", "zh_CN": "zh-Hans"}
TEXT = re.compile(r"\{([^{}]*)\}")
SENTENCE_ENDS = ".。"


def innerOf(element):
    """What stands in an element, as it would be typed there."""
    parts = [escape(element.text or "")]
    parts += [ElementTree.tostring(child, encoding="unicode") for child in element]
    return re.sub(r"\s+", " ", "".join(parts)).strip()


def paragraphsOf(root):
    """(chapter, element) of each paragraph in the order of the document. The texts that say what is
    in a picture count as paragraphs."""
    found = []

    def walk(element, chapter):
        chapter = element.get("id", chapter) if element.tag == "section" else chapter
        for child in element:
            if child.tag in PARAGRAPHS or child.tag == "img":
                found.append((chapter, child))
            else:
                walk(child, element.get("id", chapter) if element.tag == "section" else chapter)

    walk(root, "help")
    return found


def englishOf(element):
    return escape(element.get("alt")) if element.tag == "img" else innerOf(element)


def readDocument(folder):
    path = os.path.join(folder, DOCUMENT)
    try:
        return ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError) as error:
        raise TextsError("%s: %s" % (DOCUMENT, error)) from error


def hasWords(text):
    """Whether a paragraph has words of its own, beside texts of the program and what is typed."""
    bare = re.sub(r"<code>.*?</code>|<[^>]*>", "", TEXT.sub("", text))
    return re.search(r"\w", bare) is not None


def entriesOf(root):
    """(chapter, English text) of each paragraph to be translated, once."""
    return list(dict.fromkeys((chapter, englishOf(element))
                              for chapter, element in paragraphsOf(root)
                              if hasWords(englishOf(element))))


# The texts of the program ------------------------------------------------------------------------


def readTexts(folder):
    """{code: Language} of the program's texts; what a language lacks is there in English."""
    template = readTemplate(folder)
    english = {text.name: text.english for text in template}
    languages = {"en": Language("en", ENGLISH, english)}
    for code in readCodes(folder):
        language = readLanguage(folder, code, {text.name: text for text in template})
        languages[code] = Language(code, language.name, {**english, **language.texts})
    return languages


def namesIn(text):
    """The names of the program's texts in a paragraph."""
    names = []
    for found in TEXT.findall(text):
        name, *arguments = unescape(found).split("|")
        names += [name] + [argument[1:] for argument in arguments if argument.startswith("@")]
    return names


def shownText(texts, reference, after):
    """A text of the program as the window shows it: without the period of a single sentence. `after`
    is what follows in the paragraph, which may bring a period of its own."""
    name, *arguments = reference.split("|")
    if name not in texts:
        raise TextsError("{%s} is no text of the program" % reference)
    shown = texts[name]
    for number, argument in enumerate(arguments, 1):
        if "%%%d" % number not in shown:
            raise TextsError("{%s}: the text has no %%%d" % (reference, number))
        value = shownText(texts, argument[1:], "") if argument.startswith("@") else argument
        shown = shown.replace("%%%d" % number, value)
    if re.search(r"%\d", shown):
        raise TextsError("{%s}: something is missing in \"%s\"" % (reference, shown))
    bare = shown.rstrip(SENTENCE_ENDS)
    isOne = not re.search(r"[.!?] |[。！？].", bare)
    return bare if isOne or after[:1] in tuple(SENTENCE_ENDS) else shown


def fillIn(paragraph, texts):
    """The paragraph with the texts of the program in their places, in bold type."""
    return TEXT.sub(lambda found: "<b>%s</b>" % escape(
        shownText(texts, unescape(found[1]), paragraph[found.end():])), paragraph)


# Translations -----------------------------------------------------------------------------------


def marksIn(text):
    """What a translation must keep: the elements with their attributes, what is typed in a
    terminal, and the texts of the program."""
    root = ElementTree.fromstring("<p>%s</p>" % text)
    marks = [(child.tag, tuple(sorted(child.attrib.items())),
              innerOf(child) if child.tag == "code" else "") for child in root.iter()]
    return sorted(marks), sorted(namesIn(text))


def checkTranslation(path, entry):
    where = "%s:%d" % (os.path.basename(path), entry.linenum)
    try:
        translated = marksIn(entry.msgstr)
    except ElementTree.ParseError as error:
        raise TextsError("%s: the translation is no XML: %s" % (where, error)) from error
    for mine, english in zip(translated, marksIn(entry.msgid)):
        if mine != english:
            differences = [mark for mark in mine + english if mine.count(mark) !=
                           english.count(mark)]
            raise TextsError("%s: the translation and the English text differ in %s" %
                             (where, differences))


def readTranslation(path, entries):
    """{(chapter, English text): translation}. Raises what a person has to mend, and leaves out what
    is not translated or marked fuzzy."""
    translated = {}
    for entry in load(path):
        if entry.obsolete or not entry.translated():
            continue
        if (entry.msgctxt, entry.msgid) not in entries:
            raise TextsError("%s:%d: \"%s\" is not in the document; run Tools/update_help.py" %
                             (os.path.basename(path), entry.linenum, entry.msgid[:60]))
        checkTranslation(path, entry)
        translated[(entry.msgctxt, entry.msgid)] = entry.msgstr
    return translated


def translationFiles(folder):
    """{code: path} of the languages that have a file."""
    return {name[:-3]: os.path.join(folder, name) for name in sorted(os.listdir(folder))
            if name.endswith(".po")}


def languageTag(code):
    return LANGUAGE_TAGS.get(code, code)
