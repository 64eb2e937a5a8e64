# What cpack calls once the components are staged (see ZqxmlPackages.cmake).

# zqmsg finds its library from where it stands in a tree of any prefix. A package's library stands where the loader looks.
file(GLOB programs "${CPACK_TEMPORARY_DIRECTORY}/tools/usr/bin/*")
foreach(program IN LISTS programs)
  file(RPATH_REMOVE FILE "${program}")
endforeach()

execute_process(
  COMMAND "${CPACK_ZQXML_SOURCE}/cmake/packages/package"
          "${CPACK_TEMPORARY_DIRECTORY}" "${CPACK_PACKAGE_VERSION}" "${CPACK_ZQXML_LIBDIR}"
  COMMAND_ERROR_IS_FATAL ANY)
file(GLOB CPACK_EXTERNAL_BUILT_PACKAGES "${CPACK_TEMPORARY_DIRECTORY}/*.deb")
