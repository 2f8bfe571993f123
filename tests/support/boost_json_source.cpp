// The one file of the tests that compiles the independent JSON parser.
#include <boost/json/src.hpp>
