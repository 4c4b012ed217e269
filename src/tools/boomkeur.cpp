#include "tools/boomkeur.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "tools/paar.h"
#include <algorithm>
#include <unistd.h>

namespace zg {
namespace {

// Records as the dictionary has them, and keys: a pair of another program's that goes by such a name is noted.
void tegen_woordenboek(const Paar& paar, keurbestand* b) {
    const int nr = DDNUMMER(paar.naam.c_str());
    if (nr && DDCOMPARE(nr, paar.kop) != DD_GELIJK)
        b->noten.push_back("record length or keys aren't those of the dictionary");
}

keurbestand keur(const std::string& naam, int seconden) {
    keurbestand uit{naam, ""};
    for (const char* ext : {".INX", ".TXT"})
        if (!IOEXISTS((naam + ext).c_str()))
            uit.kwalen.push_back(naam + ext + " isn't there");
    for (const char* ext : {".INX", ".TXT"})
        if (const keurlezer l(naam + ext); uit.kwalen.empty() && l.fd < 0)
            uit.kwalen.push_back(naam + ext + " can't be read: " + l.fout);
    Paar paar;
    if (!uit.kwalen.empty())
        return uit;
    if (paar_open(naam, &paar) != GOED) {
        uit.kwalen.push_back("can't be opened");
        return uit;
    }
    IXTELLING telling;
    const auto kijk = [&] {
        telling = {};
        const Werkbalk balk("check " + naam);
        return IXDIEPCHECK(paar.idx, paar.dat, false, &telling);
    };
    uit.kwalen = kijk();
    if (!uit.kwalen.empty()) {
        const bool vast = paar_vast(&paar, seconden) == GOED;
        if (vast)
            uit.kwalen = kijk();
        else
            uit.noten.push_back("in use; a change meanwhile looks like damage");
        paar_los(&paar);
    }
    if (uit.kwalen.empty() && paar_kop(&paar).empty()) {
        if (const std::string wat = kop_naamfout(paar.kop); !wat.empty())
            uit.kwalen.push_back("header: " + wat + " (ixremake --dictionary)");
        tegen_woordenboek(paar, &uit);
    }
    uit.telling = keur_aantal(telling.levend, "records");
    return uit;
}

keurbestand bijboom(const std::string& naam) {
    keurbestand uit{naam, ""};
    const std::string data = naam.substr(0, naam.rfind('.')) + ".TXT";
    const keurlezer inx(naam), dat(data);
    if (inx.fd < 0 || dat.fd < 0) {
        if (IOEXISTS(naam.c_str()))
            uit.kwalen.push_back(inx.fd < 0 ? inx.fout : data + ": " + dat.fout);
        return uit;
    }
    IXTELLING telling;
    uit.kwalen = IXDIEPCHECK(inx.fd, dat.fd, true, &telling);
    if (!uit.kwalen.empty())
        uit.kwalen.push_back("a temporary or old index, which no program needs: remove it when nobody is in");
    uit.telling = keur_aantal(telling.gebruikt, "blocks of an index over ") + data;
    return uit;
}

} // namespace

bool is_bijboom(const std::string& naam) {
    const size_t punt = naam.rfind('.');
    return punt != std::string::npos && punt > 2 && naam.starts_with("DT") && !naam.ends_with(".INX") &&
           !naam.ends_with(".TXT") && naam.find(".CUT") == std::string::npos &&
           IOEXISTS((naam.substr(0, punt) + ".INX").c_str());
}

std::vector<std::string> keur_paren(const std::string& map) {
    std::vector<std::string> uit;
    for (const std::string& naam : keur_namen(map.empty() ? "." : map)) {
        const std::string stam = naam.substr(0, std::max<size_t>(naam.size(), 4) - 4);
        if (naam.ends_with(".INX") || (naam.ends_with(".TXT") && DDNUMMER(stam.c_str()) > 0))
            if (uit.empty() || uit.back() != map + stam)
                uit.push_back(map + stam);
    }
    return uit;
}

keurbestanden bomen_keur(const std::vector<std::string>& namen, int seconden, std::set<std::string>* stuk) {
    keurbestanden uit;
    for (const std::string& naam : namen) {
        uit.push_back(keur(naam, seconden));
        if (!uit.back().kwalen.empty())
            stuk->insert(naam);
    }
    return uit;
}

keurbestanden bijbomen_keur(const std::vector<std::string>& namen) {
    return keur_herhaald(5, [&] {
        keurbestanden uit;
        for (const std::string& naam : namen)
            uit.push_back(bijboom(naam));
        return uit;
    });
}

} // namespace zg
