// Help for the tests of the store: pairs by definition text, a stop that is caught instead of ending the test, calls
// that fail in their turn.
#pragma once
#include "store/ix.h"
#include "support/proef.h"

namespace zg::test {

struct Tabel {
    int reclen;
    std::vector<std::string> sleutels;
};
void definieer(ICB* icb, const Tabel& tabel);
// New, empty pair; closed again.
void maak_paar(const std::string& naam, const Tabel& tabel);
ICB* maak_open(const std::string& naam, const Tabel& tabel, int mode);

// An index file but for its change count.
std::string lees_index(const std::string& pad);

// Empty when the pair is sound by IXCHECK and by the deep check, else what is wrong.
std::string gezondheid(const std::string& naam);
#define EXPECT_GEZOND(naam) EXPECT_EQ("", ::zg::test::gezondheid(naam))

// The report that a stop would have shown; "" when the work came to its end.
std::string stopt(const std::function<void()>& werk);

// While it lives a refused lock counts, and waits 1 ms.
struct KorteWacht {
    KorteWacht();
    ~KorteWacht();
    static int teller;
};

// Child process that runs `werk`: exit status, or 128 + signal.
int in_kind(const std::function<void()>& werk);

// Run `werk` in n processes at once; the number that did not end well.
int processen(int n, const std::function<bool(int)>& werk);

// Are blocks of this pair that stand written through a mapping? Then neither they nor the header make a write that can be
// refused, and where it is killed the header doesn't count.
bool in_kaart(const std::string& naam);

// From now on the n-th write or truncation of the store, counted from 1, meets its fate: the process is killed
// (fout 0), or the call fails with errno `fout`. `deel`: how much of the write is done before, nothing, half or all.
// `duur`: all calls after it fail too, or it alone, or from it on those that make a file grow, as on a full disk. For a
// child process: it is never taken away.
enum Deel { NIETS, HALF, ALLES };
enum Duur { VOORTAAN, EENMAAL, VOL };
void stoor(int n, int fout = 0, Deel deel = NIETS, Duur duur = VOORTAAN);
bool gestoord(); // has a call failed?

// Every read of the store goes through this from now on, by call or out of a mapping.
void lees_door(ssize_t (*lees)(int fd, void* p, size_t n, off_t plaats));

// A random number source with a seed that failure texts can name.
struct Toeval {
    uint64_t staat;
    explicit Toeval(uint64_t zaad) : staat(zaad * 2862933555777941757ULL + 3037000493ULL) {}
    uint32_t operator()(uint32_t onder) {
        staat = staat * 6364136223846793005ULL + 1442695040888963407ULL;
        return static_cast<uint32_t>((staat >> 33) % onder);
    }
};

} // namespace zg::test
