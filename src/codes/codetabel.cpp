// Records of the code tables in slots and pairs, read, locked and written the same way.
#include "codes/codetabel.h"
#include "codes/codeveld.h"
#include "codes/teksten.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/sleutelstand.h"
#include "shared/woordenboek.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

// Countries are read once.
Tabelbeeld<landrec> landen{SYS_LAND};

int32_t vast; // the slot that was read with a lock, 0 none

// ---- slots

Slot<landrec> land(const std::string& code) {
    const auto& alle = landen.alle();
    auto rij = std::find_if(alle.begin(), alle.end(), [&](const Slot<landrec>& s) {
        return !code.empty() && VASTGELIJK(s.r.iso3, code);
    });
    return rij == alle.end() ? Slot<landrec>{} : *rij;
}

// The slot of a code, 0 when there is none.
int32_t slotnr(const Codetabel& t, const Lijstcode& code) {
    if (t.plaats == Codetabel::ISO)
        return land(code.tekst).nr;
    if (code.nummer < 1 || code.nummer > t.hoogste)
        return 0;
    if (t.plaats == Codetabel::SLOT)
        return code.nummer;
    return gebruiker.set <= SET_MAX ? gebruiker.set * 10 + code.nummer : 0;
}

int lees_slot(const Codetabel& t, char letter, int32_t nr, Coderecord* rec) {
    return nr == 0 ? 0 : iotab(letter, &nr, rec->data(), t.slots);
}

bool heeft_iso(const Coderecord& rec, const std::string& code) {
    return memcmp(rec.data() + ISOPLAATS, code.c_str(), std::min(code.size() + 1, sizeof landrec::iso3)) == 0;
}

// Lock an empty slot for a code that has none yet; 0 when the table is full.
int32_t vrij_slot(const Codetabel& t) {
    Coderecord rec{};
    for (int32_t nr = 1; nr <= t.slots.slots; nr++) {
        if (lees_slot(t, 'R', nr, &rec))
            continue;
        if (!lees_slot(t, 'X', nr, &rec))
            return nr;
        iotab('U', &nr, nullptr, t.slots); // another took it meanwhile
    }
    return 0;
}

// Has another user entered the country meanwhile?
bool dubbel(const Lijstcode& code) {
    landen_vergeet();
    const int32_t nr = land(code.tekst).nr;
    return nr != 0 && nr != vast;
}

int neem_slot(const Codetabel& t, const Lijstcode& code, Coderecord* rec) {
    if (t.plaats == Codetabel::ISO)
        landen_vergeet(); // another user may have added or moved it
    vast = slotnr(t, code);
    if (t.plaats != Codetabel::ISO)
        return vast == 0 ? -1 : lees_slot(t, 'X', vast, rec);
    if (vast != 0) {
        if (lees_slot(t, 'X', vast, rec) && heeft_iso(*rec, code.tekst))
            return 1;
        iotab('U', &vast, nullptr, t.slots);
    }
    vast = vrij_slot(t);
    if (vast == 0) {
        error("%s", TXT(T_TABEL_VOL));
        return -1;
    }
    *rec = {};
    memcpy(rec->data() + ISOPLAATS, code.tekst.data(), std::min(code.tekst.size(), sizeof landrec::iso3));
    return 0;
}

// ---- pairs

Coderecord sleutel(const Codetabel& t, const Lijstcode& code) {
    Coderecord rec{};
    const auto nummer = static_cast<uint16_t>(code.nummer);
    if (t.hoogste)
        memcpy(rec.data(), &nummer, sizeof nummer);
    else
        rec[0] = code.tekst.empty() ? uint8_t{0} : static_cast<uint8_t>(code.tekst[0]);
    return rec;
}

Lijstcode code_van(const Codetabel& t, const Coderecord& rec) {
    uint16_t nummer;
    memcpy(&nummer, rec.data(), sizeof nummer);
    if (t.hoogste)
        return {nummer, ""};
    return {0, std::string(1, static_cast<char>(rec[0]))};
}

// DTDOELGR may be missing: an empty table. It is made for its first record, unless one half of it is there.
bool maak_paar(const Codetabel& t) {
    constexpr char NAAM[] = "DTDOELGR";
    if (*t.paar)
        return true;
    if (t.paar != &dtdoelgr || IOEXISTS("DTDOELGR.INX") || IOEXISTS("DTDOELGR.TXT") ||
        !DDNEW(DDNUMMER(NAAM), NAAM)) {
        MELDBOX(MELD_ALARM, TXT(T_TABEL_ONTBREEKT), nullptr, nullptr);
        return false;
    }
    *t.paar = IXOPEN(NAAM, 2);
    return true;
}

bool paar_wis(ICB* icb, Coderecord rec) {
    const int geweigerd = IXWEIGERINGEN;
    if (IXREAD(icb, rec.data()))
        IXDELETE(icb, rec.data());
    else
        IXUNLOCK(icb, rec.data());
    return IXWEIGERINGEN == geweigerd;
}

} // namespace

std::string codetekst(const Lijstcode& code) {
    return code.tekst.empty() ? std::to_string(code.nummer) : code.tekst;
}

std::string code_naam(const Codetabel& t, const Coderecord& rec) {
    const auto* begin = reinterpret_cast<const char*>(rec.data() + t.tekst);
    return std::string(VASTTRIM({begin, strnlen(begin, static_cast<size_t>(t.tekstbreedte))}));
}

int code_lees(const Codetabel& t, const Lijstcode& code, bool slot, Coderecord* rec) {
    *rec = {};
    if (t.plaats == Codetabel::ISO && !slot) {
        const Slot<landrec> gevonden = land(code.tekst);
        memcpy(rec->data(), &gevonden.r, sizeof gevonden.r);
        return gevonden.nr != 0;
    }
    if (t.plaats != Codetabel::PAAR)
        return slot ? neem_slot(t, code, rec) : lees_slot(t, 'R', slotnr(t, code), rec);
    *rec = sleutel(t, code);
    if (code.leeg() || code.nummer > t.hoogste || (slot && !maak_paar(t)))
        return slot ? -1 : 0;
    if (!*t.paar)
        return 0;
    const Sleutelstand k1(*t.paar);
    const int gelezen = slot ? IXREADL(*t.paar, rec->data()) : IXREAD(*t.paar, rec->data());
    if (gelezen != 1)
        *rec = sleutel(t, code);
    return gelezen;
}

bool code_schrijf(const Codetabel& t, const Lijstcode& code, const Coderecord& rec) {
    Coderecord kopie = rec;
    bool goed;
    if (t.plaats == Codetabel::PAAR) {
        const Sleutelstand k1(*t.paar);
        goed = IXWRITE(*t.paar, kopie.data()) == 1;
        if (!goed)
            IXREADL(*t.paar, kopie.data()); // the write let go
    } else if (t.plaats == Codetabel::ISO && dubbel(code)) {
        error("<%s> %s", code.tekst.c_str(), TXT(T_CODE_BESTAAT));
        goed = false;
    } else {
        goed = iotab('w', &vast, kopie.data(), t.slots) == 1;
        if (goed)
            code_vrij(t, code);
    }
    landen_vergeet();
    stam_gewijzigd();
    return goed;
}

bool code_wis(const Codetabel& t, const Lijstcode& code) {
    Coderecord rec{};
    bool goed = !t.hangt || t.hangt(code.nummer);
    if (goed && t.plaats == Codetabel::PAAR) {
        const Sleutelstand k1(*t.paar);
        goed = paar_wis(*t.paar, sleutel(t, code));
    } else if (goed) {
        goed = iotab('D', &vast, rec.data(), t.slots) == 1;
    }
    landen_vergeet();
    stam_gewijzigd();
    return goed;
}

void code_vrij(const Codetabel& t, const Lijstcode& code) {
    if (t.plaats == Codetabel::PAAR) {
        const Sleutelstand k1(*t.paar);
        IXUNLOCK(*t.paar, sleutel(t, code).data());
    } else {
        iotab('U', &vast, nullptr, t.slots);
    }
}

bool code_mogelijk(const Codetabel& t, const Lijstcode& code) {
    if (t.plaats == Codetabel::ISO)
        return code.tekst.size() == sizeof landrec::iso3 &&
               std::all_of(code.tekst.begin(), code.tekst.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
    if (t.plaats == Codetabel::PAAR && t.hoogste == 0)
        return code.tekst.size() == 1;
    return code.nummer >= 1 && code.nummer <= t.hoogste &&
           (t.plaats != Codetabel::SET || slotnr(t, code) != 0);
}

std::vector<Coderij> code_rijen(const Codetabel& t) {
    std::vector<Coderij> uit;
    Coderecord rec{};
    if (t.plaats == Codetabel::PAAR) {
        if (!*t.paar)
            return uit;
        const Sleutelstand k1(*t.paar);
        int rest = std::max((*t.paar)->h.nrecs, 0) + 1; // a damaged index may lead round
        for (int er = IXFIRSTR(*t.paar, rec.data(), 0); er == 1 && rest > 0;
             er = IXNEXT(*t.paar, rec.data()), rest--)
            if (const Lijstcode code = code_van(t, rec); !code.leeg())
                uit.push_back({code, code_naam(t, rec)});
        return uit;
    }
    if (t.plaats == Codetabel::ISO) {
        for (const Slot<landrec>& s : landen.alle())
            if (!VASTLEEG(s.r.iso3))
                uit.push_back({{0, VASTTEKST(s.r.iso3)}, VASTTEKST(s.r.naam)});
        std::sort(uit.begin(), uit.end(),
                  [](const Coderij& a, const Coderij& b) { return a.code.tekst < b.code.tekst; });
        return uit;
    }
    const int voor = t.plaats == Codetabel::SET ? gebruiker.set * 10 : 0;
    for (int32_t nr = voor; iotab('N', &nr, rec.data(), t.slots) && nr - voor <= t.hoogste;)
        uit.push_back({{nr - voor, ""}, code_naam(t, rec)});
    return uit;
}

void landen_vergeet() {
    landen.vergeet();
}

} // namespace zg
