#!/usr/bin/python3
"""Brings the translations of the help document in line with the English text.

Gives every file the paragraphs of the document in their order. A translation whose English text has
changed a little is marked fuzzy: the document is shown in English until a translator has looked at
it and has taken the mark away. --new CODE begins a language of the program that has no file yet.
"""

import argparse
import difflib
import os
import sys

import polib
from help_sources import (TextsError, entriesOf, readDocument, readTexts, translationFiles)
from text_sources import load

HERE = os.path.dirname(os.path.abspath(__file__))
RESOURCES = os.path.join(HERE, "..", "Resources")
# How much of a paragraph must be the same for its translation to be worth a look.
SIMILAR = 0.6


def emptyFile(code):
    file = polib.POFile(wrapwidth=0, encoding="utf-8")
    file.metadata = {"Project-Id-Version": "NerinOption", "Language": code, "MIME-Version": "1.0",
                     "Content-Type": "text/plain; charset=UTF-8",
                     "Content-Transfer-Encoding": "8bit"}
    return file


def entryFor(chapter, english, old):
    """The entry of a paragraph; `old` are the entries that the file had, by paragraph."""
    entry = polib.POEntry(msgctxt=chapter, msgid=english)
    known = old.get((chapter, english))
    if known is None:
        texts = [text for place, text in old if place == chapter]
        similar = difflib.get_close_matches(english, texts, 1, SIMILAR)
        known = old[(chapter, similar[0])] if similar else None
    if known is not None and known.msgstr:
        entry.msgstr, entry.tcomment, entry.flags = known.msgstr, known.tcomment, list(known.flags)
        if known.msgid != english:
            entry.previous_msgid = known.msgid
            entry.flags = ["fuzzy"]
    return entry


def update(path, file, entries):
    old = {(entry.msgctxt, entry.msgid): entry for entry in file}
    updated = polib.POFile(wrapwidth=0, encoding="utf-8")
    updated.header, updated.metadata = file.header, file.metadata
    for chapter, english in entries:
        updated.append(entryFor(chapter, english, old))
    updated.save(path)


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("folder", nargs="?", help="where the document and its translations are",
                        default=os.path.join(RESOURCES, "Help"))
    parser.add_argument("--new", metavar="CODE", help="begins this language")
    options = parser.parse_args(arguments)
    try:
        entries = entriesOf(readDocument(options.folder))
        if options.new:
            if options.new not in readTexts(os.path.join(RESOURCES, "Texts")):
                raise TextsError("the program has no language %s" % options.new)
            path = os.path.join(options.folder, options.new + ".po")
            if not os.path.exists(path):
                emptyFile(options.new).save(path)
        for path in translationFiles(options.folder).values():
            update(path, load(path), entries)
    except (TextsError, OSError) as error:
        print("update_help: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
