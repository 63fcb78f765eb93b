host_package(CLI11 CLI11::CLI11)
