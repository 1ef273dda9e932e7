# A locale with a decimal comma, of the tests' own.
set(locales ${CMAKE_CURRENT_BINARY_DIR}/locales)
find_program(LOCALEDEF localedef REQUIRED)
add_custom_command(
  OUTPUT ${locales}/de_DE.UTF-8/LC_NUMERIC
  COMMAND ${CMAKE_COMMAND} -E make_directory ${locales}
  COMMAND ${LOCALEDEF} --no-archive -i de_DE -f UTF-8 ${locales}/de_DE.UTF-8)
add_custom_target(comma_locale DEPENDS ${locales}/de_DE.UTF-8/LC_NUMERIC)

add_executable(configuration_test configuration_test.cpp)
target_link_libraries(configuration_test PRIVATE Velmora virtualboard fmt::fmt GTest::gtest_main)
target_compile_definitions(configuration_test PRIVATE
  VELMORA_EXAMPLES="${CMAKE_SOURCE_DIR}/examples" VELMORA_LOCALES="${locales}")
add_dependencies(configuration_test comma_locale)
gtest_discover_tests(configuration_test)
