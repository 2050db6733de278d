# nerin_layer(NAME SOURCES...) makes one layer of the house: a static library whose headers are
# included by their path from the top of the tree, built with the warnings that every layer keeps.
add_library(NerinWarnings INTERFACE)
# The log names source files by their path inside the tree, and no folder of the build machine.
add_compile_options("-ffile-prefix-map=${PROJECT_SOURCE_DIR}/=")
target_compile_options(NerinWarnings INTERFACE -Wall -Wextra -Wconversion -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
  # GCC 12 sees overlaps in its own std::string at -O2 that are not there.
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
  # The layers tell the fuzzer which of their lines an input reaches.
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

function(nerin_layer name)
  add_library(${name} STATIC ${ARGN})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}")
  target_link_libraries(${name} PRIVATE NerinWarnings)
endfunction()

# nerin_test(NAME SOURCES...) makes one GoogleTest program and registers its tests.
function(nerin_test name)
  add_executable(${name} ${ARGN})
  target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}")
  # Most of a test's compile time is in reading these.
  target_precompile_headers(${name} PRIVATE <gmock/gmock.h> <gtest/gtest.h> <filesystem> <fstream>
                            <memory> <optional> <string> <vector>)
  target_compile_definitions(
    ${name} PRIVATE NERIN_FIXTURES="${PROJECT_SOURCE_DIR}/Tests/Fixtures"
                    NERIN_RESOURCES="${CMAKE_BINARY_DIR}/resources")
  target_link_libraries(${name} PRIVATE NerinWarnings GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES TIMEOUT 300)
endfunction()
