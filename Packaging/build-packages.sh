#!/usr/bin/env bash
# Packaging/build-packages.sh [FOLDER]: builds the Debian packages into FOLDER (build/packages without
# one) from the files of this tree as they are now, in a copy. The same commit gives the same bytes in
# every folder; docs/packaging.md says what makes sure of it.
set -euo pipefail
cd "$(dirname "$0")/.."
source Packaging/setup.sh

folder=$(realpath -m "${1-build/packages}")
version=$(sed -n 's/^project(NerinOption VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
epoch=${SOURCE_DATE_EPOCH-$(git log -1 --format=%ct)}
copy=$folder/nerinoption-$version

install_packages build package
rm -rf "$copy" "$folder"/*.deb "$folder"/*.buildinfo "$folder"/*.changes
mkdir -p "$copy"
# What git would add, so that neither a build nor a user's files get into it.
git ls-files --cached --others --exclude-standard -z |
  while IFS= read -r -d '' file; do
    if [ -e "$file" ]; then printf '%s\0' "$file"; fi
  done | tar --create --null --files-from=- | tar --extract --directory "$copy"

# One place says the version: project() in CMakeLists.txt.
cat >"$copy/debian/changelog" <<END
nerinoption ($version) unstable; urgency=medium

  * See CHANGELOG.md.

 -- $(sed -n 's/^Maintainer: //p' debian/control)  $(LC_ALL=C date -u -R -d "@$epoch")
END
cd "$copy"
# What git does not keep and each tree has in its own way: the permissions and the dates of files.
umask 022
chmod -R go=u-w .
find . -exec touch --no-dereference --date="@$epoch" {} +
# The symbols for debuggers are packages of their own, which nobody needs who does not ask for them.
options=${DEB_BUILD_OPTIONS-noautodbgsym}
exec env SOURCE_DATE_EPOCH="$epoch" DEB_BUILD_OPTIONS="parallel=$(nproc) $options" \
  dpkg-buildpackage --build=binary --no-sign --no-pre-clean
