# Configures the tree once more in BUILD with ZQXML_EXTRA_SCHEMA and compiles the catalogue: the library's own
# tables and headers then hold the extra subsystem. SOURCE is the tree, SCHEMA the extra folder.
file(REMOVE_RECURSE "${BUILD}")
execute_process(
  COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}" -B "${BUILD}" -G Ninja "-DCMAKE_CXX_COMPILER=${COMPILER}"
    -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0
    -DZQXML_BUILD_TESTS=OFF -DZQXML_BUILD_TOOLS=OFF -DZQXML_BUILD_EXAMPLES=OFF "-DZQXML_EXTRA_SCHEMA=${SCHEMA}"
  OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND "${CMAKE_COMMAND}" --build "${BUILD}" --target zqxml_catalogue_tables
                OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
set(folder "${BUILD}/zqxml/catalogue/generated")
file(STRINGS "${folder}/subsystem_table.cc" rows REGEX "/\\* (199|20|1) \\*/ {\"(Own|Common|ZQGui)\"")
list(LENGTH rows count)
file(STRINGS "${folder}/Own.h" classes REGEX "^class Thing : public XNMessageBase {")
file(STRINGS "${folder}/Common.h" extension REGEX "^class OwnEvent : public XNMessageBase {")
if(NOT count EQUAL 3 OR NOT classes OR NOT extension)
  message(FATAL_ERROR "the extra schema is not in the catalogue: ${rows}; ${classes}; ${extension}")
endif()
file(REMOVE_RECURSE "${BUILD}")
