function(velmora_add_applet_test suite)
  add_executable(${suite} ${ARGN})
  target_link_libraries(${suite} PRIVATE Velmora virtualboard fmt::fmt GTest::gtest_main)
  gtest_discover_tests(${suite})
endfunction()

# The first with a log threshold of its own.
velmora_add_applet_test(dispatch_test dispatch_test.cpp startup_test.cpp)
velmora_add_applet_test(port_test direct_access_test.cpp port_test.cpp transcript_test.cpp)
