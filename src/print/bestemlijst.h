// Which destinations will do for a report, and the list to choose from. Between the files of this folder.
#pragma once
#include "print/printtabel.h"
#include "print/xprt.h"

namespace zg {

// One way to print: a printer, how it is reached, how it is set up.
struct Bestemming {
    prtrec printer;
    prtverbinding verbinding;
    prtconfig config;
};

// Does the width of a configuration do, and its rows? The screen has rows enough for any report.
bool prt_past(const prtconfig& config, uint16_t masker);
int prt_breedste(uint16_t masker); // 132, 80 or 40; 132 when it names none
// Every connection of every printer with every configuration that will do, by printer, connection, configuration.
std::vector<Bestemming> prt_bestemmingen(const printtabellen& t, uint16_t masker);
std::string prt_lijstregel(const Bestemming& b);

// Open a job on this one: nothing is searched, asked or looked at first. Answers as XPRT_OPEN.
int prt_open_op(const Bestemming& b, const printtabellen& t, int kopieen, const char* titel);

// Let the user choose: index, -1 when the list was left without. CANCEL and ESC leave it while XPRT_LIJSTUIT says so.
int XPRT_KIES(const std::vector<Bestemming>& rijen);
// The menu of widths: 40, 80 or 132.
int XPRT_BREEDTE(uint16_t masker);

} // namespace zg
