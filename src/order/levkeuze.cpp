// The dialogues of delivery terms: their dates, a new one, new dates for one, the list. See order/aantallen.h.
#include "order/aantalbeeld.h"
#include "order/aantallen.h"
#include "order/programma.h"
#include "order/register.h"
#include "order/verdelen.h"
#include "shared/arraylijst.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include <algorithm>
#include <cstring>

namespace zg {

namespace {

constexpr int VANPLAATS = 14, TOTPLAATS = 23; // of the dates, behind the label's column
constexpr int TERMIJNRIJ = 1, TERMIJNKOLOM = 2;

// Dates of the last line's first term: the proposal for the next one's, as long as the program runs.
uint16_t laatste_van, laatste_tot;

// What a new term takes of the one in hand; -1 when it was left.
int vraag_overname(const aantalmatrix& werk) {
    int keus;
    do {
        beeld_overname(werk, false);
        TOETSAAN(K_CANCEL);
        keus = KEUZE(beeld_keusrij(), TERMIJNKOLOM);
    } while (keus < 0 && !TOETSWEG() && !beeld_opgegeven());
    return keus;
}

// One date; false when it was left, or the line given up.
bool vraag_datum(int rij, int kolom, bool leeg, uint16_t minst, uint16_t* dag) {
    for (;;) {
        INSTEL.minimum = minst;
        beeld_f6_aan();
        INGAVE(rij, kolom, leeg ? "D,EI" : "D,E", &SCHERM.toets[key_cancel], dag);
        if (TOETSWEG() || beeld_opgegeven())
            return false;
        if (SCHERM.laatste != K_F6)
            return true;
    }
}

void toon_datums(int rij, int kolom, uint16_t van, uint16_t tot) {
    SCRPUT(A_WAARDE, rij, kolom + VANPLAATS, "%-6s", DATUM6(van));
    SCRPUT(A_WAARDE, rij, kolom + TOTPLAATS, "%-6s", DATUM6(tot));
}

} // namespace

bool levt_invoer(int rij, int kolom, uint16_t* van, uint16_t* tot, bool nieuw) {
    const uint16_t oud_van = *van, oud_tot = *tot;
    const bool leeg = nieuw && instel15.optie15;
    auto terug = [&] {
        *van = oud_van;
        *tot = oud_tot;
        return false;
    };
    SCRPUT(A_WAARDE, rij, kolom + TOTPLAATS - 3, " - ");
    if (!leeg)
        toon_datums(rij, kolom, *van, *tot);
    for (;;) {
        if (!vraag_datum(rij, kolom + VANPLAATS, leeg || *van < kop.orderdatum, 0, van))
            return terug();
        if (*van >= kop.orderdatum)
            break;
        error("%s", TXT(T_A_VOOR_ORDERDATUM));
    }
    *tot = std::max(*tot, *van);
    for (;;) {
        // A day that the field can hold, whatever a journal had.
        if (!vraag_datum(rij, kolom + TOTPLAATS, leeg, std::min(*van, DATUMNR("311250")), tot))
            return terug();
        if ((!nieuw && *tot == oud_tot) || (*tot >= *van && !lt_bestaat(regel_nu.termen, *tot)))
            return true;
        error("%s", TXT(T_A_TERMIJN_BESTAAT));
    }
}

bool levt_wijzig(uint16_t* van, uint16_t* tot) {
    const uint16_t oud_van = *van, oud_tot = *tot;
    if (!levt_invoer(TERMIJNRIJ, TERMIJNKOLOM, van, tot, false) || (*van == oud_van && *tot == oud_tot))
        return false;
    // The labels of a line that is registered go along at once.
    const bool op_etiketten = registermodus && !regel_is_nieuw && regel_nu.dessin.geregistreerd;
    if ((*tot == oud_tot || !lt_bestaat(regel_nu.termen, *tot)) &&
        (!op_etiketten || levering_verzet(regel_nu, oud_tot, *van, *tot)) &&
        lt_verzet(&regel_nu.termen, oud_tot, *van, *tot))
        return true;
    *van = oud_van;
    *tot = oud_tot;
    return false;
}

bool levt_nieuw(uint16_t* van, uint16_t* tot, const aantalmatrix& werk) {
    const bool eerste = regel_nu.termen.empty();
    laatste_van = std::max(laatste_van, uint16_t{kop.orderdatum});
    laatste_tot = std::max(laatste_tot, uint16_t{kop.orderdatum});
    uint16_t nieuw_van = eerste ? laatste_van : *van, nieuw_tot = eerste ? laatste_tot : *tot;
    beeld_titel(T_A_AANTALLEN);
    SCRCLREOL(TERMIJNRIJ, 1);
    SCRPUT(A_LABEL, TERMIJNRIJ, TERMIJNKOLOM, "%s", TXT(T_A_TERMIJN));
    SCRCLREOL(beeld_keusrij(), 1);
    if (!levt_invoer(TERMIJNRIJ, TERMIJNKOLOM, &nieuw_van, &nieuw_tot, true))
        return false;
    if (eerste) {
        laatste_van = nieuw_van;
        laatste_tot = nieuw_tot;
    }
    const int keus = fm_leeg(werk) ? OVER_NIEUW : vraag_overname(werk);
    if (keus < 0)
        return false;
    aantalmatrix leeg, nieuw = werk;
    fmclear(&leeg);
    if (keus == OVER_TOTALEN)
        naar_een_filiaal(&nieuw);
    if (keus == OVER_NIEUW) {
        nieuw = leeg;
        beeld_begin(nieuw);
        beeld_teken(T_A_AANTALLEN, beeld_termijn(nieuw_van, nieuw_tot, 1, 1), nieuw);
        aantal_ingave(&nieuw);
        if (beeld_opgegeven())
            return false;
        if (firma.filialen > 1 && fm_leeg(nieuw))
            matrix_hand(&aantalgrid, &nieuw);
        if (beeld_opgegeven())
            return false;
    }
    if (!termijn_boek(nieuw_van, nieuw_tot, leeg, nieuw))
        return false;
    *van = nieuw_van;
    *tot = nieuw_tot;
    return true;
}

bool levt_kies(uint16_t* tot) {
    const levtermen& termen = regel_nu.termen;
    if (termen.empty())
        return false;
    if (termen.size() == 1) {
        *tot = termen[0].tot;
        return true;
    }
    ArrayLijst lijst{};
    for (const levterm& term : termen) {
        int64_t stuks = 0;
        for (const levcel& cel : term.cellen)
            stuks += cel.aantal;
        std::string regel = std::to_string(kop.leverancier);
        regel.resize(5, ' ');
        for (uint16_t dag : {uint16_t{kop.orderdatum}, term.van, term.tot})
            regel += std::string(DATUM6(dag)) + " ";
        const std::string cijfers = std::to_string(stuks);
        regel += std::string(cijfers.size() < 8 ? 8 - cijfers.size() : 0, ' ') + cijfers;
        if (term.tot == *tot)
            lijst.begin = static_cast<int>(lijst.regels.size());
        lijst.regels.push_back(regel);
    }
    lijst.titel = TXT(T_A_LIJSTTITEL), lijst.kop = TXT(T_A_LIJSTKOP), lijst.vraag = TXT(T_A_LAATSTE_DATUM),
    lijst.formaat = "6s[0123456789],I";
    lijst.zoek = [&](const char* tekst) {
        const uint16_t dag = strlen(tekst) == 6 ? DATUMNR(tekst) : uint16_t{0};
        auto plek =
            std::find_if(termen.begin(), termen.end(), [&](const levterm& t) { return t.tot >= dag; });
        return plek == termen.end() ? -1 : static_cast<int>(plek - termen.begin());
    };
    const int gekozen = arraylijst(lijst);
    if (gekozen < 0)
        return false;
    *tot = termen[static_cast<size_t>(gekozen)].tot;
    return true;
}

} // namespace zg
