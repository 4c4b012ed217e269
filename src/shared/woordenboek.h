// The data dictionary: number, record length and keys of every indexed file of the package, and what follows from
// it: making an empty pair, comparing a pair with what it should be, checking and repairing it. The rows stand in
// shared/woordenboek.def. Failures are answers; showing them is the caller's.
#pragma once
#include <cstdint>
#include <vector>

namespace zg {

struct ICB;

struct [[gnu::packed]] DDDEEL {
    char type;        // 'I', 'C', 0 ends the list
    uint8_t van, tot; // record positions from 1, inclusive
};
struct [[gnu::packed]] DDRIJ {
    uint8_t bestandnr; // above 249: the end row
    uint8_t keys;
    int16_t reclen;
    uint8_t keynr, dups;
    DDDEEL delen[10];
};
static_assert(sizeof(DDRIJ) == 36);

inline constexpr int DDEINDE = 250;

// All rows, ended by the end row; by file, then key number.
extern const DDRIJ* const DDRIJEN;

// Title into a buffer of at least 19 bytes; empty for a file that has none. Answers the buffer.
char* DDTITLE(int bestandnr, char* buffer);
// The row of a key; 0, and the end row, when there is none.
int DDROW(int bestandnr, int keynr, DDRIJ* rij);
// Number of the file whose pair goes by this name ("DTSER", a directory in front is allowed); 0 when the
// dictionary knows no such name.
int DDNUMMER(const char* naam);

// Record length that fits a data file of so many bytes: the dictionary's, or that of a former maker when only this
// divides them. 0 for an unknown number.
int DDRECLEN(int bestandnr, int64_t databytes);
// All record lengths that serve for a file, the dictionary's first.
std::vector<int> DDRECLENGTES(int bestandnr);

// Give a fresh handle the title, record length (the dictionary's for 0) and keys of a file; `naam` serves for a title
// that is missing. Answers the number of keys, 0 for an unknown number.
int DDDEFINIEER(ICB* icb, int bestandnr, const char* naam, int reclen = 0);
int DDCREATE(int bestandnr, const char* naam, int reclen = 0); // an empty index; number of keys, or 0
int DDCREATETXT(const char* naam);          // an empty data file when there is none; 1 or 0
int DDNEW(int bestandnr, const char* naam); // both

// Header on disk against the dictionary: 0 the same, else the first difference.
enum DDverschil {
    DD_GELIJK = 0,
    DD_ONLEESBAAR = 1, // no header to be read, or an unknown file number
    DD_RECLEN = 2,
    DD_KEYS = 3,
    DD_SLEUTEL = 100 // 100 * key number: the duplicates flag; + 1 to 10: that part
};
int DDCOMPARE(int bestandnr, const char* naam);
int DDCOMPARE(int bestandnr, const struct IXHEADER& h);

enum DDfout { DDF_GEEN = 0, DDF_INDEX = 1, DDF_DATA = 2, DDF_VERSCHIL = 3, DDF_LEEG = 4, DDF_STUK = 5 };
struct DDRAPPORT {
    int repair;                // in: may the pair be repaired?
    int fout;                  // DDfout
    int code;                  // of DDCOMPARE, with DDF_VERSCHIL
    int indexnieuw, datanieuw; // 1 when made just now
    int herbouwd;              // 1 when the index was made again from the data
};
// 1 when the pair is sound, perhaps after repair; else 0 and the reason in the report.
int DDCHECK(int bestandnr, const char* naam, DDRAPPORT* rapport);

} // namespace zg
