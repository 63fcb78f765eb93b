# Compiles and links for a Mac on another computer: cmake --preset macos-cross -DMACOS_SDK=PATH. It proves that the
# Mac's sources compile, warnings as errors, and that programs and tests link; nothing of it is meant to be shipped.
#
# PATH is a copy of Apple's SDK for macOS 13 or later. The libraries' headers are this computer's own, since they
# are the same on every system; what they leave to a library is linked against a stub that names its functions.

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES MACOS_SDK)
if(NOT EXISTS "${MACOS_SDK}/usr/lib/libSystem.tbd")
  message(FATAL_ERROR
    "There is no macOS SDK at \"${MACOS_SDK}\". Say where one is: cmake --preset macos-cross -DMACOS_SDK=PATH")
endif()

set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22) # macOS 13.
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(CMAKE_OSX_SYSROOT "${MACOS_SDK}")
set(CMAKE_OSX_ARCHITECTURES arm64)
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0)

foreach(language IN ITEMS C CXX OBJC OBJCXX)
  set(CMAKE_${language}_COMPILER_TARGET arm64-apple-macos13)
endforeach()
find_program(clang clang++-19 REQUIRED NO_CACHE)
foreach(language IN ITEMS CXX OBJCXX)
  set(CMAKE_${language}_COMPILER "${clang}")
  # The SDK's library, and not one that stands beside the compiler.
  set(CMAKE_${language}_FLAGS_INIT "-stdlib++-isystem ${MACOS_SDK}/usr/include/c++/v1")
endforeach()
set(CMAKE_EXE_LINKER_FLAGS_INIT -fuse-ld=lld)
foreach(tool IN ITEMS AR NM RANLIB STRIP INSTALL_NAME_TOOL)
  string(TOLOWER "llvm-${tool}-19" name)
  string(REPLACE "_" "-" name "${name}")
  find_program(CMAKE_${tool} "${name}" REQUIRED)
endforeach()

set(CMAKE_FIND_ROOT_PATH "${MACOS_SDK}")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

get_property(isTrial GLOBAL PROPERTY IN_TRY_COMPILE)
if(NOT isTrial)
  include("${CMAKE_CURRENT_LIST_DIR}/macos-cross/HostLibraries.cmake")
  list(APPEND CMAKE_MODULE_PATH "${CMAKE_CURRENT_LIST_DIR}/macos-cross")
endif()
