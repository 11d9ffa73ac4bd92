# Debian stores man pages compressed. CPack runs this for the files that it has installed for a package.
file(GLOB_RECURSE pages ${CPACK_TEMPORARY_DIRECTORY}/*.[1-9])
list(FILTER pages INCLUDE REGEX "/man/man[1-9]/")
foreach(page IN LISTS pages)
  execute_process(COMMAND gzip --best --no-name ${page} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
