// How often the program has waited for a key: what was read before that may be minutes old.
#pragma once
#include <cstdint>

namespace zg {

extern uint64_t TOETSWACHTEN;

} // namespace zg
