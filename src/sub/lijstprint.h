// The stored distributions and runs of a size type printed, 132 columns wide, thirty sizes beside each other.
#pragma once
#include <cstdint>

namespace zg {

// "&Printen" in their lists: of this type, or of all; asked on a row of the window. The bar in force stays.
void vv_printen(int vraagrij, uint8_t maatsoort);
void reeks_printen(int vraagrij, uint8_t maatsoort);

// The reports; 0: of all size types.
void vv_lijst(uint8_t maatsoort);
void reeks_lijst(uint8_t maatsoort);

} // namespace zg
