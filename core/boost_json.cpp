// The one file that compiles the non-template parts of Boost.JSON (used header-only elsewhere).
#include <boost/json/src.hpp>
