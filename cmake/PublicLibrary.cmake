# kestrix_make_public(TARGET NAME): makes a shared library one that other projects use, as Kestrix::NAME. It
# exports what cmake/TARGET.map lists, and tells its version in a note: readelf --notes.
function(kestrix_make_public target name)
  configure_file(${PROJECT_SOURCE_DIR}/cmake/VersionNote.cpp.in ${target}Note.cpp @ONLY)
  target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}Note.cpp)
  set(version_script ${PROJECT_SOURCE_DIR}/cmake/${target}.map)
  add_library(Kestrix::${name} ALIAS ${target})
  target_link_options(${target} PRIVATE
    LINKER:--version-script=${version_script} LINKER:--gc-sections)
  target_link_libraries(${target} PRIVATE kestrix_hardening)
  if(NOT KESTRIX_SANITIZE)
    target_link_options(${target} PRIVATE LINKER:-z,defs)
  endif()
  set_target_properties(${target} PROPERTIES
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    EXPORT_NAME ${name}
    # These hold whatever a parent project or a user sets for other programs.
    BUILD_WITH_INSTALL_RPATH ON
    INSTALL_RPATH ""
    INSTALL_RPATH_USE_LINK_PATH OFF
    LINK_DEPENDS ${version_script})
endfunction()
