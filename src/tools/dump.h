// The text form of a pair, as CSV or as JSON lines: a head line with the definition, then one line a record
// slot, free slots with their link included, so that a load gives the data file back byte for byte.
//
// CSV:  #ixdump,1,NAME,title,reclen,freehead,key text,...     JSON: {"ixdump":1,"name":...,"keys":[...]}
//       nr,vrij,field,...                                           {"nr":0,"field":value,...}
//       0,,value,...                                                {"nr":1,"vrij":-1}
// A reader takes CSV without the head line too (from a spreadsheet), and then without nr and vrij: the slots
// count up by themselves. CSV may have another delimiter than the comma, which a head line tells by itself.
#pragma once
#include "tools/indeling.h"
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace zg {

struct Dumpkop {
    std::string naam, titel;
    int reclen = 0;
    int32_t freehead = -1;
    std::vector<std::string> sleutels;
};

Dumpkop dumpkop(const IXHEADER& kop, std::string_view naam);

class DumpSchrijver {
public:
    DumpSchrijver(FILE* uit, bool json, char scheiding) : uit_(uit), json_(json), scheiding_(scheiding) {}
    // `kaal`: without the definition, and without the column of links; no free slots may follow.
    void kop(const Dumpkop& kop, const std::vector<Veld>& velden, bool kaal);
    void record(int32_t nr, const uint8_t* rec);
    void vrij(int32_t nr, int32_t volgende);
    bool goed() const { return ferror(uit_) == 0; }

private:
    void cel(std::string_view tekst);
    FILE* uit_;
    bool json_, kaal_ = false;
    char scheiding_;
    std::vector<Veld> velden_;
    std::string regel_;
};

struct Dumprij {
    int32_t nr;
    bool vrij;
    int32_t volgende; // of a free slot
    uint8_t rec[IXRECMAX];
};

class DumpLezer {
public:
    // `scheiding`: of CSV without a head line.
    explicit DumpLezer(FILE* in, char scheiding = ',') : in_(in), scheiding_(scheiding) {}
    // Read up to the first record. With a head line *kop is filled; without one it stays and the caller must
    // know the layout. False with fout() on a text that is no dump.
    bool kop(Dumpkop* kop, bool* gevonden);
    // The layout of the records; the CSV columns must be among its fields.
    bool indeling(std::vector<Veld> velden, int reclen);
    // Next row, false at the end or on an error (then fout() isn't empty).
    bool rij(Dumprij* rij);
    const std::string& fout() const { return fout_; }
    int64_t regelnummer() const { return regelnr_; } // of the last row

private:
    bool regel();
    bool mislukt(const std::string& wat);
    bool csv(std::vector<std::string>* cellen);
    bool rij_csv(Dumprij* rij);
    bool rij_json(Dumprij* rij);
    FILE* in_;
    char scheiding_;
    bool json_ = false, wachtend_ = false;
    bool met_kop_ = false, zonder_einde_ = false; // of CSV; of the line in hand
    int64_t regelnr_ = 0;
    int32_t volgnr_ = 0;
    int reclen_ = 0;
    std::string tekst_, fout_;
    std::vector<std::string> kolommen_;
    std::vector<int> plaats_; // field index of a column, -1 nr, -2 vrij
    std::vector<Veld> velden_;
};

} // namespace zg
