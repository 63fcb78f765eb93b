// A value, or the reason why there is none.
#pragma once

#include "hardware/SMCValue.h"

#include <boost/system/result.hpp>

#include <stdexcept>

namespace ventolith::hardware {

[[noreturn]] inline void throw_exception_from_error(const SMCError& error, const boost::source_location&) {
  throw std::logic_error("a result was used that is none: " + error.description());
}

template <class Value>
using SMCResult = boost::system::result<Value, SMCError>;

} // namespace ventolith::hardware
