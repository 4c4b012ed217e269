// The list of order/levterm.h.
#include "order/levterm.h"
#include <algorithm>

namespace zg {

namespace {

template <class L> auto vanaf(L& termen, uint16_t tot) {
    return std::lower_bound(termen.begin(), termen.end(), tot,
                            [](const levterm& t, uint16_t dag) { return t.tot < dag; });
}

// The term with that last date, end() when there is none.
template <class L> auto zoek(L& termen, uint16_t tot) {
    auto t = vanaf(termen, tot);
    return t != termen.end() && t->tot == tot ? t : termen.end();
}

bool geef(const levterm& term, uint16_t* van, uint16_t* tot, aantalmatrix* matrix) {
    *van = term.van;
    *tot = term.tot;
    if (matrix) {
        fmclear(matrix);
        lt_erbij(term, matrix);
    }
    return true;
}

} // namespace

void lt_schrijf(levtermen* termen, uint16_t van, uint16_t tot, const aantalmatrix& matrix) {
    auto t = vanaf(*termen, tot);
    if (t == termen->end() || t->tot != tot)
        t = termen->insert(t, {van, tot, {}});
    t->van = van;
    t->cellen.clear();
    for (int filiaal = 0; filiaal < firma.filialen; filiaal++)
        for (int maat = 1; maat <= MATEN; maat++) {
            int32_t aantal = matrix_cel(matrix, filiaal, maat);
            if (aantal > 0)
                t->cellen.push_back({static_cast<uint8_t>(filiaal), static_cast<uint8_t>(maat), aantal});
        }
}

bool lt_lees(const levtermen& termen, char modus, uint16_t* van, uint16_t* tot, aantalmatrix* matrix) {
    auto t = vanaf(termen, *tot);
    if (modus == 'N' && t != termen.end() && t->tot == *tot)
        ++t;
    if (t == termen.end() || (modus != 'N' && t->tot != *tot))
        return false;
    return geef(*t, van, tot, matrix);
}

bool lt_nr(const levtermen& termen, int n, uint16_t* van, uint16_t* tot, aantalmatrix* matrix) {
    if (n < 1 || n > std::ssize(termen))
        return false;
    return geef(termen[static_cast<size_t>(n - 1)], van, tot, matrix);
}

bool lt_bestaat(const levtermen& termen, uint16_t tot) {
    return zoek(termen, tot) != termen.end();
}

int lt_volgnr(const levtermen& termen, uint16_t tot) {
    auto t = zoek(termen, tot);
    return t == termen.end() ? 0 : static_cast<int>(t - termen.begin()) + 1;
}

bool lt_verzet(levtermen* termen, uint16_t oud_tot, uint16_t van, uint16_t tot) {
    auto t = zoek(*termen, oud_tot);
    if (t == termen->end() || (tot != oud_tot && lt_bestaat(*termen, tot)))
        return false;
    levterm term = std::move(*t);
    termen->erase(t);
    term.van = van;
    term.tot = tot;
    termen->insert(vanaf(*termen, tot), std::move(term));
    return true;
}

void lt_erbij(const levterm& term, aantalmatrix* matrix) {
    for (const levcel& cel : term.cellen)
        fmadd(matrix, cel.filiaal, cel.maat, cel.aantal);
}

} // namespace zg
