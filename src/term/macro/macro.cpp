// Playing: the play buffer behind MACROHAAK, the dialog of F2, and a macro started.
#include "term/macro/macro.h"
#include "term/macro/speelbuffer.h"
#include "term/macro/teksten.h"
#include "term/prompt.h"
#include <algorithm>
#include <cerrno>

namespace zg {

mac_rec speelbuffer;

namespace {

constexpr int WACHT_SECONDEN = 3; // for the key behind F2
constexpr int VENSTERS_NODIG = 3; // of the dialog's screens, one over the other
constexpr int32_t GEEN = -2;

uint16_t wie;

int32_t haal() {
    if (speelbuffer.aantal == 0)
        return -1;
    MACROHAAK.geduwd = std::max(MACROHAAK.geduwd - 1, 0);
    return speelbuffer.toetsen[--speelbuffer.aantal];
}

int over() {
    return speelbuffer.aantal > 0;
}

void druk(int32_t key) {
    if (speelbuffer.aantal == MACROTOETSEN || key < 0 || key > UINT16_MAX)
        return TOETSTERUG(key);
    speelbuffer.toetsen[speelbuffer.aantal++] = static_cast<uint16_t>(key);
    MACROHAAK.geduwd++;
}

void stop() {
    MACROLAATLOS();
    MACROHAAK.speelt = 0;
    speelbuffer.aantal = 0;
}

int32_t gekozen(int32_t key) {
    if (key == K_IC)
        MACROOPNAME(0);
    else if (key == K_DC)
        MACROWIS();
    else
        return key > 0 ? MACROSPEEL(key) : GEEN;
    return GEEN;
}

int32_t dialoog() {
    if (SCHERM.aantal + VENSTERS_NODIG > VENSTERS) { // the screen stops the program when there is no room
        error("%s", TXT(T_MAC_VENSTERS));
        return GEEN;
    }
    if (TOETSWACHT(WINRIJ(), WINKOLOM(), WACHT_SECONDEN))
        return gekozen(TOETS());
    return gekozen(MACROMENU());
}

int32_t speel(const mac_rec& rec) {
    speelbuffer = rec;
    for (int i = 0; i < rec.aantal; i++) {
        const uint16_t key = rec.toetsen[rec.aantal - 1 - i];
        speelbuffer.toetsen[i] = key == 13 ? uint16_t{K_ENTER} : key;
    }
    MACROHAAK.speelt = 1;
    MACROHAAK.geduwd = 0;
    return haal();
}

std::string toetsnaam(uint16_t toets) {
    char naam[8];
    TOETSNAAM(toets, naam);
    return naam;
}

std::string met_naam(const Tekst& tekst, uint16_t toets) {
    char regel[200];
    snprintf(regel, sizeof regel, TXT(tekst), toetsnaam(toets).c_str());
    return regel;
}

} // namespace

void MACROLAATLOS() {
    const int n = std::clamp<int>(MACROHAAK.geduwd, 0, speelbuffer.aantal);
    for (int i = speelbuffer.aantal - n; i < speelbuffer.aantal; i++)
        TOETSTERUG(speelbuffer.toetsen[i]);
    speelbuffer.aantal = static_cast<uint16_t>(speelbuffer.aantal - n);
    MACROHAAK.geduwd = 0;
}

void MACROBEGIN() {
    MACROHAAK = {0, 0, 0, haal, over, druk, stop, dialoog, MACROBEWAAR, MACROHERSTEL};
}

void MACROGEBRUIKER(uint16_t gebruiker) {
    if (gebruiker != wie && MACROHAAK.speelt)
        stop();
    wie = gebruiker;
    if (gebruiker == 0)
        MACROUIT();
    MACROGAVERDER();
}

uint16_t MACROGEBRUIKER() {
    return wie;
}

void MACROAAN() {
    MACROHAAK.aan = wie != 0;
}

void MACROUIT() {
    MACROHAAK.aan = 0;
}

int32_t MACROSPEEL(int32_t toets) {
    const uint16_t key = MACROTOETS(toets);
    if (!MACROHAAK.aan || key == 0)
        return GEEN;
    mac_rec rec;
    const int er = MACROZOEK(key, wie, &rec);
    if (er < 0) {
        MACROMELD(errno);
    } else if (er && MACROGAAF(rec)) {
        return speel(rec);
    } else if (er) {
        MACRODOOS(-1, met_naam(T_MAC_ONBRUIKBAAR, key));
    } else if (MACRODOOS(-2, met_naam(T_MAC_NIET_AANWEZIG, key) + TXT(T_MAC_TOEVOEGEN))) {
        MACROOPNAME(key);
    }
    return GEEN;
}

} // namespace zg
