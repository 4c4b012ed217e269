// What the terminal shows and where it stands, and the bytes that bring it from there to elsewhere. Rows and
// columns count from 0. uitvoer.cpp makes the bytes, beeld.cpp decides which cells need them.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace zg {

inline constexpr int BEELDRIJEN = 43, BEELDKOLOMMEN = 132; // the largest variant of each

enum Eigenschap : uint8_t { E_VET = 1, E_DIM = 2, E_KEUS = 4, E_KNIPPER = 8, E_STREEP = 16, E_LIJN = 32 };

struct Stijl {
    uint8_t eigenschappen = 0;
    int8_t voor = -1, achter = -1; // colour numbers, -1 the terminal's own
    bool operator==(const Stijl&) const = default;
};

struct Cel {
    wchar_t teken = 0; // 0: not known
    Stijl stijl;
};

struct Stand {
    Cel cel[BEELDRIJEN][BEELDKOLOMMEN];
    int rij = -1, kolom = -1; // of the cursor; -1: not known
    Stijl stijl;
    bool stijl_bekend = false;
    int cursor = -1; // 1 shown, 0 hidden, -1 not known
};

// The strings of the active description; first of all, and again after each change of variant.
void UITVOERLEER();
// What the terminal can't show is left out of a style, so that two cells differ only where that can be seen.
Stijl UITVOERKAN(const Stijl& stijl);
// Do two cells look the same? Of a blank only the ground shows.
bool ZELFDEBEELD(const Cel& a, const Cel& b);

// Each adds bytes to `uit` and brings `s` along.
void UITVOERPLAATS(std::string& uit, Stand& s, int rij, int kolom,
                   int kolommen);                                          // the cursor, by the shortest way
void UITVOERCEL(std::string& uit, Stand& s, const Cel& cel, int kolommen); // a cell at the cursor
void UITVOERWIS(std::string& uit, Stand& s);              // the whole screen, in the terminal's own colours
void UITVOERCURSOR(std::string& uit, Stand& s, bool aan); // shown or hidden
void UITVOERGEWOON(std::string& uit, Stand& s);           // no attributes, no colours

// A string of the active description without its waiting times; empty when it has none.
std::string CAPACITEIT(const char* naam);
// Bytes to the terminal, all of them; given up when it is gone. May be called from a signal handler.
void SCHRIJFUIT(const char* bytes, size_t n);

} // namespace zg
