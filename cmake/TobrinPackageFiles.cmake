# Run by cpack on the staged files: brings them into the form that Debian's policy asks for.

set(usr ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr)
file(GLOB programs ${usr}/bin/* ${usr}/libexec/*)
file(GLOB_RECURSE modules ${usr}/lib/*.so)
foreach(file IN LISTS programs modules)
  execute_process(COMMAND strip --strip-unneeded --remove-section=.comment --remove-section=.note ${file}
                  COMMAND_ERROR_IS_FATAL ANY)
endforeach()
file(GLOB texts ${usr}/share/man/man*/* ${usr}/share/doc/*/changelog*)
execute_process(COMMAND gzip -9n ${texts} COMMAND_ERROR_IS_FATAL ANY)
