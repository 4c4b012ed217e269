// The system calls of the store, counted and remembered, so that the very same calls can be made again without
// the store around them: the floor under a measured operation.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace spoor {

enum Soort : uint8_t { LEES, SCHRIJF, SLOT, STAT, LENGTE, SOORTEN };

struct Aanroep {
    Soort soort;
    int8_t letter; // lock type for SLOT
    bool vraag;    // F_GETLK
    int32_t fd;
    int64_t plaats, n;
};

void begin();
std::vector<Aanroep> einde();

// Make the calls again on copies of the files, made before the calls were: seconds for all of them.
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
double herhaal(const std::vector<Aanroep>& lijst, const std::vector<Naar>& naar);

} // namespace spoor
