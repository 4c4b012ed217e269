// The fewest bytes that bring a terminal from one picture to the next, reckoned from an emulator's cells: for each
// run of changed cells the shortest cursor move that the terminal has, the attribute changes, the characters.
// Nothing of the program's own drawing is used here.
#pragma once
#include "support/terminal.h"
#include <string>
#include <vector>

namespace ideaal {

struct Beeld {
    int rijen = 0, kolommen = 0;
    std::vector<zg::test::Cel> cellen;
    int rij = 0, kolom = 0; // cursor, from 0
    bool cursor = true;
    const zg::test::Cel& cel(int r, int k) const { return cellen[static_cast<size_t>(r * kolommen + k)]; }
};

// The picture now. `uitvoer`: all bytes so far, which tell whether the cursor is shown.
Beeld neem(zg::test::Terminal& t, const std::string& uitvoer, int rijen = 25, int kolommen = 80);

struct Moves {
    bool hpa = true, vpa = true; // the description has them
};
struct Pen {
    bool bekend = false;
    zg::test::Cel als; // attributes that the terminal is at
};

// Bytes from one picture to the next; `pen` goes along from step to step.
size_t bytes(const Beeld& van, const Beeld& naar, Pen* pen, const Moves& moves = {});

} // namespace ideaal
