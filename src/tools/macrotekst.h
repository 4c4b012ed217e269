// Macros as text: one line a macro, the same in zgmacro's list and in the files that it loads. UTF-8.
//
//   macro USER KEY omschrijving=TEXT toetsen=KEYS
//
// KEYS are characters, and names or numbers of keys between < >: "2016<Enter><Down><lt>". In TEXT a "\" and two hex digits
// is that byte of code page 850.
#pragma once
#include "term/macro/macrobestand.h"
#include <string>
#include <vector>

namespace zg {

std::string macro_toetsen(const mac_rec& rec); // KEYS; codes that no key has as their numbers
std::string macro_toetsnaam(uint16_t toets);
std::string macro_regel(const mac_rec& rec); // without a line feed
// The record of a line's words (druk_woorden); what is wrong with them, or empty.
std::string macro_ontleed(const std::vector<std::string>& woorden, mac_rec* rec);
// A user's number and a key's character; 0 for what is none.
uint16_t macro_gebruiker(const std::string& woord);
uint16_t macro_toets(const std::string& woord);

} // namespace zg
