# Sourced by run and test: installs the Debian 12 packages and builds.

build_packages=(
  cmake fonts-inter gettext g++ librsvg2-bin ninja-build pkg-config python3 python3-polib
  libcli11-dev libfontconfig-dev libglib2.0-dev libhidapi-dev libicu-dev libplist-dev libpng-dev libpugixml-dev
  libspdlog-dev libsystemd-dev libudev-dev libwayland-dev libxcb1-dev nlohmann-json3-dev qt6-base-dev
  qt6-translations-l10n
)
test_packages=(
  at-spi2-core chromium chromium-driver clang-format clang-tidy dbus gir1.2-glib-2.0 libglib2.0-bin libgmock-dev libgtest-dev
  libumockdev-dev openbox python3 python3-gi python3-pyatspi
  python3-selenium sway umockdev wayland-protocols x11-utils xdotool xvfb
)
# The kernel itself is downloaded and unpacked by Tests/UsbStack/boot.py, not installed.
usb_stack_packages=(cpio qemu-system-x86)
tour_packages=(
  dbus gir1.2-glib-2.0 openbox python3 python3-gi x11-utils xdotool xvfb
)
help_packages=("${tour_packages[@]}" pngquant)
bench_packages=(libbenchmark-dev)
fuzz_packages=(clang libclang-rt-14-dev)

# install_packages KIND...: installs the missing packages of these kinds.
install_packages() {
  local missing=() kind package
  for kind in "$@"; do
    local -n packages="${kind}_packages"
    for package in "${packages[@]}"; do
      if [ "$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null)" != installed ]; then
        missing+=("$package")
      fi
    done
  done
  if [ "${#missing[@]}" -eq 0 ]; then
    return
  fi
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
  fi
  echo "Installing packages: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# configure_and_build PRESET TARGET: prints nothing unless something fails.
configure_and_build() {
  local log="build/$1.log"
  mkdir -p build
  if [ ! -f "build/$1/build.ninja" ]; then
    cmake --preset "$1" >"$log" 2>&1 || { cat "$log"; return 1; }
  fi
  cmake --build --preset "$1" --target "$2" >"$log" 2>&1 || { cat "$log"; return 1; }
}
