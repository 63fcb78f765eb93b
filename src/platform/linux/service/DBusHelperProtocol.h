// What the helper is called on the bus. Its methods bear the names of the messages.
#pragma once

namespace ventolith::platform::protocol {

inline constexpr const char* busName = "com.ventolith.helper";
inline constexpr const char* objectPath = "/com/ventolith/helper";
inline constexpr const char* interfaceName = "com.ventolith.FanHelperProtocol";

} // namespace ventolith::platform::protocol
