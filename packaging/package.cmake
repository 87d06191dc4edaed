# What is installed beside the programs, in three parts: `agent`, `reader` and `replay`; and what cpack makes of them: a
# Debian package of the reader with the replay tools, and an archive of the sources.
set(share ${CMAKE_INSTALL_DATADIR}/quillinv)
install(TARGETS quillagent RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT agent)
configure_file(man/quillagent.1 man/quillagent.1 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/man/quillagent.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT agent)

# Where each shell looks for what it completes command lines with, and how it wants the file named.
set(bash_place ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
set(zsh_place ${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
set(fish_place ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
function(install_completions program folder component)
  install(FILES ${folder}/${program}.bash DESTINATION ${bash_place} RENAME ${program} COMPONENT ${component})
  install(FILES ${folder}/${program}.zsh DESTINATION ${zsh_place} RENAME _${program} COMPONENT ${component})
  install(FILES ${folder}/${program}.fish DESTINATION ${fish_place} COMPONENT ${component})
endfunction()
install_completions(quillagent ${PROJECT_SOURCE_DIR}/packaging/completions agent)

if(TARGET quillinv)
  install(TARGETS quillinv RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT reader)
  configure_file(man/quillinv.1 man/quillinv.1 @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/man/quillinv.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT reader)
  set(completions ${PROJECT_BINARY_DIR}/completions)
  file(MAKE_DIRECTORY ${completions})
  foreach(shell bash zsh fish)
    add_custom_command(OUTPUT ${completions}/quillinv.${shell} DEPENDS quillinv
                       COMMAND quillinv completion ${shell} > ${completions}/quillinv.${shell} VERBATIM)
    list(APPEND completion_files ${completions}/quillinv.${shell})
  endforeach()
  add_custom_target(completions ALL DEPENDS ${completion_files})
  install_completions(quillinv ${completions} reader)
  install(DIRECTORY schema DESTINATION ${share} COMPONENT reader)
  install(FILES docs/faults.md docs/fleet.md docs/inv-format.md docs/json.md docs/recording-format.md docs/records.md
          docs/support.md docs/vocabulary.md
          DESTINATION ${share}/docs COMPONENT reader)
endif()

# Away from PATH: only the replay tools start this agent, which plays recorded Macs where there is no Mac.
set(tools ${CMAKE_INSTALL_LIBEXECDIR}/quillagent)
install(DIRECTORY replay DESTINATION ${tools} USE_SOURCE_PERMISSIONS COMPONENT replay)
if(NOT APPLE)
  install(TARGETS quillagent RUNTIME DESTINATION ${tools} COMPONENT replay)
endif()

set(CPACK_PACKAGE_VENDOR Quillon)
set(CPACK_PACKAGE_CONTACT "Quillon support <support@quillon.example>")
set(CPACK_PACKAGE_HOMEPAGE_URL https://www.quillon.example)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "reader of INV files, the inventories of Macs")
set(CPACK_PACKAGE_DESCRIPTION "quillinv shows, exports, compares and checks INV files, the scan
results of quillagent, and draws pages about one Mac or a fleet. With it
come the tools that play a recorded Mac, in /usr/libexec/quillagent, and
the agent that they play it to.")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
    WORLD_EXECUTE)

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL reader replay)
set(CPACK_COMPONENTS_GROUPING ALL_COMPONENTS_IN_ONE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_PACKAGE_NAME quillinv)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS tzdata)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/packaging/debian/complete.cmake)

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME ${PROJECT_NAME}-${PROJECT_VERSION})
set(CPACK_SOURCE_IGNORE_FILES "/build/" "/\\.git$" "/\\.git/" "\\.inv$" "/panic\\.log$" "/__pycache__/")
include(CPack)
