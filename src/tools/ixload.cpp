// ixload: a pair from a dump. It is made in a directory of its own beside the target, checked, and moved into
// place whole; until then nothing of an existing pair changes. The free chain of the dump is put back behind
// the rebuild, from a side file, so that memory doesn't grow with the pair.
#include "shared/files.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/rebuild.h"
#include "term/natl.h"
#include "tools/dump.h"
#include "tools/opdracht.h"
#include "tools/schrijver.h"
#include "tools/werkmap.h"
#include <cerrno>
#include <cstring>
#include <memory>
#include <unistd.h>

namespace zg {

namespace {

// A free slot and its link as the dump has them.
struct Schakel {
    int32_t nr, volgende;
};

struct Lading {
    int64_t records = 0, vrij = 0;
    bool gaten = false; // slots that the dump doesn't name
};

// The header that the dump or the dictionary describes; empty when good, else what is wrong.
std::string definitie(const Opdracht& o, const std::string& naam, const Dumpkop& dump, bool uit_dump,
                      ICB* icb) {
    if (o.woordenboek || !uit_dump) {
        IXHEADER kop;
        if (!woordenboekkop(naam, -1, &kop))
            return uit_dump ? "not in the dictionary"
                            : "the dump has no head line and the pair isn't in the dictionary";
        icb->h = kop;
        return {};
    }
    if (dump.reclen < 1 || dump.reclen > IXRECMAX || dump.sleutels.empty() ||
        dump.sleutels.size() > IXSLEUTELS)
        return "the head line gives no good record length or number of keys";
    std::string titel;
    CP850NAAR(dump.titel, &titel);
    for (char& c : titel)
        if (c == ',')
            c = ' ';
    IXUPDFCB(icb, 0, (titel + "," + std::to_string(dump.reclen)).c_str());
    for (size_t s = 0; s < dump.sleutels.size(); s++)
        IXUPDFCB(icb, static_cast<int>(s) + 1, dump.sleutels[s].c_str());
    return {};
}

// Write the records of the dump as the data file; the links of its free slots go to `zij`.
bool laad(DumpLezer& lezer, int reclen, FILE* in, Schrijver& uit, Schrijver& zij, Balk& balk, Lading* l) {
    constexpr int PER_STAP = 256; // rows
    Dumprij rij;
    uint8_t vrij[IXRECMAX];
    memset(vrij, 0xFF, sizeof vrij);
    int32_t nr = 0;
    for (; lezer.rij(&rij); nr = rij.nr + 1) {
        for (; nr < rij.nr; nr++, l->vrij++, l->gaten = true)
            if (!uit.zet(vrij, static_cast<size_t>(reclen)))
                return false;
        if (!uit.zet(rij.rec, static_cast<size_t>(reclen)))
            return false;
        if (rij.vrij) {
            Schakel s{rij.nr, rij.volgende};
            if (!zij.zet(&s, sizeof s))
                return false;
        }
        (rij.vrij ? l->vrij : l->records)++;
        if (rij.nr % PER_STAP == 0)
            balk.bij(ftello(in));
    }
    return uit.af() && zij.af();
}

// Put the dump's own free chain back over the one that the rebuild made.
bool zet_keten(const std::string& naam, int zij, int32_t freehead) {
    Paar paar;
    if (paar_open(naam, &paar) != GOED || !paar_kop(&paar).empty())
        return false;
    std::vector<Schakel> hap(4096);
    for (int64_t p = 0;;) {
        const ssize_t n = SYSLEES(zij, hap.data(), hap.size() * sizeof(Schakel), p);
        if (n <= 0)
            return n == 0 && SYSSCHRIJFOP(paar.idx, &freehead, 4, offsetof(IXHEADER, freehead));
        for (size_t i = 0; i < static_cast<size_t>(n) / sizeof(Schakel); i++)
            if (!SYSSCHRIJFOP(paar.dat, &hap[i].volgende, 4, int64_t{hap[i].nr} * paar.kop.reclen + 1))
                return false;
        p += n;
    }
}

bool herbouw(const std::string& werk, const std::string& naam) {
    Werkbalk balk("rebuild " + naam);
    return IXBLDIX(werk.c_str()) == 1;
}

std::vector<std::string> nakijken(const std::string& werk, const std::string& naam) {
    Werkbalk balk("check " + naam);
    return IXDIEPCHECK(werk.c_str());
}

int meld(const std::string& naam, const std::vector<std::string>& bevindingen) {
    for (const std::string& b : bevindingen)
        klacht(naam, b);
    return bevindingen.empty() ? GOED : FOUT_GEVONDEN;
}

} // namespace

int ixload(const Opdracht& o) {
    std::vector<std::string> namen;
    paren({o.namen[0]}, &namen);
    const std::string doel = namen[0], naam = tabelnaam(doel);
    if ((IOEXISTS((doel + ".INX").c_str()) || IOEXISTS((doel + ".TXT").c_str())) && !o.vervang)
        return klacht(doel, "exists already; --replace lets it go"), FOUT_GEBRUIKT;
    FILE* in = o.bestand.empty() ? stdin : fopen(o.bestand.c_str(), "re");
    if (!in)
        return klacht(o.bestand, strerror(errno)), NIET_TE_OPENEN;
    std::unique_ptr<FILE, int (*)(FILE*)> sluit(in, fclose);

    DumpLezer lezer(in);
    Dumpkop dump;
    bool uit_dump;
    if (!lezer.kop(&dump, &uit_dump))
        return klacht(o.bestand, lezer.fout()), FOUT_GEVONDEN;
    Werkmap map(doel);
    if (!map.goed())
        return klacht(map.pad(), strerror(errno)), NIET_TE_OPENEN;
    const std::string werk = map.pad() + "/" + naam;

    ICB* icb = IXCREATE(werk.c_str(), 1);
    std::string kwaal = definitie(o, naam, dump, uit_dump, icb);
    const IXHEADER kop = icb->h;
    if (kwaal.empty())
        IXINITIX(icb);
    IXCLOSE(icb);
    if (kwaal.empty() &&
        !lezer.indeling(indeling(uit_dump ? dump.naam : naam, kop), kop.reclen)) // as it was dumped
        kwaal = lezer.fout();
    if (!kwaal.empty())
        return klacht(doel, kwaal), FOUT_GEVONDEN;

    Lading l;
    Schrijver zij(map.pad() + "/keten");
    {
        Schrijver uit(werk + ".TXT");
        Balk balk("load " + naam, o.bestand.empty() ? 0 : IOSIZE(o.bestand.c_str()));
        if (!laad(lezer, kop.reclen, in, uit, zij, balk, &l))
            return klacht(doel, strerror(errno)), FOUT_GEVONDEN;
    }
    if (!lezer.fout().empty())
        return klacht(o.bestand.empty() ? "standard input" : o.bestand, lezer.fout()), FOUT_GEVONDEN;

    if (!herbouw(werk, naam))
        return klacht(doel, "the index can't be built"), FOUT_GEVONDEN;
    // A chain that the dump tells only in part, or wrongly, is left as the rebuild made it.
    if (uit_dump && l.vrij > 0 && !l.gaten) {
        if (!zet_keten(werk, zij.fd(), dump.freehead))
            return klacht(doel, "the free chain can't be written"), FOUT_GEVONDEN;
        if (IXCHECK(werk.c_str()) != l.vrij) {
            klacht(doel, "the free chain of the dump isn't whole; made anew");
            if (!herbouw(werk, naam))
                return FOUT_GEVONDEN;
        }
    }
    if (!o.zonder_check)
        if (int fout = meld(doel, nakijken(werk, naam)))
            return fout;
    if (int fout = map.naar(doel, o.vervang, o.wacht))
        return fout;
    fprintf(stderr, "%s: %lld records, %lld free\n", doel.c_str(), static_cast<long long>(l.records),
            static_cast<long long>(l.vrij));
    return GOED;
}

} // namespace zg
