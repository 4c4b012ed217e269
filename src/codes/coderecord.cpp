// What the records of the code tables hold, and the screen on one of them.
#include "codes/codetabel.h"
#include "codes/codeveld.h"
#include "codes/teksten.h"
#include "shared/filveld.h"
#include "shared/koppel.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/recordscherm.h"
#include "term/vast.h"
#include <cstring>

namespace zg {
namespace {

constexpr int WAARDE = 24, BREEDTE = 70, EERSTE = 11;

// The record on the screen.
const Codetabel* tabel;
Lijstcode code;
Coderecord rec;

char* veld(size_t plaats) {
    return reinterpret_cast<char*>(rec.data() + plaats);
}

// ---- fields: a text, a small number, a number of 16 bits

template <size_t PLAATS, int BREED> void toon_tekst(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-*.*s", BREED, BREED, veld(PLAATS));
}
template <size_t PLAATS, int BREED, char... OPTIES> bool vraag_tekst(int rij) {
    const std::string formaat = std::to_string(BREED) + "c," + std::string{OPTIES...};
    return INGAVE(rij, WAARDE, formaat.c_str(), &SCHERM.toets[key_cancel], veld(PLAATS)) != 0;
}

template <size_t PLAATS> void toon_getal(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3.0u", rec[PLAATS]);
}
template <size_t PLAATS> bool vraag_getal(int rij) {
    return INGAVE(rij, WAARDE, "3U,EP", &SCHERM.toets[key_cancel], veld(PLAATS)) != 0;
}

uint16_t landnummer() {
    uint16_t nummer;
    memcpy(&nummer, veld(offsetof(landrec, nummer)), sizeof nummer);
    return nummer;
}
void toon_landnummer(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%03u", landnummer());
}
bool vraag_landnummer(int rij) {
    uint16_t nummer = landnummer();
    const bool anders = INGAVE(rij, WAARDE, "3u,ZP", &SCHERM.toets[key_cancel], &nummer) != 0;
    memcpy(veld(offsetof(landrec, nummer)), &nummer, sizeof nummer);
    return anders;
}

constexpr size_t BTWPLAATS = offsetof(omzgrprec, btwcode);
void toon_btw(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-2u  %s", rec[BTWPLAATS],
           lijstnaam(BTWTABEL, {rec[BTWPLAATS], ""}).c_str());
}
bool vraag_btw(int rij) {
    return lijstveld(BTWTABEL, rij, WAARDE, "EP", &rec[BTWPLAATS]) == Lijstuit::anders;
}

constexpr size_t REEKSPLAATS = offsetof(filiaalreeksrec, filialen);
constexpr int REEKSBREEDTE = 40;
void toon_reeks(int rij) {
    const std::string tekst = filreeks_tekst(&rec[REEKSPLAATS]);
    SCRPUT(A_WAARDE, rij, WAARDE, "%-*.*s", REEKSBREEDTE, REEKSBREEDTE, tekst.c_str());
}
bool vraag_reeks(int rij) {
    return filreeks_veld(rij, WAARDE, REEKSBREEDTE, "E", &rec[REEKSPLAATS]);
}

template <const Tekst& LABEL, size_t PLAATS, int BREED> constexpr Item OMSCHRIJVING(int nummer) {
    return {nummer, &LABEL, toon_tekst<PLAATS, BREED>, vraag_tekst<PLAATS, BREED, 'E'>};
}

// clang-format off
const Item TEKST20[] = {OMSCHRIJVING<T_R_OMSCHRIJVING, 0, 20>(EERSTE)};
const Item TEKST30[] = {OMSCHRIJVING<T_R_OMSCHRIJVING, 0, 30>(EERSTE)};
const Item KLEUR[] = {{EERSTE, &T_R_OMSCHRIJVING, toon_tekst<0, 20>, vraag_tekst<0, 20, 'E'>, nullptr, nullptr,
                       nullptr, &T_H_KLEUR}};
const Item DOELGROEP[] = {OMSCHRIJVING<T_R_OMSCHRIJVING, offsetof(doelgrrec, naam), 20>(EERSTE)};
const Item ETIKET[] = {
    OMSCHRIJVING<T_R_OMSCHRIJVING, 0, 30>(EERSTE),
    {EERSTE + 1, &T_R_BREEDTE, toon_getal<offsetof(etiketsoortrec, breedte)>, vraag_getal<offsetof(etiketsoortrec, breedte)>},
    {EERSTE + 2, &T_R_HOOGTE, toon_getal<offsetof(etiketsoortrec, hoogte)>, vraag_getal<offsetof(etiketsoortrec, hoogte)>},
};
const Item LAND[] = {
    {EERSTE, &T_R_LANDNUMMER, toon_landnummer, vraag_landnummer},
    {EERSTE + 1, &T_R_ISO2, toon_tekst<offsetof(landrec, iso2), 2>, vraag_tekst<offsetof(landrec, iso2), 2, 'U'>},
    OMSCHRIJVING<T_R_NAAM, offsetof(landrec, naam), 20>(EERSTE + 2),
};
const Item OMZETGROEP[] = {
    OMSCHRIJVING<T_R_OMSCHRIJVING, offsetof(omzgrprec, naam), 20>(EERSTE),
    {EERSTE + 1, &T_R_BTWCODE, toon_btw, vraag_btw},
};
const Item REEKS[] = {
    OMSCHRIJVING<T_R_NAAM, 0, 20>(EERSTE),
    {EERSTE + 1, &T_R_FILIALEN, toon_reeks, vraag_reeks},
};
// clang-format on

bool kleur_hangt(int32_t kleur) {
    static const Koppeling KLEUREN[] = {{"DTKL%*4d.TXT", 36, 4, Koppeling::WIS}};
    return koppel_wis(KLEUREN, kleur, "mutkl");
}

// By Codesoort.
// clang-format off
const Codetabel TABELLEN[] = {
    {Codetabel::SLOT, SYS_ACTIE,         nullptr, 9,   &T_W_ACTIECODE,     false, &SYS_ACTIE_KOP,       1, 6, 0, 30, TEKST30},
    {Codetabel::SLOT, SYS_CORRECTIE,     nullptr, 9,   &T_W_CORRECTIECODE, false, &SYS_CORRECTIE_KOP,   1, 6, 0, 30, TEKST30},
    {Codetabel::SLOT, SYS_INKOOP,        nullptr, 9,   &T_W_INKOOPCODE,    false, &SYS_INKOOP_KOP,      1, 6, 0, 30, TEKST30},
    {Codetabel::SLOT, SYS_DEELSEIZOEN,   nullptr, 9,   &T_W_DEELSEIZOEN,   true,  &SYS_DEELSEIZOEN_KOP, 1, 6, 0, 30, TEKST30},
    {Codetabel::SLOT, SYS_KLEUR,         nullptr, 999, &T_W_KLEUR,         false, nullptr, 3, 6, 0, 20, KLEUR, kleur_hangt, MUT_KLEUR},
    {Codetabel::SLOT, SYS_ETIKETSOORT,   nullptr, 99,  &T_W_ETIKETSOORT,   false, nullptr, 2, 6, 0, 30, ETIKET},
    {Codetabel::SET,  SYS_SETCODE,       nullptr, 9,   &T_W_KENMERKSOORT,  false, nullptr, 1, 6, 0, 20, TEKST20},
    {Codetabel::SLOT, SYS_PRIJSKLASSE,   nullptr, 9,   &T_W_PRIJSKLASSE,   false, nullptr, 1, 6, 0, 20, TEKST20},
    {Codetabel::SLOT, SYS_MAATSTELSEL,   nullptr, 99,  &T_W_MAATSTELSEL,   true,  nullptr, 2, 3, 0, 20, TEKST20},
    {Codetabel::ISO,  SYS_LAND,          nullptr, 0,   &T_W_LANDCODE,      false, nullptr, 3, 5, offsetof(landrec, naam), 20, LAND},
    {Codetabel::SLOT, SYS_FILIAALREEKS,  nullptr, 99,  &T_W_FILIAALREEKS,  false, nullptr, 2, 6, 0, 20, REEKS},
    {Codetabel::PAAR, {}, &dtomzgrp, 9999, &T_W_OMZETGROEP, false, nullptr, 4, 6, offsetof(omzgrprec, naam), 20, OMZETGROEP},
    {Codetabel::PAAR, {}, &dtdoelgr, 0,    &T_W_DOELGROEP,  false, nullptr, 1, 6, offsetof(doelgrrec, naam), 20, DOELGROEP},
};
// clang-format on

// ---- the screen

void kop() {
    std::string woord = TXT(*tabel->woord);
    woord[0] = static_cast<char>(NGROOT(static_cast<uint8_t>(woord[0])));
    SCRPUT(A_LABEL, 1, 5, "%s", woord.c_str());
    SCRPUT(A_WAARDE, 1, WAARDE, "%s", codetekst(code).c_str());
}

int lees(bool slot) {
    return code_lees(*tabel, code, slot, &rec);
}

bool schrijf() {
    const Mutatie m{tabel->mutatie, std::to_string(code.nummer)};
    return mutaties_om({&m, tabel->mutatie ? 1u : 0u}, [] { return code_schrijf(*tabel, code, rec); });
}

bool wis() {
    return code_wis(*tabel, code);
}

void vrij() {
    code_vrij(*tabel, code);
}

std::string gevuld(const Tekst& formaat, const std::string& woord) {
    char tekst[80];
    snprintf(tekst, sizeof tekst, TXT(formaat), woord.c_str());
    return tekst;
}

} // namespace

const Codetabel& codetabel(const Lijsttabel& t) {
    return TABELLEN[t.welke];
}

std::string code_vraag(const Codetabel& t, const Lijstcode& nieuw) {
    char tekst[80];
    snprintf(tekst, sizeof tekst, TXT(T_WILT_U_TOEVOEGEN), TXT(*t.woord), codetekst(nieuw).c_str());
    return tekst;
}

bool code_scherm(const Codetabel& t, const Lijstcode& welke, bool gevraagd) {
    tabel = &t, code = welke;
    const std::string woord = TXT(*t.woord), hoofd = GROOTKOPIE(woord);
    const int rijen = static_cast<int>(t.items.size());
    const Recordscherm scherm{
        {9, 6, rijen + 5, BREEDTE, rijen + 3, t.items, nullptr, kop}, lees, schrijf, wis, vrij};
    const Recordteksten teksten{gevraagd ? "" : code_vraag(t, code),
                                gevuld(t.het ? T_R_NIEUW : T_R_NIEUWE, hoofd), gevuld(T_R_RAADPLEGEN, hoofd),
                                gevuld(T_R_WIJZIGEN, hoofd), gevuld(t.het ? T_DIT_WEG : T_DEZE_WEG, woord)};
    return recordscherm(scherm, teksten, mag_onderhoud()) == Recorduit::geschreven;
}

} // namespace zg
