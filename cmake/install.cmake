# What "cmake --install" puts where, under the prefix. The programs find the rest from their own place, by the way that
# ZG_DATAMAP names.
set(CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
    WORLD_READ WORLD_EXECUTE) # whatever the umask
set(data ${CMAKE_INSTALL_DATADIR}/zgbestel)
get_property(programs GLOBAL PROPERTY ZG_PROGRAMS)
install(TARGETS ${programs} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(name ${IXTOOLS}) # links to ixtool
  install(FILES ${CMAKE_BINARY_DIR}/${name} DESTINATION ${CMAKE_INSTALL_BINDIR})
endforeach()
install(DIRECTORY ${CMAKE_BINARY_DIR}/terminfo DESTINATION ${data})
install(DIRECTORY ${CMAKE_BINARY_DIR}/catalogues DESTINATION ${data} OPTIONAL
        REGEX "/catalogues/(ZEBCAT|DETAIL)$|[.]msg$" EXCLUDE) # the Dutch texts are in the programs
install(DIRECTORY data/demo DESTINATION ${data} PATTERN README EXCLUDE)
install(DIRECTORY ${CMAKE_BINARY_DIR}/completion/bash/ DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        OPTIONAL)
install(DIRECTORY ${CMAKE_BINARY_DIR}/completion/zsh/ DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions OPTIONAL)
file(GLOB pages docs/*.md)
list(FILTER pages EXCLUDE REGEX "(architecture|benchmark|decisions|mutations|walk)[.]md$") # those are for who has the sources
install(FILES ${pages} DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 FILES_MATCHING PATTERN *.1)
