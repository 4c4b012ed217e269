// The print destinations: four tables in the print directory (ZEBPRT), made with the screen as their first printer when
// they aren't there. Record layouts, reading, and what a control text means.
//
// They are read off their data files, all of it at once: a few hundred records, and a directory in which nobody may write,
// or an index that is broken, is no reason for a print job to end the program. Who changes them opens them as pairs.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

struct ICB;

inline constexpr int PRT_TEKST = 122; // bytes of a control text
inline constexpr int PRT_SCHERM = 1;  // code of the screen
inline constexpr int PRT_ZONDER_BLADEN = 9999;

struct [[gnu::packed]] prtrec { // TR_PTRG, key 1 code, 2 name
    uint16_t code;
    char vrij2[2];
    char naam[12];
};
struct [[gnu::packed]] prtverbinding { // TR_PTRC, key 1 code and number
    uint16_t code;
    uint8_t nummer;
    uint8_t map; // the device is a directory
    char apparaat[40];
    char naam[20];
};
struct [[gnu::packed]] prtconfig { // TR_PTRP, key 1 code and number, 2 by columns
    uint16_t code;
    uint8_t nummer;
    uint8_t staand;
    uint16_t kolommen, rijen;
    char omschrijving[32];
    char init[PRT_TEKST], exit[PRT_TEKST];
};
struct [[gnu::packed]] prtcode { // TR_PTRCA, key 1 code, configuration, capability
    uint16_t code;
    uint8_t config, nummer;
    char tekst[PRT_TEKST];
};
static_assert(sizeof(prtrec) == 16 && sizeof(prtverbinding) == 64 && sizeof(prtconfig) == 284 &&
              sizeof(prtcode) == 126);

enum Prttabel { PRT_PRINTERS, PRT_VERBINDINGEN, PRT_CONFIGS, PRT_CODES, PRT_TABELLEN };

// All records, in the order of key 1.
struct printtabellen {
    std::vector<prtrec> printers;
    std::vector<prtverbinding> verbindingen;
    std::vector<prtconfig> configs;
    std::vector<prtcode> codes;
};
// Make or repair the four where that is needed and possible, and read them. False: printers, connections or configurations
// can't be read; what could be is there. One without records is none of that.
bool prt_lees(printtabellen* t);
// One of them as a pair, shared (2) or exclusive (1), made and repaired first; null when that isn't possible, untold.
ICB* prt_open(Prttabel tabel, int modus);
// The path of a file in the print directory; the box about ZEBPRT comes once a run.
std::string XPRT_PAD(const char* naam);

// A control text as bytes: a "\" and two hex digits is that byte, NUL among them, "\\" a backslash, all else itself.
std::string prt_bytes(const char* tekst, size_t n);

// A box that waits for ENTER; lines on the error output without a screen.
void prt_box(const char* titel, const std::string& tekst);

} // namespace zg
