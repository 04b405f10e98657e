#!/usr/bin/env bash
# Every C and C++ file stands as clang-format 14 leaves it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
git ls-files '*.cpp' '*.h' '*.c' | xargs clang-format-14 --dry-run --Werror
