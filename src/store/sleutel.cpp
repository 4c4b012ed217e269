// Keys: definition texts, building a key from a record and back, comparing. A part is cut from record
// positions counted from 1. An integer part is stored most significant byte first, so that its bytes compare
// unsigned; a text part as typed, NUL padded, and compared by store/collate.
#include "shared/report.h"
#include "store/node.h"
#include "store/teksten.h"
#include "term/scherm.h"
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace zg {
namespace {

constexpr int TOKENMAX = 24;

bool geheel(int breedte) {
    return breedte == 1 || breedte == 2 || breedte == 4;
}

bool alleen_getallen(const IXKEYDEF& def) {
    for (int d = 0; d < IXDELEN && def.ptype[d]; d++)
        if (def.ptype[d] != 'I')
            return false;
    return true;
}

int delen_lengte(const IXKEYDEF& def, int delen) {
    int som = 0;
    for (int d = 0; d < delen; d++)
        som += IXDEELBREEDTE(def, d);
    return som;
}

// Next token of a definition text, blanks cut; false at the end.
bool volgend(const char*& p, std::string* token) {
    if (!p)
        return false;
    const char* komma = strchr(p, ',');
    std::string t(p, komma ? static_cast<size_t>(komma - p) : strlen(p));
    p = komma ? komma + 1 : nullptr;
    size_t van = t.find_first_not_of(' ');
    *token = van == std::string::npos ? "" : t.substr(van, t.find_last_not_of(' ') - van + 1);
    if (token->size() > TOKENMAX)
        token->resize(TOKENMAX);
    return true;
}

int getal(const char*& p) {
    std::string t;
    return volgend(p, &t) ? atoi(t.c_str()) : 0;
}

void zet_tekst(char* veld, size_t ruimte, const std::string& tekst) {
    memset(veld, 0, ruimte);
    memcpy(veld, tekst.data(), std::min(ruimte, tekst.size()));
}

[[noreturn]] void onjuist(const ICB* icb, int sleutel) {
    char wat[48];
    snprintf(wat, sizeof wat, TXT(T_IX_SLEUTEL_ONJUIST), sleutel);
    SCRFATAL(TXT(T_IX_REGEL), icb->h.name, icb->h.title, wat);
}

void zet_kop(ICB* icb, const char* p) {
    std::string t;
    if (volgend(p, &t) && !t.empty())
        zet_tekst(icb->h.title, sizeof icb->h.title, t);
    if (int n = getal(p); n > 0) {
        if (n > IXRECMAX)
            onjuist(icb, 0);
        icb->h.reclen = static_cast<int16_t>(n);
    }
}

} // namespace

void IXUPDFCB(ICB* icb, int sleutel, const char* tekst) {
    IXEIS(icb, "IXUPDFCB");
    if (sleutel == 0)
        return zet_kop(icb, tekst);
    if (sleutel < 1 || sleutel > IXSLEUTELS)
        onjuist(icb, sleutel);
    IXKEYDEF def{};
    memcpy(def.keyname, icb->h.keydef[sleutel - 1].keyname, sizeof def.keyname);
    def.dupflag = 'J';
    int delen = 0, lengte = 0;
    std::string t;
    while (volgend(tekst, &t)) {
        if (t == "NODUPS")
            def.dupflag = 'N';
        else if (t == "I" || t == "C") {
            int van = getal(tekst), tot = getal(tekst);
            if (delen == IXDELEN)
                continue; // there is room for ten
            if (van < 1 || tot < van || tot > 255)
                onjuist(icb, sleutel);
            def.ptype[delen] = t[0];
            def.pstart[delen] = static_cast<uint8_t>(van);
            def.pend[delen++] = static_cast<uint8_t>(tot);
            lengte += tot - van + 1;
        } else if (!t.empty())
            zet_tekst(def.keyname, sizeof def.keyname, t);
    }
    if (sleutel == 1)
        def.dupflag = 'N';
    if (def.dupflag == 'J')
        lengte += 4;
    if (lengte > IXSLEUTELMAX || delen == 0)
        onjuist(icb, sleutel);
    def.keylen = static_cast<uint8_t>(lengte);
    def.maxent = static_cast<uint8_t>(KNOOPRUIMTE / (lengte + 4));
    icb->h.keydef[sleutel - 1] = def;
    icb->h.nkeys = std::max(icb->h.nkeys, static_cast<int8_t>(sleutel));
    IXKIES(icb, sleutel);
}

const char* IXDEFFOUT(const IXHEADER& h) {
    if (h.nkeys < 1 || h.nkeys > IXSLEUTELS)
        return "number of keys is not 1 to 5";
    if (h.reclen < 1 || h.reclen > IXRECMAX)
        return "record length is not 1 to 512";
    for (int k = 0; k < h.nkeys; k++) {
        const IXKEYDEF& def = h.keydef[k];
        if (def.dupflag != 'N' && def.dupflag != 'J')
            return "a key's flag for duplicates is neither N nor J";
        int som = def.dupflag == 'J' ? 4 : 0;
        for (int d = 0; d < IXDELEN && def.ptype[d]; d++) {
            if (def.ptype[d] != 'I' && def.ptype[d] != 'C')
                return "a key part is neither I nor C";
            if (def.pstart[d] < 1 || def.pend[d] < def.pstart[d] || def.pend[d] > h.reclen)
                return "a key part lies outside the record";
            som += IXDEELBREEDTE(def, d);
        }
        if (!def.ptype[0] || som != def.keylen || som > IXSLEUTELMAX)
            return "a key's length is not that of its parts";
        if (def.maxent != KNOOPRUIMTE / (som + 4))
            return "a key's number of entries in a node is wrong";
    }
    return nullptr;
}

const char* IXKOPFOUT(const IXHEADER& h) {
    if (const char* fout = IXDEFFOUT(h))
        return fout;
    if (h.nrecs < 0)
        return "number of records is negative";
    if (h.nblocks < h.nkeys + 2)
        return "number of blocks is too low";
    if (h.freehead >= h.nrecs)
        return "first free record lies behind the last record";
    return nullptr;
}

int IXSLEUTEL(const ICB* icb) {
    IXEIS(icb, "IXSLEUTEL");
    return KNOOP(icb).keyno;
}

const IXKEYDEF& IXDEF(const ICB* icb) {
    int k = KNOOP(icb).keyno;
    if (k < 1 || k > icb->h.nkeys || k > IXSLEUTELS)
        IXSTUK(icb, icb->curblock);
    return icb->h.keydef[k - 1];
}

void IXMAAKSLEUTEL(const IXKEYDEF& def, const void* rec, int32_t recnr, int lengte, uint8_t* uit) {
    const uint8_t* r = static_cast<const uint8_t*>(rec);
    bool nummer = def.dupflag == 'J' && lengte == def.keylen;
    int doel = nummer ? def.keylen - 4 : lengte, vol = 0;
    for (int d = 0; d < IXDELEN && def.ptype[d] && vol < doel; d++) {
        int breed = IXDEELBREEDTE(def, d);
        if (vol + breed > IXSLEUTELMAX)
            break; // only in a definition that nobody has checked
        const uint8_t* van = r + def.pstart[d] - 1;
        uint8_t* naar = uit + vol;
        if (def.ptype[d] == 'C') {
            const size_t b = static_cast<size_t>(breed), n = strnlen(reinterpret_cast<const char*>(van), b);
            memcpy(naar, van, n);
            memset(naar + n, 0, b - n);
        } else if (breed == 4) {
            uint32_t getal;
            memcpy(&getal, van, sizeof getal);
            getal = __builtin_bswap32(getal);
            memcpy(naar, &getal, sizeof getal);
        } else if (geheel(breed))
            for (int i = 0; i < breed; i++)
                naar[i] = van[breed - 1 - i];
        else
            memset(naar, 0, static_cast<size_t>(breed));
        vol += breed;
    }
    if (nummer) {
        uint32_t n = static_cast<uint32_t>(recnr);
        for (int i = 0; i < 4; i++)
            uit[vol + i] = static_cast<uint8_t>(n >> (24 - 8 * i));
    } else if (vol < def.keylen)
        memset(uit + vol, 0, static_cast<size_t>(def.keylen - vol));
}

int IXVERGELIJK(const IXKEYDEF& def, const void* a, const void* b, int lengte) {
    const uint8_t* pa = static_cast<const uint8_t*>(a);
    const uint8_t* pb = static_cast<const uint8_t*>(b);
    lengte = std::min<int>(lengte, def.keylen);
    if (lengte <= 0)
        return 0;
    const int verschil = IXVERSCHIL(pa, pb, lengte); // the parts in front of it are the same
    if (alleen_getallen(def))
        return verschil == lengte ? 0 : pa[verschil] - pb[verschil];
    int begin = 0, breed;
    for (int d = 0; begin < lengte && (breed = IXDEELBREEDTE(def, d)) > 0; begin += breed, d++) {
        if (begin + breed <= verschil)
            continue;
        const int uitslag = def.ptype[d] == 'C'
                                ? IXCOLLATEVANAF(pa + begin, pb + begin, breed, std::max(verschil - begin, 0))
                                : memcmp(pa + begin, pb + begin, static_cast<size_t>(breed));
        if (uitslag)
            return uitslag;
    }
    if (def.dupflag == 'J' && lengte == def.keylen)
        return memcmp(pa + begin, pb + begin, 4);
    return 0;
}

void IXBLDKEY(ICB* icb, const void* rec, int lengte) {
    IXEIS(icb, "IXBLDKEY");
    IXMAAKSLEUTEL(IXDEF(icb), rec, icb->currec, lengte, icb->keybuf);
}

int IXCOMP(ICB* icb, const void* a, const void* b, int lengte) {
    IXEIS(icb, "IXCOMP");
    return IXVERGELIJK(IXDEF(icb), a, b, lengte);
}

int16_t IXKEYLEN(ICB* icb, int delen) {
    IXEIS(icb, "IXKEYLEN");
    const IXKEYDEF& def = IXDEF(icb);
    return static_cast<int16_t>(delen == 0 ? def.keylen : delen_lengte(def, std::min(delen, IXDELEN)));
}

void IXKEYTOREC(ICB* icb, void* rec) {
    IXEIS(icb, "IXKEYTOREC");
    const IXKEYDEF& def = IXDEF(icb);
    const uint8_t* van = icb->curent;
    if (!van)
        return;
    for (int d = 0; d < IXDELEN && def.ptype[d]; d++) {
        int breed = IXDEELBREEDTE(def, d);
        uint8_t* naar = static_cast<uint8_t*>(rec) + def.pstart[d] - 1;
        if (def.ptype[d] == 'C')
            memcpy(naar, van, static_cast<size_t>(breed));
        else if (geheel(breed))
            for (int i = 0; i < breed; i++)
                naar[i] = van[breed - 1 - i];
        else
            memset(naar, 0, static_cast<size_t>(breed));
        van += breed;
    }
}

} // namespace zg
