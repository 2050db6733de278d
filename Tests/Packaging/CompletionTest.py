"""The completion of nerinctl, asked in the three shells themselves.

Called as CompletionTest.py NERINCTL FOLDER, FOLDER being where the build has made the scripts. What
is expected comes from the grammar of that nerinctl, so that a command that is added, renamed or
forgotten shows.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

FOLDER = os.path.abspath(sys.argv.pop(2))
NERINCTL = os.path.abspath(sys.argv.pop(1))
GRAMMAR = json.loads(subprocess.check_output([NERINCTL, "--grammar"]))
SLOTS = {str(number) for number in range(1, 11)}

# Each reads the words from its arguments, the last being the one at the cursor.
BASH = r"""
source "$1"; shift
COMP_WORDS=(nerinctl "$@"); COMP_CWORD=$#
_nerinctl
printf '%s\n' "${COMPREPLY[@]}"
"""
# What the completion hands to the line editor, which is not there.
ZSH = r"""
compadd() {
  local -a those
  if [[ $1 == -a ]]; then those=("${(@P)2}"); else shift; those=("$@"); fi
  for one in $those; do if [[ $one == $cur* ]]; then print -r -- $one; fi; done
}
_describe() {
  local name=${@[-1]}
  for one in "${(@P)name}"; do if [[ $one == $cur* ]]; then print -r -- ${one%%:*}; fi; done
}
_files() { print -r -- "files $*"; }
source "$1"; shift
words=(nerinctl "$@"); CURRENT=$(($# + 1))
_nerinctl
"""
FISH = r"""
source $argv[1]
set -l line nerinctl (string escape -- $argv[2..-2])
complete -C (string join ' ' -- $line $argv[-1])
"""


class Completion:
    """What each test asks of a shell, which the classes below name."""

    def complete(self, *words):
        environment = {
            "HOME": self.home, "TERM": "dumb", "LC_ALL": "C.UTF-8",
            "PATH": os.path.dirname(NERINCTL) + os.pathsep + os.environ["PATH"],
            **{name: os.environ[name] for name in ("ASAN_OPTIONS", "UBSAN_OPTIONS")
               if name in os.environ}}
        answer = subprocess.run(
            [*self.command, os.path.join(FOLDER, self.script), *words], env=environment,
            cwd=self.home, capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual((answer.stderr, answer.returncode), ("", 0))
        return {line.split("\t")[0] for line in answer.stdout.splitlines()} - {""}

    def setUp(self):
        self.home = tempfile.mkdtemp(prefix="nerin-completion-")
        self.addCleanup(shutil.rmtree, self.home)

    def nerinctl(self, *words):
        subprocess.run([NERINCTL, *words], env={**os.environ, "HOME": self.home, "XDG_DATA_HOME": ""},
                       stdout=subprocess.DEVNULL, check=True)

    def testKnowsEveryCommandAndItsOptions(self):
        def walk(command, path, inherited):
            names = {each["name"] for each in command["commands"]}
            if names:
                self.assertEqual(self.complete(*path, ""), names, path)
            options = {option["names"][-1] for option in command["options"]
                       if not option["isArgument"]} | inherited
            self.assertEqual(self.complete(*path, "--"), options, path)
            for each in command["commands"]:
                walk(each, [*path, each["name"]], inherited if path else options)

        walk(GRAMMAR, [], set())

    def testCompletesTheBeginningOfAWord(self):
        self.assertEqual(self.complete("pro"), {"profiles"})
        self.assertEqual(self.complete("profiles", "re"), {"rename", "recover"})
        self.assertEqual(self.complete("rate", "5"), {"500"})
        self.assertEqual(self.complete("mode", ""), {"battle", "normal"})

    def testTakesTheValueOfAnOptionForNoArgument(self):
        self.assertEqual(self.complete("--virtual", "mouse", "mode", ""), {"battle", "normal"})
        self.assertEqual(self.complete("apply", "--slot", ""), SLOTS)
        self.assertEqual(self.complete("--json", "switch", ""), SLOTS)
        self.assertEqual(self.complete("switch", "1", "") & SLOTS, set())

    def testNamesTheProfilesOfTheLibrary(self):
        self.nerinctl("profiles", "add", "Office")
        self.nerinctl("profiles", "add", "Racing two")
        names = {re.sub(r"\\(.)", r"\1", name) for name in self.complete("apply", "")}
        self.assertEqual(names, {"Office", "Racing two"})
        self.assertEqual(self.complete("apply", "--slot", "2", "Off"), {"Office"})
        self.assertEqual(self.complete("profiles", "delete", "O"), {"Office"})

    def testNamesFilesWhereAFileIsMeant(self):
        os.mkdir(os.path.join(self.home, "saved"))
        for words in (("--virtual",), ("profiles", "import"), ("backup",),
                      ("profiles", "export", "x")):
            found = self.complete(*words, "sav")
            self.assertEqual(len(found), 1, words)
            self.assertRegex(found.pop(), "^(saved/?|files .*)$")


class Bash(Completion, unittest.TestCase):
    command = ("bash", "--norc", "-c", BASH, "bash")
    script = "nerinctl.bash"


class Zsh(Completion, unittest.TestCase):
    command = ("zsh", "-f", "-c", "cur=${@[-1]}\n" + ZSH, "zsh")
    script = "nerinctl.zsh"


class Fish(Completion, unittest.TestCase):
    command = ("fish", "--no-config", "-c", FISH)
    script = "nerinctl.fish"


if __name__ == "__main__":
    unittest.main()
