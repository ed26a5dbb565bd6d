// Assertions are part of the behaviour and stay in every build type: ROOT's release settings define NDEBUG, this undoes
// it. No include guard, and to be included last: <cassert> follows the state of NDEBUG at each inclusion.
#undef NDEBUG
#include <cassert>
