# CPack adds scripts that call ldconfig to each package with a shared library. Debian has triggers for that,
# which the packages contain. CPack runs this for the packages that it has made.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(package MATCHES "[.]deb$")
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${package}.d COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${package}.d/DEBIAN/postinst ${package}.d/DEBIAN/postrm)
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${package}.d ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${package}.d)
  endif()
endforeach()
