# Fails unless LIBRARY shows the names EXPECTED and nothing else, under its lasting name, and can be
# unloaded: a symbol that is unique in the process would keep it there for good. With NODE, all names
# have that version.
# Takes LIBRARY, SONAME, EXPECTED (sorted, with commas between), NODE, NM and READELF.
string(REPLACE "," ";" expected "${EXPECTED}")

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
  OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${listing}")
set(exported)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "[ @].*" "" name "${line}")
  if(name STREQUAL "${NODE}")
    continue() # the version itself
  endif()
  if(NODE AND NOT line MATCHES "@@${NODE} ")
    message(FATAL_ERROR "not of version ${NODE}: ${line}")
  endif()
  list(APPEND exported ${name})
endforeach()
list(SORT exported)
if(NOT exported STREQUAL expected)
  message(FATAL_ERROR "exported: ${exported}\nexpected: ${expected}")
endif()

execute_process(COMMAND ${READELF} -d ${LIBRARY}
  OUTPUT_VARIABLE dynamic COMMAND_ERROR_IS_FATAL ANY)
string(FIND "${dynamic}" "soname: [${SONAME}]" found)
if(found EQUAL -1)
  message(FATAL_ERROR "${SONAME} is not the library's name:\n${dynamic}")
endif()

execute_process(COMMAND ${READELF} --wide --symbols ${LIBRARY}
  OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]* UNIQUE [^\n]*" unique "${symbols}")
if(unique)
  message(FATAL_ERROR "unique symbols:\n${unique}")
endif()
