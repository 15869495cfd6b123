#!/usr/bin/env python3
"""The shells can read the completions, and bash offers what it should.

    completions_test.py COMPLETIONS_FOLDER
"""

import pathlib
import re
import subprocess
import sys

FOLDER = pathlib.Path(sys.argv[1])

# What has been typed, and what is offered for its last word (behind "=", where there is one).
OFFERS = [
    ("zelmora-convert --enc", "--encoding"),
    ("zelmora-convert --encoding=sh", "shift_jis"),
    ("zelmora-convert --set encodingCode=", "0 1 2 3 4 5 6"),
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


def output(*command):
    run = subprocess.run(command, check=True, capture_output=True, text=True)
    assert not run.stderr, run.stderr
    return run.stdout.splitlines()


for shell, pattern in [("fish", "*.fish"), ("zsh", "_*")]:
    for file in FOLDER.glob(pattern):
        output(shell, "-n", file)
for line, expected in OFFERS:
    words = re.findall(r"=|[^\s=]+", line) + [""] * (line[-1] in " =")
    offers = output("bash", "-c", BASH, "bash", FOLDER, line, *words)
    assert offers == expected.split(), (line, offers)
