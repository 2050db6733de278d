#!/usr/bin/python3
"""Compiles the help document: one HTML file a language, with its pictures inside it and nothing
that has to be loaded. The same sources give the same bytes.

A language whose translation is not complete gets no file, and the program opens the English one.
"""

import argparse
import base64
import os
import struct
import sys
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import escape, quoteattr, unescape

from help_sources import (TextsError, englishOf, entriesOf, fillIn, innerOf, languageTag,
                          paragraphsOf, readDocument, readTexts, readTranslation,
                          translationFiles)

STYLE = "help.css"
FILE = "UserInterfaceSetupGuide_%s.html"


def pictureOf(folder, name):
    """The attributes of a picture: its bytes and its size."""
    path = os.path.join(folder, "pictures", name)
    try:
        with open(path, "rb") as file:
            data = file.read()
    except OSError as error:
        raise TextsError(str(error)) from error
    width, height = struct.unpack(">II", data[16:24])
    return {"src": "data:image/png;base64," + base64.b64encode(data).decode(),
            "width": str(width), "height": str(height)}


def replaceContent(element, inner):
    filled = ElementTree.fromstring("<p>%s</p>" % inner)
    for child in list(element):
        element.remove(child)
    element.text = filled.text
    element.extend(list(filled))


def translate(root, folder, texts, translation):
    """Puts a language into the document. `translation` is empty for English."""
    for chapter, element in paragraphsOf(root):
        english = englishOf(element)
        words = translation.get((chapter, english), english)
        if element.tag == "img":
            element.set("alt", unescape(words))
            element.attrib.update(pictureOf(folder, element.get("src")))
        else:
            replaceContent(element, fillIn(words, texts))


def contentsOf(root):
    """The list of the chapters."""
    lines = []
    for section in root.iter("section"):
        title = "".join(section.find("h2").itertext())
        lines.append("<li><a href=%s>%s</a></li>" % (quoteattr("#" + section.get("id")),
                                                     escape(title)))
    return "<nav><ol>\n%s\n</ol></nav>" % "\n".join(lines)


def pageOf(folder, code, texts, translation):
    root = readDocument(folder)
    translate(root, folder, texts, translation)
    with open(os.path.join(folder, STYLE), encoding="utf-8") as file:
        style = file.read()
    body = root.find("body")
    heading = body.find("h1")
    body.remove(heading)
    content = "".join(ElementTree.tostring(child, encoding="unicode", method="html")
                      for child in body)
    return ("<!DOCTYPE html>\n<html lang=\"%s\">\n<head>\n<meta charset=\"utf-8\">\n"
            "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
            "<meta name=\"color-scheme\" content=\"light dark\">\n"
            "<title>%s</title>\n<style>\n%s</style>\n</head>\n<body>\n<header><h1>%s</h1></header>\n"
            "%s\n<main>%s</main>\n</body>\n</html>\n" %
            (languageTag(code), escape(innerText(root.find("head/title"))), style,
             innerOf(heading), contentsOf(root), content))


def innerText(element):
    return "".join(element.itertext())


def pages(folder, textsFolder):
    """{code: page} of English and of the languages that are complete, and {code: how many
    paragraphs are missing} of the others."""
    texts = readTexts(textsFolder)
    entries = entriesOf(readDocument(folder))
    complete = {"en": pageOf(folder, "en", texts["en"].texts, {})}
    missing = {}
    for code, path in translationFiles(folder).items():
        if code not in texts:
            raise TextsError("%s.po: the program has no such language" % code)
        translation = readTranslation(path, set(entries))
        if len(translation) == len(entries):
            complete[code] = pageOf(folder, code, texts[code].texts, translation)
        else:
            missing[code] = len(entries) - len(translation)
    return complete, missing


def write(folder, made):
    """Writes the pages and removes those of languages that are no longer complete."""
    os.makedirs(folder, exist_ok=True)
    names = {FILE % languageTag(code): page for code, page in made.items()}
    for name in os.listdir(folder):
        if name.startswith(FILE.split("%")[0]) and name not in names:
            os.remove(os.path.join(folder, name))
    for name, page in names.items():
        with open(os.path.join(folder, name), "w", encoding="utf-8", newline="\n") as file:
            file.write(page)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder", help="where the document and its translations are")
    parser.add_argument("texts", help="where the texts of the program are")
    parser.add_argument("output", help="the folder of the pages")
    options = parser.parse_args(arguments)
    try:
        made, missing = pages(options.folder, options.texts)
        write(options.output, made)
    except (TextsError, OSError) as error:
        print("compile_help: %s" % error, file=sys.stderr)
        return 1
    for code, count in missing.items():
        print("compile_help: %s.po lacks %d paragraphs; the program shows the help in English" %
              (code, count), file=sys.stderr)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
