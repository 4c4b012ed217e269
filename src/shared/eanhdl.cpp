// Module eanhdl: codes of series and sizes made, deleted and entered.
#include "shared/eanhdl.h"
#include "shared/ean.h"
#include "shared/iomaat.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/vast.h"
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace zg {

void (*EANHAAK)(const eanrec& rec, int positie);

namespace {

constexpr int32_t TELLERRECORD = 14;

// A record of the file in a buffer that holds whatever its header says.
struct eanbuffer {
    uint8_t bytes[IXRECMAX + 1] = {};
    eanbuffer() = default;
    explicit eanbuffer(const char* code) {
        eanrec rec{};
        VASTIN(rec.code, code);
        memcpy(bytes, &rec, sizeof rec);
    }
    explicit eanbuffer(const eanrec& rec) { memcpy(bytes, &rec, sizeof rec); }
    eanrec rec(const ICB* icb) const {
        eanrec uit;
        stam_uit(bytes, icb->h.reclen, &uit);
        return uit;
    }
};

// Key 1 current, and the mutex held where it could be had.
class mutex {
public:
    explicit mutex(ICB* icb) : icb_(icb), sleutel_(IXSLEUTEL(icb)), rec_("0") {
        IXSWITCH(icb, 1);
        if (!IXREAD(icb_, rec_.bytes)) {
            rec_ = eanbuffer("0");
            if (!IXWRITE(icb_, rec_.bytes)) // told
                return;
        }
        const int er = IXREADL(icb_, rec_.bytes);
        vast = er == 1;
        if (!er) // gone since: nobody deletes it
            IXUNLOCK(icb_, rec_.bytes);
    }
    ~mutex() {
        if (vast)
            IXUNLOCK(icb_, eanbuffer("0").bytes);
        IXSWITCH(icb_, sleutel_);
    }
    mutex(const mutex&) = delete;
    mutex& operator=(const mutex&) = delete;
    bool vast = false;

private:
    ICB* icb_;
    int sleutel_;
    eanbuffer rec_;
};

bool van_maat(const eanrec& rec, const seriesleutel& serie, uint8_t maat) {
    return rec.soort == 'M' && rec.artikelgroep == serie.artikelgroep && rec.kleur == serie.kleur &&
           rec.volgnummer == serie.volgnummer && rec.maat == maat;
}

std::vector<uint8_t> maten_van(const uint8_t* masker, mthandle* balk) {
    std::vector<uint8_t> uit;
    for (uint8_t maat = 1; maat <= MATEN; maat++)
        if (maat_in(masker, maat) && (!balk || mtpos(balk, maat)))
            uit.push_back(maat);
    if (balk)
        std::stable_sort(uit.begin(), uit.end(),
                         [balk](uint8_t a, uint8_t b) { return mtpos(balk, a) < mtpos(balk, b); });
    return uit;
}

uint32_t laatste(const systeller& teller) {
    return static_cast<uint32_t>(teller.laatste);
}

// The next number whose code isn't in the file; empty when there is none or the counter could not be written, told.
std::string nieuwe_code(ICB* icb) {
    systeller teller;
    int32_t nr = TELLERRECORD;
    iotab('X', &nr, &teller, SYS_RECORD);
    std::string code;
    uint32_t n = laatste(teller);
    do {
        if (n >= EANNUMMER_MAX) {
            iotab('U', &nr, &teller, SYS_RECORD);
            ALARMBOX(TXT(T_EAN_OP));
            return "";
        }
        code = ean_maat(static_cast<int32_t>(++n));
    } while (IXEXISTS(icb, eanbuffer(code.c_str()).bytes));
    teller.laatste = static_cast<int32_t>(n);
    return iotab('W', &nr, &teller, SYS_RECORD) ? code : "";
}

bool maak(ICB* icb, const seriesleutel& serie, uint8_t maat, uint8_t bron, int positie) {
    eanrec rec;
    if (!leeseanmaat(icb, &rec, serie, maat)) {
        const std::string code = nieuwe_code(icb);
        if (code.empty())
            return false;
        VASTIN(rec.code, code);
        rec.bron = bron;
        rec.datum = VANDAAG();
        if (!IXWRITE(icb, eanbuffer(rec).bytes))
            return false;
    }
    if (EANHAAK && kassakoppeling())
        EANHAAK(rec, positie);
    return true;
}

// The record in hand by key 1, when `zelfde` still says it is meant. False: refused.
template <class F> bool verwijder(ICB* icb, eanbuffer* rec, F zelfde) {
    if (!IXREAD(icb, rec->bytes))
        return true;
    const int er = IXREADL(icb, rec->bytes);
    if (er == 1 && zelfde(*rec))
        return IXDELETE(icb, rec->bytes) >= 0;
    if (er >= 0)
        IXUNLOCK(icb, rec->bytes);
    return er >= 0;
}

bool verwijder_code(ICB* icb, const seriesleutel& serie, uint8_t maat) {
    eanrec rec;
    if (!leeseanmaat(icb, &rec, serie, maat))
        return true;
    eanbuffer buffer(rec);
    return verwijder(icb, &buffer, [&](const eanbuffer& b) { return van_maat(b.rec(icb), serie, maat); });
}

constexpr size_t BARC_MAAT = 23; // in DTBARC a code's size; the other fields stand as in DTEAN

bool barc_van(const eanbuffer& b, const seriesleutel& serie, uint8_t maat) {
    eanrec rec;
    stam_uit(b.bytes, sizeof rec, &rec);
    return rec.artikelgroep == serie.artikelgroep && rec.kleur == serie.kleur &&
           rec.volgnummer == serie.volgnummer && b.bytes[BARC_MAAT] == maat;
}

bool verwijder_barc(ICB* barc, const seriesleutel& serie, uint8_t maat) {
    auto zelfde = [&](const eanbuffer& b) { return barc_van(b, serie, maat); };
    if (barc->h.nkeys < 2) { // a file without the key for it is walked
        eanbuffer b;
        int er;
        for (int32_t nr = 0; (er = IXGET(barc, b.bytes, nr)) >= 0; nr++)
            if (er && zelfde(b) && !verwijder(barc, &b, zelfde))
                return false;
        return true;
    }
    for (int32_t ronde = barc->h.nrecs; ronde >= 0; ronde--) {
        eanrec rec{};
        rec.artikelgroep = serie.artikelgroep;
        rec.kleur = serie.kleur;
        rec.volgnummer = serie.volgnummer;
        eanbuffer b(rec);
        b.bytes[BARC_MAAT] = maat;
        IXSWITCH(barc, 2);
        const int er = IXFIRSTR(barc, b.bytes, 4);
        IXSWITCH(barc, 1);
        if (!er || !zelfde(b))
            return true;
        if (!verwijder(barc, &b, zelfde))
            return false;
    }
    return true;
}

// Codes of a series' sizes away, from DTBARC too when it is given.
bool verwijder_alle(ICB* icb, const seriesleutel& serie, const std::vector<uint8_t>& maten, ICB* barc) {
    return std::all_of(maten.begin(), maten.end(), [&](uint8_t maat) {
        return verwijder_code(icb, serie, maat) && (!barc || verwijder_barc(barc, serie, maat));
    });
}

} // namespace

bool eanhdl(char letter, ICB* dtean, const seriesleutel& serie, const uint8_t* masker, uint8_t bron,
            mthandle* balk) {
    if (!dtean)
        INTERNAL("eanhdl", 1);
    const mutex slot(dtean);
    if (!slot.vast)
        return false;
    const std::vector<uint8_t> maten = maten_van(masker, balk);
    switch (letter) {
    case 'W':
        return std::all_of(maten.begin(), maten.end(), [&](uint8_t maat) {
            return maak(dtean, serie, maat, bron, balk ? mtpos(balk, maat) : maat);
        });
    case 'D':
        return verwijder_alle(dtean, serie, maten, nullptr);
    case 'B': {
        ICB* barc = stam_aanwezig("DTBARC") ? IXOPEN("DTBARC", 2) : nullptr;
        const bool gelukt = verwijder_alle(dtean, serie, maten, barc);
        if (barc)
            IXCLOSE(barc);
        return gelukt;
    }
    default:
        return false;
    }
}

int ean_nodig(ICB* dtean, const seriesleutel& serie, const uint8_t* masker) {
    const std::vector<uint8_t> maten = maten_van(masker, nullptr);
    eanrec rec;
    return static_cast<int>(std::count_if(
        maten.begin(), maten.end(), [&](uint8_t maat) { return !leeseanmaat(dtean, &rec, serie, maat); }));
}

int64_t ean_over() {
    systeller teller;
    int32_t nr = TELLERRECORD;
    iotab('R', &nr, &teller, SYS_RECORD);
    return std::max<int64_t>(0, int64_t{EANNUMMER_MAX} - laatste(teller));
}

namespace {

// What stands against a code typed for a size: told. The record that has to give way is in *oud, kind 0 for none.
bool code_mag(const std::string& code, ICB* icb, const seriesleutel& serie, uint8_t maat,
              bool (*heeft_maat)(const seriesleutel&, uint8_t), eanrec* oud) {
    *oud = {};
    if (!ean_geldig(code.c_str())) {
        error("<%s> %s", code.c_str(), TXT(T_EAN_ONGELDIG));
        return false;
    }
    if (ean_intern(code.c_str())) {
        error("%s", TXT(T_EAN_NIET_TOEGESTAAN));
        return false;
    }
    eanrec rec;
    if (!leesean(icb, &rec, code.c_str()))
        return true;
    if (rec.soort == 'A') {
        error("<%s> %s %d", code.c_str(), TXT(T_EAN_BIJ_ARTIKEL), rec.artikelgroep);
        return false;
    }
    const seriesleutel van = {rec.artikelgroep, rec.kleur, rec.volgnummer};
    if (!van_maat(rec, serie, maat) && heeft_maat(van, rec.maat)) {
        error("<%s> %s %d.%d.%d!", code.c_str(), TXT(T_EAN_BIJ_SERIE), van.artikelgroep, van.kleur,
              van.volgnummer);
        return false;
    }
    *oud = rec;
    return true;
}

// The code of a size, kept in its record: the key moves with it.
bool zet_code(ICB* icb, const eanrec& was, const std::string& code) {
    eanrec rec = was;
    VASTIN(rec.code, code);
    rec.datum = VANDAAG();
    if (VASTLEEG(was.code))
        return IXWRITE(icb, eanbuffer(rec).bytes) == 1;
    eanbuffer oud(was);
    const int er = IXREAD(icb, oud.bytes) ? IXREADL(icb, oud.bytes) : 0;
    if (er != 1)
        return er == 0 && IXWRITE(icb, eanbuffer(rec).bytes) == 1;
    memcpy(oud.bytes, &rec, sizeof rec);
    const bool gelukt = IXUPDATE(icb, oud.bytes) == 1;
    IXUNLOCK(icb, gelukt ? oud.bytes : eanbuffer(was).bytes);
    return gelukt;
}

} // namespace

bool ean_veld(int rij, int kolom, ICB* dtean, const seriesleutel& serie, uint8_t maat,
              bool (*heeft_maat)(const seriesleutel&, uint8_t)) {
    if (!dtean)
        INTERNAL("eanhdl", 1);
    eanrec was, oud;
    leeseanmaat(dtean, &was, serie, maat); // what isn't there has its key fields filled in
    char veld[sizeof was.code];
    memcpy(veld, was.code, sizeof veld);
    std::string code;
    do {
        INGAVE(rij, kolom, "13c[1234567890]", &SCHERM.toets[key_cancel], veld);
        if (TOETSWEG() || VASTGELIJK(veld, VASTUIT(was.code)))
            return false;
        code = VASTTEKST(veld);
    } while (!code_mag(code, dtean, serie, maat, heeft_maat, &oud));
    const mutex slot(dtean);
    if (!slot.vast)
        return false;
    eanbuffer weg(oud);
    if (oud.soort &&
        !verwijder(dtean, &weg, [&](const eanbuffer& b) { return !memcmp(&oud, b.bytes, sizeof oud); }))
        return false;
    return zet_code(dtean, was, code);
}

} // namespace zg
