# zqxml_add_test(<name> <source>...) and zqxml_add_fuzz(<name> <source>...).

find_package(GTest REQUIRED)
find_package(rapidcheck REQUIRED)
include(GoogleTest)

# All that a build with ZQXML_THREAD_TESTS_ONLY needs.
if(ZQXML_THREAD_TESTS_ONLY)
  add_custom_target(zqxml_thread_tests)
endif()

# All fuzz targets.
add_custom_target(zqxml_fuzz_targets)

# zqxml_add_test(<name> <source>...): one GoogleTest program whose every case is a test of ctest's.
#
# It is linked with the objects of the library, not with the shared one, so tests reach what is not exported,
# and with the catalogue of the tests. Under ZQXML_THREAD_TESTS_ONLY a program without a test of threads (its
# name says "Threads" or "Concurrent") is left out.
function(zqxml_add_test name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE zqxml_test_support GTest::gmock_main)
  target_precompile_headers(${name} REUSE_FROM zqxml_test_support)
  if(ZQXML_THREAD_TESTS_ONLY)
    set(threads FALSE)
    foreach(source IN LISTS ARGN)
      file(STRINGS "${source}" lines REGEX "TEST.*(Threads|Concurrent)")
      if(lines)
        set(threads TRUE)
      endif()
    endforeach()
    if(NOT threads)
      set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL TRUE)
      return()
    endif()
    add_dependencies(zqxml_thread_tests ${name})
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       WORKING_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" PROPERTIES TIMEOUT 300)
endfunction()

# zqxml_add_fuzz(<name>_fuzz <source>...): a fuzz target.
#
# With ZQXML_FUZZ it is a libFuzzer program. In every other build the same sources get a plain main, and one
# test runs every file of fuzz/corpus/<name>/ through them.
function(zqxml_add_fuzz name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE zqxml_test_support)
  add_dependencies(zqxml_fuzz_targets ${name})
  if(ZQXML_FUZZ)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/fuzz/corpus_main.cc")
  string(REGEX REPLACE "_fuzz$" "" corpus "${name}")
  add_test(NAME ${name}.Corpus COMMAND ${name} "${PROJECT_SOURCE_DIR}/fuzz/corpus/${corpus}")
  set_tests_properties(${name}.Corpus PROPERTIES TIMEOUT 300)
endfunction()
