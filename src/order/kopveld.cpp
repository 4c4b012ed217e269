// The items of the order header: how each looks, how it is entered, when it may be.
#include "codes/codeveld.h"
#include "codes/valveld.h"
#include "order/bestanden.h"
#include "order/dialog.h"
#include "order/kop.h"
#include "order/programma.h"
#include "order/regelscherm.h"
#include "order/register.h"
#include "order/teksten.h"
#include "order/wrk.h"
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/kortingveld.h"
#include "shared/filveld.h"
#include "shared/sysrec.h"
#include "sub/omlev.h"
#include "term/datum.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/vast.h"
#include <cstring>

namespace zg {
namespace {

constexpr int KOPWAARDE = 21;    // column of the values
constexpr int NAAMKOLOM = 26;    // currency
constexpr int TEKSTKOLOM = 24;   // one-digit codes
constexpr int TEKSTVELD = 35;    // width of the texts' first line
constexpr uint16_t VLAG_EDI = 4; // of the firm's flags word
constexpr int16_t KORTING_GEHEEL = -10000;
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

void zet_koers(double waarde) {
    int32_t geheel;
    uint16_t eenheid;
    koers_integer(waarde, &geheel, &eenheid);
    kop.koers = static_cast<uint32_t>(geheel);
    kop.koerseenheid = eenheid;
}

bool eerste_kop; // the first header of an order without lines is entered
levrec agent;    // own image: the order's supplier stays in his

void waarde(int rij, const std::string& tekst) {
    SCRPUT(A_WAARDE, rij, KOPWAARDE, "%-36.36s", tekst.c_str());
}

std::string opgemaakt(const char* fmt, double getal) {
    char tekst[48];
    snprintf(tekst, sizeof tekst, fmt, getal);
    return tekst;
}

std::string relatie_regel(uint16_t nummer, const levrec& relatie) {
    char tekst[64];
    snprintf(tekst, sizeof tekst, "%-4u %-20.20s", nummer, VASTTEKST(relatie.naam).c_str());
    return tekst;
}

// A code, and at a column what it stands for.
void code_waarde(int rij, const Lijsttabel& tabel, const Lijstcode& code, int kolom) {
    std::string tekst = code.nummer ? std::to_string(code.nummer) : code.tekst;
    tekst.resize(static_cast<size_t>(kolom - KOPWAARDE), ' ');
    waarde(rij, tekst + lijstnaam(tabel, code));
}

// ---- values

void toon_leverancier(int rij) {
    waarde(rij, relatie_regel(kop.leverancier, leverancier));
}
void toon_datum(int rij) {
    waarde(rij, DATUM6(kop.orderdatum));
}
void toon_locatie(int rij) {
    if (kop.ontvangstlocatie == LOCATIE_MAGAZIJN)
        waarde(rij, TXT(T_KOP_MAGAZIJN));
    else
        waarde(rij, std::string(TXT(T_KOP_FILIAAL)) + " " + std::to_string(kop.ontvangstlocatie) + " " +
                        lijstnaam(FILIAALTABEL, {kop.ontvangstlocatie, ""}));
}
void toon_lev_ordernr(int rij) {
    waarde(rij, VASTTEKST(kop.lev_ordernr));
}
void toon_omschrijving(int rij) {
    waarde(rij, VASTTEKST(kop.omschrijving));
}
void toon_agent(int rij) {
    if (kop.agent)
        relatie_lees(kop.agent, &agent);
    waarde(rij, kop.agent ? relatie_regel(kop.agent, agent) : "");
}
void toon_deelseizoen(int rij) {
    code_waarde(rij, DEELSEIZOENTABEL, {kop.deelseizoen, ""}, TEKSTKOLOM);
}
void toon_collectie(int rij) {
    waarde(rij, VASTTEKST(kop.collectie));
}
void toon_inkoopcode(int rij) {
    code_waarde(rij, INKOOPTABEL, {kop.inkoopcode, ""}, TEKSTKOLOM);
}
void toon_korting(int rij) {
    waarde(rij, kop.korting ? opgemaakt("%-7.2lf", kop.korting / -100.0) : "");
}
void toon_valuta(int rij) {
    code_waarde(rij, VALUTATABEL, {0, VASTTEKST(kop.valuta)}, NAAMKOLOM);
}
void toon_koers(int rij) {
    waarde(rij, koers_tekst(valuta_of_thuis(kop.valuta).c_str(), order_koers()));
}
void toon_toeslag(int rij) {
    waarde(rij, opgemaakt("%5.4f", kop.toeslag / 10000.0));
}
void toon_levering(int rij) {
    tekst_regel(rij, KOPWAARDE, TEKSTVELD, kop_levering);
}
void toon_betaling(int rij) {
    tekst_regel(rij, KOPWAARDE, TEKSTVELD, kop_betaling);
}

// ---- fields

bool veld_datum(int rij) {
    uint16_t datum = kop.orderdatum;
    if (registermodus && aantal_regels > 0)
        INSTEL.minimum = datum; // the series of the lines are as old as the order
    bool anders = INGAVE(rij, KOPWAARDE, "D,E", &SCHERM.toets[key_cancel], &datum) != 0;
    kop.orderdatum = datum;
    return anders;
}

bool veld_locatie(int rij) {
    DMREC* menu = DMNEW(TXT(T_KOP_LOCATIE_TITEL));
    DMITEM(menu, TXT(T_KOP_1_MAGAZIJN), 1, 1);
    DMITEM(menu, TXT(T_KOP_2_FILIAAL), 2, 1);
    bool magazijn = kop.ontvangstlocatie == LOCATIE_MAGAZIJN;
    uint8_t oud = kop.ontvangstlocatie;
    int schermrij, schermkolom;
    WINNAARSCHERM(rij, KOPWAARDE, &schermrij, &schermkolom);
    switch (DMRUN(menu, schermrij, 0)) {
    case 1:
        kop.ontvangstlocatie = LOCATIE_MAGAZIJN;
        break;
    case 2: {
        uint8_t nummer = magazijn ? uint8_t{0} : oud;
        int veld = KOPWAARDE + 1 + static_cast<int>(strlen(TXT(T_KOP_FILIAAL)));
        waarde(rij, TXT(T_KOP_FILIAAL));
        fil_veld(rij, veld, veld + 4, magazijn ? "IZP" : "ZP", &nummer);
        if (!TOETSWEG())
            kop.ontvangstlocatie = nummer;
        break;
    }
    }
    return kop.ontvangstlocatie != oud;
}

bool veld_omschrijving(int rij) {
    return INGAVE(rij, KOPWAARDE, "15c,", &SCHERM.toets[key_cancel], &kop.omschrijving) != 0;
}

bool veld_agent(int rij) {
    uint16_t nummer = kop.agent;
    agent.nummer = 0;
    const bool anders = lijstveld(AGENTTABEL, rij, KOPWAARDE, "PZ", &nummer) == Lijstuit::anders;
    kop.agent = nummer;
    return anders;
}

bool veld_deelseizoen(int rij) {
    return lijstveld(DEELSEIZOENTABEL, rij, KOPWAARDE, "", &kop.deelseizoen) == Lijstuit::anders;
}

bool veld_collectie(int rij) {
    return INGAVE(rij, KOPWAARDE, "20c,", &SCHERM.toets[key_cancel], &kop.collectie) != 0;
}

bool veld_inkoopcode(int rij) {
    return lijstveld(INKOOPTABEL, rij, KOPWAARDE, "", &kop.inkoopcode) == Lijstuit::anders;
}

bool veld_korting(int rij) {
    if (!orderkorting_toegestaan())
        return false;
    int16_t oud = kop.korting;
    double procent = kop.korting / -100.0;
    korting_veld(rij, KOPWAARDE, &procent);
    kop.korting = static_cast<int16_t>(round(procent * -100));
    return kop.korting != oud || kop.korting != korting_bij_opening;
}

bool veld_valuta(int rij) {
    if (lijstveld(VALUTATABEL, rij, KOPWAARDE, "UE", kop.valuta, sizeof kop.valuta) != Lijstuit::anders)
        return false;
    kop_koers_van_datum();
    return true;
}

bool veld_koers(int rij) {
    if (!vreemde_valuta())
        return false;
    double nieuw = order_koers();
    if (!koers_veld(rij, KOPWAARDE, "", valutacode().c_str(), &nieuw))
        return false;
    if (nieuw == 0)
        kop_koers_van_datum();
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

bool veld_levering(int rij) {
    return tekst_item(rij, 10, 1, kop_levering);
}
bool veld_betaling(int rij) {
    return tekst_item(rij, 10, 2, kop_betaling);
}
void bekijk_levering() {
    tekst_bekijk(12, 10, 1, kop_levering);
}
void bekijk_betaling() {
    tekst_bekijk(12, 10, 2, kop_betaling);
}

// ---- when: which of them there are, and which may be chosen

bool er_is_locatie() {
    return firma.filialen > 1 && kop_met_locatie();
}
bool er_is_lev_ordernr() {
    return !VASTLEEG(kop.lev_ordernr) && edi_aan() && kop.edi_soort == EDI_ADMORD;
}
bool zonder_regels() {
    return aantal_regels == 0;
}
// In the full registration much is fixed once there are lines.
bool vrij() {
    return eerste_kop || !registermodus || zonder_regels();
}
// Labels have the date of their order; a line that can't be read may have some.
bool datum_vrij() {
    return vrij() || (ordertotaal.stuks == 0 && regels_leesbaar());
}
bool korting_vrij() {
    // With 100 % off, stored by others, no price can be computed back.
    return kop.korting == 0 || (zonder_regels() && kop.korting != KORTING_GEHEEL);
}
bool koers_vrij() {
    return vreemde_valuta() && vrij();
}

// One branch: no receiving location, and the rows below it move up.
int kop_rij(int item) {
    return item + 1 - (item > KOP_LOCATIE && firma.filialen <= 1 ? 1 : 0);
}

// clang-format off
const Item ITEMS[] = {
    {KOP_LEVERANCIER,  &T_KOP_LEVERANCIER, toon_leverancier},
    {KOP_DATUM,        &T_KOP_ORDERDATUM,  toon_datum,        veld_datum,        datum_vrij},
    {KOP_LOCATIE,      &T_KOP_LOCATIE,     toon_locatie,      veld_locatie,      nullptr, er_is_locatie},
    {KOP_LEV_ORDERNR,  &T_KOP_LEVORDERNR,  toon_lev_ordernr,  nullptr,           nullptr, er_is_lev_ordernr},
    {KOP_OMSCHRIJVING, &T_KOP_OMSCHRIJV,   toon_omschrijving, veld_omschrijving},
    {KOP_AGENT,        &T_KOP_AGENT,       toon_agent,        veld_agent},
    {KOP_DEELSEIZOEN,  &T_KOP_DEELSEIZOEN, toon_deelseizoen,  veld_deelseizoen,  vrij},
    {KOP_COLLECTIE,    &T_KOP_COLLECTIE,   toon_collectie,    veld_collectie},
    {KOP_INKOOPCODE,   &T_KOP_INKOOPCODE,  toon_inkoopcode,   veld_inkoopcode},
    {KOP_KORTING,      &T_KOP_KORTING,     toon_korting,      veld_korting,      korting_vrij},
    {KOP_VALUTA,       &T_KOP_VALUTACODE,  toon_valuta,       veld_valuta,       zonder_regels},
    {KOP_KOERS,        &T_KOP_VALUTAKOERS, toon_koers,        veld_koers,        koers_vrij},
    {KOP_TOESLAG,      &T_KOP_TOESLAG,     toon_toeslag,      veld_toeslag,      vrij},
    {KOP_LEVERING,     &T_KOP_LEVERING,    toon_levering,     veld_levering,     nullptr, nullptr, bekijk_levering},
    {KOP_BETALING,     &T_KOP_BETALING,    toon_betaling,     veld_betaling,     nullptr, nullptr, bekijk_betaling},
};
// clang-format on

} // namespace

bool kop_met_locatie() {
    return edi_aan() && (kop.edi_soort == EDI_ADMORD || kop.edi_soort == EDI_EANCOM);
}

const Itemscherm KOPSCHERM{&T_KOP_TITEL, 4, 21, 19, 60, 17, KOP_OMSCHRIJVING, kop_rij, ITEMS};

void kop_koers_van_datum() {
    koersrec gevonden{};
    if (vreemde_valuta())
        koers_record(valutacode().c_str(), kop.orderdatum, &gevonden);
    bool er = gevonden.koers > 0 && gevonden.eenheid > 0;
    kop.koers = er ? static_cast<uint32_t>(gevonden.koers) : 10000;
    kop.koerseenheid = er ? gevonden.eenheid : uint16_t{1};
}

void kopveld_begin(bool nieuw) {
    eerste_kop = nieuw;
    agent = {};
}

} // namespace zg
