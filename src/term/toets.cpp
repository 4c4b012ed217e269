// Keys for the program: the key stack, a playing macro and the keyboard in their order, and names. Allowed
// keys: instel.cpp. What the keyboard sends becomes keys in klavier.cpp.
#include "term/toets.h"
#include "term/binnen.h"
#include "term/teksten.h"
#include "term/veldwacht.h"
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

std::vector<int32_t> stapel; // the last pushed is the next read
bool in_dialoog;

constexpr int32_t XON = 17, XOFF = 19, CTRL_L = 12;
constexpr const char* OVERGAVE = "ZGTOETSEN";
constexpr long OVERGAVE_SECONDEN = 5;

bool laat_vallen(int32_t key) {
    return key == XON || key == XOFF || key < -1;
}

int32_t neem_seintoets() {
    int32_t key = SCHERM.signaaltoets;
    SCHERM.signaaltoets = 0;
    return key;
}

// The whole screen again, whatever the terminal shows: its window got another size, or the user asked.
void herteken() {
    MAATSEIN = 0;
    const bool hervat = HERVATSEIN != 0;
    HERVATSEIN = 0;
    if (!SCHERM.bestaat)
        return;
    if (hervat && !SCHERM.dicht &&
        tcgetpgrp(STDIN_FILENO) == getpgrp()) // who is behind the shell would be stopped again
        TERMBEWAAR();
    KLEINKIJK();
    BEELDNIEUW();
    TOONVANAF(SCHERM.basis);
    TOON();
}

// While the window is too small keys go nowhere, but for the one that ends the program as a hang-up does. False
// when ms milliseconds (-1: without limit) have not made it larger.
bool wacht_op_ruimte(int ms) {
    for (bool gezegd = false; MAATSEIN || KLEIN();) {
        SEINSTOP();
        if (MAATSEIN) {
            herteken();
            gezegd = false;
            continue;
        }
        if (!gezegd && ms != 0) {
            KLEINTOON();
            gezegd = true;
        }
        int32_t key = SCHERM.signaaltoets ? neem_seintoets() : KLAVIER(ms);
        if (key == K_EXIT)
            OPGEHANGEN();
        if (key != -1)
            PIEP();
        else if (ms >= 0 && !MAATSEIN)
            return false;
    }
    return true;
}

void weiger() {
    Geweigerd g = KLAVIERGEWEIGERD();
    error(TXT(g.unicode ? T_TEKEN_ONBEKEND : T_BYTE_ONBEKEND), static_cast<unsigned>(g.code));
}

// What stands on the screen when a key is waited for.
void voor_het_wachten(WINDOW* win, int ms) {
    if (!SCHERM.bestaat || SCHERM.dicht)
        return;
    if (ms != 0 && !SCHERM.statustekst[0])
        if (std::string melding = TEKENSETMELDING(); !melding.empty())
            error("%s", melding.c_str());
    if (win)
        TOONVOORTOETS(win);
    if (ms != 0 && !KLAVIERWACHT())
        PIEPLAAT();
}

// One key of the keyboard within ms milliseconds (-1: without limit), else -1.
int32_t van_klavier(WINDOW* win, int ms) {
    for (;;) {
        if (!wacht_op_ruimte(ms))
            return -1;
        SEINSTOP();
        voor_het_wachten(win, ms);
        if (SCHERM.signaaltoets)
            return neem_seintoets();
        int32_t key = KLAVIER(ms);
        if (key == -1 && (MAATSEIN || SCHERM.signaaltoets))
            continue;
        if (key == K_GEWEIGERD) {
            weiger();
        } else if (key == CTRL_L) {
            herteken();
        } else if (key == -1 ? ms >= 0 : !laat_vallen(key)) {
            SCHERM.ververst = time(nullptr); // a long run is counted from here
            return key;
        }
    }
}

// The macro dialog may stand in the middle of a field, a list or a menu: what its own fields and lists would overwrite
// is put aside, and whoever asked is waiting for a key again when it ends.
int32_t dialoog() {
    VELDWACHT wacht;
    const bool cursor = CURSORISAAN();
    if (MACROHAAK.speelt)
        MACROHAAK.stop();
    in_dialoog = true;
    WINCURSOR(1);
    int32_t key = MACROHAAK.dialoog();
    WINCURSOR(cursor);
    in_dialoog = false;
    BEZIGWIS();
    return key;
}

int32_t volgende(WINDOW* win, int ms) {
    for (;;) {
        TOETSKLAAR();
        if (!wacht_op_ruimte(ms)) // also for keys that wait, and those of a macro
            return -1;
        int32_t key;
        if (SCHERM.signaaltoets) { // a key that is already there keeps its place behind it
            key = neem_seintoets();
        } else if (!stapel.empty()) {
            key = stapel.back();
            stapel.pop_back();
            if (MACROHAAK.speelt && (key == K_CANCEL || key == K_ESC)) {
                MACROHAAK.stop();
                return key;
            }
        } else if (MACROHAAK.speelt && MACROHAAK.over()) {
            key = MACROHAAK.haal();
        } else {
            if (MACROHAAK.speelt)
                MACROHAAK.stop();
            key = van_klavier(win, ms);
            if (key == -1)
                return -1;
        }
        if (key == K_F2 && MACROHAAK.aan && MACROHAAK.dialoog && !in_dialoog && !TOETSTOE(K_F2))
            key = dialoog();
        if (key != -1 && !laat_vallen(key))
            return key;
    }
}

} // namespace

bool TOETSENWACHTEN() {
    return !stapel.empty() || KLAVIERWACHT();
}

int32_t TOETS(VENSTERP win) {
    return volgende(win, -1);
}

int32_t TOETS() {
    return TOETS(WINNU());
}

int32_t TOETSRAW(VENSTERP win) {
    return van_klavier(win, -1);
}

int TOETSKLAAR() {
    // One typed key at a time: a second one would go on top of it.
    if (!stapel.empty() || SCHERM.signaaltoets || (MACROHAAK.speelt && MACROHAAK.geduwd))
        return 1;
    int32_t key = van_klavier(WINNU(), 0);
    if (key == -1)
        return MACROHAAK.speelt && MACROHAAK.over() ? 1 : 0;
    if (MACROHAAK.speelt && (key == K_CANCEL || key == K_ESC)) {
        MACROHAAK.stop();
        TOETSTERUG(key);
    } else {
        TOETSDRUK(key);
    }
    return 1;
}

void TOETSDRUK(int32_t key) {
    if (MACROHAAK.speelt && MACROHAAK.druk)
        MACROHAAK.druk(key);
    else
        TOETSTERUG(key);
}

void TOETSTERUG(int32_t key) {
    stapel.push_back(key);
}

int TOETSWACHT(int rij, int kolom, int pogingen) {
    WINAT(rij, kolom);
    for (int i = 0; i < pogingen; i++) {
        int32_t key = volgende(WINNU(), 1000);
        if (key != -1) {
            TOETSDRUK(key);
            break;
        }
    }
    return TOETSKLAAR();
}

void TOETSLEEG() {
    if (MACROHAAK.speelt && MACROHAAK.stop)
        MACROHAAK.stop();
    stapel.clear();
    while (KLAVIER(0) != -1) {
    }
}

void TOETSNAAM(int32_t key, char* tekst) {
    static constexpr struct {
        int32_t key;
        const char* naam;
    } NAMEN[] = {
        {K_ESC, "ESC"},     {K_TAB, "TAB"},   {K_ENTER, "RTRN"}, {32, "SPACE"},    {K_DOWN, "DOWN"},
        {K_UP, "UP"},       {K_LEFT, "LEFT"}, {K_RIGHT, "RGHT"}, {K_HOME, "HOME"}, {K_BACK, "BACK"},
        {8, "BACK"},        {K_DC, "DEL"},    {K_IC, "INS"},     {K_PGDN, "PGDN"}, {K_PGUP, "PGUP"},
        {K_BTAB, "SH_TAB"}, {K_END, "END"},
    };
    for (const auto& n : NAMEN) {
        if (n.key == key) {
            strcpy(tekst, n.naam);
            return;
        }
    }
    if (key >= K_F1 && key < K_F1 + 12 && key != K_F2)
        snprintf(tekst, 8, "F%-2d", (key - K_F1 + 1) & 15);
    else
        snprintf(tekst, 8, "%c", key & 0xFF);
}

int32_t TOETSTEKEN(int32_t key) {
    const char* naam = key == K_CANCEL ? "kcan" : key == K_EXIT ? "kext" : key == K_HELP ? "khlp" : nullptr;
    if (!naam || !SCHERM.bestaat)
        return -1;
    const char* s = tigetstr(naam);
    if (!s || s == reinterpret_cast<const char*>(-1) || !*s)
        return -1;
    return static_cast<uint8_t>(*s);
}

// A key that was read before the program hands over belongs to the next one in the chain. It goes along in
// the environment, marked with process and time, so that a program that doesn't know it can't leave it to a
// later one.
void TOETSENOVERGEVEN() {
    for (int32_t key; (key = KLAVIERREST()) != -1;)
        stapel.insert(stapel.begin(), key);
    if (stapel.empty())
        return;
    std::string waarde = std::to_string(getpid()) + " " + std::to_string(time(nullptr));
    for (size_t i = 0; i < stapel.size() && i < 500; i++)
        waarde += " " + std::to_string(stapel[i]);
    setenv(OVERGAVE, waarde.c_str(), 1);
    stapel.clear();
}

void TOETSENOVERNEMEN() {
    const char* waarde = getenv(OVERGAVE);
    if (!waarde)
        return;
    char* p = nullptr;
    long pid = strtol(waarde, &p, 10), tijd = strtol(p, &p, 10), nu = static_cast<long>(time(nullptr));
    if (pid == getpid() && nu >= tijd && nu - tijd <= OVERGAVE_SECONDEN) {
        for (const char* voor; *p == ' ';) {
            voor = p;
            const long key = strtol(p, &p, 10);
            if (p == voor) // a blank with no number behind it
                break;
            if (key >= 0 && key <= K_ONBEKEND)
                TOETSTERUG(static_cast<int32_t>(key));
        }
    }
    unsetenv(OVERGAVE);
}

} // namespace zg
