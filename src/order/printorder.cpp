// The sheets of the order on paper: heads, the order's own values, the walk over its lines, totals.
#include "order/printorder.h"
#include "codes/codeveld.h"
#include "codes/valveld.h"
#include "order/bestanden.h"
#include "order/kop.h"
#include "order/printregel.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "print/xprt.h"
#include "shared/filveld.h"
#include "shared/iofil.h"
#include "shared/report.h"
#include "sub/omlev.h"
#include "term/datum.h"
#include "term/vast.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

constexpr int VOORTGANGRIJ = 24, VOORTGANGSTAP = 20;
constexpr int LIJN = 78;

// The report that is being printed.
struct Verslag {
    orderafdruk hoe;
    std::string valuta;
    int filiaal = -1;     // of this sheet, an index; -1 for the whole order
    bool gebroken = true; // a head came since the last line: brand and model are named again
    int64_t regels = 0;
    printsom som{};
    int onleesbaar = 0; // lines
};
Verslag* v;

std::string ordernaam() {
    char tekst[48];
    if (kop.ordernummer)
        snprintf(tekst, sizeof tekst, "%d", kop.ordernummer);
    else
        snprintf(tekst, sizeof tekst, "%u / %s", kop.leverancier, DATUM10(kop.orderdatum));
    return tekst;
}

std::string filiaalnaam(int index) {
    return std::to_string(iofil_nummer(index)) + " " + iofil_naam(index);
}

void blad() {
    const std::string naam = VASTTEKST(firma.naam), order = ordernaam();
    if (v->filiaal < 0)
        XPRT_KOP(naam.c_str(), "%s %s", TXT(T_JRN_ORDER), order.c_str());
    else
        XPRT_KOP(naam.c_str(), "%s %s  %s %u", TXT(T_JRN_ORDER), order.c_str(), TXT(T_KOP_FILIAAL),
                 iofil_nummer(v->filiaal));
    v->gebroken = true;
}

void kolomnamen() {
    print_regelkop(v->hoe.prijzen, v->valuta);
    XPRT_HERHAAL(std::min(LIJN, XPRT_KOLOMMEN()), '-');
    print_nieuwe_rij();
}

// Room for rows: else the next page, with its head.
void ruimte(int rijen) {
    if (!XPRT_VOL(rijen))
        return;
    blad();
    kolomnamen();
}
void ruimte_op_blad(int rijen) {
    if (XPRT_VOL(rijen))
        blad();
}

std::string bedrag(const std::string& valuta, int64_t n) {
    return valuta + " " + bedrag_tekst(valuta.c_str(), n);
}

std::string met_naam(int nummer, const std::string& naam) {
    return nummer ? std::to_string(nummer) + " " + naam : "";
}

void waarde(const Tekst& naam, const std::string& tekst) {
    if (!VASTTRIM(tekst).empty())
        print_label(TXT(naam), tekst);
}

std::string adres(const levrec& lev) {
    const std::string straat = VASTTEKST(lev.adres), code = VASTTEKST(lev.postcode),
                      plaats = VASTTEKST(lev.plaats);
    return straat + (straat.empty() || (code + plaats).empty() ? "" : ", ") + code +
           (code.empty() ? "" : "  ") + plaats;
}

// The currency, its rate, what is added and what goes off.
void prijswaarden() {
    char tekst[32];
    if (kop.korting) {
        snprintf(tekst, sizeof tekst, "%.2f%%", kop.korting / -100.0);
        waarde(T_F_KORTING, tekst);
    }
    waarde(T_KOP_VALUTACODE, v->valuta);
    if (thuisvaluta_anders(v->valuta.c_str()))
        waarde(T_KOP_VALUTAKOERS, koers_tekst(v->valuta.c_str(), order_koers()));
    if (kop.toeslag != 10000) {
        snprintf(tekst, sizeof tekst, "%.4f", kop.toeslag / 10000.0);
        waarde(T_KOP_TOESLAG, tekst);
    }
}

// The order's values, each where it has one.
void orderwaarden() {
    levrec agent{};
    if (kop.agent)
        relatie_lees(kop.agent, &agent);
    const std::string letter(1, kop.seizoen ? kop.seizoen : ' ');
    waarde(T_F_LEVERANCIER, std::to_string(kop.leverancier) + " " + VASTTEKST(leverancier.naam));
    waarde(T_F_ORDERNUMMER, kop.ordernummer ? std::to_string(kop.ordernummer) : "");
    waarde(T_PO_ADRES, adres(leverancier));
    waarde(T_F_SEIZOEN, (kop.jaar ? std::to_string(kop.jaar) : std::string(TXT(T_STD)) + " ") + letter);
    waarde(T_F_ORDERDATUM, DATUM10(kop.orderdatum));
    waarde(T_KOP_OMSCHRIJV, VASTTEKST(kop.omschrijving));
    waarde(T_F_COLLECTIE, VASTTEKST(kop.collectie));
    waarde(T_KOP_LEVORDERNR, VASTTEKST(kop.lev_ordernr));
    waarde(T_KOP_AGENT, met_naam(kop.agent, VASTTEKST(agent.naam)));
    waarde(T_KOP_DEELSEIZOEN, met_naam(kop.deelseizoen, lijstnaam(DEELSEIZOENTABEL, {kop.deelseizoen, ""})));
    waarde(T_KOP_INKOOPCODE, met_naam(kop.inkoopcode, lijstnaam(INKOOPTABEL, {kop.inkoopcode, ""})));
    if (kop_met_locatie())
        waarde(T_KOP_LOCATIE,
               kop.ontvangstlocatie == LOCATIE_MAGAZIJN
                   ? TXT(T_KOP_MAGAZIJN)
                   : std::string(TXT(T_KOP_FILIAAL)) + " " +
                         met_naam(kop.ontvangstlocatie, lijstnaam(FILIAALTABEL, {kop.ontvangstlocatie, ""})));
    if (v->hoe.prijzen)
        prijswaarden();
    if (v->filiaal >= 0)
        waarde(T_KOP_FILIAAL, filiaalnaam(v->filiaal));
    print_nieuwe_rij();
    print_nieuwe_rij();
}

void ordertekst(const Tekst& naam, int soort) {
    char blok[BLOKLEN];
    if (ord_tekst_lees(werk, soort, blok))
        print_tekst(TXT(naam), blok, ruimte_op_blad);
}

// The first page of the order, or of a branch.
void begin_vel(int32_t plaats) {
    v->regels = 0;
    v->som = {};
    blad();
    orderwaarden();
    if (v->hoe.blad == Orderblad::volledig) {
        const ordkop nu = kop; // reading the texts reads the header
        if (ord_lees_op(werk, plaats)) {
            ordertekst(T_LEVERINGSCONDITIES, 1);
            ordertekst(T_BETALINGSCONDITIES, 2);
        }
        kop = nu;
        print_nieuwe_rij();
    }
    ruimte_op_blad(6);
    kolomnamen();
}

void eind_vel() {
    ruimte_op_blad(6);
    XPRT_HERHAAL(std::min(LIJN, XPRT_KOLOMMEN()), '-');
    print_nieuwe_rij();
    waarde(T_F_REGELS, std::to_string(v->regels));
    waarde(T_F_STUKS, std::to_string(v->som.stuks));
    if (v->hoe.prijzen) {
        waarde(T_F_BRUTO, bedrag(v->valuta, v->som.bruto));
        waarde(T_F_NETTO, bedrag(v->valuta, v->som.netto));
        waarde(T_F_INKOOP, bedrag(valuta_of_thuis(""), v->som.inkoop));
    }
    print_nieuwe_rij();
}

void tel_bij(const printsom& som) {
    v->regels++;
    v->som.stuks += som.stuks;
    v->som.bruto += som.bruto;
    v->som.netto += som.netto;
    v->som.inkoop += som.inkoop;
}

printrij aantallen(const std::string& voor, const std::vector<levcel>& cellen) {
    printrij rij{voor, {}, false};
    for (const levcel& cel : cellen)
        for (int32_t* som : {&rij.cellen[cel.maat], &rij.cellen[0]})
            *som = static_cast<int32_t>(std::min<int64_t>(int64_t{*som} + cel.aantal, INT32_MAX));
    return rij;
}

printrij bedragen(const std::string& voor, const prijsrij& prijzen) {
    printrij rij{voor, {}, true};
    for (int maat = 1; maat <= MATEN; maat++)
        rij.cellen[maat] = up_lees(prijzen, maat);
    return rij;
}

// The price that all sizes of the line have; 0 when they differ, or there is none.
int32_t een_prijs(const printregel& p, const prijsrij& prijzen) {
    int32_t prijs = 0;
    for (const auto& k : p.maten) {
        const int32_t n = up_lees(prijzen, k.maat);
        if (n == 0 || (prijs && n != prijs))
            return 0;
        prijs = n;
    }
    return prijs;
}

std::string prijzen_in_een(const printregel& p) {
    const int32_t bruto = een_prijs(p, p.bruto), netto = een_prijs(p, p.netto);
    if (!v->hoe.prijzen || !bruto || !netto)
        return "";
    return std::string(TXT(T_PO_BRUTO)) + " " + bedrag_tekst(v->valuta.c_str(), bruto) + "  " +
           TXT(T_K_NETTO) + " " + bedrag_tekst(v->valuta.c_str(), netto);
}

// A row a term, what was ordered where that isn't the one term, and the prices where they differ by size.
std::vector<printrij> maatrijen(const orderregel& regel, const printregel& p, bool prijzen) {
    std::vector<printrij> uit;
    int64_t open = 0;
    for (const levterm& term : regel.termen) {
        const std::string van = DATUM6(term.van);
        uit.push_back(aantallen(van + "-" + DATUM6(term.tot), term.cellen));
        open += uit.back().cellen[0];
    }
    const printrij besteld = aantallen(TXT(T_PO_BESTELD), p.besteld);
    if (regel.termen.size() != 1 || open != besteld.cellen[0])
        uit.push_back(besteld);
    if (prijzen) {
        uit.push_back(bedragen(TXT(T_PO_BRUTO), p.bruto));
        uit.push_back(bedragen(TXT(T_K_NETTO), p.netto));
    }
    return uit;
}

void print_regel(const orderregel& regel, const std::string& weg, bool herhaald) {
    const printregel p = print_neem(regel, weg);
    const printsom som = print_tel(p, p.besteld);
    ruimte(v->hoe.blad == Orderblad::kort ? 1 : 3);
    print_regelrij(p, herhaald && !v->gebroken && !registermodus, v->hoe.prijzen, v->valuta, som);
    v->gebroken = false;
    tel_bij(som);
    if (v->hoe.blad == Orderblad::kort)
        return;
    if (weg.empty()) {
        const std::string prijzen = prijzen_in_een(p);
        print_regelnaam(p, prijzen);
        print_maten(p, maatrijen(regel, p, v->hoe.prijzen && prijzen.empty()), v->valuta, ruimte);
    }
    if (!herhaald)
        print_tekst(TXT(T_MODEL_OPMERKING), regel.modeltekst, ruimte);
    print_tekst(TXT(T_DESSIN_OPMERKING), regel.dessintekst, ruimte);
    print_nieuwe_rij();
}

void voortgang(size_t regel) {
    if (SCHERM.bestaat && regel % VOORTGANGSTAP == 0) {
        SCRPUT(A_WAARDE, VOORTGANGRIJ, 1, "%s %zu ", TXT(T_REG_ORDERREGEL), regel + 1);
        SCRFLUSH(0);
    }
}

// What is printed for a line that the register hasn't got: its series has gone, or is damaged (told).
std::string in_plaats(const orderregel& regel, Serie serie) {
    if (serie == Serie::weg || serie == Serie::andere)
        return regel_verwijderd(regel, serie == Serie::andere);
    if (serie != Serie::stuk && serie != Serie::zonder_prijs)
        return "";
    v->onleesbaar++;
    const seriesleutel s = regel_serie(regel);
    return " *" + std::to_string(s.artikelgroep) + "." + std::to_string(s.kleur) + "." +
           std::to_string(s.volgnummer) + " " + TXT(T_REGEL_ONTOEGANKELIJK) + "*";
}

// Every line that can be loaded: doe(line, what stands for one without a series, same model as the one before). False when
// the user wanted out.
template <class F> bool elke_regel(const std::vector<ors_ingang>& regels, F doe) {
    regelloop loop;
    regelloop_begin(&loop);
    loop.zonder_matrices = !registermodus;
    orderregel regel;
    int32_t model = -1;
    for (size_t i = 0; i < regels.size(); i++) {
        voortgang(i);
        if (XPRT_STOP())
            return false;
        if (!regel_lees(&loop, regels[i], &regel)) {
            v->regels++;
            v->onleesbaar++;
            if (v->hoe.blad != Orderblad::filialen) {
                ruimte(1);
                XPRT_PRINT(" *%s*", TXT(T_REGEL_ONTOEGANKELIJK));
                print_nieuwe_rij();
            }
            continue;
        }
        doe(regel, registermodus ? in_plaats(regel, serie_laad(&regel, false, false)) : "",
            model == regels[i].m);
        model = regels[i].m;
    }
    return true;
}

bool eerder(const levcel& a, const levcel& b) {
    return a.filiaal != b.filiaal ? a.filiaal < b.filiaal : a.maat < b.maat;
}

// The lines of one branch, on sheets of their own; nothing without pieces. False when the user wanted out.
bool print_filiaal(const std::vector<printregel>& regels, int filiaal, int32_t plaats) {
    v->filiaal = -1;
    for (const printregel& p : regels) {
        auto [van, tot] =
            std::equal_range(p.besteld.begin(), p.besteld.end(), levcel{static_cast<uint8_t>(filiaal), 0, 0},
                             [](const levcel& a, const levcel& b) { return a.filiaal < b.filiaal; });
        if (van == tot)
            continue;
        if (XPRT_STOP())
            return false;
        if (v->filiaal < 0) {
            v->filiaal = filiaal;
            begin_vel(plaats);
        }
        const std::vector<levcel> cellen(van, tot);
        const printsom som = print_tel(p, cellen);
        ruimte(4);
        print_regelrij(p, false, v->hoe.prijzen, v->valuta, som);
        print_maten(p, {aantallen(TXT(T_K_STUKS), cellen)}, v->valuta, ruimte);
        tel_bij(som);
    }
    if (v->filiaal >= 0)
        eind_vel();
    return true;
}

bool print_filialen(const std::vector<ors_ingang>& ingangen, int32_t plaats) {
    std::vector<printregel> regels;
    const bool heel = elke_regel(ingangen, [&](const orderregel& regel, const std::string& weg, bool) {
        printregel& p = regels.emplace_back(print_neem(regel, weg));
        std::sort(p.besteld.begin(), p.besteld.end(), eerder);
    });
    if (std::all_of(regels.begin(), regels.end(), [](const printregel& p) { return p.besteld.empty(); }))
        return false;
    for (int f = 0; heel && f < firma.filialen; f++)
        if (!print_filiaal(regels, f, plaats))
            break;
    return true;
}

} // namespace

bool print_order(const orderafdruk& hoe, const std::vector<ors_ingang>& regels, int32_t plaats,
                 int* onleesbaar) {
    if (regels.empty())
        return false;
    const ordkop eigen = kop;
    relatie_lees(kop.leverancier, &leverancier);
    if (VASTLEEG(kop.valuta)) // as on the screen
        memcpy(kop.valuta, leverancier.valuta, sizeof kop.valuta);
    order_prijscontext();
    Verslag verslag{hoe, valuta_of_thuis(std::string(VASTUIT(kop.valuta)).c_str())};
    v = &verslag;
    bool iets = true;
    if (hoe.blad == Orderblad::filialen) {
        iets = print_filialen(regels, plaats);
    } else {
        begin_vel(plaats);
        if (elke_regel(regels, print_regel))
            eind_vel();
    }
    if (SCHERM.bestaat)
        SCRCLREOL(VOORTGANGRIJ, 1);
    if (onleesbaar)
        *onleesbaar += verslag.onleesbaar;
    v = nullptr;
    kop = eigen;
    return iets;
}

} // namespace zg
