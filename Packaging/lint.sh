#!/usr/bin/env bash
# Packaging/lint.sh [all]: checks the sources with clang-tidy. Needs a finished build/dev. Checks
# the tests, which take three quarters of the time, only with "all".
set -euo pipefail
cd "$(dirname "$0")/.."

# No unity builds, and no precompiled headers, which only their own compiler can read. The generated
# files are in build/dev.
cmake --preset dev -B build/lint -DNERIN_UNITY_TESTS=OFF -DCMAKE_DISABLE_PRECOMPILE_HEADERS=ON \
  >build/lint.log 2>&1 || { cat build/lint.log; exit 1; }
sed -i 's#/build/lint/#/build/dev/#g' build/lint/compile_commands.json

left_out='Fuzz/|Benchmarks/|Tests/'
if [ "${1-}" = all ]; then
  left_out='Fuzz/|Benchmarks/'
fi
git ls-files '*.cpp' | grep -vE "^($left_out)" |
  xargs -P "$(nproc)" -n 1 clang-tidy -p build/lint --quiet
