// Module fmtab, see shared/fmtab.h.
#include "shared/fmtab.h"
#include "shared/report.h"

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

} // namespace zg
