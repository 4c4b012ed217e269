// The print destinations: four tables in the print directory (ZEBPRT), made with the screen as their first printer when
// they aren't there. Record layouts, reading, and what a control text means.
#pragma once
#include <cstdint>
#include <string>

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

// Open tables, null when closed.
struct printtabellen {
    ICB *printers, *verbindingen, *configs, *codes;
};
// Open them for reading (0) or writing (2), made or rebuilt where they are missing. False: told in a box, none is open.
bool prt_open(printtabellen* t, int modus);
void prt_sluit(printtabellen* t);
// The path of a file in the print directory; the box about ZEBPRT comes once a run.
std::string XPRT_PAD(const char* naam);

// A control text with its escapes ("\1B", two hex digits; "\\") as bytes; its length counts, NUL bytes are bytes.
std::string prt_bytes(const char* tekst, size_t n);

} // namespace zg
