// Module edihdl: the mailboxes, a tree of directories in which programs leave messages for the transfer program and find
// those that it brought; and what a message says, held against the package's own data. Texts are code page 850.
#pragma once
#include "shared/sysrec.h"
#include <cstdint>
#include <string>

namespace zg {

struct ICB;

enum Edisoort : int {
    EDI_ORDER,
    EDI_ADMORD,
    EDI_PRICAT,
    EDI_SLSRPT,
    EDI_INVRPT,
    EDI_IBIS,
    EDI_DESADV,
    EDI_SLSMON,
    EDI_IN,
    EDI_UIT,
    EDI_ONGELDIG,
    EDI_SOORTEN,
    EDI_BEWAART = EDI_SLSMON // up to here they have a save directory
};

// By kind of message; another number has no name. Where there is no save directory edisavepath is empty.
const char* edidirname(int soort);
const char* ediext(int soort); // ".PRI", empty for none
std::string edipattern(int soort);
// The root as it is set. Where none is, `zebedi` in the present directory is made and set; empty when that can't be
// done, or without a settings file. A root that isn't there stays set, and is told once.
std::string ediroot();
// The files in EDIDIR that tell where the mailbox of a kind is, and the one with the last file number.
struct Edilocatie {
    const char* bestand;
    Edisoort soort;
};
inline constexpr Edilocatie EDILOCATIES[] = {{"LOC_PRI.GBL", EDI_PRICAT},
                                             {"LOC_ORD.GBL", EDI_ADMORD},
                                             {"LOC_INV.GBL", EDI_INVRPT},
                                             {"LOC_SLS.GBL", EDI_SLSRPT}};
inline constexpr char EDIFILENR[] = "FILENR.GBL";
// What one holds, for that root: the mailbox with a "/", blanks to 100 columns, a line feed.
std::string edilocatie(const std::string& root, int soort);
std::string edipath(int soort); // at most 80 characters; empty without a root
std::string edisavepath(int soort);

// All answer 1 or 0, what failed has been told.
// The root and all directories in it, also those that are there: 1 when all are in the end.
int edimaketree();
// EDIDIR and the four location files in it.
int edimakeloc();
// Everything in one root into another, directory by directory; a link goes as a link. Nothing is overwritten, and
// nothing moved at all while the new place of anything is taken. A target inside the source is refused, and the data
// directory as the source. The source's directories stay, empty. Run again after a kill it goes on where it was.
int edimovetree(const char* van, const char* naar);
// The directories of a tree without files. 0 when there is a file in it; what has been taken away by then stays away.
int ediremovedir(const char* map);
// The root set to another, with all mailboxes, and everything moved there first; the setting is changed last, that of the
// location files with it where they lie in the old root. Refused: a new root that has other things in it but no mailbox.
int edi_verplaats(const char* naar);
// Last file number in EDIDIR, 0 for none.
int32_t edifilenr();

// Who has a file of the transfer locked, in words.
std::string edi_bezet(int fd, int64_t start, int64_t lengte);

// EDI is switched on, and a relation's code says that it takes part: by form 2, by form 3, by either.
bool isedi2(uint8_t code);
bool isedi3(uint8_t code);
bool isedi(uint8_t code);

// A date of a message, YYMMDD or YYYYMMDD (what follows doesn't count): 1, and in `uit` (9 bytes) the day first, of 8
// digits, or of 6 where those 8 are no date; else 0.
int edidatum(const char* tekst, char* uit);
// A number with a point or comma loses the zeros at its end, and the point with its last decimal.
void edigetal(char* tekst);
// A bar code in its form here, in place (14 bytes): 1, or 0 for a wrong one and an internal one; the text is as it was then.
int ediean(char* tekst);
// The brand whose name this is, cut at so many bytes, letters in either case; 0 for none and for several. The handle's key is put back.
uint16_t edimerk(ICB* dtmerk, const char* naam, int breedte);
// A row of the list of delivery terms by supplier: order, supplier and its name, first and last date, pieces.
std::string edi_termregel(int32_t order, uint16_t leverancier, const char* naam, uint16_t eerste,
                          uint16_t laatste, int stuks);

} // namespace zg
