#!/usr/bin/env bash
# Every function that plug-ins may count on is exported by the executable.
#   check_exports.sh EXECUTABLE LIST
set -euo pipefail
[ -s "$2" ]
missing=$(nm -D --defined-only "$1" | awk '{ print $3 }' | sort | comm -23 <(sort "$2") -)
if [ -n "$missing" ]; then
    printf 'not exported:\n%s\n' "$missing"
    exit 1
fi
echo "$(wc -l <"$2") functions are exported"
