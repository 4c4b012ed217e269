// The table of macros, pair MACRO in the directory of that environment variable (63 characters at most, the present
// directory without it). Made on first use, its index made again when that is gone or damaged; nothing here stops the
// program. It is opened for one operation at a time. docs/formats.md has the record.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

inline constexpr int MACROTOETSEN = 100;

// Also the play buffer in memory: then `toetsen` is a stack, the next key on top.
struct [[gnu::packed]] mac_rec {
    uint16_t toets; // letter or digit; small, of those below 128
    uint16_t gebruiker;
    uint16_t aantal;
    uint16_t toetsen[MACROTOETSEN];
    char omschrijving[30]; // NUL ended
};
static_assert(sizeof(mac_rec) == 236 && offsetof(mac_rec, toetsen) == 6 &&
              offsetof(mac_rec, omschrijving) == 206);

// The key as it stands in a record, 0 when it is no letter or digit.
uint16_t MACROTOETS(int32_t toets);
// A code that a macro may hold: a key, but none that ends the program or the recording, or that the terminal makes itself.
bool MACROCODE(int32_t code);
// Can it be played: a key, 1 to 100 codes, all of them such?
bool MACROGAAF(const mac_rec& rec);
std::string MACROOMSCHRIJVING(const mac_rec& rec); // up to its NUL

// Name of the pair, with its directory; empty with errno set when MACRO is too long.
std::string MACROPAD();

// All answer -1 with errno set when the table can't be had: EINVAL when it holds something else, ENAMETOOLONG when MACRO
// is too long, else what the system says.
int MACROLEES(uint16_t gebruiker, std::vector<mac_rec>* uit);    // his, or all with 0, by key and user; 1
int MACROZOEK(uint16_t toets, uint16_t gebruiker, mac_rec* uit); // 1 found, else 0
int MACROSCHRIJF(const mac_rec& rec);             // new or over the old one; 0 refused, and told
int MACROWEG(uint16_t toets, uint16_t gebruiker); // 1 gone, 0 not there or refused (told)

} // namespace zg
