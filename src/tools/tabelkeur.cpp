// The tables of printers and macros, which may stand in directories of their own. See tools/restkeur.h.
#include "print/printtabel.h"
#include "shared/files.h"
#include "shared/stamrec.h"
#include "term/macro/macrobestand.h"
#include "term/strings.h"
#include "term/vast.h"
#include "tools/paar.h"
#include "tools/restkeur.h"
#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <set>
#include <unistd.h>

namespace zg {
namespace {

const std::vector<std::string> PRINTERS{"TR_PTRG", "TR_PTRC", "TR_PTRP", "TR_PTRCA"};

bool is_er(const std::string& tabel) {
    return IOEXISTS((tabel + ".TXT").c_str()) || IOEXISTS((tabel + ".INX").c_str());
}

// Where the programs are told to look for tables; whoever runs the check often isn't told, and then they are found: here or
// in a directory below.
std::string plaats(const char* omgeving, const std::vector<std::string>& tabellen) {
    const auto hier = [&](const std::string& map) {
        return std::ranges::any_of(tabellen, [&](const std::string& t) { return is_er(map + t); });
    };
    if (const char* map = getenv(omgeving); map && *map)
        return std::string(map) + "/";
    if (!hier(""))
        for (const std::string& naam : keur_namen("."))
            if (hier(naam + "/"))
                return naam + "/";
    return "";
}
std::string drukmap() {
    return plaats("ZEBPRT", PRINTERS);
}
std::string macropaar() {
    return plaats("MACRO", {"MACRO"}) + "MACRO";
}

// Directories in which tables may stand, and that whoever runs the check can't look into.
keurbestanden dichte_mappen() {
    keurbestanden uit;
    const auto kijk = [&uit](const std::string& naam, std::vector<std::string> keurbestand::*waar) {
        if (IOISDIR(naam.c_str()) && access(naam.c_str(), R_OK | X_OK) != 0)
            (uit.emplace_back(naam, "").*waar).push_back("can't be read: " + openreden(errno));
    };
    for (const std::string& naam : keur_namen("."))                              // may be somebody's own
        if (naam[0] != '.' && naam != "lost+found" && !keur_past("####@", naam)) // a season's is told
            kijk(naam, &keurbestand::noten);
    for (const char* omgeving : {"ZEBPRT", "MACRO"})
        if (const char* map = getenv(omgeving); map && *map)
            kijk(map, &keurbestand::kwalen);
    return uit;
}

struct Drukboek {
    std::set<int> printers;
    std::set<std::pair<int, int>> configs;
};

template <class R, class F> bool elk(const std::string& pad, F f) {
    return keur_records(pad, [&](int32_t, const uint8_t* bytes, int lengte) {
        R rec;
        stam_uit(bytes, lengte, &rec);
        f(rec);
    });
}

// Of a printer that isn't there: never found, so it does no harm.
void printer_er(const Drukboek& boek, int code, const std::string& wie, keurbestand* b) {
    if (!boek.printers.contains(code))
        b->noten.push_back(wie + VORM(": printer %d isn't there", code));
}

keurbestanden printers() {
    const std::string map = drukmap();
    Drukboek boek;
    keurbestand g{map + "TR_PTRG", ""}, c{map + "TR_PTRC", ""}, p{map + "TR_PTRP", ""},
        ca{map + "TR_PTRCA", ""};
    if (std::ranges::any_of(PRINTERS, [&](const std::string& t) { return is_er(map + t); }) &&
        !is_er(g.naam)) {
        g.noten.push_back(
            "isn't there, though the other tables of printers are: they are of no use without it");
        return {g};
    }
    if (!IOEXISTS((g.naam + ".TXT").c_str()))
        return {};
    std::set<std::string> namen;
    const bool gelezen = elk<prtrec>(g.naam, [&](const prtrec& r) {
        const std::string naam = VASTTEKST(r.naam);
        boek.printers.insert(r.code);
        if (!namen.insert(naam).second)
            g.kwalen.push_back("two printers \"" + naam + "\": only one of them can be named");
    });
    if (!gelezen)
        return {}; // so none is missing
    if (!boek.printers.contains(PRT_SCHERM))
        g.kwalen.push_back("no screen: reports can't be looked at");
    elk<prtconfig>(p.naam, [&](const prtconfig& r) {
        const std::string wie = VORM("configuration %d of printer %d", r.nummer, r.code);
        boek.configs.insert({r.code, r.nummer});
        printer_er(boek, r.code, wie, &p);
        if (r.kolommen == 0)
            p.kwalen.push_back(wie + ": no columns");
    });
    elk<prtverbinding>(c.naam, [&](const prtverbinding& r) {
        const std::string wie = VORM("connection %d of printer %d", r.nummer, r.code);
        printer_er(boek, r.code, wie, &c);
        if (VASTLEEG(r.apparaat) && r.code != PRT_SCHERM)
            c.kwalen.push_back(wie + ": no device");
    });
    elk<prtcode>(ca.naam, [&](const prtcode& r) {
        if (r.config && !boek.configs.contains({r.code, r.config}))
            ca.noten.push_back(
                VORM("text %d of printer %d: configuration %d isn't there", r.nummer, r.code, r.config));
    });
    return {g, c, p, ca};
}

keurbestanden macros() {
    keurbestand b{macropaar(), ""};
    if (!IOEXISTS((b.naam + ".TXT").c_str()))
        return {};
    elk<mac_rec>(b.naam, [&](const mac_rec& m) {
        if (!MACROGAAF(m))
            b.kwalen.push_back(VORM("the macro of key %d, user %d, can't be played", m.toets, m.gebruiker));
    });
    return {b};
}

} // namespace

std::vector<std::string> tabel_paren() {
    std::vector<std::string> uit;
    const std::string map = drukmap();
    for (const std::string& tabel : PRINTERS)
        if (is_er(map + tabel))
            uit.push_back(map + tabel);
    if (is_er(macropaar()))
        uit.push_back(macropaar());
    return uit;
}

keurbestanden tabel_keur() {
    keurbestanden uit = printers();
    for (keurbestand& b : macros())
        uit.push_back(std::move(b));
    for (keurbestand& b : dichte_mappen())
        uit.push_back(std::move(b));
    return uit;
}

} // namespace zg
