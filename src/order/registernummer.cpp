// The record of an order number in DTORDNR: of an order with lines, from its commit until its last line goes.
#include "order/register.h"
#include "shared/sleutelstand.h"
#include "sub/omserie.h"
#include <cstring>

namespace zg {
namespace {

// A record by its number in a buffer as long as any.
struct Ordnr {
    explicit Ordnr(int32_t nummer) { memcpy(rec, &nummer, sizeof nummer); }
    ordnrrec beeld() const {
        ordnrrec uit;
        stam_uit(rec, dtordnr->h.reclen, &uit);
        return uit;
    }
    uint8_t rec[IXRECMAX] = {};
};

bool zonder_nummer() {
    return !dtordnr || kop.ordernummer <= 0;
}

bool van_deze_order(const ordnrrec& rec) {
    return rec.leverancier == kop.leverancier && rec.jaar == kop.jaar && rec.seizoen == kop.seizoen;
}

// The order's own record, locked; false, and nothing held, when there is none. Looked up first: an absent one would be
// reserved.
bool neem(Ordnr* nr) {
    if (IXREAD(dtordnr, nr->rec) != 1 || !van_deze_order(nr->beeld()))
        return false;
    const Ordnr zoek(kop.ordernummer);
    const int gelezen = IXREADL(dtordnr, nr->rec);
    if (gelezen == 1 && van_deze_order(nr->beeld()))
        return true;
    if (gelezen >= 0)
        IXUNLOCK(dtordnr, zoek.rec);
    return false;
}

} // namespace

bool ordnr_bezet(int32_t ordernummer) {
    const Sleutelstand k1(dtordnr);
    return IXEXISTS(dtordnr, Ordnr(ordernummer).rec) != 0;
}

bool ordnr_schrijf() {
    if (zonder_nummer())
        return true;
    const Sleutelstand k1(dtordnr);
    Ordnr nr(kop.ordernummer);
    if (!neem(&nr)) {
        if (IXEXISTS(dtordnr, Ordnr(kop.ordernummer).rec))
            return true; // another order's: it stays his
        nr = Ordnr(kop.ordernummer);
    }
    ordnrrec rec = nr.beeld();
    rec.ordernummer = kop.ordernummer;
    memcpy(rec.lev_ordernr, kop.lev_ordernr, sizeof rec.lev_ordernr);
    rec.ontvangstlocatie = kop.ontvangstlocatie;
    rec.leverancier = kop.leverancier;
    rec.jaar = kop.jaar;
    rec.seizoen = kop.seizoen;
    rec.edi_soort = kop.edi_soort;
    rec.orderdatum = kop.orderdatum;
    memcpy(nr.rec, &rec, sizeof rec);
    return IXWRITE(dtordnr, nr.rec) == 1;
}

void ordnr_wis() {
    if (zonder_nummer())
        return;
    const Sleutelstand k1(dtordnr);
    if (Ordnr nr(kop.ordernummer); neem(&nr))
        IXDELETE(dtordnr, nr.rec);
}

void ordnr_locatie() {
    if (zonder_nummer() || !IXHEEL(dtordnr)) // the commit writes it again, and tells
        return;
    const Sleutelstand k1(dtordnr);
    Ordnr nr(kop.ordernummer);
    if (!neem(&nr))
        return;
    nr.rec[offsetof(ordnrrec, ontvangstlocatie)] = kop.ontvangstlocatie;
    IXWRITE(dtordnr, nr.rec);
}

} // namespace zg
