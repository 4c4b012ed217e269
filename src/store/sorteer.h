// Sorting the keys of a rebuild in bounded memory: index entries come in by record, leave in key order, and every
// record learns its rank. Ranks count from 0 over the live records. Used by store/rebuild.
#pragma once
#include "store/ix.h"
#include "store/spoel.h"
#include <functional>

namespace zg {

// Rank by record number, set in any order and read a window of record numbers at a time.
class Rangen {
public:
    static constexpr uint32_t GEEN = 0xFFFFFFFF; // a free slot
    Rangen(std::string pad, int64_t records, int32_t venster);
    ~Rangen();
    Rangen(Rangen&& ander) noexcept;
    Rangen(const Rangen&) = delete;
    Rangen& operator=(const Rangen&) = delete;
    Rangen& operator=(Rangen&&) = delete;

    bool zet(int32_t recnr, uint32_t rang);
    // Ranks of the records from nr * venster on; null when they can't be read.
    const uint32_t* laad(int64_t nr);

private:
    struct Paar {
        int32_t recnr;
        uint32_t rang;
    };
    bool leeg(size_t emmer);
    std::string pad_;
    int32_t venster_;
    std::vector<uint32_t> nu_;
    std::vector<std::vector<Paar>> emmer_; // waiting pairs by window; none when there is one window only
    std::vector<int32_t> aantal_;          // pairs of a window that are in the file
    int fd_ = -1;
};

// Order-preserving form of a key: two such forms compare by their bytes as IXCOMP compares the keys over their full
// length. Answers its length, at most SORTEERVORM, and none begins with a whole other one.
inline constexpr int SORTEERVORM = 224;
int SORTEERBAAR(const IXKEYDEF& def, const uint8_t* sleutel, uint8_t* uit);

// `ruw`: entries (key and record number, as in a leaf) by ascending record. `klaar`: the same in key order, of equal
// keys the highest record first. False when the disk takes no more. `stap` hears of entries dealt with.
bool SORTEER(const IXKEYDEF& def, Spoel& ruw, Spoel& klaar, Rangen& rangen, const std::string& pad,
             const std::function<void(int64_t)>& stap);

} // namespace zg
