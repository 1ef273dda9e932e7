# Each program lies in an installation of its own, because the logging dispatcher is looked for
# beside the program that contains the logging code.
function(velmora_add_dispatcher_library target directory source)
  add_library(${target} SHARED ${source})
  set_target_properties(
    ${target} PROPERTIES OUTPUT_NAME common-logging-dispatcher CXX_VISIBILITY_PRESET default
                         LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/${directory}/lib64)
endfunction()

function(velmora_add_support_test target directory source)
  add_executable(${target} ${source})
  target_link_libraries(${target} PRIVATE velmora_core GTest::gmock GTest::gtest_main)
  target_compile_definitions(
    ${target} PRIVATE INSTALLATION_DIRECTORY="${CMAKE_BINARY_DIR}/tests/${directory}")
  set_target_properties(
    ${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/${directory}/bin
                         INSTALL_RPATH "$ORIGIN/../lib64;${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
  gtest_discover_tests(${target})
endfunction()

# A locale in which i is not the small form of I.
set(locales ${CMAKE_CURRENT_BINARY_DIR}/locales)
find_program(LOCALEDEF localedef REQUIRED)
add_custom_command(
  OUTPUT ${locales}/tr_TR.UTF-8/LC_CTYPE
  COMMAND ${CMAKE_COMMAND} -E make_directory ${locales}
  COMMAND ${LOCALEDEF} --no-archive -i tr_TR -f UTF-8 ${locales}/tr_TR.UTF-8)
add_custom_target(turkish_locale DEPENDS ${locales}/tr_TR.UTF-8/LC_CTYPE)

velmora_add_dispatcher_library(unusable_logging_dispatcher support fakes/unusable_library.cpp)
velmora_add_support_test(support_test support support_test.cpp)
add_dependencies(support_test unusable_logging_dispatcher turkish_locale)
target_compile_definitions(support_test PRIVATE VELMORA_LOCALES="${locales}")

velmora_add_dispatcher_library(fake_logging_dispatcher dispatcher fakes/logging_dispatcher.cpp)
velmora_add_support_test(support_dispatcher_test dispatcher support_dispatcher_test.cpp)
target_sources(support_dispatcher_test PRIVATE fakes/allocation_hook.cpp)
target_link_libraries(support_dispatcher_test PRIVATE fake_logging_dispatcher)
# This dispatcher and no other, whatever LD_LIBRARY_PATH says.
target_link_options(support_dispatcher_test PRIVATE -Wl,--disable-new-dtags)
