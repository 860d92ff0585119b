# What is installed, and where; the starter packs are in Resources/CMakeLists.txt.

set(resources ${PROJECT_SOURCE_DIR}/Resources)
set(made ${PROJECT_BINARY_DIR}/Resources)
set(share ${CMAKE_INSTALL_DATADIR})

install(TARGETS tobrin tobrin-packs tobrin-force RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(TARGETS TobrinTray TobrinPanel LIBRARY DESTINATION ${TOBRIN_MODULES_DIR})

# The desktop: entry, icons, description.
install(FILES ${resources}/desktop/app.tobrin.Tobrin.desktop DESTINATION ${share}/applications)
install(FILES ${resources}/desktop/app.tobrin.Tobrin.mime.xml DESTINATION ${share}/mime/packages RENAME app.tobrin.Tobrin.xml)
install(FILES ${resources}/icons/app.tobrin.Tobrin.svg DESTINATION ${share}/icons/hicolor/scalable/mimetypes
        RENAME application-vnd.tobrin.pack+zip.svg)
install(FILES ${resources}/icons/app.tobrin.Tobrin.svg DESTINATION ${share}/icons/hicolor/scalable/apps)
# Those of the tray in two forms: as they are, and for bars that draw them in their own colour. Of the
# symbolic folders the common index of older systems lists this one alone.
set(symbolic ${share}/icons/hicolor/symbolic/apps)
foreach(state playing silent)
  install(FILES ${resources}/icons/app.tobrin.Tobrin-${state}.svg DESTINATION ${share}/icons/hicolor/scalable/status)
  install(FILES ${resources}/icons/app.tobrin.Tobrin-${state}-symbolic.svg DESTINATION ${symbolic})
endforeach()
install(FILES ${resources}/icons/app.tobrin.Tobrin-playing-symbolic.svg DESTINATION ${symbolic}
        RENAME app.tobrin.Tobrin-symbolic.svg)
include(TobrinReleases)
configure_file(${resources}/desktop/app.tobrin.Tobrin.metainfo.xml.in ${made}/app.tobrin.Tobrin.metainfo.xml @ONLY)
install(FILES ${made}/app.tobrin.Tobrin.metainfo.xml DESTINATION ${share}/metainfo)

# The shell: manual pages and completions.
foreach(program tobrin tobrin-packs tobrin-force)
  configure_file(${resources}/man/${program}.1.in ${made}/man/${program}.1 @ONLY)
  install(FILES ${made}/man/${program}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${resources}/completions/${program}.bash DESTINATION ${share}/bash-completion/completions RENAME ${program})
  install(FILES ${resources}/completions/${program}.fish DESTINATION ${share}/fish/vendor_completions.d)
endforeach()
foreach(program tobrin-key-access tobrin-keys)
  configure_file(${resources}/man/${program}.8.in ${made}/man/${program}.8 @ONLY)
  install(FILES ${made}/man/${program}.8 DESTINATION ${CMAKE_INSTALL_MANDIR}/man8)
endforeach()
install(FILES ${resources}/completions/_tobrin DESTINATION ${TOBRIN_ZSH_COMPLETIONS_DIR})

# The system: access to motion sensors.
install(FILES ${resources}/udev/70-tobrin-motion.rules DESTINATION ${TOBRIN_UDEV_RULES_DIR})

install(FILES README.md DESTINATION ${TOBRIN_DOC_DIR})
install(DIRECTORY Docs DESTINATION ${TOBRIN_DOC_DIR})
