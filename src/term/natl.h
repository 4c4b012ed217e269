// National tables of code page 850: classes, case, compose sequences, and both directions to Unicode.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>

namespace zg {

enum Klasse : uint8_t {
    N_GROOT = 1,
    N_KLEIN = 2,
    N_CIJFER = 4,
    N_WIT = 8,
    N_LEESTEKEN = 16,
    N_CONTROL = 32,
    N_BLANCO = 64,
    N_HEX = 128
};
extern const std::array<uint8_t, 256> NKLASSE; // bits of Klasse
extern const std::array<uint8_t, 256> NKAST;   // the other case, else the byte itself
inline uint8_t NGROOT(uint8_t c) {
    return (NKLASSE[c] & N_KLEIN) ? NKAST[c] : c;
}
inline uint8_t NKLEIN(uint8_t c) {
    return (NKLASSE[c] & N_GROOT) ? NKAST[c] : c;
}

// Code of a compose sequence ("e'" gives 130), 0 when it isn't in the table.
int COMPOSE(const char* reeks);

// Unicode of a code page 850 byte: all 256 are distinct, control bytes map to themselves.
char32_t CP850UIT(uint8_t c);
// Byte of a Unicode character, with the honest substitutions (curly quotes, dashes); -1 when there is none.
int CP850IN(char32_t u);
// Without the substitutions: only exact pairs, so that a round trip loses nothing.
int CP850EXACT(char32_t u);
// One ASCII character for a byte of code page 850: letters without their accent, else the nearest sign.
char CP850BASIS(uint8_t c);
// Its letter in the line-drawing set of terminals, 0 for what is not there. Double lines become single ones.
char CP850LIJN(uint8_t c);
// Whole texts; CP850NAAR answers false when a character has no place (uit then holds '?' there).
std::string CP850UTF8(std::string_view tekst);
bool CP850NAAR(std::string_view utf8, std::string* uit);
// One character from at most n bytes of UTF-8, n from 1: its length and *u; 0 when bytes are still to come,
// -1 when they can't become one.
int UTF8TEKEN(const uint8_t* s, int n, char32_t* u);

void GROOT(char* s);                   // fold to upper case in place
std::string GROOTKOPIE(std::string s); // folded, up to a NUL in it
void BEGINGROOT(char* s);              // first non-blank character to upper case

} // namespace zg
