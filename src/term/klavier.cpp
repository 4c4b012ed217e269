// The keyboard's bytes, and the keys that they are: sequences (reeksen.cpp) and characters of the terminal's
// set (tekenset.cpp). Read here and not by curses, which drops half a character when it comes in two pieces,
// keeps typed-ahead bytes to itself when the program ends, and turns an unknown key into ESC and loose letters.
// Bytes are taken one at a time, so that what is not needed stays with the terminal.
#include "term/binnen.h"
#include "term/natl.h"
#include "term/toetswacht.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace zg {

uint64_t TOETSWACHTEN;

namespace {

constexpr int ESC_MS = 25;         // after ESC, unless ESCDELAY says otherwise: does more follow?
constexpr int ESC_MEEST_MS = 5000; // more is no time to wait for
constexpr int REEKS_MS = 200;      // inside a sequence that can only be a key
constexpr int UTF8_MS = 100;       // inside a character, when not waiting anyway

uint8_t bytes[256]; // read and not yet a key
int aantal;
int esc_ms = ESC_MS;
Geweigerd geweigerd;

enum class Vul { BYTE, NIETS, SEIN };

// One byte more within ms milliseconds. The signals that matter are held off between the look at their notes
// and the wait, so that none falls in between; `door`: what is noted already doesn't keep it from waiting.
// Bytes of a dead terminal never come: that is the end.
Vul vul(int ms, bool door = false) {
    static sigset_t seinen;
    static bool klaar;
    if (!klaar) {
        klaar = true;
        sigemptyset(&seinen);
        for (int s : {SIGINT, SIGQUIT, SIGHUP, SIGTERM, SIGWINCH, SIGCONT})
            sigaddset(&seinen, s);
    }
    if (aantal == static_cast<int>(sizeof bytes))
        return Vul::NIETS;
    sigset_t vrij;
    pollfd p{STDIN_FILENO, POLLIN, 0};
    timespec tijd{ms / 1000, (ms % 1000) * 1000000L};
    int n = -1, fout = 0;
    bool sein = false;
    if (ms == 0) {
        n = poll(&p, 1, 0);
        fout = errno;
    } else {
        sigprocmask(SIG_BLOCK, &seinen, &vrij);
        sein = !door && (SCHERM.signaaltoets || MAATSEIN || SEINEINDE());
        TOETSWACHTEN++;
        if (!sein)
            n = ppoll(&p, 1, ms < 0 ? nullptr : &tijd, &vrij);
        fout = errno;
        sigprocmask(SIG_SETMASK, &vrij, nullptr);
    }
    SEINSTOP();
    if (n < 0)
        return sein || fout == EINTR ? Vul::SEIN : Vul::NIETS;
    if (n == 0)
        return Vul::NIETS;
    ssize_t gelezen = read(STDIN_FILENO, bytes + aantal, 1);
    if (gelezen == 1) {
        aantal++;
        return Vul::BYTE;
    }
    if (gelezen < 0 && (errno == EINTR || errno == EAGAIN))
        return Vul::SEIN;
    OPGEHANGEN();
}

// The same, through signals that come meanwhile: a sequence under way is finished first.
bool vul_door(int ms) {
    timespec begin;
    clock_gettime(CLOCK_MONOTONIC, &begin);
    for (int rest = ms; rest >= 0;) {
        Vul v = vul(rest, true);
        if (v != Vul::SEIN)
            return v == Vul::BYTE;
        timespec nu;
        clock_gettime(CLOCK_MONOTONIC, &nu);
        rest =
            ms - static_cast<int>((nu.tv_sec - begin.tv_sec) * 1000 + (nu.tv_nsec - begin.tv_nsec) / 1000000);
    }
    return false;
}

int32_t verbruik(int n, int32_t key) {
    aantal -= n;
    memmove(bytes, bytes + n, static_cast<size_t>(aantal));
    return key;
}

int32_t klaar_teken(int c) {
    return c == 0 ? K_ONBEKEND : c == '\r' ? K_ENTER : c == 0xFF ? ' ' : c;
}

constexpr int32_t HALF = -3; // a character whose bytes are not all there

int32_t weiger(int n, bool unicode, uint32_t code) {
    geweigerd = {unicode, code};
    return verbruik(n, K_GEWEIGERD);
}

// The character at the front as a key. A character that has no place here is refused whole: on a terminal of
// which nothing is known its bytes are most likely UTF-8.
int32_t teken(bool wachten) {
    const uint8_t b = bytes[0];
    if (b < 0x80)
        return verbruik(1, klaar_teken(b));
    char32_t u = TEKENSETIN(b);
    int n = 1;
    if (!TABELSCHERM())
        while ((n = UTF8TEKEN(bytes, aantal, &u)) == 0 && wachten && vul_door(UTF8_MS)) {
        }
    if (n == 0 && UTF8SCHERM() && wachten)
        return HALF;
    if (n <= 0 || u == 0)
        return weiger(1, false, b);
    int c = UTF8SCHERM() || TABELSCHERM() ? CP850IN(u) : -1;
    return c >= 32 ? verbruik(n, klaar_teken(c)) : weiger(n, true, static_cast<uint32_t>(u));
}

// The key at the front; HALF as above. Without waiting what has come is all there is.
int32_t voorste(bool wachten) {
    Reeks r = REEKS(bytes, aantal);
    while (r.meer && wachten) {
        if (aantal == static_cast<int>(sizeof bytes)) // a long answer to a question that nobody here asked
            aantal = 2;
        if (!vul_door(aantal == 1 ? esc_ms : std::max(esc_ms, REEKS_MS)))
            break;
        r = REEKS(bytes, aantal);
    }
    return r.lengte > 0 ? verbruik(r.lengte, r.key) : teken(wachten);
}

} // namespace

void ESCWACHT() {
    const char* w = getenv("ESCDELAY");
    esc_ms = ESC_MS;
    if (w && *w && strlen(w) <= 4 && strspn(w, "0123456789") == strlen(w) && atoi(w) <= ESC_MEEST_MS)
        esc_ms = atoi(w);
}

int32_t KLAVIER(int ms) {
    bool half = false; // what is there is no whole character yet
    for (;;) {
        if (half && ms != 0 && SCHERM.bestaat)
            TOON(); // nothing has been drawn for it, and its rest may never come
        if (aantal == 0 || half)
            if (vul(ms) != Vul::BYTE)
                return -1;
        int32_t key = half ? teken(true) : voorste(true);
        half = key == HALF;
        if (!half)
            return key;
    }
}

int32_t KLAVIERREST() {
    while (aantal > 0)
        if (int32_t key = voorste(false); key >= 0)
            return key;
    return -1;
}

bool KLAVIERWACHT() {
    pollfd p{STDIN_FILENO, POLLIN, 0};
    return aantal > 0 || (poll(&p, 1, 0) == 1 && (p.revents & POLLIN));
}

void KLAVIERTERUG(std::string_view rest) {
    for (char c : rest)
        if (aantal < static_cast<int>(sizeof bytes))
            bytes[aantal++] = static_cast<uint8_t>(c);
}

Geweigerd KLAVIERGEWEIGERD() {
    return geweigerd;
}

} // namespace zg
