#!/usr/bin/env bash
# Checks the format of the sources, and that no layer includes a layer above it.
set -euo pipefail
cd "$(dirname "$0")/.."

git ls-files '*.cpp' '*.h' | xargs clang-format --dry-run --Werror

# layer -> the folders that it may include.
declare -A allowed=(
  [Kit/Core]='Kit/Core'
  [Kit/Bus]='Kit/Bus Kit/Core'
  [Kit/Device]='Kit/Device Kit/Core'
  [VirtualMouse]='VirtualMouse Kit/Core'
  [Action]='Action Kit/Core'
  [Kit/Widgets]='Kit/Widgets Kit/Core'
  [Kit/Desktop]='Kit/Desktop Kit/Core'
  [View]='View Kit/Widgets Kit/Desktop Action Kit/Core'
  [App]='App View Kit/Widgets Kit/Desktop Action VirtualMouse Kit/Device Kit/Bus Kit/Core'
  [CommandLine]='CommandLine Action VirtualMouse Kit/Device Kit/Bus Kit/Core'
)
# The layers that may use Qt.
knows_qt=' Kit/Bus Kit/Widgets Kit/Desktop View App '
status=0
for layer in "${!allowed[@]}"; do
  pattern=$(tr ' ' '|' <<<"${allowed[$layer]}")
  if git ls-files "$layer/*.cpp" "$layer/*.h" | xargs grep -HnE '^#include "' |
    grep -vE "#include \"($pattern)(/[A-Z][A-Za-z]+)?/[A-Za-z0-9]+\.h\"" |
    grep -vE '#include "[A-Za-z0-9]+\.(moc|h)"$'; then
    echo "$layer may include only: ${allowed[$layer]}" >&2
    status=1
  fi
  if [[ "$knows_qt" != *" $layer "* ]] && git ls-files "$layer/*.cpp" "$layer/*.h" |
    xargs grep -HnE '^#include <Q'; then
    echo "$layer must not use Qt" >&2
    status=1
  fi
done
exit "$status"
