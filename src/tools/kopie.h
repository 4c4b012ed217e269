// A data directory copied while people work in it. The copy is made like its original in rounds: a round in which
// nothing differed any more was preceded by a moment at which the original was just that. The last rounds run while the
// pairs' headers are held, so that they are short and few.
#pragma once
#include <cstdint>
#include <map>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace zg {

// Of the copy's own, in the directory of the copy: the list of what is in it, and the directory in which it is made.
inline constexpr char KOPIELIJST[] = "ZGCOPY.LST", KOPIEWERK[] = ".zgcopy", KOPIESLOT[] = ".zgcopy.lck";

struct Kopiepost {
    struct stat st;     // of what is copied; of a link that is kept the link's own
    std::string link;   // where a link that is kept leads, else empty
    int64_t gezien = 0; // when it was last read, nanoseconds since 1970
};
using Kopieboom =
    std::map<std::string, Kopiepost>; // by path in the directory: a directory before what is in it

struct Kopie {
    std::string van, naar;           // both without a "/" at the end
    Kopieboom boom;                  // what the last round found, and so what the copy has
    std::vector<std::string> noten;  // for the operator
    std::map<std::string, int> vast; // files that are locked: a second descriptor's close would drop that
    std::string fout;                // what stopped it
    std::vector<std::string> kwalen = {}; // what stands where a file of the firm should: not copied
};

// Set by a signal: what runs ends with EINTR in `fout`.
extern volatile int kopie_gestopt;

// The tree below a directory. What leads out of it by a link is taken for what it leads to; what is neither file,
// directory nor link is left out, told in noten, or in kwalen where a file of the firm belongs, as is a directory there. False:
// told in fout.
bool kopie_boom(Kopie* k, Kopieboom* boom);
// One round. *anders: what differed, by path. `gang` hears of bytes done. False: told in fout.
bool kopie_ronde(Kopie* k, std::vector<std::string>* anders, void (*gang)(int64_t) = nullptr);
// One file again until two looks agree: whole, although of a moment of its own. False when it never stands still.
bool kopie_stil(Kopie* k, const std::string& naam);
// What is left to do when the original is let go: reserved keys away, links of one file, rights and times, on disk.
// False: told in fout.
bool kopie_af(Kopie* k);
// A directory and what is in it; what can't be removed stays.
void kopie_ruim(const std::string& map);

// kopieslot.cpp: everybody who changes a pair, or the chains of labels and prices, stands still. All of it is had or
// nothing. At most until `eind` (milliseconds of kopie_klok); who was in the way comes in *wie.
bool kopie_vast(Kopie* k, int64_t eind, std::string* wie);
void kopie_los(Kopie* k);
int64_t kopie_klok();
// Living users who are in a critical step by the copy's DTSYS.TXT (`kopie`) or the original's, by name.
std::vector<std::string> kopie_kritiek(const Kopie& k, bool kopie);
// Orders that somebody has in hand, a line for each.
std::vector<std::string> kopie_in_handen(const Kopie& k);
// Directories that the settings in the copy name and that are not in it.
std::vector<std::string> kopie_buiten(const Kopie& k);

// kopielijst.cpp: the list, made of the files in k->naar. False: told in fout.
bool kopie_lijst(Kopie* k, const std::string& kop);
// The files of a copy against its list: what is wrong, and files that it doesn't name as notes. False: there is no list,
// or not the whole of one; told in *fout.
bool kopie_nakijken(const std::string& map, std::vector<std::string>* kwalen, std::vector<std::string>* noten,
                    std::string* fout);
// Is it the index of a pair?
bool kopie_is_paar(const Kopieboom& boom, const std::string& naam);
// Is it, without its ending, where the package has a pair: by the dictionary, or of the tables that stand in a directory of
// their own?
bool kopie_paarnaam(const std::string& stam);
// What makes a directory less than a firm, whatever its bytes: a pair of which one file is missing, or a mark that it is half
// made.
std::vector<std::string> kopie_half(const std::string& map, const Kopieboom& boom);
// The pairs in a copy, each checked: what is wrong, and their number.
int kopie_paren(const std::string& map, std::vector<std::string>* kwalen);

} // namespace zg
