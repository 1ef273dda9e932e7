add_executable(board_test board_test.cpp board_design_test.cpp)
target_link_libraries(board_test PRIVATE velmora_core virtualboard vorn5 dervin korv_hw
                                         GTest::gtest_main)
gtest_discover_tests(board_test)
