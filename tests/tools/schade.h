// Damages of a data directory, a row each, and what they are made of.
#pragma once
#include "shared/ioeti.h"
#include "shared/registerrec.h"
#include "support/demomap.h"

namespace zg::test {

template <class T> T haal(const DemoMap& map, const char* naam, size_t plaats) {
    T uit;
    memcpy(&uit, &lees_bestand(map.bestand(naam)).at(plaats), sizeof uit);
    return uit;
}

void plak(const DemoMap& map, const char* naam, const std::string& bytes); // a file of these bytes

struct Schade {
    const char* wat;
    std::function<void(const DemoMap&)> doe;
    std::vector<const char*> gezegd; // by the check, and again behind a repair; "repair: ...": by that alone
    bool te_herstellen;
};
extern const std::vector<Schade> SCHADES;            // each in a directory of its own
extern const std::vector<std::vector<Schade>> SAMEN; // those of a group in one

} // namespace zg::test
