#!/usr/bin/env python3
"""Makes the completion of nerinctl for a shell, from what nerinctl says of itself.

Called as compile_completion.py GRAMMAR SHELL OUTPUT, GRAMMAR being the answer of nerinctl --grammar
and SHELL bash, zsh or fish. The three scripts work alike: they walk through the words in front of
the cursor, to know the command and how many of its arguments are there, and then look up what may
come next.
"""

import argparse
import json
import re
import sys

# What an argument or the value of an option stands for, by its command and name.
KINDS = {
    ("", "--virtual"): "file", ("", "--trace"): "file",
    ("", "--scenario"): "healthy absent unplugged-after= slow short random garbage",
    ("/read", "--output"): "file",
    ("/apply", "name"): "profile", ("/diff", "name"): "profile", ("/show", "profile"): "profile",
    ("/profiles/copy", "name"): "profile", ("/profiles/rename", "old"): "profile",
    ("/profiles/delete", "name"): "profile", ("/profiles/import", "file"): "file",
    ("/profiles/export", "name"): "profile", ("/profiles/export", "file"): "file",
    ("/macros/show", "name"): "macro", ("/macros/import", "file"): "file",
    ("/macros/export", "name"): "macro", ("/macros/export", "file"): "file",
    ("/macros/rename", "old"): "macro", ("/macros/delete", "name"): "macro",
    ("/backup", "folder"): "folder", ("/restore", "folder"): "folder", ("/report", "file"): "file",
    ("/rate", "hz"): "125 250 500 1000",
    ("/learn", "button"): " ".join(str(number) for number in range(1, 17)),
    # What nobody but the user can know.
    ("/profiles/add", "name"): "", ("/profiles/rename", "new"): "", ("/macros/rename", "new"): "",
    ("/profiles/recover", "number"): "", ("/profiles/recover", "name"): "",
    ("/dpi", "--levels"): "1 2 3 4 5", ("/dpi", "--active"): "1 2 3 4 5", ("/dpi", "--set"): "",
    ("/lift", "height"): "", ("/leds", "--all"): "", ("/leds", "--zone"): "",
}
SLOTS = " ".join(str(number) for number in range(1, 11))


class CompletionError(Exception):
    pass


def kindOf(path, option):
    """file, folder, profile, macro, or the words themselves."""
    name = option["names"][-1]
    allowed = re.search(r":\{(.*)\}$", option["value"])
    if allowed:
        return allowed[1].replace(",", " ")
    if name.lstrip("-") == "slot":
        return SLOTS
    if (path, name) not in KINDS:
        raise CompletionError("nobody says what \"%s\" of \"nerinctl%s\" is: add it to KINDS"
                              % (name, path.replace("/", " ")))
    return KINDS[path, name]


class Entry:
    """A command and what may follow it."""

    def __init__(self, path, command, inherited):
        self.path = path
        self.commands = [(each["name"], each["description"]) for each in command["commands"]]
        options = [each for each in command["options"] if not each["isArgument"]] + [
            each for each in inherited if each["names"] != ["-h", "--help"]]
        self.options = [(name, each["description"]) for each in options for name in each["names"]]
        self.values = {
            name: kindOf(path if each in command["options"] else "", each)
            for each in options if each["takesValue"] for name in each["names"]}
        self.arguments = [kindOf(path, each) for each in command["options"] if each["isArgument"]]


def entriesOf(grammar):
    entries = []

    def walk(path, command, inherited):
        entries.append(Entry(path, command, inherited))
        options = command["options"] if not path else inherited
        for each in command["commands"]:
            walk(path + "/" + each["name"], each, options)

    walk("", grammar, [])
    return entries


def quoted(text):
    return "'" + text.replace("'", "'\\''") + "'"


def quotedForFish(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


NAMES = r"""  command nerinctl "$1" list --json 2>/dev/null |
    sed -n 's/^ *"name": "\(.*\)",\{0,1\}$/\1/p' | sed 's/\\\(["\\]\)/\1/g'"""

# The same in bash and zsh: sets path, count and option by the words in front of the cursor.
WALK = r"""  local path_='' count=0 option='' word
  for word in "$@"; do
    if [[ -n $option ]]; then
      option=''
    elif [[ $word == -* ]]; then
      case "$path_ $word" in
%s
      esac
    else
      case "$path_/$word" in
%s
        *) count=$((count + 1)) ;;
      esac
    fi
  done
"""


def walkOf(entries):
    takers = " | ".join(quoted("%s %s" % (entry.path, name))
                        for entry in entries for name in entry.values)
    commands = " | ".join(quoted(entry.path) for entry in entries if entry.path)
    return WALK % ("        %s) option=$word ;;" % takers, "        %s) path_+=/$word ;;" % commands)


def kindsOf(entries, indent):
    lines = []
    for entry in entries:
        for name, kind in entry.values.items():
            lines.append("%s) kind=%s ;;" % (quoted("%s %s" % (entry.path, name)), quoted(kind)))
        for number, kind in enumerate(entry.arguments):
            lines.append("%s) kind=%s ;;" % (quoted("%s %d" % (entry.path, number)), quoted(kind)))
    return "\n".join(indent + line for line in lines)


def wordsOf(entries, of, indent, listed):
    return "\n".join("%s%s) %s ;;" % (indent, quoted(entry.path), listed(of(entry)))
                     for entry in entries if of(entry))


def bash(entries):
    return r"""# Completion of nerinctl for bash. Made by Tools/compile_completion.py.

_nerinctl_names() {
%s
}

_nerinctl_complete() {
  local cur=$1
  shift
%s
  local kind='' IFS=$'\n' name
  COMPREPLY=()
  if [[ -n $option || $cur != -* ]]; then
    case "$path_ ${option:-$count}" in
%s
    esac
    case $kind in
      file) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -f -- "$cur")) ;;
      folder) compopt -o filenames 2>/dev/null; COMPREPLY=($(compgen -d -- "$cur")) ;;
      profile | macro)
        for name in $(_nerinctl_names "${kind}s"); do
          if [[ $name == "$cur"* ]]; then
            COMPREPLY+=("$(printf '%%q' "$name")")
          fi
        done
        ;;
      ?*) IFS=' ' COMPREPLY=($(IFS=' ' compgen -W "$kind" -- "$cur")) ;;
      *)
        if [[ -z $option && $count -eq 0 ]]; then
          case $path_ in
%s
          esac
        fi
        ;;
    esac
  else
    case $path_ in
%s
    esac
  fi
}

_nerinctl() {
  _nerinctl_complete "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[@]:1:COMP_CWORD-1}"
}

complete -F _nerinctl nerinctl
""" % (NAMES, walkOf(entries), kindsOf(entries, " " * 6),
       wordsOf(entries, lambda entry: entry.commands, " " * 12, bashWords),
       wordsOf(entries, lambda entry: entry.options, " " * 6, bashWords))


def bashWords(pairs):
    return "COMPREPLY=($(IFS=' ' compgen -W %s -- \"$cur\"))" % quoted(
        " ".join(name for name, _ in pairs))


def zsh(entries):
    return r"""#compdef nerinctl
# Completion of nerinctl for zsh. Made by Tools/compile_completion.py.

_nerinctl_names() {
%s
}

_nerinctl_complete() {
  local cur=$1
  shift
%s
  local kind=''
  local -a found
  if [[ -n $option || $cur != -* ]]; then
    case "$path_ ${option:-$count}" in
%s
    esac
    case $kind in
      file) _files ;;
      folder) _files -/ ;;
      profile | macro)
        found=("${(@f)$(_nerinctl_names "${kind}s")}")
        compadd -a found
        ;;
      ?*) compadd -- ${=kind} ;;
      *)
        if [[ -z $option && $count -eq 0 ]]; then
          case $path_ in
%s
          esac
          _describe command found
        fi
        ;;
    esac
  else
    case $path_ in
%s
    esac
    _describe -o option found
  fi
}

_nerinctl() {
  _nerinctl_complete "${words[CURRENT]}" "${(@)words[2,CURRENT-1]}"
}

if [[ $zsh_eval_context[-1] == loadautofunc ]]; then
  _nerinctl "$@"
elif (( $+functions[compdef] )); then
  compdef _nerinctl nerinctl
fi
""" % (NAMES, walkOf(entries), kindsOf(entries, " " * 6),
       wordsOf(entries, lambda entry: entry.commands, " " * 12, zshWords),
       wordsOf(entries, lambda entry: entry.options, " " * 6, zshWords))


def zshWords(pairs):
    return "found=(%s)" % " ".join(
        quoted(name + ":" + description.replace(":", "\\:")) for name, description in pairs)


def fish(entries):
    takers = " ".join(quotedForFish("%s %s" % (entry.path, name))
                      for entry in entries for name in entry.values)
    commands = " ".join(quotedForFish(entry.path) for entry in entries if entry.path)
    lines = [r"""# Completion of nerinctl for fish. Made by Tools/compile_completion.py.

function __nerinctl_names
  command nerinctl $argv[1] list --json 2>/dev/null | string match -r '^ *"name": "(.*)",?$' -g |
    string replace -ra '\\\\(["\\\\])' '$1'
end

# Whether the command in front of the cursor is the first argument, and what comes next is the
# second: a number of an argument, or an option that waits for its value.
function __nerinctl_at
  set -l path ''
  set -l count 0
  set -l option ''
  for word in (commandline -opc)[2..-1]
    if test -n "$option"
      set option ''
    else if string match -q -- '-*' $word
      if contains -- "$path $word" %s
        set option $word
      end
    else if contains -- "$path/$word" %s
      set path $path/$word
    else
      set count (math $count + 1)
    end
  end
  test "$path" = "$argv[1]"
  and if test -n "$option"
    test "$option" = "$argv[2]"
  else
    test "$argv[2]" = any -o "$argv[2]" = $count
  end
end

complete -c nerinctl -f""" % (takers, commands)]

    def line(entry, place, rest):
        lines.append("complete -c nerinctl -n %s %s" % (
            quotedForFish("__nerinctl_at '%s' '%s'" % (entry.path, place)), rest))

    def values(entry, place, kind):
        if kind == "file":
            line(entry, place, "-F")
        elif kind == "folder":
            line(entry, place, "-a '(__fish_complete_directories)'")
        elif kind in ("profile", "macro"):
            line(entry, place, "-a '(__nerinctl_names %ss)'" % kind)
        elif kind:
            line(entry, place, "-k -a %s" % quotedForFish(kind))

    for entry in entries:
        for name, description in entry.commands:
            line(entry, 0, "-a %s -d %s" % (name, quotedForFish(description)))
        for name, description in entry.options:
            form = "-l " + name[2:] if name.startswith("--") else "-s " + name[1:]
            line(entry, "any", "%s -d %s" % (form, quotedForFish(description)))
        for name, kind in entry.values.items():
            values(entry, name, kind)
        for number, kind in enumerate(entry.arguments):
            values(entry, number, kind)
    return "\n".join(lines) + "\n"


SHELLS = {"bash": bash, "zsh": zsh, "fish": fish}


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("grammar")
    parser.add_argument("shell", choices=SHELLS)
    parser.add_argument("output")
    arguments = parser.parse_args()
    with open(arguments.grammar, encoding="utf-8") as file:
        grammar = json.load(file)
    try:
        script = SHELLS[arguments.shell](entriesOf(grammar))
    except CompletionError as error:
        sys.exit("compile_completion.py: %s" % error)
    with open(arguments.output, "w", encoding="utf-8") as file:
        file.write(script)


if __name__ == "__main__":
    main()
