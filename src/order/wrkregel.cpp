// Lines into, out of and over one another in the work file. Each change copies WRK to TMP with the index
// beside it and swaps the two, so WRK is always whole. The record images are not touched by the copy.
#include "order/meld.h"
#include "order/regel.h"
#include "order/wrk.h"
#include "order/wrkbinnen.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include <cstring>

namespace zg {

char modeltekst[BLOKLEN], dessintekst[BLOKLEN];

namespace {

bool heeft_maat(const orddessin& d, int maat) {
    return d.maten[maat / 8] >> (maat % 8) & 1;
}

void schrijf_maten() {
    for (int maat = 1; maat <= MAAT_MAX; maat++) {
        if (!heeft_maat(dessin, maat))
            continue;
        maatrec = {};
        maatrec.maat = static_cast<uint8_t>(maat);
        maatrec.bruto = regel_bruto_opslag(maat);
        maatrec.netto = regel_netto_opslag(maat);
        tmp_schrijf('S', false);
        for (const regelextra& extra : regel_prijzen.extra) {
            if (extra.maat != maat)
                continue;
            memcpy(ord_beeld(extra.tag), extra.inhoud, sizeof extra.inhoud);
            tmp_schrijf(extra.tag, false);
        }
    }
}

void schrijf_termen() {
    for (const levterm& term : levtermen) {
        levtrec = {term.van, term.tot};
        tmp_schrijf('L', false);
        for (const levcel& cel : term.cellen) {
            if (cel.aantal <= 0)
                continue;
            filrec = {};
            filrec.filiaal = cel.filiaal;
            filrec.maat = cel.maat;
            filrec.aantal = cel.aantal;
            tmp_schrijf('F', false);
        }
    }
}

// The line in hand at the end of TMP; *nr becomes its number.
void schrijf_regel(bool met_model, uint16_t* nr) {
    if (met_model) {
        tmp_schrijf('M', true);
        tmp_tekst(3, modeltekst);
    }
    if (ORDERHAKEN.advies_pak)
        ORDERHAKEN.advies_pak(&dessin);
    tmp_schrijf('D', true);
    *nr = static_cast<uint16_t>(aantal_regels);
    tmp_tekst(4, dessintekst);
    schrijf_maten();
    schrijf_termen();
}

// Walk WRK into TMP. `plaats` looks at each record first and answers whether it is copied. A record that
// can't be read stops: WRK stands as it was.
template <class F> void loop_wrk(F plaats) {
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, werk->fd, 0, INT64_MAX);
    while (ord_verder(werk, &l, &r, "wrkregel", 2))
        if (plaats(r))
            tmp_rauw(r.data, r.lengte, true);
}

// The file must still hold what the index says before anything is left out at those offsets.
void toets_ingang(const ors_ingang& ingang) {
    char tag = 0;
    for (auto [plaats, wil] : {std::pair{ingang.m, 'M'}, std::pair{ingang.d, 'D'}})
        if (plaats < 0 || SYSLEES(werk->fd, &tag, 1, plaats) != 1 || tag != wil)
            ord_inconsistent(werk, plaats, tag);
}

} // namespace

bool wrk_regel_in(ors_ingang* ingang, bool met_model) {
    char eerste = 0;
    if (SYSLEES(werk->fd, &eerste, 1, 0) != 1 || eerste != 'O')
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
    dessin.geregistreerd = registermodus ? 1 : 0;
    dessin.tijdstempel = static_cast<uint16_t>(NUSECONDEN() / 2);
    uint16_t nr = 0;
    loop_wrk([&](const ordrauw& r) {
        if (r.offset == volgende_m)
            schrijf_regel(met_model, &nr);
        return true;
    });
    if (!nr)
        schrijf_regel(met_model, &nr);
    if (!tmp_naar_wrk())
        return false;
    ingang->regel = nr;
    return ors_lees('R', ingang);
}

bool wrk_regel_uit(ors_ingang* ingang) {
    ors_ingang vorige = *ingang, volgende = *ingang;
    toets_ingang(*ingang);
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
    if (!tmp_naar_wrk())
        return false;
    if (ingang->regel > aantal_regels)
        ingang->regel = static_cast<uint16_t>(aantal_regels);
    if (!ors_lees('R', ingang))
        *ingang = {};
    return true;
}

bool wrk_regel_vervang(ors_ingang* ingang) {
    if (registermodus)
        return true;
    toets_ingang(*ingang);
    orddessin oud;
    if (SYSLEES(werk->fd, &oud, sizeof oud, int64_t{ingang->d} + 1) != ssize_t{sizeof oud})
        ord_inconsistent(werk, ingang->d, 'D');
    if (!tmp_begin_wrk())
        return false;
    dessin.tijdstempel = oud.tijdstempel;
    bool weg = false;
    uint16_t nr = 0;
    loop_wrk([&](const ordrauw& r) {
        if (r.offset == ingang->m) {
            tmp_schrijf('M', true);
            weg = false;
            return false;
        }
        if (r.tag == 'D' || r.tag == 'M' || r.tag == 'O') {
            weg = r.offset == ingang->d;
            if (weg)
                schrijf_regel(false, &nr);
        }
        return !weg;
    });
    return tmp_naar_wrk() && ors_lees('R', ingang);
}

} // namespace zg
