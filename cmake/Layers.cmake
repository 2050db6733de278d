add_library(NerinWarnings INTERFACE)
# The log shows source paths relative to the tree, without folders of the build machine.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
target_compile_options(NerinWarnings INTERFACE -Wall -Wextra -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 reports false overlaps in its own std::string at -O2.
  target_compile_options(NerinWarnings INTERFACE -Wno-restrict)
endif()
if(NERIN_WERROR)
  target_compile_options(NerinWarnings INTERFACE -Werror)
endif()
if(NERIN_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all
                      -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()
if(NERIN_FUZZERS)
  # The instrumentation shows the fuzzer which lines an input reaches.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# nerin_layer(NAME SOURCES...) adds a layer: a static library with the warnings of all layers, whose
# headers are included by their path from the top of the tree.
function(nerin_layer name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE NerinWarnings)
endfunction()

# Other headers take most of the compile time of a small file, so they are precompiled: once for the
# layers without Qt, once for those with widgets. Each file must also compile without them.
function(nerin_headers name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "LINK")
  set(source "${CMAKE_BINARY_DIR}/generated/${name}.cpp")
  file(CONFIGURE OUTPUT "${source}" CONTENT "// Is compiled for its precompiled headers only.\n")
  add_library(${name} OBJECT "${source}")
  target_precompile_headers(${name} PRIVATE ${arg_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE NerinWarnings ${arg_LINK})
endfunction()

nerin_headers(PlainHeaders
  <algorithm> <array> <cstdint> <filesystem> <functional> <memory> <optional> <string> <utility>
  <vector>)
nerin_headers(WidgetHeaders
  <algorithm> <array> <cstdint> <functional> <memory> <optional> <string> <utility> <vector>
  <QApplication> <QKeyEvent> <QLabel> <QLineEdit> <QMouseEvent> <QPainter> <QPointer> <QPushButton>
  <QScreen> <QTimer> <QWidget>
  LINK Qt6::Widgets)

# nerin_test(NAME SOURCES... [ALONE SOURCES...] [OWN_PROCESS SUITES...]) adds a GoogleTest program
# and registers each suite as one ctest test. The suites in OWN_PROCESS (* for all) are registered
# test by test, because their tests leave state behind in the process.
#
# Reading the headers, and the templates made from them, is most of a test's compile time, so that
# the files of a folder are compiled at once (NERIN_UNITY_TESTS). A file that cannot stand behind
# another of its folder, because both have a name for themselves, is listed in ALONE.
function(nerin_test name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ALONE;OWN_PROCESS")
  add_executable(${name} ${arg_UNPARSED_ARGUMENTS} ${arg_ALONE})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  target_compile_definitions(
    ${name} PRIVATE NERIN_FIXTURES="${PROJECT_SOURCE_DIR}/Tests/Fixtures"
                    NERIN_RESOURCES="${CMAKE_BINARY_DIR}/resources")
  target_link_libraries(${name} PRIVATE NerinWarnings GTest::gtest GTest::gmock GTest::gtest_main)
  if(NERIN_UNITY_TESTS)
    set_target_properties(${name} PROPERTIES UNITY_BUILD ON UNITY_BUILD_MODE GROUP)
    foreach(source IN LISTS arg_UNPARSED_ARGUMENTS)
      cmake_path(GET source PARENT_PATH folder)
      if(folder MATCHES "^\\.\\.")
        set(folder Neighbours)
      endif()
      set_source_files_properties(${source} PROPERTIES UNITY_GROUP "Files${folder}")
    endforeach()
    # A fixture of one file is no longer in the main file, which is all that this warns of.
    target_compile_options(${name} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
  endif()
  nerin_discover_suites(${name} ${arg_OWN_PROCESS})
endfunction()

# ctest asks the program for its suites when it starts.
function(nerin_discover_suites name)
  set(script "${CMAKE_CURRENT_BINARY_DIR}/${name}-suites.cmake")
  file(GENERATE OUTPUT "${script}" CONTENT "\
set(script \"${script}\")
set(program \"$<TARGET_FILE:${name}>\")
set(own_process \"${ARGN}\")
set(tests \"${CMAKE_CURRENT_BINARY_DIR}/${name}-tests.cmake\")
include(\"${PROJECT_SOURCE_DIR}/cmake/RegisterSuites.cmake\")
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${script}")
endfunction()
