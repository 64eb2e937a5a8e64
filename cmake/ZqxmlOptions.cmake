# Language, warnings, sanitizers and tools that hold for every target of this tree.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
# Programs find the library from where they stand, so that the folder of a build leaves no trace in them.
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Kind of build" FORCE)
endif()

set(ZQXML_SANITIZE "" CACHE STRING "Sanitizers to build with: 'address,undefined', 'thread' or empty")
option(ZQXML_COVERAGE "Instrument for coverage" OFF)
option(ZQXML_FUZZ "Build the fuzz targets with libFuzzer (needs Clang)" OFF)
option(ZQXML_THREAD_TESTS_ONLY "Build and register only test programs with a test of threads" OFF)
option(ZQXML_WERROR "Warnings are errors" ON)

# Folders as Debian has them, whatever the prefix: what is installed by hand and what is packaged are laid out alike. "lib"
# is what nobody asked for.
if(CMAKE_LIBRARY_ARCHITECTURE AND (NOT CMAKE_INSTALL_LIBDIR OR CMAKE_INSTALL_LIBDIR STREQUAL "lib"))
  set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}")
endif()
if(NOT CMAKE_INSTALL_DOCDIR)
  set(CMAKE_INSTALL_DOCDIR share/doc/libzqxmlmsgsbase-doc)
endif()
include(GNUInstallDirs)
include(CheckLinkerFlag)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  # Precompiled headers are cached only when time macros and the header's own defines are left out of the hash.
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CMAKE_COMMAND}" -E env
      "CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime" "${CCACHE_PROGRAM}")
endif()

# A time in the precompiled header would keep ccache from ever finding what was compiled with it.
add_compile_options("$<$<CXX_COMPILER_ID:Clang>:SHELL:-Xclang -fno-pch-timestamp>")

add_library(zqxml_options INTERFACE)
target_compile_options(zqxml_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion $<$<BOOL:${ZQXML_WERROR}>:-Werror> -fno-strict-aliasing)
# g++ 12 warns of overlapping copies inside std::string where none can be (its bug 105329).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  target_compile_options(zqxml_options INTERFACE -Wno-restrict)
endif()

set(zqxml_instrument "")
if(ZQXML_SANITIZE)
  list(APPEND zqxml_instrument -fsanitize=${ZQXML_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
endif()
if(ZQXML_FUZZ)
  list(APPEND zqxml_instrument -fsanitize=fuzzer-no-link)
endif()
if(ZQXML_COVERAGE)
  # Atomic, for the tests of threads: how often a condition was false is counted as the rest of all times, and a count
  # that lost some of these leaves no rest.
  list(APPEND zqxml_instrument -fprofile-instr-generate -fprofile-update=atomic -fcoverage-mapping)
endif()
add_compile_options(${zqxml_instrument})
add_link_options(${zqxml_instrument})

# What is shipped checks what it can at little cost: the bounds of known buffers, its stack, and a table of functions that
# is sealed once it is filled.
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  add_compile_options(-fstack-protector-strong -D_FORTIFY_SOURCE=2)
  add_link_options("-Wl,-z,relro,-z,now")
endif()

# The tables of the catalogue are nothing but pointers: packed, their relocations take a tenth of the room.
check_linker_flag(CXX "-Wl,-z,pack-relative-relocs" ZQXML_HAVE_PACK_RELATIVE_RELOCS)
if(ZQXML_HAVE_PACK_RELATIVE_RELOCS AND CMAKE_BUILD_TYPE STREQUAL "Release")
  add_link_options("-Wl,-z,pack-relative-relocs")
endif()
