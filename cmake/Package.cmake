# Debian packages of the two components: cpack -G DEB in a build folder. Configure with
# -DCMAKE_INSTALL_PREFIX=/usr for the folders that Debian has for each architecture.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libkestrixpreviewapi)
set(CPACK_PACKAGE_CONTACT "The libKestrixPreviewAPI authors <maintainers@kestrix-preview.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/debian/CompressManPages.cmake)
set(CPACK_COMPONENTS_ALL runtime dev)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME libkestrixpreviewapi1)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
file(WRITE ${PROJECT_BINARY_DIR}/debian/shlibs
  "libKestrixPreviewAPI ${PROJECT_VERSION_MAJOR} libkestrixpreviewapi1 (>= ${PROJECT_VERSION})\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA
  ${PROJECT_BINARY_DIR}/debian/triggers ${PROJECT_BINARY_DIR}/debian/shlibs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "preview of professional video frames in OpenGL
A shared library that paints 8-, 10- and 12-bit YUV and RGB frames, as they
come from capture cards and files, into an OpenGL context owned by its host.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libkestrixpreviewapi-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS
  "libkestrixpreviewapi1 (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_DEV_DESCRIPTION "preview of professional video frames in OpenGL (development)
Headers, CMake package and pkg-config file for hosts of the library that
paints 8-, 10- and 12-bit YUV and RGB frames into an OpenGL context.")

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
foreach(component runtime dev)
  string(TOUPPER ${component} upper)
  set(documents ${CMAKE_INSTALL_DATAROOTDIR}/doc/${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  install(FILES ${PROJECT_SOURCE_DIR}/cmake/debian/copyright
    DESTINATION ${documents} COMPONENT ${component})
  install(FILES ${changelog} DESTINATION ${documents} COMPONENT ${component} OPTIONAL)
endforeach()
include(CPack)
