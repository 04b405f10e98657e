#!/usr/bin/env bash
# clang-tidy on the C++ files that changed since a commit (default: the last 20 commits), one
# process a file: given several at once, version 14 reports false va_list errors.
#   tools/check_tidy.sh [base [build folder]]
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
base=${1:-$(git rev-list -n 20 HEAD | tail -n 1)}
build=${2:-build-test}
git diff --name-only --diff-filter=d "$base" -- '*.cpp' |
    xargs -r -P "$(nproc)" -n 1 clang-tidy-14 -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option 2>/dev/null
