#!/usr/bin/env python3
"""Makes a manual page from its template, and from what nerinctl says of itself.

Called as compile_manual.py TEMPLATE GRAMMAR VERSION RULES OUTPUT, GRAMMAR being the answer of
nerinctl --grammar and RULES the folder in which the rule for udev is installed.
"""

import json
import re
import sys

FILES = (
    ("$XDG_DATA_HOME/com.corvex.NerinOption", "~/.local/share",
     "the library of profiles, its history, and the macros."),
    ("$XDG_CONFIG_HOME/com.corvex.NerinOption.plist", "~/.config",
     "linked programs, programs of buttons, and other preferences."),
    ("$XDG_STATE_HOME/com.corvex.NerinOption", "~/.local/state",
     "edits that are not applied, and the log."),
)
OLD_PLACE = "~/Library/Application Support/com.corvex.NerinOption"


def escaped(text):
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("~", "\\(ti")
    return re.sub(r"^([.'])", r"\\&\1", text, flags=re.MULTILINE)


def valueOf(option):
    if option["isArgument"]:
        return option["names"][-1]
    return option["value"] if option["value"] not in ("INT", "TEXT") else option["names"][-1][2:]


def allowed(option):
    found = re.search(r":\{(.*)\}$", option["value"])
    return " or ".join(found[1].split(",")) if found else ""


def optionLines(option):
    value = " \\fI%s\\fR" % escaped(valueOf(option)) if option["takesValue"] else ""
    names = ", ".join("\\fB%s\\fR" % escaped(name) for name in option["names"])
    text = option["description"]
    if text and not text.endswith("."):
        text += "."
    if option["isRepeated"]:
        text += " Can be given several times."
    return [".TP", names + value, escaped(text)]


def usageOf(path, command):
    """The command line: arguments and options as they are needed."""
    words = ["\\fB%s\\fR" % " ".join(path)]
    for option in command["options"]:
        if "--help" in option["names"]:
            continue
        value = "\\fI%s\\fR" % escaped(valueOf(option))
        word = value if option["isArgument"] else (
            "\\fB%s\\fR" % escaped(option["names"][-1]) + (" " + value if option["takesValue"] else ""))
        word += " ..." if option["isRepeated"] else ""
        words.append(word if option["isRequired"] else "[%s]" % word)
    return " ".join(words)


def commandLines(path, command):
    lines = []
    for each in command["commands"]:
        lines += commandLines([*path, each["name"]], each)
    if lines:
        return lines
    text = escaped(command["description"]) + "."
    details = [option for option in command["options"] if "--help" not in option["names"]]
    for option in details:
        words = option["description"] or allowed(option)
        if words:
            text += " \\fI%s\\fR: %s." % (escaped(option["names"][-1]), escaped(words).rstrip("."))
    lines = [".TP", usageOf(path, command), text]
    example = re.search(r"Example:\n  (.*)", command["footer"])
    if example:
        lines += [".br", "Example: \\fB%s\\fR" % escaped(example[1])]
    return lines


def fileLines():
    lines = []
    for path, standard, text in FILES:
        lines += [".TP", "\\fI%s\\fR" % escaped(path), escaped(text),
                  "Without the variable: in \\fI%s\\fR." % escaped(standard)]
    return lines + [".PP", "Where \\fI%s\\fR is there already, it is used as it stands, with the"
                    % escaped(OLD_PLACE), "preferences and the log beside it."]


def main():
    template, grammarFile, version, rules, output = sys.argv[1:]
    with open(grammarFile, encoding="utf-8") as file:
        grammar = json.load(file)
    options = [line for option in grammar["options"] for line in optionLines(option)]
    commands = [line for each in grammar["commands"] for line in commandLines([each["name"]], each)]
    with open(template, encoding="utf-8") as file:
        page = file.read()
    for name, text in (("VERSION", version), ("RULES", rules), ("OPTIONS", "\n".join(options)),
                       ("COMMANDS", "\n".join(commands)), ("FILES", "\n".join(fileLines()))):
        page = page.replace("@%s@" % name, text)
    with open(output, "w", encoding="utf-8") as file:
        file.write(page)


if __name__ == "__main__":
    main()
