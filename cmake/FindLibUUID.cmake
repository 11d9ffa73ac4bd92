# Finds the libuuid of util-linux as LibUUID::LibUUID. libuuid has no CMake package.
find_path(LibUUID_INCLUDE_DIR uuid/uuid.h)
find_library(LibUUID_LIBRARY uuid)
mark_as_advanced(LibUUID_INCLUDE_DIR LibUUID_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibUUID REQUIRED_VARS LibUUID_LIBRARY LibUUID_INCLUDE_DIR)
if(LibUUID_FOUND AND NOT TARGET LibUUID::LibUUID)
  add_library(LibUUID::LibUUID UNKNOWN IMPORTED)
  set_target_properties(LibUUID::LibUUID PROPERTIES
    IMPORTED_LOCATION ${LibUUID_LIBRARY}
    INTERFACE_INCLUDE_DIRECTORIES ${LibUUID_INCLUDE_DIR})
endif()
