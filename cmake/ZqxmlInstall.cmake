# What `cmake --install` puts where: library, headers, CMake package, pkg-config file, schema, tools.

include(CMakePackageConfigHelpers)

set(zqxml_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ZqXMLMsgsBase")
set(zqxml_data_dir "${CMAKE_INSTALL_DATADIR}/zqxml")

install(TARGETS ZqXMLMsgsBase EXPORT ZqXMLMsgsBaseTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
foreach(tool zqcatc zqmsg)
  if(TARGET ${tool})
    install(TARGETS ${tool} EXPORT ZqXMLMsgsBaseTargets RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
  endif()
endforeach()
install(EXPORT ZqXMLMsgsBaseTargets NAMESPACE ZqXMLMsgsBase:: DESTINATION "${zqxml_package_dir}")

# Headers in internal/ are the library's own. Generated headers stand in the build tree under the same folders.
foreach(root "${PROJECT_SOURCE_DIR}" "${PROJECT_BINARY_DIR}")
  install(DIRECTORY "${root}/zqxml" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
          FILES_MATCHING PATTERN "*.h" PATTERN "*.def" PATTERN "internal" EXCLUDE
          PATTERN "CMakeFiles" EXCLUDE PATTERN "*.dir" EXCLUDE)
endforeach()
if(EXISTS "${PROJECT_SOURCE_DIR}/schema")
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/schema" DESTINATION "${zqxml_data_dir}"
          FILES_MATCHING PATTERN "*.xml" PATTERN "*.xsd")
endif()
# What the library's own catalogue was made of stays together: programs compile theirs on top of it.
if(ZQXML_EXTRA_SCHEMA)
  install(DIRECTORY "${ZQXML_EXTRA_SCHEMA}/" DESTINATION "${zqxml_data_dir}/schema" FILES_MATCHING PATTERN "*.xml")
endif()

configure_package_config_file(cmake/ZqXMLMsgsBaseConfig.cmake.in "${PROJECT_BINARY_DIR}/ZqXMLMsgsBaseConfig.cmake"
                              INSTALL_DESTINATION "${zqxml_package_dir}" PATH_VARS zqxml_data_dir)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/ZqXMLMsgsBaseConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
file(RELATIVE_PATH zqxml_pc_to_prefix "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/zqxmlmsgsbase.pc.in "${PROJECT_BINARY_DIR}/zqxmlmsgsbase.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/ZqXMLMsgsBaseConfig.cmake" "${PROJECT_BINARY_DIR}/ZqXMLMsgsBaseConfigVersion.cmake"
        DESTINATION "${zqxml_package_dir}")
install(FILES "${PROJECT_BINARY_DIR}/zqxmlmsgsbase.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
if(EXISTS "${PROJECT_SOURCE_DIR}/cmake/ZqxmlCatalogue.cmake")
  install(FILES cmake/ZqxmlCatalogue.cmake DESTINATION "${zqxml_package_dir}")
endif()
