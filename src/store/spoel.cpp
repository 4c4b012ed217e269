// Spools on nameless files; all their calls go through the store's table, so that tests can fail each of them.
#include "store/spoel.h"
#include "shared/files.h"
#include "store/bestand.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zg {

int NAAMLOOSBESTAND(const char* pad) {
    std::string map(pad, static_cast<size_t>(IOBASENAME(pad) - pad));
    int fd = SYS.open(map.empty() ? "." : map.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
    if (fd >= 0 || (errno != EOPNOTSUPP && errno != EISDIR && errno != ENOENT && errno != EINVAL))
        return fd;
    for (int poging = 0; poging < 100; poging++) { // a file system without nameless files
        std::string naam = map + "IX" + std::to_string(getpid()) + "_" + std::to_string(poging) + ".TMP";
        fd = SYS.open(naam.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (fd >= 0)
            SYS.unlink(naam.c_str());
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

Spoel::Spoel(std::string pad, size_t ruimte) : pad_(std::move(pad)), ruimte_(ruimte) {}

Spoel::Spoel(Spoel&& ander) noexcept
    : pad_(std::move(ander.pad_)), ruimte_(ander.ruimte_), buffer_(std::move(ander.buffer_)),
      geschreven_(ander.geschreven_), fd_(ander.fd_) {
    ander.fd_ = -1;
}

Spoel::~Spoel() {
    weg();
}

void Spoel::weg() {
    if (fd_ >= 0)
        SYS.close(fd_);
    fd_ = -1;
    geschreven_ = 0;
    std::vector<uint8_t>().swap(buffer_);
}

bool Spoel::schrijf(const void* van, size_t n) {
    if (buffer_.size() + n > ruimte_ && !buffer_.empty()) {
        if (fd_ < 0 && (fd_ = NAAMLOOSBESTAND(pad_.c_str())) < 0)
            return false;
        if (!SYSSCHRIJFOP(fd_, buffer_.data(), buffer_.size(), geschreven_))
            return false;
        geschreven_ += static_cast<int64_t>(buffer_.size());
        buffer_.clear();
    }
    if (buffer_.size() + n > buffer_.capacity())
        buffer_.reserve(std::max(n, std::min(ruimte_, 2 * (buffer_.size() + n) + 1024)));
    const uint8_t* p = static_cast<const uint8_t*>(van);
    buffer_.insert(buffer_.end(), p, p + n);
    return true;
}

bool Spoel::lees(int64_t plaats, void* naar, size_t n) {
    uint8_t* p = static_cast<uint8_t*>(naar);
    if (plaats < 0 || plaats + static_cast<int64_t>(n) > lengte())
        return false;
    if (plaats < geschreven_) {
        size_t deel = n;
        if (plaats + static_cast<int64_t>(n) > geschreven_)
            deel = static_cast<size_t>(geschreven_ - plaats);
        if (SYSLEES(fd_, p, deel, plaats) != static_cast<ssize_t>(deel))
            return false;
        p += deel;
        n -= deel;
        plaats += static_cast<int64_t>(deel);
    }
    if (n)
        memcpy(p, buffer_.data() + (plaats - geschreven_), n);
    return true;
}

Spoellezer::Spoellezer(Spoel& spoel, int64_t van, int64_t tot, size_t maat, size_t ruimte)
    : spoel_(&spoel), plaats_(van), tot_(tot), maat_(maat),
      buffer_(std::min(static_cast<size_t>(tot - van), std::max(ruimte / maat, size_t{1}) * maat)) {}

bool Spoellezer::volgende(const uint8_t** entry) {
    *entry = nullptr;
    if (op_ == vol_) {
        vol_ = std::min(buffer_.size(), static_cast<size_t>(tot_ - plaats_));
        op_ = 0;
        if (!vol_)
            return true;
        if (!spoel_->lees(plaats_, buffer_.data(), vol_))
            return false;
        plaats_ += static_cast<int64_t>(vol_);
    }
    *entry = buffer_.data() + op_;
    op_ += maat_;
    return true;
}

} // namespace zg
