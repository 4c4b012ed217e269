// What a buyer's terminal gets: for each step of a walk through the program the bytes sent, the fewest that would
// do (bench/ideaal.h), and the time from the key to the last byte of its answer, beside `cat` sending the same
// bytes back over a pty of the same kind. usage: bench_scherm [TERM]; status 1 when all steps together take more
// than 1.3 times the ideal.
#include "bench/ideaal.h"
#include "support/demomap.h"
#include "support/toetsreeksen.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>

using namespace zg::test;

namespace {

using klok = std::chrono::steady_clock;

constexpr double GRENS = 1.3;
constexpr int RONDEN = 7;
constexpr double STIL_US = 3000;

struct Stap {
    const char* naam;
    const char* toetsen; // sent at once
};

// From the hand-over by the menu to the menu and back: every kind of screen that stands.
const Stap STAPPEN[] = {
    {"take the year", "<Enter>"},
    {"take the season", "<Enter>"},
    {"field: a digit", "1"},
    {"field: another digit", "2"},
    {"supplier entered, its orders in a list", "<Enter>"},
    {"list: one down", "<Down>"},
    {"list: one up", "<Up>"},
    {"open an order", "<Enter>"},
    {"order: there is no next line", "<Down>"},
    {"choice: change", "W"},
    {"order header", "O"},
    {"header: description", "O"},
    {"header: a letter", "Z"},
    {"header: ten letters in a burst", "omer bont "},
    {"header: enter", "<Enter>"},
    {"header: discount", "G"},
    {"header: a refused letter", "x"},
    {"header: out of the field", "<Esc>"},
    {"header: texts", "L"},
    {"texts: a letter", "s"},
    {"texts: ten letters in a burst", "poed graag"},
    {"texts: out", "<Esc>"},
    {"back to the lines", "<Esc>"},
    {"delete a line?", "V"},
    {"no", "<Esc>"},
    {"out of the order", "<Esc>"},
    {"the same season", "<Enter><Enter>"},
    {"a list of suppliers", "<F5>"},
    {"list: a page down", "<PgDn>"},
    {"list: search", "13"},
    {"list: found", "<Enter>"},
    {"take the supplier", "<F3>"},
    {"open its order", "<Enter>"},
    {"order: one line down", "<Down>"},
    {"order: two more in a burst", "<Down><Down>"},
    {"order: one line up", "<Up>"},
    {"out of the order again", "<Esc>"},
    {"season: help", "<F1>"},
    {"help: away", "<Enter>"},
    {"hand-over to the menu", "<Esc>"},
    {"and back", "<Enter>"},
};

double us_sinds(klok::time_point t) {
    return std::chrono::duration<double, std::micro>(klok::now() - t).count();
}

// Send bytes; the time until `tot` bytes in all have come back.
double wacht_op_bytes(Terminal& t, size_t tot, klok::time_point begin) {
    while (t.uitvoer().size() < tot && us_sinds(begin) < 5e6)
        ;
    return us_sinds(begin);
}

// The fastest of the rounds: what else the machine does is not the question here.
double beste(const std::vector<double>& v) {
    return *std::min_element(v.begin(), v.end());
}

// The same bytes through cat, all at once; long steps in pieces that fit the line's buffer.
double met_cat(Terminal& cat, size_t n) {
    std::vector<double> us;
    for (int i = 0; i < RONDEN; i++) {
        const size_t tot = cat.uitvoer().size() + n;
        const auto begin = klok::now();
        for (size_t rest = n; rest > 0;) {
            const size_t stuk = std::min<size_t>(rest, 2048);
            cat.stuur(std::string(stuk, 'x'));
            rest -= stuk;
            wacht_op_bytes(cat, tot - rest, begin);
        }
        us.push_back(us_sinds(begin));
    }
    return beste(us);
}

// One walk: the bytes, the fewest that would do, and the time of each step.
struct Meting {
    size_t bytes, ideaal;
    double us;
};

std::vector<Meting> loop(const Opties& o, const std::vector<std::string>& argv) {
    const bool vt = o.term.compare(0, 2, "vt") == 0;
    const ideaal::Moves moves{!vt, !vt};
    Terminal t(argv, o);
    t.wacht("Seizoen");
    t.kalm();
    std::vector<Meting> uit;
    ideaal::Pen pen;
    size_t tot = t.uitvoer().size();
    ideaal::Beeld voor = ideaal::neem(t, t.uitvoer());
    for (const Stap& s : STAPPEN) {
        std::string toetsen;
        for (const std::string& toets : toetsreeksen(o.term, s.toetsen))
            toetsen += toets;
        const auto begin = klok::now();
        t.stuur(toetsen);
        // The last byte is what counts; that it was the last is known once the program waits for a key again.
        double us = 0, stil = us_sinds(begin);
        size_t n = tot;
        while (us_sinds(begin) < 5e6) {
            if (const size_t nu = t.uitvoer().size(); nu != n)
                n = nu, us = stil = us_sinds(begin);
            else if (us_sinds(begin) - stil > STIL_US && t.kalm(0) && t.uitvoer().size() == n)
                break;
        }
        const ideaal::Beeld na = ideaal::neem(t, t.uitvoer());
        uit.push_back({n - tot, ideaal::bytes(voor, na, &pen, moves), us});
        tot = n;
        voor = na;
    }
    return uit;
}

} // namespace

int main(int argc, char** argv) {
    DemoMap map;
    Opties o = demo_opties(map);
    if (argc > 1)
        o.term = argv[1];
    std::vector<std::vector<Meting>> rondes;
    for (int i = 0; i < RONDEN; i++)
        rondes.push_back(loop(o, overgave(map)));
    Terminal cat({"sh", "-c", "stty raw -echo; echo; exec cat"}, o);
    while (cat.uitvoer().empty())
        ;
    printf("%-42s %7s %7s %6s %9s %9s %6s\n", o.term.c_str(), "bytes", "ideal", "x", "echo us", "cat us",
           "x");
    size_t som = 0, som_ideaal = 0;
    for (size_t i = 0; i < std::size(STAPPEN); i++) {
        std::vector<double> us;
        for (const auto& ronde : rondes)
            us.push_back(ronde[i].us);
        const Meting& m = rondes[0][i];
        const double naast = m.bytes > 0 ? met_cat(cat, m.bytes) : 0;
        printf("%-42s %7zu %7zu %6.2f %9.0f %9.0f %6.1f\n", STAPPEN[i].naam, m.bytes, m.ideaal,
               static_cast<double>(m.bytes) / static_cast<double>(std::max<size_t>(m.ideaal, 1)), beste(us),
               naast, naast > 0 ? beste(us) / naast : 0);
        som += m.bytes, som_ideaal += m.ideaal;
    }
    const double verhouding = static_cast<double>(som) / static_cast<double>(som_ideaal);
    printf("%-42s %7zu %7zu %6.2f\n", "all steps", som, som_ideaal, verhouding);
    return verhouding > GRENS;
}
