function(velmora_add_dispatch_test suite)
  add_executable(${suite} ${ARGN})
  target_link_libraries(${suite} PRIVATE Velmora virtualboard GTest::gtest_main)
  target_compile_definitions(${suite} PRIVATE
    TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}/data"
    DESIGN_MANIFEST="${CMAKE_SOURCE_DIR}/design/Velmora.design")
  gtest_discover_tests(${suite})
endfunction()

# The first with a log threshold of its own.
velmora_add_dispatch_test(dispatch_test dispatch_test.cpp startup_test.cpp)
velmora_add_dispatch_test(status_test status_test.cpp direct_access_test.cpp)

add_executable(parameter_table_test parameter_table_test.cpp)
target_link_libraries(parameter_table_test PRIVATE velmora_core GTest::gtest_main)
gtest_discover_tests(parameter_table_test)
