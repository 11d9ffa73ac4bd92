# Fails unless LIBRARY shows the factories and nothing else, under its lasting name, and can be
# unloaded: a symbol that is unique in the process would keep it there for good.
# Takes LIBRARY, SONAME, NM and READELF.
set(expected
  CreateOpenGL3ScreenPreviewHelper_0001
  CreateOpenGL3ScreenPreviewHelper_0002
  CreateOpenGLScreenPreviewHelper_0001
  CreateOpenGLScreenPreviewHelper_0002)

execute_process(COMMAND ${NM} -D --defined-only --format=posix ${LIBRARY}
  OUTPUT_VARIABLE listing COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" lines "${listing}")
set(exported)
foreach(line IN LISTS lines)
  string(REGEX REPLACE "[ @].*" "" name "${line}")
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
