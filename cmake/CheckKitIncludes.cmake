# Fails where the kit or the mixer in FOLDER includes a platform's header, or where a room of the kit
# includes a room that it does not stand on.

cmake_minimum_required(VERSION 3.25)

# A line a room, with the rooms below it that it may use. A new room needs a line here.
set(rooms
    "Base:"
    "Packs: Base"
    "Input: Base"
    "Mic: Base"
    "Synth: Base Packs"
    "Force: Base Input"
    "Engine: Base Packs Input Force"
    "Building: Base Packs Engine"
    "Importing: Base Packs Input Synth Engine Building"
    "Recording: Base Packs Input Force Engine Building")

# Besides the standard library's, only headers of the libraries below may be named.
set(libraries archive archive_entry curl/curl sndfile soxr "hwy/.*" "nlohmann/.*" "unicode/.*" "yaml-cpp/.*")
set(c_headers stdbool stddef stdint)  # in the mixer's C interface
set(posix fcntl pwd unistd sys/file sys/stat)  # files and folders, in Base alone

file(GLOB_RECURSE sources RELATIVE ${FOLDER} ${FOLDER}/TobrinKit/*.cpp ${FOLDER}/TobrinKit/*.h
     ${FOLDER}/TobrinMixer/*.cpp ${FOLDER}/TobrinMixer/*.h)
list(LENGTH sources count)
if(count LESS 100)
  message(FATAL_ERROR "only ${count} sources in ${FOLDER}")
endif()

set(names "")
foreach(room IN LISTS rooms)
  string(REGEX MATCHALL "[A-Za-z]+" below ${room})
  list(POP_FRONT below name)
  foreach(other IN LISTS below)
    if(NOT other IN_LIST names)
      message(FATAL_ERROR "${name} can stand only on rooms of the lines before it, not on ${other}")
    endif()
  endforeach()
  list(APPEND names ${name})
  string(JOIN "|" allowed_${name} ${name} ${below})
endforeach()

set(bad "")
foreach(source IN LISTS sources)
  set(allowed ${libraries} ${c_headers})
  if(source MATCHES "^TobrinKit/([A-Za-z]+)/")
    set(room ${CMAKE_MATCH_1})
    if(NOT room IN_LIST names)
      message(FATAL_ERROR "cmake/CheckKitIncludes.cmake does not say what ${room} stands on")
    endif()
    if(room STREQUAL Base)
      list(APPEND allowed ${posix})
    endif()
    file(STRINGS ${FOLDER}/${source} includes REGEX "^ *# *include *\"")
    foreach(include IN LISTS includes)
      if(NOT include MATCHES "\"((${allowed_${room}})/|TobrinMixer.h)")
        string(APPEND bad "\n${source}: ${include}")
      endif()
    endforeach()
  endif()
  string(JOIN "|" allowed ${allowed})
  file(STRINGS ${FOLDER}/${source} includes REGEX "^ *# *include *<[^>]*[./]")
  foreach(include IN LISTS includes)
    if(NOT include MATCHES "<(${allowed})(\\.h|\\.hpp)?>")
      string(APPEND bad "\n${source}: ${include}")
    endif()
  endforeach()
endforeach()
if(bad)
  message(FATAL_ERROR "a platform's headers belong into its own folder, and rooms stand only on rooms below:${bad}")
endif()
