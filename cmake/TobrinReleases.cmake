# TOBRIN_RELEASES: the releases that CHANGELOG.md lists ("## 1.2.3, 2030-01-31"), newest first, as
# AppStream wants them. What is unreleased counts as a development release of the project's version.

set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md headings REGEX "^## ")
set(TOBRIN_RELEASES "")
foreach(heading IN LISTS headings)
  if(heading STREQUAL "## Unreleased")
    # SOURCE_DATE_EPOCH, where it is set, decides.
    string(TIMESTAMP date "%Y-%m-%d" UTC)
    set(release "version=\"${PROJECT_VERSION}\" date=\"${date}\" type=\"development\"")
  elseif(heading MATCHES "^## ([0-9]+\\.[0-9]+\\.[0-9]+), ([0-9]+-[0-9]+-[0-9]+)$")
    set(release "version=\"${CMAKE_MATCH_1}\" date=\"${CMAKE_MATCH_2}\"")
  else()
    message(FATAL_ERROR "CHANGELOG.md: neither \"## Unreleased\" nor \"## 1.2.3, 2030-01-31\": ${heading}")
  endif()
  string(APPEND TOBRIN_RELEASES "    <release ${release}/>\n")
endforeach()
string(STRIP "${TOBRIN_RELEASES}" TOBRIN_RELEASES)
