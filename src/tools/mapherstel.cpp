#include "tools/mapherstel.h"
#include "print/spooljob.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "shared/woordenboek.h"
#include "store/ix.h"
#include "store/node.h"
#include "store/wachtrij.h"
#include "sub/omserie.h"
#include "sub/serienummer.h"
#include "term/strings.h"
#include "tools/journaalkeur.h"
#include "tools/opdracht.h"
#include "tools/rechtkeur.h"
#include "tools/systeemkeur.h"
#include "tools/werkmap.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/wait.h>
#include <unistd.h>

namespace zg {
namespace {

int in_kind(const std::function<int()>& doe) {
    fflush(nullptr);
    const pid_t kind = fork();
    if (kind == 0)
        tool_weg(doe());
    int status = -1;
    while (kind > 0 && waitpid(kind, &status, 0) < 0 && errno == EINTR)
        ;
    return kind > 0 && WIFEXITED(status) ? WEXITSTATUS(status) : FOUT_GEVONDEN;
}

void zeg(bool stil, const std::string& regel) {
    if (!stil)
        printf("repair: %s\n", toon(regel).c_str());
}

bool lees_kop(const keurlezer& inx, IXHEADER* kop) {
    return inx.fd >= 0 && SYSLEES(inx.fd, kop, sizeof *kop, 0) == ssize_t{sizeof *kop} && !IXDEFFOUT(*kop);
}

// Does the header make no sense in its names or definitions, or give records a length that doesn't fit the data file, as the
// dictionary's does?
bool kop_vals(const std::string& paar) {
    IXHEADER kop;
    if (!lees_kop(keurlezer(paar + ".INX"), &kop) || !kop_naamfout(kop).empty())
        return true;
    const int nr = DDNUMMER(paar.c_str());
    const int64_t bytes = IOSIZE((paar + ".TXT").c_str());
    return nr && bytes % kop.reclen && bytes % DDRECLEN(nr, bytes) == 0;
}

// The user whose notes name the number of a series, 0 for none.
int32_t genoteerd_door(const std::string& sleutel) {
    seriesleutel s;
    int32_t groep;
    uint16_t kleur, volg;
    if (sscanf(sleutel.c_str(), "%d %hu %hu", &groep, &kleur, &volg) != 3)
        return 0;
    s = {groep, kleur, volg};
    for (int32_t nr = 1; nr <= 99; nr++)
        if (std::ranges::any_of(serie_genoteerd(nr),
                                [&](const seriesleutel& n) { return zelfde_serie(n, s); }))
            return nr;
    return 0;
}

// Whose is a reserved key? Empty when it is nobody's any more.
std::string eigenaar(const std::string& paar, const std::string& sleutel, const keurlezer& inx, bool iemand) {
    const int32_t nr = tabelnaam(paar) == "DTSER" ? genoteerd_door(sleutel) : 0;
    if (nr)
        return VORM("user %d, given up at his next start", nr);
    return iemand                       ? "a user who is in, perhaps"
           : !elders_open(inx.fd)       ? ""
           : IOSOORTVAN(inx.fd).gedeeld ? "a program on another host, perhaps (--alone)"
                                        : "a program that has it open";
}

int geef_vrij(const std::string& paar, bool stil) {
    ICB* icb = IXOPEN(paar.c_str(), 2);
    IXKNOOP rij;
    const std::vector<std::string> sleutels = IXRESERVERINGEN(icb->idxfd, icb->h, &rij);
    const int breed = icb->h.keydef[0].keylen;
    bool goed = true;
    for (size_t i = 0; i < sleutels.size(); i++) {
        memset(icb->keybuf, 0, sizeof icb->keybuf);
        memcpy(icb->keybuf, rij.entries + i * static_cast<size_t>(breed), static_cast<size_t>(breed));
        goed = IXLOCK(icb, 14) && goed;
        zeg(stil, paar + ": reserved key given up: " + sleutels[i]);
    }
    IXCLOSE(icb);
    return goed ? GOED : FOUT_GEVONDEN;
}

int resten(bool stil) {
    bool goed = true;
    auto weg = [&](const std::string& pad, bool gelukt) {
        zeg(stil, pad + (gelukt ? ": removed" : std::string(": ") + strerror(errno)));
        goed = gelukt && goed;
    };
    std::vector<std::string> mappen = keur_namen(".");
    Werkmap::veeg(".");
    for (const std::string& map : mappen)
        if (keur_past(".ixwerk*", map) && !IOISDIR(map.c_str()))
            zeg(stil, map + ": removed");
    for (const std::string& seizoen : keur_seizoenen())
        for (const std::string& pad : werkresten(seizoen))
            weg(pad, SYS.unlink(pad.c_str()) == 0);
    for (const std::string& b : spool_beschrijvingen("")) {
        spooljob job;
        if (spool_kijk(b, &job) == Spoolpad::weg && !IOEXISTS(b.c_str()))
            zeg(stil, b + ": removed");
    }
    for (const std::string& naam : keur_namen("."))
        if ((keur_past("PR????.UIT", naam) || keur_past("PR????.TMP", naam)) &&
            !IOEXISTS(spool_beschrijving(naam.substr(0, 6)).c_str()))
            weg(naam, SYS.unlink(naam.c_str()) == 0);
    for (const std::string& regel : rechten_herstel())
        zeg(stil, regel);
    return goed ? GOED : FOUT_GEVONDEN;
}

} // namespace

keurbestanden reserveringen_keur(const std::vector<std::string>& paren) {
    keurbestanden uit;
    const bool iemand = !wie_zijn_er().empty();
    for (const std::string& paar : paren) {
        const keurlezer inx(paar + ".INX");
        IXHEADER kop;
        if (!lees_kop(inx, &kop))
            continue;
        keurbestand b{paar, ""};
        for (const std::string& sleutel : IXRESERVERINGEN(inx.fd, kop)) {
            const std::string wie = eigenaar(paar, sleutel, inx, iemand);
            if (wie.empty())
                b.kwalen.push_back("key reserved: " + sleutel + ", and nobody is in");
            else
                b.noten.push_back("key reserved: " + sleutel + " (" + wie + ")");
        }
        if (!b.kwalen.empty() || !b.noten.empty())
            uit.push_back(std::move(b));
    }
    return uit;
}

bool indexen_herstel(const std::set<std::string>& stuk, int wacht, bool stil) {
    bool goed = true;
    for (const std::string& paar : stuk) {
        Opdracht o;
        o.namen = {paar};
        o.stil = true;
        o.wacht = wacht;
        o.woordenboek = kop_vals(paar);
        const bool gelukt = in_kind([&] { return ixremake(o); }) == GOED;
        if (gelukt)
            zeg(stil, paar + ": index rebuilt");
        goed = gelukt && goed;
    }
    return goed;
}

bool reserveringen_herstel(const std::vector<std::string>& paren, bool stil) {
    bool goed = true;
    for (const keurbestand& b : reserveringen_keur(paren))
        if (!b.kwalen.empty() || (b.naam == "DTSER" && wie_zijn_er().empty()))
            goed = in_kind([&] { return geef_vrij(b.naam, stil); }) == GOED && goed;
    return goed;
}

bool resten_herstel(bool stil) {
    return in_kind([&] { return resten(stil); }) == GOED;
}

} // namespace zg
