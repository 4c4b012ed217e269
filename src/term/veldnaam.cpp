// The name of a field: its label, as the user sees it in front of it.
#include "term/binnen.h"
#include "term/natl.h"
#include "term/veld.h"
#include <algorithm>
#include <vector>

namespace zg {
namespace {

// Labels are dim, and their hot letters underlined.
bool is_label(const cchar_t& c) {
    return (c.attr & (A_DIM | A_UNDERLINE)) && c.chars[0] != L' ';
}

// The byte that this cell shows.
char byte_van(const cchar_t& cel) {
    for (int c = ' '; c <= 255; c++)
        if (const TekenCel t = TEKENSETUIT(static_cast<uint8_t>(c)); !t.lijn && t.teken == cel.chars[0])
            return static_cast<char>(c);
    return ' ';
}

} // namespace

std::string VELDNAAM() {
    if (!SCHERM.bestaat || SCHERM.kolom < 2 || !WINAT(SCHERM.rij, SCHERM.kolom))
        return "";
    WINDOW* win = VENSTERNU().win;
    const int rij = getcury(win), rand = VENSTERNU().rand;
    std::vector<cchar_t> cellen(static_cast<size_t>(getmaxx(win)) + 1);
    mvwin_wchnstr(win, rij, rand, cellen.data(), SCHERM.kolom - 1);
    // Back over values and blanks to the nearest label; it ends at two blanks, or at a value.
    int eind = SCHERM.kolom - 1;
    const auto cel = [&](int k) -> const cchar_t& { return cellen[static_cast<size_t>(k)]; };
    while (eind > 0 && !is_label(cel(eind - 1)))
        eind--;
    // The colon of a short label may stand apart, under those of the others.
    int eerder = eind;
    while (eerder > 0 && (cel(eerder - 1).chars[0] == L':' || cel(eerder - 1).chars[0] == L' '))
        eerder--;
    if (eerder > 0 && is_label(cel(eerder - 1)))
        eind = eerder;
    int begin = eind;
    while (begin > 0 && (is_label(cel(begin - 1)) ||
                         (begin > 1 && cel(begin - 1).chars[0] == L' ' && is_label(cel(begin - 2)))))
        begin--;
    std::string naam;
    for (int k = begin; k < eind; k++)
        naam += byte_van(cel(k));
    naam.erase(naam.find_last_not_of(" :.") + 1);
    // A number alone is that of a row in a grid.
    const bool letters = std::any_of(naam.begin(), naam.end(), [](char c) {
        return NKLASSE[static_cast<uint8_t>(c)] & (N_GROOT | N_KLEIN);
    });
    return letters ? naam : "";
}

} // namespace zg
