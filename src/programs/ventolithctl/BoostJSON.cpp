// The one place where the parser's library is compiled: it is used as headers, without its binary.
#include <boost/json/src.hpp>
