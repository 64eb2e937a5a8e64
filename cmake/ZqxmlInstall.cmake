# What `cmake --install` puts where. Each component is a package of ZqxmlPackages.cmake:
#
#   runtime        the shared library
#   texts          the texts of labels, by language
#   development    headers, CMake package, pkg-config file, schema
#   tools          zqcatc and zqmsg, and all that belongs to them
#   documentation  what is read

#
# zqxml_shipped builds what is installed and nothing else.

include(CMakePackageConfigHelpers)

add_custom_target(zqxml_shipped DEPENDS ZqXMLMsgsBase zqxml_texts)

set(zqxml_package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/ZqXMLMsgsBase")
set(zqxml_data_dir "${CMAKE_INSTALL_DATADIR}/zqxml")

install(TARGETS ZqXMLMsgsBase EXPORT ZqXMLMsgsBaseTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT development)
install(EXPORT ZqXMLMsgsBaseTargets NAMESPACE ZqXMLMsgsBase:: DESTINATION "${zqxml_package_dir}" COMPONENT development)
foreach(tool zqcatc zqmsg)
  if(TARGET ${tool})
    add_dependencies(zqxml_shipped ${tool})
    if(TARGET ${tool}_pages)
      add_dependencies(zqxml_shipped ${tool}_pages)
    endif()
    install(TARGETS ${tool} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  endif()
endforeach()
# What zqmsg is made of: zqxml_add_zqmsg links it with a catalogue. It asks for OpenSSL by the name of what is loaded, so that
# its development files are not needed.
if(TARGET zqmsg_commands)
  add_dependencies(zqxml_shipped zqmsg_commands)
  install(FILES "$<TARGET_FILE:zqmsg_commands>" DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT development)
endif()
file(REAL_PATH "${OPENSSL_CRYPTO_LIBRARY}" zqxml_crypto)
cmake_path(GET zqxml_crypto FILENAME zqxml_crypto)

# Headers in internal/ are the library's own. Generated headers stand in the build tree under the same folders.
install(DIRECTORY zqxml DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
        FILES_MATCHING PATTERN "*.h" PATTERN "*.def" PATTERN "internal" EXCLUDE)
install(DIRECTORY "${PROJECT_BINARY_DIR}/zqxml/catalogue/generated"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/zqxml/catalogue" COMPONENT development FILES_MATCHING PATTERN "*.h")

# What the library's own catalogue was made of stays together: programs compile theirs on top of it.
set(zqxml_schema_folders schema/)
if(ZQXML_EXTRA_SCHEMA)
  list(APPEND zqxml_schema_folders "${ZQXML_EXTRA_SCHEMA}/")
endif()
install(DIRECTORY ${zqxml_schema_folders} DESTINATION "${zqxml_data_dir}/schema" COMPONENT development
        FILES_MATCHING PATTERN "*.xml" PATTERN "*.xsd" PATTERN "locale" EXCLUDE)

# All paths in what users' builds read are told from the place of the file, so that the tree may be moved.
file(RELATIVE_PATH zqxml_package_to_prefix "${CMAKE_INSTALL_PREFIX}/${zqxml_package_dir}" "${CMAKE_INSTALL_PREFIX}")
# They are made in a folder where find_package does not look: with the build's bin/ on the PATH it looks in the build.
set(zqxml_config_dir "${PROJECT_BINARY_DIR}/package")
configure_package_config_file(cmake/ZqXMLMsgsBaseConfig.cmake.in "${zqxml_config_dir}/ZqXMLMsgsBaseConfig.cmake"
                              INSTALL_DESTINATION "${zqxml_package_dir}")
write_basic_package_version_file("${zqxml_config_dir}/ZqXMLMsgsBaseConfigVersion.cmake"
                                 COMPATIBILITY SameMajorVersion)
install(FILES "${zqxml_config_dir}/ZqXMLMsgsBaseConfig.cmake" "${zqxml_config_dir}/ZqXMLMsgsBaseConfigVersion.cmake"
              cmake/ZqxmlCatalogue.cmake
        DESTINATION "${zqxml_package_dir}" COMPONENT development)
file(RELATIVE_PATH zqxml_pc_to_prefix "${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig" "${CMAKE_INSTALL_PREFIX}")
configure_file(cmake/zqxmlmsgsbase.pc.in "${PROJECT_BINARY_DIR}/zqxmlmsgsbase.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/zqxmlmsgsbase.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
        COMPONENT development)

# The guide, with links that lead from one page to the other, and the programs to start from.
install(FILES README.md SECURITY.md DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation)
install(DIRECTORY docs DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation
        FILES_MATCHING PATTERN "*.md" PATTERN "*.png" PATTERN "*.svg" PATTERN "site" EXCLUDE)
if(ZQXML_DOXYGEN)
  add_dependencies(zqxml_shipped docs)
endif()
install(DIRECTORY "${PROJECT_BINARY_DIR}/site/html" DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation OPTIONAL)
install(DIRECTORY examples DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT documentation
        PATTERN "CMakeLists.txt" EXCLUDE)
