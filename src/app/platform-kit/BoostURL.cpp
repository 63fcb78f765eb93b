// Boost.URL, compiled once.
#include <boost/url/src.hpp>
