# Compiler settings that every target of the project takes from Tobrin::Compiler.

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
  set(CMAKE_C_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
  set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE_PROGRAM})
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

add_library(TobrinCompiler INTERFACE)
add_library(Tobrin::Compiler ALIAS TobrinCompiler)
target_compile_features(TobrinCompiler INTERFACE cxx_std_20 c_std_11)
# Same bits on every machine: no fused multiply-add unless the source says so.
target_compile_options(TobrinCompiler INTERFACE -ffp-contract=off -fno-omit-frame-pointer)
target_compile_options(
  TobrinCompiler
  INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wdouble-promotion
            -Wimplicit-fallthrough
            $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast;-Wnon-virtual-dtor;-Woverloaded-virtual>
            $<$<COMPILE_LANG_AND_ID:CXX,Clang>:-Wthread-safety>
            $<$<BOOL:${TOBRIN_WARNINGS_AS_ERRORS}>:-Werror>)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # That compiler warns of an overlapping copy where two short strings are joined.
  target_compile_options(TobrinCompiler INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
# Programs load only the libraries whose functions they call.
target_link_options(TobrinCompiler INTERFACE -Wl,--as-needed)
target_compile_definitions(TobrinCompiler INTERFACE TOBRIN_VERSION="${PROJECT_VERSION}")

if(TOBRIN_SANITIZE)
  add_compile_options(-fsanitize=${TOBRIN_SANITIZE} -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${TOBRIN_SANITIZE})
  if(TOBRIN_SANITIZE MATCHES thread AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
    # A library's stand-alone fences are not followed; what they order is also ordered by its locks.
    add_compile_options(-Wno-tsan)
  endif()
endif()
if(TOBRIN_FUZZ AND CMAKE_CXX_COMPILER_ID MATCHES Clang)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# A library target named in the project's own namespace, with its folder as include root.
function(tobrin_add_library name alias)
  add_library(${name} STATIC)
  add_library(Tobrin::${alias} ALIAS ${name})
  target_link_libraries(${name} PRIVATE Tobrin::Compiler)
endfunction()
