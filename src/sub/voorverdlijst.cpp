// Pre-distributions on the screen: the list of those that fit, one of them looked at, changed or added in the grid,
// and the one that was picked laid on a table.
#include "shared/leesstam.h"
#include "shared/maatbalk.h"
#include "shared/report.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include "sub/maatsoort.h"
#include "sub/matrixinvoer.h"
#include "sub/teksten.h"
#include "sub/vvdeel.h"
#include "term/keuze.h"
#include "term/lijst.h"
#include "term/prompt.h"
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>

namespace zg {
namespace {

constexpr size_t LIJSTMEEST = 100;
constexpr int RIJ = 4; // of both windows
constexpr int NUMMERVELD = 11;

enum Keus { SELECTEREN, WIJZIGEN, TOEVOEGEN, VERWIJDEREN, RAADPLEGEN, NUMMER };
constexpr struct {
    char letter;
    const Tekst& label;
    const Tekst& woord; // in the title of the screen
} KEUZEN[] = {
    {'S', T_VV_SELECTEREN, T_VV_W_RAADPLEGEN}, {'W', T_VV_WIJZIGEN, T_VV_W_WIJZIGEN},
    {'T', T_VV_TOEVOEGEN, T_VV_W_TOEVOEGEN},   {'V', T_VV_VERWIJDEREN, T_VV_W_VERWIJDEREN},
    {'R', T_VV_RAADPLEGEN, T_VV_W_RAADPLEGEN},
};

// A number with its totals.
struct Regel {
    uint16_t nummer;
    int32_t totalen[MAATKOLOMMEN];
};

// The list that runs.
struct Vvlijst {
    uint8_t maatsoort;
    std::string acties, soortnaam;
    const uint8_t* uitgesloten;
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

// ---- one on the screen

// All sizes of the type as long as it lives, then those that were shown.
struct Hele_balk {
    uint8_t maten[MAATBYTES];
    Hele_balk() {
        balk_maten(maten);
        balk_kies(nullptr);
    }
    ~Hele_balk() { balk_kies(maten); }
    Hele_balk(const Hele_balk&) = delete;
    Hele_balk& operator=(const Hele_balk&) = delete;
};

void open_scherm(Matrixscherm* s, Keus wat, uint16_t nummer, const aantalmatrix& tabel) {
    WINOPEN1(RIJ, 1, 21, 80);
    WINBOX("%s %s %2d, %s %ld %-.20s", TXT(KEUZEN[wat].woord), TXT(T_VV_VERDELING), nummer,
           TXT(T_VV_MAATSOORT), long{v->maatsoort}, v->soortnaam.c_str());
    const int laatste = WINHOOGTE() - 4;
    s->uitgesloten = v->uitgesloten;
    matrix_begin(s, 1, laatste, tabel);
    s->totaalrij = laatste + 2; // below a line
    s->vrijrij = laatste + 3;
    SCRLIJN(A_LIJN_LABEL, laatste + 1, 1, L_HORIZONTAAL, WINBREEDTE());
    matrix_teken(s, tabel);
}

void bekijk(Matrixscherm* s, const aantalmatrix& tabel) {
    do {
        for (int32_t key : {K_LEFT, K_RIGHT, K_ENTER})
            TOETSAAN(key);
        TOETSKIES(&SCHERM.toets[key_cancel], &SCHERM.toets[key_up], &SCHERM.toets[key_down],
                  &SCHERM.toets[key_pgup], &SCHERM.toets[key_pgdn], &SCHERM.toets[key_f7],
                  &SCHERM.toets[key_f8], "");
        const int32_t key = SCHERM.laatste;
        RASTERSTAP(&s->raster, key == K_UP || key == K_PGUP     ? 'U'
                               : key == K_DOWN || key == K_PGDN ? 'D'
                               : key == K_LEFT || key == K_F7   ? 'L'
                               : key == K_RIGHT || key == K_F8  ? 'R'
                                                                : ' ');
        matrix_teken(s, tabel);
    } while (!TOETSWEG() && SCHERM.laatste != K_ENTER);
}

// Changed in the grid or deleted; the number is in hand, and let go here. Where saving was refused, and told, the
// screen stays: it may be tried again, or left without another change.
void bewerk(Matrixscherm* s, Keus wat, uint16_t nummer, aantalmatrix* tabel) {
    for (aantalmatrix was = *tabel;;) {
        if (wat != VERWIJDEREN)
            matrix_hand(s, tabel);
        else if (JNVRAAG(WINHOOGTE(), 2, "[-]%s", TXT(T_VV_VRAAG_VERWIJDEREN)))
            fmclear(tabel);
        if (*tabel == was)
            return vv_laatlos(v->maatsoort, nummer);
        if (vv_vervang(v->maatsoort, nummer, *tabel) || !vv_grijp(v->maatsoort, nummer))
            return;
        was = *tabel;
    }
}

// Look at, change, add or delete one.
void scherm(Keus wat, uint16_t nummer) {
    Hele_balk balk;
    const bool vast = wat != RAADPLEGEN;
    if (wat == TOEVOEGEN)
        nummer = vv_grijp_vrije(v->maatsoort);
    else if (vast && !vv_grijp(v->maatsoort, nummer))
        nummer = 0;
    if (nummer == 0)
        return;
    v->begin = nummer;
    aantalmatrix tabel;
    vv_laden(v->maatsoort, nummer, &tabel, nullptr);
    if (vast && wat != TOEVOEGEN && fm_leeg(tabel)) { // deleted by another since it was listed
        error("%s", TXT(T_VV_GEWIJZIGD));
        return vv_laatlos(v->maatsoort, nummer);
    }
    Matrixscherm s;
    open_scherm(&s, wat, nummer, tabel);
    if (vast)
        bewerk(&s, wat, nummer, &tabel);
    else
        bekijk(&s, tabel);
    WINCLOSE();
}

// ---- the list

bool mag(Keus wat) {
    return v->acties.find(KEUZEN[wat].letter) != std::string::npos;
}

void verzamel() {
    v->regels.clear();
    aantalmatrix tabel;
    int breedte = 0;
    for (uint16_t nummer : vv_nummers(v->maatsoort)) {
        if (v->regels.size() == LIJSTMEEST || !vv_laden(v->maatsoort, nummer, &tabel, v->passing))
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
    return keuze <= RAADPLEGEN ? TXT(KEUZEN[keuze].label) : "";
}

Keus eerste_keus() {
    Keus wat = RAADPLEGEN;
    for (int i = RAADPLEGEN; i >= SELECTEREN; i--)
        if (mag(static_cast<Keus>(i)))
            wat = static_cast<Keus>(i);
    return wat;
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
void doe(Keus wat) {
    const uint16_t nummer = v->begin = v->regels[v->rij()].nummer;
    if (wat == RAADPLEGEN)
        bekeken[v->maatsoort] = nummer;
    scherm(wat, nummer);
    verzamel();
    if (wat == TOEVOEGEN && !v->regels.empty() && v->regels[rij_van(v->begin)].nummer != v->begin)
        v->begin = nummer; // nothing came of it
    v->opnieuw = true;
    SCHERM.laatste = K_CANCEL;
}

void toets() {
    const int rij = LIJSTVELDRIJ();
    KEUZESTART(label);
    for (int i = SELECTEREN; i <= RAADPLEGEN; i++)
        if (mag(static_cast<Keus>(i)))
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
    else if (keus >= 0 && keus != NUMMER)
        return doe(static_cast<Keus>(keus));
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
    lijst->rij = RIJ, lijst->kolom = 1, lijst->breedte = SCHERM.cols, lijst->hoogte = SCHERM.lines - 7;
    snprintf(lijst->titel, sizeof lijst->titel, " %s, %s %ld %-.20s ", TXT(T_VV_VERDELINGEN),
             TXT(T_VV_MAATSOORT), long{v->maatsoort}, v->soortnaam.c_str());
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
    hier.maatsoort = maatsoort;
    const bool mag_wijzigen = mag_onderhoud() && dtvvtab && dtvvtab->mode != 0;
    for (const char* a = acties; *a; a++)
        if (mag_wijzigen || *a == 'S')
            hier.acties += *a;
    hier.acties += 'R';
    hier.soortnaam = lijstnaam(MAATSOORTTABEL, {maatsoort, ""});
    hier.uitgesloten = uitgesloten;
    hier.passing = passing;
    hier.begin = bekeken[maatsoort];
    Vvlijst* buiten = v;
    v = &hier;
    verzamel();
    if (hier.regels.empty() && mag(TOEVOEGEN)) {
        scherm(TOEVOEGEN, 0);
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

bool blijft(const uint8_t* uitgesloten, int f) {
    return uitgesloten && (uitgesloten[f / 8] >> (f % 8) & 1);
}

} // namespace

bool vv_kiezen(uint8_t maatsoort, const char* acties, const uint8_t* uitgesloten, aantalmatrix* tabel) {
    aantalmatrix keus;
    if (!onderhoud(maatsoort, acties, uitgesloten, nullptr, &keus))
        return false;
    for (int f = 0; f < firma.filialen; f++)
        for (int kol = 1; !blijft(uitgesloten, f) && kol <= balk_kolommen(); kol++)
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
