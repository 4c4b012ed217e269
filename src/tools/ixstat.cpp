// ixstat: what a pair is: definition, counts, and for each key the depth, nodes and fill of its tree.
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

// A node's header and entries as ixstat needs them: level at 1, count at 4, entries of keylen + 4 from 5.
Boom tel(const Paar& paar, int sleutel, std::vector<bool>& gezien) {
    Boom b;
    const int ingang = paar.kop.keydef[sleutel - 1].keylen + 4;
    std::vector<int32_t> stapel{sleutel};
    while (!stapel.empty()) {
        int32_t blok = stapel.back();
        stapel.pop_back();
        uint8_t node[IXBLOK];
        if (blok < 1 || blok >= static_cast<int64_t>(gezien.size()) || gezien[static_cast<size_t>(blok)] ||
            pread(paar.idx, node, IXBLOK, int64_t{blok} * IXBLOK) != IXBLOK || node[0] != sleutel ||
            5 + node[4] * ingang > IXBLOK) {
            b.heel = false;
            continue;
        }
        gezien[static_cast<size_t>(blok)] = true;
        int niveau = static_cast<int8_t>(node[1]);
        b.diepte = std::max(b.diepte, niveau);
        b.knopen++;
        if (niveau <= 1) {
            b.bladen++;
            b.ingangen += node[4];
            continue;
        }
        for (int i = 0; i < node[4]; i++) {
            int32_t kind;
            memcpy(&kind, node + 5 + i * ingang + ingang - 4, 4);
            stapel.push_back(kind);
        }
    }
    return b;
}

int64_t tel_vrij(const Paar& paar) {
    int64_t vrij = 0, nr = paar.kop.freehead;
    const int64_t slots = paar.datbytes / paar.kop.reclen; // no chain is longer, whatever the header says
    for (; nr >= 0 && nr < slots && vrij < slots; vrij++) {
        int32_t volgende;
        if (pread(paar.dat, &volgende, 4, nr * paar.kop.reclen + 1) != 4)
            break;
        nr = volgende;
    }
    return vrij;
}

} // namespace

int ixstat(const Opdracht& o) {
    std::vector<std::string> namen;
    int slechtst = paren(o.namen, &namen) ? GOED : FOUT_GEBRUIKT;
    for (const std::string& naam : namen) {
        Paar paar;
        int uitkomst = paar_open(naam, &paar);
        if (uitkomst == GOED)
            uitkomst = paar_vast(&paar, o.wacht);
        std::string kwaal = uitkomst == GOED ? paar_kop(&paar) : "";
        if (!kwaal.empty()) {
            klacht(naam, kwaal);
            uitkomst = FOUT_GEVONDEN;
        }
        if (uitkomst != GOED) {
            slechtst = slechtst == GOED ? uitkomst : slechtst;
            continue;
        }
        const int64_t blokken = paar.idxbytes / IXBLOK;
        std::vector<bool> gezien(static_cast<size_t>(blokken));
        std::vector<Boom> bomen;
        int64_t knopen = 0;
        for (int s = 1; s <= paar.kop.nkeys; s++) {
            bomen.push_back(tel(paar, s, gezien));
            knopen += bomen.back().knopen;
        }
        int64_t vrij = tel_vrij(paar), ongebruikt = std::max<int64_t>(0, blokken - 2 - knopen);
        uint8_t rij[IXBLOK] = {};
        ssize_t gelezen = pread(paar.idx, rij, IXBLOK, (paar.kop.nkeys + 1) * IXBLOK);
        int gereserveerd = gelezen == IXBLOK ? rij[4] : 0;
        paar_los(&paar);

        if (o.json) {
            nlohmann::json j = {{"name", tabelnaam(naam)},
                                {"title", CP850UTF8(VASTTEKST(paar.kop.title))},
                                {"reclen", paar.kop.reclen},
                                {"records", paar.kop.nrecs - vrij},
                                {"free", vrij},
                                {"blocks", blokken},
                                {"unused_blocks", ongebruikt},
                                {"reserved_keys", gereserveerd},
                                {"version", paar.kop.version},
                                {"busy", paar.kop.busy},
                                {"keys", nlohmann::json::array()}};
            for (size_t s = 0; s < bomen.size(); s++)
                j["keys"].push_back({{"key", sleuteltekst(paar.kop.keydef[s])},
                                     {"length", paar.kop.keydef[s].keylen},
                                     {"depth", bomen[s].diepte},
                                     {"nodes", bomen[s].knopen},
                                     {"leaves", bomen[s].bladen},
                                     {"entries", bomen[s].ingangen},
                                     {"whole", bomen[s].heel}});
            printf("%s\n", j.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace).c_str());
            continue;
        }
        printf("%s  \"%s\"  %d bytes a record, version %d%s\n", naam.c_str(),
               CP850UTF8(VASTTEKST(paar.kop.title)).c_str(), paar.kop.reclen, paar.kop.version,
               paar.kop.busy ? ", marked busy" : "");
        printf("  %lld records, %lld free; %lld index blocks, %lld unused; %d keys reserved\n",
               static_cast<long long>(paar.kop.nrecs - vrij), static_cast<long long>(vrij),
               static_cast<long long>(blokken), static_cast<long long>(ongebruikt), gereserveerd);
        for (size_t s = 0; s < bomen.size(); s++) {
            const Boom& b = bomen[s];
            int maxent = paar.kop.keydef[s].maxent;
            printf("  key %zu  %-40s %3d bytes, depth %d, %lld nodes, %lld leaves %.0f%% full%s\n", s + 1,
                   sleuteltekst(paar.kop.keydef[s]).c_str(), paar.kop.keydef[s].keylen, b.diepte,
                   static_cast<long long>(b.knopen), static_cast<long long>(b.bladen),
                   b.bladen && maxent > 1 ? 100.0 * static_cast<double>(b.ingangen) /
                                                (static_cast<double>(b.bladen) * (maxent - 1))
                                          : 0.0,
                   b.heel ? "" : ", tree not whole");
        }
    }
    return slechtst;
}

} // namespace zg
