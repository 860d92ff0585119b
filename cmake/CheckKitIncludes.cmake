# Fails where the kit or the mixer in FOLDER includes a platform's header: besides the standard
# library's, only those of the libraries below may be named.
set(libraries curl/curl sndfile soxr "hwy/.*" "nlohmann/.*" "unicode/.*")
set(c_headers stdbool stddef stdint)  # in the mixer's C interface
string(JOIN "|" allowed ${libraries} ${c_headers})

set(bad "")
file(GLOB_RECURSE sources ${FOLDER}/TobrinKit/*.cpp ${FOLDER}/TobrinKit/*.h ${FOLDER}/TobrinMixer/*.cpp
     ${FOLDER}/TobrinMixer/*.h)
list(LENGTH sources count)
if(count LESS 100)
  message(FATAL_ERROR "only ${count} sources in ${FOLDER}")
endif()
foreach(source IN LISTS sources)
  file(STRINGS ${source} includes REGEX "^ *# *include *<[^>]*[./]")
  foreach(include IN LISTS includes)
    if(NOT include MATCHES "<(${allowed})(\\.h|\\.hpp)?>")
      string(APPEND bad "\n${source}: ${include}")
    endif()
  endforeach()
endforeach()
if(bad)
  message(FATAL_ERROR "headers of the platform belong into its own folder:${bad}")
endif()
