# Mends the packages that CPack has made, which runs this at the end.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
  if(NOT package MATCHES "/([^/_]+)_[^/]*[.]d?deb$")
    continue()
  endif()
  set(name ${CMAKE_MATCH_1})
  set(folder ${package}.d)
  execute_process(COMMAND dpkg-deb --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
  # They call ldconfig, for which the packages have triggers.
  file(REMOVE ${folder}/DEBIAN/postinst ${folder}/DEBIAN/postrm)
  if(name MATCHES "(.*)-dbgsym$")
    # CPack lists the files where they were, and leaves out the folder of documents.
    file(MAKE_DIRECTORY ${folder}/usr/share/doc)
    file(CREATE_LINK ${CMAKE_MATCH_1} ${folder}/usr/share/doc/${name} SYMBOLIC)
    file(GLOB_RECURSE files LIST_DIRECTORIES NO RELATIVE ${folder} ${folder}/usr/lib/*)
    execute_process(COMMAND md5sum ${files} WORKING_DIRECTORY ${folder}
      OUTPUT_FILE ${folder}/DEBIAN/md5sums COMMAND_ERROR_IS_FATAL ANY)
  endif()
  execute_process(COMMAND dpkg-deb --root-owner-group --build ${folder} ${package}
    OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  file(REMOVE_RECURSE ${folder})
endforeach()
