// Module ioink: its files held against each other.
#include "shared/inkcheck.h"
#include "shared/dagtekst.h"
#include "shared/inkdeel.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cstring>
#include <unordered_set>

namespace zg {
namespace {

enum Bezit : char { NIEMAND, SET, VRIJ };

std::string in_record(int32_t nr, const std::string& wat) {
    return std::string(INK_GROEPEN) + " record " + std::to_string(nr) + ": " + wat;
}

std::string naam(const prijsset& s) {
    return "series " + serie_tekst(s.serie) + ", set " + std::to_string(s.setnr) + " until " +
           dag_tekst(s.tot) + ": ";
}

std::string woorden(Inkfout fout, int32_t waar) {
    switch (fout) {
    case Inkfout::plaats:
    case Inkfout::lezen:
        return "the chain leads to record " + std::to_string(waar) + ", outside " + INK_GROEPEN;
    case Inkfout::andere:
        return in_record(waar, "not a group of this set");
    case Inkfout::maten:
        return "its sizes aren't those of its groups";
    case Inkfout::geen:
        break;
    }
    return {};
}

// Series, set number and last day, with which a set begins and each of its groups.
std::string naam_in(const void* rec) {
    return {static_cast<const char*>(rec), offsetof(prijsgroeprec, tot) + sizeof(prijsgroeprec::tot)};
}

struct Stand {
    std::vector<inkkwaal> kwalen;
    std::vector<Bezit> bezit; // by record
    inktelling telling = {};
    std::unordered_set<std::string> stuk; // sets whose chain is damaged
    std::unordered_set<int32_t> breuken;  // where
    bool nullen = false;                  // at a record of zeros: the chain may go on in others
};

void toets_sets(Stand* stand, const std::function<void(const prijsset&)>& bij) {
    prijsset set{}, vorige{};
    std::vector<inkrecord> keten;
    for (char letter = 'F'; ioink_move(letter, &set, 0, 1); letter = 'N') {
        auto kwaal = [&](const std::string& wat) { stand->kwalen.push_back({set.serie, naam(set) + wat}); };
        int32_t waar;
        const Inkfout fout = ink_keten(set, &keten, &waar);
        if (fout != Inkfout::geen) {
            kwaal(woorden(fout, waar));
            stand->stuk.insert(naam_in(&set));
            stand->breuken.insert(waar);
            prijsgroeprec rec{};
            if (fout == Inkfout::andere &&
                SYSLEES(ink.fd, &rec, sizeof rec, int64_t{waar} * INK_RECORD) == INK_RECORD)
                stand->nullen |= ink_leeg(rec);
        }
        uint8_t gehad[MAATBYTES] = {};
        for (const inkrecord& r : keten) {
            if (memcmp(r.rec.valuta, set.valuta, sizeof set.valuta) != 0 || r.rec.soort != set.soort)
                kwaal(in_record(r.nr, "another currency or kind than its set's"));
            for (size_t i = 0; i < sizeof gehad; gehad[i] |= r.rec.maten[i], i++)
                if (gehad[i] & r.rec.maten[i]) {
                    kwaal(in_record(r.nr, "a size that another group of it has"));
                    break;
                }
            if (static_cast<size_t>(r.nr) >= stand->bezit.size()) // written since the file was measured
                stand->bezit.resize(static_cast<size_t>(r.nr) + 1, NIEMAND);
            Bezit& b = stand->bezit[static_cast<size_t>(r.nr)];
            if (b != NIEMAND) { // told already when the chain goes round
                if (fout == Inkfout::geen)
                    kwaal(in_record(r.nr, "is in a second chain"));
                break;
            }
            b = SET;
            stand->telling.groepen++;
        }
        stand->telling.sets++;
        if (set.van > set.tot)
            kwaal("begins after its last day");
        else if (stand->telling.sets > 1 && zelfde_serie(set.serie, vorige.serie) &&
                 set.setnr == vorige.setnr && set.van <= vorige.tot)
            kwaal("overlaps the one until " + dag_tekst(vorige.tot));
        if (bij)
            bij(set);
        vorige = set;
    }
}

void toets_vrij(Stand* stand, const sysprijs& vrij) {
    const auto records = static_cast<int32_t>(stand->bezit.size());
    auto kwaal = [&](int32_t nr, const char* wat) {
        stand->kwalen.push_back({{}, in_record(nr, std::string("free chain ") + wat)});
    };
    // Behind the file it may be, after a broken-off write, but not in front of a set's groups.
    const int32_t laatste = static_cast<int32_t>(
        std::find(stand->bezit.rbegin(), stand->bezit.rend(), SET).base() - stand->bezit.begin());
    if (vrij.hoogste > records || vrij.hoogste < laatste)
        stand->kwalen.push_back({{},
                                 "DTSYS.TXT system record 9: the end is " + std::to_string(vrij.hoogste) +
                                     ", " + INK_GROEPEN + " has " + std::to_string(records) + " records"});
    for (int32_t nr = vrij.vrijkop; nr != vrij.hoogste && nr != records;) {
        if (nr < 0 || nr > records)
            return kwaal(nr, "leads outside the file");
        Bezit& b = stand->bezit[static_cast<size_t>(nr)];
        if (b != NIEMAND)
            return kwaal(nr, b == VRIJ ? "goes round" : "leads to a set's group");
        prijsgroeprec rec{};
        if (SYSLEES(ink.fd, &rec, sizeof rec, int64_t{nr} * INK_RECORD) != INK_RECORD)
            return kwaal(nr, "leads to half a record");
        b = VRIJ;
        stand->telling.vrij++;
        if (!ink_leeg(rec))
            return kwaal(nr, "leads to a record that isn't empty");
        nr = rec.volgende;
    }
}

Stand neem_op(const std::function<void(const prijsset&)>& bij) {
    Stand stand;
    stand.bezit.assign(static_cast<size_t>(std::min<int64_t>(ink_records(), INT32_MAX)), NIEMAND);
    toets_sets(&stand, bij);
    return stand;
}

} // namespace

std::vector<inkkwaal> ink_controle(inktelling* telling, const std::function<void(const prijsset&)>& bij,
                                   const std::function<void(const prijsgroeprec&)>& los) {
    int32_t nr = INK_SYSRECORD;
    sysprijs vrij{};
    Stand stand = neem_op(bij);
    iotab('R', &nr, &vrij, SYS_RECORD);
    toets_vrij(&stand, vrij);
    stand.telling.verloren = std::ranges::count(stand.bezit, NIEMAND);
    prijsgroeprec rec{};
    for (size_t i = 0; los && i < stand.bezit.size(); i++)
        if (stand.bezit[i] == NIEMAND &&
            SYSLEES(ink.fd, &rec, sizeof rec, static_cast<int64_t>(i) * INK_RECORD) == INK_RECORD &&
            !ink_leeg(rec))
            los(rec);
    *telling = stand.telling;
    return stand.kwalen;
}

int64_t ink_herstel(const std::function<bool(const prijsgroeprec&)>& blijft, bool* opnieuw) {
    inkslot slot;
    Stand stand = neem_op({});
    const size_t kwalen = stand.kwalen.size();
    toets_vrij(&stand, slot.vrij());
    const bool heel = stand.kwalen.size() == kwalen;
    // Could a record be of a set whose chain is damaged? The chain breaks there, whatever stands in it, or it bears its name.
    const auto van_iemand = [&](int32_t nr) {
        prijsgroeprec rec{};
        if (stand.breuken.contains(nr) || (stand.nullen && stand.bezit[static_cast<size_t>(nr)] == NIEMAND))
            return true;
        if ((stand.stuk.empty() && !blijft) || SYSLEES(ink.fd, &rec, sizeof rec, nr * INK_RECORD) <= 0 ||
            ink_leeg(rec))
            return false;
        return stand.stuk.contains(naam_in(&rec)) || (blijft && blijft(rec));
    };
    // Records that a set leads to are never given out again, whether the file has them or not.
    if (std::ranges::any_of(stand.breuken, [](int32_t nr) { return nr >= ink_records(); }))
        return 0;
    std::vector<int32_t> nummers;
    int64_t terug = 0;
    for (size_t i = stand.bezit.size(); i-- > 0;) {
        const auto nr = static_cast<int32_t>(i);
        if (stand.bezit[i] == SET || (heel && stand.bezit[i] == VRIJ) || van_iemand(nr))
            continue;
        nummers.push_back(nr);
        terug += stand.bezit[i] == NIEMAND;
    }
    if (opnieuw)
        *opnieuw = !heel;
    return (heel ? slot.geef_vrij(nummers) : slot.opnieuw(nummers)) ? terug : -1;
}

} // namespace zg
