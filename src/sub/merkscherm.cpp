// The screen on one brand.
#include "codes/codeveld.h"
#include "price/uniprijs.h"
#include "shared/filveld.h"
#include "shared/koppel.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "shared/sysrec.h"
#include "sub/maatsoort.h"
#include "sub/merken.h"
#include "sub/omlev.h"
#include "sub/rijveld.h"
#include "sub/stampost.h"
#include "sub/teksten.h"
#include "term/recordscherm.h"
#include "term/teksten.h"
#include <algorithm>
#include <cmath>

namespace zg {
namespace {

constexpr int WAARDE = 22, KEUSRIJ = 12;

Stampost post{&dtmerk};
merkrec nu, oud; // as it is entered, as it was read

// ---- search name

bool bezet(const char (&zoeknaam)[4]) {
    const uint16_t merk = merk_met_zoeknaam(zoeknaam);
    return merk != 0 && merk != nu.merk;
}

bool zoeknaam_goed(const char (&zoeknaam)[4]) {
    for (char c : VASTUIT(zoeknaam))
        if (strchr(",;$", c)) {
            error("<%c> %s", c, TXT(T_ONGELDIGE_INGAVE));
            return false;
        }
    if (!bezet(zoeknaam))
        return true;
    error("%-4.4s: %s", VASTTEKST(zoeknaam).c_str(), TXT(T_MK_BESTAAT));
    return false;
}

bool vraag_zoeknaam(int rij) {
    char nieuw[4];
    memcpy(nieuw, nu.zoeknaam, sizeof nieuw);
    if (!post.er && VASTLEEG(nieuw)) {
        VASTIN(nieuw, merk_zoeknaam(VASTTEKST(nu.naam).c_str()));
        if (bezet(nieuw))
            VASTIN(nieuw, "");
    }
    char begin[4];
    memcpy(begin, nieuw, sizeof begin);
    for (;;) {
        INGAVE(rij, WAARDE, "4c[^,;$],EU", &SCHERM.toets[key_cancel], nieuw);
        if (TOETSWEG())
            return false;
        if (zoeknaam_goed(nieuw))
            break;
        memcpy(nieuw, begin, sizeof nieuw);
    }
    const bool anders = memcmp(nu.zoeknaam, nieuw, sizeof nieuw) != 0;
    memcpy(nu.zoeknaam, nieuw, sizeof nieuw);
    return anders;
}

// ---- relations

void toon_relatie(const Lijsttabel& tabel, int rij, uint16_t nummer) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-5.0u  %-20.20s", nummer, lijstnaam(tabel, {nummer, ""}).c_str());
}

// A relation that has lost the kind meanwhile is told, and is no longer the brand's.
bool vraag_relatie(const Lijsttabel& tabel, const Tekst& geen_meer, int rij, uint16_t* nummer) {
    levrec lev{};
    bool anders = false;
    if (*nummer != 0 && relatie_lees(*nummer, &lev) && !(lev.soort & tabel.welke)) {
        error("%s %hu %s", TXT(T_MK_TYPE_GEWIJZIGD), *nummer, TXT(geen_meer));
        *nummer = 0;
        anders = true;
    }
    return (lijstveld(tabel, rij, WAARDE, "", nummer) == Lijstuit::anders) || anders;
}

void toon_fabrikant(int rij) {
    toon_relatie(FABRIKANTTABEL, rij, nu.fabrikant);
}
void toon_agent(int rij) {
    toon_relatie(AGENTTABEL, rij, nu.agent);
}
void toon_leverancier(int rij) {
    toon_relatie(LEVERANCIERTABEL, rij, nu.leverancier);
}

bool vraag_fabrikant(int rij) {
    uint16_t nummer = nu.fabrikant;
    const bool anders = vraag_relatie(FABRIKANTTABEL, T_MK_GEEN_FABRIKANT, rij, &nummer);
    nu.fabrikant = nummer;
    return anders;
}
bool vraag_agent(int rij) {
    uint16_t nummer = nu.agent;
    const bool anders = vraag_relatie(AGENTTABEL, T_MK_GEEN_AGENT, rij, &nummer);
    nu.agent = nummer;
    return anders;
}
bool vraag_leverancier(int rij) {
    uint16_t nummer = nu.leverancier;
    const bool anders = vraag_relatie(LEVERANCIERTABEL, T_MK_GEEN_LEVERANCIER, rij, &nummer);
    nu.leverancier = nummer;
    return anders;
}

// ---- calculation factor: without VAT in the record, with it on the screen

void toon_factor(int rij) {
    SCRCLREOL(rij, WAARDE);
    if (nu.calcfactor != 0)
        SCRPUT(A_WAARDE, rij, WAARDE, "%5.3f", calcfactor_btw('L', nu.calcfactor / 1000.0));
}

bool vraag_factor(int rij) {
    const double nu_factor = calcfactor_btw('L', nu.calcfactor / 1000.0);
    double factor = nu_factor > 0 && nu_factor < 10 ? nu_factor : 0; // what doesn't fit begins empty
    if (!INGAVE(rij, WAARDE, "5.3f,P", &SCHERM.toets[key_cancel], &factor))
        return false;
    nu.calcfactor = static_cast<int16_t>(std::lround(calcfactor_btw('F', factor) * 1000));
    return true;
}

// ---- codes

void toon_doelgroep(int rij) {
    const std::string code(VASTTRIM({&nu.doelgroep, nu.doelgroep ? 1u : 0u}));
    SCRPUT(A_WAARDE, rij, WAARDE, "%-1.1s      %-20.20s", code.c_str(),
           lijstnaam(DOELGROEPTABEL, {0, code}).c_str());
}
bool vraag_doelgroep(int rij) {
    return lijstveld(DOELGROEPTABEL, rij, WAARDE, " ", &nu.doelgroep, 1) == Lijstuit::anders;
}

void toon_stelsel(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3.0u    %-20.20s", nu.maatstelsel,
           lijstnaam(STELSELTABEL, {nu.maatstelsel, ""}).c_str());
}
bool vraag_stelsel(int rij) {
    return stelsel_veld(rij, WAARDE, "P", nu.merk, 0, &nu.maatstelsel);
}

// ---- excluded branches

constexpr int ZICHT = 40, TEKSTMAX = 250;

bool meer_filialen() {
    return firma.filialen > 1;
}

void toon_uitgesloten(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-*.*s", ZICHT, ZICHT, filreeks_tekst(nu.uitgesloten).c_str());
}

bool uitgesloten_goed(const char* tekst, uint8_t (&bits)[32]) {
    int filiaal = 0;
    switch (filreeks_lees(tekst, bits, &filiaal)) {
    case Filreeks::fout:
        error("%s", TXT(T_FOUTIEVE_INGAVE));
        return false;
    case Filreeks::onbekend:
        FILIAALTABEL.onbekend(FILIAALTABEL, {filiaal, ""});
        return false;
    case Filreeks::goed:
        break;
    }
    for (int i = 0; i < firma.filialen; i++)
        if (!fil_in(bits, i))
            return true;
    error("%s", TXT(T_MK_ALLE_UITGESLOTEN));
    return false;
}

bool vraag_uitgesloten(int rij) {
    const std::string was = filreeks_tekst(nu.uitgesloten);
    char tekst[TEKSTMAX + 1], formaat[16] = "40s";
    snprintf(tekst, sizeof tekst, "%s", was.c_str());
    if (was.size() > ZICHT)
        snprintf(formaat, sizeof formaat, "%d.%dS,", TEKSTMAX, ZICHT);
    for (;;) {
        uint8_t bits[32] = {};
        INGAVE(rij, WAARDE, formaat, &SCHERM.toets[key_cancel], tekst);
        if (TOETSWEG() || was.compare(0, TEKSTMAX, tekst) == 0)
            return false;
        if (!uitgesloten_goed(tekst, bits))
            continue;
        const bool anders = memcmp(nu.uitgesloten, bits, sizeof bits) != 0;
        memcpy(nu.uitgesloten, bits, sizeof bits);
        return anders;
    }
}

// ---- the screen

const Item RIJEN[] = {
    {.nummer = 11,
     .label = &T_MK_NAAM,
     .toon = rij_toon<nu, &merkrec::naam, WAARDE>,
     .bewerk = rij_vraag<nu, &merkrec::naam, WAARDE, 'E'>,
     .hulp = &T_MK_H_NAAM},
    {.nummer = 12,
     .label = &T_MK_ZOEKNAAM,
     .toon = rij_toon<nu, &merkrec::zoeknaam, WAARDE>,
     .bewerk = vraag_zoeknaam,
     .hulp = &T_MK_H_ZOEKNAAM},
    {.nummer = 13,
     .label = &T_MK_FABRIKANT,
     .toon = toon_fabrikant,
     .bewerk = vraag_fabrikant,
     .hulp = &T_MK_H_FABRIKANT},
    {.nummer = 14, .label = &T_MK_AGENT, .toon = toon_agent, .bewerk = vraag_agent, .hulp = &T_MK_H_AGENT},
    {.nummer = 15,
     .label = &T_MK_LEVERANCIER,
     .toon = toon_leverancier,
     .bewerk = vraag_leverancier,
     .hulp = &T_MK_H_LEVERANCIER},
    {.nummer = 16,
     .label = &T_MK_FACTOR,
     .toon = toon_factor,
     .bewerk = vraag_factor,
     .hulp = &T_MK_H_FACTOR},
    {.nummer = 17,
     .label = &T_MK_DOELGROEP,
     .toon = toon_doelgroep,
     .bewerk = vraag_doelgroep,
     .hulp = &T_MK_H_DOELGROEP},
    {.nummer = 18,
     .label = &T_O_MAATSTELSEL,
     .toon = toon_stelsel,
     .bewerk = vraag_stelsel,
     .hulp = &T_MK_H_STELSEL},
    {.nummer = 19,
     .label = &T_MK_UITSLUITING,
     .toon = toon_uitgesloten,
     .bewerk = vraag_uitgesloten,
     .aanwezig = meer_filialen,
     .hulp = &T_MK_H_UITSLUITING},
};

int lees(bool slot) {
    const int gelezen = post_lees(&post, &nu, sizeof nu, sizeof nu.merk, slot);
    oud = nu;
    return gelezen;
}

// The table itself takes two brands of one search name: who entered it last is told.
bool schrijf() {
    const bool nieuwe_naam = !post.er || !VASTGELIJK(oud.zoeknaam, VASTUIT(nu.zoeknaam));
    if (nieuwe_naam && !zoeknaam_goed(nu.zoeknaam))
        return false;
    char nummer[8];
    snprintf(nummer, sizeof nummer, "%04d", nu.merk);
    const Mutatie naam{MUT_MERK, nummer};
    return mutaties_om({&naam, VASTGELIJK(oud.naam, VASTUIT(nu.naam)) ? 0u : 1u},
                       [] { return post_schrijf(&post, &nu, sizeof nu); });
}

constexpr Koppeling KOPPELINGEN[] = {
    {"DTMRKMS.TXT", 0, 2, Koppeling::WIS},
    {"DTMMCDS.TXT", 0, 2, Koppeling::WIS},
};

// What ties to it goes first: broken off between the two, it stands and can be deleted again.
bool wis() {
    return koppel_wis(KOPPELINGEN, nu.merk, "mutmerk") && post_wis(&post);
}

const Recordscherm SCHERM_MERK{{.rij = 5,
                                .kolom = 8,
                                .hoogte = 15,
                                .breedte = 68,
                                .keusrij = KEUSRIJ,
                                .items = RIJEN,
                                .kop =
                                    [] {
                                        SCRPUT(A_LABEL, 1, 5, "%s", TXT(T_MK_MERK));
                                        SCRPUT(A_WAARDE, 1, WAARDE, "%04d", nu.merk);
                                    }},
                               lees,
                               schrijf,
                               wis,
                               [] { post_vrij(&post); }};

} // namespace

std::string merk_vraag(uint16_t merk) {
    char tekst[80];
    snprintf(tekst, sizeof tekst, TXT(T_MK_VRAAG), merk);
    return post_mag(post) ? tekst : "";
}

Recorduit merk_onderhoud(uint16_t merk, bool vragen) {
    nu.merk = merk;
    return recordscherm(SCHERM_MERK,
                        {vragen ? merk_vraag(merk) : "", venstertitel(T_MK_NIEUW),
                         venstertitel(T_MK_RAADPLEGEN), venstertitel(T_MK_WIJZIGEN), TXT(T_MK_VERWIJDEREN)},
                        post_mag(post));
}

bool merk_scherm(uint16_t merk) {
    return merk != 0 && merk_onderhoud(merk, true) != Recorduit::zelfde;
}

} // namespace zg
