# This computer's Qt: its headers, which ask the compiler what system they are for, its tools, and stubs for its
# libraries.

function(query_qt variable property)
  execute_process(COMMAND qtpaths6 --query ${property}
    OUTPUT_VARIABLE value OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  set(${variable} "${value}" PARENT_SCOPE)
endfunction()

query_qt(qtHeaders QT_INSTALL_HEADERS)
query_qt(qtLibraries QT_INSTALL_LIBS)
query_qt(qtTools QT_HOST_LIBEXECS)
query_qt(Qt6_VERSION QT_VERSION)

set(belowGui Qt6::Core)
set(belowNetwork Qt6::Core)
set(belowSvg Qt6::Gui)
set(belowWidgets Qt6::Gui)

foreach(component IN LISTS Qt6_FIND_COMPONENTS)
  if(NOT TARGET Qt6::${component})
    host_stub("${qtLibraries}/libQt6${component}.so" "${HOST_LIBRARIES}/Qt${component}.tbd")
    string(TOUPPER "${component}" name)
    add_library(Qt6::${component} INTERFACE IMPORTED)
    target_include_directories(Qt6::${component} INTERFACE "${qtHeaders}" "${qtHeaders}/Qt${component}")
    target_link_libraries(Qt6::${component} INTERFACE "${HOST_LIBRARIES}/Qt${component}.tbd")
    target_compile_definitions(Qt6::${component} INTERFACE QT_${name}_LIB)
    target_link_libraries(Qt6::${component} INTERFACE ${below${component}})
  endif()
endforeach()

# What the stubs lack: names that hold the name of a std::string, which is another one in each standard library,
# and what Qt has on a Mac alone.
target_link_options(Qt6::Core INTERFACE
  "-Wl,-U,__ZNK7QString10toNSStringEv"
  "-Wl,-U,__ZNK10QByteArray11toStdStringEv"
  "-Wl,-U,__ZN10QByteArray13fromStdStringERKNSt3__112basic_stringIcNS0_11char_traitsIcEENS0_9allocatorIcEEEE")

# CMake's own handling of Qt's meta-objects asks for these.
string(REPLACE "." ";" qtVersion "${Qt6_VERSION}")
list(GET qtVersion 0 Qt6Core_VERSION_MAJOR)
list(GET qtVersion 1 Qt6Core_VERSION_MINOR)
list(GET qtVersion 2 Qt6Core_VERSION_PATCH)
if(NOT TARGET Qt6::moc)
  add_executable(Qt6::moc IMPORTED)
  set_property(TARGET Qt6::moc PROPERTY IMPORTED_LOCATION "${qtTools}/moc")
endif()

# qt_add_resources(TARGET NAME PREFIX PREFIX [BASE FOLDER] FILES FILE...), as Qt has it.
function(qt_add_resources target name)
  cmake_parse_arguments(ARG "" "PREFIX;BASE" "FILES" ${ARGN})
  if(NOT ARG_BASE)
    set(ARG_BASE "${CMAKE_CURRENT_SOURCE_DIR}")
  endif()
  set(list "${CMAKE_CURRENT_BINARY_DIR}/${name}.qrc")
  set(text "<RCC><qresource prefix=\"${ARG_PREFIX}\">\n")
  foreach(file IN LISTS ARG_FILES)
    get_filename_component(path "${file}" ABSOLUTE)
    file(RELATIVE_PATH alias "${ARG_BASE}" "${path}")
    string(APPEND text "<file alias=\"${alias}\">${path}</file>\n")
  endforeach()
  file(WRITE "${list}" "${text}</qresource></RCC>\n")
  set(source "${CMAKE_CURRENT_BINARY_DIR}/qrc_${name}.cpp")
  add_custom_command(OUTPUT "${source}"
    COMMAND "${qtTools}/rcc" --name ${name} -o "${source}" "${list}"
    DEPENDS "${list}" ${ARG_FILES} VERBATIM)
  target_sources(${target} PRIVATE "${source}")
  set_source_files_properties("${source}" PROPERTIES SKIP_AUTOMOC ON)
endfunction()

set(Qt6_FOUND TRUE)
