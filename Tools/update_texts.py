#!/usr/bin/python3
"""Brings the language files of Resources/Texts in line with the template.

Gives every language the entries and the notes of the template in the template's order, and takes
out what the template no longer has. A translation whose English text has changed is marked fuzzy:
the program shows English until a translator has looked at it and has taken the mark away.

With --import it first takes over from a catalogue (a "Tooltip.xml") what the sources lack: texts
and controls into the template, translations into the languages. What the sources have stays; where
the English text of the catalogue differs, that is printed.
"""

import argparse
import os
import sys
import xml.etree.ElementTree as ElementTree

import polib
from text_sources import (CATALOGUE_NAME, ENGLISH, TEMPLATE, TextsError, load, readCodes,
                          readTemplate)

# Until a person says it better.
IMPORTED_NOTE = "Imported: say where it stands\nRoom: any"


def entryFor(text, old, note):
    """The entry of a language for a text of the template; `old` is the one that it had."""
    entry = polib.POEntry(msgctxt=text.name, msgid=text.english, comment=note)
    if old is not None:
        entry.msgstr = old.msgstr
        entry.tcomment = old.tcomment
        entry.flags = list(old.flags)
        if old.msgid != text.english and old.msgstr and "fuzzy" not in entry.flags:
            entry.flags.append("fuzzy")
            entry.previous_msgid = old.msgid
        elif "fuzzy" in entry.flags:
            entry.previous_msgid = old.previous_msgid
    return entry


def updateLanguage(path, template):
    file = load(path)
    old = {entry.msgctxt: entry for entry in file}
    updated = polib.POFile(wrapwidth=0, encoding="utf-8")
    updated.header = file.header
    updated.metadata = file.metadata
    for text in template:
        if not text.isEmpty:
            updated.append(entryFor(text, old.get(text.name), text.note))
    updated.save(path)


def updateAll(folder):
    template = readTemplate(folder)
    for code in readCodes(folder):
        updateLanguage(os.path.join(folder, code + ".po"), template)


# Import -----------------------------------------------------------------------------------------


def readCatalogue(path):
    """The items of each language by its name."""
    try:
        root = ElementTree.parse(path).getroot()
    except (OSError, ElementTree.ParseError) as error:
        raise TextsError("%s: %s" % (path, error)) from error
    return {section.get("name"): section.findall("Item") for section in root.findall("Lan")}


def importTemplate(path, items):
    file = load(path)
    entries = {entry.msgctxt: entry for entry in file}
    for item in items:
        name, english = item.get("name"), item.get("text")
        if name not in entries:
            entries[name] = polib.POEntry(msgctxt=name, msgid=english or name,
                                          comment=IMPORTED_NOTE if english else
                                          IMPORTED_NOTE.replace("any", "0 letters"))
            file.append(entries[name])
            print("%s: new text \"%s\"" % (TEMPLATE, name))
        elif english and entries[name].msgid != english:
            print("%s: \"%s\" stays \"%s\"; the catalogue has \"%s\"" %
                  (TEMPLATE, name, entries[name].msgid, english))
        control = ("view" + item.get("viewID"), item.get("btnID"))
        if item.get("btnID") and control not in entries[name].occurrences:
            entries[name].occurrences.append(control)
            print("%s: \"%s\" is the tip of %s:%s too" % (TEMPLATE, name, *control))
    file.save(path)


def importLanguage(path, sections):
    file = load(path)
    name = file.metadata.get(CATALOGUE_NAME)
    texts = {item.get("name"): item.get("text") for item in sections.get(name, [])}
    for entry in file:
        text = texts.get(entry.msgctxt)
        if text and not entry.msgstr:
            entry.msgstr = text
            print("%s: new translation of \"%s\"" % (os.path.basename(path), entry.msgctxt))
    file.save(path)


def importCatalogue(folder, path):
    sections = readCatalogue(path)
    importTemplate(os.path.join(folder, TEMPLATE), sections.get(ENGLISH, []))
    updateAll(folder)
    for code in readCodes(folder):
        importLanguage(os.path.join(folder, code + ".po"), sections)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder", nargs="?", help="where the template and the languages are",
                        default=os.path.join(os.path.dirname(os.path.abspath(__file__)), "..",
                                             "Resources", "Texts"))
    parser.add_argument("--import", dest="catalogue", metavar="CATALOGUE",
                        help="a Tooltip.xml from which to take what is missing")
    options = parser.parse_args(arguments)
    try:
        if options.catalogue:
            importCatalogue(options.folder, options.catalogue)
        else:
            updateAll(options.folder)
    except (TextsError, OSError) as error:
        print("update_texts: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
