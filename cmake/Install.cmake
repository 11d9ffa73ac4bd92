# Installs the libraries. Each has a component for programs to run, with the shared object, and one for
# programs to be built: headers, the link to the library, the CMake package and the pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Folders below the prefix are relative to a pkg-config file, so an installed tree can be moved. Folders
# given as absolute paths stay absolute.
if(IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR})
  set(pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
  file(RELATIVE_PATH up /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
  string(REGEX REPLACE "/$" "" up ${up})
  set(pc_prefix "\${pcfiledir}/${up}")
endif()
foreach(folder LIBDIR INCLUDEDIR)
  set(pc_${folder} "\${prefix}")
  cmake_path(APPEND pc_${folder} ${CMAKE_INSTALL_${folder}})
endforeach()

# kestrix_install(TARGET DESCRIPTION TEXT RUNTIME COMPONENT DEV COMPONENT HEADERS FILE... [REQUIRES MODULE...]):
# find_package(TARGET) then gives Kestrix::NAME, as kestrix_make_public does. A major version is one ABI.
# REQUIRES lists what pkg-config calls the libraries that the library needs.
function(kestrix_install target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "DESCRIPTION;RUNTIME;DEV" "HEADERS;REQUIRES")
  if(KESTRIX_LEVEL)
    # Programs are built with the library for any processor.
    install(TARGETS ${target} LIBRARY COMPONENT ${arg_RUNTIME} NAMELINK_SKIP
      DESTINATION ${CMAKE_INSTALL_LIBDIR}/glibc-hwcaps/x86-64-${KESTRIX_LEVEL})
    return()
  endif()
  set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/${target})
  install(TARGETS ${target} EXPORT ${target}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT ${arg_RUNTIME} NAMELINK_COMPONENT ${arg_DEV}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
  install(FILES ${arg_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT ${arg_DEV})
  install(EXPORT ${target} NAMESPACE Kestrix:: FILE ${target}Config.cmake
    DESTINATION ${package_dir} COMPONENT ${arg_DEV})
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/${target}ConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/${target}ConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT ${arg_DEV})
  set(pc_requires)
  if(arg_REQUIRES)
    list(JOIN arg_REQUIRES " " pc_requires)
    set(pc_requires "Requires.private: ${pc_requires}\n")
  endif()
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Library.pc.in ${PROJECT_BINARY_DIR}/${target}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${target}.pc
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT ${arg_DEV})
endfunction()

if(KESTRIX_BUILD_PREVIEW)
  kestrix_install(KestrixPreviewAPI RUNTIME runtime DEV dev
    DESCRIPTION "${PROJECT_DESCRIPTION}" REQUIRES gl uuid
    HEADERS ${PROJECT_SOURCE_DIR}/api/KestrixPreviewAPI.h
      ${PROJECT_SOURCE_DIR}/api/KestrixPreviewAPI_v14_2_1.h
      ${PROJECT_SOURCE_DIR}/examples/common/KestrixCheckedHelper.h
      ${PROJECT_SOURCE_DIR}/examples/common/KestrixFrameCheck.h
      ${PROJECT_SOURCE_DIR}/examples/common/KestrixFrameFacts.h)
endif()
if(KESTRIX_BUILD_CONVERSION)
  kestrix_install(KestrixPixelConversion RUNTIME conversion-runtime DEV conversion-dev
    DESCRIPTION "Converts pictures between 30 packed pixel formats"
    HEADERS ${PROJECT_SOURCE_DIR}/convert/KestrixPixelConversion.h)
endif()

if(PROJECT_IS_TOP_LEVEL AND NOT KESTRIX_LEVEL)
  add_custom_target(uninstall COMMENT "Removing what was installed from this folder"
    COMMAND ${CMAKE_COMMAND} -D MANIFESTS=${PROJECT_BINARY_DIR}/install_manifest -P ${CMAKE_CURRENT_LIST_DIR}/Uninstall.cmake)
  include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)
endif()
