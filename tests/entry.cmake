# Acquisition runtimes that lack functions: the board's own with some of them hidden, each under the
# usual library name in a directory of its own.
add_library(runtime_objects OBJECT ${CMAKE_SOURCE_DIR}/board/vorn5.cpp)
set_target_properties(runtime_objects PROPERTIES CXX_VISIBILITY_PRESET default)
target_link_libraries(runtime_objects PRIVATE fmt::fmt)
add_custom_target(runtimes)

function(velmora_add_runtime directory target)
  add_library(${target} SHARED ${ARGN})
  set_target_properties(
    ${target} PROPERTIES OUTPUT_NAME vorn5 CXX_VISIBILITY_PRESET default
                         LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests/runtimes/${directory})
  target_link_options(${target} PRIVATE -Wl,-Bsymbolic-functions)
  add_dependencies(runtimes ${target})
endfunction()

function(velmora_add_runtime_without name)
  # No pattern for the rest: linkers differ in what they make of a symbol that matches twice.
  list(JOIN ARGN "; " hidden)
  set(map ${CMAKE_CURRENT_BINARY_DIR}/runtime_without_${name}.map)
  file(CONFIGURE OUTPUT ${map} CONTENT "{ local: ${hidden}; };\n")
  set(target runtime_without_${name})
  velmora_add_runtime(without/${name} ${target} $<TARGET_OBJECTS:runtime_objects>)
  target_link_libraries(${target} PRIVATE virtualboard fmt::fmt)
  target_link_options(${target} PRIVATE -Wl,--version-script=${map})
endfunction()

foreach(name Fg_InitHandle Fg_InitHandleSlaveAware Fg_FreeGrabber Fg_getLastErrorNumber
             Fg_getParameterIdByName Fg_setParameter Fg_setParameterWithType Fg_getParameter
             Fg_getParameterWithType Fg_freeParameterStringWithType Fg_getParameterInfo
             Fg_getAppletId Fg_AcquireEx Fg_stopAcquireEx Fg_getLastPicNumberEx
             Fg_getLastPicNumberBlockingEx Fg_getStatusEx)
  velmora_add_runtime_without(${name} ${name})
endforeach()
velmora_add_runtime_without(any_init Fg_InitHandle Fg_InitHandleSlaveAware)
velmora_add_runtime_without(uncalled_ones Fg_saveConfig Fg_loadConfig Fg_Acquire Fg_stopAcquire
                            Fg_AllocShading Fg_FreeShading Shad_*)
velmora_add_runtime(recording recording_runtime fakes/recording_runtime.cpp)

add_executable(entry_test entry_test.cpp forwarding_test.cpp)
target_link_libraries(entry_test PRIVATE Velmora virtualboard fmt::fmt GTest::gtest_main)
target_compile_definitions(entry_test PRIVATE
  RUNTIMES="${CMAKE_BINARY_DIR}/tests/runtimes"
  LIBRARY="$<TARGET_FILE:Velmora>" NM="${CMAKE_NM}" READELF="${CMAKE_READELF}")
add_dependencies(entry_test runtimes vorn5 common-logging-dispatcher)
# The leak checker trips over the thread storage of runtimes that were closed.
gtest_discover_tests(entry_test PROPERTIES ENVIRONMENT LSAN_OPTIONS=use_tls=0)

find_package(PNG REQUIRED)
add_executable(info_test info_test.cpp)
target_link_libraries(info_test PRIVATE Velmora virtualboard fmt::fmt PNG::PNG GTest::gtest_main)
add_dependencies(info_test vorn5)
gtest_discover_tests(info_test)

add_executable(wrapper_base_test wrapper_base_test.cpp)
target_link_libraries(wrapper_base_test PRIVATE velmora_core virtualboard GTest::gtest_main)
add_dependencies(wrapper_base_test vorn5 common-logging-dispatcher)
gtest_discover_tests(wrapper_base_test)
