# On its own, because it replaces the global operator new.
add_executable(allocation_test allocation_test.cpp)
target_link_libraries(allocation_test PRIVATE Velmora virtualboard GTest::gtest_main)
gtest_discover_tests(allocation_test)
