// The bytes of attributes, colours and cursor moves, always the fewest that the terminal's description allows.
// Attributes stay as they are between two pictures: what comes next mostly wants the same ones.
#include "term/uitvoer.h"
#include "term/binnen.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

namespace zg {
namespace {

struct Soort {
    uint8_t bit;
    const char* aan;    // capability
    const char* uit;    // ECMA-48 counterpart
    const char* anders; // another capability when the first is missing
};
constexpr Soort SOORTEN[] = {
    {E_VET, "bold", "\033[22m", ""},     {E_DIM, "dim", "\033[22m", ""},
    {E_KEUS, "rev", "\033[27m", "smso"}, {E_KNIPPER, "blink", "\033[25m", ""},
    {E_STREEP, "smul", "\033[24m", ""},
};
constexpr int KLEUREN = 8;

struct Terminal {
    std::string aan[std::size(SOORTEN)];
    std::string voor[KLEUREN], achter[KLEUREN];
    std::string gewoon; // attributes and colours off
    bool ecma;          // single attributes can be taken off again
    uint8_t kan;        // attributes that it has
    std::string lijn_aan, lijn_uit;
    char lijn[128]; // line drawing characters by their letter
    std::string cup, hpa, vpa, cub, cuf, cud, cuu, cuf1, cuu1, home, wis, toon, verberg;
    bool bs, cr;
    bool omlaag, omlaag_cr; // a line feed goes down; and to column 0 as well
} t;

bool is_sgr(const std::string& s) {
    return s.size() >= 3 && s.compare(0, 2, "\033[") == 0 && s.back() == 'm' &&
           s.find_first_not_of("0123456789;:", 2) == s.size() - 1;
}

// Two SGR commands behind each other are one.
void voeg(std::string& uit, const std::string& stuk) {
    const size_t begin = uit.rfind('\033');
    if (stuk.empty() || begin == std::string::npos || !is_sgr(stuk) || !is_sgr(uit.substr(begin))) {
        uit += stuk;
        return;
    }
    uit.pop_back();
    if (uit.back() == '[')
        uit += '0';
    uit += ';';
    uit.append(stuk, 2);
}

const std::string& kleur(const std::string (&rij)[KLEUREN], int nr) {
    static const std::string geen;
    return nr >= 0 && nr < KLEUREN ? rij[nr] : geen;
}

// From nothing to a style.
std::string geheel(const Stijl& naar) {
    std::string s = t.gewoon;
    for (size_t i = 0; i < std::size(SOORTEN); i++)
        if (naar.eigenschappen & SOORTEN[i].bit)
            voeg(s, t.aan[i]);
    voeg(s, kleur(t.voor, naar.voor));
    voeg(s, kleur(t.achter, naar.achter));
    return s;
}

std::string verschil(const Stijl& van, const Stijl& naar) {
    std::string s;
    uint8_t weg = van.eigenschappen & static_cast<uint8_t>(~naar.eigenschappen & ~E_LIJN);
    uint8_t erbij = naar.eigenschappen & static_cast<uint8_t>(~van.eigenschappen);
    if (weg & (E_VET | E_DIM)) { // one command takes off both
        weg |= E_DIM, weg &= static_cast<uint8_t>(~E_VET);
        erbij |= naar.eigenschappen & (E_VET | E_DIM);
    }
    for (const Soort& soort : SOORTEN)
        if (weg & soort.bit)
            voeg(s, soort.uit);
    for (size_t i = 0; i < std::size(SOORTEN); i++)
        if (erbij & SOORTEN[i].bit)
            voeg(s, t.aan[i]);
    if (naar.voor != van.voor)
        voeg(s, kleur(t.voor, naar.voor));
    if (naar.achter != van.achter)
        voeg(s, kleur(t.achter, naar.achter));
    return s;
}

void stijl(std::string& uit, Stand& s, const Stijl& naar) {
    if (s.stijl_bekend && s.stijl == naar)
        return;
    std::string bytes = geheel(naar);
    const bool eigen_kleur = (naar.voor < 0 && s.stijl.voor >= 0) || (naar.achter < 0 && s.stijl.achter >= 0);
    const bool weg = s.stijl.eigenschappen & ~naar.eigenschappen & ~E_LIJN;
    if (s.stijl_bekend && !eigen_kleur && (t.ecma || !weg)) {
        std::string kort = verschil(s.stijl, naar);
        if (kort.size() < bytes.size())
            bytes.swap(kort);
    }
    const bool lijn = naar.eigenschappen & E_LIJN;
    if (!s.stijl_bekend || lijn != ((s.stijl.eigenschappen & E_LIJN) != 0))
        bytes += lijn ? t.lijn_aan : t.lijn_uit;
    uit += bytes;
    s.stijl = naar;
    s.stijl_bekend = true;
}

// Of a blank only the ground shows, unless the attributes change that too.
bool zelfde_grond(const Stijl& a, const Stijl& b) {
    return a.achter == b.achter && !((a.eigenschappen | b.eigenschappen) & (E_KEUS | E_STREEP | E_KNIPPER));
}

bool leeg(const Cel& c) {
    return c.teken == L' ' && !(c.stijl.eigenschappen & E_LIJN);
}

bool zo_te_schrijven(const Stand& s, const Cel& c) {
    return s.stijl_bekend && (c.stijl == s.stijl || (leeg(c) && !(s.stijl.eigenschappen & E_LIJN) &&
                                                     zelfde_grond(c.stijl, s.stijl)));
}

void teken(std::string& uit, const Cel& c) {
    if (c.stijl.eigenschappen & E_LIJN)
        uit += t.lijn[c.teken & 0x7F];
    else
        TEKENUIT(uit, c.teken);
}

std::string param(const std::string& s, int a, int b = 0) {
    return s.empty() ? std::string() : tiparm(s.c_str(), a, b);
}

void beste(std::string& wat, const std::string& met, bool eerste = false) {
    if (!met.empty() && (eerste || wat.empty() || met.size() < wat.size()))
        wat = met;
}

std::string maal(const std::string& s, int n) {
    std::string uit;
    for (int i = 0; i < n; i++)
        uit += s;
    return uit;
}

// What stands between two columns of a row, to be written again: the cursor then stands behind it. Empty when
// something else stands there than the present attributes can write.
std::string herhaal(const Stand& s, int rij, int van, int tot) {
    std::string uit;
    for (int k = van; k < tot; k++) {
        const Cel& c = s.cel[rij][k];
        if (c.teken == 0 || !zo_te_schrijven(s, c))
            return {};
        teken(uit, c);
    }
    return uit;
}

constexpr int KORT = 6; // no way by single steps is the shortest beyond this

// Along a row, without its own start. van < 0: the column is not known.
bool langs(const Stand& s, int rij, int van, int naar, std::string* uit) {
    std::string best;
    if (van == naar) {
        uit->clear();
        return true;
    }
    beste(best, param(t.hpa, naar));
    if (van >= 0 && naar < van) {
        if (t.bs && van - naar <= KORT)
            beste(best, std::string(static_cast<size_t>(van - naar), '\b'));
        beste(best, param(t.cub, van - naar));
    }
    if (van >= 0 && naar > van) {
        if (naar - van <= 2 * KORT)
            beste(best, herhaal(s, rij, van, naar));
        if (naar - van <= 2)
            beste(best, maal(t.cuf1, naar - van));
        beste(best, param(t.cuf, naar - van));
    }
    *uit = best;
    return !best.empty();
}

// The same, or by the row's start.
bool opzij(const Stand& s, int rij, int van, int naar, std::string* uit) {
    bool weg = langs(s, rij, van, naar, uit);
    std::string rest;
    if (t.cr && van != 0 && langs(s, rij, 0, naar, &rest) && (!weg || rest.size() + 1 < uit->size())) {
        *uit = "\r" + rest;
        weg = true;
    }
    return weg;
}

} // namespace

std::string CAPACITEIT(const char* naam) {
    const char* s = tigetstr(naam);
    std::string uit;
    if (!s || s == reinterpret_cast<const char*>(-1))
        return uit;
    for (; *s; s++) {
        const char* eind = s[0] == '$' && s[1] == '<' ? strchr(s, '>') : nullptr;
        if (eind)
            s = eind;
        else
            uit += *s;
    }
    return uit;
}

void UITVOERLEER() {
    t = {};
    for (size_t i = 0; i < std::size(SOORTEN); i++) {
        t.aan[i] = CAPACITEIT(SOORTEN[i].aan);
        if (t.aan[i].empty() && *SOORTEN[i].anders)
            t.aan[i] = CAPACITEIT(SOORTEN[i].anders);
        if (!t.aan[i].empty())
            t.kan |= SOORTEN[i].bit;
    }
    if (has_colors()) {
        t.kan &= static_cast<uint8_t>(~E_STREEP); // a colour stands for it
        for (int i = 0; i < KLEUREN; i++) {
            t.voor[i] = param(CAPACITEIT("setaf"), i);
            t.achter[i] = param(CAPACITEIT("setab"), i);
        }
    }
    t.gewoon = CAPACITEIT("sgr0");
    if (t.gewoon.find("\033[m") != std::string::npos || t.gewoon.find("\033[0m") != std::string::npos)
        t.gewoon = "\033[m"; // the rest of it is about line drawing, which has its own strings
    t.ecma = CAPACITEIT("smul") == "\033[4m" && CAPACITEIT("rmul") == "\033[24m";
    t.lijn_aan = CAPACITEIT("smacs");
    t.lijn_uit = CAPACITEIT("rmacs");
    for (int i = 0; i < 128; i++)
        t.lijn[i] = static_cast<char>(i);
    std::string paren = CAPACITEIT("acsc");
    for (size_t i = 0; i + 1 < paren.size(); i += 2)
        t.lijn[paren[i] & 0x7F] = paren[i + 1];
    t.cup = CAPACITEIT("cup"), t.hpa = CAPACITEIT("hpa"), t.vpa = CAPACITEIT("vpa");
    t.cub = CAPACITEIT("cub"), t.cuf = CAPACITEIT("cuf"), t.cud = CAPACITEIT("cud");
    t.cuu = CAPACITEIT("cuu"), t.cuf1 = CAPACITEIT("cuf1"), t.cuu1 = CAPACITEIT("cuu1");
    t.home = CAPACITEIT("home"), t.wis = CAPACITEIT("clear");
    t.toon = CAPACITEIT("cnorm"), t.verberg = CAPACITEIT("civis");
    t.bs = CAPACITEIT("cub1") == "\b";
    t.cr = CAPACITEIT("cr") == "\r";
    termios modes{};
    const bool bekend = tcgetattr(STDOUT_FILENO, &modes) == 0;
    t.omlaag = bekend && CAPACITEIT("cud1") == "\n";
    t.omlaag_cr = (modes.c_oflag & OPOST) && (modes.c_oflag & ONLCR);
}

Stijl UITVOERKAN(const Stijl& stijl) {
    Stijl s = stijl;
    s.eigenschappen &= t.kan | E_LIJN;
    return s;
}

bool ZELFDEBEELD(const Cel& a, const Cel& b) {
    return a.teken == b.teken &&
           (a.stijl == b.stijl || (leeg(a) && leeg(b) && zelfde_grond(a.stijl, b.stijl)));
}

void UITVOERPLAATS(std::string& uit, Stand& s, int rij, int kolom, int kolommen) {
    if (s.rij == rij && s.kolom == kolom)
        return;
    const int van = s.kolom < kolommen ? s.kolom : -1; // behind the last column nobody knows where it stands
    std::string best = param(t.cup, rij, kolom), rest;
    if (rij == 0 && kolom == 0)
        beste(best, t.home);
    auto probeer = [&](const std::string& hoogte, int vanaf) {
        if ((s.rij == rij || !hoogte.empty()) && opzij(s, rij, vanaf, kolom, &rest))
            beste(best, hoogte + rest);
    };
    const int stap = rij - s.rij;
    if (s.rij >= 0) {
        if (stap == 0)
            probeer("", van);
        if (stap > 0) {
            if (t.omlaag && stap <= KORT)
                probeer(std::string(static_cast<size_t>(stap), '\n'), t.omlaag_cr ? 0 : van);
            probeer(param(t.cud, stap), van);
        }
        if (stap < 0) {
            if (-stap <= 2)
                probeer(maal(t.cuu1, -stap), van);
            probeer(param(t.cuu, -stap), van);
        }
        if (stap != 0)
            probeer(param(t.vpa, rij), van);
    }
    uit += best;
    s.rij = rij;
    s.kolom = kolom;
}

void UITVOERCEL(std::string& uit, Stand& s, const Cel& cel, int kolommen) {
    Cel zo = cel;
    if (zo_te_schrijven(s, cel))
        zo.stijl = s.stijl;
    else
        stijl(uit, s, cel.stijl);
    teken(uit, zo);
    s.cel[s.rij][s.kolom] = zo;
    s.kolom = std::min(s.kolom + 1, kolommen);
}

void UITVOERGEWOON(std::string& uit, Stand& s) {
    if (!s.stijl_bekend || s.stijl != Stijl{}) {
        s.stijl_bekend = false;
        stijl(uit, s, Stijl{});
    }
}

void UITVOERWIS(std::string& uit, Stand& s) {
    UITVOERGEWOON(uit, s);
    uit += t.wis;
    for (auto& rij : s.cel)
        for (Cel& c : rij)
            c = {L' ', {}};
    s.rij = s.kolom = 0;
}

void UITVOERCURSOR(std::string& uit, Stand& s, bool aan) {
    if (s.cursor == aan)
        return;
    uit += aan ? t.toon : t.verberg;
    s.cursor = aan;
}

void SCHRIJFUIT(const char* bytes, size_t n) {
    while (n > 0) {
        ssize_t gedaan = write(STDOUT_FILENO, bytes, n);
        if (gedaan >= 0) {
            bytes += gedaan;
            n -= static_cast<size_t>(gedaan);
        } else if (errno == EAGAIN) {
            pollfd p{STDOUT_FILENO, POLLOUT, 0};
            poll(&p, 1, 100);
        } else if (errno != EINTR) {
            return;
        }
        if (SEINEINDE())
            return;
    }
}

} // namespace zg
