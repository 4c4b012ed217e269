// What a tool was asked for, and the tools' entries: one a file, all answering an Uitkomst.
#pragma once
#include "tools/paar.h"
#include <csignal>
#include <string>
#include <vector>

namespace zg {

struct Opdracht {
    std::vector<std::string> namen; // as given: pairs and directories
    bool json = false;              // else CSV, or plain text
    bool woordenboek = false;       // definitions from the dictionary instead of the header
    bool stil = false;              // say only what is wrong
    bool vervang = false;           // an existing target may go
    bool heel = false;              // hold the header lock all the time
    bool zonder_check = false;
    bool kap = false;                 // half a record at the end of a data file may go to a file of its own
    bool dwing = false;               // clear reserved keys although users are at work
    int wacht = 10;                   // seconds for a lock
    int reclen = 0;                   // bytes a record of an index made anew, 0 when that needs no saying
    std::string bestand;              // input or output, empty for the standard stream
    std::string doel;                 // target of a load or copy
    std::string tabel;                // whose fields the records have, empty for those of the pair's name
    std::vector<std::string> waarden; // FIELD=VALUE: only records that have all of them
    bool kaal = false;                // without the head line
    char scheiding = ',';             // of CSV
};

int ixcheck(const Opdracht& o);
int ixremake(const Opdracht& o);
int ixstat(const Opdracht& o);
int ixdump(const Opdracht& o);
int ixload(const Opdracht& o);
int ixcopy(const Opdracht& o);
int ixsh(const Opdracht& o);
// For who ends the tool from within: the signal that asked ixsh to stop, 0 for none; and what its open pair has reserved,
// given up.
extern volatile std::sig_atomic_t ixsh_sein;
void ixsh_geef_terug();
// The same for an index that ixremake is making where there was none.
void ixremake_ruim_op();

} // namespace zg
