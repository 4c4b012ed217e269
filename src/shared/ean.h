// Bar codes: EAN-13 and EAN-8 texts, those of labels and those that the firm makes itself. Nothing here reads a file but
// the settings in instel15.
#pragma once
#include <cstdint>
#include <string>

namespace zg {

inline constexpr uint32_t EANNUMMER_MAX = 99'999'999; // of the running number in codes of sizes
bool ean_geldig(const char* tekst); // 8, 12 or 13 digits with a right sum; no label number of 8 digits
bool ean_prefix(const char* tekst); // begins with one of the prefixes that are not internal codes
bool ean_intern(
    const char* tekst);   // a valid code of the firm's own: 13 digits from a 2 on, but for such a prefix
int32_t etiket_hoogste(); // highest label number, by its digits
std::string ean_etiket(char letter, int32_t nummer);      // 13 digits; letter 'A' to 'Z', 0 for none
std::string ean_etiket_kort(int32_t nummer, int cijfers); // 13 or 8
int32_t ean_lees_etiket(const char* tekst);               // label number, -1 when it is none
// A code of the label programs: letter (0 for none) and number. A code of somebody else is 'E' with 0. False, and
// nothing filled in, for no code at all.
bool ean_lees_letter(const char* tekst, char* letter, int32_t* nummer);
std::string ean_maat(int32_t nummer);               // the code with a running number, 1 to 99999999
std::string ean_toon(const char* code, int ruimte); // as lists show it: a bad one is marked

} // namespace zg
