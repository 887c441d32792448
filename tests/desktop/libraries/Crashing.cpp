// A pad library that does not survive being loaded.
#include <cstdlib>

namespace {

const struct Crash {
    Crash() { std::abort(); }
} crash;

} // namespace
