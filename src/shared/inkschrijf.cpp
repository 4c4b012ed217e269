// Module ioink: a set written among the others of its series and set number, and sets deleted.
//
// New groups are written first, then the records of the sets in such an order that every day has its old price or its
// new one at any moment, last the old groups go free. `ioink_find` takes the first set whose last day isn't before a
// day, so of two that overlap the earlier one holds: what a broken-off write left is read and cut by that rule.
#include "shared/inkdeel.h"
#include "shared/ioink.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

void eis_schrijfbaar() {
    if (!ink.dtipa)
        INTERNAL("ioink", 5);
    if (ink.modus != 2)
        INTERNAL("ioink", 6);
    if (ink.fd < 0)
        INTERNAL("ioink", 7);
}

void heropen() {
    const int modus = ink.modus;
    IXCLOSE(ink.dtipa);
    SYS.close(ink.fd);
    ink = {nullptr, -1, 0};
    ioink_open(modus);
}

// Records of sets to write and to delete, one by one, and back again when one is refused.
class Setwerk {
public:
    bool schrijf(const prijsset& set) { return doe(set, false); }
    bool wis(const prijsset& set) { return doe(set, true); }
    bool terug() {
        bool goed = true;
        for (; goed && !was_.empty(); was_.pop_back()) {
            Stand s = was_.back();
            goed = s.stond                    ? IXWRITE(ink.dtipa, s.rec) == 1
                   : IXREAD(ink.dtipa, s.rec) ? IXDELETE(ink.dtipa, s.rec) == 0
                                              : true;
        }
        return goed;
    }

private:
    struct Stand {
        uint8_t rec[IXRECMAX + 1];
        bool stond;
    };
    std::vector<Stand> was_;

    bool doe(const prijsset& set, bool weg) {
        Stand s{};
        memcpy(s.rec, &set, sizeof set);
        s.stond = IXREAD(ink.dtipa, s.rec);
        uint8_t rec[IXRECMAX + 1];
        memcpy(rec, s.rec, sizeof rec);
        memcpy(rec, &set, sizeof set); // what a longer record holds stays
        const bool goed = !weg ? IXWRITE(ink.dtipa, rec) == 1 : !s.stond || IXDELETE(ink.dtipa, rec) == 0;
        if (goed)
            was_.push_back(s);
        return goed;
    }
};

struct Snede {
    std::vector<inkset> kopie;        // first parts, that end before the new period
    std::vector<prijsset> later, weg; // to rewrite with another first day; to delete
    std::vector<int32_t> vrij;        // groups that nobody has afterwards
};

inkset deel_voor(const inkset& s, int32_t van, int32_t tot) {
    inkset uit = s;
    uit.set.van = static_cast<uint16_t>(van);
    uit.set.tot = static_cast<uint16_t>(tot);
    for (inkrecord& r : uit.keten)
        r.rec.tot = uit.set.tot;
    return uit;
}

// What gives way to the new set. `oud` is the chain of the set that it replaces, -1 for none. False: one of them is
// damaged.
bool snijd(const std::vector<inkset>& sets, const prijsset& nieuw, int32_t oud, Snede* uit) {
    bool heel = true;
    int32_t begin = 0; // the day behind the set before: earlier ones are that set's
    for (const inkset& s : sets) {
        const int32_t v = std::max<int32_t>(s.set.van, begin), t = s.set.tot;
        const bool vervangen = oud != -1 && s.set.groep == oud;
        const bool geraakt = vervangen || (t >= nieuw.van && v <= nieuw.tot) || t == nieuw.tot;
        begin = t + 1;
        prijsset later = s.set;
        if (!geraakt) {
            later.van = static_cast<uint16_t>(v);
            if (later.van != s.set.van && ink_heel(s))
                uit->later.push_back(later);
            continue;
        }
        heel = ink_heel(s) && heel;
        if (!vervangen && v < nieuw.van)
            uit->kopie.push_back(deel_voor(s, v, nieuw.van - 1));
        if (!vervangen && t > nieuw.tot) {
            later.van = static_cast<uint16_t>(nieuw.tot + 1);
            uit->later.push_back(later);
            continue;
        }
        for (const inkrecord& r : s.keten)
            uit->vrij.push_back(r.nr);
        if (t != nieuw.tot)
            uit->weg.push_back(s.set);
    }
    return heel;
}

std::vector<inkrecord> keten_van(const prijsset& set, const prijsgroepen& groepen) {
    std::vector<inkrecord> uit;
    for (const prijsgroep& g : groepen) {
        if (std::all_of(std::begin(g.maten), std::end(g.maten), [](uint8_t b) { return b == 0; }))
            continue;
        inkrecord r{-1, {}};
        r.rec.serie = set.serie;
        r.rec.setnr = set.setnr;
        r.rec.tot = set.tot;
        memcpy(r.rec.maten, g.maten, sizeof g.maten);
        memcpy(r.rec.valuta, set.valuta, sizeof set.valuta);
        r.rec.soort = set.soort;
        r.rec.netto = g.netto;
        r.rec.bruto = g.bruto;
        uit.push_back(r);
    }
    return uit;
}

bool schrijf_sets(Snede& snede, const prijsset& nieuw, Setwerk* werk) {
    bool goed = true;
    for (inkset& k : snede.kopie) {
        k.set.groep = k.keten.empty() ? -1 : k.keten[0].nr;
        goed = goed && werk->schrijf(k.set);
    }
    goed = goed && werk->schrijf(nieuw);
    // From the last on: behind a set that goes its days must find the new one, not the next that goes.
    for (auto s = snede.weg.rbegin(); s != snede.weg.rend(); ++s)
        goed = goed && werk->wis(*s);
    for (const prijsset& s : snede.later)
        goed = goed && werk->schrijf(s);
    return goed;
}

// Sets away, and their groups free; those that stand in front of a refused one are gone.
bool wis(const std::vector<inkset>& sets) {
    if (!std::ranges::all_of(sets, ink_heel))
        return false;
    inkslot slot;
    std::vector<int32_t> vrij;
    bool goed = true;
    for (const inkset& s : sets) {
        goed = goed && Setwerk().wis(s.set);
        for (const inkrecord& r : s.keten)
            if (goed)
                vrij.push_back(r.nr);
    }
    return slot.geef_vrij(vrij) && goed;
}

} // namespace

bool ioink_writeheld(prijsset* set, const prijsgroepen& groepen) {
    eis_schrijfbaar();
    std::vector<inkrecord> keten = keten_van(*set, groepen);
    if (keten.empty() || set->van > set->tot)
        return false;
    inkslot slot;
    Snede snede;
    if (!snijd(ink_verzamel(set->serie, 4, set->setnr), *set, set->groep, &snede))
        return false;
    std::vector<std::vector<inkrecord>*> ketens;
    for (inkset& k : snede.kopie)
        ketens.push_back(&k.keten);
    ketens.push_back(&keten);
    if (!slot.schrijf(ketens))
        return false;
    prijsset nieuw = *set;
    memset(nieuw.maten, 0, sizeof nieuw.maten);
    for (const inkrecord& r : keten)
        for (size_t i = 0; i < sizeof nieuw.maten; i++)
            nieuw.maten[i] |= r.rec.maten[i];
    nieuw.groep = keten[0].nr;
    Setwerk werk;
    if (!schrijf_sets(snede, nieuw, &werk)) {
        if (werk.terug())
            slot.terug();
        return false;
    }
    *set = nieuw;
    slot.geef_vrij(snede.vrij); // refused: told, and nobody has them
    return true;
}

bool ioink_write(prijsset* set, const prijsgroepen& groepen) {
    const bool goed = ioink_writeheld(set, groepen);
    heropen();
    return goed;
}

bool ioink_delete(const prijsset& set) {
    eis_schrijfbaar();
    return wis(ink_verzamel(set.serie, 5, set.setnr, set.tot));
}

bool ioink_deleteall(const seriesleutel& serie) {
    eis_schrijfbaar();
    return wis(ink_verzamel(serie, 3));
}

} // namespace zg
