#include "bench/ideaal.h"
#include <algorithm>

namespace ideaal {

using zg::test::Cel;

namespace {

int cijfers(int n) {
    return n < 10 ? 1 : n < 100 ? 2 : 3;
}

bool zelfde_pen(const Cel& a, const Cel& b) {
    return a.vet == b.vet && a.keus == b.keus && a.streep == b.streep && a.knipper == b.knipper &&
           a.voor == b.voor && a.achter == b.achter;
}

// A blank shows its ground only.
bool kan_met(const Cel& cel, const Cel& pen) {
    return zelfde_pen(cel, pen) || (cel.teken == " " && cel.achter == pen.achter && !cel.keus && !pen.keus &&
                                    !cel.streep && !pen.streep && !cel.knipper && !pen.knipper);
}

bool zelfde(const Cel& a, const Cel& b) {
    return a.teken == b.teken && kan_met(a, b);
}

// Length of "ESC [ ... m" with these parameters, 0 for none.
int sgr(const std::vector<int>& p) {
    int n = p.empty() ? 0 : 2;
    for (int x : p)
        n += cijfers(x) + 1;
    return n;
}

void kleur(std::vector<int>* p, const Cel& naar, const Cel& van, bool vers) {
    if (naar.voor != van.voor || vers)
        if (naar.voor >= 0 || !vers)
            p->push_back(naar.voor < 0 ? 39 : 30 + naar.voor);
    if (naar.achter != van.achter || vers)
        if (naar.achter >= 0 || !vers)
            p->push_back(naar.achter < 0 ? 49 : 40 + naar.achter);
}

int penkosten(const Pen& van, const Cel& naar) {
    std::vector<int> geheel{0};
    const bool Cel::*eigen[] = {&Cel::vet, &Cel::keus, &Cel::streep, &Cel::knipper};
    const int aan[] = {1, 7, 4, 5}, uit[] = {22, 27, 24, 25};
    for (int i = 0; i < 4; i++)
        if (naar.*eigen[i])
            geheel.push_back(aan[i]);
    kleur(&geheel, naar, naar, true);
    int n = sgr(geheel);
    if (!van.bekend)
        return n;
    std::vector<int> anders;
    for (int i = 0; i < 4; i++)
        if (naar.*eigen[i] != van.als.*eigen[i])
            anders.push_back(naar.*eigen[i] ? aan[i] : uit[i]);
    kleur(&anders, naar, van.als, false);
    return std::min(n, sgr(anders));
}

struct Plek {
    int rij, kolom;
};

// The cursor from one place to another, what stands between written again where that is the shortest.
int weg(const Beeld& b, Plek van, Plek naar, const Pen& pen, const Moves& m) {
    if (van.rij == naar.rij && van.kolom == naar.kolom)
        return 0;
    int best = 4 + cijfers(naar.rij + 1) + cijfers(naar.kolom + 1);
    if (naar.rij == 0 && naar.kolom == 0)
        best = 3;
    auto langs = [&](int vanaf) {
        if (vanaf == naar.kolom)
            return 0;
        int n = 999;
        if (m.hpa)
            n = 3 + cijfers(naar.kolom + 1);
        if (vanaf >= b.kolommen)
            return n;
        const int stap = naar.kolom - vanaf;
        n = std::min(n, stap == 1 ? 3 : 3 + cijfers(std::abs(stap)));
        if (stap < 0)
            return std::min(n, -stap);
        int over = 0;
        for (int k = vanaf; k < naar.kolom && over < 999; k++)
            over += pen.bekend && kan_met(b.cel(naar.rij, k), pen.als)
                        ? static_cast<int>(b.cel(naar.rij, k).teken.size())
                        : 999;
        return std::min(n, over);
    };
    auto met = [&](int hoogte, int kolom) {
        best = std::min({best, hoogte + langs(kolom), hoogte + 1 + langs(0)});
    };
    const int stap = naar.rij - van.rij;
    if (stap == 0)
        met(0, van.kolom);
    if (stap > 0)
        met(stap, 0); // line feeds, which the terminal's line makes CR LF
    if (stap != 0) {
        met(std::abs(stap) == 1 ? 3 : 3 + cijfers(std::abs(stap)), van.kolom);
        if (m.vpa)
            met(3 + cijfers(naar.rij + 1), van.kolom);
    }
    return best;
}

} // namespace

Beeld neem(zg::test::Terminal& t, const std::string& uitvoer, int rijen, int kolommen) {
    Beeld b;
    b.rijen = rijen, b.kolommen = kolommen;
    for (int r = 1; r <= rijen; r++)
        for (int k = 1; k <= kolommen; k++)
            b.cellen.push_back(t.cel(r, k));
    b.rij = t.cursor_rij() - 1, b.kolom = t.cursor_kolom() - 1;
    const size_t aan = uitvoer.rfind("\033[?25h"), uit = uitvoer.rfind("\033[?25l");
    b.cursor = uit == std::string::npos || (aan != std::string::npos && aan > uit);
    return b;
}

size_t bytes(const Beeld& van, const Beeld& naar, Pen* pen, const Moves& moves) {
    Beeld nu = van; // filled in as it is drawn, for what may be written again
    Plek plek{van.rij, van.kolom};
    int n = 0;
    for (int r = 0; r < naar.rijen; r++)
        for (int k = 0; k < naar.kolommen; k++) {
            const Cel& cel = naar.cel(r, k);
            if (zelfde(cel, van.cel(r, k)))
                continue;
            n += weg(nu, plek, {r, k}, *pen, moves);
            if (!pen->bekend || !kan_met(cel, pen->als)) {
                n += penkosten(*pen, cel);
                *pen = {true, cel};
            }
            n += static_cast<int>(cel.teken.size());
            nu.cellen[static_cast<size_t>(r * nu.kolommen + k)] = cel;
            plek = {r, k + 1};
        }
    if (naar.cursor)
        n += weg(nu, plek, {naar.rij, naar.kolom}, *pen, moves);
    if (naar.cursor != van.cursor)
        n += 6;
    return static_cast<size_t>(n);
}

} // namespace ideaal
