// A spool: bytes appended in turn and read back in turn, in memory while they are few, else in a file without a
// name that goes with the process. Small parts of the rebuild stand on it; nothing else needs it.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace zg {

class Spoel {
public:
    // `pad`: a file in whose directory the spool's own may stand. `ruimte`: bytes of memory.
    explicit Spoel(std::string pad = "", size_t ruimte = 64 * 1024);
    ~Spoel();
    Spoel(Spoel&& ander) noexcept;
    Spoel(const Spoel&) = delete;
    Spoel& operator=(const Spoel&) = delete;
    Spoel& operator=(Spoel&&) = delete;

    bool schrijf(const void* van, size_t n); // false: the disk takes no more; the spool is of no use then
    bool lees(int64_t plaats, void* naar,
              size_t n); // n bytes from a place, whatever still waits in memory included
    int64_t lengte() const { return geschreven_ + static_cast<int64_t>(buffer_.size()); }
    void weg(); // forget all of it

private:
    std::string pad_;
    size_t ruimte_;
    std::vector<uint8_t> buffer_; // what is not in the file yet
    int64_t geschreven_ = 0;
    int fd_ = -1;
};

// Entries of `maat` bytes out of a stretch of a spool, one after the other, read `ruimte` bytes at a time.
class Spoellezer {
public:
    Spoellezer(Spoel& spoel, int64_t van, int64_t tot, size_t maat, size_t ruimte);
    // *entry stays good until the next call, null at the end. False when the spool can't be read.
    bool volgende(const uint8_t** entry);

private:
    Spoel* spoel_;
    int64_t plaats_, tot_;
    size_t maat_, op_ = 0, vol_ = 0;
    std::vector<uint8_t> buffer_;
};

// A nameless file in the directory of `pad`, -1 with errno set when there can be none.
int NAAMLOOSBESTAND(const char* pad);

} // namespace zg
