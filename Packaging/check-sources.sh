#!/usr/bin/env bash
# Checks what a compiler does not: the format of the sources, and where includes point.
set -euo pipefail
cd "$(dirname "$0")/.."

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror
Packaging/check-includes.sh
