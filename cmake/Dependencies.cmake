find_package(PkgConfig REQUIRED)
find_package(Fontconfig REQUIRED)
find_package(pugixml REQUIRED)
find_package(spdlog REQUIRED)
find_package(nlohmann_json REQUIRED)
find_package(CLI11 REQUIRED)
find_package(Qt6 REQUIRED COMPONENTS Core Widgets)
pkg_check_modules(plist REQUIRED IMPORTED_TARGET libplist-2.0)
pkg_check_modules(icu REQUIRED IMPORTED_TARGET icu-i18n icu-uc)
pkg_check_modules(gio REQUIRED IMPORTED_TARGET gio-unix-2.0)
# Its -pthread would not fit the precompiled headers, and says nothing that the C library does not do.
set_target_properties(PkgConfig::gio PROPERTIES INTERFACE_COMPILE_OPTIONS "")
pkg_check_modules(hidapi REQUIRED IMPORTED_TARGET hidapi-hidraw)
pkg_check_modules(udev REQUIRED IMPORTED_TARGET libudev)
pkg_check_modules(systemd REQUIRED IMPORTED_TARGET libsystemd)
# Without X11 the companion cannot tell which program is in front on an X server, and a held key
# repeats there as many keys.
if(NERIN_X11)
  find_package(X11 GLOBAL)
  pkg_check_modules(xcb IMPORTED_TARGET xcb)
endif()
# Without Wayland's headers the windows run on Wayland all the same, but the compositor keeps its
# shortcuts while a macro is recorded, and the line of an Apply stands still there. Qt hands out the
# connection only by a header of its own inside.
if(NERIN_WAYLAND)
  pkg_check_modules(wayland IMPORTED_TARGET wayland-client)
  find_program(WAYLAND_SCANNER wayland-scanner)
  find_file(NERIN_INHIBIT_PROTOCOL keyboard-shortcuts-inhibit-unstable-v1.xml
            PATHS /usr/share/wayland-protocols/unstable/keyboard-shortcuts-inhibit)
  find_path(NERIN_QPA_HEADERS qpa/qplatformnativeinterface.h
            PATHS ${Qt6Gui_PRIVATE_INCLUDE_DIRS} NO_DEFAULT_PATH)
  if(TARGET PkgConfig::wayland AND WAYLAND_SCANNER AND NERIN_INHIBIT_PROTOCOL
     AND NERIN_QPA_HEADERS)
    set(NERIN_HAS_WAYLAND ON)
  else()
    message(STATUS "Built without Wayland: see docs/wayland.md for what is missing then")
  endif()
endif()
if(NERIN_TESTS)
  find_package(GTest REQUIRED)
  pkg_check_modules(umockdev REQUIRED IMPORTED_TARGET umockdev-1.0)
endif()
if(NERIN_BENCHMARKS)
  find_package(benchmark REQUIRED)
endif()
