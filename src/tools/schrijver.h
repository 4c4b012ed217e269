// A file that a tool makes, written in large pieces through the table of system calls. The first failure stays: what
// is written behind it goes nowhere, and af() tells.
#pragma once
#include "shared/syscalls.h"
#include <cerrno>
#include <string>
#include <vector>

namespace zg {

class Schrijver {
public:
    // A new file; one that is there is emptied.
    explicit Schrijver(const std::string& pad) : fd_(SYSNIEUW(pad.c_str(), O_RDWR | O_TRUNC)) {
        fout_ = fd_ < 0 ? errno : 0;
    }
    ~Schrijver() {
        if (fd_ >= 0)
            SYS.close(fd_);
    }
    Schrijver(const Schrijver&) = delete;
    Schrijver& operator=(const Schrijver&) = delete;

    bool zet(const void* bytes, size_t n) {
        auto p = static_cast<const char*>(bytes);
        rest_.insert(rest_.end(), p, p + n);
        return rest_.size() < BUFFER || af();
    }
    // All of it with the system; false with errno of the first failure.
    bool af() {
        if (!fout_ && !SYSSCHRIJF(fd_, rest_.data(), rest_.size()))
            fout_ = errno;
        rest_.clear();
        errno = fout_;
        return !fout_;
    }
    int fd() const { return fd_; }

private:
    static constexpr size_t BUFFER = 256 * 1024;
    int fd_, fout_;
    std::vector<char> rest_;
};

} // namespace zg
