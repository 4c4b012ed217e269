// The variable behind a field, for the tests of fields.
#pragma once
#include <cstddef>

namespace zg::test {

// Bytes that a field of this type and width stores.
inline size_t veldmaat(char type, int breedte) {
    switch (type) {
    case 'B':
    case 'l':
        return 4;
    case 'D':
    case 'd':
    case 'u':
        return 2;
    case 'U':
    case 'b':
    case 'n':
        return 1;
    case 'f':
        return 8;
    default:
        return static_cast<size_t>(breedte) + (type == 's' || type == 'S');
    }
}

} // namespace zg::test
