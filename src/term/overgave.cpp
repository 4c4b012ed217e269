// Taking the terminal, giving it back, and handing it over as it is to the next program of the chain, so that
// nothing of the shell's screen shows in between. The note of a hand-over is in the environment, marked with
// process and time, so that a program that doesn't know it can't leave it to a later one.
#include "term/binnen.h"
#include "term/uitvoer.h"
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>

namespace zg {
namespace {

constexpr const char* NOTITIE = "ZGSCHERM";
constexpr long GELDIG_SECONDEN = 5;

bool genomen;
char nood[256]; // what gives the terminal back from a signal handler
size_t nood_n;

void onthoud_nood() {
    std::string s = CAPACITEIT("mc4") + CAPACITEIT("sgr0") + CAPACITEIT("op");
    if (SCHERM.termnu > 0)
        s += CAPACITEIT("rs2");
    s += CAPACITEIT("rmkx") + CAPACITEIT("cnorm") + TERUGREEKS();
    nood_n = 0;
    if (s.size() <= sizeof nood) {
        memcpy(nood, s.data(), s.size());
        nood_n = s.size();
    }
}

} // namespace

// Not every terminal has a screen of its own for programs, whatever its description says: ours is left empty, so
// that the prompt doesn't land on the old picture.
std::string TERUGREEKS() {
    return CAPACITEIT("clear") + CAPACITEIT("rmcup");
}

bool OVERGAVEWACHT() {
    const char *waarde = getenv(NOTITIE), *term = getenv("TERM");
    if (!waarde || !term)
        return false;
    char* p = nullptr;
    const long pid = strtol(waarde, &p, 10), tijd = strtol(p, &p, 10), nu = static_cast<long>(time(nullptr));
    return pid == getpid() && nu >= tijd && nu - tijd <= GELDIG_SECONDEN && *p == ' ' &&
           strcmp(p + 1, term) == 0;
}

void OVERGEDRAGEN() {
    const char* term = getenv("TERM");
    if (term)
        setenv(NOTITIE, (std::to_string(getpid()) + " " + std::to_string(time(nullptr)) + " " + term).c_str(),
               1);
    genomen = false;
    nood_n = 0;
}

void TERMINALAAN() {
    if (!genomen && OVERGAVEWACHT()) {
        BEELDOVER();
    } else {
        if (!genomen) {
            ZEND("mc4"); // a program that was killed while it printed through the terminal left it so
            ZEND("smcup");
        }
        BEELDNIEUW();
    }
    genomen = true;
    unsetenv(NOTITIE);
    ZEND("is2");
    ZEND("is3");
    ZEND("smkx");
    if (!UTF8SCHERM())
        ZEND("enacs");
    onthoud_nood();
}

void TERMINALAF() {
    if (!genomen)
        return;
    genomen = false;
    nood_n = 0;
    BEELDGEWOON();
    ZEND("rmkx");
    const std::string s = TERUGREEKS();
    SCHRIJFUIT(s.data(), s.size());
}

void NOODAF() {
    SCHRIJFUIT(nood, nood_n);
    nood_n = 0;
    TERMHERSTEL();
    if (SCRNOODHAAK)
        SCRNOODHAAK();
}

} // namespace zg
