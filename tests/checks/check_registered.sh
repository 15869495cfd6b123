#!/usr/bin/env bash
# Every test file is built or run, and none of its tests is switched off: a test that silently stops
# running looks like one that passes. Usage: check_registered.sh SOURCE_FOLDER
set -euo pipefail
cd "$1/tests"

status=0
for file in */*_test.*; do
    name=$(basename "$file")
    if ! grep -qE "(^|[ /])$name|app_script\(${name%_test.py} " "$(dirname "$file")/CMakeLists.txt"; then
        echo "$file: not in its CMakeLists.txt"
        status=1
    fi
done
if grep -nE 'DISABLED_|GTEST_SKIP|unittest\.skip' ./*/*_test.*; then
    status=1
fi
exit $status
