// The character set of the terminal, and both directions between it and code page 850: UTF-8, a set of one byte
// a character that iconv knows, or nothing but ASCII. ZGTEKENSET names it, else the locale does. curses gets
// Unicode on a UTF-8 terminal and otherwise the very byte that the terminal is to get.
#include "term/tekenset.h"
#include "term/binnen.h"
#include "term/natl.h"
#include "term/teksten.h"
#include <array>
#include <cctype>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iconv.h>
#include <langinfo.h>
#include <utility>

namespace zg {
namespace {

enum class Soort { ASCII, TABEL, UTF8 };
Soort soort;
std::array<char32_t, 128> hoog;   // TABEL: the characters of bytes 128 to 255, 0 for none
std::array<TekenCel, 256> cellen; // what each byte of code page 850 is drawn as
std::string melding;

bool is_utf8(const std::string& naam) {
    std::string kaal;
    for (char c : naam)
        if (c != '-' && c != '_')
            kaal += static_cast<char>(toupper(static_cast<unsigned char>(c)));
    return kaal == "UTF8";
}

// One byte of an iconv set as a character; 0 when it isn't one by itself.
char32_t via_iconv(iconv_t set, unsigned b) {
    char in = static_cast<char>(b), *p = &in;
    char32_t u = 0;
    char* q = reinterpret_cast<char*>(&u);
    size_t nin = 1, nuit = sizeof u;
    iconv(set, nullptr, nullptr, nullptr, nullptr);
    return iconv(set, &p, &nin, &q, &nuit) == 0 && nuit == 0 ? u : 0;
}

// The table of a set; false when nobody knows it or when it has other characters where ASCII is.
bool neem_tabel(const std::string& naam) {
    iconv_t set = iconv_open("UTF-32LE", naam.c_str());
    if (set == reinterpret_cast<iconv_t>(-1))
        return false;
    bool goed = true, iets = false;
    for (unsigned b = 32; b < 127; b++)
        goed = goed && via_iconv(set, b) == b;
    for (unsigned b = 128; b < 256; b++) {
        hoog[b - 128] = via_iconv(set, b);
        iets = iets || hoog[b - 128] != 0;
    }
    iconv_close(set);
    if (goed)
        soort = iets ? Soort::TABEL : Soort::ASCII;
    return goed;
}

// Sets `soort` from a name; false when it says nothing.
bool neem(const std::string& naam) {
    if (!is_utf8(naam))
        return !naam.empty() && neem_tabel(naam);
    soort = Soort::UTF8;
    return true;
}

// The set in a locale's name: a locale that this machine doesn't have installed still says what the terminal is.
std::string set_van_naam() {
    std::string naam;
    for (const char* variabele : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char* w = getenv(variabele); w && *w && naam.empty())
            naam = w;
    size_t punt = naam.find('.'), at = naam.find('@');
    if (punt != std::string::npos && punt < at)
        return naam.substr(punt + 1, at == std::string::npos ? at : at - punt - 1);
    return at != std::string::npos && naam.substr(at) == "@euro" ? "ISO-8859-15" : "";
}

std::string set_van_locale() {
    return setlocale(LC_CTYPE, "") ? nl_langinfo(CODESET) : set_van_naam();
}

void kies() {
    soort = Soort::ASCII;
    const char* wens = getenv("ZGTEKENSET");
    const std::string plaatselijk = set_van_locale();
    if (wens && *wens) {
        if (neem(wens))
            return;
        char tekst[80];
        snprintf(tekst, sizeof tekst, TXT(T_TEKENSET_ONBEKEND), wens);
        melding = tekst;
    }
    const bool goed = neem(plaatselijk);
    if ((!goed || soort == Soort::ASCII) && melding.empty())
        melding = TXT(T_TEKENSET_GEEN);
}

TekenCel cel_van(uint8_t c) {
    if (c < 32 || c == 127 || c == 255)
        return {L' ', 0};
    const char32_t u = c == 0xF0 ? '-' : CP850UIT(c); // a soft hyphen would not be seen
    if (u < 127 || soort == Soort::UTF8)
        return {static_cast<wchar_t>(u), 0};
    for (size_t i = 0; soort == Soort::TABEL && i < hoog.size(); i++)
        if (hoog[i] == u)
            return {static_cast<wchar_t>(128 + i), 0};
    return {static_cast<wchar_t>(CP850BASIS(c)), CP850LIJN(c)};
}

} // namespace

void TEKENSET() {
    kies();
    const bool utf8 = soort == Soort::UTF8;
    if (!utf8)
        setlocale(LC_CTYPE, "C"); // bytes go through curses as they are
    else if (!is_utf8(nl_langinfo(CODESET)))
        setlocale(LC_CTYPE, "C.UTF-8");
    for (unsigned c = 0; c < 256; c++)
        cellen[c] = cel_van(static_cast<uint8_t>(c));
}

std::string ACHTBITSSET() {
    const std::string naam = set_van_locale();
    return neem(naam) && soort == Soort::TABEL ? naam : "";
}

void TEKENSETNEEMAAN() {
    setenv("ZGTEKENSET", "UTF-8", 1);
    melding = TXT(T_TEKENSET_TUSSEN);
}

std::string TEKENSETMELDING() {
    return std::exchange(melding, std::string());
}

bool UTF8SCHERM() {
    return soort == Soort::UTF8;
}

bool TABELSCHERM() {
    return soort == Soort::TABEL;
}

char32_t TEKENSETIN(uint8_t b) {
    return b < 128 ? b : soort == Soort::TABEL ? hoog[b - 128] : 0;
}

TekenCel TEKENSETUIT(uint8_t c) {
    return cellen[c];
}

std::string TEKENSETTEKST(std::string_view tekst) {
    std::string uit;
    for (const char c : tekst)
        TEKENUIT(uit, TEKENSETUIT(static_cast<uint8_t>(c)).teken);
    return uit;
}

} // namespace zg
