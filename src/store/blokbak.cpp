// Blocks by stretches of eight megabytes: one stretch at a time is put in order in memory and written.
#include "store/blokbak.h"
#include "store/bestand.h"
#include "store/spoel.h"
#include <algorithm>
#include <cstring>

namespace zg {
namespace {

constexpr int32_t STROOK = 16384; // blocks
constexpr size_t WACHTEND = 32;   // blocks of a stretch that wait in memory

} // namespace

Blokbak::Blokbak(std::string pad, int32_t nblocks) : pad_(std::move(pad)), nblocks_(nblocks) {
    if (nblocks > STROOK)
        strook_.resize(static_cast<size_t>((nblocks + STROOK - 1) / STROOK));
    else
        beeld_.resize(static_cast<size_t>(nblocks) * IXBLOK);
}

Blokbak::~Blokbak() {
    if (fd_ >= 0)
        SYS.close(fd_);
}

bool Blokbak::leeg(size_t nr) {
    Strook& s = strook_[nr];
    if (fd_ < 0 && (fd_ = NAAMLOOSBESTAND(pad_.c_str())) < 0)
        return false;
    const int64_t plaats =
        (static_cast<int64_t>(nr) * STROOK + s.weg) * static_cast<int64_t>(sizeof(Wachtend));
    if (!SYSSCHRIJFOP(fd_, s.wacht.data(), s.wacht.size() * sizeof(Wachtend), plaats))
        return false;
    s.weg += static_cast<int32_t>(s.wacht.size());
    s.wacht.clear();
    return true;
}

bool Blokbak::zet(int32_t blok, const void* inhoud) {
    if (strook_.empty()) {
        memcpy(beeld_.data() + static_cast<size_t>(blok) * IXBLOK, inhoud, IXBLOK);
        return true;
    }
    const size_t nr = static_cast<size_t>(blok / STROOK);
    Strook& s = strook_[nr];
    if (s.wacht.capacity() < WACHTEND)
        s.wacht.reserve(WACHTEND);
    Wachtend& w = s.wacht.emplace_back();
    w.blok = blok;
    memcpy(w.inhoud, inhoud, IXBLOK);
    return s.wacht.size() < WACHTEND || leeg(nr);
}

bool Blokbak::schrijf(int fd) {
    const size_t stroken = std::max<size_t>(strook_.size(), 1);
    std::vector<Wachtend> stuk(strook_.empty() ? 0 : WACHTEND * 16);
    for (size_t nr = 0; nr < stroken; nr++) {
        const int32_t begin = static_cast<int32_t>(nr) * STROOK, n = std::min(STROOK, nblocks_ - begin);
        if (!strook_.empty()) {
            beeld_.resize(static_cast<size_t>(n) * IXBLOK);
            Strook& s = strook_[nr];
            auto plaats = [&](const Wachtend& w) {
                memcpy(beeld_.data() + static_cast<size_t>(w.blok - begin) * IXBLOK, w.inhoud, IXBLOK);
            };
            std::for_each(s.wacht.begin(), s.wacht.end(), plaats);
            for (int32_t i = 0; i < s.weg;) {
                const int32_t m = std::min(static_cast<int32_t>(stuk.size()), s.weg - i);
                const size_t bytes = static_cast<size_t>(m) * sizeof(Wachtend);
                const int64_t van =
                    (static_cast<int64_t>(begin) + i) * static_cast<int64_t>(sizeof(Wachtend));
                if (SYSLEES(fd_, stuk.data(), bytes, van) != static_cast<ssize_t>(bytes))
                    return false;
                std::for_each(stuk.begin(), stuk.begin() + m, plaats);
                i += m;
            }
        }
        // Block 0 is the header, which is written by itself.
        for (size_t op = nr ? 0 : IXBLOK, einde = beeld_.size(); op < einde; op += SYSSTUK) {
            const uint8_t* van = beeld_.data() + op;
            const size_t bytes = std::min(SYSSTUK, einde - op);
            const int64_t naar = int64_t{begin} * IXBLOK + static_cast<int64_t>(op);
            const ssize_t eerst = begonnen_ ? 0 : SYS.pwrite(fd, van, bytes, naar);
            if (eerst < 0)
                return false;
            begonnen_ = true;
            if (!SYSSCHRIJFOP(fd, van + eerst, bytes - static_cast<size_t>(eerst), naar + eerst))
                return false;
        }
    }
    return true;
}

} // namespace zg
