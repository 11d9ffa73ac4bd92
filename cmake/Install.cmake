# Installs the library. The component `runtime` contains the shared object. The component `dev` contains what
# a host needs at build time: headers, the link to the library, the CMake package and the pkg-config file.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

install(TARGETS KestrixPreviewAPI EXPORT KestrixPreviewAPI
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES
  ${PROJECT_SOURCE_DIR}/api/KestrixPreviewAPI.h
  ${PROJECT_SOURCE_DIR}/api/KestrixPreviewAPI_v14_2_1.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT dev)

# find_package(KestrixPreviewAPI) defines Kestrix::PreviewAPI. A major version is one ABI.
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/KestrixPreviewAPI)
set_target_properties(KestrixPreviewAPI PROPERTIES EXPORT_NAME PreviewAPI)
install(EXPORT KestrixPreviewAPI NAMESPACE Kestrix:: FILE KestrixPreviewAPIConfig.cmake
  DESTINATION ${package_dir} COMPONENT dev)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KestrixPreviewAPIConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/KestrixPreviewAPIConfigVersion.cmake
  DESTINATION ${package_dir} COMPONENT dev)

# Folders below the prefix are relative to the pkg-config file, so an installed tree can be moved. Folders
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
configure_file(${CMAKE_CURRENT_LIST_DIR}/KestrixPreviewAPI.pc.in
  ${PROJECT_BINARY_DIR}/KestrixPreviewAPI.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/KestrixPreviewAPI.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)

if(PROJECT_IS_TOP_LEVEL)
  include(${CMAKE_CURRENT_LIST_DIR}/Package.cmake)
endif()
