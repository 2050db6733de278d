# Read by ctest. script: the file that includes this; program: a GoogleTest program; own_process:
# the suites to run test by test (* for all); tests: the cached result.
cmake_minimum_required(VERSION 3.25)

if(NOT EXISTS "${program}")
  # Like CMake's own discovery: a failing test reports the missing program.
  add_test("${program}_NOT_BUILT" "${program}")
  return()
endif()

if("${program}" IS_NEWER_THAN "${tests}" OR "${CMAKE_CURRENT_LIST_FILE}" IS_NEWER_THAN "${tests}"
   OR "${script}" IS_NEWER_THAN "${tests}")
  execute_process(COMMAND "${program}" --gtest_list_tests OUTPUT_VARIABLE listing
                  ERROR_QUIET TIMEOUT 60 COMMAND_ERROR_IS_FATAL ANY)
  # The parameter value after the # may have characters with a meaning in CMake.
  string(REGEX REPLACE "[ ]*#[^\n]*" "" listing "${listing}")
  string(REGEX MATCHALL "[^\n]+" lines "${listing}")
  set(entries "")
  set(suites "")
  set(count 0)
  foreach(line IN LISTS lines)
    if(line MATCHES "^([^ ]+)\\.$")
      set(suite "${CMAKE_MATCH_1}")
    elseif(line MATCHES "^  ([^ ]+)$")
      math(EXPR count "${count} + 1")
      if("*" IN_LIST own_process OR suite IN_LIST own_process)
        list(APPEND entries "${suite}.${CMAKE_MATCH_1}")
      elseif(NOT suite IN_LIST suites)
        list(APPEND suites "${suite}")
        list(APPEND entries "${suite}.*")
      endif()
    endif()
  endforeach()
  if(count EQUAL 0)
    message(FATAL_ERROR "${program} lists no tests")
  endif()
  cmake_path(GET program FILENAME name)
  set(content "message(\"${name}: ${count} tests\")\n")
  foreach(entry IN LISTS entries)
    string(REGEX REPLACE "\\.\\*$" "" test "${entry}")
    string(APPEND content
           "add_test(\"${test}\" \"${program}\" \"--gtest_filter=${entry}\")\n"
           "set_tests_properties(\"${test}\" PROPERTIES TIMEOUT 900)\n")
  endforeach()
  file(WRITE "${tests}" "${content}")
endif()
include("${tests}")
