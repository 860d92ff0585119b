# Where an installation has its parts. Programs find theirs from their own folder, so a tree that was
# installed under one prefix may be moved to another as a whole.

set(TOBRIN_MODULES_DIR ${CMAKE_INSTALL_LIBDIR}/tobrin)
set(TOBRIN_DATA_DIR ${CMAKE_INSTALL_DATADIR}/tobrin)
set(TOBRIN_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/tobrin)
set(TOBRIN_UDEV_RULES_DIR lib/udev/rules.d CACHE STRING "Where udev rules go")
set(TOBRIN_SYSTEMD_UNITS_DIR lib/systemd/system CACHE STRING "Where units of the system go")
set(TOBRIN_ZSH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING "Where zsh completions go")

set(bin ${CMAKE_INSTALL_FULL_BINDIR})
foreach(what MODULES DATA)
  get_filename_component(folder ${TOBRIN_${what}_DIR} ABSOLUTE BASE_DIR ${CMAKE_INSTALL_PREFIX})
  file(RELATIVE_PATH TOBRIN_${what}_FROM_BIN ${bin} ${folder})
endforeach()
