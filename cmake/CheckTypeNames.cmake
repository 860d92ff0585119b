# cmake -D FOLDER=Sources -P CheckTypeNames.cmake: no two headers define a type of one name. All are in one namespace,
# so two of them in one program would be a fault that no compiler sees.
file(GLOB_RECURSE headers ${FOLDER}/*.h)
set(failed OFF)
foreach(header IN LISTS headers)
  # What begins at the margin, in the namespace itself; a declaration alone ends with a semicolon.
  file(STRINGS ${header} definitions REGEX "^(class|struct|enum class) [A-Za-z0-9_]+( final)?( :.*)? {")
  foreach(definition IN LISTS definitions)
    string(REGEX REPLACE "^(class|struct|enum class) ([A-Za-z0-9_]+).*" "\\2" name "${definition}")
    if(DEFINED first_${name})
      message(SEND_ERROR "${name} is defined in ${first_${name}} and in ${header}")
      set(failed ON)
    endif()
    set(first_${name} ${header})
  endforeach()
endforeach()
if(failed)
  message(FATAL_ERROR "Give one of each pair another name.")
endif()
