// The text of one order line, the frame of the screen and the header's values. Columns are those of the
// frame.
#include "order/bestanden.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "order/teksten.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "shared/leesstam.h"
#include "term/datum.h"
#include "term/scherm.h"
#include "term/vast.h"
#include <cstdio>

namespace zg {

namespace {

struct Label {
    int rij, kolom;
    const Tekst* tekst;
};
const Label LABELS[] = {
    {1, 37, &T_F_SEIZOEN},    {1, 62, &T_F_ORDERDATUM}, {3, 1, &T_F_LEVERANCIER}, {3, 42, &T_F_STUKS},
    {3, 62, &T_F_BRUTO},      {4, 1, &T_F_COLLECTIE},   {4, 42, &T_F_REGELS},     {4, 62, &T_F_NETTO},
    {5, 1, &T_F_ORDERNUMMER}, {5, 42, &T_F_KORTING},    {5, 62, &T_F_INKOOP},     {7, 2, &T_K_MERK},
    {7, 7, &T_K_MODEL},       {7, 23, &T_K_MATERIAAL},  {7, 36, &T_K_DESSIN},     {7, 49, &T_K_KENMERK},
    {7, 52, &T_K_ARTGR},      {7, 58, &T_K_KLEUR},      {7, 62, &T_K_DOELGROEP},
};

constexpr int REGELBREEDTE = 78;

std::string ordervaluta() {
    return valuta_of_thuis(std::string(kop.valuta, sizeof kop.valuta).c_str());
}

} // namespace

std::string regel_verwijderd(const orderregel& r, bool andere) {
    char nummer[32], tekst[96];
    snprintf(nummer, sizeof nummer, "%d.%u.%u", r.model.artikelgroep, r.dessin.kleur, r.dessin.volgnummer);
    snprintf(tekst, sizeof tekst, " *%-27.27s %s%s*", nummer, andere ? TXT(T_ORIGINELE) : " ",
             TXT(T_SERIE_VERWIJDERD));
    return tekst;
}

std::string regel_getal(int64_t waarde, size_t breedte) {
    std::string tekst = std::to_string(waarde);
    return tekst.size() > breedte ? std::string(breedte, '*')
                                  : std::string(breedte - tekst.size(), ' ') + tekst;
}

std::string regel_bedrag(const std::string& valuta, int64_t waarde, size_t breedte) {
    std::string tekst = bedrag_tekst(valuta.c_str(), waarde);
    if (tekst.size() <= breedte)
        return std::string(breedte - tekst.size(), ' ') + tekst;
    if (valuta_decimalen(valuta.c_str()))
        waarde = waarde / 100 + (waarde % 100 >= 50) - (waarde % 100 <= -50);
    return regel_getal(waarde, breedte);
}

const char* regel_tekst(regelloop* loop, bool herhaald, const ors_ingang& ingang) {
    static char tekst[256];
    static orderregel r;
    snprintf(tekst, sizeof tekst, "%-*s", REGELBREEDTE, "");
    Serie serie;
    labelsom som;
    if (!regel_som(loop, ingang, &r, &serie, &som))
        return tekst;
    if (serie == Serie::weg || serie == Serie::andere) {
        snprintf(tekst, sizeof tekst, "%-*.*s", REGELBREEDTE, REGELBREEDTE,
                 regel_verwijderd(r, serie == Serie::andere).c_str());
        return tekst;
    }
    leesmerk(dtmerk, &rijmerk, r.model.merk);
    const bool naam = !herhaald || registermodus;
    ordertotalen t;
    regel_totaal(r, som.besteld, &t);
    const char doel[] = {r.dessin.doelgroep ? r.dessin.doelgroep : ' ', 0};
    snprintf(tekst, sizeof tekst, "%-4.4s %-15.15s %-12.12s %-12.12s %-2.2s %s %s %1.1s %s %s",
             naam && rijmerk.merk ? VASTTEKST(rijmerk.zoeknaam).c_str() : "",
             naam ? VASTTEKST(r.model.model).c_str() : "", VASTTEKST(r.dessin.materiaal).c_str(),
             VASTTEKST(r.dessin.dessin).c_str(), VASTTEKST(r.dessin.kenmerk).c_str(),
             regel_getal(r.model.artikelgroep, 5).c_str(), regel_getal(r.dessin.kleur, 3).c_str(), doel,
             regel_getal(t.stuks, 5).c_str(), regel_bedrag(ordervaluta(), t.stuks ? t.netto : 0, 10).c_str());
    return tekst;
}

void order_frame() {
    for (const Label& l : LABELS)
        SCRPUT(A_LABEL, l.rij, l.kolom, "%s", TXT(*l.tekst));
    SCRPUT(A_LABEL, 7, 64, "%5.5s %5.5s", TXT(T_K_STUKS), TXT(T_K_NETTO)); // above their digits
    SCRLIJN(A_LIJN_LABEL, 6, 1, L_HORIZONTAAL, SCHERM.cols);
}

void order_kopregels() {
    static const char* const EDI[] = {"", "UOBORD", "ADMORD", "EANCOM"};
    const std::string valuta = ordervaluta();
    if (kop.deelseizoen)
        SCRPUT(A_WAARDE, 1, 53, "%1d", kop.deelseizoen % 10);
    else
        SCRPUT(A_WAARDE, 1, 53, " ");
    SCRPUT(A_WAARDE, 1, 54, "%-6.6s", EDI[kop.edi_soort <= 3 ? kop.edi_soort : 0]);
    SCRPUT(A_WAARDE, 1, 74, "%s", DATUM6(kop.orderdatum));
    SCRPUT(A_WAARDE, 4, 14, "%-20.20s", VASTTEKST(kop.collectie).c_str());
    SCRPUT(A_WAARDE, 5, 14, "%d / %-15.15s", kop.ordernummer, VASTTEKST(kop.omschrijving).c_str());
    // -0.00 never shows
    SCRPUT(A_WAARDE, 5, 52, "%7.2f%%", kop.korting ? kop.korting / -100.0 : 0.0);
    SCRPUT(A_LABEL, 7, 70, "%5.5s(%-3.3s)", TXT(T_K_NETTO), valuta.c_str());
    SCRPUT(A_WAARDE, 4, 50, "%9lld", static_cast<long long>(ordertotaal.regels));
    if (ordertotaal.stuks > 0) {
        SCRPUT(A_WAARDE, 3, 50, "%9lld", static_cast<long long>(ordertotaal.stuks));
        SCRPUT(A_WAARDE, 3, 69, "%s", regel_bedrag(valuta, ordertotaal.bruto, 11).c_str());
        SCRPUT(A_WAARDE, 4, 69, "%s", regel_bedrag(valuta, ordertotaal.netto, 11).c_str());
        SCRPUT(A_WAARDE, 5, 69, "%s", regel_bedrag(valuta_of_thuis(""), ordertotaal.inkoop, 11).c_str());
    } else {
        SCRPUT(A_WAARDE, 3, 50, "%9s", "");
        for (int rij = 3; rij <= 5; rij++)
            SCRPUT(A_WAARDE, rij, 69, "%11s", "");
    }
}

} // namespace zg
