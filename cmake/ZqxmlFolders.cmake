# zqxml_add_folders(<folder or glob>...): adds each folder that has a CMakeLists.txt and was not added before.
#
# A glob takes its folders in alphabetical order. Parts of the tree can thus come and go one by one without a
# list of them here.
function(zqxml_add_folders)
  get_property(added GLOBAL PROPERTY ZQXML_ADDED_FOLDERS)
  foreach(pattern IN LISTS ARGN)
    file(GLOB lists CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/${pattern}/CMakeLists.txt")
    foreach(list IN LISTS lists)
      cmake_path(GET list PARENT_PATH folder)
      if(folder IN_LIST added)
        continue()
      endif()
      list(APPEND added "${folder}")
      set_property(GLOBAL PROPERTY ZQXML_ADDED_FOLDERS "${added}")
      cmake_path(RELATIVE_PATH folder BASE_DIRECTORY "${PROJECT_SOURCE_DIR}" OUTPUT_VARIABLE binary)
      add_subdirectory("${folder}" "${PROJECT_BINARY_DIR}/${binary}")
      get_property(added GLOBAL PROPERTY ZQXML_ADDED_FOLDERS)
    endforeach()
  endforeach()
endfunction()
