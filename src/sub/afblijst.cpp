// The list of a brand's pictures, the field that opens it, and the window of a link. See sub/afb_hdl.h.
#include "shared/files.h"
#include "shared/report.h"
#include "shared/teksten.h"
#include "sub/afb_hdl.h"
#include "sub/omserie.h"
#include "sub/teksten.h"
#include "term/datum.h"
#include "term/ingave.h"
#include "term/lijst.h"
#include "term/natl.h"
#include "term/prompt.h"
#include "term/vast.h"
#include <algorithm>
#include <ctime>
#include <sys/stat.h>

namespace zg {
namespace {

constexpr int RIJ = 14, KOLOM = 1, HOOGTE = 5, BREEDTE = 80; // of the window of a link
constexpr int VELDKOLOM = 21;

struct Rij {
    std::string naam;
    uint16_t dag; // of the file
    bool gekoppeld;
};
enum Orde { NAAM, DATUM, KOPPELING, ORDES };
enum class Filter { alle, wel, niet };

struct Afblijst {
    seriesleutel serie;
    uint16_t merk;
    std::vector<Rij> rijen;    // of the directory
    std::vector<size_t> zicht; // those that the list shows, in their order
    int orde;
    Filter filter;
    std::string patroon;
    LIJST* lijst;
};
Afblijst* nu;

uint16_t dag_van(const std::string& pad) {
    struct stat st;
    struct tm tijd;
    if (stat(pad.c_str(), &st) != 0 || !localtime_r(&st.st_mtime, &tijd))
        return 0;
    char tekst[16];
    return strftime(tekst, sizeof tekst, "%d%m%Y", &tijd) == 8 ? DATUMNR(tekst) : uint16_t{0};
}

bool voor(const Rij& a, const Rij& b) {
    if (nu->orde == DATUM && a.dag != b.dag)
        return a.dag > b.dag; // the latest first
    if (nu->orde == KOPPELING && a.gekoppeld != b.gekoppeld)
        return !a.gekoppeld;
    return a.naam < b.naam;
}

// What the filter and the pattern leave; the cursor stays on its file where that is still there.
void kies_zicht(const std::string& staat) {
    nu->zicht.clear();
    for (size_t i = 0; i < nu->rijen.size(); i++) {
        const Rij& r = nu->rijen[i];
        if ((nu->filter == Filter::alle || r.gekoppeld == (nu->filter == Filter::wel)) &&
            IOPAST(nu->patroon.c_str(), r.naam.c_str()))
            nu->zicht.push_back(i);
    }
    std::sort(nu->zicht.begin(), nu->zicht.end(),
              [](size_t a, size_t b) { return voor(nu->rijen[a], nu->rijen[b]); });
    const auto p = std::find_if(nu->zicht.begin(), nu->zicht.end(),
                                [&](size_t i) { return nu->rijen[i].naam == staat; });
    nu->lijst->positie = p == nu->zicht.end() ? 0 : static_cast<uint32_t>(p - nu->zicht.begin());
    nu->lijst->modus = 2;
}

std::string hier() {
    return nu->lijst->positie < nu->zicht.size() ? nu->rijen[nu->zicht[nu->lijst->positie]].naam : "";
}

// The directory; names that are too long are told.
void lees_map() {
    const std::string map = afb_map(nu->merk);
    int lang = 0;
    nu->rijen.clear();
    for (const std::string& naam : afb_bestanden(map, &lang))
        nu->rijen.push_back({naam, dag_van(map + naam), afb_zoek(naam, nu->merk)});
    afb_meld_lang(lang);
}

// Asked in the list's last row; an empty answer is all of them. False: left.
bool vraag_patroon(int rij, int kolom, std::string* patroon) {
    char tekst[11] = "";
    SCRPUT(A_LABEL, rij, kolom, "%s", TXT(T_AFB_ZOEKPATROON));
    INGAVE(rij, kolom + 12, "10s,UI", &SCHERM.toets[key_cancel], tekst);
    if (TOETSWEG())
        return false;
    *patroon = tekst;
    return true;
}

std::string jokers(const std::string& patroon) {
    return "*" + patroon + "*";
}

// ---- the list

int32_t haal(int32_t stap) {
    const int64_t n = std::ssize(nu->zicht);
    const int64_t naar =
        std::clamp<int64_t>(int64_t{nu->lijst->positie} + stap, 0, std::max<int64_t>(n - 1, 0));
    if (n == 0 || (stap != 0 && naar == nu->lijst->positie))
        return 0;
    nu->lijst->positie = static_cast<uint32_t>(naar);
    return 1;
}

void kop() {
    SCRCLREOL(1, 2);
    SCRPUT(A_LABEL, 1, 2, "%-45.45s %10s %s", TXT(T_AFB_K_AFBEELDING), TXT(T_AFB_K_DATUM), TXT(T_AFB_K_KOP));
}

const char* regel() {
    static std::string tekst;
    tekst.clear();
    if (nu->lijst->positie >= nu->zicht.size())
        return "";
    const Rij& r = nu->rijen[nu->zicht[nu->lijst->positie]];
    char uit[80];
    snprintf(uit, sizeof uit, "%-45.45s %10s  %c  ", r.naam.c_str(), DATUM10(r.dag), r.gekoppeld ? '+' : '-');
    tekst = uit;
    return tekst.c_str();
}

void hint(int rij) {
    const Tekst& welke = nu->filter == Filter::wel    ? T_AFB_WEL
                         : nu->filter == Filter::niet ? T_AFB_GEEN
                                                      : T_AFB_WEL_GEEN;
    SCRCLREOL(rij, 2);
    SCRPUT(A_LABEL, rij, 2, "+/-  %s   <F8> %s   %s", TXT(welke), TXT(T_AFB_ZOEKPATROON),
           TXT(T_TAB_SORTERING));
}

// The list over what is shown now: also where nothing is, which its keys can mend.
void anders(const std::string& staat) {
    kies_zicht(staat);
    SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
}

void toets() {
    const int rij = LIJSTVELDRIJ();
    hint(rij);
    const std::string staat = hier();
    const int32_t key =
        TOETSKIES(&SCHERM.toets[key_tab], &SCHERM.toets[key_f8], &SCHERM.toets[key_f7], "+-\n");
    if (key == K_TAB) {
        nu->orde = (nu->orde + 1) % ORDES;
        anders(staat);
    } else if (key == '+' || key == '-') {
        const Filter gevraagd = key == '+' ? Filter::wel : Filter::niet;
        const Filter was = nu->filter;
        nu->filter = was == gevraagd ? Filter::alle : gevraagd;
        anders(staat);
        if (nu->zicht.empty()) {
            error("%s", TXT(T_GEEN_INFORMATIE));
            nu->filter = was;
            anders(staat);
        }
    } else if (key == K_F8) {
        std::string patroon;
        SCRCLREOL(rij, 2);
        const std::string was = nu->patroon;
        if (vraag_patroon(rij, 2, &patroon))
            nu->patroon = jokers(patroon);
        anders(staat);
        if (nu->zicht.empty()) {
            error("%s", TXT(T_GEEN_INFORMATIE));
            nu->patroon = was;
            anders(staat);
        }
        SCHERM.laatste = K_F8; // whatever left the question, the list goes on
    } else if (key == K_F7) {
        Afblijst* deze = nu;
        afb_import(deze->merk);
        nu = deze;
        lees_map();
        anders(staat);
        SCHERM.laatste = K_F7;
    }
}

// The file that a series has by its name: that of the whole number, else of its group.
std::string eigen_naam(const seriesleutel& serie) {
    for (const std::string& begin : {serie_tekst(serie) + ".", std::to_string(serie.artikelgroep) + "."})
        for (const Rij& r : nu->rijen)
            if (r.naam.compare(0, begin.size(), begin) == 0)
                return r.naam;
    return "";
}

// A box with what isn't there: "Directory foto/0012/ niet aanwezig".
void meld_niet_aanwezig(const Tekst& soort, const std::string& naam) {
    char tekst[200];
    snprintf(tekst, sizeof tekst, "%s %.*s %s", TXT(soort), 48, naam.c_str(), TXT(T_AFB_NIET_AANWEZIG));
    MELDBOX(MELD_WAARSCHUWING, tekst, nullptr, nullptr);
}

// What was typed or picked is a picture of this brand; told where not.
bool keur(const std::string& naam, uint16_t merk) {
    if (afb_keur(naam) != Afbnaam::goed) {
        MELDBOX(MELD_WAARSCHUWING, TXT(T_AFB_FOUTIEF_UIT), nullptr, nullptr);
        return false;
    }
    const std::string map = afb_map(merk);
    const bool er_is_map = IOISDIR(map.c_str());
    if (er_is_map && afb_aanwezig(map + naam))
        return true;
    if (er_is_map)
        meld_niet_aanwezig(T_AFB_AFBEELDING, naam);
    else
        meld_niet_aanwezig(T_AFB_DIRECTORY, map);
    return false;
}

void toetshulp() {
    MELDBOX(MELD_INFO, TXT(T_AFB_HULP_F5), TXT(T_AFB_HULP_F8), TXT(T_AFB_HULP_F10));
}

} // namespace

void afb_meld_lang(int aantal) {
    if (!aantal)
        return;
    char tekst[80];
    snprintf(tekst, sizeof tekst, "%s: %d", TXT(T_AFB_TE_LANG), aantal);
    MELDBOX(MELD_INFO, tekst, TXT(T_AFB_INKORTEN), TXT(aantal == 1 ? T_AFB_DEZE : T_AFB_DEZE_MEER));
}

bool afb_kies(const seriesleutel& serie, uint16_t merk, const std::string& patroon, std::string* naam) {
    Afblijst deze{serie, merk, {}, {}, NAAM, Filter::alle, jokers(patroon), nullptr};
    Afblijst* buiten = nu;
    nu = &deze;
    lees_map();
    if (deze.rijen.empty() && !afb_bestanden(afb_nieuw_map(), nullptr).empty()) { // the brand's first ones
        afb_import(merk);
        nu = &deze;
        lees_map();
    }
    deze.lijst = LIJSTNEW(haal, toets, kop, regel);
    if (!deze.lijst)
        NOMEM("afb_hdl", 1);
    deze.lijst->vast = 1;
    deze.lijst->aantal = [] { return int64_t{std::ssize(nu->zicht)}; };
    deze.lijst->breedte = BREEDTE;
    snprintf(deze.lijst->titel, sizeof deze.lijst->titel, " %s ", TXT(T_AFB_TITEL));
    kies_zicht(naam->empty() ? eigen_naam(serie) : *naam);
    bool gekozen = false;
    if (deze.zicht.empty() && !IOISDIR(afb_map(merk).c_str()))
        meld_niet_aanwezig(T_AFB_DIRECTORY, afb_map(merk));
    else if (deze.zicht.empty())
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
    else
        gekozen = LIJSTRUN(deze.lijst, 0) != 0;
    if (gekozen && !afb_aanwezig(afb_map(merk) + hier())) { // it went while the list stood
        MELDBOX(MELD_INFO, TXT(T_AFB_WEG), hier().c_str(), nullptr);
        gekozen = false;
    }
    if (gekozen)
        *naam = hier();
    LIJSTDEL(deze.lijst);
    nu = buiten;
    return gekozen;
}

bool afb_veld(int rij, int kolom, const seriesleutel& serie, uint16_t merk, std::string* naam) {
    std::string nieuw = *naam, staat = *naam; // what is taken, what stands in the field
    for (bool klaar = false; !klaar;) {
        char veld[AFB_NAAM] = {};
        VASTIN(veld, staat);
        for (const int32_t toets : {K_F1, K_HELP, K_F5, K_F8, K_F10})
            TOETSAAN(toets);
        SCRHINT(TXT(T_AFB_HULP));
        INGAVE(rij, kolom, "45c", &SCHERM.toets[key_cancel], veld);
        SCRHINT("");
        const int32_t toets = SCHERM.laatste;
        const std::string getypt = VASTTEKST(veld);
        std::string patroon;
        if (toets == K_F1 || toets == K_HELP) {
            toetshulp();
        } else if (toets == K_F5) {
            klaar = afb_kies(serie, merk, "", &nieuw);
        } else if (toets == K_F8) {
            SCRCLREOL(rij, kolom);
            klaar = vraag_patroon(rij, kolom, &patroon) && afb_kies(serie, merk, patroon, &nieuw);
        } else if (toets == K_F10) {
            afb_tonen(getypt, merk);
        } else if (TOETSWEG()) {
            nieuw = *naam;
            klaar = true;
        } else if (getypt.empty() || getypt == *naam || keur(getypt, merk)) {
            nieuw = getypt;
            klaar = true;
        }
        staat = getypt;
        if (klaar)
            SCRPUT(A_WAARDE, rij, kolom, "%-45.45s", nieuw.c_str());
        if (klaar && (toets == K_F5 || toets == K_F8))
            SCHERM.laatste = K_ENTER;
    }
    const bool anders_dan = nieuw != *naam;
    *naam = nieuw;
    return anders_dan;
}

void afb_koppelen(const seriesleutel& serie, uint16_t merk) {
    uint16_t oud_merk = 0;
    std::string naam = afb_van(serie, &oud_merk);
    WINOPEN1(RIJ, KOLOM, HOOGTE, BREEDTE);
    WINBOX(" %s ", TXT(T_AFB_TITEL));
    SCRPUT(A_LABEL, 1, 2, "%s %s", TXT(T_AFB_KOPPELEN), serie_tekst(serie).c_str());
    SCRPUT(A_LABEL, 2, 2, "%s", TXT(T_AFB_AFBEELDING));
    if (afb_veld(2, VELDKOLOM, serie, merk, &naam))
        naam.empty() ? afb_wis(serie) : afb_schrijf(serie, naam, merk);
    WINCLOSE();
}

} // namespace zg
