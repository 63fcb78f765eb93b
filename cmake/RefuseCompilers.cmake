# Coroutine frames are miscompiled by g++ before 13 (temporaries in co_await expressions are destroyed
# twice), which here would mean a fan that is released twice or never.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  message(FATAL_ERROR
    "Ventolith does not build with g++ ${CMAKE_CXX_COMPILER_VERSION}: g++ before 13 miscompiles coroutines. "
    "Use Clang 16 or later (on Debian 12: apt install clang-19, then cmake --preset dev).")
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang" AND NOT CMAKE_CXX_COMPILER_ID STREQUAL "AppleClang"
   AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 16)
  message(FATAL_ERROR
    "Ventolith does not build with Clang ${CMAKE_CXX_COMPILER_VERSION}: Clang 16 or later is needed "
    "(on Debian 12: apt install clang-19, then cmake --preset dev).")
endif()
