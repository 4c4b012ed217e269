// ixstat: what a pair is: definition, counts, and for each key the depth, nodes and fill of its tree.
#include "shared/syscalls.h"
#include "store/node.h"
#include "term/natl.h"
#include "term/vast.h"
#include "tools/dump.h"
#include "tools/opdracht.h"
#include <cstring>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace zg {

namespace {

struct Boom {
    int diepte = 0;
    int64_t knopen = 0, bladen = 0, ingangen = 0, leeg = 0;
    bool heel = true; // no child outside the file, none met twice
};

Boom tel(const Paar& paar, int sleutel, std::vector<bool>& gezien) {
    Boom b;
    const int ingang = paar.kop.keydef[sleutel - 1].keylen + 4;
    std::vector<int32_t> stapel{sleutel};
    while (!stapel.empty()) {
        const int32_t blok = stapel.back();
        stapel.pop_back();
        IXKNOOP k;
        if (blok < 1 || blok >= static_cast<int64_t>(gezien.size()) || gezien[static_cast<size_t>(blok)] ||
            IXBLOKLEES(paar.idx, blok, &k, sizeof k) != IXBLOK || k.keyno != sleutel ||
            k.count * ingang > KNOOPRUIMTE) {
            b.heel = false;
            continue;
        }
        gezien[static_cast<size_t>(blok)] = true;
        b.diepte = std::max<int>(b.diepte, k.level);
        b.knopen++;
        if (k.level <= 1) {
            b.bladen++;
            b.ingangen += k.count;
            continue;
        }
        for (int i = 1; i <= k.count; i++)
            stapel.push_back(LEES32(k.entries + i * ingang - 4));
    }
    return b;
}

int64_t tel_vrij(const Paar& paar) {
    int64_t vrij = 0, nr = paar.kop.freehead;
    const int64_t slots = paar.datbytes / paar.kop.reclen; // no chain is longer, whatever the header says
    for (; nr >= 0 && nr < slots && vrij < slots; vrij++) {
        int32_t volgende;
        if (SYSLEES(paar.dat, &volgende, 4, nr * paar.kop.reclen + 1) != 4)
            break;
        nr = volgende;
    }
    return vrij;
}

// What is told of a pair.
struct Stat {
    std::vector<Boom> bomen;
    int64_t blokken = 0, ongebruikt = 0, vrij = 0;
    int gereserveerd = 0;
};

Stat meet(const Paar& paar) {
    Stat s;
    s.blokken = paar.idxbytes / IXBLOK;
    std::vector<bool> gezien(static_cast<size_t>(s.blokken));
    int64_t knopen = 2; // header and queue
    for (int k = 1; k <= paar.kop.nkeys; k++) {
        s.bomen.push_back(tel(paar, k, gezien));
        knopen += s.bomen.back().knopen;
    }
    s.vrij = tel_vrij(paar);
    s.ongebruikt = std::max<int64_t>(0, s.blokken - knopen);
    IXKNOOP rij;
    if (IXBLOKLEES(paar.idx, paar.kop.nkeys + 1, &rij, sizeof rij) == IXBLOK)
        s.gereserveerd = rij.count;
    return s;
}

void als_json(const Paar& paar, const Stat& s) {
    nlohmann::json j = {{"name", tabelnaam(paar.naam)},
                        {"title", tekst_uit(VASTTEKST(paar.kop.title))},
                        {"reclen", paar.kop.reclen},
                        {"records", paar.kop.nrecs - s.vrij},
                        {"free", s.vrij},
                        {"blocks", s.blokken},
                        {"unused_blocks", s.ongebruikt},
                        {"reserved_keys", s.gereserveerd},
                        {"version", paar.kop.version},
                        {"busy", paar.kop.busy},
                        {"keys", nlohmann::json::array()}};
    for (size_t k = 0; k < s.bomen.size(); k++)
        j["keys"].push_back({{"key", sleuteltekst(paar.kop.keydef[k])},
                             {"length", paar.kop.keydef[k].keylen},
                             {"depth", s.bomen[k].diepte},
                             {"nodes", s.bomen[k].knopen},
                             {"leaves", s.bomen[k].bladen},
                             {"entries", s.bomen[k].ingangen},
                             {"whole", s.bomen[k].heel}});
    puts(toon_json(j.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace)).c_str());
}

void als_tekst(const Paar& paar, const Stat& s) {
    auto L = [](int64_t n) { return static_cast<long long>(n); };
    tool_zeg("%s  \"%s\"  %d bytes a record, version %d%s\n", paar.naam.c_str(),
             tekst_uit(VASTTEKST(paar.kop.title)).c_str(), paar.kop.reclen, paar.kop.version,
             paar.kop.busy ? ", marked busy" : "");
    tool_zeg("  %lld records, %lld free; %lld index blocks, %lld unused; %d keys reserved\n",
             L(paar.kop.nrecs - s.vrij), L(s.vrij), L(s.blokken), L(s.ongebruikt), s.gereserveerd);
    for (size_t k = 0; k < s.bomen.size(); k++) {
        const Boom& b = s.bomen[k];
        const int maxent = paar.kop.keydef[k].maxent;
        const double plaatsen = static_cast<double>(b.bladen) * (maxent - 1);
        tool_zeg("  key %zu  %-40s %3d bytes, depth %d, %lld nodes, %lld leaves %.0f%% full%s\n", k + 1,
                 sleuteltekst(paar.kop.keydef[k]).c_str(), paar.kop.keydef[k].keylen, b.diepte, L(b.knopen),
                 L(b.bladen), plaatsen > 0 ? 100.0 * static_cast<double>(b.ingangen) / plaatsen : 0.0,
                 b.heel ? "" : ", tree not whole");
    }
}

int een(const std::string& naam, const Opdracht& o) {
    Paar paar;
    if (int fout = paar_neem(naam, o.wacht, &paar))
        return fout;
    if (std::string kwaal = paar_kop(&paar); !kwaal.empty())
        return klacht(naam, kwaal), FOUT_GEVONDEN;
    const Stat s = meet(paar);
    paar_los(&paar);
    o.json ? als_json(paar, s) : als_tekst(paar, s);
    return GOED;
}

} // namespace

int ixstat(const Opdracht& o) {
    std::vector<std::string> namen;
    int slechtst = paren(o.namen, &namen) ? GOED : FOUT_GEBRUIKT;
    for (const std::string& naam : namen)
        if (int uitkomst = een(naam, o); slechtst == GOED)
            slechtst = uitkomst;
    return slechtst;
}

} // namespace zg
