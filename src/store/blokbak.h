// Index blocks made in any order, written to their file in the order of their numbers and in large pieces, in bounded
// memory: a small file is held whole, of a large one the blocks wait in a nameless file, sorted by stretches. Used
// by store/rebuild.
#pragma once
#include "store/ix.h"
#include <string>
#include <vector>

namespace zg {

class Blokbak {
public:
    // Blocks 1 to nblocks - 1 will come, each once; `pad` as for a spool.
    Blokbak(std::string pad, int32_t nblocks);
    ~Blokbak();
    Blokbak(const Blokbak&) = delete;
    Blokbak& operator=(const Blokbak&) = delete;

    bool zet(int32_t blok, const void* inhoud); // false: the disk takes no more
    bool schrijf(int fd);                       // false, with errno, when a call failed
    bool begonnen() const { return begonnen_; } // has any of it been written?

private:
    struct Wachtend {
        int32_t blok;
        uint8_t inhoud[IXBLOK];
    };
    struct Strook {
        std::vector<Wachtend> wacht;
        int32_t weg = 0; // blocks of the stretch that are in the waiting file
    };
    bool leeg(size_t nr);

    std::string pad_;
    int32_t nblocks_;
    std::vector<uint8_t> beeld_; // the stretch in hand
    std::vector<Strook> strook_; // none when everything fits in one
    int fd_ = -1;
    bool begonnen_ = false;
};

} // namespace zg
