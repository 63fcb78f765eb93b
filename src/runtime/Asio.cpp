// The one translation unit that holds the compiled parts of Boost.Asio.
#include <boost/asio/impl/src.hpp>
