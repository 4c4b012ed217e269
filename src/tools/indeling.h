// How the tools show a record: as fields by name where the table's layout is known, else by its key parts;
// the bytes between are fields in hexadecimal named by offset, so that no byte of a record is ever left out.
#pragma once
#include "store/ix.h"
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace zg {

// What a field may hold, by the words of tools/indeling.def.
struct Veldmag {
    enum Soort : uint8_t {
        NAAR_TYPE, // of a text TEKST, of a date DATUM, else ALLES
        ALLES,
        TEKST,     // no control bytes, zeros behind its end
        GEVULD,    // the same and not empty; of bytes: not all zero
        OPVULLING, // zeros behind its end
        VOL,       // the same and not empty
        REGELS,    // a piece of a text with line ends in it
        CIJFERS,   // a text of digits, or none
        EEN_VAN,   // one of `letters`
        DATUM,     // a day of the calendar or none
        DAG,       // a day
        EINDDAG,   // or the mark of a period without an end
        GETAL,     // each number of `breedte` bytes (0: of the field's) from `van` to `tot`, or `ook`
        EENHEID,   // not 0 while there is a rate in the four bytes in front of it
        MAATBITS,  // bits of sizes
        ADVIES     // eight ends of ranges with their prices
    } soort = NAAR_TYPE;
    int64_t van = 0, tot = 0, ook = 0;
    int breedte = 0;
    const char* letters = "";
};

struct Veld {
    std::string naam;
    char soort; // 'c' text, 'u' and 'i' integers of 1, 2 or 4 bytes, 'd' a date, 'x' hexadecimal
    int begin, lengte;
    Veldmag mag = {};
};

// The fields of a table's records, ascending and without a gap, by the table's name or else its header.
std::vector<Veld> indeling(std::string_view tabel, const IXHEADER& kop);
// What a record of the table is called, with the places of fields in it: "article group {0}"; "" for a table that isn't known.
std::string_view indeling_wie(std::string_view tabel);
// Names of the tables whose layout is known, in their order.
std::vector<std::string> bekende_tabellen();
// Name of a table from a path: the part behind the last '/'.
std::string tabelnaam(std::string_view pad);

// A field's value as UTF-8. Text loses its trailing NULs only; control bytes show as U+2400 and up (0x7F as
// U+2421), so every one of the 256 bytes comes back.
std::string veld_uit(const Veld& veld, const uint8_t* rec);
int64_t veld_getal(const uint8_t* bytes, int lengte, bool teken); // an integer of 1, 2 or 4 bytes
// The reverse; empty when it went in, else what is wrong with the value (the record is as it was).
std::string veld_in(const Veld& veld, std::string_view waarde, uint8_t* rec);

// The same of a text on its own; what has no place comes back as "?".
std::string tekst_uit(std::string_view bytes);
std::string tekst_in(std::string_view utf8);

// Key definition in the text form that IXUPDFCB takes, in UTF-8: "key1,NODUPS,C,5,14,I,1,4".
std::string sleuteltekst(const IXKEYDEF& sleutel);

} // namespace zg
