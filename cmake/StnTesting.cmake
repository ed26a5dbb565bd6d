# stn_add_test(NAME [SOURCES s...] [LINK libs...] [WORKING_DIRECTORY d])
#
# A GoogleTest program NAME from NAME.cc and further sources, run as one test of the same name. Test programs may
# include the shared helpers in VdUtil/test by name.
find_package(GTest REQUIRED)

function(stn_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${name}.cc ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gtest GTest::gmock GTest::gtest_main)
  target_include_directories(${name} PRIVATE "${CMAKE_SOURCE_DIR}/VdUtil/test" "${CMAKE_SOURCE_DIR}/MrEvent/test"
                             "${CMAKE_SOURCE_DIR}/StnEvent/test")
  stn_compile_options(${name})
  # What is tested is in the libraries; the tests themselves are compiled twice as fast without optimisation.
  target_compile_options(${name} PRIVATE -O0)
  set(scratch "${CMAKE_CURRENT_BINARY_DIR}/${name}.dir")
  file(MAKE_DIRECTORY "${scratch}")
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY "${scratch}")
  set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()
