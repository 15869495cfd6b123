#!/usr/bin/env python3
"""The shells load the completions, and bash and fish offer what they should.

    completions_test.py COMPLETIONS_FOLDER
"""

import re
import subprocess
import sys
import unittest

FOLDER = sys.argv.pop(1)

# What has been typed, and what is offered for its last word (behind "=", where there is one).
OFFERS = [
    ("zelmora-convert --enc", "--encoding"),
    ("zelmora-convert --encoding utf", "utf-8 utf-16 utf-32"),
    ("zelmora-convert --encoding=sh", "shift_jis"),
    ("zelmora-convert --line-break ", "lf cr crlf ls keep"),
    ("zelmora-convert --set littleEndian=", "YES NO"),
    ("zelmora-convert --set encodingCode=", "0 1 2 3 4 5 6"),
    ("zelmora-convert --set actionForDup", "actionForDupBackupFiles="),
    ("zelmora-convert --html --backup /us", "/usr"),
    ("zelmora --v", "--version"),
]

# Readline breaks words at "=", too.
BASH = """. /usr/share/bash-completion/bash_completion
for file in "$1"/*.bash; do . "$file"; done
compopt() { :; } # only known while the shell itself completes
COMP_LINE=$2 COMP_POINT=${#2}; shift 2
COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
function=$(complete -p "$1" | sed 's/.*-F \\([^ ]*\\).*/\\1/')
"$function" "$1" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
printf '%s\\n' "${COMPREPLY[@]}"
"""
FISH = """for file in $argv[1]/*.fish; source $file; end; complete -C $argv[2]"""
ZSH = """fpath=($1 $fpath); autoload -Uz compinit; compinit -u -D
for program in zelmora zelmora-convert; do
  print $_comps[$program]
  autoload +X $_comps[$program]
done"""


def output(*command):
    run = subprocess.run(command, check=True, capture_output=True, text=True)
    assert not run.stderr, run.stderr
    return run.stdout.splitlines()


class CompletionsTest(unittest.TestCase):
    def test_bash(self):
        for line, expected in OFFERS:
            words = re.findall(r"=|[^\s=]+", line) + [""] * (line[-1] in " =")
            offers = output("bash", "-c", BASH, "bash", FOLDER, line, *words)
            self.assertEqual(offers, expected.split(), line)

    def test_fish(self):
        for line, expected in OFFERS:
            offers = [each.split("\t")[0] for each in output("fish", "-c", FISH, FOLDER, line)]
            behind_mark = {each.split("=")[-1] if "=" in line else each for each in offers}
            for word in expected.split():
                self.assertTrue(any(each.startswith(word) for each in behind_mark), (line, offers))

    def test_zsh(self):
        self.assertEqual(output("zsh", "-fc", ZSH, "zsh", FOLDER), ["_zelmora", "_zelmora-convert"])


unittest.main()
