// System calls on files, noted at the table that all files go through, so that the very same calls can be made again
// without the program around them: the floor under a measured operation.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace spoor {

enum Soort : uint8_t {
    OPEN,
    SLUIT,
    LEES,
    SCHRIJF,
    LEES_VERDER, // read and write at the descriptor's place
    SCHRIJF_VERDER,
    SLOT,
    STAT,
    LENGTE,
    SYNC,
    HERNOEM,
    WIS
};

struct Aanroep {
    Soort soort;
    int8_t letter;        // lock type for SLOT
    int16_t opdracht;     // F_SETLK or another
    int32_t fd;           // as it was; of OPEN the new one
    int64_t plaats, n;    // of OPEN the flags
    const char *pad, *nu; // names, where the call has them
};

void begin(); // the table is led through here until `einde`
std::vector<Aanroep> einde();

// Make the calls again on copies of the files, made before the calls were: seconds for all of them. Names are looked up in
// the present directory.
// `van`: descriptor as it was; `kopie`: the file to use in its place.
struct Naar {
    int32_t van;
    std::string kopie;
};
// Copy a file in writes of 4,096 bytes: the system then keeps the copy in memory in pages as small as those of a
// file that has grown record by record, and reading it costs the same.
void kopieer(const std::string& van, const std::string& naar);
// Everything out of the processor's caches: each turn begins as cold as the others, and so does its floor.
void koel();
double klok(); // seconds of processor time of this process
double herhaal(const std::vector<Aanroep>& lijst, const std::vector<Naar>& naar);

} // namespace spoor
