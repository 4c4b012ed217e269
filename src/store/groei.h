// The shape of one key's tree as it grows by inserts, in ranks instead of keys: which block holds which run of
// ranks, on every level. It takes the splits in the order and to the blocks that IXINSKEY would, at a fraction of
// the cost, because a node is no more than where it begins and how much it holds. Used by store/rebuild.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

namespace zg {

class Groei {
public:
    // A root that holds nothing but the sentinel. `aantal`: ranks that will come, each once.
    Groei(int32_t wortel, int maxent, int64_t aantal);

    // Insert; blocks are taken from *nblocks. False when the tree gets too deep or the file too large.
    bool voeg(uint32_t rang, int32_t* nblocks);

    struct Knoop {
        int32_t blok;
        int aantal; // entries, the sentinel included
    };
    int diepte() const { return static_cast<int>(niveau_.size()); }
    int64_t knopen(int niveau) const { return niveau_[static_cast<size_t>(niveau - 1)].lengte; }
    // Walk a level (1 the leaves) from left to right: start with {} and call until it answers false.
    struct Loop {
        size_t deel = 0, i = 0;
    };
    bool volgende(int niveau, Loop* loop, Knoop* knoop) const;

private:
    static constexpr size_t DEELMAX = 128;
    struct Deel { // a run of neighbouring nodes
        size_t n = 0;
        uint32_t begin[DEELMAX]; // first rank that belongs to the node
        int32_t blok[DEELMAX];
        uint8_t aantal[DEELMAX];
    };
    struct Niveau {
        std::vector<std::unique_ptr<Deel>> deel;
        std::vector<uint32_t> begin; // of each run
        int64_t lengte = 0;
    };
    struct Plaats {
        size_t deel, i;
    };
    static Niveau een(int32_t blok, uint8_t aantal); // a level of one node
    static Plaats zoek(const Niveau& n, uint32_t rang);
    static void voeg_achter(Niveau& n, Plaats p, uint32_t begin, int32_t blok, uint8_t aantal);
    bool splits(size_t niveau, Plaats p, int32_t* nblocks);
    uint32_t grens(size_t niveau, uint32_t begin) const;

    int32_t wortel_;
    int maxent_, links_;
    std::vector<uint64_t> er_; // ranks inserted so far, one bit each
    std::vector<Niveau> niveau_;
    Plaats laatste_{0, 0}; // leaf of the last insert
};

} // namespace zg
