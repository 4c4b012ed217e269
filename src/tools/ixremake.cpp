// ixremake: the index of pairs rebuilt from their data files, in exclusive use.
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/node.h"
#include "store/rebuild.h"
#include "store/wachtrij.h"
#include "sub/omserie.h"
#include "term/natl.h"
#include "tools/opdracht.h"
#include "tools/wie.h"
#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace zg {

namespace {

// What a pair is rebuilt by.
struct Bouwplan {
    IXHEADER kop{};
    bool nieuw = false; // not the definition of the index, which is to be made anew by the dictionary
    std::vector<std::string> gereserveerd;
    bool rij_onleesbaar = false; // nor can be told what was reserved
};

// The header has another record length than the dictionary: whose fits the data file? Empty when the index is to be
// built by the one asked for, and then the header's counts (`kop_telt`) or doesn't. The length of the records is never
// changed under a header that makes sense: they would be cut at the wrong places.
std::string andere_lengte(const Paar& paar, int van_kop, int van_boek, bool woordenboek, bool* kop_telt) {
    const std::string wat = "the header says " + std::to_string(van_kop) +
                            " bytes a record, the dictionary " + std::to_string(van_boek);
    *kop_telt = paar.datbytes % van_kop == 0;
    if (*kop_telt)
        return woordenboek ? wat + "; without --dictionary it is rebuilt by its header" : "";
    if (paar.datbytes % van_boek)
        return wat + ", and the data file ends inside a record of either";
    return woordenboek ? "" : wat + ", which fits the data file; ixremake --dictionary makes the index anew";
}

// The record length of an index that is made anew without a header to go by.
std::string kies_lengte(const Paar& paar, int nr, int gevraagd, IXHEADER* kop) {
    std::string passend;
    int aantal = 0;
    for (int l : DDRECLENGTES(nr)) {
        if (l == gevraagd)
            return kop->reclen = static_cast<int16_t>(l), "";
        if (paar.datbytes > 0 && paar.datbytes % l == 0)
            passend += (aantal++ ? " and of " : "") + std::to_string(l);
    }
    if (gevraagd)
        return "the dictionary has no records of " + std::to_string(gevraagd) + " bytes for it";
    return aantal > 1 ? "the data file fits records of " + passend + " bytes; --record-length says which"
                      : "";
}

// Looks at the index and decides; empty when good, else what is wrong.
std::string plan(const Paar& paar, const Opdracht& o, Bouwplan* p) {
    const int nr = DDNUMMER(paar.naam.c_str());
    ICB icb{};
    const bool kop = paar.idx >= 0 && SYSLEES(paar.idx, &icb.h, sizeof icb.h, 0) == ssize_t{sizeof icb.h};
    if (kop)
        IXFIXHDR(&icb);
    const char* fout = kop ? IXDEFFOUT(icb.h) : nullptr;
    bool kop_telt = kop && !fout;
    const int verschil = kop && nr ? DDCOMPARE(nr, icb.h) : DD_GELIJK;
    if (kop_telt && verschil == DD_RECLEN)
        if (std::string kwaal =
                andere_lengte(paar, icb.h.reclen, DDRECLEN(nr, paar.datbytes), o.woordenboek, &kop_telt);
            !kwaal.empty())
            return kwaal;
    if (kop_telt && o.reclen && o.reclen != icb.h.reclen)
        return "the header says " + std::to_string(icb.h.reclen) + " bytes a record";
    p->nieuw = !kop || (o.woordenboek && (fout || verschil != DD_GELIJK || !kop_naamfout(icb.h).empty()));
    if (p->nieuw && !o.woordenboek)
        return std::string("no index to take the definition from") +
               (nr ? "; ixremake --dictionary makes it anew" : ", and not in the dictionary");
    p->kop = icb.h;
    if (p->nieuw) {
        if (!woordenboekkop(paar.naam, paar.datbytes, &p->kop))
            return "not in the dictionary";
        if (kop_telt)
            p->kop.reclen = icb.h.reclen;
        else if (std::string kwaal = kies_lengte(paar, nr, o.reclen, &p->kop); !kwaal.empty())
            return kwaal;
    } else if (fout) {
        return std::string("header: ") + fout + (nr ? "; ixremake --dictionary makes it anew" : "");
    }
    if (paar.idx >= 0 && SYSOMVANG(paar.idx) > IXBLOK) {
        IXKNOOP rij;
        p->gereserveerd = IXRESERVERINGEN(paar.idx, kop && !fout ? icb.h : p->kop, &rij);
        p->rij_onleesbaar = rij.keyno == 0;
    }
    return {};
}

// A user at work in the pair's directory, who holds a slot of DTSYS.TXT; empty for none. That file may be there and not be
// looked into.
std::string wie_werkt(const std::string& naam) {
    const std::string map = naam.substr(0, naam.rfind('/') + 1);
    const int fd = SYS.open((map + "DTSYS.TXT").c_str(), O_RDONLY | O_CLOEXEC, 0);
    if (fd < 0)
        return errno == ENOENT ? ""
                               : std::string("DTSYS.TXT can't be opened (") + strerror(errno) +
                                     "), so a user may be at work";
    const int64_t pid =
        IOLOCKPID(fd, SYS_GEBRUIKER.start, int64_t{SYS_GEBRUIKER.slots} * SYS_GEBRUIKER.grootte);
    const std::string wie = wie_is(pid, fd);
    SYS.close(fd);
    return wie.empty() ? "" : "a user is at work (" + wie + ")";
}

// Of the reserved keys of a series file the first that the notes of a user at work name: the series that he is making.
// Empty when there is none.
std::string levend_nummer(const std::string& naam, const std::vector<std::string>& gereserveerd) {
    const std::string hier = IOHIER();
    const std::string map = naam.substr(0, naam.rfind('/') + 1);
    if (tabelnaam(naam) != "DTSER" || !IOEXISTS((map + "DTSYS.TXT").c_str()) || hier.empty())
        return {};
    if (!map.empty())
        IOCHDIR(map.c_str());
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    std::string uit;
    for (const std::string& s : gereserveerd) {
        int32_t groep;
        uint16_t kleur, volg;
        if (sscanf(s.c_str(), "%d %hu %hu", &groep, &kleur, &volg) == 3 &&
            serie_nummer_levend({groep, kleur, volg}))
            uit = s;
    }
    iotab('C', &nr, nullptr, SYS_RECORD);
    IOCHDIR(hier.c_str());
    return uit;
}

// The bytes behind the last whole record into a file beside, and off: what a program left that was killed inside a
// write. Nobody else may be in the pair meanwhile.
int kap_af(const Paar& paar, int reclen) {
    const size_t rest = static_cast<size_t>(paar.datbytes % reclen);
    uint8_t staart[IXRECMAX];
    std::string pad = paar.naam + ".CUT";
    int fd = SYSNIEUW(pad.c_str(), O_WRONLY | O_EXCL);
    for (int nr = 2; fd < 0 && errno == EEXIST; nr++) {
        pad = paar.naam + ".CUT" + std::to_string(nr);
        fd = SYSNIEUW(pad.c_str(), O_WRONLY | O_EXCL);
    }
    const int64_t heel = paar.datbytes - static_cast<int64_t>(rest);
    const bool bewaard = fd >= 0 && SYSLEES(paar.dat, staart, rest, heel) == static_cast<ssize_t>(rest) &&
                         SYSSCHRIJF(fd, staart, rest) && SYS.fsync(fd) == 0;
    const int fout = errno;
    if (fd >= 0)
        SYS.close(fd);
    if (fd >= 0 && !bewaard)
        SYS.unlink(pad.c_str());
    if (!bewaard || SYS.ftruncate(paar.dat, heel) != 0)
        return klacht(pad, strerror(bewaard ? errno : fout)), FOUT_GEVONDEN;
    klacht(paar.naam,
           "the " + std::to_string(rest) + " bytes of half a record at the end now stand in " + pad);
    return GOED;
}

// Everything that can be refused, with the pair in hand and nobody else in it; then the half record goes.
int bereid_voor(const std::string& naam, const Opdracht& o, Bouwplan* p) {
    Paar paar;
    if (int fout = paar_open(naam, &paar, true))
        return fout;
    if (paar.alleen_lezen)
        return klacht(naam, strerror(EACCES)), NIET_TE_OPENEN;
    if (int fout = paar_alleen(&paar, o.wacht))
        return fout;
    paar.datbytes = SYSOMVANG(paar.dat);
    if (std::string kwaal = plan(paar, o, p); !kwaal.empty())
        return klacht(naam, kwaal), FOUT_GEVONDEN;
    const int64_t rest = paar.datbytes % p->kop.reclen;
    if (rest && !o.kap)
        return klacht(naam, "the data file ends inside a record, " + std::to_string(rest) +
                                " bytes behind the last whole one; --truncate saves these and cuts them off"),
               FOUT_GEVONDEN;
    // A program that has it open would go on by the definition that it knows.
    if (p->nieuw && paar.gedeeld && !ALLEEN_GEZEGD)
        return klacht(naam, ALLEEN_NODIG), FOUT_GEBRUIKT;
    if (p->nieuw && ((paar.idx >= 0 && elders_open(paar.idx)) || elders_open(paar.dat)))
        return klacht(naam, "in use: a program has it open" +
                                open_bij(naam + (elders_open(paar.dat) ? ".TXT" : ".INX"))),
               IN_GEBRUIK;
    // Rebuilt, the index of an emptied data file would be good, and nothing would tell any more what is gone.
    if (!o.dwing && paar.idx >= 0 && SYSOMVANG(paar.idx) == 0 && paar.datbytes == 0)
        return klacht(naam, "not rebuilt: both files are empty; restore both from a copy, or ixremake "
                            "--force if it held nothing"),
               FOUT_GEVONDEN;
    if (const IXSPOOR s = paar.idx < 0 || o.dwing ? IXSPOOR{} : IXZOEKTERUG(paar.idx, paar.dat, p->kop);
        s.terug * 2 < s.sleutels)
        return klacht(naam,
                      "not rebuilt: the index is sound and leads to " + std::to_string(s.sleutels) +
                          " records, of which the data file has " + std::to_string(s.terug) +
                          "; restore both files from a copy, or ixremake --force if they are to be gone"),
               FOUT_GEVONDEN;
    if (!p->gereserveerd.empty() && !o.dwing)
        if (const std::string wie = wie_werkt(naam); !wie.empty()) {
            for (const std::string& s : p->gereserveerd)
                klacht(naam, "key reserved: " + CP850UTF8(s));
            return klacht(naam, "not rebuilt: " + wie + " and these keys may be his; --force clears them"),
                   IN_GEBRUIK;
        }
    if (const std::string s = levend_nummer(naam, p->gereserveerd); !s.empty())
        return klacht(naam,
                      "not rebuilt: key " + s + " is reserved by a user at work, who is making that series"),
               IN_GEBRUIK;
    return rest ? kap_af(paar, p->kop.reclen) : GOED;
}

std::string verse_index; // made where there was none, and not yet whole

int maak(const std::string& naam, const Opdracht& o) {
    const std::string tabel = tabelnaam(naam);
    Bouwplan p;
    if (int fout = bereid_voor(naam, o, &p))
        return fout;
    if (p.nieuw && !IOEXISTS((naam + ".INX").c_str()))
        verse_index = naam + ".INX";
    if (p.nieuw && DDCREATE(DDNUMMER(tabel.c_str()), naam.c_str(), p.kop.reclen) == 0)
        return ixremake_ruim_op(), klacht(naam, "the index can't be created"), FOUT_GEVONDEN;
    std::vector<std::string> gewist;
    int gebouwd;
    {
        Werkbalk balk("rebuild " + tabel);
        // What was reserved since we looked is a living user's.
        gebouwd = IXBLDIX(naam.c_str(), p.gereserveerd.empty() ? nullptr : &gewist);
    }
    if (gebouwd)
        verse_index.clear();
    else
        return ixremake_ruim_op(),
               klacht(naam, "can't be rebuilt: something changed meanwhile, or the disk is full"),
               FOUT_GEVONDEN;
    if (p.nieuw)
        gewist = p.gereserveerd;
    for (const std::string& s : gewist)
        klacht(naam, "reserved key cleared: " + CP850UTF8(s));
    if (p.rij_onleesbaar)
        klacht(naam, "which keys were reserved can't be read; they are cleared");
    std::vector<std::string> bevindingen;
    {
        Werkbalk balk("check " + tabel);
        bevindingen = IXDIEPCHECK(naam.c_str());
    }
    for (const std::string& b : bevindingen)
        klacht(naam, b);
    if (!bevindingen.empty())
        return FOUT_GEVONDEN;
    if (!o.stil)
        tool_zeg("%s: rebuilt\n", naam.c_str());
    return GOED;
}

} // namespace

void ixremake_ruim_op() {
    if (!verse_index.empty())
        SYS.unlink(verse_index.c_str());
    verse_index.clear();
}

int ixremake(const Opdracht& o) {
    gewone_bestanden();
    std::vector<std::string> namen;
    int slechtst = paren(o.namen, &namen) ? GOED : FOUT_GEBRUIKT;
    for (const std::string& naam : namen)
        if (int uitkomst = maak(naam, o))
            slechtst = slechtst == GOED || uitkomst == FOUT_GEVONDEN ? uitkomst : slechtst;
    return slechtst;
}

} // namespace zg
