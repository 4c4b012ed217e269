// The print layer as reports see it: a report is opened, written a field at a time with printf-like calls, and closed;
// closing hands it to its destination. Lines and pages are counted here. Formats are the program's own; texts out of
// files go in as arguments, and their control bytes print as blanks.
//
// A line has two buffers: a number that is wider than its format moves to the left so that its right edge stays in the
// column, and where there is no room it drops to the second line of the pair (zigzag).
#pragma once
#include <cstdint>
#include <string>

namespace zg {

// What a report asks for: the 4 bytes of a user's slot.
struct [[gnu::packed]] printwens {
    uint16_t code;      // printer, 0 for none
    uint8_t vlaggen;    // PRT_VOORBEELD, PRT_BESTAND
    uint8_t verbinding; // 0: the printer's first
};
static_assert(sizeof(printwens) == 4);
enum Printvlag : uint8_t { PRT_VOORBEELD = 1, PRT_BESTAND = 2 };

// Widths and lengths of page that a report can do with, added together; 65535 takes all.
enum Printmasker : uint16_t {
    PRT_40 = 1,
    PRT_80 = 2,
    PRT_132 = 4,
    PRT_LANG = 16,
    PRT_KORT = 32,
    PRT_ALLES = 65535
};

// Open a job: find or ask the destination, make the spool file, send the init text. 1: open. 0: a box has said why.
// `titel` names the job in a queue; `bestand` is the file for PRT_BESTAND (as it was typed; a PDF when it ends in ".pdf"),
// else null. A second job stops with the report (1, 199). A code of 0 without PRT_BESTAND is a preview.
int XPRT_OPEN(const printwens& wens, uint16_t masker, const char* bestand, const char* titel);
// Close it: what is left is flushed, and the report goes where it should, or nowhere when it is empty. 1: handed over,
// printed to its file, or refused in the preview; 0: something went wrong, which was told; the report is kept then, if it is
// whole. What goes wrong behind a hand-over is told by prt_meld_mislukt. Without an open job the report (1, 200).
int XPRT_CLOSE();
std::string XPRT_BESTAND(); // path of the file that the last report to one went to, to be shown
void XPRT_STAAK();          // give the job up: nothing is sent, nothing is left
// Jobs that couldn't be sent since the last call: told, once. For the prompts of a program.
void prt_meld_mislukt();

void XPRT_PRINT(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
void XPRT_REGEL();                    // the line now; nothing on an empty one
void XPRT_BLAD();                     // the line, then a new page
void XPRT_HERHAAL(int n, char teken); // n times a character
void XPRT_WIS();                      // drop the line
// The head of a page: left, the formatted text in the middle, date, time and page at the right; on a new page.
void XPRT_KOP(const char* links, const char* fmt, ...) __attribute__((format(printf, 2, 3)));
void XPRT_NL(); // line feed, and the left margin
void XPRT_FF(); // next page, top margin
void XPRT_MARGE(int boven, int links);
void XPRT_RAW(const char* fmt, ...) __attribute__((format(printf, 1, 2))); // past the line
void XPRT_BEDRAG(int64_t bedrag, int breedte);                             // home currency
void XPRT_BEDRAGIN(const char* valuta, int64_t bedrag, int breedte);
// Text of capability 1 to 19 of the job's configuration, escapes expanded (18 init, 19 exit), to be sent by XPRT_BYTES. Empty
// when there is none.
std::string XPRT_CODE(int n);
void XPRT_BYTES(const std::string& bytes);
// The user wants out (ESC): the report stops where it is. Poll it in the loop over lines.
bool XPRT_STOP();
bool XPRT_VOL(int regels = 1); // no room for so many lines on the page, or none has begun: time for a head
int XPRT_KOLOMMEN();
int XPRT_RIJEN(); // lines a page, 0 for no pages

// May CANCEL and ESC leave the list of destinations? On by default; the order program switches it off.
void XPRT_LIJSTUIT(bool mag);
// What a wish and a mask mean for the program's user: of his slot, with a preview when no printer is named.
printwens XPRT_WENS();
uint16_t XPRT_MASKER();

} // namespace zg
