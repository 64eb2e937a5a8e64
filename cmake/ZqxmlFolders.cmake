# zqxml_add_folders(<folder or glob>... [EXCEPT <folder>...]): adds each folder that has a CMakeLists.txt and was not
# added before.
#
# A glob takes its folders in alphabetical order. Parts of the tree can thus come and go one by one without a
# list of them here.
function(zqxml_add_folders)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "EXCEPT")
  foreach(pattern IN LISTS arg_UNPARSED_ARGUMENTS)
    file(GLOB lists CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${pattern}/CMakeLists.txt")
    foreach(list IN LISTS lists)
      cmake_path(GET list PARENT_PATH folder)
      cmake_path(GET folder FILENAME name)
      get_property(added GLOBAL PROPERTY ZQXML_ADDED_FOLDERS)
      if(folder IN_LIST added OR name IN_LIST arg_EXCEPT)
        continue()
      endif()
      set_property(GLOBAL APPEND PROPERTY ZQXML_ADDED_FOLDERS "${folder}")
      cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE binary)
      add_subdirectory("${folder}" "${PROJECT_BINARY_DIR}/${binary}")
    endforeach()
  endforeach()
endfunction()
