host_package(nlohmann_json nlohmann_json::nlohmann_json)
