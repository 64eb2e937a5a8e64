# The catalogue compiler in a build.
#
# zqxml_add_catalogue(<executable>... SCHEMA <file or folder>...)
#   Gives programs a catalogue of their own: the library's schema and the given files, which add subsystems, or
#   classes to subsystems (files named *.extension.xml). Its tables take the place of the library's for the whole
#   process, and its typed headers come first in the programs' include path. They are compiled once for all programs
#   of a call. The targets must be executables: only their definition wins over that of the shared library.
#
# zqxml_add_zqmsg(<name>)
#   A zqmsg of the project's own, an executable of that name. Given a catalogue with zqxml_add_catalogue, it knows the
#   project's messages as the installed zqmsg knows the library's.
#
# zqxml_add_catalogue_library(<name> <STATIC|OBJECT> OUT <folder> SCHEMA <file or folder>...)
#   The tables of a catalogue as a library; headers are written below OUT, which is its include folder.

set_property(GLOBAL PROPERTY ZQXML_CATALOGUE_FOLDER "${CMAKE_CURRENT_LIST_DIR}")
set_property(GLOBAL PROPERTY ZQXML_ZQMSG_LIBRARIES "${ZQXML_ZQMSG_LIBRARIES}")
if(ZQXML_SCHEMA_DIR)
  set_property(GLOBAL PROPERTY ZQXML_CATALOGUE_SCHEMA "${ZQXML_SCHEMA_DIR}")
else()
  cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH zqxml_root)
  set_property(GLOBAL PROPERTY ZQXML_CATALOGUE_SCHEMA "${zqxml_root}/schema")
endif()

function(zqxml_add_catalogue_library name type)
  cmake_parse_arguments(PARSE_ARGV 2 arg "" "OUT" "SCHEMA")
  if(NOT arg_OUT OR NOT arg_SCHEMA OR arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "zqxml_add_catalogue_library(<name> <type> OUT <folder> SCHEMA <file or folder>...)")
  endif()
  set(compiler zqcatc)
  set(users_library "")
  if(NOT TARGET zqcatc)
    if(NOT TARGET ZqXMLMsgsBase::zqcatc)
      message(FATAL_ERROR "zqxml_add_catalogue: zqcatc is not installed beside the library (Debian package zqxml-tools)")
    endif()
    set(compiler ZqXMLMsgsBase::zqcatc)
    set(users_library ZqXMLMsgsBase::ZqXMLMsgsBase)
  endif()

  set(files "")
  foreach(schema IN LISTS arg_SCHEMA)
    cmake_path(ABSOLUTE_PATH schema BASE_DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}" NORMALIZE)
    if(IS_DIRECTORY "${schema}")
      file(GLOB found CONFIGURE_DEPENDS "${schema}/*.xml")
      list(APPEND files ${found})
    else()
      list(APPEND files "${schema}")
    endif()
  endforeach()

  # What the compiler writes follows from the names of its files.
  set(folder "${arg_OUT}/zqxml/catalogue/generated")
  set(sources "${folder}/subsystem_table.cc")
  set(headers "${folder}/catalogue.h")
  foreach(file IN LISTS files)
    cmake_path(GET file FILENAME subsystem)
    if(NOT subsystem MATCHES "\\.extension\\.xml$")
      string(REGEX REPLACE "\\.xml$" "" subsystem "${subsystem}")
      list(APPEND sources "${folder}/${subsystem}.cc")
      list(APPEND headers "${folder}/${subsystem}_enums.h" "${folder}/${subsystem}.h")
    endif()
  endforeach()
  add_custom_command(
    OUTPUT ${sources} ${headers}
    COMMAND ${compiler} --out "${arg_OUT}" ${files}
    DEPENDS ${compiler} ${files}
    COMMENT "Compiling the catalogue of ${name}"
    VERBATIM)

  add_library(${name} ${type} ${sources} ${headers})
  # Many small files that stand apart in namespaces of their own: a few compilations instead of one each.
  set_target_properties(${name} PROPERTIES
    POSITION_INDEPENDENT_CODE ON UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE 20
    CXX_VISIBILITY_PRESET hidden CXX_CLANG_TIDY "")
  target_compile_features(${name} PUBLIC cxx_std_20)
  target_include_directories(${name} BEFORE PUBLIC "$<BUILD_INTERFACE:${arg_OUT}>")
  if(users_library)
    target_link_libraries(${name} PRIVATE ${users_library})
  else()
    get_property(root GLOBAL PROPERTY ZQXML_CATALOGUE_FOLDER)
    target_include_directories(${name} PRIVATE "${root}/..")
  endif()
endfunction()

function(zqxml_add_catalogue)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "SCHEMA")
  if(NOT arg_SCHEMA OR NOT arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "zqxml_add_catalogue(<executable>... SCHEMA <file or folder>...)")
  endif()
  foreach(target IN LISTS arg_UNPARSED_ARGUMENTS)
    if(NOT TARGET ${target})
      message(FATAL_ERROR "zqxml_add_catalogue: there is no target ${target}")
    endif()
    get_target_property(type ${target} TYPE)
    if(NOT type STREQUAL "EXECUTABLE")
      message(FATAL_ERROR "zqxml_add_catalogue: ${target} is no executable; a catalogue belongs to a program")
    endif()
  endforeach()
  get_property(schema GLOBAL PROPERTY ZQXML_CATALOGUE_SCHEMA)
  list(GET arg_UNPARSED_ARGUMENTS 0 first)
  set(tables ${first}_catalogue)
  set(out "${CMAKE_CURRENT_BINARY_DIR}/${tables}")
  zqxml_add_catalogue_library(${tables} OBJECT OUT "${out}" SCHEMA "${schema}" ${arg_SCHEMA})
  foreach(target IN LISTS arg_UNPARSED_ARGUMENTS)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${tables}>)
    target_include_directories(${target} BEFORE PRIVATE "${out}")
    add_dependencies(${target} ${tables})
  endforeach()
endfunction()

function(zqxml_add_zqmsg name)
  set(main "${CMAKE_CURRENT_BINARY_DIR}/${name}_main.cc")
  file(CONFIGURE OUTPUT "${main}" CONTENT "namespace zqxml::tool {
int runProgram(int argc, const char* const* argv);
}
int main(int argc, char** argv) {
  return zqxml::tool::runProgram(argc, argv);
}
")
  add_executable(${name} "${main}")
  if(TARGET zqmsg_commands)
    target_link_libraries(${name} PRIVATE zqmsg_commands ZqXMLMsgsBase)
  else()
    get_property(libraries GLOBAL PROPERTY ZQXML_ZQMSG_LIBRARIES)
    target_link_libraries(${name} PRIVATE ${libraries} ZqXMLMsgsBase::ZqXMLMsgsBase)
  endif()
endfunction()
