// Pre-distributions in a list, those that fit, and the one that was picked laid on a table.
#include "shared/filveld.h"
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "sub/lijstprint.h"
#include "sub/maatsoort.h"
#include "sub/teksten.h"
#include "sub/vvdeel.h"
#include "term/ingave.h"
#include "term/keuze.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include "term/raster.h"
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace zg {
namespace {

constexpr size_t LIJSTMEEST = 100;
constexpr int NUMMERVELD = 11;

// The choices of the row, in their order; behind them the number.
constexpr struct {
    char letter;
    const Tekst& label;
} KEUZEN[] = {
    {'S', T_VV_SELECTEREN},  {'W', T_VV_WIJZIGEN},   {'T', T_VV_TOEVOEGEN},
    {'V', T_VV_VERWIJDEREN}, {'R', T_VV_RAADPLEGEN}, {'P', T_LIJST_PRINTEN},
};
constexpr int KEUZES = std::ssize(KEUZEN), NUMMER = KEUZES, PRINTEN = KEUZES - 1;
constexpr int SELECTEREN = static_cast<int>(Vvkeus::selecteren);

// A number with its totals.
struct Regel {
    uint16_t nummer;
    int32_t totalen[MAATKOLOMMEN];
};

// The list that runs.
struct Vvlijst {
    Vvsoort soort;
    std::string acties;
    const Vvpassing* passing;
    std::vector<Regel> regels;
    RASTER raster;
    LIJST* lijst;
    uint16_t begin; // the cursor starts on it, or on the first behind it
    bool opnieuw;   // an action was done: the list is shown anew

    size_t rij() const { return lijst->positie; }
};
Vvlijst* v;
uint16_t bekeken[256]; // by size type: the one that was looked at last

bool mag(int keus) {
    return v->acties.find(KEUZEN[keus].letter) != std::string::npos;
}

void verzamel() {
    v->regels.clear();
    aantalmatrix tabel;
    int breedte = 0;
    for (uint16_t nummer : vv_nummers(v->soort.maatsoort)) {
        if (v->regels.size() == LIJSTMEEST || !vv_laden(v->soort.maatsoort, nummer, &tabel, v->passing))
            continue;
        Regel& r = v->regels.emplace_back();
        r.nummer = nummer;
        std::copy_n(matrix_totalen(tabel), MAATKOLOMMEN, r.totalen);
        breedte = std::max(breedte, fmwidth(r.totalen));
    }
    RASTER nieuw{};
    nieuw.kolommen = balk_kolommen();
    RASTERKOL(&nieuw, 9, SCHERM.cols - 2, breedte);
    if (nieuw.celbreedte < 5)
        RASTERKOL(&nieuw, 8, SCHERM.cols - 2, breedte);
    RASTERCEL(&nieuw, 0, std::max(v->raster.eerstekol, 1));
    v->raster = nieuw;
}

// The row of a number, or the first behind it; the last where there is none.
uint32_t rij_van(uint16_t nummer) {
    const auto& r = v->regels;
    auto plek = std::find_if(r.begin(), r.end(), [&](const Regel& x) { return x.nummer >= nummer; });
    return static_cast<uint32_t>(plek == r.end() ? std::max<ptrdiff_t>(std::ssize(r) - 1, 0)
                                                 : plek - r.begin());
}

int32_t haal(int32_t stap) {
    const int64_t aantal = std::ssize(v->regels);
    if (aantal == 0)
        return 0;
    const int64_t naar = std::clamp<int64_t>(int64_t{v->lijst->positie} + stap, 0, aantal - 1);
    if (stap != 0 && naar == v->lijst->positie)
        return 0;
    v->lijst->positie = static_cast<uint32_t>(naar);
    return 1;
}

void kop() {
    SCRCLREOL(1, 1);
    RASTERKOP(&v->raster, A_LABEL, 1, balk_naam);
    SCRPUT(A_LABEL, 1, v->raster.kolvan - 3, "%s", TXT(T_TOT));
}

// The columns of the head: rows begin in column 2 of the window.
const char* regel() {
    static char tekst[160];
    const RASTER& r = v->raster;
    const Regel& van = v->regels[v->rij()];
    memset(tekst, ' ', sizeof tekst - 1);
    auto zet = [](int kolom, int breedte, int64_t n) {
        char getal[24];
        if (n == 0)
            return;
        if (snprintf(getal, sizeof getal, "%" PRId64, n) > breedte)
            strcpy(getal, "*");
        const size_t lengte = strlen(getal);
        memcpy(tekst + kolom - 2 + breedte - static_cast<int>(lengte), getal, lengte);
    };
    zet(2, 2, van.nummer);
    zet(4, r.kolvan - 4, van.totalen[0]);
    for (int kol = r.eerstekol; kol <= r.laatstekol; kol++)
        zet(RASTERKOLPLAATS(&r, kol), r.celbreedte - 1, van.totalen[balk_maat(kol)]);
    tekst[SCHERM.cols - 3] = '\0';
    return tekst;
}

const char* label(int keuze) {
    return keuze < KEUZES ? TXT(KEUZEN[keuze].label) : "";
}

int eerste_keus() {
    int keus = 0;
    while (!mag(keus)) // looking is always there
        keus++;
    return keus;
}

// A number begun with a digit: the cursor goes to it.
void naar_nummer(int rij, uint16_t cijfer) {
    TOETSDRUK('0' + cijfer);
    int16_t nummer = 0;
    INGAVE(rij, NUMMERVELD, "2d,IZP", &SCHERM.toets[key_cancel], &nummer);
    if (TOETSWEG() || nummer == 0)
        return;
    const uint32_t waar = rij_van(static_cast<uint16_t>(nummer));
    if (v->regels[waar].nummer != nummer)
        error("<%d> %s %s", nummer, TXT(T_ONBEKENDE), TXT(T_VV_VERDELING));
    else
        v->lijst->positie = waar;
}

// An action on the row under the cursor; then the list as it has become.
void doe(Vvkeus wat) {
    const uint16_t nummer = v->regels[v->rij()].nummer;
    if (wat == Vvkeus::raadplegen)
        bekeken[v->soort.maatsoort] = nummer;
    const uint16_t gedaan = vv_scherm(v->soort, wat, nummer);
    verzamel();
    // One that was added and is listed, else where the cursor stood.
    const bool erbij =
        wat == Vvkeus::toevoegen && !v->regels.empty() && v->regels[rij_van(gedaan)].nummer == gedaan;
    v->begin = erbij ? gedaan : nummer;
    v->opnieuw = true;
    SCHERM.laatste = K_CANCEL;
}

void print(int rij) {
    vv_printen(rij, v->soort.maatsoort);
    v->begin = v->regels[v->rij()].nummer;
    v->opnieuw = true;
    SCHERM.laatste = K_CANCEL;
}

void toets() {
    const int rij = LIJSTVELDRIJ();
    KEUZESTART(label);
    for (int i = 0; i < KEUZES; i++)
        if (mag(i))
            KEUZEAAN(i);
    KEUZEVAST(eerste_keus());
    uint16_t cijfer = 0;
    KEUZEGETAL(NUMMER, &cijfer, 1, 9);
    TOETSAAN(K_F7), TOETSAAN(K_F8);
    int keus = KEUZE(rij, 2);
    const int32_t key = SCHERM.laatste;
    if (keus < 0 && key == K_F3)
        keus = eerste_keus();
    SCHERM.vlag |= V_LEEG;
    if (keus == SELECTEREN)
        SCHERM.laatste = K_F3;
    else if (keus == PRINTEN)
        return print(rij);
    else if (keus >= 0 && keus != NUMMER)
        return doe(static_cast<Vvkeus>(keus));
    if (keus != NUMMER && key != K_F7 && key != K_F8)
        return; // moves and ESC are the list's
    if (keus == NUMMER) {
        naar_nummer(rij, cijfer);
    } else {
        RASTERSTAP(&v->raster, key == K_F7 ? 'L' : 'R');
        kop();
    }
    v->lijst->modus = keus == NUMMER ? 2 : 1;
    SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
    SCHERM.laatste = 0;
}

// The list once: the number picked, 0 for none.
uint16_t toon_lijst() {
    std::unique_ptr<LIJST, void (*)(LIJST*)> lijst(LIJSTNEW(haal, toets, kop, regel), LIJSTDEL);
    if (!lijst)
        NOMEM("voorverd", 3);
    v->lijst = lijst.get();
    lijst->vast = 1;
    lijst->aantal = [] { return int64_t{std::ssize(v->regels)}; };
    lijst->rij = VVRIJ, lijst->kolom = 1, lijst->breedte = SCHERM.cols, lijst->hoogte = SCHERM.lines - 7;
    snprintf(lijst->titel, sizeof lijst->titel, " %s, %s %ld %-.20s ", TXT(T_VV_VERDELINGEN),
             TXT(T_VV_MAATSOORT), long{v->soort.maatsoort}, v->soort.naam.c_str());
    // A short list whole, and the cursor on its row.
    const uint32_t waar = rij_van(v->begin);
    const auto pagina = static_cast<uint32_t>(lijst->hoogte - 5);
    lijst->positie = waar - std::min(waar, pagina - 1);
    lijst->cursor = static_cast<int>(waar - lijst->positie);
    return LIJSTRUN(lijst.get(), 0) ? v->regels[v->rij()].nummer : uint16_t{0};
}

// Pick one: its table, laden with the test. False when none was.
bool onderhoud(uint8_t maatsoort, const char* acties, const uint8_t* uitgesloten, const Vvpassing* passing,
               aantalmatrix* keus) {
    if (balk_kolommen() == 0) {
        error("%s %hu: %s", TXT(T_VV_MAATSOORT_G), static_cast<unsigned short>(maatsoort),
              TXT(T_VV_GEEN_MATEN));
        return false;
    }
    Vvlijst hier{};
    hier.soort = {maatsoort, lijstnaam(MAATSOORTTABEL, {maatsoort, ""}), uitgesloten};
    const bool mag_wijzigen = mag_onderhoud() && dtvvtab && dtvvtab->mode != 0;
    for (const char* a = acties; *a; a++)
        if (mag_wijzigen || *a == 'S')
            hier.acties += *a;
    hier.acties += "RP";
    hier.passing = passing;
    hier.begin = bekeken[maatsoort];
    Vvlijst* buiten = v;
    v = &hier;
    verzamel();
    if (hier.regels.empty() && hier.acties.find('T') != std::string::npos) {
        if (const uint16_t nieuw = vv_scherm(hier.soort, Vvkeus::toevoegen, 0))
            hier.begin = nieuw;
        verzamel();
    } else if (hier.regels.empty()) {
        MELDBOX(MELD_INFO, TXT(T_GEEN_INFORMATIE), nullptr, nullptr);
    }
    bool goed = false;
    while (!goed && !hier.regels.empty()) {
        hier.opnieuw = false;
        const uint16_t nummer = toon_lijst();
        if (nummer == 0 && !hier.opnieuw)
            break;
        if (nummer == 0)
            continue;
        goed = vv_laden(maatsoort, nummer, keus, passing) && !fm_leeg(*keus);
        if (!goed) { // changed by another since it was listed
            error("%s", TXT(T_VV_GEWIJZIGD));
            verzamel();
        }
    }
    v = buiten;
    return goed;
}

} // namespace

bool vv_kiezen(uint8_t maatsoort, const char* acties, const uint8_t* uitgesloten, aantalmatrix* tabel) {
    aantalmatrix keus;
    if (!onderhoud(maatsoort, acties, uitgesloten, nullptr, &keus))
        return false;
    for (int f = 0; f < firma.filialen; f++)
        for (int kol = 1; !fil_in(uitgesloten, f) && kol <= balk_kolommen(); kol++)
            fmset(tabel, f, balk_maat(kol), matrix_cel(keus, f, balk_maat(kol)));
    return true;
}

bool vv_verdelen(uint8_t maatsoort, const char* acties, const uint8_t* uitgesloten, int rest,
                 aantalmatrix* tabel) {
    if (rest < 0 || rest >= firma.filialen)
        rest = 0;
    const aantalmatrix was = *tabel;
    const Vvpassing passing{matrix_totalen(was), uitgesloten, rest};
    aantalmatrix keus;
    if (!onderhoud(maatsoort, acties, uitgesloten, &passing, &keus))
        return false;
    for (int kol = 1; kol <= balk_kolommen(); kol++) {
        const int maat = balk_maat(kol);
        const int32_t totaal = matrix_totalen(was)[maat];
        if (totaal <= 0)
            continue;
        for (int f = 0; f < firma.filialen; f++)
            fmset(tabel, f, maat, 0);
        fmset(tabel, rest, maat, totaal);
        for (int f = 0; f < firma.filialen; f++)
            if (const int32_t n = matrix_cel(keus, f, maat); f != rest && n > 0) {
                fmadd(tabel, f, maat, n);
                fmadd(tabel, rest, maat, -n);
            }
    }
    return true;
}

} // namespace zg
