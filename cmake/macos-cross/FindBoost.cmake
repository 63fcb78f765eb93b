host_package(Boost Boost::headers)
# Where Boost.URL is a library: what its headers leave to it is looked up when a program starts.
if("url" IN_LIST Boost_FIND_COMPONENTS AND NOT TARGET Boost::url)
  add_library(Boost::url INTERFACE IMPORTED)
  target_link_libraries(Boost::url INTERFACE Boost::headers)
  target_link_options(Boost::url INTERFACE "-Wl,-undefined,dynamic_lookup")
endif()
