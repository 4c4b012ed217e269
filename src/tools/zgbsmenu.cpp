// zgbsmenu: the stand-in for the order menu. Without arguments it logs a user of the demo firm in; the order
// program comes back to it with the five arguments of a hand-over. It owns the user's slot of DTSYS.TXT from
// login to logout.
#include "control/controle.h"
#include "shared/files.h"
#include "shared/houder.h"
#include "shared/iotab.h"
#include "shared/teksten.h"
#include "shared/versie.h"
#include "store/ix.h"
#include "term/datum.h"
#include "term/dm_hdl.h"
#include "term/ingave.h"
#include "term/macro/macro.h"
#include "term/plaats.h"
#include "term/prompt.h"
#include "term/scherm.h"
#include "term/tekst.h"
#include "term/vast.h"
#include "tools/teksten.h"
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace zg;

constexpr char PROGRAMMA[] = "zgbsmenu", ORDERS[] = "zgbestel";
constexpr char HULP[] = "usage: zgbsmenu, in a data directory\n"
                        "A menu that logs a user in and starts zgbestel.\n"
                        "--version and --help end at once.\n";

std::string argument0;

// A slot is free when it names a user, nobody holds it, and it isn't on its way to that user's next program.
bool vrij(int32_t nr, gebruikerslot* g) {
    int32_t slot = nr;
    return iotab('R', &slot, g, SYS_GEBRUIKER) && g->username[0] != 0 && !in_overgave(*g) &&
           iotab('T', &slot, g, SYS_GEBRUIKER);
}

// Take a slot without waiting; false when another has it.
bool neem(int32_t nr) {
    sessie = nr;
    return iotab_probeer(&sessie, &gebruiker, SYS_GEBRUIKER);
}

// As neem, of a slot that others must leave alone: a free one that `vrij` offered and nobody took since.
bool neem_vrije(int32_t nr) {
    gebruikerslot g;
    sessie = 0;
    if (vrij(nr, &g) && g.userstate >= STAND_KRITIEK)
        status_vrij(); // its user died in a critical step, and the login would take the mark away
    if (!vrij(nr, &g) || !neem(nr))
        return false;
    if (!in_overgave(gebruiker)) // come by between the look and the lock
        return true;
    iotab('U', &sessie, &gebruiker, SYS_GEBRUIKER);
    return false;
}

[[noreturn]] void einde() {
    iotab('C', &sessie, &gebruiker, SYS_GEBRUIKER);
    CATCLOSE();
    SCRSTOP(0);
}

// The user's own slot, back from a program that has released it for us. Should another hold it, he is named until it
// is free, or the user leaves and the program ends.
bool neem_terug(int32_t nr) {
    const int64_t plaats = SYS_GEBRUIKER.start + int64_t{nr - 1} * SYS_GEBRUIKER.grootte;
    while (!neem(nr)) {
        if (nr < 1 || nr > SYS_GEBRUIKER.slots || iotab('T', &sessie, &gebruiker, SYS_GEBRUIKER))
            return neem(nr); // let go of just now; or no user's
        char tekst[81] = "";
        houder_tekst(tekst, sizeof tekst, iotab_fd(), plaats, SYS_GEBRUIKER.grootte);
        WINOPEN1(10, 6, 4, 70);
        WINBOX("%s", "");
        SCRPUT(A_WAARDE, 1, 2, "%s", tekst);
        SCRPUT(A_LABEL, 2, 2, "%s", TXT(T_MENU_STOP));
        SCRFLUSH(0);
        const int32_t toets = TOETSWACHT(2, 40, 2) ? TOETS() : 0;
        WINCLOSE();
        if (toets == K_ESC || toets == K_CANCEL)
            einde();
    }
    return true;
}

// Pick a user among the free ones; false after CANCEL or when all are at work.
bool login() {
    for (;;) {
        std::vector<std::pair<int32_t, std::string>> wie;
        for (int32_t nr = 1; nr < BATCHGEBRUIKER; nr++)
            if (gebruikerslot g; vrij(nr, &g))
                wie.emplace_back(nr, std::string("&") + gebruiker_naam(g));
        if (wie.empty()) {
            MELDBOX(MELD_ALARM, TXT(T_GEEN_GEBRUIKER), nullptr, nullptr);
            return false;
        }
        int keus = wie[0].first;
        if (wie.size() > 1) {
            DMREC* menu = DMNEW(TXT(T_GEBRUIKER));
            for (const auto& [nr, naam] : wie)
                DMITEM(menu, naam.c_str(), nr, 1);
            keus = DMRUN(menu, 5, 0);
        }
        if (keus <= 0 || neem_vrije(keus))
            return keus > 0;
        MELDBOX(MELD_WAARSCHUWING, TXT(T_GEBRUIKER_BEZET), nullptr, nullptr);
    }
}

void scherm() {
    SCRCLREOW(1, 1);
    SCRPUT(A_KEUS, 1, 1, "%-*.*s", SCHERM.cols, SCHERM.cols, "");
    SCRPUT(A_KEUS, 1, 2, "%.*s", 30, firma.naam);
    SCRPUT(A_KEUS, 1, SCHERM.cols - 20, "%-18.18s", gebruiker_naam());
    SCRPUT(A_WAARDE, 3, 4, "%s", TXT(T_MENU_TITEL));
    SCRPUT(A_LABEL, SCHERM.lines - 2, 4, "%s", TXT(T_MENU_HULP));
    SCRPUT(A_WAARDE, SCHERM.lines - 4, 4, "%.*s", SCHERM.cols - 8, status_nu().c_str());
}

// May a program be started? Else why not is told.
bool mag_starten() {
    if (status_vrij())
        return true;
    const std::string waarom = status_nu();
    MELDBOX(MELD_WAARSCHUWING, TXT(T_MENU_DICHT), waarom.empty() ? nullptr : waarom.c_str(), nullptr);
    return false;
}

// Hand over to `doel` as the package does: slot marked chaining and released, five arguments.
[[noreturn]] void start(const char* doel) {
    gebruiker.userstate = 2;
    VASTIN(gebruiker.userprog, doel);
    gebruiker.usertime = static_cast<uint32_t>(time(nullptr));
    gebruiker_schrijf('W');
    std::string naam = gebruiker_naam(), nr = std::to_string(sessie);
    iotab('C', &sessie, &gebruiker, SYS_GEBRUIKER);
    CATCLOSE();
    SCROVERGEVEN();
    std::vector<std::string> mappen;
    for (const char* var : {"TSTBIN", "BIN"})
        if (const char* map = getenv(var); map && *map)
            mappen.push_back(std::string(map) + (map[strlen(map) - 1] == '/' ? "" : "/"));
    mappen.push_back(EIGENMAP());
    mappen.push_back("");
    for (const std::string& map : mappen) {
        std::string pad = map + doel;
        execlp(pad.c_str(), pad.c_str(), doel, naam.c_str(), nr.c_str(), PROGRAMMA,
               static_cast<char*>(nullptr));
    }
    SCRINIT();
    SCRFATAL("%s %s %s", TXT(T_PROGRAMMA), doel, TXT(T_NIET_GEVONDEN));
}

void uitloggen() {
    MACROGEBRUIKER(0);
    gebruiker.userstate = 0;
    memset(gebruiker.userprog, 0, sizeof gebruiker.userprog);
    memset(gebruiker.usertty, 0, sizeof gebruiker.usertty);
    gebruiker_schrijf('W');
}

enum Keus { K_EINDE = 0, K_ORDERS = 1, K_GEBRUIKER = 2 };

int menu() {
    scherm();
    DMREC* m = DMNEW(TXT(T_MENU_TITEL));
    DMITEM(m, TXT(T_MENU_ORDERS), K_ORDERS, 1);
    DMITEM(m, TXT(T_MENU_GEBRUIKER), K_GEBRUIKER, 1);
    DMITEM(m, TXT(T_MENU_EINDE), K_EINDE + 10, 1);
    return DMRUN(m, 6, K_EINDE);
}

} // namespace

int main(int argc, char** argv) {
    VERSIE_OF_HULP(PROGRAMMA, HULP, argc, argv);
    if (argc != 1 && argc != 5) {
        fputs(HULP, stderr);
        return 2;
    }
    MACROBEGIN();
    SCRINIT();
    CATOPEN();
    IXWAITHOOK = houder_wacht;
    iotab('O', &sessie, &gebruiker, SYS_GEBRUIKER);
    sys_lees();
    backup_lezen();
    bool in;
    if (argc == 5) {
        // Back from a program, which has named us in the slot.
        in = neem_terug(atoi(argv[3])) && strcmp(gebruiker_naam(), argv[2]) == 0;
        if (!in)
            SCRFATAL("%s %s", PROGRAMMA, TXT(T_MENU_FOUTIEF_GESTART));
    } else {
        SCRPUT(A_WAARDE, 3, 4, "%s", TXT(T_MENU_TITEL));
        in = login();
    }
    if (in) {
        gebruiker.userstate = 1;
        VASTIN(gebruiker.userprog, PROGRAMMA);
        gebruiker.usertime = static_cast<uint32_t>(time(nullptr));
        if (const char* tty = ttyname(0); tty && gebruiker.usertty[0] == 0) {
            const char* kort = IOBASENAME(tty);
            VASTIN(gebruiker.usertty, kort);
        }
        gebruiker_schrijf('w');
    }
    while (in) {
        MACROGEBRUIKER(static_cast<uint16_t>(sessie));
        MACROAAN();
        int keus = menu();
        if (keus == K_ORDERS) {
            if (mag_starten())
                start(ORDERS);
            continue;
        }
        uitloggen();
        in = keus == K_GEBRUIKER && login();
    }
    einde();
}
