// The preview: a finished report page by page on the screen, with keys and a menu, before it is printed. A page that has
// more lines than the screen is shown in screenfuls under its head; one that is wider moves sideways.
#include "print/overzicht.h"
#include "print/printjob.h"
#include "print/teksten.h"
#include "term/ingave.h"
#include "term/menu.h"
#include "term/natl.h"
#include "term/scherm.h"
#include "term/teksten.h"
#include "term/toets.h"
#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zg {
namespace {

enum Actie {
    VB_GEEN = 0,
    VB_VORIG = 1001,
    VB_VOLGEND,
    VB_SCHERM,
    VB_SPRING,
    VB_STREEP,
    VB_AANTAL,
    VB_KOPREGELS,
    VB_LINKS,
    VB_RECHTS,
    VB_EERSTE = 1011,
    VB_LAATSTE,
    VB_INSTELLEN,
    VB_PRINT = 1015,
    VB_NIET,
    VB_EINDE,
};

constexpr int32_t K_F4 = K_F1 + 3;
constexpr int AAN = 1, LIJN = 2;                           // of a menu's item
constexpr int KOPMAX = 15, AFDRUKMAX = 20, LETTERMAX = 39; // a hot letter further on doesn't count

const Tekst GEEN_TEKST{ZEBCAT, 0, 0, ""};
const struct {
    Actie id;
    const Tekst& tekst;
    int32_t toets;
} ITEMS[] = {
    {VB_VORIG, T_PRT_VORIG_BLAD, K_PGUP},
    {VB_VOLGEND, T_PRT_VOLGEND_BLAD, K_PGDN},
    {VB_SCHERM, T_PRT_VOLGEND_SCHERM, K_ENTER},
    {VB_SPRING, T_PRT_SPRING, K_F6},
    {VB_STREEP, T_PRT_SCROLLEN, 0},
    {VB_EERSTE, T_PRT_EERSTE_BLAD, K_HOME},
    {VB_LAATSTE, T_PRT_LAATSTE_BLAD, K_END},
    {VB_LINKS, T_PRT_LINKS, K_LEFT},
    {VB_RECHTS, T_PRT_RECHTS, K_RIGHT},
    {VB_INSTELLEN, T_PRT_INSTELLEN, 0},
    {VB_STREEP, GEEN_TEKST, 0},
    {VB_AANTAL, T_PRT_AANTAL_AFDRUKKEN, K_F4},
    {VB_KOPREGELS, T_PRT_KOPREGELS, 0},
    {VB_EINDE, T_PRT_EINDE, 0},
    {VB_PRINT, T_PRT_PRINT, 0},
    {VB_NIET, T_PRT_PRINT_NIET, K_ESC},
};

int kopregels =
    1; // rows of a page's head that stay, and columns of a step sideways, for this run of the program
int scroll = 52;

// What is shown. Pages count from 1; `vanaf` is the line of the page, from 0, in the first row under the head.
struct Beeld {
    Overzicht o;
    TR_MENU* menu;
    int breedte; // of the report
    bool apparaat;
    int blad;
    size_t vanaf;
    int rechts; // columns to the left of the screen
    uint16_t aantal;
};

size_t kop() {
    return static_cast<size_t>(std::min(kopregels, SCHERM.lines - 2));
}
size_t ruimte() { // rows under the head
    return static_cast<size_t>(SCHERM.lines - 1) - kop();
}
size_t blad_eerste(const Beeld& b) {
    return b.o.bladen[static_cast<size_t>(b.blad) - 1];
}
size_t blad_regels(const Beeld& b) {
    return b.o.bladen[static_cast<size_t>(b.blad)] - blad_eerste(b);
}
bool laatste_blad(const Beeld& b) {
    return b.blad == overzicht_bladen(b.o);
}
bool meer(const Beeld& b) {
    return b.vanaf + ruimte() < blad_regels(b);
}

void naar_blad(Beeld* b, int blad) {
    b->blad = std::clamp(blad, 1, overzicht_bladen(b->o));
    b->vanaf = kop();
}

void verf(const Beeld& b) {
    const int breed = SCHERM.cols;
    for (size_t r = 0; r < kop() + ruimte(); r++) {
        const size_t regel = r < kop() ? r : b.vanaf + r - kop();
        const bool er = regel < blad_regels(b);
        const std::string tekst =
            er ? overzicht_regel(b.o, blad_eerste(b) + regel, b.rechts, std::min(b.breedte, b.rechts + breed))
               : "";
        SCRPUT(er && r < kop() ? A_KEUS : A_WAARDE, static_cast<int>(r) + 1, 1, "%-*s", breed, tekst.c_str());
    }
}

void verf_status(const Beeld& b) {
    SCRCLREOL(SCHERM.lines, 1);
    if (laatste_blad(b) && !meer(b))
        SCRPUT(A_KEUS, SCHERM.lines, 1, "%s", TXT(T_PRT_EINDE_OVERZICHT));
    char tekst[80];
    const int n = snprintf(tekst, sizeof tekst, "(%-.12s %d %-.12s %d)", TXT(T_PRT_BLAD), b.blad,
                           TXT(T_PRT_VAN), overzicht_bladen(b.o));
    SCRPUT(A_LABEL, SCHERM.lines, SCHERM.cols - n + 1, "%s", tekst);
}

bool mag(const Beeld& b, int actie) {
    const bool past = b.breedte <= SCHERM.cols;
    switch (actie) {
    case VB_VORIG:
    case VB_EERSTE:
        return b.blad > 1 || b.vanaf > kop();
    case VB_VOLGEND:
    case VB_SCHERM:
    case VB_LAATSTE:
        return !laatste_blad(b) || meer(b);
    case VB_SPRING:
        return overzicht_bladen(b.o) > 1;
    case VB_LINKS:
        return b.rechts > 0 && !past;
    case VB_RECHTS:
        return b.rechts + scroll < b.breedte && !past;
    case VB_INSTELLEN:
        return !past;
    case VB_PRINT:
        return b.apparaat;
    }
    return true;
}

std::string met_getal(const Tekst& tekst, int getal) {
    char uit[60];
    snprintf(uit, sizeof uit, "%-.20s (%d)", TXT(tekst), getal);
    return uit;
}

std::string item_tekst(size_t i) {
    return ITEMS[i].id == VB_INSTELLEN   ? met_getal(ITEMS[i].tekst, scroll)
           : ITEMS[i].id == VB_KOPREGELS ? met_getal(ITEMS[i].tekst, kopregels)
                                         : TXT(ITEMS[i].tekst);
}

// The menu at the lower right of the screen; null when out of memory.
TR_MENU* maak_menu() {
    TR_MENU* menu = TR_NEW(33, 3, 3, 0, "PrintMenu");
    size_t langste = 0;
    for (size_t i = 0; menu && i < std::size(ITEMS); i++) {
        const bool lijn = ITEMS[i].id == VB_STREEP || ITEMS[i].id == VB_EINDE;
        const std::string tekst = item_tekst(i);
        langste = std::max(langste, tekst.size());
        TR_ADD(menu, -1, tekst.c_str(), ITEMS[i].id, lijn ? LIJN : AAN, ITEMS[i].toets, nullptr);
    }
    TR_PLACE(menu, SCHERM.lines - static_cast<int>(std::size(ITEMS)) - 6,
             SCHERM.cols - static_cast<int>(langste) - 3);
    return menu;
}

// What a key stands for: letters first.
int actie_van(int32_t key) {
    if (key == K_ESC || key == K_CANCEL)
        return VB_NIET;
    if (key > 0 && key < 256)
        key = NGROOT(static_cast<uint8_t>(key));
    for (size_t i = 0; i < std::size(ITEMS); i++) {
        const std::string tekst = item_tekst(i);
        const size_t p = tekst.find('&');
        if (p < LETTERMAX && p + 1 < tekst.size() && NGROOT(static_cast<uint8_t>(tekst[p + 1])) == key)
            return ITEMS[i].id;
    }
    for (const auto& i : ITEMS)
        if (i.toets && i.toets == key)
            return i.id;
    return VB_GEEN;
}

// A number asked in a box; false when it was left.
bool vraag(int rij, int kolom, const Tekst& titel, const Tekst& label, const char* formaat, int maximum,
           uint16_t* getal) {
    uint16_t nieuw = *getal;
    // The field's messages come where the end of the report is told.
    SCRPUT(A_WAARDE, SCHERM.lines, 1, "%*s", static_cast<int>(strlen(TXT(T_PRT_EINDE_OVERZICHT))), "");
    WINOPEN1(rij, kolom, 3, 40);
    WINBOX("%s", TXT(titel));
    SCRPUT(A_LABEL, 1, 2, "%s: ", TXT(label));
    INSTEL.minimum = 1;
    INSTEL.maximum = maximum;
    INGAVE(1, WINKOLOM(), formaat, &SCHERM.toets[key_cancel], &nieuw);
    WINCLOSE();
    if (TOETSWEG() || nieuw < 1 || nieuw > maximum)
        return false;
    *getal = nieuw;
    return true;
}

void stel_in(Beeld* b, Actie actie, int* doel) {
    auto getal = static_cast<uint16_t>(*doel);
    const bool koppen = actie == VB_KOPREGELS;
    if (koppen ? vraag(18, 41, T_PRT_KOPREGELS_TITEL, T_PRT_AANTAL, "4d,P", KOPMAX, &getal)
               : vraag(10, 36, T_PRT_SCROLLENGTE, T_PRT_AANTAL_POSITIES, "3d,P", SCHERM.cols, &getal)) {
        *doel = getal;
        TR_TEXT(b->menu, actie, met_getal(koppen ? T_PRT_KOPREGELS : T_PRT_INSTELLEN, *doel).c_str());
        if (koppen)
            naar_blad(b, b->blad);
    }
}

void voer_uit(Beeld* b, int actie) {
    const int bladen = overzicht_bladen(b->o);
    switch (actie) {
    case VB_VORIG:
        naar_blad(b, b->blad - 1);
        break;
    case VB_VOLGEND:
        if (!laatste_blad(*b))
            naar_blad(b, b->blad + 1);
        else
            b->vanaf += ruimte();
        break;
    case VB_SCHERM:
        if (meer(*b))
            b->vanaf += ruimte();
        else
            naar_blad(b, b->blad + 1);
        break;
    case VB_SPRING: {
        auto blad = static_cast<uint16_t>(std::min(b->blad, 65535));
        if (vraag(18, 41, T_PRT_GA_NAAR_BLAD, T_PRT_BLAD, bladen > 9999 ? "5d,P" : "4d,P",
                  std::min(bladen, 65535), &blad) &&
            blad != b->blad)
            naar_blad(b, blad);
        break;
    }
    case VB_EERSTE:
        naar_blad(b, 1);
        break;
    case VB_LAATSTE:
        if (!laatste_blad(*b))
            naar_blad(b, bladen);
        else
            b->vanaf = kop() + (blad_regels(*b) - kop() - 1) / ruimte() * ruimte();
        break;
    case VB_LINKS:
        b->rechts = std::max(b->rechts - scroll, 0);
        break;
    case VB_RECHTS:
        b->rechts += scroll;
        break;
    case VB_AANTAL:
        vraag(18, 41, T_PRT_AFDRUKKEN, T_PRT_AANTAL, "4d,P", AFDRUKMAX, &b->aantal);
        break;
    case VB_KOPREGELS:
        stel_in(b, VB_KOPREGELS, &kopregels);
        break;
    case VB_INSTELLEN:
        stel_in(b, VB_INSTELLEN, &scroll);
        break;
    }
}

// Until the user prints or leaves: which of the two.
int kijk(Beeld* b) {
    for (bool verven = true;;) {
        BEZIGWIS();
        if (verven)
            verf(*b);
        verf_status(*b);
        for (const auto& i : ITEMS)
            if (i.id != VB_STREEP && i.id != VB_EINDE)
                TR_ENABLE(b->menu, i.id, mag(*b, i.id));
        WINCURSOR(0);
        const int32_t key = TOETS();
        WINCURSOR(1);
        error("%s", "");
        int actie = actie_van(key);
        if (actie == VB_GEEN)
            actie = TR_RUN(b->menu, 0);
        verven = mag(*b, actie);
        if (!verven)
            continue;
        if (actie == VB_PRINT || actie == VB_NIET)
            return actie;
        voer_uit(b, actie);
    }
}

} // namespace

int PRT_SCR(const printjob& job) {
    Beeld b{};
    b.apparaat = job.weg != Printweg::geen && !job.apparaat.empty() && job.apparaat != "/dev/null";
    b.aantal = static_cast<uint16_t>(std::clamp(job.kopieen, 1, AFDRUKMAX));
    if (!SCHERM.bestaat) // nobody to look
        return b.apparaat ? b.aantal : 0;
    BEZIGWIS();
    const int64_t eind = job.plaats - static_cast<int64_t>(job.exit.size());
    if (!overzicht_open(&b.o, job.spool.c_str(), job.begin, eind)) {
        error("%s", TXT(T_PRT_SPOOL_NIET_OPEN));
        return 0;
    }
    b.breedte = std::max(job.kolommen, 1);
    SCRTERM(b.breedte > 80 ? "-w" : "");
    b.menu = maak_menu();
    int actie = VB_NIET;
    const bool menu = b.menu != nullptr;
    if (menu) {
        naar_blad(&b, 1);
        actie = kijk(&b);
        TR_FREE(b.menu);
    }
    WINCLOSE();
    overzicht_sluit(&b.o);
    if (!menu)
        error(TXT(T_PRT_VOORBEELD_GEHEUGEN), TXT(T_ONVOLDOENDE_GEHEUGEN));
    SCHERM.laatste = actie == VB_PRINT ? K_ENTER : K_CANCEL;
    return actie == VB_PRINT ? b.aantal : 0;
}

} // namespace zg
