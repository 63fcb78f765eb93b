// Foundation's texts and bytes, and the standard library's. For Objective-C++ alone.
#pragma once

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <string_view>

namespace ventolith::platform {

/// Empty for what is no UTF-8: Foundation has no other text.
[[nodiscard]] inline NSString* nsString(std::string_view text) {
  NSString* const string = [[NSString alloc] initWithBytes:text.data()
                                                    length:text.size()
                                                  encoding:NSUTF8StringEncoding];
  return string == nil ? @"" : string;
}

[[nodiscard]] inline NSData* dataOf(std::string_view bytes) {
  return [NSData dataWithBytes:bytes.data() length:bytes.size()];
}

/// The first of them, `most` if there are more.
[[nodiscard]] inline std::string bytesOf(NSData* data,
                                         std::size_t most = std::numeric_limits<std::size_t>::max()) {
  const std::size_t length = std::min<std::size_t>(data.length, most);
  if (length == 0) return {};
  return {static_cast<const char*>(data.bytes), length};
}

/// All of it, whatever characters it has. Empty for nil.
[[nodiscard]] inline std::string textOf(NSString* string) {
  return bytesOf([string dataUsingEncoding:NSUTF8StringEncoding]);
}

/// What went wrong, for the user.
[[nodiscard]] inline std::string textOf(NSError* error) {
  return textOf(error.localizedDescription);
}

} // namespace ventolith::platform
