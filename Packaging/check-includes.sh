#!/usr/bin/env bash
# Packaging/check-includes.sh [TREE]: checks that no include points up the list of layers, or up the
# list of folders inside a layer, and that the state of the process stands where a test resets it.
set -euo pipefail
cd "${1-"$(dirname "$0")/.."}"

# layer -> the layers from which it may include.
declare -A allowed=(
  [Kit/Core]='Kit/Core'
  [Kit/Bus]='Kit/Bus Kit/Core'
  [Kit/Device]='Kit/Device Kit/Core'
  [MacroPlayer]='MacroPlayer'
  [VirtualMouse]='VirtualMouse MacroPlayer Kit/Core'
  [Action]='Action Kit/Core'
  [Kit/Widgets]='Kit/Widgets Kit/Core'
  [Kit/Desktop]='Kit/Desktop Kit/Core'
  [View]='View Kit/Widgets Kit/Desktop Action MacroPlayer Kit/Core'
  [App]='App View Kit/Widgets Kit/Desktop Action VirtualMouse Kit/Device Kit/Bus Kit/Core'
  [Companion]='Companion Action VirtualMouse Kit/Device Kit/Bus Kit/Core'
  [CommandLine]='CommandLine Action VirtualMouse Kit/Device Kit/Bus Kit/Core'
)
# layer -> its folders, lowest first. A folder may include from itself and from those before it.
declare -A ladder=(
  [Action]='Record Wire Library Texts Service Catalogue Device Edit'
  [View]='Screen Windows Lights Dpi Macros Assign Main'
  [Companion]='Policy Loop Desktop Service'
)
# The layers that may use Qt.
knows_qt=' Kit/Bus Kit/Widgets Kit/Desktop View App '
status=0

# refuse TEXT: reads the lines that break a rule, and says the rule when there are any.
refuse() {
  local lines
  lines=$(cat)
  if [ -n "$lines" ]; then
    printf '%s\n%s\n' "$lines" "$1" >&2
    status=1
  fi
}

# includes FOLDER: the lines of its sources that include one of ours.
includes() {
  grep -rHnE '^#include "' "$1" --include='*.cpp' --include='*.h' |
    grep -vE '#include "[A-Za-z0-9]+\.(moc|h)"$' || true
}

for layer in "${!allowed[@]}"; do
  [ -d "$layer" ] || continue
  pattern=$(tr ' ' '|' <<<"${allowed[$layer]}")
  refuse "$layer may include only: ${allowed[$layer]}" < <(
    includes "$layer" | grep -vE "#include \"($pattern)(/[A-Z][A-Za-z]+)?/[A-Za-z0-9]+\.h\"" || true)
  if [[ "$knows_qt" != *" $layer "* ]]; then
    refuse "$layer must not use Qt" < <(
      grep -rHnE '^#include <Q' "$layer" --include='*.cpp' --include='*.h' || true)
  fi
done

for layer in "${!ladder[@]}"; do
  [ -d "$layer" ] || continue
  below=''
  for folder in ${ladder[$layer]}; do
    below="$below$folder|"
    [ -d "$layer/$folder" ] || continue
    refuse "$layer/$folder may include only these folders of $layer: ${below//|/ }" < <(
      includes "$layer/$folder" | grep "#include \"$layer/" |
        grep -vE "#include \"$layer/(${below%|})/" || true)
  done
  # A folder without a place could include anything.
  refuse "$layer has folders without a place in the ladder of Packaging/check-includes.sh" < <(
    find "$layer" -mindepth 1 -maxdepth 1 -type d -printf '%f\n' |
      grep -vxE "$(tr ' ' '|' <<<"${ladder[$layer]}")" || true)
done

# A variable of the process that is no constant stands in a ProcessWide, which a test resets.
refuse 'declare it as a ProcessWide (Kit/Core/ProcessWide.h)' < <(
  grep -rHnE '^inline [^(]*(;|=|\{)' Action View App CommandLine Companion --include='*.cpp' --include='*.h' \
    2>/dev/null | grep -vE 'inline (constexpr|const|ProcessWide)|inline namespace' || true)
exit "$status"
