#!/usr/bin/python3
"""Compiles the texts of Resources/Texts into the catalogue that the program loads.

The same sources give the same bytes. A text without a translation is left out of its language, and
the program shows it in English.
"""

import argparse
import os
import sys
from xml.sax.saxutils import escape

from text_sources import ENGLISH, Language, TextsError, readCodes, readLanguage, readTemplate

HEAD = """<?xml version="1.0" encoding="UTF-8"?>
<!--
  The texts of the program by language. The first language is English and the fallback for every
  key that another one lacks.

  A text is found by its name, or by viewID and btnID when it is the tip of a control; texts that
  belong to no control have viewID 0. Names are keys: the program and MenuInfo.xml use them letter
  for letter, odd spellings included, so correct a text and never a name. A final period is not
  shown.
-->
<Tooltip>
"""


def attribute(text):
    return escape(text, {'"': "&quot;", "\n": "&#10;", "\t": "&#9;"})


def itemsOf(text, translation):
    """A line for each control, or one if the text belongs to none."""
    for view, tag in text.controls or [(0, "")]:
        yield "    <Item name=\"%s\" text=\"%s\" viewID=\"%d\" btnID=\"%s\"/>\n" % (
            attribute(text.name), attribute(translation), view, tag)


def sectionOf(language, template):
    lines = ["  <Lan name=\"%s\">\n" % attribute(language.name)]
    place = None
    for text in template:
        if text.isEmpty:
            translation = ""
        elif text.name in language.texts:
            translation = language.texts[text.name]
        else:
            continue
        if text.where.split(":")[0] != place:
            place = text.where.split(":")[0]
            lines.append("%s    <!-- %s -->\n" % ("\n" if len(lines) > 1 else "", place))
        lines.extend(itemsOf(text, translation))
    lines.append("  </Lan>\n")
    return "".join(lines)


def catalogue(folder):
    template = readTemplate(folder)
    texts = {text.name: text for text in template}
    languages = [Language("en", ENGLISH, {text.name: text.english for text in template})]
    for code in readCodes(folder):
        languages.append(readLanguage(folder, code, texts))
    names = [language.name for language in languages]
    for name in names:
        if names.count(name) > 1:
            raise TextsError("two files have the name \"%s\" in the catalogue" % name)
    sections = [sectionOf(language, template) for language in languages]
    return HEAD + "\n".join(sections) + "</Tooltip>\n"


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder", help="where the template and the languages are")
    parser.add_argument("output", help="the catalogue to write")
    options = parser.parse_args(arguments)
    try:
        content = catalogue(options.folder)
        os.makedirs(os.path.dirname(os.path.abspath(options.output)), exist_ok=True)
        with open(options.output, "w", encoding="utf-8", newline="\n") as file:
            file.write(content)
    except (TextsError, OSError) as error:
        print("compile_texts: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
