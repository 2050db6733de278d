#!/usr/bin/python3
"""Makes the desktop entry, or what software centers show, from its template.

Called as compile_desktop_entry.py TEMPLATE TEXTS OUTPUT NAME=VALUE... A line with {Text} becomes a
line for each language of the program, with that text as the windows show it, without the period of a
single sentence. @NAME@ becomes the value, and @DATE@ the day of the sources ($SOURCE_DATE_EPOCH) or
of today.
"""

import datetime
import os
import re
import sys
from xml.sax.saxutils import escape

from text_sources import TextsError, readCodes, readLanguage, readTemplate

TEXT = re.compile(r"\{([^{}]+)\}")
SENTENCE_ENDS = ".。"


def readTexts(folder):
    """{language: {name: text}}, in English first."""
    template = {text.name: text for text in readTemplate(folder)}
    texts = {"": {name: text.english for name, text in template.items()}}
    for code in readCodes(folder):
        texts[code] = readLanguage(folder, code, template).texts
    return texts


def translated(line, texts, isXml):
    lines = []
    for code, ofLanguage in texts.items():
        if any(name not in ofLanguage for name in TEXT.findall(line)):
            if not code:
                raise TextsError("\"%s\" names no text of the program" % line.strip())
            continue
        shown = {name: ofLanguage[name].rstrip(SENTENCE_ENDS) for name in TEXT.findall(line)}
        words = line
        for name, text in shown.items():
            words = words.replace("{%s}" % name, escape(text) if isXml else text)
        if isXml:
            words = words.replace(">", ' xml:lang="%s">' % code, 1) if code else words
        elif code:
            words = words.replace("=", "[%s]=" % code, 1)
        lines.append(words)
    return lines


def main():
    template, folder, output, *values = sys.argv[1:]
    epoch = os.environ.get("SOURCE_DATE_EPOCH")
    now = datetime.datetime.now(datetime.timezone.utc)
    day = datetime.datetime.fromtimestamp(int(epoch), datetime.timezone.utc) if epoch else now
    replaced = {"DATE": day.date().isoformat(), **dict(value.split("=", 1) for value in values)}
    try:
        texts = readTexts(folder)
        lines = []
        with open(template, encoding="utf-8") as file:
            for line in file.read().splitlines():
                isXml = template.endswith(".xml.in")
                lines += translated(line, texts, isXml) if TEXT.search(line) else [line]
    except TextsError as error:
        sys.exit("compile_desktop_entry.py: %s" % error)
    text = re.sub(r"@([A-Z]+)@", lambda found: replaced[found[1]], "\n".join(lines) + "\n")
    with open(output, "w", encoding="utf-8") as file:
        file.write(text)


if __name__ == "__main__":
    main()
