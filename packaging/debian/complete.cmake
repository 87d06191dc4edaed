# Adds to the staged files what Debian asks of every package, and packs manual pages and the list of changes as it wants
# them: with the best compression and without a time.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
  return()
endif()
set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/ALL_COMPONENTS_IN_ONE/usr)
set(documents ${usr}/share/doc/quillinv)
file(MAKE_DIRECTORY ${documents})
file(COPY ${CMAKE_CURRENT_LIST_DIR}/copyright DESTINATION ${documents})
configure_file(${CMAKE_CURRENT_LIST_DIR}/../../CHANGELOG.md ${documents}/changelog COPYONLY)
configure_file(${CMAKE_CURRENT_LIST_DIR}/changelog.in ${documents}/changelog.Debian @ONLY)
file(RENAME ${usr}/share/zsh/site-functions ${usr}/share/zsh/vendor-completions)  # Debian leaves the former to the owner
file(GLOB pages ${usr}/share/man/man1/*.1)
execute_process(COMMAND gzip -9 -n -f ${pages} ${documents}/changelog
  ${documents}/changelog.Debian COMMAND_ERROR_IS_FATAL ANY)
