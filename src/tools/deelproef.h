// What the two sides of zgdeel try out on a directory: locks held on the one and asked for on the other; files and names
// changed on the one and looked at on the other behind a turn. Each procedure is run on both sides at once or by turns, as
// zgdeel.cpp has it; all in DEELMAP.
#pragma once
#include <memory>
#include <string>
#include <vector>

namespace zg {

// How often something was looked at, how often it was wrong, and what was wrong first.
struct Telling {
    int gedaan = 0, fout = 0;
    std::string eerst;
};
std::string deel_schrijf(const std::vector<Telling>& t);
std::vector<Telling> deel_lees(const std::string& s);

// Kinds of rounds, and what is looked at in each.
inline constexpr size_t PROEVEN = 4;
struct Rondesoort {
    const char* proeven[PROEVEN]; // null behind the last
};
enum { R_BLOK, R_GROEI, R_KORT, R_VERVANG, R_LOS, R_AANTAL };
extern const Rondesoort RONDESOORT[R_AANTAL];

class DeelBeurt;
class Ronde {
public:
    Ronde(int soort, int fase, int aantal, bool schrijft);
    ~Ronde();
    bool klaar(std::string* fout) const;
    std::vector<Telling> doe(); // all rounds; a turn that doesn't come is in the last count's text, as wrong
private:
    struct Binnen;
    std::unique_ptr<Binnen> b_;
};

// What is set otherwise than it should be on the mount at `punt`, in words, empty when nothing is. False where it doesn't
// tell that.
bool deel_instellingen(const std::string& punt, std::string* kwaal);

// Locks: a table of those that one side holds and the other wants.
struct Slotgeval {
    const char *groep, *naam;
    char bestand, heeft; // 'a' to 'c'; 'r', 'w', 'u', 'o' of an open file, 0 nothing
    int64_t van, lengte;
    char wil; // 'r', 'w', 0 nothing
    int64_t wil_van, wil_lengte;
    const char* komt; // '0' refused or '1', and who has it for F_GETLK
};
std::vector<Slotgeval> deel_sloten();
std::string deel_neem();    // what the table holds: "" or what went wrong
void deel_laat();           // gone again
std::string deel_probeer(); // what is wanted: two characters a row that wants something

// Counted in one file by both, the lock on it taken anew each time: "" or what went wrong.
std::string deel_tel(int keren);
int64_t deel_geteld();
// Names made by both, of which each can be made once: how many this side made, -1 with errno.
int deel_maak(int aantal);

// A process that holds a lock until it is killed.
class Houder {
public:
    ~Houder();
    bool begin();
    void dood();

private:
    int pid_ = -1;
};
bool deel_houder_weg(double seconden, double* duur); // how long its lock outlived the call

// What calls take here, in words.
std::string deel_duur();

} // namespace zg
