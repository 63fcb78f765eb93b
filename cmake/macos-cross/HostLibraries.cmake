# This computer's libraries for a build that is not for this computer: links to their headers, for /usr/include as
# a whole holds headers of its own system too, and stubs in place of the libraries.

set(HOST_LIBRARIES "${CMAKE_BINARY_DIR}/host-libraries")
set(HOST_HEADERS /usr/include)

# host_headers(FOLDER NAME...): the headers or folders NAME, to be found in FOLDER.
function(host_headers folder)
  file(MAKE_DIRECTORY "${folder}")
  foreach(name IN LISTS ARGN)
    if(EXISTS "${HOST_HEADERS}/${name}")
      file(CREATE_LINK "${HOST_HEADERS}/${name}" "${folder}/${name}" SYMBOLIC)
    endif()
  endforeach()
endfunction()

# host_stub(LIBRARY STUB): what the linker is to know of LIBRARY, of which it could not read this computer's own:
# the names of its functions. They are made by the same rules on either system.
function(host_stub library stub)
  execute_process(COMMAND "${CMAKE_NM}" --dynamic --defined-only --format=just-symbols "${library}"
    OUTPUT_VARIABLE names COMMAND_ERROR_IS_FATAL ANY)
  string(REGEX REPLACE "@[^\n]*" "" names "${names}") # The version that it was added in.
  string(REGEX REPLACE "[^\n]*[^A-Za-z0-9_\n][^\n]*\n" "" names "${names}")
  string(STRIP "${names}" names)
  string(REPLACE "\n" "', '_" names "${names}")
  get_filename_component(name "${stub}" NAME_WE)
  file(CONFIGURE OUTPUT "${stub}" CONTENT "--- !tapi-tbd
tbd-version: 4
targets: [ arm64-macos ]
install-name: '@rpath/${name}.dylib'
exports:
  - targets: [ arm64-macos ]
    symbols: [ '_${names}' ]
...
" @ONLY)
endfunction()

host_headers("${HOST_LIBRARIES}/include" boost fmt nlohmann CLI sodium sodium.h)

# libsodium is looked for with pkg-config.
execute_process(COMMAND "${CMAKE_COMMAND}" -E env --unset=PKG_CONFIG_LIBDIR pkg-config --variable=libdir libsodium
  OUTPUT_VARIABLE sodiumFolder OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
host_stub("${sodiumFolder}/libsodium.so" "${HOST_LIBRARIES}/libsodium.tbd")
file(WRITE "${HOST_LIBRARIES}/pkgconfig/libsodium.pc" "Name: libsodium
Description: the headers of the computer that compiles
Version: 1
Cflags: -isystem ${HOST_LIBRARIES}/include
Libs: ${HOST_LIBRARIES}/libsodium.tbd
")
set(ENV{PKG_CONFIG_LIBDIR} "${HOST_LIBRARIES}/pkgconfig")

# host_package(NAME TARGET): what find_package(NAME) is to find: TARGET, which is headers and nothing else.
macro(host_package name target)
  if(NOT TARGET ${target})
    add_library(${target} INTERFACE IMPORTED)
    target_include_directories(${target} INTERFACE "${HOST_LIBRARIES}/include")
  endif()
  set(${name}_INCLUDE_DIRS "${HOST_LIBRARIES}/include")
  set(${name}_FOUND TRUE)
endmacro()
