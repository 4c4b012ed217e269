// The screen on one relation: name and address, with the goods address and a supplier's other data in windows of their
// own. E-mail address and website stand in DTLEVEXT.
#include "codes/codeveld.h"
#include "shared/files.h"
#include "shared/koppel.h"
#include "shared/leesstam.h"
#include "shared/mutatie.h"
#include "shared/woordenboek.h"
#include "sub/levbeeld.h"
#include "sub/omlev.h"
#include "sub/rijveld.h"
#include "sub/teksten.h"
#include "term/prompt.h"
#include "term/recordscherm.h"
#include "term/teksten.h"
#include <algorithm>

namespace zg {

levrec relatie_nu;
Relatiesoort relatie_als;

namespace {

constexpr int WAARDE = 43, ZICHT = 34;
constexpr uint8_t SOORTEN = REL_LEVERANCIER | REL_AGENT | REL_FABRIKANT;

Stampost post{&dtlev}, extra{&dtlevext};
levrec& nu = relatie_nu;
levextrec nu_extra;
bool te_melden; // written, and the tills have not heard of it yet

bool is_leverancier() {
    return relatie_als == REL_LEVERANCIER;
}

template <auto LID> constexpr auto toon = rij_toon<relatie_nu, LID, WAARDE>;
template <auto LID, char... LETTERS> constexpr auto vraag = rij_vraag<relatie_nu, LID, WAARDE, LETTERS...>;

void toon_land(int rij) {
    const std::string land = VASTTEKST(nu.land);
    SCRPUT(A_WAARDE, rij, WAARDE, "%-3.3s  %-20.20s", land.c_str(), lijstnaam(LANDTABEL, {0, land}).c_str());
}
bool vraag_land(int rij) {
    return lijstveld(LANDTABEL, rij, WAARDE, "UE", nu.land, sizeof nu.land) == Lijstuit::anders;
}

// ---- e-mail and website

template <auto LID> void toon_extra(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-*.*s", ZICHT, ZICHT, VASTTEKST(nu_extra.*LID).c_str());
}
template <auto LID> bool vraag_extra(int rij) {
    return INGAVE(rij, WAARDE, "80.60C,", &SCHERM.toets[key_cancel], nu_extra.*LID) != 0;
}

// One "@" with something on both sides, and no blanks.
bool adres_goed(const std::string& adres) {
    const size_t apen = static_cast<size_t>(std::count(adres.begin(), adres.end(), '@'));
    return adres.empty() ||
           (apen == 1 && adres.front() != '@' && adres.back() != '@' && adres.find(' ') == std::string::npos);
}

bool vraag_email(int rij) {
    levextrec was = nu_extra;
    for (;;) {
        const bool anders = vraag_extra<&levextrec::email>(rij);
        if (TOETSWEG() || adres_goed(VASTTEKST(nu_extra.email)))
            return anders || memcmp(was.email, nu_extra.email, sizeof was.email) != 0;
        error("%s", TXT(T_L_FOUT_EMAIL));
    }
}

// ---- goods address

void toon_goedland(int rij) {
    const std::string land = VASTTEKST(nu.goed_land);
    SCRPUT(A_WAARDE, rij, 26, "%-3.3s  %-20.20s", land.c_str(), lijstnaam(LANDTABEL, {0, land}).c_str());
}
bool vraag_goedland(int rij) {
    return lijstveld(LANDTABEL, rij, 26, "UE", nu.goed_land, sizeof nu.goed_land) == Lijstuit::anders;
}

template <auto LID> constexpr auto toon_goed = rij_toon<relatie_nu, LID, 26>;
template <auto LID, char... LETTERS> constexpr auto vraag_goed = rij_vraag<relatie_nu, LID, 26, LETTERS...>;

const Item GOEDRIJEN[] = {
    {11, &T_G_ADRES, toon_goed<&levrec::goed_adres>, vraag_goed<&levrec::goed_adres>},
    {12, &T_G_POSTCODE, toon_goed<&levrec::goed_postcode>, vraag_goed<&levrec::goed_postcode, 'U'>},
    {13, &T_G_PLAATS, toon_goed<&levrec::goed_plaats>, vraag_goed<&levrec::goed_plaats, 'U'>},
    {14, &T_G_LAND, toon_goedland, vraag_goedland},
    {15, &T_G_VERVOERDER, toon_goed<&levrec::goed_vervoerder>, vraag_goed<&levrec::goed_vervoerder>},
};
const Recordrijen GOEDSCHERM{
    .rij = 9, .kolom = 10, .hoogte = 11, .breedte = 66, .keusrij = 8, .items = GOEDRIJEN};

bool vraag_goederen(int) {
    return recorddeel(GOEDSCHERM, TXT(T_G_TITEL));
}
void bekijk_goederen() {
    recorddeel(GOEDSCHERM, TXT(T_G_TITEL));
}

// ---- the screen

template <int NR> void toon_opmerking(int rij) {
    SCRPUT(A_WAARDE, rij, WAARDE, "%-24.24s", VASTTEKST(nu.opmerking[NR]).c_str());
}
template <int NR> bool vraag_opmerking(int rij) {
    return INGAVE(rij, WAARDE, "24c,", &SCHERM.toets[key_cancel], nu.opmerking[NR]) != 0;
}

const Item RIJEN[] = {
    {11, &T_L_NAAM, toon<&levrec::naam>, vraag<&levrec::naam, 'E'>},
    {12, &T_L_ADRES, toon<&levrec::adres>, vraag<&levrec::adres>},
    {13, &T_L_POSTCODE, toon<&levrec::postcode>, vraag<&levrec::postcode, 'U'>},
    {14, &T_L_PLAATS, toon<&levrec::plaats>, vraag<&levrec::plaats, 'U'>},
    {15, &T_L_LAND, toon_land, vraag_land},
    {16, &T_L_TELEFOON, toon<&levrec::telefoon>, vraag<&levrec::telefoon>},
    {17, &T_L_FAX, toon<&levrec::fax>, vraag<&levrec::fax>},
    {18, &T_L_MOBIEL, toon<&levrec::mobiel>, vraag<&levrec::mobiel>},
    {19, &T_L_EMAIL, toon_extra<&levextrec::email>, vraag_email},
    {20, &T_L_WEBSITE, toon_extra<&levextrec::website>, vraag_extra<&levextrec::website>},
    {21, &T_L_ADRESCODE, toon<&levrec::adrescode>, vraag<&levrec::adrescode>},
    {22, &T_L_OPMERKING, toon_opmerking<0>, vraag_opmerking<0>},
    {23, nullptr, toon_opmerking<1>, vraag_opmerking<1>},
    {.nummer = 24,
     .label = &T_L_GOEDEREN,
     .toon = nullptr,
     .bewerk = vraag_goederen,
     .bekijk = bekijk_goederen},
    {.nummer = 25,
     .label = &T_L_OVERIGE,
     .toon = nullptr,
     .bewerk = levoverig_vraag,
     .aanwezig = is_leverancier,
     .bekijk = levoverig_bekijk},
};

// Number, and the word of the kind behind the labels.
void kop() {
    SCRPUT(A_LABEL, 1, 5, "%s", TXT(T_NUMMER));
    SCRPUT(A_WAARDE, 1, WAARDE, "%u", nu.nummer);
    for (const Item& i : RIJEN)
        if (i.label && i.nummer < 24)
            SCRPUT(A_LABEL, i.nummer - 9, 6 + static_cast<int>(strlen(TXT(*i.label))), "%s",
                   relatie_woord(relatie_als));
}

int lees(bool slot) {
    const int gelezen = post_lees(&post, &nu, sizeof nu, sizeof nu.nummer, slot);
    nu_extra.nummer = nu.nummer;
    if (gelezen < 0)
        return gelezen;
    if (post_lees(&extra, &nu_extra, sizeof nu_extra, sizeof nu_extra.nummer, slot) >= 0)
        return gelezen;
    post_vrij(&post);
    return -1;
}

// The tills hear of a written relation when nothing is held for it any more, also where its other half was refused.
void meld_kassa() {
    if (te_melden)
        mutatie(MUT_RELATIE, std::to_string(nu.nummer));
    te_melden = false;
}

void vrij() {
    post_vrij(&extra);
    post_vrij(&post);
    meld_kassa();
}

// DTLEVEXT may be missing: it is made for its first record, unless one half of it is there.
bool maak_extra() {
    constexpr char NAAM[] = "DTLEVEXT";
    if (dtlevext)
        return true;
    if (IOEXISTS("DTLEVEXT.INX") || IOEXISTS("DTLEVEXT.TXT") || !DDNEW(DDNUMMER(NAAM), NAAM)) {
        error("%s: %s", NAAM, TXT(T_NIET_VASTGELEGD));
        return false;
    }
    dtlevext = IXOPEN(NAAM, 2);
    return true;
}

bool schrijf_extra() {
    if (!extra.er && VASTLEEG(nu_extra.email) && VASTLEEG(nu_extra.website)) {
        post_vrij(&extra);
        return true;
    }
    return maak_extra() && post_schrijf(&extra, &nu_extra, sizeof nu_extra);
}

bool schrijf_relatie() {
    const std::string nummer = std::to_string(nu.nummer);
    mutatie_vooraf(MUT_RELATIE, nummer);
    const bool goed = post_schrijf(&post, &nu, sizeof nu);
    te_melden |= goed;
    if (!goed)
        mutatie_niet(MUT_RELATIE, nummer);
    return goed;
}

bool schrijf() {
    if (!schrijf_relatie() || !schrijf_extra())
        return false;
    meld_kassa();
    return true;
}

// What ties to the relation as a partner.
bool wis_koppelingen() {
    constexpr Koppeling PARTNER[] = {{"DTRCLPAR.TXT", 0, 2, Koppeling::WIS}};
    MELDBOX(MELD_INFO, TXT(T_L_EDI_WEG), nullptr, nullptr);
    bool goed = true;
    for (const char* soort : {"DTAG", "DTKL"}) {
        char bestanden[16];
        snprintf(bestanden, sizeof bestanden, "%s%04hu.*", soort, nu.nummer);
        goed = koppel_bestanden_weg(bestanden) && goed;
    }
    return koppel_wis(PARTNER, nu.nummer, "mutlev") && goed;
}

// Of a relation of more kinds only this one goes. Else the record goes last: broken off before, it stands and can be
// deleted again.
bool wis() {
    const auto over = static_cast<uint8_t>(nu.soort & SOORTEN & ~relatie_als);
    if (!over) {
        if (!wis_koppelingen() || (extra.er && !post_wis(&extra)) || !post_wis(&post))
            return false;
        post_vrij(&extra);
        return true;
    }
    nu.soort = over;
    if (!schrijf_relatie())
        return false;
    post_vrij(&extra);
    meld_kassa();
    return true;
}

// The kinds of a new relation: at least one.
bool vraag_soorten() {
    static constexpr Relatiesoort ALLE[] = {REL_LEVERANCIER, REL_AGENT, REL_FABRIKANT};
    nu.soort = relatie_als;
    WINOPEN1(9, 24, 7, 34);
    WINBOX("%s", TXT(T_L_NIEUW));
    bool door = true, klaar = false;
    for (int i = 0; i < 3; i++) {
        SCRPUT(A_LABEL, 2 + i, 4, "%s", relatie_woord(ALLE[i]));
        SCRPUT(A_WAARDE, 2 + i, 20, "%s", TXT(nu.soort & ALLE[i] ? T_JA : T_NEE));
    }
    while (door && !klaar) {
        for (int i = 0; door && i < 3; i++) {
            uint8_t ja = (nu.soort & ALLE[i]) != 0;
            INGAVE(2 + i, 20, "b,E", &SCHERM.toets[key_cancel], &ja);
            door = !TOETSWEG();
            nu.soort = static_cast<uint8_t>(ja ? nu.soort | ALLE[i] : nu.soort & ~ALLE[i]);
        }
        klaar = nu.soort != 0;
        if (door && !klaar)
            error("%s", TXT(T_L_MINIMAAL));
    }
    WINCLOSE();
    return door;
}

const Recordscherm SCHERM_RELATIE{
    {.rij = 2, .kolom = 1, .hoogte = 21, .breedte = 80, .keusrij = 18, .items = RIJEN, .kop = kop},
    lees,
    schrijf,
    wis,
    vrij,
    vraag_soorten};

std::string titel(const Tekst& wat) {
    return std::string(" ") + TXT(wat) + " " + relatie_woord(relatie_als) + " ";
}

Recorduit onderhoud(uint16_t nummer, Relatiesoort soort, bool mag, const std::string& vraag_toe) {
    relatie_als = soort;
    nu.nummer = nummer;
    return recordscherm(SCHERM_RELATIE,
                        {vraag_toe, titel(T_TOEVOEGEN), titel(T_RAADPLEGEN), titel(T_WIJZIGEN),
                         std::string(TXT(T_L_DEZE)) + " " + relatie_woord(soort) + " " + TXT(T_L_VERWIJDERD)},
                        mag);
}

} // namespace

std::string relatie_vraag(uint16_t nummer, Relatiesoort soort) {
    levrec lev{};
    char tekst[120];
    if (relatie_lees(nummer, &lev))
        snprintf(tekst, sizeof tekst, "%s %s, %s %s", TXT(T_RELATIE_IS_GEEN), relatie_woord(soort),
                 TXT(T_L_TOEVOEGEN_ALS), relatie_woord(soort));
    else
        snprintf(tekst, sizeof tekst, TXT(T_L_VRAAG), relatie_woord(soort), nummer);
    return post_mag(post) ? tekst : "";
}

bool relatie_voeg_toe(uint16_t nummer, Relatiesoort soort) {
    levrec lev{};
    if (!relatie_lees(nummer, &lev))
        return onderhoud(nummer, soort, post_mag(post), "") == Recorduit::geschreven;
    nu.nummer = nummer;
    const int gelezen = post_lees(&post, &nu, sizeof nu, sizeof nu.nummer, true);
    if (gelezen != 1) { // it went meanwhile
        post_vrij(&post);
        return false;
    }
    nu.soort = static_cast<uint8_t>(nu.soort | soort);
    const bool goed = schrijf_relatie();
    if (goed)
        meld_kassa();
    else
        post_vrij(&post);
    return goed;
}

bool relatie_scherm(uint16_t nummer, Relatiesoort soort, Relatiemodus modus) {
    levrec lev{};
    const bool mag = modus == Relatiemodus::wijzigen && post_mag(post);
    if (!mag && !relatie_lees(nummer, &lev)) {
        error("<%u> %s %s", nummer, TXT(T_ONBEKENDE), relatie_woord(soort));
        return false;
    }
    return onderhoud(nummer, soort, mag, relatie_vraag(nummer, soort)) != Recorduit::zelfde;
}

} // namespace zg
