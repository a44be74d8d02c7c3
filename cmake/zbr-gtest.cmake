# GTest::gtest_main: the machine's own, or, for another system than this one, built from the sources that Debian's package googletest
# brings. zbr_discover_tests(PROGRAM LABEL [TEST_PREFIX prefix]) adds a test for each GoogleTest case of a program.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(GTest REQUIRED)
  include(GoogleTest)
else()
  set(ZBR_GOOGLETEST_SOURCES /usr/src/googletest/googletest CACHE PATH "Sources of GoogleTest, where no built one can be used")
  block()
    set(BUILD_SHARED_LIBS OFF)
    add_subdirectory(${ZBR_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  endblock()
endif()

function(zbr_discover_tests program label)
  if(CMAKE_CROSSCOMPILING)  # emulated programs are slow to start: one test for all cases
    add_test(NAME ${program} COMMAND ${program})
    set_tests_properties(${program} PROPERTIES LABELS ${label} TIMEOUT 3000)
  else()
    gtest_discover_tests(${program} ${ARGN} PROPERTIES LABELS ${label} TIMEOUT 600 DISCOVERY_TIMEOUT 60)
  endif()
endfunction()
