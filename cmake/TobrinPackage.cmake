# The Debian package that cpack makes; `./dev package` does the rest.

option(TOBRIN_DEBIAN "Install what a Debian package has to hold" OFF)
if(NOT TOBRIN_DEBIAN)
  return()
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tobrin)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Tobrin maintainers <maintainers@tobrin.example>")
set(CPACK_PACKAGE_DESCRIPTION
    "Tobrin plays keyboard sounds while you type, in any application. Soft keys
sound soft, hard keys sound hard where the machine has a motion sensor, every
key has its own sound and its own place between left and right, and letting go
of a key is heard too.
.
It comes with five sound packs and with a workshop that makes packs from
recordings of real keyboards. What is typed is neither kept nor sent.")
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/TobrinPackageFiles.cmake)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
# Older than any package that Debian itself may make of this version.
set(CPACK_DEBIAN_PACKAGE_RELEASE 0tobrin1)
set(CPACK_DEBIAN_PACKAGE_SECTION non-free/sound)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# The panel imports these while it runs.
set(modules qtqml qtqml-workerscript qtquick qtquick-layouts qtquick-templates qtquick-window)
list(TRANSFORM modules PREPEND qml6-module-)
# Icons of other apps may be drawings; what reads them is a package by itself since Debian 13.
list(APPEND modules "libqt6svg6 (<< 6.7) | qt6-svg-plugins")
list(JOIN modules ", " CPACK_DEBIAN_PACKAGE_DEPENDS)
# ffmpeg opens recordings for the workshop; polkit asks for the access to keyboards.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "ffmpeg, pkexec, polkitd, qt6-wayland")
# Which sound server there is, is the user's choice: a second one takes the card from the first.
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "pipewire, pulseaudio")

set(made ${PROJECT_BINARY_DIR}/Resources/package)
set(origin ${PROJECT_SOURCE_DIR}/Resources/package)
string(TIMESTAMP TOBRIN_PACKAGE_DATE "%a, %d %b %Y %H:%M:%S +0000" UTC)
configure_file(${origin}/changelog.Debian.in ${made}/changelog.Debian @ONLY)
configure_file(${PROJECT_SOURCE_DIR}/CHANGELOG.md ${made}/changelog COPYONLY)
set(TOBRIN_KEY_ACCESS_HELPER ${CMAKE_INSTALL_FULL_LIBEXECDIR}/tobrin-key-access)
foreach(script postinst prerm postrm)
  configure_file(${origin}/${script}.in ${made}/${script} @ONLY FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
                 GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
  list(APPEND CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA ${made}/${script})
endforeach()
install(FILES ${made}/changelog ${made}/changelog.Debian ${origin}/copyright DESTINATION ${TOBRIN_DOC_DIR})

include(CPack)
