// The question to a terminal of which the environment says nothing, or nothing that counts: does it take UTF-8?
#include "term/binnen.h"
#include "term/tekenset.h"
#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <poll.h>
#include <string>
#include <termios.h>
#include <unistd.h>

namespace zg {
namespace {

constexpr int ANTWOORD_MS = 200;
constexpr char VRAAG[] = "\r\xC3\xB8\033[6n"; // a letter at the start of the line; where is the cursor?
constexpr char WEG[] = "\r\033[K";
constexpr size_t MEEST = 200;

bool gezet(const char* naam) {
    const char* w = getenv(naam);
    return w && *w;
}

bool schrijf(const char* s, size_t n) {
    while (n > 0) {
        ssize_t k = write(STDOUT_FILENO, s, n);
        if (k < 0 && errno != EINTR)
            return false;
        if (k > 0)
            s += k, n -= static_cast<size_t>(k);
    }
    return true;
}

// "ESC [ row ; column R" somewhere in the bytes: taken out, its column answered; 0 when it isn't there.
int antwoord(std::string* bytes) {
    for (size_t p = 0; (p = bytes->find("\033[", p)) != std::string::npos; p++) {
        int rij = 0, kolom = 0, n = 0;
        if (sscanf(bytes->c_str() + p, "\033[%3d;%3dR%n", &rij, &kolom, &n) == 2 && n > 0) {
            bytes->erase(p, static_cast<size_t>(n));
            return kolom;
        }
    }
    return 0;
}

int64_t nu_ms() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1000000;
}

// The column that the terminal tells, 0 when it says nothing in time; *rest: what else came.
int vraag(std::string* rest) {
    if (!schrijf(VRAAG, sizeof VRAAG - 1))
        return 0;
    int kolom = 0;
    for (int64_t tot = nu_ms() + ANTWOORD_MS, over; kolom == 0 && (over = tot - nu_ms()) > 0;) {
        pollfd p{STDIN_FILENO, POLLIN, 0};
        char c;
        if (rest->size() >= MEEST || poll(&p, 1, static_cast<int>(over)) != 1 ||
            read(STDIN_FILENO, &c, 1) != 1)
            break;
        *rest += c;
        kolom = antwoord(rest);
    }
    schrijf(WEG, sizeof WEG - 1);
    return kolom;
}

// Asks with the keyboard silent; 0 also where nobody can be asked.
int stil_gevraagd() {
    termios oud;
    if (!isatty(STDOUT_FILENO) || tcgetattr(STDIN_FILENO, &oud) != 0)
        return 0;
    termios stil = oud;
    stil.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON);
    stil.c_cc[VMIN] = 1;
    stil.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &stil);
    std::string rest;
    const int kolom = vraag(&rest);
    tcsetattr(STDIN_FILENO, TCSADRAIN, &oud);
    KLAVIERTERUG(rest);
    return kolom;
}

} // namespace

void TEKENSETVRAAG() {
    if (gezet("ZGTEKENSET"))
        return;
    if (!gezet("LC_ALL") && !gezet("LC_CTYPE") && !gezet("LANG")) {
        setenv("LC_CTYPE", stil_gevraagd() == 2 ? "C.UTF-8" : "C", 1);
        return;
    }
    const std::string plaatselijk = gezet("TMUX") || gezet("STY") ? ACHTBITSSET() : "";
    if (plaatselijk.empty())
        return;
    if (const int kolom = stil_gevraagd(); kolom == 0)
        TEKENSETNEEMAAN();
    else
        setenv("ZGTEKENSET", kolom == 2 ? "UTF-8" : plaatselijk.c_str(), 1);
}

} // namespace zg
