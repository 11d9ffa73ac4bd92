# Debian packages, one of each component: cpack -G DEB in a build folder. Configure with
# -DCMAKE_INSTALL_PREFIX=/usr for the folders that Debian keeps for each architecture.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libkestrixpreviewapi)
set(CPACK_PACKAGE_CONTACT "The libKestrixPreviewAPI authors <maintainers@kestrix-preview.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/CompressManPages.cmake)
set(CPACK_COMPONENTS_ALL)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")

# kestrix_package(TARGET RUNTIME DEV SUMMARY TEXT): the packages of a library's two components. TEXT is
# their description, in lines of at most 79 characters.
macro(kestrix_package target runtime dev summary text)
  string(TOLOWER lib${target} library)
  set(package ${library}${PROJECT_VERSION_MAJOR})
  string(TOUPPER ${runtime} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${package})
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION libs)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SHLIBDEPS ON)
  file(WRITE ${PROJECT_BINARY_DIR}/debian/${target}/shlibs
    "lib${target} ${PROJECT_VERSION_MAJOR} ${package} (>= ${PROJECT_VERSION})\n")
  set(CPACK_DEBIAN_${upper}_PACKAGE_CONTROL_EXTRA
    ${PROJECT_BINARY_DIR}/debian/triggers ${PROJECT_BINARY_DIR}/debian/${target}/shlibs)
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary}\n${text}")

  string(TOUPPER ${dev} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${library}-dev)
  set(CPACK_DEBIAN_${upper}_PACKAGE_SECTION libdevel)
  set(CPACK_DEBIAN_${upper}_PACKAGE_DEPENDS "${package} (= ${PROJECT_VERSION})")
  set(CPACK_DEBIAN_${upper}_DESCRIPTION "${summary} (development)
Headers, CMake package and pkg-config file.
.
${text}")
  list(APPEND CPACK_COMPONENTS_ALL ${runtime} ${dev})
endmacro()

if(KESTRIX_BUILD_PREVIEW)
  kestrix_package(KestrixPreviewAPI runtime dev
    "preview of professional video frames in OpenGL"
    "A shared library that paints 8-, 10- and 12-bit YUV and RGB frames, as capture
cards and files have them, into an OpenGL context owned by its host.")
endif()
if(KESTRIX_BUILD_CONVERSION)
  kestrix_package(KestrixPixelConversion conversion-runtime conversion-dev
    "conversions between packed pixel formats of video"
    "A shared library that converts pictures between 30 packed 8-, 10-, 12- and
16-bit YUV and RGB formats, exact to the bit.")
endif()

# Files that Debian requires in each package.
find_program(KESTRIX_GZIP gzip)
if(KESTRIX_GZIP)
  set(changelog ${PROJECT_BINARY_DIR}/changelog.gz)
  file(WRITE ${PROJECT_BINARY_DIR}/changelog
"libkestrixpreviewapi (${PROJECT_VERSION}) unstable; urgency=medium

  * See the project's CHANGELOG.md.

 -- ${CPACK_PACKAGE_CONTACT}  Sun, 01 Nov 2026 00:00:00 +0000
")
  execute_process(COMMAND ${KESTRIX_GZIP} --best --no-name --stdout ${PROJECT_BINARY_DIR}/changelog
    OUTPUT_FILE ${changelog} COMMAND_ERROR_IS_FATAL ANY)
endif()
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} upper)
  set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright
    DESTINATION ${documents} COMPONENT ${component})
  install(FILES ${changelog} DESTINATION ${documents} COMPONENT ${component} OPTIONAL)
endforeach()
include(CPack)
