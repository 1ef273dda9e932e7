add_executable(image_test image_path_test.cpp camera_simulator_test.cpp)
target_link_libraries(image_test PRIVATE Velmora virtualboard GTest::gtest_main)
gtest_discover_tests(image_test)
