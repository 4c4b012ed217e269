// Module fmtab, see shared/fmtab.h.
#include "shared/fmtab.h"
#include "shared/report.h"
#include <algorithm>

namespace zg {

void fmclear(aantalmatrix* m) {
    m->assign(matrix_cellen(), 0);
}

void fmadd(aantalmatrix* m, int filiaal, int maat, int32_t aantal) {
    if (filiaal < 0 || filiaal >= firma.filialen || maat < 1 || maat > MATEN || m->size() != matrix_cellen())
        INTERNAL("fmtab", 0);
    for (int rij : {filiaal, int{firma.filialen}})
        for (int kolom : {maat, 0})
            matrix_cel(*m, rij, kolom) += aantal;
}

void fmset(aantalmatrix* m, int filiaal, int maat, int32_t aantal) {
    if (filiaal < 0 || filiaal >= firma.filialen || maat < 1 || maat > MATEN || m->size() != matrix_cellen())
        INTERNAL("fmtab", 0);
    fmadd(m, filiaal, maat, aantal - matrix_cel(*m, filiaal, maat));
}

void fmtotals(aantalmatrix* m) {
    if (m->size() != matrix_cellen())
        INTERNAL("fmtab", 1);
    auto past = [](int64_t som) {
        return static_cast<int32_t>(std::clamp<int64_t>(som, INT32_MIN, INT32_MAX));
    };
    int64_t totalen[MAATKOLOMMEN] = {};
    for (int f = 0; f < firma.filialen; f++) {
        int64_t som = 0;
        for (int maat = 1; maat <= MATEN; maat++) {
            som += matrix_cel(*m, f, maat);
            totalen[maat] += matrix_cel(*m, f, maat);
        }
        matrix_cel(*m, f, 0) = past(som);
        totalen[0] += som;
    }
    for (int maat = 0; maat <= MATEN; maat++)
        matrix_cel(*m, firma.filialen, maat) = past(totalen[maat]);
}

int fmwidth(const int32_t* rij) {
    int breedte = std::clamp<int>(instel15.breedte, 3, 5);
    for (int maat = 1; maat <= MATEN; maat++)
        breedte = std::max(breedte, rij[maat] > 9999 ? 5 : rij[maat] > 999 ? 4 : 3);
    return breedte;
}

int fmwidth(const aantalmatrix& m) {
    return fmwidth(matrix_totalen(m));
}

int een_filiaal(const aantalmatrix& m) {
    if (firma.filialen == 1)
        return 0;
    const int32_t totaal = matrix_totalen(m)[0];
    for (int f = 0; totaal != 0 && f < firma.filialen; f++)
        if (matrix_cel(m, f, 0) == totaal)
            return f;
    return firma.filialen;
}

} // namespace zg
