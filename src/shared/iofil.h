// Module iofil: DTFILGEG.TXT, the branches. The firm's head office is record 0, the branch with index i is
// record i + 1. An index (from 0) is what files hold, a branch number what users see.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace zg {

inline constexpr int FILIALEN = 250; // most branches of a firm

struct [[gnu::packed]] filiaalrec {
    char naam[30]; // in clear in memory, scrambled on file
    char inhoud[569];
    uint8_t nummer;
    char vrij600[12];
};
static_assert(sizeof(filiaalrec) == 612 && offsetof(filiaalrec, nummer) == 599);

// 'O' open (OPENFAIL when it can't), 'C' close, 'R' read, 'W' write. The index may be the number of branches
// (firma.filialen): the head office, whose name comes from system record 1. Above that INTERNAL 1; a read or
// write on the closed file INTERNAL 2. Other letters answer 0, and so does a refused write,
// which has been told and leaves the record as it was. What the file lacks reads as zeros.
int iofil(char letter, int index, filiaalrec* rec);
// Index of a branch number. 0 when no branch has it.
int iofil_index(uint8_t nummer, int* index);
uint8_t iofil_nummer(int index);   // 0 when there is no such branch
std::string iofil_naam(int index); // trimmed; empty when there is no such branch

} // namespace zg
