// The program as the buyer feels it: from start to the season prompt, a key to its echo, a hang-up to its end, the commit
// of an order of 1,000 lines into a journal of 10 MB; beside them the system calls. Prints medians. usage: bench_programma
#include "bench/journaal.h"
#include "order/programma.h"
#include "order/wrk.h"
#include "shared/sysrec.h"
#include "support/demomap.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

using namespace zg;
using namespace zg::test;

namespace {

using klok = std::chrono::steady_clock;

constexpr int RONDEN = 9;

double ms_sinds(klok::time_point t) {
    return std::chrono::duration<double, std::milli>(klok::now() - t).count();
}

double mediaan(std::vector<double> v) {
    std::sort(v.begin(), v.end());
    return v.empty() ? 0 : v[v.size() / 2];
}

// System calls of a command as strace counts them.
long telsys(const std::string& opdracht) {
    std::string uit = "/tmp/zgbench." + std::to_string(getpid());
    std::string regel = "strace -c -f -o " + uit + " " + opdracht + " > /dev/null 2>&1";
    if (system(regel.c_str()) < 0)
        return -1;
    std::string tekst = lees_bestand(uit);
    unlink(uit.c_str());
    size_t p = tekst.rfind("total");
    long aantal = -1;
    if (p != std::string::npos) {
        size_t begin = tekst.rfind('\n', p);
        sscanf(tekst.c_str() + begin, "%*s %*s %*s %ld", &aantal);
    }
    return aantal;
}

void start() {
    std::vector<double> ms;
    DemoMap map;
    Opties o = demo_opties(map);
    o.klok.clear(); // without the clock library in between
    for (int i = 0; i < 31; i++) {
        auto argv = overgave(map);
        auto t0 = klok::now();
        Terminal t(argv, o);
        while (t.leeft() && t.scherm().find("Seizoen") == std::string::npos)
            t.kalm(5000);
        ms.push_back(ms_sinds(t0));
    }
    printf("%-52s %8.2f ms\n", "start to season prompt, exec and terminal included", mediaan(ms));

    auto argv = overgave(map);
    Terminal t(argv, o);
    t.kalm();
    std::vector<double> echo;
    for (int i = 0; i < 200; i++) {
        const char* toets = i % 2 ? "<Back>" : "7";
        std::string voor = t.scherm();
        auto t0 = klok::now();
        t.reeks(toets);
        t.kalm();
        echo.push_back(ms_sinds(t0));
    }
    printf("%-52s %8.2f ms\n", "a key to its echo", mediaan(echo));
}

// A terminal that goes away: until the program has ended and let go of everything. Wherever it stands: a field, a list,
// an order that is being changed.
void ophangen() {
    std::vector<double> ms;
    DemoMap map;
    Opties o = demo_opties(map);
    o.klok.clear();
    for (int i = 0; i < 21; i++) {
        Terminal t(overgave(map), o);
        t.kalm();
        t.toetsen(i % 3 == 0 ? "" : i % 3 == 1 ? "<Enter><Enter><F5>" : "<Enter><Enter>12<Enter><Enter>WOO");
        auto t0 = klok::now();
        t.hangop();
        t.einde();
        ms.push_back(ms_sinds(t0));
    }
    printf("%-52s %8.2f ms, at most %.2f\n", "hang-up to the program's end", mediaan(ms),
           *std::max_element(ms.begin(), ms.end()));
}

enum Stappen { MAAK, OPEN, ALLES };

// Nine rounds of as much as `tot` says; the medians are printed when `toon`.
void commit(Stappen tot, bool toon) {
    TijdelijkeMap map;
    std::filesystem::create_directory("2016Z");
    firma.filialen = 5;
    seizoensmap = "2016Z", gekozen_leverancier = 12, gekozen_jaar = 2016, gekozen_letter = 'Z';
    const char* pad = "2016Z/ORD0012.JRN";
    std::vector<double> ms_open, ms_dicht;
    for (int i = 0; i < RONDEN; i++) {
        meting::maak_journaal(pad, 10 << 20, 1000);
        if (tot == MAAK)
            continue;
        journaal = ord_open_jrn("2016Z", 12, O_RDWR);
        ord_eerste_order(journaal);
        int32_t grootste = 0, vorige = 0;
        do {
            if (journaal->offset - vorige > 100000)
                break;
            vorige = journaal->offset;
        } while (ord_volgende_order(journaal));
        grootste = vorige;
        journaal->offset = grootste;
        ord_lees(journaal, 'R');
        auto t0 = klok::now();
        wrk_open();
        ms_open.push_back(ms_sinds(t0));
        if (tot == OPEN) {
            ord_sluit(werk);
            ord_sluit(journaal);
            werk = journaal = nullptr;
            continue;
        }
        memcpy(kop.omschrijving, "gewijzigd", 9);
        werk->offset = 0, werk->tag = 'O';
        ord_schrijf(werk);
        t0 = klok::now();
        wrk_sluit();
        ms_dicht.push_back(ms_sinds(t0));
        if (journaal)
            ord_sluit(journaal);
        journaal = nullptr;
    }
    if (toon) {
        printf("%-52s %8.2f ms\n", "open an order of 1,000 lines", mediaan(ms_open));
        printf("%-52s %8.2f ms\n", "commit it into a journal of 10 MB", mediaan(ms_dicht));
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) { // by itself, to count its system calls
        commit(strcmp(argv[1], "make") == 0 ? MAAK : strcmp(argv[1], "open") == 0 ? OPEN : ALLES, false);
        return 0;
    }
    start();
    ophangen();
    commit(ALLES, true);
    const std::string zelf = std::filesystem::read_symlink("/proc/self/exe");
    const long maak = telsys(zelf + " make"), open = telsys(zelf + " open"), alles = telsys(zelf + " all");
    if (maak < 0 || open < 0 || alles < 0)
        return 0; // no strace here
    printf("%-52s %8ld calls\n", "walk to that order in the journal and open it", (open - maak) / RONDEN);
    printf("%-52s %8ld calls\n", "commit it", (alles - open) / RONDEN);
    DemoMap map;
    std::string start_regel =
        "sh -c 'cd " + map.pad() + " && TERM=xterm TERMINFO_DIRS=\"" ZG_BINARY_DIR "/terminfo\" exec";
    for (const std::string& a : overgave(map))
        start_regel += " \"" + a + "\"";
    printf("%-52s %8ld calls\n", "start to season prompt, and the end",
           telsys(start_regel + " < /dev/null'"));
    return 0;
}
