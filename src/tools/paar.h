// A pair as the operators' tools open it: plain descriptors and the header as it stands, so that a damaged
// file is told in words instead of stopping the tool. One descriptor a file, since closing any drops the
// process's locks.
#pragma once
#include "store/ix.h"
#include "tools/indeling.h"
#include "tools/tool.h"
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

struct Paar {
    std::string naam; // path without extension
    int idx = -1, dat = -1;
    IXHEADER kop{};
    int64_t idxbytes = 0, datbytes = 0;
    bool vast = false;         // header lock held
    bool alleen_lezen = false; // no right to write, and so none to lock
    bool gezegd = false;       // that has been told
    bool gedeeld = false;      // on a shared file system: what other hosts have open nobody can tell
    Paar() = default;
    Paar(const Paar&) = delete;
    Paar& operator=(const Paar&) = delete;
    ~Paar();
};

// Open both files for reading and locking. GOED, or NIET_TE_OPENEN with why on standard error. `zonder_index`: a
// missing index file is none of that, and leaves idx -1.
int paar_open(const std::string& naam, Paar* paar, bool zonder_index = false);
// Read the header anew and test what every reader depends on: version, record length, keys. Empty when sound, else
// what is wrong.
std::string paar_kop(Paar* paar);
// Take the header lock, at most `seconden` long: writers in shared mode stand still meanwhile. GOED or
// IN_GEBRUIK, with the holder's process on standard error. Who may only read looks without a lock, and is told.
int paar_vast(Paar* paar, int seconden);
void paar_los(Paar* paar);
// Open it and take the header lock; answers as the two of them.
int paar_neem(const std::string& naam, int seconden, Paar* paar);
// Take the whole pair, no record locked by others, at most `seconden` long; answers as paar_vast. The data file comes
// first and goes again while the header can't be had: who holds that may be waiting for a record.
int paar_alleen(Paar* paar, int seconden);
// The reserved keys away from the index file of a copy, which nobody will ever write. False with errno.
bool paar_wis_wachtrij(const std::string& index);
// Has a program the file open, with or without a lock? Where the system can't tell, none has; but on a shared file system
// another host's may, unless the operator has said that he is alone (--alone).
bool elders_open(int fd);
extern bool ALLEEN_GEZEGD;
inline constexpr char ALLEEN_NODIG[] =
    "on a shared file system; --alone says that no program on any host has it open";

// What a handle of the store waits for, and who has it: "in use by ...", or the key that is reserved. Null: "in use".
std::string in_de_weg(const ICB* icb);
// From here on the store waits for nobody longer than so many seconds: that is told, and the tool ends with IN_GEBRUIK.
void wacht_hooguit(int seconden);

// The header that the dictionary gives a pair of this name, its record length one that fits a data file of so many
// bytes; false when it doesn't know it.
bool woordenboekkop(const std::string& naam, int64_t databytes, IXHEADER* kop);

// A name, title or key name in a header that holds bytes which are no letters; empty when none does. Nothing goes by them.
std::string kop_naamfout(const IXHEADER& kop);

// The pairs meant by the arguments: names (an extension .INX or .TXT is taken off), or all the pairs of a
// directory, sorted. False with a message when an argument means none.
bool paren(const std::vector<std::string>& argumenten, std::vector<std::string>* namen);
// The same for a tool that takes one; empty with a message when they mean none or several.
std::string een_paar(const std::vector<std::string>& argumenten);

// Progress on a terminal's standard error, nothing elsewhere: at most ten times a second.
class Balk {
public:
    Balk(const std::string& titel, int64_t totaal);
    ~Balk();
    void bij(int64_t stand) { bij(stand, totaal_); }
    void bij(int64_t stand, int64_t totaal);

private:
    std::string titel_;
    int64_t totaal_, volgende_ = 0;
    bool zichtbaar_;
};

// While it lives, the deep checks and rebuilds of the store show a bar with this title. One at a time.
class Werkbalk {
public:
    explicit Werkbalk(std::string titel);
    ~Werkbalk();
    Werkbalk(const Werkbalk&) = delete;
    Werkbalk& operator=(const Werkbalk&) = delete;
};

// From here on everything is opened and locked as readers do, whatever the modules ask: for a tool that can't write, and
// that who may only read can run, too. `maken`: new files (O_EXCL) can be made all the same.
void alleen_lezen(bool maken = false);
void weer_schrijven();

// A plain file that is there, or -1.
int open_gewoon(const std::string& pad, int vlaggen);
// From here on only plain files are opened, and directories by those who ask for one: of anything else (a pipe, a device) the
// opening would wait, or its reading never end. openreden tells why an opening was refused.
void gewone_bestanden();
std::string openreden(int errnr);

} // namespace zg
