// The picture: curses keeps the windows and lays them over each other; what differs from what the terminal shows
// goes out from here, and nowhere else. Nothing is drawn while keys wait, but at least once a second, also when
// the program then works on without a word: a timer writes bytes that were made ready before.
//
// 1. `echt` is what the terminal shows. Bytes made ready lead from there to `straks`, and from nowhere else.
// 2. Whoever writes or makes bytes ready looks first whether the timer has (haal_in).
#include "term/binnen.h"
#include "term/uitvoer.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>
#include <unistd.h>
#include <utility>
#include <vector>

namespace zg {
namespace {

constexpr int64_t SECONDE_MS = 1000;

Stand echt, straks;
std::string klaar; // the bytes of `straks`
bool alles_nieuw;  // the terminal shows nothing that is known: clear it first
bool alle_rijen;   // rows may differ that curses has not touched since the last picture
int64_t getoond_ms;

enum { NIETS, GEREED, GESCHREVEN };
volatile sig_atomic_t klok_stand = NIETS, klok_houd;
timer_t klok;
pid_t klok_van;

int64_t nu_ms() {
    timespec nu;
    clock_gettime(CLOCK_MONOTONIC, &nu);
    return int64_t{nu.tv_sec} * 1000 + nu.tv_nsec / 1000000;
}

void op_klok(int) {
    if (klok_houd || klok_stand != GEREED || SCHERM.dicht)
        return;
    const int fout = errno;
    SCHRIJFUIT(klaar.data(), klaar.size());
    klok_stand = GESCHREVEN;
    errno = fout;
}

void haal_in() {
    if (klok_stand == NIETS)
        return;
    klok_houd = 1;
    if (klok_stand == GESCHREVEN) {
        echt = straks;
        getoond_ms = nu_ms();
    } else {
        itimerspec uit{};
        timer_settime(klok, 0, &uit, nullptr);
    }
    klok_stand = NIETS;
    klok_houd = 0;
}

// The timer belongs to the process that made it.
bool heeft_klok() {
    if (klok_van == getpid())
        return true;
    struct sigaction daad {};
    daad.sa_handler = op_klok;
    daad.sa_flags = SA_RESTART;
    sigemptyset(&daad.sa_mask);
    sigevent sein{};
    sein.sigev_notify = SIGEV_SIGNAL;
    sein.sigev_signo = SIGRTMIN;
    if (sigaction(SIGRTMIN, &daad, nullptr) != 0 || timer_create(CLOCK_MONOTONIC, &sein, &klok) != 0)
        return false;
    klok_van = getpid();
    return true;
}

Stijl stijl_van(const cchar_t& c, std::pair<int8_t, int8_t> kleuren) {
    static constexpr std::pair<attr_t, uint8_t> EIGEN[] = {{A_BOLD, E_VET},         {A_DIM, E_DIM},
                                                           {A_REVERSE, E_KEUS},     {A_BLINK, E_KNIPPER},
                                                           {A_UNDERLINE, E_STREEP}, {A_ALTCHARSET, E_LIJN}};
    Stijl s{0, kleuren.first, kleuren.second};
    for (const auto& [attr, eigen] : EIGEN)
        if (c.attr & attr)
            s.eigenschappen |= eigen;
    return UITVOERKAN(s);
}

// The colours of every pair, as they are now.
std::vector<std::pair<int8_t, int8_t>> paren() {
    std::vector<std::pair<int8_t, int8_t>> uit(2 * VENSTERS + 2, {int8_t{-1}, int8_t{-1}});
    for (size_t i = 1; has_colors() && i < uit.size() && static_cast<int>(i) < COLOR_PAIRS; i++) {
        short voor, achter;
        if (pair_content(static_cast<short>(i), &voor, &achter) == OK)
            uit[i] = {static_cast<int8_t>(voor), static_cast<int8_t>(achter)};
    }
    return uit;
}

// The bytes from what `s` says to what the windows say.
void bouw(std::string& uit, Stand& s) {
    uit.clear();
    if (!CURSORISAAN())
        UITVOERCURSOR(uit, s, false);
    if (std::exchange(alles_nieuw, false))
        UITVOERWIS(uit, s);
    const auto kleuren = paren();
    const int rijen = getmaxy(newscr), kolommen = getmaxx(newscr);
    int cursor_rij, cursor_kolom;
    getyx(newscr, cursor_rij, cursor_kolom);
    cchar_t rij[BEELDKOLOMMEN + 1];
    for (int r = 0; r < rijen && r < BEELDRIJEN; r++) {
        if (!alle_rijen && !is_linetouched(newscr, r))
            continue;
        mvwin_wchnstr(newscr, r, 0, rij, kolommen);
        for (int k = 0; k < kolommen && k < BEELDKOLOMMEN; k++) {
            const size_t paar = static_cast<size_t>(rij[k].ext_color);
            const Cel cel{rij[k].chars[0], stijl_van(rij[k], kleuren[paar < kleuren.size() ? paar : 0])};
            if (ZELFDEBEELD(cel, s.cel[r][k]))
                continue;
            UITVOERPLAATS(uit, s, r, k, kolommen);
            UITVOERCEL(uit, s, cel, kolommen);
        }
    }
    wmove(newscr, cursor_rij, cursor_kolom);
    if (CURSORISAAN()) {
        UITVOERPLAATS(uit, s, cursor_rij, cursor_kolom, kolommen);
        UITVOERCURSOR(uit, s, true);
    }
}

bool toetsen_wachten() {
    return KLAVIERWACHT() || (MACROHAAK.speelt && MACROHAAK.over());
}

// What goes out now would be printed, or there is no room for it.
bool dicht() {
    return SCHERM.dicht || KLEIN();
}

int64_t wacht_nog() {
    return std::max<int64_t>(0, getoond_ms + SECONDE_MS - nu_ms());
}

} // namespace

void TOON() {
    haal_in();
    if (dicht())
        return;
    bouw(klaar, echt);
    untouchwin(newscr);
    alle_rijen = false;
    SCHRIJFUIT(klaar.data(), klaar.size());
    getoond_ms = nu_ms();
}

void TOONVENSTER(WINDOW* win) {
    wnoutrefresh(win);
    TOON();
}

void TOONSTRAKS(WINDOW* win, int ms) {
    haal_in();
    if (dicht())
        return;
    wnoutrefresh(win);
    if (toetsen_wachten())
        ms = std::max(ms, static_cast<int>(wacht_nog()));
    if (ms <= 0 || alles_nieuw || !heeft_klok()) {
        TOON();
        return;
    }
    straks = echt;
    bouw(klaar, straks);
    itimerspec tijd{{0, 0}, {ms / 1000, (ms % 1000) * 1000000L}};
    klok_stand = GEREED;
    timer_settime(klok, 0, &tijd, nullptr);
}

void TOONVOORTOETS(WINDOW* win) {
    if (dicht())
        return;
    wnoutrefresh(win);
    if (wacht_nog() == 0 || !toetsen_wachten())
        TOON();
}

void BEELDNIEUW() {
    alles_nieuw = alle_rijen = true;
}

void BEELDOVER() {
    haal_in();
    echt = Stand{};
    alles_nieuw = false;
    alle_rijen = true;
}

void BEELDGEWOON() {
    haal_in();
    std::string uit;
    UITVOERGEWOON(uit, echt);
    UITVOERCURSOR(uit, echt, true);
    SCHRIJFUIT(uit.data(), uit.size());
}

// Attributes are off first: a terminal may clear, or open a line, in the colours it has.
void ZEND(const char* capaciteit) {
    haal_in();
    std::string s;
    if (!SCHERM.dicht && echt.stijl_bekend)
        UITVOERGEWOON(s, echt);
    s += CAPACITEIT(capaciteit);
    SCHRIJFUIT(s.data(), s.size());
    echt.rij = echt.kolom = echt.cursor = -1;
    echt.stijl_bekend = false;
}

} // namespace zg
