# Debian packages, one for each component of ZqxmlInstall.cmake: `cpack` in a build folder, or script/package. What is told
# of them stands in packages/control; Debian's own tools make them of what CPack stages, since CPack's generator knows
# neither Multi-Arch nor triggers.

set(CPACK_GENERATOR External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT "${PROJECT_SOURCE_DIR}/cmake/packages/package.cmake")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime texts development tools documentation)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_ZQXML_SOURCE "${PROJECT_SOURCE_DIR}")
set(CPACK_ZQXML_LIBDIR "${CMAKE_INSTALL_LIBDIR}")
include(CPack)
