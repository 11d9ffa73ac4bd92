# Debian packages, one of each component: cpack -G DEB in a build folder that is configured with
# -DCMAKE_INSTALL_PREFIX=/usr, because Debian has other folders there. `cmake --workflow --preset package` does
# it all, with packages of debug symbols. cpack -G TGZ makes one archive of everything.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kestrix)
# Debian's tools ask for an address of mail, and the project has none.
set(CPACK_PACKAGE_CONTACT "The libKestrixPreviewAPI authors <>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
# Packages of debug symbols take the symbols out of the files.
if(NOT CPACK_DEBIAN_DEBUGINFO_PACKAGE)
  set(CPACK_STRIP_FILES ON)
endif()
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/CompressManPages.cmake)
set(CPACK_POST_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/FinishPackages.cmake)
set(CPACK_PROJECT_CONFIG_FILE ${PROJECT_SOURCE_DIR}/cmake/ArchivePackage.cmake)
set(CPACK_COMPONENTS_ALL)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")

# kestrix_package(COMPONENT NAME SECTION SECTION SUMMARY TEXT TEXT TEXT [DEPENDS PACKAGES]
# [MULTI_ARCH same|foreign] [ALL] [CONTROL FILE...]): the package of a component. TEXT is its description, in
# lines of at most 79 characters. ALL is for a package that is the same for every processor.
macro(kestrix_package component name)
  cmake_parse_arguments(arg "ALL" "SECTION;SUMMARY;TEXT;DEPENDS;MULTI_ARCH" "CONTROL" ${ARGN})
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${name})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION ${arg_SECTION})
  if(arg_MULTI_ARCH)
    # CPack has no variable for this field before CMake 3.31, so it is one more line of the field before.
    string(APPEND CPACK_DEBIAN_${upper}_PACKAGE_SECTION "\nMulti-Arch: ${arg_MULTI_ARCH}")
  endif()
  if(arg_ALL)
    set(CPACK_DEBIAN_${upper}_PACKAGE_ARCHITECTURE all)
  else()
    set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS ON)
  endif()
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${arg_DEPENDS}")
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA "${arg_CONTROL}")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${arg_SUMMARY}\n${arg_TEXT}")
  list(APPEND CPACK_COMPONENTS_ALL ${component})
endmacro()

# kestrix_library_packages(TARGET RUNTIME DEV SUMMARY TEXT TEXT TEXT [DEV_DEPENDS PACKAGES]): the packages of a
# library's two components.
macro(kestrix_library_packages target runtime dev)
  cmake_parse_arguments(library "" "SUMMARY;TEXT;DEV_DEPENDS" "" ${ARGN})
  string(TOLOWER lib${target} name)
  set(package ${name}${PROJECT_VERSION_MAJOR})
  file(WRITE ${PROJECT_BINARY_DIR}/debian/${target}/shlibs
    "lib${target} ${PROJECT_VERSION_MAJOR} ${package} (>= ${PROJECT_VERSION})\n")
  configure_file(${PROJECT_SOURCE_DIR}/cmake/debian/${package}.symbols
    ${PROJECT_BINARY_DIR}/debian/${target}/symbols COPYONLY)
  kestrix_package(${runtime} ${package} SECTION libs MULTI_ARCH same
    SUMMARY "${library_SUMMARY}" TEXT "${library_TEXT}"
    CONTROL ${PROJECT_BINARY_DIR}/debian/triggers ${PROJECT_BINARY_DIR}/debian/${target}/shlibs
      ${PROJECT_BINARY_DIR}/debian/${target}/symbols)
  kestrix_package(${dev} ${name}-dev SECTION libdevel MULTI_ARCH same
    DEPENDS "${package} (= ${PROJECT_VERSION})${library_DEV_DEPENDS}"
    SUMMARY "${library_SUMMARY} (development)"
    TEXT "${library_TEXT}\n.\nThis package has headers, CMake package and pkg-config file.")
endmacro()

if(KESTRIX_BUILD_PREVIEW)
  # The pkg-config file requires those of libGL and libuuid.
  kestrix_library_packages(KestrixPreviewAPI runtime dev
    SUMMARY "preview of professional video frames in OpenGL"
    TEXT "A shared library that paints 8-, 10- and 12-bit YUV and RGB frames, as capture
cards and files have them, into an OpenGL context owned by its host."
    DEV_DEPENDS ", libgl-dev, uuid-dev")
  install(FILES ${PROJECT_SOURCE_DIR}/docs/host-guide.md
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libkestrixpreviewapi-dev COMPONENT dev)
  install(FILES ${PROJECT_SOURCE_DIR}/examples/common/KestrixGLStateGuard.h
    ${PROJECT_SOURCE_DIR}/examples/common/FrameSlot.h
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/libkestrixpreviewapi-dev/examples COMPONENT dev)
endif()
if(KESTRIX_BUILD_CONVERSION)
  kestrix_library_packages(KestrixPixelConversion conversion-runtime conversion-dev
    SUMMARY "conversions between packed pixel formats of video"
    TEXT "A shared library that converts pictures between 30 packed 8-, 10-, 12- and
16-bit YUV and RGB formats, exact to the bit.")
endif()
if(KESTRIX_BUILD_CONVERSION AND (KESTRIX_PYTHON OR KESTRIX_PYTHON_DIR))
  kestrix_package(module python3-kestrix ALL SECTION python
    DEPENDS "python3 (>= 3.11), python3-numpy, libkestrixpixelconversion1 (>= ${PROJECT_VERSION})"
    SUMMARY "conversions between packed pixel formats for numpy arrays"
    TEXT "A Python module that converts frames of video between 30 packed 8-, 10-, 12-
and 16-bit YUV and RGB formats, in numpy arrays and other buffers.")
endif()
if(KESTRIX_BUILD_TOOLS)
  kestrix_package(tools kestrix-tools SECTION video MULTI_ARCH foreign
    SUMMARY "programs that show and convert raw frames of video"
    TEXT "The program preview_host shows raw video, a picture or a test pattern as the
library libKestrixPreviewAPI paints it, and says what the library decided.")
endif()

# Files that Debian requires in each package.
if(CMAKE_INSTALL_PREFIX STREQUAL "/usr")
  find_program(KESTRIX_GZIP gzip REQUIRED)
  set(changelog ${PROJECT_BINARY_DIR}/changelog)
  file(WRITE ${changelog}
"kestrix (${PROJECT_VERSION}) unstable; urgency=medium

  * See the project's CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  Tue, 24 Nov 2026 00:00:00 +0000
")
  execute_process(COMMAND ${KESTRIX_GZIP} --best --no-name --force --keep ${changelog}
    COMMAND_ERROR_IS_FATAL ANY)
  foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(excluded)
    if(component STREQUAL "tools")
      set(excluded EXCLUDE_FROM_ALL)
    endif()
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright ${changelog}.gz
      DESTINATION share/doc/${package} COMPONENT ${component} ${excluded})
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/lintian-overrides
      DESTINATION share/lintian/overrides RENAME ${package} COMPONENT ${component} ${excluded})
  endforeach()
endif()
include(CPack)
