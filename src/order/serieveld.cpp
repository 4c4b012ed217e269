// The fields of a line, see order/serieveld.h.
#include "order/serieveld.h"
#include "codes/codeveld.h"
#include "order/bestanden.h"
#include "order/dialog.h"
#include "order/programma.h"
#include "order/regelstam.h"
#include "order/teksten.h"
#include "price/koers.h"
#include "shared/iotab.h"
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "sub/artgroep.h"
#include "sub/maatsoort.h"
#include "sub/merken.h"
#include "sub/omserie.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/vast.h"
#include <cstring>
#include <memory>

namespace zg {
namespace {

constexpr int WAARDE = 21;                      // column of the values
constexpr int TEKSTBREED = 35;                  // of a text's first line
constexpr int TEKSTRIJ = 12, TEKSTKOLOM = 10;   // of its window
constexpr int STELSELRIJ = 1, STELSELKOLOM = 1; // of the screen of a size type
constexpr int REGTYPE_ETIKET = 0, REGTYPE_MAAT = 1;

bool nieuwe_regel;

void waarde(int rij, const std::string& tekst) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-36.36s", tekst.c_str());
}

// A number that may be missing, and what it stands for.
void code_waarde(int rij, int32_t nummer, const std::string& naam) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-5s %-30.30s", nummer ? std::to_string(nummer).c_str() : "",
           naam.c_str());
}

template <size_t N> bool tekstveld(int rij, const char* formaat, char (&veld)[N]) {
    return INGAVE(rij, WAARDE, formaat, &SCHERM.toets[key_cancel], &veld) != 0;
}

const char* regtypetekst(int type) {
    return TXT(type == REGTYPE_ETIKET ? T_REG_ETIKET : T_REG_MAAT);
}

// First letter of "&Maat", "&Etiket".
char regtypeletter(int type) {
    const char* naam = strchr(TXT(type == REGTYPE_ETIKET ? T_REG_M_ETIKET : T_REG_M_MAAT), '&');
    return naam ? naam[1] : ' ';
}

// The group's label kind and size type for a new line, as far as they exist.
void groep_standaard() {
    ordmodel& m = regel_nu.model;
    m.etiketsoort = lijstnaam(ETIKETSOORTTABEL, {regelgroep.etiketsoort, ""}).empty()
                        ? uint8_t{0}
                        : regelgroep.etiketsoort;
    m.maatsoort = regelgroep.maatsoort;
    if (mist_maatsoort())
        m.maatsoort = 0;
}

} // namespace

void serieveld_begin(bool nieuw) {
    nieuwe_regel = nieuw;
}

bool heeft_kenmerk() {
    return regelgroep.artikelgroep != 0 && regelgroep.kenmerksoort != 0;
}

bool merk_bestaat(uint16_t merk) {
    return merk != 0 && leesmerk(dtmerk, &regelmerk, merk) == 1;
}

bool mist_merk() {
    return regel_nu.model.merk == 0;
}
bool mist_model() {
    return VASTLEEG(regel_nu.model.model);
}
bool mist_artgroep() {
    return regel_nu.model.artikelgroep == 0;
}
bool mist_maatsoort() {
    const ordmodel& m = regel_nu.model;
    merk_bestaat(m.merk);
    return !maatsoort_gevuld(model_stelsel(m, regelmerk), m.maatsoort);
}
bool mist_kleur() {
    return regel_nu.dessin.kleur == 0;
}

bool mist_volgnummer() {
    return registermodus && regel_nu.dessin.volgnummer == 0;
}

bool vraag_volgnummer(int rij, int kolom) {
    orddessin& d = regel_nu.dessin;
    const int geweigerd = IXWEIGERINGEN;
    d.volgnummer = serie_volgnummer_vrij(regel_nu.model.artikelgroep, d.kleur);
    uint16_t getypt = d.volgnummer;
    if (getypt == 0 && IXWEIGERINGEN == geweigerd)
        error("%s", TXT(T_SERIE_GEEN_VOLGNUMMER));
    bool vast = false;
    while (getypt != 0 && !vast) {
        INGAVE(rij, kolom, "4u,PE", &SCHERM.toets[key_cancel], &getypt);
        if (TOETSWEG())
            break;
        const seriesleutel sleutel{regel_nu.model.artikelgroep, d.kleur, getypt};
        vast = serie_volgnummer_neem(sleutel);
        if (!vast)
            error("%s %s %s", TXT(T_SERIE), serie_tekst(sleutel).c_str(), TXT(T_SERIE_AANWEZIG));
    }
    if (!vast)
        serie_nummer_los();
    d.volgnummer = vast ? getypt : uint16_t{0};
    return vast;
}

// ---- model

void toon_merk(int rij) {
    const uint16_t merk = regel_nu.model.merk;
    code_waarde(rij, merk, merk_bestaat(merk) ? VASTTEKST(regelmerk.naam) : "");
}

bool veld_merk(int rij) {
    const uint16_t oud = regel_nu.model.merk;
    merk_bestaat(oud);
    const uint8_t stelsel = model_stelsel(regel_nu.model, regelmerk);
    uint16_t merk = oud;
    if (merk_veld(rij, WAARDE, "EP", &merk) != Lijstuit::anders)
        return false;
    regel_nu.model.merk = merk;
    merk_bestaat(merk);
    if (!nieuwe_regel && model_stelsel(regel_nu.model, regelmerk) != stelsel) {
        // The sizes of all lines of this model are those of the other table.
        regel_nu.model.merk = oud;
        error("%s", TXT(T_ANDER_MAATSTELSEL));
        return false;
    }
    if (!nieuwe_regel && !merk_los_van_afbeelding()) {
        regel_nu.model.merk = oud;
        merk_bestaat(oud);
        return false;
    }
    return true;
}

void toon_model(int rij) {
    waarde(rij, VASTTEKST(regel_nu.model.model));
}
bool veld_model(int rij) {
    return tekstveld(rij, "15c,UE", regel_nu.model.model);
}

void toon_artgroep(int rij) {
    const int32_t groep = regel_nu.model.artikelgroep;
    code_waarde(rij, groep, lijstnaam(ARTGROEPTABEL, {groep, ""}));
}
bool veld_artgroep(int rij) {
    int32_t groep = regel_nu.model.artikelgroep;
    if (lijstveld(ARTGROEPTABEL, rij, WAARDE, "PE", &groep) != Lijstuit::anders)
        return false;
    regel_nu.model.artikelgroep = groep;
    memset(regel_nu.dessin.kenmerk, 0, sizeof regel_nu.dessin.kenmerk); // its codes are those of the group
    leesart(dtart, &regelgroep, groep);
    if (nieuwe_regel)
        groep_standaard();
    return true;
}

void toon_etiketsoort(int rij) {
    const uint8_t soort = regel_nu.model.etiketsoort;
    code_waarde(rij, soort, lijstnaam(ETIKETSOORTTABEL, {soort, ""}));
}
bool veld_etiketsoort(int rij) {
    return lijstveld(ETIKETSOORTTABEL, rij, WAARDE, "EP", &regel_nu.model.etiketsoort) == Lijstuit::anders;
}

void toon_maatsoort(int rij) {
    const uint8_t soort = regel_nu.model.maatsoort;
    code_waarde(rij, soort, lijstnaam(MAATSOORTTABEL, {soort, ""}));
}

// One that isn't there, or has no sizes in the line's size system, can be made on the spot: then it is the line's, else
// it is asked again.
bool veld_maatsoort(int rij) {
    ordmodel& m = regel_nu.model;
    const uint8_t oud = m.maatsoort;
    std::unique_ptr<Instel, void (*)(Instel*)> toetsen(INSTELNEW(0), INSTELDEL);
    const uint8_t stelsel = eigen_stelsel(m, regelmerk);
    while (maatsoort_veld(rij, WAARDE, "EP", &m.maatsoort, false, stelsel) != Lijstuit::weg &&
           SCHERM.laatste != K_F6 && mist_maatsoort()) {
        const bool gemaakt = maatsoort_onderhoud(STELSELRIJ, STELSELKOLOM, stelsel, m.maatsoort);
        toon_maatsoort(rij);
        SCHERM.laatste = K_ENTER; // whatever left that screen
        if (gemaakt && !mist_maatsoort())
            break;
        if (toetsen)
            INSTELSET(toetsen.get());
    }
    if (mist_maatsoort())
        m.maatsoort = oud;
    return m.maatsoort != oud;
}

void toon_modeltekst(int rij) {
    tekst_regel(rij, WAARDE, TEKSTBREED, regel_nu.modeltekst);
}
bool veld_modeltekst(int) {
    return tekst_item(TEKSTRIJ, TEKSTKOLOM, 3, regel_nu.modeltekst);
}
void bekijk_modeltekst() {
    tekst_bekijk(TEKSTRIJ, TEKSTKOLOM, 3, regel_nu.modeltekst);
}

// ---- dessin

void toon_materiaal(int rij) {
    waarde(rij, VASTTEKST(regel_nu.dessin.materiaal));
}
bool veld_materiaal(int rij) {
    return tekstveld(rij, "12c,", regel_nu.dessin.materiaal);
}

void toon_dessin(int rij) {
    waarde(rij, VASTTEKST(regel_nu.dessin.dessin));
}
bool veld_dessin(int rij) {
    return tekstveld(rij, "12c,", regel_nu.dessin.dessin);
}

void toon_kleur(int rij) {
    const uint16_t kleur = regel_nu.dessin.kleur;
    code_waarde(rij, kleur, lijstnaam(KLEURTABEL, {kleur, ""}));
}
bool veld_kleur(int rij) {
    uint16_t kleur = regel_nu.dessin.kleur;
    const bool anders = lijstveld(KLEURTABEL, rij, WAARDE, "EP", &kleur) == Lijstuit::anders;
    regel_nu.dessin.kleur = kleur;
    return anders;
}

void toon_volgnummer(int rij) {
    code_waarde(rij, regel_nu.dessin.volgnummer, "");
}
bool veld_volgnummer(int rij) {
    return vraag_volgnummer(rij, WAARDE);
}

void toon_omschrijving(int rij) {
    waarde(rij, VASTTEKST(regel_nu.dessin.omschrijving));
}
bool veld_omschrijving(int rij) {
    return tekstveld(rij, "20c,", regel_nu.dessin.omschrijving);
}

void toon_doelgroep(int rij) {
    const char doelgroep = regel_nu.dessin.doelgroep;
    const std::string code(doelgroep && doelgroep != ' ' ? 1 : 0, doelgroep);
    SCRPUT(A_WAARDE, rij, WAARDE, "%-5.5s %-30.30s", code.c_str(),
           lijstnaam(DOELGROEPTABEL, {0, code}).c_str());
}
bool veld_doelgroep(int rij) {
    char& code = regel_nu.dessin.doelgroep;
    char nieuw = code == ' ' ? '\0' : code;
    const char oud = code;
    if (lijstveld(DOELGROEPTABEL, rij, WAARDE, "", &nieuw, 1) == Lijstuit::anders)
        code = nieuw ? nieuw : ' ';
    return code != oud;
}

void toon_inkoopplan(int rij) {
    waarde(rij, TXT(regel_nu.dessin.inkoopplan ? T_PLAN_WEL : T_PLAN_GEEN));
}
bool veld_inkoopplan(int rij) {
    DMREC* menu = DMNEW(TXT(T_PLAN_TITEL));
    DMITEM(menu, TXT(T_PLAN_1_WEL), 1, 1);
    DMITEM(menu, TXT(T_PLAN_2_GEEN), 2, 1);
    const bool oud = regel_nu.dessin.inkoopplan != 0;
    int schermrij, schermkolom;
    WINNAARSCHERM(rij, WAARDE, &schermrij, &schermkolom);
    const bool nieuw = DMRUN(menu, schermrij, oud ? 1 : 2) == 1;
    if (nieuw != oud)
        regel_nu.dessin.inkoopplan = nieuw ? 1 : 0;
    return nieuw != oud;
}

void toon_dessintekst(int rij) {
    tekst_regel(rij, WAARDE, TEKSTBREED, regel_nu.dessintekst);
}
bool veld_dessintekst(int) {
    return tekst_item(TEKSTRIJ, TEKSTKOLOM, 4, regel_nu.dessintekst);
}
void bekijk_dessintekst() {
    tekst_bekijk(TEKSTRIJ, TEKSTKOLOM, 4, regel_nu.dessintekst);
}

void toon_kenmerk(int rij) {
    waarde(rij, heeft_kenmerk() ? VASTTEKST(regel_nu.dessin.kenmerk) : "");
}
bool veld_kenmerk(int rij) {
    return heeft_kenmerk() && tekstveld(rij, "2c", regel_nu.dessin.kenmerk);
}

void toon_regtype(int rij) {
    waarde(rij, regtypetekst(regel_nu.dessin.regtype));
}
bool veld_regtype(int rij) {
    const uint8_t oud = regel_nu.dessin.regtype;
    const char maat = regtypeletter(REGTYPE_MAAT), etiket = regtypeletter(REGTYPE_ETIKET);
    char formaat[16], letter = oud == REGTYPE_ETIKET ? etiket : maat;
    snprintf(formaat, sizeof formaat, "c[%c%c],UE", maat, etiket);
    waarde(rij, ""); // the letter stands alone while it is asked
    if (!INGAVE(rij, WAARDE, formaat, &SCHERM.toets[key_cancel], &letter))
        return false;
    regel_nu.dessin.regtype = letter == etiket ? REGTYPE_ETIKET : REGTYPE_MAAT;
    return regel_nu.dessin.regtype != oud;
}

void toon_consprijs(int rij) {
    const int32_t prijs = regel_nu.dessin.consprijs;
    waarde(rij, prijs ? bedrag_tekst("", prijs) : "");
}
bool veld_consprijs(int rij) {
    int32_t prijs = regel_nu.dessin.consprijs;
    if (!INGAVE(rij, WAARDE, "8B,ZP", &SCHERM.toets[key_cancel], &prijs))
        return false;
    regel_nu.dessin.consprijs = prijs;
    return true;
}

} // namespace zg
