# How every target of the project is made: language level, warnings, sanitizers, the shared precompiled
# header, and a folder that shows a library's headers to those that link it, and to nobody else.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set_property(GLOBAL PROPERTY USE_FOLDERS ON)

if(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
  set(VENTOLITH_SYSTEM macos)
  set(CMAKE_OBJCXX_STANDARD 20)
  set(CMAKE_OBJCXX_STANDARD_REQUIRED ON)
  set(CMAKE_OBJCXX_EXTENSIONS OFF)
  enable_language(OBJCXX)
else()
  set(VENTOLITH_SYSTEM linux)
endif()

add_library(ventolith_flags INTERFACE)
target_compile_options(ventolith_flags INTERFACE
  -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
  -Woverloaded-virtual -Wimplicit-fallthrough -Werror
  -Wno-missing-field-initializers # Records are made by naming the fields that differ from their defaults.
  -Wno-deprecated-declarations)   # libstdc++ 12's own stable_sort calls what C++17 deprecates.
if(VENTOLITH_SYSTEM STREQUAL "macos")
  target_compile_options(ventolith_flags INTERFACE
    -Wunguarded-availability # What the oldest macOS lacks is asked for before it is used.
    $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
endif()
if(VENTOLITH_SANITIZERS)
  target_compile_options(ventolith_flags INTERFACE
    -fsanitize=${VENTOLITH_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer
    -gline-tables-only) # All that a report shows; the rest takes a tenth of the build's time.
  target_link_options(ventolith_flags INTERFACE -fsanitize=${VENTOLITH_SANITIZERS})
endif()
if(CMAKE_BUILD_TYPE STREQUAL "Release")
  target_compile_options(ventolith_flags INTERFACE -ffunction-sections -fdata-sections)
  # A resident tool: unused code is dropped.
  if(VENTOLITH_SYSTEM STREQUAL "macos")
    target_link_options(ventolith_flags INTERFACE -Wl,-dead_strip)
  else()
    target_link_options(ventolith_flags INTERFACE -Wl,--gc-sections)
  endif()
endif()
if(CMAKE_CXX_COMPILER_ID MATCHES "Clang")
  # Precompiled headers carry no time stamp, so that ccache can reuse what was built with them.
  target_compile_options(ventolith_flags INTERFACE "SHELL:-Xclang -fno-pch-timestamp")
  if(NOT VENTOLITH_SYSTEM STREQUAL "macos")
    target_link_options(ventolith_flags INTERFACE -fuse-ld=lld)
  endif()
endif()
find_program(CCACHE ccache)
if(CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER
    ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE})
  set(CMAKE_OBJCXX_COMPILER_LAUNCHER ${CMAKE_CXX_COMPILER_LAUNCHER})
endif()

# ventolith_library(NAME [QT] FOLDER <folder under src> [AS <folder>] SOURCES ... [LINKS ...])
#
# One folder, one library. Its headers are included by their folder ("core/FanCurve.h"), and are found by
# those alone that link it: the include path leads to a folder that holds this one library's folder. AS
# shows it under a second name, so that who needs the system's own part need not name the system. QT is for
# whatever uses Qt, be it through what it links.
function(ventolith_library name)
  cmake_parse_arguments(ARG "QT" "FOLDER;AS" "SOURCES;LINKS" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  set(shown "${PROJECT_BINARY_DIR}/include/${name}")
  get_filename_component(parent "${shown}/${ARG_FOLDER}" DIRECTORY)
  file(MAKE_DIRECTORY "${parent}")
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src/${ARG_FOLDER}" "${shown}/${ARG_FOLDER}" SYMBOLIC)
  if(ARG_AS)
    get_filename_component(parent "${shown}/${ARG_AS}" DIRECTORY)
    file(MAKE_DIRECTORY "${parent}")
    file(CREATE_LINK "${PROJECT_SOURCE_DIR}/src/${ARG_FOLDER}" "${shown}/${ARG_AS}" SYMBOLIC)
  endif()
  target_include_directories(${name} PUBLIC "${shown}")
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE ventolith_flags)
  ventolith_precompile(${name} ${ARG_QT})
endfunction()

# ventolith_program(NAME [QT] SOURCES ... LINKS ...)
function(ventolith_program name)
  cmake_parse_arguments(ARG "QT" "" "SOURCES;LINKS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} ventolith_flags)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
  ventolith_precompile(${name} ${ARG_QT})
endfunction()

function(ventolith_precompile name uses_qt)
  # Objective-C++ is another language to the compiler, whose precompiled header would be another one.
  get_target_property(sources ${name} SOURCES)
  list(FILTER sources INCLUDE REGEX "\\.mm$")
  set_source_files_properties(${sources} PROPERTIES SKIP_PRECOMPILE_HEADERS ON)
  set(precompiled ventolith_precompiled)
  if(uses_qt)
    set(precompiled ventolith_precompiled_qt)
    target_link_libraries(${name} PUBLIC ventolith_qt)
  endif()
  if(VENTOLITH_PRECOMPILE)
    target_precompile_headers(${name} REUSE_FROM ${precompiled})
  endif()
  target_link_libraries(${name} PRIVATE ventolith_thirdparty)
endfunction()
