// Loading, saving and restoring order lines, see order/regel.h. Writing them is order/wrkregel.cpp's.
#include "order/regel.h"
#include "order/meld.h"
#include "order/wrk.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cmath>
#include <cstring>

namespace zg {

regelprijzen regel_prijzen;

namespace {

inline constexpr int32_t PRIJS_GEEN = INT32_MAX; // a size in the row whose price is not known yet

int32_t klem(double waarde) {
    double heel = std::round(waarde);
    return heel >= INT32_MAX ? INT32_MAX - 1 : heel <= INT32_MIN ? INT32_MIN : static_cast<int32_t>(heel);
}

// The work file's place and the images that a walk overwrites, put back at the end.
struct plaatsbewaarder {
    int32_t offset = werk->offset;
    char tag = werk->tag;
    ordmodel m = model;
    orddessin d = dessin;
    ~plaatsbewaarder() {
        werk->offset = offset;
        werk->tag = tag;
        model = m;
        dessin = d;
    }
    plaatsbewaarder() = default;
    plaatsbewaarder(const plaatsbewaarder&) = delete;
    plaatsbewaarder& operator=(const plaatsbewaarder&) = delete;
};

// Offsets out of the index are not trusted: the tag is looked at before anything is read through the handle,
// which would stop the program on what it takes for a damaged file.
bool ga_naar(int32_t offset, char tag) {
    char staat = 0;
    if (offset < 0 || SYSLEES(werk->fd, &staat, 1, offset) != 1 || staat != tag)
        return false;
    werk->offset = offset;
    return ord_lees(werk, 'R');
}

void laad_maat(regelprijzen* p, int* laatste) {
    int maat = maatrec.maat;
    if (maat < 1 || maat > MAAT_MAX)
        ord_inconsistent(werk, werk->offset, werk->tag);
    p->bruto[maat] = maatrec.bruto;
    p->opgeslagen[maat] = maatrec.netto;
    p->netto[maat] = p->geladen[maat] = netto_uit_opslag(maatrec.netto, kop.korting);
    *laatste = maat;
}

// Sum cells of one branch and size, in order; false when one does not fit.
bool orden_cellen(std::vector<levcel>* cellen) {
    std::stable_sort(cellen->begin(), cellen->end(), [](const levcel& a, const levcel& b) {
        return a.filiaal != b.filiaal ? a.filiaal < b.filiaal : a.maat < b.maat;
    });
    size_t uit = 0;
    for (const levcel& cel : *cellen) {
        if (uit && (*cellen)[uit - 1].filiaal == cel.filiaal && (*cellen)[uit - 1].maat == cel.maat) {
            int64_t som = int64_t{(*cellen)[uit - 1].aantal} + cel.aantal;
            if (som > INT32_MAX)
                return false;
            (*cellen)[uit - 1].aantal = static_cast<int32_t>(som);
        } else {
            (*cellen)[uit++] = cel;
        }
    }
    cellen->resize(uit);
    return true;
}

// Terms by last date. Two with the same one become one, with the earliest first date; the matrix is the sum
// of all. A total that does not fit in 32 bits is damage.
void orden_termen(regelgebied* g, int32_t regelplaats) {
    std::stable_sort(g->termen.begin(), g->termen.end(),
                     [](const levterm& a, const levterm& b) { return a.tot < b.tot; });
    std::vector<levterm> uit;
    for (levterm& term : g->termen) {
        if (uit.empty() || uit.back().tot != term.tot) {
            uit.push_back(std::move(term));
            continue;
        }
        uit.back().van = std::min(uit.back().van, term.van);
        uit.back().cellen.insert(uit.back().cellen.end(), term.cellen.begin(), term.cellen.end());
    }
    int64_t totaal = 0;
    for (levterm& term : uit) {
        bool past = orden_cellen(&term.cellen);
        for (const levcel& cel : term.cellen)
            totaal += cel.aantal;
        if (!past || totaal > INT32_MAX)
            ord_inconsistent(werk, regelplaats, 'D');
        lt_erbij(term, g->aantallen.data());
    }
    g->termen = std::move(uit);
}

void laad_onderdelen(regelgebied* g, int32_t regelplaats) {
    int maat = 0;
    size_t term = SIZE_MAX;
    while (ord_kind(werk, 'D')) {
        switch (werk->tag) {
        case 'S':
            laad_maat(&g->prijzen, &maat);
            break;
        case 'E':
        case 'B': {
            regelextra extra{static_cast<uint8_t>(maat), werk->tag, {}};
            if (!maat)
                ord_inconsistent(werk, werk->offset, werk->tag);
            memcpy(extra.inhoud, ord_beeld(werk->tag), sizeof extra.inhoud);
            g->prijzen.extra.push_back(extra);
            break;
        }
        case 'L':
            term = g->termen.size();
            g->termen.push_back({levtrec.eerste, levtrec.laatste, {}});
            break;
        case 'F':
            if (term == SIZE_MAX || filrec.filiaal >= aantal_filialen || filrec.maat < 1 ||
                filrec.maat > MAAT_MAX || filrec.aantal < 0)
                ord_inconsistent(werk, werk->offset, werk->tag);
            if (filrec.aantal)
                g->termen[term].cellen.push_back({filrec.filiaal, filrec.maat, filrec.aantal});
            break;
        default:
            break; // T: regel_teksten
        }
    }
    orden_termen(g, regelplaats);
}

} // namespace

int32_t netto_uit_opslag(int32_t opgeslagen, int16_t korting) {
    int32_t p = klem(opgeslagen + double{1} * opgeslagen * korting / 10000);
    return p ? p : 1;
}

int32_t netto_voor_opslag(int32_t netto, int16_t korting) {
    // At a discount of the whole price there is nothing to compute it back from.
    double deel = 100 + korting / 100.0;
    return korting == -10000 ? netto : klem(netto * 100.0 / deel);
}

int32_t regel_bruto_opslag(int maat) {
    int32_t p = regel_prijzen.bruto[maat];
    return p == PRIJS_GEEN ? 0 : p;
}

int32_t regel_netto_opslag(int maat) {
    int32_t p = regel_prijzen.netto[maat];
    if (p == regel_prijzen.geladen[maat] && p)
        return regel_prijzen.opgeslagen[maat];
    return p == PRIJS_GEEN ? 0 : netto_voor_opslag(p, kop.korting);
}

void regel_wis() {
    regel_prijzen = {};
    lt_wis();
    for (int32_t* matrix : {nota_aantallen, order_aantallen, werk_aantallen})
        if (matrix)
            memset(matrix, 0, matrix_cellen() * sizeof *matrix);
}

bool regel_lees_in(const ors_ingang& ingang, regelgebied* gebied) {
    *gebied = {};
    gebied->aantallen.assign(matrix_cellen(), 0);
    plaatsbewaarder bewaard;
    if (!ga_naar(ingang.m, 'M'))
        return false;
    gebied->model = model;
    if (!ga_naar(ingang.d, 'D'))
        return false;
    gebied->dessin = dessin;
    if (!registermodus)
        laad_onderdelen(gebied, ingang.d);
    return true;
}

bool regel_lees(const ors_ingang& ingang) {
    regelgebied gebied;
    regel_wis();
    if (!regel_lees_in(ingang, &gebied))
        return false;
    regel_zet(gebied);
    if (ORDERHAKEN.advies_laad)
        ORDERHAKEN.advies_laad(&dessin);
    return true;
}

bool regel_teksten(const ors_ingang& ingang, char* model_blok, char* dessin_blok) {
    plaatsbewaarder bewaard;
    if (model_blok && (!ga_naar(ingang.m, 'M') || !ord_tekst_lees(werk, 3, model_blok)))
        return false;
    return !dessin_blok || (ga_naar(ingang.d, 'D') && ord_tekst_lees(werk, 4, dessin_blok));
}

void regel_bewaar(regelgebied* gebied) {
    gebied->model = model;
    gebied->dessin = dessin;
    gebied->prijzen = regel_prijzen;
    gebied->termen = levtermen;
    if (order_aantallen)
        gebied->aantallen.assign(order_aantallen, order_aantallen + matrix_cellen());
}

void regel_zet(const regelgebied& gebied) {
    model = gebied.model;
    dessin = gebied.dessin;
    regel_prijzen = gebied.prijzen;
    levtermen = gebied.termen;
    if (order_aantallen && gebied.aantallen.size() == matrix_cellen())
        std::copy(gebied.aantallen.begin(), gebied.aantallen.end(), order_aantallen);
}

} // namespace zg
