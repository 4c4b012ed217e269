// Field input: INGAVE edits one variable of the caller in one field, described by a format ("20c,E") in the
// language of term/formaat.cpp. The leaving key is in SCHERM.laatste, the flags in SCHERM.vlag.
#pragma once
#include "term/scherm.h"
#include "term/toets.h"
#include <bitset>
#include <cstddef>
#include <type_traits>

namespace zg {

// Settings of the next field, emptied by INGAVE. minimum 0.0 with maximum -1.0: no range set.
struct Instel {
    std::bitset<512> toe;
    double minimum = 0.0, maximum = -1.0;
    void* extra = nullptr;
    uint32_t check = 0;           // bit s: table key s leaves through validation
    const Tekst* uitleg[12] = {}; // what F1 to F12 do here, for the help
};
// The current settings; always there, also before SCRINIT.
extern Instel INSTEL;

// A copy of the current settings to put back before each turn of a loop; null when out of memory.
Instel* INSTELNEW(int size);
void INSTELSET(const Instel* instel);
void INSTELDEL(Instel* instel);
// Empty the current settings: no keys, no range. The side buffer stays.
void INSTELLEEG();

inline constexpr int INGAVEMAX = 272;
extern char ingavetekst[INGAVEMAX]; // working text of the field, readable until the next one
extern double ingavewaarde;

// The call behind INGAVE: all arguments but the last are pointers into SCHERM.toets, the last is the variable.
// Answers 1 when the value changed.
int INGAVEDOE(int rij, int kolom, const char* formaat, const void* const* argumenten, int aantal);

// INGAVE(row, column, format, key..., variable). The variable's type follows from the type letter:
// B l: int32_t; D d u: 16 bits; U b n: 8 bits; f: double; c C x X: char[width]; s S: char[width + 1].
// The new value is stored also when the flag 0x04 is clear; CANCEL and ESC leave the old one. A wrong format
// stops the program with "INGAVE(): r=%d, c=%d, cs=%s --> %s ".
template <class... A> int INGAVE(int rij, int kolom, const char* formaat, A... rest) {
    static_assert(sizeof...(rest) >= 1 && (std::is_pointer_v<A> && ...), "key pointers, then the variable");
    const void* argumenten[] = {static_cast<const void*>(rest)...};
    return INGAVEDOE(rij, kolom, formaat, argumenten, static_cast<int>(sizeof...(rest)));
}

// Everything that a nested dialog would overwrite in an open field: saved and put back around it.
struct Veldstand;
Veldstand* VELDBEWAAR();
void VELDHERSTEL(Veldstand* stand);

} // namespace zg
