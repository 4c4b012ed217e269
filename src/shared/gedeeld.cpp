// The table of file systems, see shared/gedeeld.h.
#include "shared/gedeeld.h"
#include "shared/files.h"
#include "shared/replica.h"
#include "shared/syscalls.h"
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <linux/magic.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace zg {
namespace {

// Those of one machine. What isn't here (a network's, FUSE, 9p, whatever comes) may be in other hands too.
constexpr struct {
    uint32_t nummer;
    bool kaart, zetten;
} EIGEN[] = {
    {EXT4_SUPER_MAGIC, true, true},        {TMPFS_MAGIC, true, true},
    {0x58465342 /* xfs */, true, false},   {BTRFS_SUPER_MAGIC, true, false},
    {F2FS_SUPER_MAGIC, true, false},       {RAMFS_MAGIC, false, false},
    {OVERLAYFS_SUPER_MAGIC, false, false}, {REISERFS_SUPER_MAGIC, false, false},
    {0x2FC12FC1 /* zfs */, false, false},  {0xCA451A4E /* bcachefs */, false, false},
    {0x3153464A /* jfs */, false, false},  {ECRYPTFS_SUPER_MAGIC, false, false},
    {NILFS_SUPER_MAGIC, false, false},     {MSDOS_SUPER_MAGIC, false, false},
    {EXFAT_SUPER_MAGIC, false, false},     {0x7366746E /* ntfs3 */, false, false},
    {SQUASHFS_MAGIC, false, false},        {ISOFS_SUPER_MAGIC, false, false},
};

bool proef() {
    const char* s = getenv("ZGGEDEELD");
    return s && (strcmp(s, "1") == 0 || strcmp(s, "replica") == 0);
}

IOSOORT soort(const struct statfs& s) {
    for (const auto& e : EIGEN)
        if (e.nummer == static_cast<uint32_t>(s.f_type))
            return {false, e.kaart, e.zetten};
    return {true, false, false};
}

bool is_fuse(const struct statfs& s) {
    return static_cast<uint32_t>(s.f_type) == FUSE_SUPER_MAGIC;
}

bool gezien; // a file on a shared one

} // namespace

IOSOORT IOSOORTVAN(int fd) {
    struct statfs s;
    if (proef() || fstatfs(fd, &s) != 0)
        return {true, false, false};
    const IOSOORT uit = soort(s);
    gezien |= uit.gedeeld;
    if (is_fuse(s))
        IOREPLICABIJ(SYSFDPAD(fd));
    return uit;
}

bool IOGEDEELD() {
    static int hier = -1;
    struct statfs s;
    if (proef() || gezien)
        return true;
    if (hier < 0) {
        const bool weet = statfs(".", &s) == 0;
        hier = !weet || soort(s).gedeeld;
        if (weet && is_fuse(s))
            IOREPLICABIJ(IOHIER());
    }
    return hier;
}

int IONETPAUZE(int n) {
    constexpr int METEEN = 3, KORTST = 2'000, LANGST = 20'000, STAP = 1'000;
    if (n < METEEN)
        return 0;
    struct timespec nu;
    clock_gettime(CLOCK_MONOTONIC, &nu);
    const uint32_t toeval =
        (static_cast<uint32_t>(nu.tv_nsec) ^ static_cast<uint32_t>(getpid()) << 13) * 2654435761U;
    const int hoogstens = std::min(KORTST + (n - METEEN + 1) * STAP, LANGST);
    return KORTST + static_cast<int>((toeval >> 8) % static_cast<uint32_t>(hoogstens - KORTST + 1));
}

void IOWACHT(int n, int us) {
    if (IOGEDEELD())
        us = IONETPAUZE(n);
    if (us > 0)
        usleep(static_cast<useconds_t>(us));
}

} // namespace zg
