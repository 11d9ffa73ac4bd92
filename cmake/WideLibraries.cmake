# Builds the libraries once more for each level of KESTRIX_WIDE, from the same sources. They lie below this
# build folder, and later below the prefix, where the loader looks for them.
include(ExternalProject)

set(levels ${KESTRIX_WIDE})
list(TRANSFORM levels REPLACE "^(ON|TRUE|1|YES|on|true|yes)$" v3)
list(REMOVE_DUPLICATES levels)
foreach(level IN LISTS levels)
  if(NOT level MATCHES "^v[34]$")
    message(FATAL_ERROR "KESTRIX_WIDE is OFF, ON or a list of v3 and v4, not \"${KESTRIX_WIDE}\"")
  endif()
  set(same)
  foreach(variable IN ITEMS CMAKE_BUILD_TYPE CMAKE_CXX_COMPILER CMAKE_CXX_COMPILER_LAUNCHER CMAKE_CXX_FLAGS
      CMAKE_INSTALL_PREFIX CMAKE_INSTALL_LIBDIR CMAKE_PREFIX_PATH CMAKE_TOOLCHAIN_FILE
      KESTRIX_BUILD_PREVIEW KESTRIX_BUILD_CONVERSION KESTRIX_WERROR)
    if(DEFINED ${variable})
      string(REPLACE ";" "|" value "${${variable}}")
      list(APPEND same "-D${variable}:STRING=${value}")
    endif()
  endforeach()
  set(folder ${PROJECT_BINARY_DIR}/wide/${level})
  ExternalProject_Add(kestrix_${level}
    SOURCE_DIR ${PROJECT_SOURCE_DIR}
    BINARY_DIR ${folder}
    PREFIX ${folder}
    LIST_SEPARATOR |
    CMAKE_ARGS ${same} -DKESTRIX_LEVEL=${level} -DKESTRIX_INSTALL=ON
      -DCMAKE_LIBRARY_OUTPUT_DIRECTORY=${PROJECT_BINARY_DIR}/glibc-hwcaps/x86-64-${level}
      -DKESTRIX_BUILD_HOST=OFF -DKESTRIX_BUILD_TOOLS=OFF -DKESTRIX_BUILD_EXAMPLES=OFF
      -DKESTRIX_BUILD_TESTS=OFF -DKESTRIX_BUILD_BENCHMARKS=OFF
    BUILD_ALWAYS ON
    USES_TERMINAL_BUILD ON
    INSTALL_COMMAND "")
  if(KESTRIX_INSTALL)
    install(SCRIPT ${folder}/cmake_install.cmake ALL_COMPONENTS)
  endif()
endforeach()
