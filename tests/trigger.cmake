add_executable(trigger_test trigger_outputs_test.cpp trigger_path_test.cpp
                            trigger_transitions_test.cpp trigger_walk_test.cpp)
target_link_libraries(trigger_test PRIVATE Velmora virtualboard GTest::gtest_main)
# The runtime is opened by name.
add_dependencies(trigger_test vorn5)
gtest_discover_tests(trigger_test)

add_executable(time_base_test time_base_test.cpp)
target_link_libraries(time_base_test PRIVATE GTest::gtest_main)
gtest_discover_tests(time_base_test)
