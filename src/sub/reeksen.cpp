// Size runs and the rows of a matrix: which are used, laid on branches, taken off again.
#include "sub/reeksen.h"
#include "shared/filveld.h"
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/reeksdelen.h"
#include "sub/teksten.h"
#include "term/scherm.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <numeric>

namespace zg {
namespace {

int32_t binnen(int64_t n) {
    return static_cast<int32_t>(std::clamp<int64_t>(n, INT32_MIN, INT32_MAX));
}

reeksrij rij_van(const aantalmatrix& m, int filiaal) {
    reeksrij rij;
    std::copy_n(m.data() + matrix_plaats(filiaal, 0), MAATKOLOMMEN, rij.begin());
    return rij;
}

} // namespace

std::vector<reeksrij> reeks_gebruikt(const aantalmatrix& matrix) {
    std::vector<int> over;
    for (int f = 0; f < firma.filialen; f++)
        if (matrix_cel(matrix, f, 0) > 0)
            over.push_back(f);
    std::stable_sort(over.begin(), over.end(),
                     [&](int a, int b) { return matrix_cel(matrix, a, 0) > matrix_cel(matrix, b, 0); });
    std::vector<reeksrij> uit;
    for (int f : over) {
        const reeksrij rij = rij_van(matrix, f);
        if (std::find(uit.begin(), uit.end(), rij) == uit.end())
            uit.push_back(rij);
    }
    return uit;
}

void reeks_branches(const aantalmatrix& matrix, const reeksrij& rij, uint8_t* filialen) {
    memset(filialen, 0, 32);
    for (int f = 0; f < firma.filialen; f++)
        if (rij_van(matrix, f) == rij)
            fil_erbij(filialen, f);
}

void reeks_toekennen(aantalmatrix* matrix, const reeksrij& rij, const uint8_t* filialen) {
    for (int f = 0; f < firma.filialen; f++)
        if (fil_in(filialen, f))
            std::copy(rij.begin(), rij.end(), &matrix_cel(*matrix, f, 0));
}

void reeks_wissen(aantalmatrix* matrix, const uint8_t* filialen) {
    reeks_toekennen(matrix, reeksrij{}, filialen);
}

void reeks_over(const aantalmatrix& matrix, reeksrij* over) {
    for (int maat = 0; maat < MAATKOLOMMEN; maat++) {
        int64_t rest = matrix_cel(matrix, firma.filialen, maat);
        for (int f = 0; f < firma.filialen; f++)
            rest -= matrix_cel(matrix, f, maat);
        (*over)[static_cast<size_t>(maat)] = binnen(rest);
    }
}

void reeks_tel(reeksrij* rij) {
    (*rij)[0] = binnen(std::accumulate(rij->begin() + 1, rij->end(), int64_t{0}));
}

std::string reeks_soortnaam(uint8_t maatsoort) {
    char tekst[64];
    snprintf(tekst, sizeof tekst, "%s %d %-.20s", TXT(T_MS_MAATSOORT), maatsoort,
             lijstnaam(MAATSOORTTABEL, {maatsoort, ""}).c_str());
    return tekst;
}

bool reeks_geen_maten(uint8_t maatsoort) {
    if (balk_kolommen() > 0)
        return false;
    error("%s %hu: %s", TXT(T_MAAT_NUMMER), maatsoort, TXT(T_MAAT_GEEN_MATEN));
    return true;
}

} // namespace zg
