add_executable(configuration_test configuration_test.cpp)
target_link_libraries(configuration_test PRIVATE Velmora virtualboard GTest::gtest_main)
target_compile_definitions(configuration_test PRIVATE
  VELMORA_EXAMPLES="${CMAKE_SOURCE_DIR}/examples")
gtest_discover_tests(configuration_test)
