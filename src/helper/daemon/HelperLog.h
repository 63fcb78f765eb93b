// Where the helper says what happened to it.
#pragma once

#include <string>

namespace ventolith::helper {

class HelperLog {
public:
  HelperLog() = default;
  HelperLog(const HelperLog&) = delete;
  HelperLog& operator=(const HelperLog&) = delete;
  virtual ~HelperLog() = default;

  /// The ordinary course of things. A line, without a line feed.
  virtual void note(const std::string& line) = 0;
  /// What somebody should look at.
  virtual void warn(const std::string& line) = 0;
};

} // namespace ventolith::helper
