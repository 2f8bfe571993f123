# GoogleTest, built with this build's own compiler flags: a prebuilt one uses another standard library than the libc++
# build and none of the sanitizers.
if(EXISTS /usr/src/googletest/CMakeLists.txt)
  set(INSTALL_GTEST OFF)
  add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
  if(NOT TARGET GTest::gtest)
    add_library(GTest::gtest ALIAS gtest)
    add_library(GTest::gmock_main ALIAS gmock_main)
  endif()
else()
  find_package(GTest REQUIRED)
endif()
