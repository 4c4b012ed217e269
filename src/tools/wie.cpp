#include "tools/wie.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/houder.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "tools/tool.h"
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {

namespace fs = std::filesystem;

namespace {

std::string map_boven(const std::string& map) {
    return (map.empty() ? std::string("..") : map + "/..");
}

int dtsys_bij(const std::string& pad) {
    static std::map<std::string, int> open; // by directory
    const std::string map(pad, 0, pad.size() - std::string(IOBASENAME(pad.c_str())).size());
    const auto [plaats, nieuw] = open.emplace(map, -1);
    if (nieuw)
        for (const std::string& hier : {map + "DTSYS.TXT", map_boven(map) + "/DTSYS.TXT"})
            if (plaats->second < 0)
                plaats->second = SYS.open(hier.c_str(), O_RDONLY | O_CLOEXEC, 0);
    return plaats->second;
}

} // namespace

std::string wie_is(int64_t proces, int dtsys) {
    if (proces != 0 && IOGEDEELD()) { // the number may be another host's, and here another's
        gebruikerslot slot;
        return houder_van(proces, dtsys, &slot) == Houder::bekend ? "user " + toon(gebruiker_naam(slot))
                                                                  : "a process of this or another host";
    }
    if (proces <= 0)
        return "";
    const std::string uit = "process " + std::to_string(proces);
    std::string programma;
    std::getline(std::ifstream("/proc/" + std::to_string(proces) + "/comm"), programma);
    programma = toon(programma);
    for (int nr = 1; dtsys >= 0 && nr <= SYS_GEBRUIKER.slots; nr++) {
        const int64_t start = SYS_GEBRUIKER.start + int64_t{nr - 1} * SYS_GEBRUIKER.grootte;
        gebruikerslot slot;
        if (IOLOCKPID(dtsys, start, SYS_GEBRUIKER.grootte) == proces &&
            SYSLEES(dtsys, &slot, sizeof slot, start) == static_cast<ssize_t>(sizeof slot))
            return uit + (programma.empty() ? "" : ", " + programma) + ", user " + toon(gebruiker_naam(slot));
    }
    return programma.empty() ? uit : uit + ", " + programma;
}

std::string door_wie(const std::string& pad, int fd, int64_t start, int64_t lengte) {
    const std::string wie = wie_is(IOLOCKPID(fd, start, lengte), dtsys_bij(pad));
    return wie.empty() ? "" : " by " + wie;
}

std::string open_bij(const std::string& pad) {
    struct stat dit, s;
    if (stat(pad.c_str(), &dit) != 0)
        return "";
    std::error_code fout;
    for (const auto& p : fs::directory_iterator("/proc", fout)) {
        const std::string nummer = p.path().filename().string();
        if (!isdigit(static_cast<unsigned char>(nummer[0])) || nummer == std::to_string(getpid()))
            continue;
        for (const auto& f : fs::directory_iterator(p.path() / "fd", fout))
            if (stat(f.path().c_str(), &s) == 0 && s.st_dev == dit.st_dev && s.st_ino == dit.st_ino)
                return " by " + wie_is(atoll(nummer.c_str()), dtsys_bij(pad));
    }
    return "";
}

} // namespace zg
