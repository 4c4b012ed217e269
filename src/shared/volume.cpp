// Mounts and translators, see shared/volume.h.
#include "shared/volume.h"
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace zg {
namespace {

namespace fs = std::filesystem;

// The list of mounts has a blank, a tab, a line's end and a backslash by their numbers: "\040".
std::string zonder_nummers(const std::string& s) {
    const auto cijfer = [&](size_t i) { return i < s.size() && s[i] >= '0' && s[i] <= '7'; };
    std::string uit;
    for (size_t i = 0; i < s.size(); i++)
        if (s[i] == '\\' && cijfer(i + 1) && cijfer(i + 2) && cijfer(i + 3)) {
            uit += static_cast<char>((s[i + 1] - '0') * 64 + (s[i + 2] - '0') * 8 + s[i + 3] - '0');
            i += 3;
        } else
            uit += s[i];
    return uit;
}

bool eronder(const std::string& pad, const std::string& punt) {
    return pad.starts_with(punt) &&
           (pad.size() == punt.size() || punt.ends_with('/') || pad[punt.size()] == '/');
}

} // namespace

IOMOUNT IOMOUNTVAN(const std::string& pad) {
    IOMOUNT uit;
    std::ifstream in("/proc/self/mountinfo");
    for (std::string regel; std::getline(in, regel);) { // 36 35 98:0 / /mnt rw - ext4 /dev/root rw
        std::istringstream w(regel);
        std::string woord, punt;
        for (int i = 0; i < 5; i++)
            w >> punt;
        while (w >> woord && woord != "-") {
        }
        punt = zonder_nummers(punt);
        if (w >> woord && eronder(pad, punt) && punt.size() >= uit.punt.size()) // the last one lies on top
            uit = {woord, punt};
    }
    return uit;
}

bool IOVOLUME(const std::string& punt,
              const std::function<void(const std::string& type, const std::string& map)>& laag) {
    std::error_code mis;
    bool lagen = false;
    for (fs::directory_iterator e(punt + "/.meta/graphs/active", mis), einde; !mis && e != einde;
         e.increment(mis)) {
        const std::string type = IOWOORD(e->path() / "type");
        lagen = lagen || type == "protocol/client"; // there is none without
        laag(type, e->path());
    }
    return lagen && !mis;
}

std::string IOWOORD(const std::string& pad) {
    std::string s;
    std::ifstream(pad) >> s;
    std::transform(s.begin(), s.end(), s.begin(), [](unsigned char c) { return std::tolower(c); });
    return s;
}

} // namespace zg
