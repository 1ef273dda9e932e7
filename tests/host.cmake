# The tool is run as a user runs it, from its place in the build tree and from installations made of
# copies of the build's libraries.
add_executable(host_test host_test.cpp)
target_link_libraries(host_test PRIVATE GTest::gtest_main)
target_compile_definitions(host_test PRIVATE
  TOOL="$<TARGET_FILE:velmora_tool>" LIBRARIES="$<TARGET_FILE_DIR:Velmora>")
add_dependencies(host_test velmora_tool)
gtest_discover_tests(host_test)
