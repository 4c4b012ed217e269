// The screen on one article group.
#include "codes/codeveld.h"
#include "shared/koppel.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "shared/sysrec.h"
#include "sub/artbeeld.h"
#include "sub/artgroep.h"
#include "sub/maatsoort.h"
#include "sub/rijveld.h"
#include "sub/teksten.h"
#include "term/recordscherm.h"
#include "term/teksten.h"

namespace zg {

artrec artgroep_nu;

namespace {

constexpr int WAARDE = 25;

Stampost post{&dtart};
artrec& nu = artgroep_nu;
artrec oud; // as it was read

void toon_code(int rij, const Lijsttabel& tabel, unsigned code) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-5.0u %-30.30s", code,
           lijstnaam(tabel, {static_cast<int32_t>(code), ""}).c_str());
}

// ---- turnover group: brings its VAT code

void toon_omzetgroep(int rij) {
    toon_code(rij, OMZETGROEPTABEL, nu.omzetgroep);
}
bool vraag_omzetgroep(int rij) {
    uint16_t nummer = nu.omzetgroep;
    if (lijstveld(OMZETGROEPTABEL, rij, WAARDE, "EP", &nummer) != Lijstuit::anders)
        return false;
    nu.omzetgroep = nummer;
    if (const uint8_t btw = omzetgroep_btw(nummer); btw >= 1 && btw <= std::size(firma.btw))
        nu.btwcode = btw;
    return true;
}

void toon_btw(int rij) {
    toon_code(rij, BTWTABEL, nu.btwcode);
}
bool vraag_btw(int rij) {
    return lijstveld(BTWTABEL, rij, WAARDE, "PE", &nu.btwcode) == Lijstuit::anders;
}

void toon_prijsklasse(int rij) {
    toon_code(rij, PRIJSKLASSETABEL, nu.prijsklasse);
}
bool vraag_prijsklasse(int rij) {
    return lijstveld(PRIJSKLASSETABEL, rij, WAARDE, "P", &nu.prijsklasse) == Lijstuit::anders;
}

// ---- numbers

bool meer_filialen() {
    return firma.filialen > 1;
}
bool een_filiaal() {
    return !meer_filialen();
}

void toon_minimum(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3u", nu.minimum);
}
bool vraag_minimum(int rij) {
    const bool anders = INGAVE(rij, WAARDE, "3U,ZEP", &SCHERM.toets[key_cancel], &nu.minimum) != 0;
    if (anders)
        artverdeling_minimum();
    return anders;
}

void toon_branche(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-6.0d", nu.branchecode);
}
bool vraag_branche(int rij) {
    int32_t code = nu.branchecode;
    const bool anders = INGAVE(rij, WAARDE, "6l,PZ", &SCHERM.toets[key_cancel], &code) != 0;
    nu.branchecode = code;
    return anders;
}

// ---- feature kind: a choice of the installation's

void toon_kenmerk(int rij) {
    if (nu.kenmerksoort)
        toon_code(rij, KENMERKSOORTTABEL, nu.kenmerksoort);
    else
        SCRPUT(A_WAARDE, rij, WAARDE, "%-36s", TXT(T_AG_GEEN_KENMERK));
}
bool vraag_kenmerk(int rij) {
    SCRCLREOL(rij, WAARDE);
    return lijstveld(KENMERKSOORTTABEL, rij, WAARDE, "", &nu.kenmerksoort) == Lijstuit::anders;
}

// ---- values for new series

void toon_etiket(int rij) {
    if (nu.etiketsoort)
        toon_code(rij, ETIKETSOORTTABEL, nu.etiketsoort);
    else
        SCRPUT(A_WAARDE, rij, WAARDE, "%-36s", TXT(T_AG_GEEN));
}
bool vraag_etiket(int rij) {
    SCRCLREOL(rij, WAARDE);
    return lijstveld(ETIKETSOORTTABEL, rij, WAARDE, "P", &nu.etiketsoort) == Lijstuit::anders;
}

void toon_maatsoort(int rij) {
    toon_code(rij, MAATSOORTTABEL, nu.maatsoort);
}
bool vraag_maatsoort(int rij) {
    return maatsoort_veld(rij, WAARDE, "P", &nu.maatsoort, true) == Lijstuit::anders;
}

void toon_regtype(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-12s", TXT(nu.regtype == 1 ? T_AG_PER_MAAT : T_AG_PER_ETIKET));
}
bool vraag_regtype(int rij) {
    const char *maat = TXT(T_AG_LETTER_MAAT), *etiket = TXT(T_AG_LETTER_ETIKET);
    char formaat[24], letter[2] = {nu.regtype == 1 ? *maat : *etiket, '\0'};
    snprintf(formaat, sizeof formaat, "1s[%c%c],UE/", *etiket, *maat);
    SCRCLREOL(rij, WAARDE);
    if (!INGAVE(rij, WAARDE, formaat, &SCHERM.toets[key_cancel], letter))
        return false;
    nu.regtype = letter[0] == *maat;
    return true;
}

const Item STANDAARDRIJEN[] = {
    {.nummer = 11, .label = &T_AG_ETIKETSOORT, .toon = toon_etiket, .bewerk = vraag_etiket},
    {.nummer = 12, .label = &T_AG_MAATSOORT, .toon = toon_maatsoort, .bewerk = vraag_maatsoort},
    {.nummer = 13,
     .label = &T_AG_REGTYPE,
     .toon = toon_regtype,
     .bewerk = vraag_regtype,
     .hulp = &T_AG_H_REGTYPE},
};
const Recordrijen STANDAARDSCHERM{
    .rij = 10, .kolom = 8, .hoogte = 9, .breedte = 66, .keusrij = 6, .items = STANDAARDRIJEN};

bool vraag_standaard(int) {
    return recorddeel(STANDAARDSCHERM, venstertitel(T_AG_TITEL_STANDAARD).c_str());
}
void bekijk_standaard() {
    recorddeel(STANDAARDSCHERM, venstertitel(T_AG_TITEL_STANDAARD).c_str());
}

// ---- the screen

const Item RIJEN[] = {
    {.nummer = 11,
     .label = &T_AG_OMZETGROEP,
     .toon = toon_omzetgroep,
     .bewerk = vraag_omzetgroep,
     .hulp = &T_AG_H_OMZETGROEP},
    {.nummer = 12,
     .label = &T_AG_OMSCHRIJVING,
     .toon = rij_toon<artgroep_nu, &artrec::omschrijving, WAARDE>,
     .bewerk = rij_vraag<artgroep_nu, &artrec::omschrijving, WAARDE, 'E'>,
     .hulp = &T_AG_H_OMSCHRIJVING},
    {.nummer = 13, .label = &T_AG_BTW, .toon = toon_btw, .bewerk = vraag_btw, .hulp = &T_AG_H_BTW},
    {.nummer = 14,
     .label = &T_AG_PRIJSKLASSE,
     .toon = toon_prijsklasse,
     .bewerk = vraag_prijsklasse,
     .hulp = &T_AG_H_PRIJSKLASSE},
    {.nummer = 15,
     .label = &T_AG_MINIMUM,
     .toon = toon_minimum,
     .bewerk = vraag_minimum,
     .aanwezig = meer_filialen,
     .hulp = &T_AG_H_MINIMUM},
    {.nummer = 15,
     .label = &T_AG_MINIMUM,
     .toon = toon_minimum,
     .bewerk = vraag_minimum,
     .aanwezig = een_filiaal,
     .hulp = &T_AG_H_MINIMUM_WINKEL},
    {.nummer = 16,
     .label = &T_AG_BRANCHE,
     .toon = toon_branche,
     .bewerk = vraag_branche,
     .hulp = &T_AG_H_BRANCHE},
    {.nummer = 17,
     .label = &T_AG_KENMERK,
     .toon = toon_kenmerk,
     .bewerk = vraag_kenmerk,
     .hulp = &T_AG_H_KENMERK},
    {.nummer = 18,
     .label = &T_AG_STANDAARD,
     .toon = nullptr,
     .bewerk = vraag_standaard,
     .bekijk = bekijk_standaard},
    {.nummer = 19,
     .label = &T_AG_FILIAALVERDELING,
     .toon = nullptr,
     .bewerk = artverdeling_vraag,
     .aanwezig = meer_filialen,
     .bekijk = artverdeling_bekijk},
};

int lees(bool slot) {
    const int gelezen = post_lees(&post, &nu, sizeof nu, sizeof nu.artikelgroep, slot);
    if (gelezen == 0) {
        nu.magazijn = GEEN_MAGAZIJN;
        nu.verdeelsoort = 'P';
    }
    oud = nu;
    return gelezen;
}

bool schrijf() {
    const auto groep = static_cast<unsigned>(nu.artikelgroep);
    std::vector<Mutatie> mutaties{{MUT_ARTIKELGROEP, std::to_string(groep)}};
    if (!post.er || oud.omzetgroep != nu.omzetgroep) {
        char tekst[16];
        snprintf(tekst, sizeof tekst, "%05u%02u", groep, nu.btwcode);
        mutaties.push_back({MUT_BTW, tekst});
    }
    return mutaties_om(mutaties, [] { return post_schrijf(&post, &nu, sizeof nu); });
}

constexpr Koppeling KOPPELINGEN[] = {
    {"DTAG%*4d.TXT", 72, 4, Koppeling::WIS},
    {"DTBC*.TXT", 40, 4, Koppeling::NUL},
    {"DTMRKMS.TXT", 4, 4, Koppeling::WIS},
};

// What ties to it goes first: broken off between the two, it stands and can be deleted again.
bool wis() {
    return koppel_wis(KOPPELINGEN, nu.artikelgroep, "mutart") && post_wis(&post);
}

void kop() {
    SCRPUT(A_LABEL, 1, 5, "%s", TXT(T_AG_ARTIKELGROEP));
    SCRPUT(A_WAARDE, 1, WAARDE, "%d", nu.artikelgroep);
}

const Recordscherm SCHERM_GROEP{
    {.rij = 4, .kolom = 8, .hoogte = 15, .breedte = 68, .keusrij = 12, .items = RIJEN, .kop = kop},
    lees,
    schrijf,
    wis,
    [] { post_vrij(&post); }};

} // namespace

std::string artgroep_vraag(int32_t artikelgroep) {
    char tekst[80];
    snprintf(tekst, sizeof tekst, TXT(T_AG_VRAAG), static_cast<long>(artikelgroep));
    return post_mag(post) ? tekst : "";
}

Recorduit artgroep_onderhoud(int32_t artikelgroep, bool vragen) {
    nu.artikelgroep = artikelgroep;
    return recordscherm(SCHERM_GROEP,
                        {vragen ? artgroep_vraag(artikelgroep) : "", venstertitel(T_AG_NIEUW),
                         venstertitel(T_AG_RAADPLEGEN), venstertitel(T_AG_WIJZIGEN), TXT(T_AG_VERWIJDEREN)},
                        post_mag(post));
}

bool artgroep_scherm(int32_t artikelgroep) {
    return artikelgroep > 0 && artgroep_onderhoud(artikelgroep, true) != Recorduit::zelfde;
}

} // namespace zg
