# zqxml_add_full_size_schema(<name> [PART <n>])
#   Schema files of a catalogue as large as that of a whole product, or of an Nth of what the library's own schema lacks of it:
#   cmake/full_size writes them. The variable <name> gets the paths of all files, the library's first; the target <name> makes
#   them.
#
# zqxml_add_full_size_catalogue(<name> [PART <n>])
#   The same, compiled: an object library <name> of tables. <name>_schema are the variable and the target of its files.

function(zqxml_add_full_size_schema name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "PART" "")
  if(NOT arg_PART)
    set(arg_PART 1)
  endif()
  set(scripts "${PROJECT_SOURCE_DIR}/cmake/full_size")
  set(folder "${CMAKE_CURRENT_BINARY_DIR}/${name}")
  file(GLOB modules CONFIGURE_DEPENDS "${scripts}/*.py")
  file(GLOB given CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/schema/*.xml")
  set(made "")
  foreach(file IN LISTS given)
    cmake_path(GET file STEM subsystem)
    list(APPEND made "${folder}/${subsystem}.extension.xml")
  endforeach()
  add_custom_command(OUTPUT ${made}
    COMMAND "${scripts}/fill_schema.py" "${PROJECT_SOURCE_DIR}/schema" "${folder}" --part ${arg_PART}
    DEPENDS ${modules} ${given} COMMENT "Writing the schema of ${name}" VERBATIM)
  add_custom_target(${name} DEPENDS ${made})
  set(${name} ${given} ${made} PARENT_SCOPE)
endfunction()

function(zqxml_add_full_size_catalogue name)
  zqxml_add_full_size_schema(${name}_schema ${ARGN})
  zqxml_add_catalogue_library(${name} OBJECT OUT "${CMAKE_CURRENT_BINARY_DIR}/${name}" SCHEMA ${${name}_schema})
  target_link_libraries(${name} PRIVATE zqxml_options)
  add_dependencies(${name} ${name}_schema)
  set(${name}_schema ${${name}_schema} PARENT_SCOPE)
endfunction()
