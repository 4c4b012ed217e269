// The rows of one line on paper.
#include "order/printregel.h"
#include "order/dialog.h"
#include "order/regelstam.h"
#include "order/teksten.h"
#include "price/koers.h"
#include "print/xprt.h"
#include "shared/maatbalk.h"
#include "sub/maatsoort.h"
#include "sub/teksten.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

constexpr int INSPRING = 4;            // of a row that goes on, and of what stands below a line
constexpr int LABEL = 17, WAARDE = 40; // columns of a value's name, and of both: two beside each other in 80
constexpr int VOOR = 18, SOM = 7;      // in front of the size columns
constexpr int CELMINST = 5;

int kolom; // used of the row

// The sizes on paper: those of the line, and those with pieces that its set has lost.
std::vector<printregel::Kolom> kolommen(const orderregel& regel, const std::vector<levcel>& besteld) {
    std::vector<printregel::Kolom> uit;
    uint8_t maten[MAATBYTES];
    memcpy(maten, regel.dessin.maten, sizeof maten);
    for (const levcel& cel : besteld)
        maat_aan(maten, cel.maat);
    regel_balk(regel);
    balk_kies(maten);
    for (int k = 1; k <= balk_kolommen(); k++)
        uit.push_back({static_cast<uint8_t>(balk_maat(k)), std::string(VASTTRIM(balk_naam(k)))});
    return uit;
}

std::string celtekst(const printrij& rij, int maat, const std::string& valuta) {
    const int32_t n = rij.cellen[maat];
    return n == 0 ? "" : rij.bedrag ? bedrag_tekst(valuta.c_str(), n) : std::to_string(n);
}

} // namespace

printregel print_neem(const orderregel& regel, const std::string& weg) {
    printregel uit{};
    const ordmodel& m = regel.model;
    const orddessin& d = regel.dessin;
    leesmerk(dtmerk, &regelmerk, m.merk);
    if (regelmerk.merk) {
        uit.merk = VASTTEKST(regelmerk.zoeknaam);
        uit.merknaam = VASTTEKST(regelmerk.naam);
    }
    uit.model = VASTTEKST(m.model);
    uit.materiaal = VASTTEKST(d.materiaal);
    uit.dessin = VASTTEKST(d.dessin);
    uit.kenmerk = VASTTEKST(d.kenmerk);
    uit.doelgroep = std::string(VASTTRIM({&d.doelgroep, d.doelgroep ? size_t{1} : size_t{0}}));
    uit.omschrijving = VASTTEKST(d.omschrijving);
    uit.artikelgroep = m.artikelgroep;
    uit.kleur = d.kleur;
    if (d.volgnummer)
        uit.serie = std::to_string(m.artikelgroep) + "." + std::to_string(d.kleur) + "." +
                    std::to_string(d.volgnummer);
    uit.maatsoort = std::to_string(m.maatsoort) + " " + lijstnaam(MAATSOORTTABEL, {m.maatsoort, ""});
    uit.weg = weg;
    uit.bruto = regel.prijzen.bruto;
    uit.netto = regel.prijzen.netto;
    uit.inkoop = regel.prijzen.inkoop;
    regel_besteld(regel, [&](const levcel& cel) { uit.besteld.push_back(cel); });
    uit.maten = kolommen(regel, uit.besteld);
    return uit;
}

printsom print_tel(const printregel& regel, const std::vector<levcel>& cellen) {
    printsom som{};
    for (const levcel& cel : cellen) {
        som.stuks += cel.aantal;
        som.bruto += int64_t{cel.aantal} * up_lees(regel.bruto, cel.maat);
        som.netto += int64_t{cel.aantal} * up_lees(regel.netto, cel.maat);
        som.inkoop += int64_t{cel.aantal} * up_lees(regel.inkoop, cel.maat);
    }
    return som;
}

void print_nieuwe_rij() {
    XPRT_PRINT("\n");
    kolom = 0;
}

void print_plaats(int breedte) {
    if (kolom && kolom + breedte > XPRT_KOLOMMEN()) {
        print_nieuwe_rij();
        XPRT_HERHAAL(INSPRING, ' ');
        kolom = INSPRING;
    }
    kolom += breedte;
}

void print_label(const char* tekst, const std::string& waarde) {
    std::string naam = tekst;
    naam.erase(std::remove(naam.begin(), naam.end(), '&'), naam.end());
    const int nodig = LABEL + 2 + static_cast<int>(waarde.size());
    if (kolom && kolom + nodig > XPRT_KOLOMMEN())
        print_nieuwe_rij();
    const int breedte = (nodig / WAARDE + 1) * WAARDE; // a long one takes the places of two
    kolom += breedte;
    XPRT_PRINT("%-*.*s: ", LABEL, LABEL, naam.c_str());
    if (nodig <= XPRT_KOLOMMEN()) {
        XPRT_PRINT("%-*s", breedte - LABEL - 2, waarde.c_str());
        return;
    }
    const auto ruimte = static_cast<size_t>(std::max(XPRT_KOLOMMEN() - LABEL - 2, 1));
    for (size_t p = 0; p < waarde.size(); p += ruimte) {
        XPRT_PRINT("%*s%s", p ? LABEL + 2 : 0, "", waarde.substr(p, ruimte).c_str());
        print_nieuwe_rij();
    }
}

void print_regelkop(bool prijzen, const std::string& valuta) {
    print_plaats(21);
    XPRT_PRINT("%-4.4s %-15.15s ", TXT(T_K_MERK), TXT(T_K_MODEL));
    print_plaats(26);
    XPRT_PRINT("%-12.12s %-12.12s ", TXT(T_K_MATERIAAL), TXT(T_K_DESSIN));
    print_plaats(20);
    XPRT_PRINT("%-2.2s %5.5s %3.3s %1.1s %5.5s", TXT(T_K_KENMERK), TXT(T_K_ARTGR), TXT(T_K_KLEUR),
               TXT(T_K_DOELGROEP), TXT(T_K_STUKS));
    if (prijzen) {
        print_plaats(11);
        XPRT_PRINT(" %5.5s(%-3.3s)", TXT(T_K_NETTO), valuta.c_str());
    }
    print_nieuwe_rij();
}

void print_regelrij(const printregel& r, bool herhaald, bool prijzen, const std::string& valuta,
                    const printsom& som) {
    if (!r.weg.empty()) {
        std::string tekst = r.weg;
        for (size_t p;
             static_cast<int>(tekst.size()) > XPRT_KOLOMMEN() && (p = tekst.find("  ")) != tekst.npos;)
            tekst.erase(p, 1);
        XPRT_PRINT("%s", tekst.c_str());
        return print_nieuwe_rij();
    }
    print_plaats(21);
    XPRT_PRINT("%-4.4s %-15.15s ", herhaald ? "" : r.merk.c_str(), herhaald ? "" : r.model.c_str());
    print_plaats(26);
    XPRT_PRINT("%-12.12s %-12.12s ", r.materiaal.c_str(), r.dessin.c_str());
    print_plaats(20);
    XPRT_PRINT("%-2.2s %5ld %3u %1.1s %5ld", r.kenmerk.c_str(), long{r.artikelgroep}, r.kleur,
               r.doelgroep.c_str(), static_cast<long>(som.stuks));
    if (prijzen) {
        print_plaats(11);
        XPRT_PRINT(" ");
        XPRT_BEDRAGIN(valuta.c_str(), som.stuks ? som.netto : 0, 10);
    }
    print_nieuwe_rij();
}

void print_regelnaam(const printregel& r, const std::string& prijzen) {
    XPRT_HERHAAL(INSPRING, ' ');
    kolom = INSPRING;
    for (const std::string& deel :
         {r.merknaam, r.serie.empty() ? r.serie : std::string(TXT(T_SERIE)) + " " + r.serie, r.omschrijving,
          std::string(TXT(T_MS_MAATSOORT)) + " " + r.maatsoort, prijzen}) {
        if (deel.empty())
            continue;
        print_plaats(static_cast<int>(deel.size()) + 2);
        XPRT_PRINT("%s  ", deel.c_str());
    }
    print_nieuwe_rij();
}

void print_maten(const printregel& r, const std::vector<printrij>& rijen, const std::string& valuta,
                 void (*past)(int rijen)) {
    size_t cel = CELMINST;
    for (const printrij& rij : rijen)
        for (const auto& k : r.maten)
            cel = std::max(cel, celtekst(rij, k.maat, valuta).size() + 1);
    const auto breedte = static_cast<int>(cel);
    const auto per_blok = static_cast<size_t>(std::max(1, (XPRT_KOLOMMEN() - VOOR - SOM) / breedte));
    for (size_t van = 0; van < r.maten.size(); van += per_blok) {
        const size_t tot = std::min(van + per_blok, r.maten.size());
        past(static_cast<int>(rijen.size()) + 1);
        XPRT_PRINT("%*s%-*s%*s", INSPRING, "", VOOR - INSPRING, TXT(T_PO_MAAT), SOM, TXT(T_TOT));
        for (size_t k = van; k < tot; k++)
            XPRT_PRINT("%*s", breedte, r.maten[k].naam.c_str());
        print_nieuwe_rij();
        for (const printrij& rij : rijen) {
            XPRT_PRINT("%*s%-*s", INSPRING, "", VOOR - INSPRING, rij.voor.c_str());
            if (rij.bedrag)
                XPRT_PRINT("%*s", SOM, "");
            else
                XPRT_PRINT("%*ld", SOM, long{rij.cellen[0]});
            for (size_t k = van; k < tot; k++)
                XPRT_PRINT("%*s", breedte, celtekst(rij, r.maten[k].maat, valuta).c_str());
            print_nieuwe_rij();
        }
    }
}

void print_tekst(const char* naam, const char* blok, void (*past)(int rijen)) {
    const std::string tekst(blok, strnlen(blok, size_t{TEKSTRIJEN} * TEKSTBREEDTE));
    const auto ruimte = static_cast<size_t>(std::clamp(XPRT_KOLOMMEN() - INSPRING, 1, TEKSTBREEDTE));
    std::vector<std::string> rijen(1);
    for (const char c : tekst)
        if (c == '\n')
            rijen.emplace_back();
        else if (c != '\r') {
            if (rijen.back().size() == ruimte)
                rijen.emplace_back();
            rijen.back() += c;
        }
    while (!rijen.empty() && VASTTRIM(rijen.back()).empty())
        rijen.pop_back();
    if (rijen.empty())
        return;
    past(static_cast<int>(rijen.size()) + 1);
    XPRT_PRINT("%s:", naam);
    print_nieuwe_rij();
    for (const std::string& rij : rijen) {
        XPRT_PRINT("%*s%s", INSPRING, "", rij.c_str());
        print_nieuwe_rij();
    }
}

} // namespace zg
