// Signals. The handlers only leave a note; it is looked at where keys are read and output is shown. A hang-up
// or a request to end gets a moment for the orderly way out, then the process ends without it, so that locks
// are never held for a terminal that is gone; ten seconds where a step would be left half done.
#include "term/binnen.h"
#include "term/einde.h"
#include <csignal>
#include <cstdlib>
#include <sys/time.h>
#include <termios.h>
#include <unistd.h>

namespace zg {

volatile int MAATSEIN, HERVATSEIN;
void (*SCRNOODHAAK)();

namespace {

volatile sig_atomic_t einde, bezig, later, respijten;
constexpr int RESPIJT_US = 500000, RESPIJTEN = 20; // so many for a step that would be left half done

void op_toets(int sein) {
    SCHERM.signaaltoets = sein == SIGINT ? K_DC : K_EXIT;
}

void op_maat(int) {
    MAATSEIN = 1;
}

void op_slaap(int) {}

// Stopped from outside and continued: the shell may have set the terminal as it likes it meanwhile.
void op_hervat(int) {
    HERVATSEIN = 1;
    MAATSEIN = 1;
}

void op_einde(int) {
    einde = 1;
    itimerval t{{0, RESPIJT_US}, {0, RESPIJT_US}};
    setitimer(ITIMER_REAL, &t, nullptr);
}

void op_respijt(int) {
    if (later && respijten < RESPIJTEN) {
        respijten = respijten + 1;
        return;
    }
    NOODAF();
    _exit(1);
}

// A crash: the shell gets a sound terminal, the system its core.
void op_val(int sein) {
    NOODAF();
    raise(sein);
}

struct Sein {
    int nummer;
    void (*werk)(int);
    struct sigaction oud;
};
Sein SEINEN[] = {
    {SIGINT, op_toets, {}},  {SIGQUIT, op_toets, {}}, {SIGHUP, op_einde, {}},    {SIGTERM, op_einde, {}},
    {SIGWINCH, op_maat, {}}, {SIGTSTP, op_slaap, {}}, {SIGALRM, op_respijt, {}}, {SIGCONT, op_hervat, {}},
};
constexpr int VALLEN[] = {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT};
bool aan;

} // namespace

void SEINENAAN() {
    if (aan)
        return;
    aan = true;
    for (Sein& s : SEINEN) {
        struct sigaction nieuw {};
        nieuw.sa_handler = s.werk; // no SA_RESTART: a waiting read has to notice
        sigemptyset(&nieuw.sa_mask);
        sigaction(s.nummer, &nieuw, &s.oud);
    }
    for (int sein : VALLEN) {
        struct sigaction nu {
        }, nieuw{};
        nieuw.sa_handler = op_val;
        nieuw.sa_flags = static_cast<int>(SA_RESETHAND); // once: what it raises ends the process
        sigemptyset(&nieuw.sa_mask);
        if (sigaction(sein, nullptr, &nu) == 0 &&
            nu.sa_handler == SIG_DFL) // others may have their own report
            sigaction(sein, &nieuw, nullptr);
    }
}

void SEINENUIT() {
    if (!aan || einde) // while ending, the last guard stays
        return;
    aan = false;
    for (Sein& s : SEINEN)
        sigaction(s.nummer, &s.oud, nullptr);
}

bool SEINEINDE() {
    return einde != 0;
}

void SEINSTOP() {
    if (einde && !bezig && !later)
        OPGEHANGEN();
}

void SCREINDELATER(bool wacht) {
    later = wacht;
}

void OPGEHANGEN() {
    if (bezig)
        _exit(1);
    bezig = 1;
    op_einde(0);
    if (SCRNOODHAAK)
        SCRNOODHAAK();
    SCRSTOP(1);
}

} // namespace zg
