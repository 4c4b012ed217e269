// The list of order/levterm.h.
#include "order/levterm.h"
#include "order/programma.h"
#include <algorithm>
#include <cstring>

namespace zg {

std::vector<levterm> levtermen;

namespace {

auto vanaf(uint16_t tot) {
    return std::lower_bound(levtermen.begin(), levtermen.end(), tot,
                            [](const levterm& t, uint16_t dag) { return t.tot < dag; });
}

// The term with that last date, end() when there is none.
auto zoek(uint16_t tot) {
    auto t = vanaf(tot);
    return t != levtermen.end() && t->tot == tot ? t : levtermen.end();
}

bool geef(const levterm& term, uint16_t* van, uint16_t* tot, int32_t* matrix) {
    *van = term.van;
    *tot = term.tot;
    if (matrix)
        lt_matrix(term, matrix);
    return true;
}

} // namespace

void lt_wis() {
    levtermen.clear();
}

void lt_schrijf(uint16_t van, uint16_t tot, const int32_t* matrix) {
    auto t = vanaf(tot);
    if (t == levtermen.end() || t->tot != tot)
        t = levtermen.insert(t, {van, tot, {}});
    t->van = van;
    t->cellen.clear();
    for (int filiaal = 0; filiaal < aantal_filialen; filiaal++)
        for (int maat = 1; maat <= MAAT_MAX; maat++) {
            int32_t aantal = matrix[filiaal * MAATKOLOMMEN + maat];
            if (aantal > 0)
                t->cellen.push_back({static_cast<uint8_t>(filiaal), static_cast<uint8_t>(maat), aantal});
        }
}

bool lt_lees(char modus, uint16_t* van, uint16_t* tot, int32_t* matrix) {
    auto t = vanaf(*tot);
    if (modus == 'N' && t != levtermen.end() && t->tot == *tot)
        ++t;
    if (t == levtermen.end() || (modus != 'N' && t->tot != *tot))
        return false;
    return geef(*t, van, tot, matrix);
}

bool lt_nr(int n, uint16_t* van, uint16_t* tot, int32_t* matrix) {
    if (n < 1 || n > lt_aantal())
        return false;
    return geef(levtermen[static_cast<size_t>(n - 1)], van, tot, matrix);
}

int lt_aantal() {
    return static_cast<int>(levtermen.size());
}

bool lt_bestaat(uint16_t tot) {
    return zoek(tot) != levtermen.end();
}

int lt_volgnr(uint16_t tot) {
    auto t = zoek(tot);
    return t == levtermen.end() ? 0 : static_cast<int>(t - levtermen.begin()) + 1;
}

bool lt_verzet(uint16_t oud_tot, uint16_t van, uint16_t tot) {
    auto t = zoek(oud_tot);
    if (t == levtermen.end() || (tot != oud_tot && lt_bestaat(tot)))
        return false;
    levterm term = std::move(*t);
    levtermen.erase(t);
    term.van = van;
    term.tot = tot;
    levtermen.insert(vanaf(tot), std::move(term));
    return true;
}

void lt_matrix(const levterm& term, int32_t* matrix) {
    memset(matrix, 0, matrix_cellen() * sizeof *matrix);
    lt_erbij(term, matrix);
}

void lt_erbij(const levterm& term, int32_t* matrix) {
    for (const levcel& cel : term.cellen) {
        matrix_cel(matrix, cel.filiaal, cel.maat) += cel.aantal;
        matrix_cel(matrix, cel.filiaal, 0) += cel.aantal;
        matrix_cel(matrix, aantal_filialen, cel.maat) += cel.aantal;
        matrix_cel(matrix, aantal_filialen, 0) += cel.aantal;
    }
}

} // namespace zg
