// How the tools show a record: as fields by name where the table's layout is known, else by its key parts;
// the bytes between are fields in hexadecimal named by offset, so that no byte of a record is ever left out.
#pragma once
#include "store/ix.h"
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zg {

struct Veld {
    std::string naam;
    char soort; // 'c' text, 'u' and 'i' integers of 1, 2 or 4 bytes, 'd' a date, 'x' hexadecimal
    int begin, lengte;
};

// The fields of a table's records, ascending and without a gap, by the table's name or else its header.
std::vector<Veld> indeling(std::string_view tabel, const IXHEADER& kop);
// Names of the tables whose layout is known, in their order.
std::vector<std::string> bekende_tabellen();
// Name of a table from a path: the part behind the last '/'.
std::string tabelnaam(std::string_view pad);

// A field's value as UTF-8. Text loses its trailing NULs only; control bytes show as U+2400 and up (0x7F as
// U+2421), so every one of the 256 bytes comes back.
std::string veld_uit(const Veld& veld, const uint8_t* rec);
// The reverse; empty when it went in, else what is wrong with the value (the record is as it was).
std::string veld_in(const Veld& veld, std::string_view waarde, uint8_t* rec);

// Key definition in the text form that IXUPDFCB takes: "key1,NODUPS,C,5,14,I,1,4".
std::string sleuteltekst(const IXKEYDEF& sleutel);

} // namespace zg
