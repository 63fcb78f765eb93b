# GoogleTest's headers. Tests are compiled for a Mac, and linked, but run there alone: what they leave to the library
# is looked up when they start.
host_headers("${HOST_LIBRARIES}/include" gtest gmock)
host_package(GTest GTest::gtest)
target_link_options(GTest::gtest INTERFACE "-Wl,-undefined,dynamic_lookup")
if(NOT TARGET GTest::gtest_main)
  add_library(GTest::gtest_main INTERFACE IMPORTED)
  target_link_libraries(GTest::gtest_main INTERFACE GTest::gtest)
endif()
