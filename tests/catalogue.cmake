add_executable(catalogue_test catalogue_test.cpp genapi_test.cpp)
target_link_libraries(catalogue_test PRIVATE Velmora virtualboard fmt::fmt GTest::gtest_main)
gtest_discover_tests(catalogue_test)

# The reader's package file asks for development packages that programs do not need.
find_package(PkgConfig REQUIRED)
pkg_check_modules(GOBJECT REQUIRED IMPORTED_TARGET gio-2.0)
find_path(ARAVIS_INCLUDE_DIRECTORY arv.h PATH_SUFFIXES aravis-0.8 REQUIRED)
find_library(ARAVIS_LIBRARY aravis-0.8 REQUIRED)

add_executable(genapi_reader_test genapi_reader_test.cpp)
target_include_directories(genapi_reader_test SYSTEM PRIVATE ${ARAVIS_INCLUDE_DIRECTORY})
target_link_libraries(genapi_reader_test PRIVATE Velmora virtualboard ${ARAVIS_LIBRARY}
                                                 PkgConfig::GOBJECT fmt::fmt GTest::gtest_main)
gtest_discover_tests(genapi_reader_test)
