# zqxml_large_paths: the tables of a catalogue with one subsystem, Large, of 25,000 paths, to test and measure look-ups in
# more than the library's own schema has. Large.xml is written here: a root with 100 objects of a class of 250 fields.

if(NOT TARGET zqxml_large_paths)
  set(large "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<subsystem name=\"Large\" slot=\"199\" records=\"2\">\n")
  string(APPEND large "  <class name=\"Root\" index=\"0\" paths=\"true\">\n")
  foreach(i RANGE 1 100)
    string(APPEND large "    <field name=\"section${i}\" type=\"object\" class=\"Section\"/>\n")
  endforeach()
  string(APPEND large "  </class>\n  <class name=\"Section\" index=\"1\">\n")
  foreach(i RANGE 1 200)
    string(APPEND large "    <field name=\"setting${i}OfTheSection\" type=\"int\"/>\n")
  endforeach()
  foreach(i RANGE 1 50)
    string(APPEND large "    <field name=\"names${i}OfTheSection\" type=\"list_string\"/>\n")
  endforeach()
  string(APPEND large "  </class>\n</subsystem>\n")
  file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/large_paths/Large.xml" CONTENT "${large}" @ONLY)
  zqxml_add_catalogue_library(zqxml_large_paths OBJECT
    OUT "${PROJECT_BINARY_DIR}/large_paths" SCHEMA "${PROJECT_BINARY_DIR}/large_paths/Large.xml")
  target_link_libraries(zqxml_large_paths PRIVATE zqxml_options)
endif()
