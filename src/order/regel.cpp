// Loading order lines, see order/regel.h. Writing them is order/wrkregel.cpp's.
#include "order/regel.h"
#include "order/meld.h"
#include "order/programma.h"
#include "order/wrk.h"
#include "shared/report.h"
#include <algorithm>
#include <cstring>

namespace zg {

orderregel regel_nu;
bool regel_is_nieuw;

namespace {

inline constexpr size_t REGELBLOK = 16 * 1024; // bytes of a read: a page of lines

// The record that an entry of the index points at. Entries are not trusted: another tag there is an answer,
// the right one cut short is damage.
bool kop_record(regelloop* loop, int32_t plaats, char tag, void* beeld) {
    if (plaats < 0)
        return false;
    ordrauw r;
    ordloop_naar(&loop->loop, plaats);
    loopstand stand = ordloop_volgende(&loop->loop, &r);
    if (stand == LOOP_FOUT)
        IOLEESFOUT(loop->loop.fd);
    if (stand == LOOP_EINDE || r.tag != tag)
        return false;
    if (stand != LOOP_RECORD)
        ord_inconsistent(werk, plaats, tag);
    memcpy(beeld, r.data + 1, r.lengte - 1);
    return true;
}

// The piece of text in a T record behind those of the block; another kind, or too many, is passed over.
void tekst_erbij(const ordrauw& r, uint8_t soort, char* blok, size_t* stukken) {
    ordtekst t;
    memcpy(&t, r.data + 1, sizeof t);
    if (t.soort == soort && *stukken < TEKSTSTUKKEN)
        memcpy(blok + sizeof t.tekst * (*stukken)++, t.tekst, sizeof t.tekst);
}

bool lees_model(regelloop* loop, int32_t plaats) {
    if (plaats == loop->m)
        return true; // lines of one model share it
    loop->m = -1;
    memset(loop->tekst, 0, BLOKLEN);
    if (!kop_record(loop, plaats, 'M', &loop->model))
        return false;
    size_t stukken = 0;
    ordrauw r;
    while (ord_verder(werk, &loop->loop, &r) && r.tag == 'T')
        tekst_erbij(r, 3, loop->tekst, &stukken);
    loop->m = plaats;
    return true;
}

// What a stored net price reads as.
int32_t netto_gelezen(int32_t opslag) {
    return opslag == PRIJS_ONBEKEND ? PRIJS_ONBEKEND : toeslag_erbij(opslag, kop.korting);
}

// False: no such size.
bool in_opslag(const ordrauw& r, regelopslag* opslag, uint8_t* maat) {
    ordmaat s;
    memcpy(&s, r.data + 1, sizeof s);
    *maat = s.maat;
    if (s.maat < 1 || s.maat > MATEN)
        return false;
    maat_aan(opslag->maten, s.maat);
    opslag->bruto[s.maat] = s.bruto;
    opslag->netto[s.maat] = s.netto;
    return true;
}

uint8_t laad_maat(const ordrauw& r, orderregel* regel) {
    uint8_t maat;
    if (!in_opslag(r, &regel->opslag, &maat))
        ord_inconsistent(werk, r.offset, r.tag);
    up_zet_maat(&regel->prijzen, maat, regel->opslag.bruto[maat], netto_gelezen(regel->opslag.netto[maat]));
    return maat;
}

// Sum cells of one branch and size, in order; false when one does not fit.
bool orden_cellen(std::vector<levcel>* cellen) {
    auto eerder = [](const levcel& a, const levcel& b) {
        return a.filiaal != b.filiaal ? a.filiaal < b.filiaal : a.maat < b.maat;
    };
    if (!std::is_sorted(cellen->begin(), cellen->end(), eerder)) // as the program writes them they are
        std::stable_sort(cellen->begin(), cellen->end(), eerder);
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
void orden_termen(orderregel* regel, int32_t regelplaats) {
    std::stable_sort(regel->termen.begin(), regel->termen.end(),
                     [](const levterm& a, const levterm& b) { return a.tot < b.tot; });
    levtermen uit;
    for (levterm& term : regel->termen) {
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
        if (!regel->nota_aantallen.empty())
            lt_erbij(term, &regel->nota_aantallen);
    }
    regel->termen = std::move(uit);
    regel->order_aantallen = regel->nota_aantallen; // nothing is delivered while the journal holds it all
}

void laad_cel(const ordrauw& r, orderregel* regel) {
    ordfil f;
    memcpy(&f, r.data + 1, sizeof f);
    if (regel->termen.empty() || f.filiaal >= firma.filialen || f.maat < 1 || f.maat > MATEN || f.aantal < 0)
        ord_inconsistent(werk, r.offset, r.tag);
    if (f.aantal)
        regel->termen.back().cellen.push_back({f.filiaal, f.maat, f.aantal});
}

void laad_onderdelen(regelloop* loop, orderregel* regel, int32_t regelplaats) {
    ordrauw r;
    size_t stukken = 0;
    uint8_t maat = 0;
    while (ord_verder(werk, &loop->loop, &r) && !strchr("OMD", r.tag)) {
        if (r.tag == 'T')
            tekst_erbij(r, 4, regel->dessintekst, &stukken);
        else if (registermodus && regel->dessin.geregistreerd) {
            if (r.tag == 'S')
                in_opslag(r, &regel->opslag, &maat);
        } else if (r.tag == 'S')
            maat = laad_maat(r, regel);
        else if (r.tag == 'L') {
            ordlevt l;
            memcpy(&l, r.data + 1, sizeof l);
            regel->termen.push_back({l.eerste, l.laatste, {}});
        } else if (r.tag == 'F')
            laad_cel(r, regel);
        else { // E, B
            regelextra extra{maat, r.tag, {}};
            if (!maat)
                ord_inconsistent(werk, r.offset, r.tag);
            memcpy(extra.inhoud, r.data + 1, sizeof extra.inhoud);
            regel->opslag.extra.push_back(extra);
        }
    }
    orden_termen(regel, regelplaats);
    up_inkoop_alle(&regel->prijzen);
}

} // namespace

void regel_wis(orderregel* regel) {
    // Matrices keep their memory: a walk clears the same value for each line.
    regel_wis_aantallen(regel);
    aantalmatrix nota = std::move(regel->nota_aantallen), order = std::move(regel->order_aantallen);
    *regel = {};
    regel->nota_aantallen = std::move(nota);
    regel->order_aantallen = std::move(order);
    regel->gewichten.assign(firma.filialen + size_t{1}, 0);
}

void regel_wis_aantallen(orderregel* regel) {
    regel->termen.clear();
    for (aantalmatrix* m : {&regel->nota_aantallen, &regel->order_aantallen})
        fmclear(m);
}

void regel_dupliceer(orderregel* regel) {
    regel->opslag.extra.clear();
    regel->dessin.volgnummer = 0;
    regel->dessin.geregistreerd = 0;
    regel->serie = {};
    regel->aankoop = {};
    regel->op_bestand = 0;
}

void regelloop_begin(regelloop* loop) {
    ordloop_begin(&loop->loop, werk->fd, 0, INT64_MAX, REGELBLOK);
    loop->m = -1;
    loop->zonder_matrices = false;
}

bool regel_lees(regelloop* loop, const ors_ingang& ingang, orderregel* regel) {
    if (loop->zonder_matrices)
        *regel = {};
    else
        regel_wis(regel);
    if (!lees_model(loop, ingang.m) || !kop_record(loop, ingang.d, 'D', &regel->dessin)) {
        regel->dessin = {};
        return false;
    }
    regel->model = loop->model;
    memcpy(regel->modeltekst, loop->tekst, BLOKLEN);
    laad_onderdelen(loop, regel, ingang.d);
    return true;
}

bool regel_lees(const ors_ingang& ingang, orderregel* regel) {
    regelloop loop;
    regelloop_begin(&loop);
    return regel_lees(&loop, ingang, regel);
}

void regels_loop(const std::function<void(int32_t nr, const orderregel* regel)>& doe) {
    regelloop loop;
    regelloop_begin(&loop);
    loop.zonder_matrices = true;
    for (int32_t nr = 1; nr <= aantal_regels; nr++) {
        ors_ingang in{};
        in.regel = static_cast<uint16_t>(nr);
        orderregel regel;
        if (!ors_lees('R', &in) || !regel_lees(&loop, in, &regel))
            doe(nr, nullptr);
        else if (regel.dessin.geregistreerd)
            doe(nr, &regel);
    }
}

bool regel_prijzen_uit_opslag(orderregel* regel) {
    bool er = false;
    regel->prijzen = {};
    memcpy(regel->dessin.maten, regel->opslag.maten, sizeof regel->dessin.maten);
    for (int maat = 1; maat <= MATEN; maat++)
        if (maat_in(regel->opslag.maten, maat)) {
            const auto m = static_cast<size_t>(maat);
            up_zet_maat(&regel->prijzen, maat, regel->opslag.bruto[m], netto_gelezen(regel->opslag.netto[m]));
            er = true;
        }
    return er;
}

int32_t regel_bruto_opslag(const orderregel& regel, int maat) {
    const auto m = static_cast<size_t>(maat);
    const int32_t was = regel.opslag.bruto[m];
    if (maat_in(regel.opslag.maten, maat) && regel.prijzen.bruto[m] == std::max(was, 1))
        return was;
    return up_lees(regel.prijzen.bruto, maat);
}

int32_t regel_netto_opslag(const orderregel& regel, int maat) {
    const auto m = static_cast<size_t>(maat);
    const int32_t was = regel.opslag.netto[m];
    if (maat_in(regel.opslag.maten, maat) && regel.prijzen.netto[m] == netto_gelezen(was))
        return was;
    const int32_t p = up_lees(regel.prijzen.netto, maat);
    return p ? toeslag_eraf(p, kop.korting) : 0;
}

} // namespace zg
