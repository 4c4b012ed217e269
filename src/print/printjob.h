// The open job of the print layer, and its way out. Between the files of this folder.
#pragma once
#include "print/xprt.h"
#include <cstdio>
#include <string>

namespace zg {

enum class Printweg { geen, wachtrij, apparaat, map, aux, terminal, bestand };

struct printjob {
    bool open;
    bool voorbeeld; // preview first
    Printweg weg;
    int rijen, kolommen; // a page; 0 or 9999 rows: no pages
    int blad;            // pages started
    int regel;           // on the page; 10000 behind the opening
    int64_t begin;       // place in the spool file behind the init text
    std::string init, exit;
    std::string apparaat; // queue, path, or directory
    std::string tekens;   // how it leaves: "cp850", "utf-8", "latin1", "ascii", "pdf"
    bool staand;
    std::string spool; // name of the spool file
    std::string titel;
    FILE* bestand;
    int kopieen;
};
extern printjob printopdracht;

// Is the destination there, so far as can be seen without opening it? A queue that lpstat doesn't know within 5 s, a device
// that isn't one, a path into the data directory: false.
bool prt_bestaat(Printweg weg, const std::string& apparaat);
// Hand the closed spool file to zgspoel, or to the terminal itself. False: told, the file stays with its reason.
bool prt_verzend(const printjob& job);
// Jobs that couldn't be sent since the last call: told, once. For the prompts of a program.
void prt_meld_mislukt();

// The preview of the closed spool file: copies to be printed, 0 for none.
int PRT_SCR(const printjob& job);

// Lines of code page 850 in a file, with form feeds, as a PDF: A4, exactly so many rows and columns. False with errno.
bool prt_pdf(const char* van, const char* naar, int rijen, int kolommen, bool staand,
             const std::string& titel);
// Bytes of code page 850 in another character set; what it hasn't got is its base letter or "?".
std::string prt_omzet(const std::string& bytes, const std::string& tekens);

} // namespace zg
