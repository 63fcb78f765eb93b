host_package(Boost Boost::headers)
