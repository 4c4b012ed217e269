// What a directory is mounted from, and what a GlusterFS volume tells of itself on its mount: each translator of it is a
// directory there, with its type and its options.
#pragma once
#include <functional>
#include <string>

namespace zg {

struct IOMOUNT {
    std::string soort, punt; // of file system, as the system calls it; where it is mounted. Empty: not known
};
IOMOUNT IOMOUNTVAN(const std::string& pad); // a path from the root

// `laag` for each translator, with its type and its directory. False where the mount doesn't tell.
bool IOVOLUME(const std::string& punt,
              const std::function<void(const std::string& type, const std::string& map)>& laag);
// The first word of a file, in small letters; empty when there is none.
std::string IOWOORD(const std::string& pad);

} // namespace zg
