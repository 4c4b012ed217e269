// What a tool was asked for, and the tools' entries: one a file, all answering an Uitkomst.
#pragma once
#include "tools/paar.h"
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
    bool kap = false;    // half a record at the end of a data file may go to a file of its own
    bool dwing = false;  // clear reserved keys although users are at work
    int wacht = 10;      // seconds for a lock
    std::string bestand; // input or output, empty for the standard stream
    std::string doel;    // target of a load or copy
};

int ixcheck(const Opdracht& o);
int ixremake(const Opdracht& o);
int ixstat(const Opdracht& o);
int ixdump(const Opdracht& o);
int ixload(const Opdracht& o);
int ixcopy(const Opdracht& o);
int ixsh(const Opdracht& o);

} // namespace zg
