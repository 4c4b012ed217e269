// The journals of all seasons, see tools/journaalkeur.h. Descriptors are opened for reading only, so no lock of anybody's is
// touched.
#include "tools/journaalkeur.h"
#include "order/herstelkan.h"
#include "order/ordloop.h"
#include "order/ordrec.h"
#include "order/prijswerk.h"
#include "order/programma.h"
#include "order/register.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "sub/omserie.h"
#include "term/strings.h"
#include "term/vast.h"
#include "tools/ordkeur.h"
#include "tools/systeemkeur.h"
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

namespace zg {
namespace {

// Of a supplier, with that extension.
bool is_van(const std::string& naam, const char* ext) {
    return keur_past("ORD####.???", naam) && naam.ends_with(ext);
}
uint16_t leverancier_van(const std::string& naam) {
    return static_cast<uint16_t>(strtoul(naam.c_str() + 3, nullptr, 10));
}

std::vector<std::string> namen_in(const std::string& map, const char* ext) {
    std::vector<std::string> uit;
    for (const std::string& naam : keur_namen(map))
        if (is_van(naam, ext))
            uit.push_back(naam);
    return uit;
}

// Is there something of that name, a link to nowhere too, or can't it be told?
bool naam_er(const std::string& pad) {
    struct stat st;
    return lstat(pad.c_str(), &st) == 0 || errno != ENOENT;
}

// Master data that a journal names and that isn't there any more. An order may outlive it.
struct Verwijzing {
    const stamboek* boek;
    keurhoop hoop = {};

    void zie(const keurnummers& bekend, int32_t nummer, const char* wat) {
        if (!bekend.kent(nummer))
            hoop.zie(VORM("%s %d isn't there", wat, nummer));
    }
    void kop(const ordkop& k) {
        zie(boek->leveranciers, k.leverancier, "supplier");
        zie(boek->leveranciers, k.agent, "agent");
        zie(boek->deelseizoenen, k.deelseizoen, "part-season");
        zie(boek->inkoopcodes, k.inkoopcode, "purchase code");
        if (!VASTLEEG(k.valuta) && !boek->valuta.contains(VASTTEKST(k.valuta)))
            hoop.zie("currency " + VASTTEKST(k.valuta) + " isn't there");
    }
    void model(const ordmodel& m) {
        zie(boek->merken, m.merk, "brand");
        zie(boek->groepen, m.artikelgroep, "article group");
        zie(boek->maatsoorten, m.maatsoort, "size type");
        zie(boek->etiketsoorten, m.etiketsoort, "label kind");
    }
    void regel(const ordmodel& m, const orddessin& d) {
        zie(boek->kleuren, d.kleur, "colour");
        if (!boek->kent_doelgroep(d.doelgroep))
            hoop.zie(std::string("target group ") + d.doelgroep + " isn't there");
        if (boek->vreemde_maten(m.maatsoort, d.maten))
            hoop.zie(VORM("sizes that size type %d hasn't", m.maatsoort));
    }
};

// Where a journal stands tells whose orders are in it.
struct Plaats {
    std::string map, naam; // "2016Z" and the file's; that of supplier 0 stands in the data directory
    uint16_t leverancier;
    std::string pad() const { return (leverancier ? map + "/" : "") + naam; }
    std::string naast(const char* ext) const { return map + VORM("/ORD%04u", leverancier) + ext; }
};

// What the check of its records goes by. Relations that are gone are told as notes (Verwijzing).
ordomgeving omgeving(const Plaats& plaats) {
    ordomgeving uit{firma.filialen, plaats.leverancier, plaats.map};
    const int filialen = filialen_open() ? firma.filialen : 0;
    for (int i = 0; i < filialen; i++)
        uit.filiaalnummers.push_back(iofil_nummer(i));
    return uit;
}

void orders_van(int fd, const Plaats& plaats, bool in_hand, Verwijzing* boek, journalen* j) {
    ordloop l;
    ordrauw r;
    ordmodel m{};
    ordloop_begin(&l, fd, 0, INT64_MAX);
    while (ordloop_volgende(&l, &r) == LOOP_RECORD) {
        if (r.tag == 'O') {
            ordkop k;
            memcpy(&k, r.data + 1, sizeof k);
            if (boek->boek)
                boek->kop(k);
            j->orders.push_back({plaats.pad() + " at " + std::to_string(r.offset),
                                 k.leverancier,
                                 k.jaar,
                                 k.orderdatum,
                                 k.seizoen,
                                 k.ontvangstlocatie,
                                 k.ordernummer,
                                 {},
                                 in_hand});
        } else if (r.tag == 'M') {
            memcpy(&m, r.data + 1, sizeof m);
            if (boek->boek)
                boek->model(m);
        } else if (r.tag == 'D' && !j->orders.empty()) {
            orddessin d;
            memcpy(&d, r.data + 1, sizeof d);
            j->regels++;
            if (boek->boek)
                boek->regel(m, d);
            if (d.geregistreerd)
                j->orders.back().series.emplace(sleutel_van({m.artikelgroep, d.kleur, d.volgnummer}),
                                                uint16_t{d.tijdstempel});
        }
    }
}

enum Werkstand { WERK_GEEN, WERK_DOOD, WERK_LEVEND }; // of nobody that is alive, or of a program

// The program stops where it can't read; the check goes on, and tells that of the file.
bool leesbaar(int fd) {
    std::vector<uint8_t> stuk(LOOPBLOK);
    ssize_t n;
    for (int64_t p = 0; (n = SYSLEES(fd, stuk.data(), stuk.size(), p)) > 0;)
        p += n;
    return n == 0;
}

// Why the program won't restore a broken-off order, empty when it will, or when that can't be told.
std::string geen_herstel(int wrk, const Plaats& plaats) {
    const keurlezer a(plaats.naast(".ACT")), jrn(naam_er(plaats.pad()) ? plaats.pad() : "/dev/null");
    act_record act;
    if (a.fd < 0 || SYSOMVANG(a.fd) != int64_t{sizeof act} ||
        SYSLEES(a.fd, &act, sizeof act, 0) != ssize_t{sizeof act})
        return "no ACT file that tells where it belongs";
    if (!herstel_act(act))
        return "its ACT file doesn't tell where it belongs";
    int32_t regels;
    uint8_t status;
    bool zonder;
    if (jrn.fd < 0 || !leesbaar(jrn.fd) || !leesbaar(wrk) ||
        herstel_kan(wrk, jrn.fd, act, &regels, &status, &zonder) != HERSTEL_NIET)
        return "";
    return VORM("its journal is no longer the one that it was made from: %lld bytes, %d then",
                static_cast<long long>(SYSOMVANG(jrn.fd)), act.omvang);
}

// An order that a program broke off in: what becomes of it.
Werkstand werk_keur(const Plaats& plaats, keurbestanden* uit) {
    const std::string wrk = plaats.naast(".WRK");
    if (IOSIZE(wrk.c_str()) <= 0)
        return WERK_GEEN;
    keurbestand b{wrk, ""};
    const keurlezer l(wrk);
    ordtelling telling{};
    const bool levend = l.fd >= 0 && !IOLOCK('T', l.fd, 0, 1);
    if (levend) {
        b.noten.push_back("in use by " + keur_proces(IOLOCKPID(l.fd, 0, 1)));
    } else if (l.fd < 0) {
        b.kwalen.push_back("can't be read: " + l.fout);
    } else if (const keurlezer a(plaats.naast(".ACT")); a.fd < 0 && naam_er(plaats.naast(".ACT"))) {
        b.kwalen.push_back("its ACT file can't be read: " + a.fout);
    } else {
        const std::vector<ordkwaal> kwalen = ord_keur(l.fd, ORD_WERK, omgeving(plaats), &telling);
        const std::string kwaal =
            kwalen.empty() ? "" : "at " + std::to_string(kwalen[0].pos) + ": " + kwalen[0].wat;
        const std::string reden = geen_herstel(l.fd, plaats);
        if (!reden.empty())
            b.kwalen.push_back(
                "a broken-off order that can't be restored (" + (kwaal.empty() ? reden : kwaal) +
                "); it goes when the supplier is chosen again, so keep a copy of " + wrk + " before that");
        else if (!kwaal.empty())
            b.kwalen.push_back("a broken-off order, restored as it is when the supplier is chosen again: " +
                               kwaal);
        else
            b.noten.push_back("a broken-off order, restored when the supplier is chosen again");
        b.telling = keur_aantal(telling.regels, "lines");
    }
    uit->push_back(std::move(b));
    return levend ? WERK_LEVEND : WERK_DOOD;
}

void lees_journaal(const Plaats& plaats, const stamboek* stam, journalen* j) {
    keurbestand b{plaats.pad(), ""};
    const keurlezer l(plaats.pad());
    const Werkstand werk = werk_keur(plaats, &j->per_bestand);
    bool in_hand = werk != WERK_GEEN, levend = werk == WERK_LEVEND;
    if (in_hand)
        j->leveranciers_in_hand.insert(plaats.leverancier);
    if (l.fd < 0) {
        if (!naam_er(plaats.pad())) // an emptied one went meanwhile
            return;
        b.kwalen.push_back(l.fout == strerror(ENOENT) ? "a link that leads nowhere"
                                                      : "can't be read: " + l.fout);
        j->leveranciers_stuk.insert(plaats.leverancier);
        return j->per_bestand.push_back(std::move(b));
    }
    if (!IOLOCK('T', l.fd, 0, 1)) {
        in_hand = levend = true;
        b.noten.push_back("in use by " + keur_proces(IOLOCKPID(l.fd, 0, 1)));
    }
    ordtelling telling;
    std::vector<std::string> kwalen;
    for (const ordkwaal& k : ord_keur(l.fd, ORD_JOURNAAL, omgeving(plaats), &telling))
        kwalen.push_back("at " + std::to_string(k.pos) + ": " + k.wat);
    if (!kwalen.empty())
        j->leveranciers_stuk.insert(plaats.leverancier);
    j->bestanden++;
    Verwijzing boek{stam};
    orders_van(l.fd, plaats, in_hand, &boek, j);
    std::vector<std::string>* naar = levend ? &b.noten : &b.kwalen;
    naar->insert(naar->end(), kwalen.begin(), kwalen.end());
    if (!in_hand && SYSOMVANG(l.fd) == 0) {
        b.noten.push_back("empty; it goes when the supplier is chosen again");
        j->leeg.push_back({plaats.pad(), plaats.leverancier,
                           static_cast<uint16_t>(strtoul(plaats.map.c_str(), nullptr, 10)), plaats.map[4]});
    }
    boek.hoop.meld(&b.noten);
    b.telling = keur_aantal(telling.orders, "orders, ") + keur_aantal(telling.regels, "lines");
    j->per_bestand.push_back(std::move(b));
    if (in_hand)
        j->leveranciers_in_hand.insert(plaats.leverancier);
}

// A change of many labels that was noted and isn't finished: of prices, or of what the header has for all of them.
struct Nootsoort {
    const char* ext;
    std::string (*lees)(const std::string& pad); // what it changes; empty when it isn't whole
    const char* vraag;                           // what a damaged one leaves open
};
const Nootsoort NOTEN[] = {
    {".PRS",
     [](const std::string& pad) -> std::string {
         prijswerk noot;
         if (!prijswerk_lees(pad, &noot))
             return {};
         return "prices of " + std::to_string(noot.series.size()) + " series";
     },
     "which prices were to change"},
    {".LBW",
     [](const std::string& pad) -> std::string {
         int32_t nummer;
         if (!label_noot_lees(pad, &nummer))
             return {};
         return "code or location of the labels of order " + std::to_string(nummer);
     },
     "which labels were to get their order's code or location"},
};

void lees_noot(const Nootsoort& soort, const std::string& pad, journalen* j) {
    keurbestand b{pad, "a change under way"};
    if (const keurlezer l(pad); l.fd < 0 && naam_er(pad))
        b.kwalen.push_back("can't be read: " + l.fout);
    else if (const std::string wat = soort.lees(pad); !wat.empty())
        b.noten.push_back(wat + " half changed, finished when the supplier is chosen again");
    else if (IOEXISTS(pad.c_str())) // else it was finished meanwhile
        b.kwalen.push_back(std::string("damaged: ") + soort.vraag + " can't be told");
    j->per_bestand.push_back(std::move(b));
}

void lees_seizoen(const std::string& map, const stamboek* boek, journalen* j) {
    std::string fout;
    keur_namen(map, &fout);
    if (!fout.empty()) {
        j->per_bestand.push_back({map, "", {"can't be read: " + fout}});
        j->map_ongelezen = true;
        return;
    }
    j->seizoenen.insert({static_cast<uint16_t>(strtoul(map.c_str(), nullptr, 10)), map[4]});
    std::set<std::string> gezien;
    for (const std::string& naam : namen_in(map, ".JRN")) {
        const Plaats plaats{map, naam, leverancier_van(naam)};
        if (!plaats.leverancier)
            continue; // whose journal has another name
        gezien.insert(plaats.naast(".WRK"));
        lees_journaal(plaats, boek, j);
    }
    if (const Plaats nul{map, "ORD" + map + ".JRN", 0}; naam_er(nul.pad())) {
        gezien.insert(nul.naast(".WRK"));
        lees_journaal(nul, boek, j);
    }
    // A new order of a supplier without a journal has a work file alone until its commit.
    for (const std::string& naam : namen_in(map, ".WRK"))
        if (const Plaats plaats{map, naam, leverancier_van(naam)};
            !gezien.contains(map + "/" + naam) && werk_keur(plaats, &j->per_bestand) != WERK_GEEN)
            j->leveranciers_in_hand.insert(plaats.leverancier);
    for (const Nootsoort& soort : NOTEN)
        for (const std::string& naam : namen_in(map, soort.ext))
            lees_noot(soort, map + "/" + naam, j);
}

} // namespace

std::vector<std::string> keur_seizoenen() {
    std::vector<std::string> uit;
    for (const std::string& naam : keur_namen("."))
        if (keur_past("####@", naam) && IOISDIR(naam.c_str()))
            uit.push_back(naam);
    return uit;
}

std::vector<std::string> werkresten(const std::string& seizoen) {
    std::vector<std::string> uit;
    for (const char* ext : {".WRK", ".TMP", ".ORS", ".ACT", ".PRN", ".LBN"})
        for (const std::string& naam : namen_in(seizoen, ext)) {
            const std::string pad = seizoen + "/" + naam;
            if (IOSIZE((pad.substr(0, pad.size() - 4) + ".WRK").c_str()) <= 0)
                uit.push_back(pad);
        }
    return uit;
}

journalen journalen_lees(const stamboek* boek) {
    journalen j;
    registermodus = register_aanwezig();
    for (const std::string& map : keur_seizoenen())
        lees_seizoen(map, boek, &j);
    return j;
}

} // namespace zg
