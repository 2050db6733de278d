"""Reads the sources of the texts: the template with the English texts, and a file for each other
language, all of them gettext PO files.

In the template the context of an entry is the name by which the program asks for the text, the
message is the English text, each reference is a control whose tip it is ("view1:103"), and the
extracted comment tells a translator where the text stands and how long it may be:

    #. Main window: footer
    #. Room: 95 letters
    msgctxt "The mouse did not answer."
    msgid "The mouse did not answer."
    msgstr ""

The room is a number of letters, where an East Asian character counts as two, or "any" where the
text is wrapped or the place grows. A text with room for 0 letters is empty in every language.
"""

import os
import re
import unicodedata
from dataclasses import dataclass, field

import polib

TEMPLATE = "Tooltip.pot"
ORDER = "LINGUAS"
# The key of the header in which a file states its name in "Tooltip.xml".
CATALOGUE_NAME = "X-Catalogue-Name"
ENGLISH = "US"


class TextsError(Exception):
    """Something in the sources that a person has to mend. Says which file and line."""


@dataclass
class Text:
    """A text of the template."""

    name: str
    english: str
    where: str
    note: str  # the whole comment for the translator
    room: object  # letters, or None for any number
    controls: list = field(default_factory=list)  # pairs of view and tag, in the template's order

    @property
    def isEmpty(self):
        return self.room == 0


@dataclass
class Language:
    """The texts of one language by their names. One that is missing is shown in English."""

    code: str
    name: str
    texts: dict


def width(text):
    """The letters that the text takes: an East Asian character is as wide as two."""
    return sum(2 if unicodedata.east_asian_width(each) in "WF" else 1 for each in text)


def placeholders(text):
    """What the program replaces ("%1", "%d", "%@"), sorted, because languages order it freely."""
    return sorted(re.findall(r"%(?:\d+|[@a-zA-Z])", text))


def load(path):
    """A PO file without wrapped lines, so that a text stays in one line."""
    try:
        return polib.pofile(path, wrapwidth=0, encoding="utf-8")
    except (OSError, ValueError) as error:
        # polib names the file in what it says of a broken one.
        raise TextsError("%s: %s" % (os.path.basename(path), str(error).strip())) from error


def fail(path, entry, what):
    raise TextsError("%s:%d: \"%s\" %s" %
                     (os.path.basename(path), entry.linenum, entry.msgctxt or entry.msgid, what))


def roomOf(path, entry):
    for line in entry.comment.split("\n"):
        if line.startswith("Room:"):
            found = re.fullmatch(r"Room: (?:(any)|(\d+) letters)", line)
            if not found:
                fail(path, entry, "says \"%s\"; it must be \"Room: 40 letters\" or \"Room: any\"" %
                     line)
            return None if found[1] else int(found[2])
    return fail(path, entry, "does not say how long it may be (\"#. Room: 40 letters\")")


def controlsOf(path, entry):
    controls = []
    for view, tag in entry.occurrences:
        found = re.fullmatch(r"view(\d+)", view)
        if not found or not tag.isdigit():
            fail(path, entry, "names the control \"%s:%s\"; it must look like \"view1:103\"" %
                 (view, tag))
        controls.append((int(found[1]), int(tag)))
    return controls


def textOf(path, entry):
    if not entry.msgctxt:
        fail(path, entry, "has no name (msgctxt)")
    if entry.msgstr:
        fail(path, entry, "has a msgstr; the template has the English text only, as its msgid")
    where = entry.comment.split("\n")[0]
    if not where or where.startswith("Room:"):
        fail(path, entry, "does not say where it stands (\"#. Main window: footer\")")
    return Text(entry.msgctxt, entry.msgid, where, entry.comment, roomOf(path, entry),
                controlsOf(path, entry))


def readTemplate(folder):
    """The texts of the template in its order."""
    path = os.path.join(folder, TEMPLATE)
    texts = {}
    owners = {}
    for entry in load(path):
        text = textOf(path, entry)
        if text.name in texts:
            fail(path, entry, "is there twice")
        for control in text.controls:
            if control in owners:
                fail(path, entry, "is for view%d:%d, which has \"%s\" already" %
                     (*control, owners[control]))
            owners[control] = text.name
        texts[text.name] = text
    return list(texts.values())


def readCodes(folder):
    """The codes of the languages in the order of the catalogue."""
    path = os.path.join(folder, ORDER)
    try:
        with open(path, encoding="utf-8") as file:
            codes = [line.strip() for line in file if line.strip() and not line.startswith("#")]
    except OSError as error:
        raise TextsError(str(error)) from error
    files = sorted(name[:-3] for name in os.listdir(folder) if name.endswith(".po"))
    if sorted(codes) != files:
        raise TextsError("%s: names %s, but the files are %s" %
                         (ORDER, " ".join(sorted(codes)), " ".join(files)))
    return codes


def checkEntry(path, entry, texts):
    if entry.msgctxt not in texts:
        fail(path, entry, "is not in the template; Tools/update_texts.py takes it out")
    text = texts[entry.msgctxt]
    if text.isEmpty:
        fail(path, entry, "is empty in every language and needs no translation")
    if entry.msgid != text.english:
        fail(path, entry, "has another English text in the template; run Tools/update_texts.py and "
             "look at the translation")
    if placeholders(entry.msgstr) != placeholders(entry.msgid):
        fail(path, entry, "must have the placeholders of the English text: %s" %
             (" ".join(placeholders(entry.msgid)) or "none"))
    if text.room is not None and width(entry.msgstr) > text.room:
        fail(path, entry, "is %d letters long and has room for %d: %s" %
             (width(entry.msgstr), text.room, entry.msgstr))


def readLanguage(folder, code, texts):
    """A language; `texts` are those of the template by their names. What is not translated, or is
    marked fuzzy, is missing."""
    path = os.path.join(folder, code + ".po")
    file = load(path)
    name = file.metadata.get(CATALOGUE_NAME)
    if not name:
        raise TextsError("%s.po: the header has no %s" % (code, CATALOGUE_NAME))
    translated = {}
    seen = set()
    for entry in file:
        if entry.obsolete:
            continue
        if entry.msgctxt in seen:
            fail(path, entry, "is there twice")
        seen.add(entry.msgctxt)
        if entry.translated():
            checkEntry(path, entry, texts)
            translated[entry.msgctxt] = entry.msgstr
        elif entry.msgctxt not in texts:
            fail(path, entry, "is not in the template; Tools/update_texts.py takes it out")
    return Language(code, name, translated)
