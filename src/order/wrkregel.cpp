// Lines into, out of and over one another in the work file. Each change copies WRK to TMP with the index
// beside it and swaps the two, so WRK is always whole.
#include "order/meld.h"
#include "order/programma.h"
#include "order/regel.h"
#include "order/wrk.h"
#include "order/wrkbinnen.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include <cstring>

namespace zg {

namespace {

void schrijf_maten(const orderregel& regel) {
    for (int maat = 1; maat <= MATEN; maat++) {
        if (!maat_in(regel.dessin.maten, maat))
            continue;
        ordmaat s{};
        s.maat = static_cast<uint8_t>(maat);
        s.bruto = regel_bruto_opslag(regel, maat);
        s.netto = regel_netto_opslag(regel, maat);
        tmp_schrijf('S', &s, false);
        for (const regelextra& extra : regel.opslag.extra)
            if (extra.maat == maat)
                tmp_schrijf(extra.tag, extra.inhoud, false);
    }
}

void schrijf_termen(const orderregel& regel) {
    for (const levterm& term : regel.termen) {
        const ordlevt l = {term.van, term.tot};
        tmp_schrijf('L', &l, false);
        for (const levcel& cel : term.cellen) {
            const ordfil f = {cel.filiaal, cel.maat, 0, cel.aantal};
            if (cel.aantal > 0)
                tmp_schrijf('F', &f, false);
        }
    }
}

void schrijf_model(const orderregel& regel) {
    tmp_schrijf('M', &regel.model, true);
    tmp_tekst(3, regel.modeltekst);
}

// The line at the end of TMP, without its model.
void schrijf_dessin(const orderregel& regel) {
    tmp_schrijf('D', &regel.dessin, true);
    tmp_tekst(4, regel.dessintekst);
    schrijf_maten(regel);
    schrijf_termen(regel);
}

// Walk WRK into TMP. `plaats` looks at each record first and answers whether it is copied; at an O, M or D it may write
// something in front of it. What goes along between those is taken over in one piece, as far as a block of the walk holds
// it. A record that can't be read stops: WRK stands as it was.
template <class F> void loop_wrk(F plaats) {
    constexpr size_t GROOTSTE = 1 + sizeof(orddessin); // a walk reads on when no more than a record is left
    ordloop l;
    ordrauw r;
    const uint8_t* rij = nullptr;
    size_t lengte = 0;
    auto af = [&] {
        if (lengte)
            tmp_rauw(rij, lengte, false);
        lengte = 0;
    };
    ordloop_begin(&l, werk->fd, 0, INT64_MAX);
    while (ord_verder(werk, &l, &r)) {
        const bool kop_van = r.tag == 'O' || r.tag == 'M' || r.tag == 'D';
        if (kop_van)
            af();
        const bool mee = plaats(r);
        const size_t bytes =
            r.lengte + (kop_van ? 0 : ordloop_reeks(&l, r.tag)); // with what goes the same way
        if (!mee) {
            af();
        } else if (kop_van) {
            tmp_rauw(r.data, bytes, true);
        } else {
            if (!lengte)
                rij = r.data;
            lengte += bytes;
        }
        if (l.geldig - l.plaats < GROOTSTE)
            af();
    }
    af();
}

// The file must still hold what the index says before anything is left out at those offsets.
void toets_ingang(const ors_ingang& ingang) {
    char tag = 0;
    for (auto [plaats, wil] : {std::pair{ingang.m, 'M'}, std::pair{ingang.d, 'D'}})
        if (plaats < 0 || IOLEES(werk->fd, &tag, 1, plaats) != 1 || tag != wil)
            ord_inconsistent(werk, plaats, tag);
}

seriesleutel serie_van(const ors_ingang& ingang) {
    ordmodel m;
    orddessin d;
    if (IOLEES(werk->fd, &m, sizeof m, int64_t{ingang.m} + 1) != ssize_t{sizeof m} ||
        IOLEES(werk->fd, &d, sizeof d, int64_t{ingang.d} + 1) != ssize_t{sizeof d})
        ord_inconsistent(werk, ingang.d, 'D');
    return {m.artikelgroep, d.kleur, d.volgnummer};
}

} // namespace

bool wrk_regel_in(ors_ingang* ingang, bool met_model, orderregel* regel) {
    char eerste = 0;
    if (IOLEES(werk->fd, &eerste, 1, 0) != 1 || eerste != 'O')
        INTERNAL("wrkregel", 1); // a line before the header would become part of another order
    int32_t volgende_m = -1;
    ors_ingang loper = *ingang;
    if (aantal_regels && ors_lees('R', &loper)) {
        int32_t m = loper.m;
        while (ors_lees('N', &loper)) {
            if (loper.m != m) {
                volgende_m = loper.m;
                break;
            }
        }
    }
    if (!tmp_begin_wrk())
        return false;
    regel->dessin.geregistreerd = registermodus ? 1 : 0;
    regel->dessin.tijdstempel = static_cast<uint16_t>(NUSECONDEN() / 2);
    int32_t nr = 0;
    auto schrijf = [&] {
        if (met_model || !aantal_regels) // the first line has no other to join
            schrijf_model(*regel);
        schrijf_dessin(*regel);
        nr = aantal_regels;
    };
    loop_wrk([&](const ordrauw& r) {
        if (r.offset == volgende_m)
            schrijf();
        return true;
    });
    if (!nr)
        schrijf();
    if (!tmp_naar_wrk())
        return false;
    ingang->regel = static_cast<uint16_t>(nr);
    return ors_lees('R', ingang);
}

bool wrk_regel_uit(ors_ingang* ingang, const std::function<bool()>& tevoren) {
    ors_ingang vorige = *ingang, volgende = *ingang;
    toets_ingang(*ingang);
    const seriesleutel serie = serie_van(*ingang);
    bool model_ook = !(ors_lees('P', &vorige) && vorige.m == ingang->m) &&
                     !(ors_lees('N', &volgende) && volgende.m == ingang->m);
    if (!tmp_begin_wrk())
        return false;
    bool weg = false;
    loop_wrk([&](const ordrauw& r) {
        if (r.tag == 'D' || r.tag == 'M' || r.tag == 'O')
            weg = r.offset == ingang->d || (model_ook && r.offset == ingang->m);
        return !weg;
    });
    if (!tmp_naar_wrk(tevoren))
        return false;
    regel_uit = serie;
    if (ingang->regel > aantal_regels)
        ingang->regel = static_cast<uint16_t>(aantal_regels);
    if (!ors_lees('R', ingang))
        *ingang = {};
    return true;
}

bool wrk_regel_vervang(ors_ingang* ingang, orderregel* regel) {
    toets_ingang(*ingang);
    orddessin oud;
    if (IOLEES(werk->fd, &oud, sizeof oud, int64_t{ingang->d} + 1) != ssize_t{sizeof oud})
        ord_inconsistent(werk, ingang->d, 'D');
    if (!tmp_begin_wrk())
        return false;
    regel->dessin.tijdstempel = oud.tijdstempel;
    bool in_regel = false, teksten_weg = false;
    loop_wrk([&](const ordrauw& r) {
        if (r.tag == 'O' || r.tag == 'M' || r.tag == 'D')
            in_regel = teksten_weg = false;
        if (r.offset == ingang->m) {
            if (registermodus)
                tmp_rauw(r.data, r.lengte, true), tmp_tekst(3, regel->modeltekst);
            else
                schrijf_model(*regel);
            teksten_weg = true;
            return false;
        }
        if (r.offset == ingang->d) {
            if (registermodus)
                tmp_rauw(r.data, r.lengte, true), tmp_tekst(4, regel->dessintekst);
            else
                schrijf_dessin(*regel);
            teksten_weg = registermodus;
            in_regel = !registermodus;
            return false;
        }
        return !in_regel && !(teksten_weg && r.tag == 'T');
    });
    return tmp_naar_wrk() && ors_lees('R', ingang);
}

} // namespace zg
