// Start and end of the screen, and its terminal variants: "" 25 x 80, "-w" 25 x 132, "-l" 43 x 80, each an
// ncurses SCREEN of its own on the same terminal. Windows: venster.cpp; text: tekenen.cpp.
#include "term/binnen.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/plaats.h"
#include "term/teksten.h"
#include "term/uitvoer.h"
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

namespace zg {

Scherm SCHERM;
MacroHaak MACROHAAK;

namespace {

struct Maat {
    const char* naam;
    int lines, cols;
};
constexpr Maat MATEN[] = {{"", 25, 80}, {"-w", 25, 132}, {"-l", 43, 80}};

termios modes;
bool modes_bewaard;
FILE* nul; // where curses writes

const Maat& maat_van(const char* naam) {
    for (const Maat& m : MATEN)
        if (strcmp(m.naam, naam) == 0)
            return m;
    return MATEN[0];
}

constexpr int MAATKIJK_MS = 20, MAATKIJKEN = 25;

// A variant larger than the window would put its right or lower part out of sight. A line without a known
// size is trusted.
bool past(const Maat& m) {
    int hoog, breed;
    return !WINDOWMAAT(&hoog, &breed) || (hoog >= m.lines && breed >= m.cols);
}

// Does this variant of the terminal switch to 132 columns by a command of its own?
bool maakt_maat(int variant) {
    SCREEN* was = set_term(SCHERM.term[variant].scherm);
    const bool zelf = CAPACITEIT("is2").find("\033[?3h") != std::string::npos;
    set_term(was);
    return zelf;
}

// After that command: an emulator's window follows, or it has not taken the command.
bool wordt_groot(const Maat& m) {
    for (int i = 0; i < MAATKIJKEN && !past(m); i++) {
        timespec even{0, MAATKIJK_MS * 1000000L};
        nanosleep(&even, nullptr);
        SEINSTOP();
    }
    return past(m);
}

std::string terminfonaam(const char* variant) {
    const char* term = getenv("TERM");
    std::string naam = term && *term ? term : "TERM";
    naam[0] = static_cast<char>(NGROOT(static_cast<uint8_t>(naam[0])));
    return naam + variant;
}

int zoek_variant(const char* naam) {
    for (int i = 0; i < SCHERM.termaantal; i++)
        if (strcmp(SCHERM.term[i].naam, naam) == 0)
            return i;
    return -1;
}

// The package's own descriptions, behind what the environment names; false when there are none, or they are named already.
bool eigen_beschrijvingen() {
    const std::string eigen = PAKKETMAP("terminfo");
    const char* gezet = getenv("TERMINFO_DIRS");
    const std::string mappen = gezet ? gezet : "";
    return !eigen.empty() && (":" + mappen + ":").find(":" + eigen + ":") == std::string::npos &&
           setenv("TERMINFO_DIRS", (mappen.empty() ? eigen : mappen + ":" + eigen).c_str(), 1) == 0;
}

// Open a variant that has not been used yet; -1 when the terminal has no description for it.
int open_variant(const Maat& m, const std::string& naam) {
    SCREEN* eerst = SCHERM.termnu >= 0 ? SCHERM.term[SCHERM.termnu].scherm : nullptr;
    use_env(FALSE); // the description's size counts, not the window's
    if (!nul)
        nul = fopen("/dev/null", "we");
    SCREEN* nieuw = nul ? newterm(naam.c_str(), nul, stdin) : nullptr; // curses itself has nothing to say
    if (nul && !nieuw && !eerst && eigen_beschrijvingen()) // the variants come from where the first one is
        nieuw = newterm(naam.c_str(), nul, stdin);
    if (!nieuw) {
        if (eerst)
            set_term(eerst);
        return -1;
    }
    if (getmaxy(stdscr) != m.lines || getmaxx(stdscr) != m.cols)
        resize_term(m.lines, m.cols);
    TermVariant& t = SCHERM.term[SCHERM.termaantal];
    t = {};
    memcpy(t.naam, m.naam, strlen(m.naam));
    t.scherm = nieuw;
    t.lines = m.lines;
    t.cols = m.cols;
    t.std = stdscr;
    if (has_colors())
        start_color();
    if (eerst)
        set_term(eerst);
    return SCHERM.termaantal++;
}

[[noreturn]] void onbekend(const std::string& naam) {
    std::string leesbaar;
    for (char c : naam)
        leesbaar += (NKLASSE[static_cast<uint8_t>(c)] & N_CONTROL) ? '?' : c;
    printf("\n%s (%s)\n", TXT(T_ONBEKENDE_TERMINFO), leesbaar.c_str());
    fflush(stdout);
    TERMHERSTEL();
    SEINENUIT();
    SCHERM.bestaat = false;
    exit(10);
}

} // namespace

void VARIANTAAN(int variant) {
    TermVariant& t = SCHERM.term[variant];
    set_term(t.scherm);
    SCHERM.termnu = variant;
    SCHERM.lines = t.lines;
    SCHERM.cols = t.cols;
    SEINENAAN();
    UITVOERLEER();
    TERMINALAAN();
    SLEUTELSLADEN();
}

void TERMBEWAAR() {
    if (!modes_bewaard && tcgetattr(STDIN_FILENO, &modes) != 0)
        return;
    modes_bewaard = true;
    modes.c_oflag |= OPOST; // off: left so by a program that was killed while it printed through the terminal
    termios stil = modes;
    stil.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON);
    stil.c_lflag |= ISIG | NOFLSH;                        // the interrupt key must not throw typed keys away
    stil.c_iflag &= ~static_cast<tcflag_t>(ICRNL | IXON); // Ctrl-S must not stop the screen
    stil.c_cc[VMIN] = 1;
    stil.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &stil); // never the flushing kind: what is typed ahead stays
}

void TERMHERSTEL() {
    if (modes_bewaard)
        tcsetattr(STDIN_FILENO, TCSANOW, &modes);
}

void SCRINIT() {
    SCHERM = Scherm{};
    SCHERM.huidig = SCHERM.termnu = -1;
    TEKENSETVRAAG();
    TEKENSET();
    ESCWACHT();
    TERMBEWAAR();
    SEINENAAN();
    SCHERM.instel = &INSTEL;
    WINCURSOR(1);
    SCHERM.bestaat = true;
    SCRRATE(1);
    SCRTERM("");
    KLEINKIJK();
    INSTEL = Instel{};
    SCHERM.kpos = getenv("KPOS") ? 0 : 2;
    static constexpr int32_t TABEL[] = {K_CANCEL, K_TAB,  K_HELP, K_UP,   K_DOWN,
                                        K_PGUP,   K_PGDN, K_ESC,  K_BTAB, 0};
    for (size_t i = 0; i < std::size(TABEL); i++)
        SCHERM.toets[i] = TABEL[i];
    for (int i = 0; i < 12; i++)
        SCHERM.toets[key_f1 + i] = K_F1 + i;
    TOETSENOVERNEMEN();
    if (MACROHAAK.herstel)
        MACROHAAK.herstel();
    BEZIGUIT();
}

void SCRTERM(const char* naam) {
    VENSTERRUIMTE();
    const Maat& gevraagd = maat_van(naam);
    bool eerste = SCHERM.termaantal == 0;
    if (SCHERM.termnu >= 0) {
        PIEPLAAT();
        error("%s", ""); // the status line stays behind with its variant
        BEZIGWIS();
        ZEND("clear");
        ZEND("rs2");
    }
    int variant = zoek_variant(gevraagd.naam);
    if (variant < 0) {
        std::string terminfo = terminfonaam(gevraagd.naam);
        variant = open_variant(gevraagd, terminfo);
        if (variant < 0 && eerste)
            onbekend(terminfo);
    }
    if (variant > 0 && !past(gevraagd) && !maakt_maat(variant))
        variant = 0;
    VARIANTAAN(std::max(variant, 0));
    if (variant > 0 && !wordt_groot(gevraagd)) {
        ZEND("rs2");
        VARIANTAAN(0);
    }
    SCHERM.basis = SCHERM.aantal;
    WINDOW* std = SCHERM.term[SCHERM.termnu].std;
    bool staat_er = false;
    for (int i = 0; i < SCHERM.aantal; i++)
        staat_er = staat_er || SCHERM.venster[i].win == std;
    if (staat_er)
        WINOPEN(1, 1, SCHERM.lines, SCHERM.cols, 0);
    else
        VENSTERDUW(std, 0);
}

void WACHTREGEL() {
    for (char c = 0; c != '\n' && c != '\r';)
        if (read(STDIN_FILENO, &c, 1) != 1 && (errno != EINTR || SEINEINDE()))
            return;
}

namespace {

// Everything but the terminal itself: windows, the screens of the variants, modes, signals.
void sluit(void (*terminal)()) {
    if (SCHERM.dicht) {
        ZEND("mc4");
        SCHERM.dicht = 0;
    }
    SCRRATE(-1);
    while (SCHERM.aantal > 0)
        WINCLOSE();
    TOETSENOVERGEVEN();
    terminal();
    for (int i = 0; i < SCHERM.termaantal; i++) {
        set_term(SCHERM.term[i].scherm);
        delscreen(SCHERM.term[i].scherm);
    }
    fclose(nul);
    nul = nullptr;
    SCHERM.bestaat = false;
    SCHERM.termnu = -1;
    SCHERM.termaantal = 0;
    TERMHERSTEL();
    modes_bewaard = false;
    SEINENUIT();
    for (int fd = 3; fd < 40; fd++) {
        struct stat st;
        if (fstat(fd, &st) == 0 && S_ISCHR(st.st_mode))
            close(fd);
    }
}

} // namespace

void SCREXIT() {
    if (MACROHAAK.speelt && MACROHAAK.stop)
        MACROHAAK.stop(); // only a hand-over lets a macro go on
    if (SCHERM.bestaat)
        sluit(TERMINALAF);
}

void SCROVERGEVEN() {
    if (MACROHAAK.speelt && MACROHAAK.bewaar)
        MACROHAAK.bewaar();
    if (SCHERM.bestaat)
        sluit(OVERGEDRAGEN);
}

void SCRSTOP(int status) {
    SCREXIT();
    exit(status);
}

void SCHELP(const char* pad, const char* commando, bool wachten) {
    std::string opdracht;
    if (pad && *pad) {
        const char* map = pad[strlen(pad) - 1] == '/' ? pad : getenv(pad);
        if (map && *map) {
            opdracht = map;
            if (opdracht.back() != '/')
                opdracht += '/';
        }
    }
    opdracht += commando;
    if (SCHERM.bestaat) {
        ZEND("clear");
        TERMINALAF();
    }
    TERMHERSTEL();
    fflush(stdout);
    // A command that is put to sleep would leave nobody at the terminal to wake it; it inherits this.
    struct sigaction slaap, doof{};
    doof.sa_handler = SIG_IGN;
    sigaction(SIGTSTP, &doof, &slaap);
    [[maybe_unused]] int antwoord = system(opdracht.c_str());
    sigaction(SIGTSTP, &slaap, nullptr);
    if (wachten) {
        printf("\n%s ", TXT(T_ENTER_VERVOLG));
        fflush(stdout);
        WACHTREGEL();
    }
    if (!SCHERM.bestaat)
        return;
    TERMBEWAAR();
    TERMINALAAN();
    TOONVANAF(SCHERM.basis);
    TOON();
}

} // namespace zg
