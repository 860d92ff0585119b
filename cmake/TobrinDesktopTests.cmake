# Tests that need an X server, a message bus or a sound server: each runs in its own private
# desktop session (Tools/Desktop), so that it touches neither the machine's desktop nor another test.

set(TOBRIN_DESKTOP_SESSION ${PROJECT_SOURCE_DIR}/Tools/Desktop/desktop-session)
set(TOBRIN_DESKTOP_ENVIRONMENT PYTHONDONTWRITEBYTECODE=1 TOBRIN_DESKTOP_TOOLS=${PROJECT_BINARY_DIR}/desktop-tools)

# tobrin_add_desktop_test(NAME name COMMAND program|target [argument...]
#                         [SESSION option...] [TIMEOUT seconds] [LABELS label...] [SERIAL])
# TOBRIN_DESKTOP_TOOLS is in its environment. SESSION passes options to desktop-session. SERIAL, for tests that measure
# time: no other test runs at the same time.
function(tobrin_add_desktop_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "SERIAL" "NAME;TIMEOUT" "COMMAND;SESSION;LABELS")
  list(POP_FRONT arg_COMMAND program)
  if(TARGET ${program})
    set(program $<TARGET_FILE:${program}>)
  endif()
  add_test(NAME ${arg_NAME} COMMAND ${TOBRIN_DESKTOP_SESSION} ${arg_SESSION} -- ${program} ${arg_COMMAND})
  if(NOT arg_TIMEOUT)
    set(arg_TIMEOUT 300)
  endif()
  # Skipping is 77 here as everywhere.
  set_tests_properties(
    ${arg_NAME}
    PROPERTIES TIMEOUT ${arg_TIMEOUT} SKIP_RETURN_CODE 77 LABELS "desktop;${arg_LABELS}" RUN_SERIAL "${arg_SERIAL}"
               ENVIRONMENT "${TOBRIN_DESKTOP_ENVIRONMENT}")
endfunction()

# tobrin_add_desktop_tests(name library...): a GoogleTest program that runs whole in one session.
function(tobrin_add_desktop_tests name)
  add_executable(${name})
  target_link_libraries(${name} PRIVATE Tobrin::Compiler Tobrin::TestSupport GTest::gtest GTest::gtest_main ${ARGN})
  tobrin_add_desktop_test(NAME ${name} COMMAND ${name})
endfunction()
