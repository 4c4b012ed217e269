// ixload: a pair from a dump. It is made in a directory of its own beside the target, checked, and moved into
// place whole; until then nothing of an existing pair changes. The free chain of the dump is put back behind
// the rebuild, from a side file, so that memory doesn't grow with the pair.
#include "shared/files.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/rebuild.h"
#include "store/spoel.h"
#include "term/natl.h"
#include "tools/dump.h"
#include "tools/opdracht.h"
#include "tools/schrijver.h"
#include "tools/werkmap.h"
#include <algorithm>
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
        if (!woordenboekkop(o.tabel.empty() ? naam : o.tabel, -1, &kop))
            return uit_dump ? "not in the dictionary"
                            : "the dump has no head line and the pair isn't in the dictionary";
        memcpy(kop.name, icb->h.name, sizeof kop.name);
        icb->h = kop;
        return {};
    }
    if (dump.reclen < 1 || dump.reclen > IXRECMAX || dump.sleutels.empty() ||
        dump.sleutels.size() > IXSLEUTELS)
        return "the head line gives no good record length or number of keys";
    std::string titel = tekst_in(dump.titel);
    for (char& c : titel)
        if (c == ',')
            c = ' ';
    IXUPDFCB(icb, 0, (titel + "," + std::to_string(dump.reclen)).c_str());
    for (size_t s = 0; s < dump.sleutels.size(); s++)
        IXUPDFCB(icb, static_cast<int>(s) + 1, tekst_in(dump.sleutels[s]).c_str());
    return {};
}

// Write the records of the dump as the data file; the links of its free slots go to `zij`, for each slot its line to
// `regels`.
bool laad(DumpLezer& lezer, int reclen, FILE* in, Schrijver& uit, Schrijver& zij, Spoel& regels, Balk& balk,
          Lading* l) {
    constexpr int PER_STAP = 256; // rows
    Dumprij rij;
    const int64_t geen = 0;
    uint8_t vrij[IXRECMAX];
    memset(vrij, 0xFF, sizeof vrij);
    int32_t nr = 0;
    for (; lezer.rij(&rij); nr = rij.nr + 1) {
        for (; nr < rij.nr; nr++, l->vrij++, l->gaten = true)
            if (!uit.zet(vrij, static_cast<size_t>(reclen)) || !regels.schrijf(&geen, sizeof geen))
                return false;
        const int64_t regel = lezer.regelnummer();
        if (!uit.zet(rij.rec, static_cast<size_t>(reclen)) || !regels.schrijf(&regel, sizeof regel))
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

// Neighbours in the new index with one value of key 1, which must have each value once: their lines and the value, as
// many as are worth reading. False when the index can't be read.
class Dubbelen {
public:
    Dubbelen(const Paar& paar, const std::vector<Veld>& velden, Spoel& regels)
        : paar_(paar), def_(paar.kop.keydef[0]), velden_(velden), regels_(regels) {}
    bool zoek() { return knoop(1, KNOOPNIVEAUS); }
    std::vector<std::string> gevonden;

private:
    static constexpr size_t GENOEG = 20;

    bool knoop(int32_t blok, int hoogst) {
        IXKNOOP k;
        if (IXBLOKLEES(paar_.idx, blok, &k, sizeof k) != IXBLOK || k.level < 1 || k.level > hoogst ||
            k.count >= def_.maxent)
            return false;
        for (int i = 0; i < k.count && gevonden.size() < GENOEG; i++) {
            const uint8_t* e = k.entries + i * (def_.keylen + 4);
            const int32_t wijst = LEES32(e + def_.keylen);
            if (k.level > 1) {
                if (!knoop(wijst, k.level - 1))
                    return false;
                continue;
            }
            if (wijst >= 0 && vorige_ >= 0 && IXVERGELIJK(def_, sleutel_, e, def_.keylen) == 0)
                meld(std::min(wijst, vorige_), std::max(wijst, vorige_));
            memcpy(sleutel_, e, def_.keylen);
            vorige_ = wijst;
        }
        return true;
    }
    int64_t regel(int32_t nr) const {
        int64_t uit = 0;
        regels_.lees(nr * int64_t{sizeof uit}, &uit, sizeof uit);
        return uit;
    }
    void meld(int32_t eerste, int32_t tweede) {
        uint8_t rec[IXRECMAX] = {};
        SYSLEES(paar_.dat, rec, static_cast<size_t>(paar_.kop.reclen), int64_t{tweede} * paar_.kop.reclen);
        std::string waarde;
        for (int d = 0; d < IXDELEN && def_.ptype[d]; d++)
            for (const Veld& v : velden_)
                if (v.begin + 1 >= def_.pstart[d] && v.begin + v.lengte <= def_.pend[d])
                    waarde += " " + v.naam + "=" + veld_uit(v, rec);
        gevonden.push_back("line " + std::to_string(regel(tweede)) + ": line " +
                           std::to_string(regel(eerste)) + " has the same" +
                           (waarde.empty() ? " key 1" : waarde));
    }

    const Paar& paar_;
    const IXKEYDEF& def_;
    const std::vector<Veld>& velden_;
    Spoel& regels_;
    uint8_t sleutel_[IXSLEUTELMAX + 4];
    int32_t vorige_ = -1;
};

std::vector<std::string> dubbele_regels(const std::string& werk, const std::vector<Veld>& velden,
                                        Spoel& regels) {
    Paar paar;
    if (paar_open(werk, &paar) != GOED || !paar_kop(&paar).empty())
        return {"the new pair can't be read"};
    Dubbelen d(paar, velden, regels);
    if (!d.zoek())
        return {"the new index can't be read"};
    return d.gevonden;
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

    const std::string bron = o.bestand.empty() ? "standard input" : o.bestand;
    DumpLezer lezer(in, o.scheiding);
    Dumpkop dump;
    bool uit_dump;
    if (!lezer.kop(&dump, &uit_dump))
        return klacht(bron, lezer.fout()), FOUT_GEVONDEN;
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
    // As it was dumped, unless the user knows better.
    const std::vector<Veld> velden = indeling(!o.tabel.empty() ? o.tabel : uit_dump ? dump.naam : naam, kop);
    if (!kwaal.empty())
        return klacht(doel, kwaal), FOUT_GEVONDEN;
    if (!lezer.indeling(velden, kop.reclen))
        return klacht(bron, lezer.fout()), FOUT_GEVONDEN;

    Lading l;
    Schrijver zij(map.pad() + "/keten");
    Spoel regels(werk); // the line of each slot
    {
        Schrijver uit(werk + ".TXT");
        Balk balk("load " + naam, o.bestand.empty() ? 0 : IOSIZE(o.bestand.c_str()));
        if (!laad(lezer, kop.reclen, in, uit, zij, regels, balk, &l))
            return klacht(doel, strerror(errno)), FOUT_GEVONDEN;
    }
    if (!lezer.fout().empty())
        return klacht(bron, lezer.fout()), FOUT_GEVONDEN;

    if (!herbouw(werk, naam))
        return klacht(doel, std::string("the index can't be built") + (errno ? ": " : "") +
                                (errno ? strerror(errno) : "")),
               FOUT_GEVONDEN;
    if (int fout = meld(bron, dubbele_regels(werk, velden, regels)))
        return fout;
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
