#!/usr/bin/env bash
# Every source file is as clang-format writes it, ends with a line feed and has no trailing blanks.
# Usage: check_format.sh SOURCE_FOLDER
set -euo pipefail
cd "$1"

find app docs engine textutil markup foundation platform tests bench fuzz \
    \( -name '*.cpp' -o -name '*.h' \) -print0 |
    xargs -0 clang-format --dry-run -Werror

status=0
while IFS= read -r -d '' file; do
    if [ -n "$(tail -c 1 "$file")" ] || grep -nHE '[[:blank:]]+$' "$file"; then
        echo "$file: trailing blanks, or no line feed at its end"
        status=1
    fi
done < <(find . -path ./.git -prune -o -path './build*' -prune -o -path ./samples -prune -o \
    \( -name '*.py' -o -name '*.sh' -o -name '*.md' -o -name 'CMakeLists.txt' -o \
    -name '*.cmake' -o -path './script/*' \) -type f -print0)
exit $status
