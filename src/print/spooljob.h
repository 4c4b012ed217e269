// What is known of a job: a text file beside its spool file, from before there is one until all of it is out. What is left of
// a job that failed, or whose sender died, is found and sent again by it. docs/formats.md has the layout.
//
// 1. Who makes or sends a job has its description locked; the lock goes over from the program to zgspoel with the open file.
//    A description that nobody has locked is of a job that is left behind.
// 2. What changes is of fixed length and written over in place, so that a full disk keeps no report from being described, and
//    no reason off it.
// 3. The spool file comes behind its description and goes before it: a description without one is of a job that is out, or
//    was never begun. But when nothing had gone out somebody has removed the report: the user hears of it first.
// 4. A report that was still being made, or looked at, was never said to be printed: whoever finds it left behind removes it.
#pragma once
#include "print/printjob.h"
#include <vector>

namespace zg {

enum class Spoolstand { wacht, bezig, fout, maak }; // nothing is out; begun; refused; not handed over yet

struct spooljob {
    std::string spool; // path of the spool file
    Printweg weg;
    std::string apparaat, titel, tekens;
    int kopieen, rijen, kolommen;
    bool staand, over; // over: the user said that a file that is there may go
    int64_t begin,
        eind;       // the report lies between these places of the spool file, init and exit text around it
    int32_t sessie; // slot of the user, 0 outside a session
    int64_t tijd;   // of the hand-over, seconds since 1970
    Spoolstand stand;
    int gedaan;        // copies that are out
    bool gemeld;       // the user has been told
    std::string reden; // why not, at most SPOOLREDEN bytes
};
inline constexpr size_t SPOOLREDEN = 120;

// Path of the description of a spool file, and the other way round (empty when it is none).
std::string spool_beschrijving(const std::string& spool);
std::string spool_bestand(const std::string& beschrijving);

// The description of a print job as it stands.
spooljob spool_van(const printjob& job, Spoolstand stand);
// Write the description of a job, which must not have one, and lock it: the descriptor, or -1 with errno and nothing there.
int spool_maak(const spooljob& job);
// All of it again, in place: way, device, title and characters must be those that it was made with. False with errno.
bool spool_schrijf(int fd, const spooljob& job);
// Open a description and lock it. -1 with errno: EAGAIN when its job is being made or sent (it is read all the same), EINVAL
// when it is none, ENOENT when it is gone: what was left of a job that was being made goes here.
int spool_neem(const std::string& beschrijving, spooljob* job);
// Read it off an open descriptor; false when it isn't one.
bool spool_lees(int fd, const std::string& beschrijving, spooljob* job);
// The state of the job, in place.
bool spool_schrijf_stand(int fd, const spooljob& job);
// May a new spool file have this name? Not while there is a description of that name, which would count as its own.
bool spool_vrij(const std::string& spool);
// All that is there of the job, its description last.
void spool_weg(const spooljob& job);
// Path of a file of the job's own that goes with it: the report as it is sent; and in the directory that it goes to, where
// no other job of this machine has it (empty for other ways).
std::string spool_naast(const spooljob& job, const char* soort);
std::string spool_ginds(const spooljob& job);
// Those files go, as far as they are there.
void spool_weg_ernaast(const spooljob& job);

// Give a finished file its final name, over one that is there or not. It is on disk then, and whole; else false with errno,
// and it still has its own name.
bool spool_plaats(const std::string& van, const std::string& naar, bool over);

// The descriptions in a directory; `map` is empty or ends in a '/'.
std::vector<std::string> spool_beschrijvingen(const std::string& map);
// The jobs that nobody sends, oldest first; what is there of one that is out goes on the way.
std::vector<spooljob> spool_achtergebleven(const std::string& map);
// Was its report removed before any of it went out?
bool spool_verdwenen(const spooljob& job);
enum class Spoolpad { weg, bezig, blijft };
// How is it with the job of a description? `bezig` and `blijft` (left behind) are read; `weg`: it is out, or no description.
Spoolpad spool_kijk(const std::string& beschrijving, spooljob* job);

// Why a call failed, for people.
const char* spool_reden(int fout);

// Run zgspoel on a description; `fd` is its lock, which stays open here. False with errno when it can't be run, or,
// where the end is waited for, when the job isn't out (errno 0, the reason is in the description).
bool spool_start(int fd, const spooljob& job, bool wacht);

} // namespace zg
