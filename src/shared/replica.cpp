// Looks at names on replicated volumes, see shared/replica.h.
#include "shared/replica.h"
#include "shared/files.h"
#include "shared/syscalls.h"
#include "shared/volume.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

namespace zg {
namespace {

struct Volume {
    std::string punt;
    bool replica;
};
std::vector<Volume> volumes; // each is asked once
bool replicas;               // is one known? asked at each read

// A look at the name of a descriptor: behind which lock, and when.
struct Blik {
    uint64_t slot = 0;
    int64_t ms = -NAAMVERS - 1;
};
std::array<Blik, 1024> blikken;
uint64_t sloten = 1;

bool proef() {
    const char* s = getenv("ZGGEDEELD");
    return s && strcmp(s, "replica") == 0;
}

const Volume* volume_van(const std::string& pad) {
    const auto v = std::find_if(volumes.begin(), volumes.end(), [&](const Volume& w) {
        return pad.starts_with(w.punt) && (pad.size() == w.punt.size() || pad[w.punt.size()] == '/');
    });
    return v == volumes.end() ? nullptr : &*v;
}

Blik nu() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC_COARSE, &t);
    return {sloten, int64_t{t.tv_sec} * 1000 + t.tv_nsec / 1'000'000};
}

Blik* blik_van(int fd) {
    return fd >= 0 && static_cast<size_t>(fd) < blikken.size() ? &blikken[static_cast<size_t>(fd)] : nullptr;
}

// Of a descriptor, the name as it goes from the working directory where it lies below that, which is fewer steps over the
// wire. Empty: on no replica.
std::string naam_op_replica(int fd) {
    constexpr std::string_view WEG = " (deleted)"; // so is one that only this host lost sight of
    std::string pad = SYSFDPAD(fd);
    if (const Volume* v = volume_van(pad); !proef() && !(v && v->replica))
        return "";
    if (pad.ends_with(WEG))
        pad.erase(pad.size() - WEG.size());
    const std::string& hier = IOHIER();
    const bool eronder = pad.size() > hier.size() && pad.starts_with(hier) && pad[hier.size()] == '/';
    return eronder ? pad.substr(hier.size() + 1) : pad;
}

} // namespace

void IOREPLICABIJ(const std::string& pad) {
    if (pad.empty() || volume_van(pad))
        return;
    const IOMOUNT mount = IOMOUNTVAN(pad);
    bool replica = false;
    if (mount.soort == "fuse.glusterfs" &&
        !IOVOLUME(mount.punt, [&](const std::string& type, const std::string&) {
            replica |= type == "cluster/replicate";
        }))
        replica = true; // where the mount doesn't tell it may be one
    volumes.push_back({mount.punt == "/" ? "" : mount.punt, replica});
    replicas |= replica;
}

void IONAAMSLOT() {
    sloten++;
}

void IONAAMOPEN(int fd) {
    replicas = replicas || proef();
    if (Blik* b = blik_van(fd); b && replicas)
        *b = nu();
}

void IONAAMVERS(int fd) {
    if (!replicas)
        return;
    const Blik dan = nu();
    Blik* b = blik_van(fd);
    if (b && b->slot == dan.slot && dan.ms - b->ms <= NAAMVERS)
        return;
    const int fout = errno; // is that of the call for which this is done
    if (b)
        *b = dan;
    if (const std::string pad = naam_op_replica(fd); !pad.empty())
        SYS.naam(pad.c_str());
    errno = fout;
}

} // namespace zg
