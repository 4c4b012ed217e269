// Module voorverd: the records of pre-distributions, see sub/voorverd.h. Everything goes by key 1 (size type, number,
// sequence), which every maker's file has. Whoever changes a number has its first record in hand, there or not.
#include "sub/voorverd.h"
#include "shared/filveld.h"
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "shared/sleutelstand.h"
#include "store/ix.h"
#include "sub/teksten.h"
#include "sub/vvdeel.h"
#include "term/prompt.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

constexpr int32_t CELMEEST = 99999; // what a cell of the grid takes: more than that on file is damage

// A record as the store has it; what lies behind the struct stays zero.
struct Ruimte {
    uint8_t bytes[IXRECMAX] = {};
    Ruimte(uint8_t maatsoort, uint16_t nummer, uint16_t volgnummer) {
        vvrec sleutel{};
        sleutel.maatsoort = maatsoort, sleutel.nummer = nummer, sleutel.volgnummer = volgnummer;
        memcpy(bytes, &sleutel, sizeof sleutel);
    }
    explicit Ruimte(const vvrec& rec) { memcpy(bytes, &rec, sizeof rec); }
};

// The records of a type, or (delen 2) of one of its numbers.
std::vector<vvrec> lees(uint8_t maatsoort, uint16_t nummer, int delen) {
    std::vector<vvrec> uit;
    if (!dtvvtab)
        return uit;
    const Sleutelstand k1(dtvvtab);
    Ruimte r(maatsoort, nummer, 0);
    for (int er = IXFIRSTR(k1.icb, r.bytes, delen); er; er = IXNEXTR(k1.icb, r.bytes, delen))
        stam_uit(r.bytes, k1.icb->h.reclen, &uit.emplace_back());
    return uit;
}

// The table as records: a row for every branch with pieces, branches with equal rows together.
std::vector<vvrec> als_records(uint8_t maatsoort, uint16_t nummer, const aantalmatrix& tabel) {
    std::vector<vvrec> uit;
    for (int f = 0; f < firma.filialen; f++) {
        const int32_t* rij = tabel.data() + matrix_plaats(f, 0);
        if (rij[0] <= 0)
            continue;
        auto zelfde = std::find_if(uit.begin(), uit.end(), [&](const vvrec& rec) {
            return memcmp(&rec.aantal, rij, sizeof rec.aantal) == 0;
        });
        if (zelfde == uit.end()) {
            vvrec rec{};
            rec.maatsoort = maatsoort, rec.nummer = nummer;
            rec.volgnummer = static_cast<uint16_t>(uit.size() + 1);
            memcpy(&rec.aantal, rij, sizeof rec.aantal);
            zelfde = uit.insert(uit.end(), rec);
        }
        fil_erbij(zelfde->filialen, f);
    }
    return uit;
}

// One record written or deleted, with its lock, which for the first one we have; it is let go either way.
bool schrijf(ICB* icb, const vvrec& rec) {
    const int geweigerd = IXWEIGERINGEN;
    if ((rec.volgnummer == 1 || IXREADL(icb, Ruimte(rec).bytes) >= 0) && IXWRITE(icb, Ruimte(rec).bytes))
        return true;
    if (IXWEIGERINGEN == geweigerd)
        error("%s", TXT(T_NIET_VASTGELEGD));
    return false;
}

bool wis(ICB* icb, const vvrec& rec) {
    Ruimte r(rec);
    const int er = rec.volgnummer == 1 ? IXREAD(icb, r.bytes) : IXREADL(icb, r.bytes);
    if (er == 1)
        return IXDELETE(icb, r.bytes) == 0;
    if (er == 0)
        IXUNLOCK(icb, Ruimte(rec).bytes);
    return er == 0;
}

const vvrec* zoek(const std::vector<vvrec>& in, int volgnummer) {
    for (const vvrec& rec : in)
        if (rec.volgnummer == volgnummer)
            return &rec;
    return nullptr;
}

// All but the first record, which holds the lock: written, then those that are left over deleted.
bool vervang_rest(ICB* icb, const std::vector<vvrec>& oud, const std::vector<vvrec>& nieuw) {
    for (const vvrec& rec : nieuw)
        if (rec.volgnummer != 1 && !schrijf(icb, rec))
            return false;
    for (const vvrec& rec : oud)
        if (rec.volgnummer != 1 && !zoek(nieuw, rec.volgnummer) && !wis(icb, rec))
            return false;
    return true;
}

void niet_wachten(ICB*) {}

} // namespace

std::vector<uint16_t> vv_nummers(uint8_t maatsoort) {
    std::vector<uint16_t> uit;
    for (const vvrec& rec : lees(maatsoort, 0, 1))
        if (rec.nummer >= 1 && rec.nummer <= VVNUMMERS && (uit.empty() || uit.back() != rec.nummer))
            uit.push_back(rec.nummer);
    return uit;
}

bool vv_laden(uint8_t maatsoort, uint16_t nummer, aantalmatrix* tabel, const Vvpassing* passing) {
    fmclear(tabel);
    int64_t alles = 0;
    for (const vvrec& rec : lees(maatsoort, nummer, 2))
        for (int f = 0; f < firma.filialen; f++) {
            if (!fil_in(rec.filialen, f) || (passing && fil_in(passing->uitgesloten, f)))
                continue;
            for (int kol = 1; kol <= balk_kolommen(); kol++) {
                const int32_t n = rec.aantal[balk_maat(kol)];
                int32_t& cel = matrix_cel(*tabel, f, balk_maat(kol));
                if (n < 0 || n > CELMEEST || alles + n - cel > INT32_MAX)
                    continue;
                alles += n - cel;
                cel = n;
            }
        }
    fmtotals(tabel);
    for (int kol = 1; passing && kol <= balk_kolommen(); kol++) {
        const int maat = balk_maat(kol);
        const int32_t rest = passing->rest >= 0 && passing->rest < firma.filialen
                                 ? matrix_cel(*tabel, passing->rest, maat)
                                 : 0;
        if (passing->totalen[maat] > 0 && matrix_totalen(*tabel)[maat] - rest > passing->totalen[maat])
            return false;
    }
    return true;
}

bool vv_vervang(uint8_t maatsoort, uint16_t nummer, const aantalmatrix& tabel) {
    const Sleutelstand k1(dtvvtab);
    const std::vector<vvrec> oud = lees(maatsoort, nummer, 2);
    const std::vector<vvrec> nieuw = als_records(maatsoort, nummer, tabel);
    bool goed = vervang_rest(k1.icb, oud, nieuw), vast = true;
    if (goed && (!nieuw.empty() || zoek(oud, 1))) {
        goed = nieuw.empty() ? wis(k1.icb, *zoek(oud, 1)) : schrijf(k1.icb, nieuw[0]);
        vast = false;
    }
    if (!goed)
        vervang_rest(k1.icb, nieuw, oud); // as it was, as far as the disk takes it
    if (vast)
        vv_laatlos(maatsoort, nummer);
    stam_gewijzigd();
    return goed;
}

bool vv_bewaren(uint8_t maatsoort, uint16_t nummer, const aantalmatrix& tabel) {
    return vv_grijp(maatsoort, nummer) && vv_vervang(maatsoort, nummer, tabel);
}

bool vv_grijp(uint8_t maatsoort, uint16_t nummer) {
    const Sleutelstand k1(dtvvtab);
    return IXREADL(k1.icb, Ruimte(maatsoort, nummer, 1).bytes) >= 0;
}

void vv_laatlos(uint8_t maatsoort, uint16_t nummer) {
    const Sleutelstand k1(dtvvtab);
    IXUNLOCK(k1.icb, Ruimte(maatsoort, nummer, 1).bytes);
}

uint16_t vv_grijp_vrije(uint8_t maatsoort) {
    const Sleutelstand k1(dtvvtab);
    const std::vector<uint16_t> bezet = vv_nummers(maatsoort);
    auto wachten = IXWAITHOOK;
    int vast = 0;
    uint16_t nummer = 0;
    while (vast == 0 && ++nummer <= VVNUMMERS) {
        if (std::find(bezet.begin(), bezet.end(), nummer) != bezet.end())
            continue;
        const Ruimte r(maatsoort, nummer, 1);
        memset(k1.icb->keybuf, 0, sizeof k1.icb->keybuf);
        IXBLDKEY(k1.icb, r.bytes, IXKEYLEN(k1.icb, 0));
        IXWAITHOOK = niet_wachten;
        vast = IXLOCK(k1.icb, 4);
        IXWAITHOOK = wachten;
        if (vast == 1 && IXEXISTSP(k1.icb, r.bytes, 2)) { // added since we looked
            vv_laatlos(maatsoort, nummer);
            vast = 0;
        }
    }
    if (vast == 0)
        FOUTBOX(TXT(T_VV_GEEN_RUIMTE), 0);
    return vast == 1 ? nummer : uint16_t{0};
}

} // namespace zg
