# What a maker or a distribution installs. The shell is never in PATH: started as root, it restarts the machine.
include(GNUInstallDirs)

install(TARGETS esh DESTINATION ${CMAKE_INSTALL_LIBEXECDIR}/esh COMPONENT esh)
install(FILES docs/esh.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8 COMPONENT esh)
install(DIRECTORY image DESTINATION ${CMAKE_INSTALL_DATADIR}/esh USE_SOURCE_PERMISSIONS COMPONENT esh)
install(FILES docs/boot-image.md docs/command-card.md docs/making-packages.md docs/operator-guide.md docs/proof.md docs/security.md
        DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT esh)

if(ESH_MKPKG)
  install(TARGETS mkpkg DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT mkpkg)
  install(FILES docs/mkpkg.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT mkpkg)
  install(FILES docs/mkpkg-format.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5 COMPONENT mkpkg)
  install(FILES tools/mkpkg/completion/mkpkg DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT mkpkg)
  install(FILES docs/making-packages.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/mkpkg COMPONENT mkpkg)
endif()
