# Fails when an object file among OBJECTS has code that runs at start-up.
if(NOT OBJECTS)
  message(FATAL_ERROR "no objects given")
endif()
foreach(object IN LISTS OBJECTS)
  execute_process(COMMAND readelf --section-headers --wide "${object}"
                  OUTPUT_VARIABLE sections COMMAND_ERROR_IS_FATAL ANY)
  if(NOT sections MATCHES "\\.rodata|\\.data\\.rel\\.ro")
    message(FATAL_ERROR "${object} has no constant data; is it a table?")
  endif()
  if(sections MATCHES "\\.init_array|\\.ctors")
    message(FATAL_ERROR "${object} has initialisers that run at start-up")
  endif()
endforeach()
