// Module ioink: chains of groups in DTIPG.TXT and the free records between them. The slot tells where the free chain
// begins and, by `hoogste`, where it ends; new records come behind the end of the file, wherever a lost or damaged slot
// says that it is, so that none is given out that a set may have.
#include "shared/inkdeel.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/teksten.h"
#include "term/prompt.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <tuple>

namespace zg {
namespace {

constexpr int HALF_WERK = 12; // userstate of a program that met a broken free chain
// Records that a program may have counted and not written when it died: others count first. An end further behind the file
// is that of another file, with groups that sets lead to; so is a nearer one when a set leads there.
constexpr int64_t VOORUIT = 99;

bool lees(int32_t nr, prijsgroeprec* rec) {
    return nr >= 0 && IOLEES(ink.fd, rec, sizeof *rec, nr * INK_RECORD) == INK_RECORD;
}

[[noreturn]] void stop(int32_t nr, const char* waarom) {
    const int fout = errno;
    gebruiker_stand(HALF_WERK);
    SCRFATAL("IOINK(%d): %s(a=%c,f=%d,r=%ld) -> %s", fout, "DTIPA", 'R', ink.fd, static_cast<long>(nr),
             waarom);
}

// Does a set lead to a record behind the file? Once looked, it is known as long as file and end are what they were.
bool afgekapt(int64_t records, int32_t einde) {
    static std::pair<int64_t, int32_t> heel{-1, -1};
    if (heel == std::pair{records, einde})
        return false;
    prijsset set{};
    std::vector<inkrecord> keten;
    int32_t waar;
    for (char letter = 'F'; ioink_move(letter, &set, 0, 1); letter = 'N')
        if (ink_keten(set, &keten, &waar) == Inkfout::lezen && waar >= records)
            return true;
    heel = {records, einde};
    return false;
}

} // namespace

bool ink_van_set(const prijsgroeprec& rec, const prijsset& set) {
    return zelfde_serie(rec.serie, set.serie) && rec.setnr == set.setnr && rec.tot == set.tot;
}

bool ink_leeg(prijsgroeprec rec) {
    rec.volgende = 0;
    const auto* bytes = reinterpret_cast<const char*>(&rec);
    return std::all_of(bytes, bytes + sizeof rec, [](char c) { return c == 0; });
}

int64_t ink_records() {
    const int64_t bytes = IOOMVANG(ink.fd);
    return bytes < 0 ? 0 : (bytes + INK_RECORD - 1) / INK_RECORD;
}

Inkfout ink_keten(const prijsset& set, std::vector<inkrecord>* keten, int32_t* waar) {
    uint8_t maten[sizeof set.maten] = {};
    keten->clear();
    for (*waar = set.groep; *waar != -1;) {
        inkrecord r{*waar, {}};
        if (r.nr < 0)
            return Inkfout::plaats;
        if (!lees(r.nr, &r.rec))
            return Inkfout::lezen;
        // As many groups as there are sizes at most: a longer walk goes round.
        if (!ink_van_set(r.rec, set) || keten->size() >= MATEN)
            return Inkfout::andere;
        for (size_t i = 0; i < sizeof maten; i++)
            maten[i] |= r.rec.maten[i];
        keten->push_back(r);
        *waar = r.rec.volgende;
    }
    *waar = set.groep;
    return memcmp(maten, set.maten, sizeof maten) == 0 ? Inkfout::geen : Inkfout::maten;
}

void ink_meld(const prijsset& set, Inkfout fout, int32_t waar, bool steeds) {
    using Sleutel = std::tuple<int32_t, uint16_t, uint16_t, uint16_t, uint16_t>;
    static std::set<Sleutel> gemeld; // a repaint of the line would tell it again with each key
    const prijsset& k = set;
    if (!gemeld.insert({k.serie.artikelgroep, k.serie.kleur, k.serie.volgnummer, k.setnr, k.tot}).second &&
        !steeds)
        return;
    char wat[120], plek[120];
    if (fout == Inkfout::maten)
        snprintf(wat, sizeof wat, "%s", TXT(T_INK_MATEN));
    else
        snprintf(wat, sizeof wat, "%s (%d)", TXT(T_INK_INCONSISTENT), static_cast<int>(fout));
    snprintf(plek, sizeof plek, TXT(T_INK_PLEK), INK_GROEPEN, static_cast<long>(waar),
             static_cast<long>(set.serie.artikelgroep), set.serie.kleur, set.serie.volgnummer, set.setnr);
    if (SCHERM.bestaat)
        FFLASH(-1, 2, A_WAARDE, TXT(T_INK_WAARSCHUWING), "%s\n%s", wat, plek);
    else
        fprintf(stderr, "%s\n%s\n", wat, plek);
}

bool ioink_past(int groepen) {
    sysprijs vrij;
    int32_t slot = INK_SYSRECORD;
    iotab('X', &slot, &vrij, SYS_RECORD);
    const int64_t records = ink_records();
    const bool gekort =
        vrij.hoogste > records + VOORUIT || (vrij.hoogste > records && afgekapt(records, vrij.hoogste));
    int32_t nr = gekort ? vrij.hoogste : vrij.vrijkop;
    prijsgroeprec rec{};
    for (; !gekort && groepen > 0 && nr != vrij.hoogste && nr != records; groepen--, nr = rec.volgende)
        if (nr >= records || !lees(nr, &rec) || !ink_leeg(rec) || rec.volgende == nr)
            break;
    iotab('U', &slot, nullptr, SYS_RECORD);
    if (!gekort && (groepen == 0 || nr == vrij.hoogste || nr == records))
        return true;
    char plek[40];
    snprintf(plek, sizeof plek, "%s %ld", INK_GROEPEN, static_cast<long>(nr));
    ALARMBOX(TXT(T_INK_VRIJKETEN), plek);
    return false;
}

inkslot::inkslot() : stond_(gebruiker_stand(10)) {
    int32_t nr = INK_SYSRECORD;
    iotab('X', &nr, &vrij_, SYS_RECORD);
}

inkslot::~inkslot() {
    int32_t nr = INK_SYSRECORD;
    iotab('U', &nr, nullptr, SYS_RECORD);
    gebruiker_stand(stond_);
}

bool inkslot::bewaar() {
    int32_t nr = INK_SYSRECORD;
    return iotab('w', &nr, &vrij_, SYS_RECORD);
}

bool inkslot::zet(int32_t nr, const prijsgroeprec* rec, size_t aantal) {
    if (SYSVERVANG(ink.fd, rec, aantal * sizeof *rec, nr * INK_RECORD))
        return true;
    SCHRIJFFOUT(INK_GROEPEN, errno);
    return false;
}

bool inkslot::schrijf(std::vector<std::vector<inkrecord>*> ketens) {
    std::vector<inkrecord*> alle;
    for (auto* keten : ketens)
        for (inkrecord& r : *keten)
            alle.push_back(&r);
    was_ = vrij_;
    einde_ = IOOMVANG(ink.fd);
    genomen_.clear();
    const int64_t records = ink_records();
    int64_t nieuw = records;
    for (inkrecord* r : alle) {
        if (vrij_.vrijkop != vrij_.hoogste && vrij_.vrijkop != records) {
            inkrecord oud{vrij_.vrijkop, {}};
            if (oud.nr < 0 || oud.nr >= records || !lees(oud.nr, &oud.rec))
                stop(oud.nr, TXT(T_INK_BUITEN));
            if (!ink_leeg(oud.rec) || std::ranges::find(genomen_, oud.nr, &inkrecord::nr) != genomen_.end())
                stop(oud.nr, TXT(T_INK_BESTAND));
            genomen_.push_back(oud);
            r->nr = oud.nr;
            vrij_.vrijkop = oud.rec.volgende;
        } else {
            r->nr = static_cast<int32_t>(nieuw++);
            vrij_.vrijkop = vrij_.hoogste = static_cast<int32_t>(nieuw);
        }
    }
    if (nieuw > INT32_MAX || einde_ < 0) {
        vrij_ = was_;
        SCHRIJFFOUT(INK_GROEPEN, einde_ < 0 ? EIO : EFBIG);
        return false;
    }
    for (auto* keten : ketens)
        for (size_t i = 0; i < keten->size(); i++)
            (*keten)[i].rec.volgende = i + 1 < keten->size() ? (*keten)[i + 1].nr : -1;

    std::vector<prijsgroeprec> achteraan;
    for (size_t i = genomen_.size(); i < alle.size(); i++)
        achteraan.push_back(alle[i]->rec);
    bool goed = achteraan.empty() || zet(static_cast<int32_t>(records), achteraan.data(), achteraan.size());
    if (!goed || !bewaar()) {
        vrij_ = was_;
        SYS.ftruncate(ink.fd, einde_);
        return false;
    }
    for (size_t i = 0; goed && i < genomen_.size(); i++)
        goed = zet(genomen_[i].nr, &alle[i]->rec, 1);
    if (!goed)
        terug();
    return goed;
}

void inkslot::terug() {
    // What can't be put back is lost to the free chain, and nobody has it.
    bool goed = true;
    for (const inkrecord& r : genomen_)
        goed = SYSSCHRIJFOP(ink.fd, &r.rec, sizeof r.rec, r.nr * INK_RECORD) && goed;
    if (!goed)
        return;
    vrij_ = was_;
    if (bewaar())
        SYS.ftruncate(ink.fd, einde_);
}

bool inkslot::geef_vrij(const std::vector<int32_t>& nummers) {
    if (nummers.empty())
        return true;
    const int64_t records = ink_records();
    if (vrij_.vrijkop == vrij_.hoogste || vrij_.vrijkop == records)
        vrij_.vrijkop = vrij_.hoogste = static_cast<int32_t>(std::min<int64_t>(records, INT32_MAX));
    bool goed = true;
    for (size_t i = 0; goed && i < nummers.size(); i++) {
        prijsgroeprec leeg{};
        leeg.volgende = vrij_.vrijkop;
        goed = zet(nummers[i], &leeg, 1);
        if (goed)
            vrij_.vrijkop = nummers[i];
    }
    return bewaar() && goed;
}

// The chain is out of use while its records change: a kill loses free records, and no set's.
bool inkslot::opnieuw(const std::vector<int32_t>& nummers) {
    vrij_.vrijkop = vrij_.hoogste = static_cast<int32_t>(std::min<int64_t>(ink_records(), INT32_MAX));
    return bewaar() && geef_vrij(nummers);
}

} // namespace zg
