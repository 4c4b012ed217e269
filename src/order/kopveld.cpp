// One field of the order header: how it looks and how it is entered.
#include "codes/codeveld.h"
#include "codes/valveld.h"
#include "order/dialog.h"
#include "order/kop.h"
#include "order/later.h"
#include "order/programma.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/kortingveld.h"
#include "shared/filveld.h"
#include "shared/iofil.h"
#include "shared/sysrec.h"
#include "sub/omlev.h"
#include "term/datum.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/vast.h"
#include <cstring>

namespace zg {
namespace {

constexpr int NAAMKOLOM = 26;    // agent, currency
constexpr int TEKSTKOLOM = 24;   // one-digit codes
constexpr int TEKSTVELD = 35;    // width of the texts' first line
constexpr uint16_t VLAG_EDI = 4; // of the firm's flags word
enum Edi : uint8_t { EDI_UOBORD = 1, EDI_ADMORD = 2, EDI_EANCOM = 3 };

bool edi_aan() {
    return (firma.vlaggen & VLAG_EDI) != 0;
}

std::string valutacode() {
    return std::string(VASTUIT(kop.valuta));
}

bool vreemde_valuta() {
    return !VASTLEEG(kop.valuta) && thuisvaluta_anders(valutacode().c_str());
}

double koers() {
    uint16_t eenheid = kop.koerseenheid ? kop.koerseenheid : uint16_t{1};
    return koers_dubbel(static_cast<int32_t>(kop.koers), eenheid);
}

void zet_koers(double waarde) {
    int32_t geheel;
    uint16_t eenheid;
    koers_integer(waarde, &geheel, &eenheid);
    kop.koers = static_cast<uint32_t>(geheel);
    kop.koerseenheid = eenheid;
}

// The rate of the order's currency at the order date; 1 for the home currency and without any rate.
void koers_van_datum() {
    koersrec gevonden{};
    if (vreemde_valuta())
        koers_record(valutacode().c_str(), kop.orderdatum, &gevonden);
    bool er = gevonden.koers > 0 && gevonden.eenheid > 0;
    kop.koers = er ? static_cast<uint32_t>(gevonden.koers) : 10000;
    kop.koerseenheid = er ? gevonden.eenheid : uint16_t{1};
}

// Name of a relation without losing the supplier, who has the one image.
std::string relatie_naam(uint16_t nummer) {
    if (nummer == 0)
        return "";
    std::string naam = relatie_lees(nummer) ? VASTTEKST(leverancier.naam) : "";
    relatie_lees(kop.leverancier);
    return naam;
}

void waarde(int item, const std::string& tekst) {
    SCRPUT(A_WAARDE, kop_rij(item), KOPWAARDE, "%-36.36s", tekst.c_str());
}

std::string opgemaakt(const char* fmt, double getal) {
    char tekst[48];
    snprintf(tekst, sizeof tekst, fmt, getal);
    return tekst;
}

std::string code_regel(Codesoort soort, uint8_t code) {
    if (code == 0)
        return "";
    return std::to_string(code) + std::string(TEKSTKOLOM - KOPWAARDE - 1, ' ') + code_tekst(soort, code);
}

std::string nummer_regel(uint16_t nummer, const std::string& naam) {
    char tekst[64];
    snprintf(tekst, sizeof tekst, "%-4u %-20.20s", nummer, naam.c_str());
    return tekst;
}

std::string locatie_regel() {
    if (kop.ontvangstlocatie == LOCATIE_MAGAZIJN)
        return TXT(T_KOP_MAGAZIJN);
    int index;
    std::string naam = iofil_index(kop.ontvangstlocatie, &index) ? iofil_naam(index) : "";
    return std::string(TXT(T_KOP_FILIAAL)) + " " + std::to_string(kop.ontvangstlocatie) + " " + naam;
}

// What labels would have to follow: not before the full registration can. Tells why.
bool etiketten_volgen_niet(const Tekst& waarom) {
    if (!registermodus || aantal_regels == 0)
        return false;
    error("%s", TXT(waarom));
    return true;
}

bool veld_locatie() {
    if (etiketten_volgen_niet(T_KOP_HEEFT_ETIKETTEN))
        return false;
    DMREC* menu = DMNEW(TXT(T_KOP_LOCATIE_TITEL));
    DMITEM(menu, TXT(T_KOP_1_MAGAZIJN), 1, 1);
    DMITEM(menu, TXT(T_KOP_2_FILIAAL), 2, 1);
    bool magazijn = kop.ontvangstlocatie == LOCATIE_MAGAZIJN;
    uint8_t oud = kop.ontvangstlocatie;
    int rij, kolom;
    WINNAARSCHERM(kop_rij(KOP_LOCATIE), KOPWAARDE, &rij, &kolom);
    switch (DMRUN(menu, rij, 0)) {
    case 1:
        kop.ontvangstlocatie = LOCATIE_MAGAZIJN;
        break;
    case 2: {
        uint8_t nummer = magazijn ? uint8_t{0} : oud;
        int veld = KOPWAARDE + 1 + static_cast<int>(strlen(TXT(T_KOP_FILIAAL)));
        waarde(KOP_LOCATIE, TXT(T_KOP_FILIAAL));
        fil_veld(kop_rij(KOP_LOCATIE), veld, veld + 4, magazijn ? "IZP" : "ZP", &nummer);
        if (!TOETSWEG())
            kop.ontvangstlocatie = nummer;
        break;
    }
    }
    return kop.ontvangstlocatie != oud;
}

bool veld_datum(int rij) {
    uint16_t datum = kop.orderdatum;
    bool anders = INGAVE(rij, KOPWAARDE, "D,E", &SCHERM.toets[key_cancel], &datum) != 0;
    kop.orderdatum = datum;
    return anders;
}

bool veld_agent(int rij) {
    uint16_t agent = kop.agent;
    if (relatie_veld(rij, KOPWAARDE, "Z", REL_AGENT, &agent)) {
        int32_t toets = SCHERM.laatste;
        relatie_lees(kop.leverancier);
        SCHERM.laatste = toets;
    }
    bool anders = agent != kop.agent;
    kop.agent = agent;
    return anders;
}

bool veld_korting(int rij) {
    if (etiketten_volgen_niet(T_KOP_GEEN_KORTING))
        return false;
    int16_t oud = kop.korting;
    double procent = kop.korting / -100.0;
    korting_veld(rij, KOPWAARDE, &procent);
    kop.korting = static_cast<int16_t>(round(procent * -100));
    return kop.korting != oud || kop.korting != korting_bij_opening;
}

bool veld_valuta(int rij) {
    if (!valuta_veld(rij, KOPWAARDE, "3c,UE", kop.valuta))
        return false;
    koers_van_datum();
    return true;
}

bool veld_koers(int rij) {
    if (!vreemde_valuta())
        return false;
    double oud = koers(), nieuw = oud;
    if (!koers_veld(rij, KOPWAARDE, "", valutacode().c_str(), &nieuw))
        return false;
    if (nieuw == 0)
        koers_van_datum();
    else
        zet_koers(nieuw);
    return true;
}

bool veld_toeslag(int rij) {
    double factor = kop.toeslag / 10000.0;
    uint32_t oud = kop.toeslag;
    if (INGAVE(rij, KOPWAARDE, "8.4f,EP", &SCHERM.toets[key_cancel], &factor))
        kop.toeslag = static_cast<uint32_t>(round(factor * 10000));
    return kop.toeslag != oud;
}

bool veld_tekst(int item) {
    bool levering = item == KOP_LEVERING;
    bool anders = tekst_venster(kop_rij(item), 10, levering ? 1 : 2, levering ? kop_levering : kop_betaling);
    if (SCHERM.laatste != K_F6)
        SCHERM.laatste = K_ENTER;
    return anders;
}

bool bewerk(int item) {
    int rij = kop_rij(item);
    switch (item) {
    case KOP_DATUM:
        return veld_datum(rij);
    case KOP_LOCATIE:
        return veld_locatie();
    case KOP_OMSCHRIJVING:
        return INGAVE(rij, KOPWAARDE, "15c,", &SCHERM.toets[key_cancel], &kop.omschrijving) != 0;
    case KOP_AGENT:
        return veld_agent(rij);
    case KOP_DEELSEIZOEN:
        return code_veld(rij, KOPWAARDE, CODE_DEELSEIZOEN, &kop.deelseizoen);
    case KOP_COLLECTIE:
        return INGAVE(rij, KOPWAARDE, "20c,", &SCHERM.toets[key_cancel], &kop.collectie) != 0;
    case KOP_INKOOPCODE:
        return !etiketten_volgen_niet(T_KOP_HEEFT_ETIKETTEN) &&
               code_veld(rij, KOPWAARDE, CODE_INKOOP, &kop.inkoopcode);
    case KOP_KORTING:
        return veld_korting(rij);
    case KOP_VALUTA:
        return veld_valuta(rij);
    case KOP_KOERS:
        return veld_koers(rij);
    case KOP_TOESLAG:
        return veld_toeslag(rij);
    case KOP_LEVERING:
    case KOP_BETALING:
        return veld_tekst(item);
    default:
        error("%s", TXT(T_KOP_ONGELDIGE_KEUZE));
        return false;
    }
}

} // namespace

bool kop_aanwezig(int item) {
    switch (item) {
    case KOP_LOCATIE:
        return aantal_filialen > 1 && edi_aan() &&
               (kop.edi_soort == EDI_ADMORD || kop.edi_soort == EDI_EANCOM);
    case KOP_LEV_ORDERNR:
        return !VASTLEEG(kop.lev_ordernr) && edi_aan() && kop.edi_soort == EDI_ADMORD;
    default:
        return item >= 0 && item < KOP_ITEMS;
    }
}

int kop_rij(int item) {
    return item + 1 - (item > KOP_LOCATIE && aantal_filialen <= 1 ? 1 : 0);
}

void kop_toon_veld(int item) {
    if (!kop_aanwezig(item))
        return;
    switch (item) {
    case KOP_LEVERANCIER:
        waarde(item, nummer_regel(kop.leverancier, VASTTEKST(leverancier.naam)));
        break;
    case KOP_DATUM:
        waarde(item, DATUM6(kop.orderdatum));
        break;
    case KOP_LOCATIE:
        waarde(item, locatie_regel());
        break;
    case KOP_LEV_ORDERNR:
        waarde(item, VASTTEKST(kop.lev_ordernr));
        break;
    case KOP_OMSCHRIJVING:
        waarde(item, VASTTEKST(kop.omschrijving));
        break;
    case KOP_AGENT:
        waarde(item, kop.agent ? nummer_regel(kop.agent, relatie_naam(kop.agent)) : "");
        break;
    case KOP_DEELSEIZOEN:
        waarde(item, code_regel(CODE_DEELSEIZOEN, kop.deelseizoen));
        break;
    case KOP_COLLECTIE:
        waarde(item, VASTTEKST(kop.collectie));
        break;
    case KOP_INKOOPCODE:
        waarde(item, code_regel(CODE_INKOOP, kop.inkoopcode));
        break;
    case KOP_KORTING:
        waarde(item, kop.korting ? opgemaakt("%-7.2lf", kop.korting / -100.0) : "");
        break;
    case KOP_VALUTA: {
        std::string code = valutacode();
        std::string naam = !VASTLEEG(kop.valuta) && valuta_zoek(kop.valuta) ? VASTTEKST(valuta_nu.naam) : "";
        waarde(item,
               code + std::string(static_cast<size_t>(NAAMKOLOM - KOPWAARDE) - code.size(), ' ') + naam);
        break;
    }
    case KOP_KOERS:
        waarde(item, koers_tekst(valuta_of_thuis(kop.valuta).c_str(), koers()));
        break;
    case KOP_TOESLAG:
        waarde(item, opgemaakt("%5.4f", kop.toeslag / 10000.0));
        break;
    case KOP_LEVERING:
        tekst_regel(kop_rij(item), KOPWAARDE, TEKSTVELD, kop_levering);
        break;
    case KOP_BETALING:
        tekst_regel(kop_rij(item), KOPWAARDE, TEKSTVELD, kop_betaling);
        break;
    }
}

void kop_toon() {
    for (int item = 0; item < KOP_ITEMS; item++)
        kop_toon_veld(item);
}

bool kop_veld(int item, bool mag_wijzigen) {
    if (item >= KOP_OMSCHRIJVING && !mag_wijzigen) {
        TOETSUIT(K_F6);
        SCHERM.laatste = 0;
        return false;
    }
    bool anders = bewerk(item);
    TOETSUIT(K_F6); // a field that didn't open leaves its keys behind
    kop_toon_veld(item);
    if (item == KOP_VALUTA)
        kop_toon_veld(KOP_KOERS);
    return anders;
}

} // namespace zg
