// The variable behind a field, for the tests of fields.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zg::test {

inline bool veldgeheel(char type) {
    return strchr("BlDduUbn", type);
}

// Bytes that a field of this type and width stores.
inline size_t veldmaat(char type, int breedte) {
    return strchr("Bl", type)    ? 4
           : strchr("Ddu", type) ? 2
           : strchr("Ubn", type) ? 1
           : type == 'f'         ? 8
                                 : static_cast<size_t>(breedte) + (type == 's' || type == 'S');
}

// The number in a variable of one of the whole types.
inline int64_t veldgetal(char type, const char* doel) {
    int64_t x = 0;
    const size_t bits = 8 * veldmaat(type, 1);
    memcpy(&x, doel, bits / 8);
    return strchr("Bldn", type) ? x << (64 - bits) >> (64 - bits) : x;
}

} // namespace zg::test
