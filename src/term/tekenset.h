// The character set of the terminal: which it is, and both directions between it and code page 850.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace zg {

// Choose it from ZGTEKENSET or the locale and set LC_CTYPE to go with it. Before the terminal is opened.
void TEKENSET();
// What the user should be told about the choice, once; empty when there is nothing.
std::string TEKENSETMELDING();

bool UTF8SCHERM();  // the terminal takes UTF-8
bool TABELSCHERM(); // it has a set of one byte a character; neither: nothing but ASCII is known of it

// The Unicode character of a byte of the terminal, 0 for none. Not for UTF-8.
char32_t TEKENSETIN(uint8_t b);

// What is drawn for a byte of code page 850: a line-drawing character of curses where `lijn` is not 0, else
// `teken`: on UTF-8 Unicode, otherwise a byte. Never a control. Letters that the set lacks lose their accent.
struct TekenCel {
    wchar_t teken;
    char lijn;
};
TekenCel TEKENSETUIT(uint8_t c);
// A text as it is written elsewhere on such a terminal: what was typed as the name of a file gets this one.
std::string TEKENSETTEKST(std::string_view tekst);

} // namespace zg
