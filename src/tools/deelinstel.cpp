// The settings of a GlusterFS volume as they are in force on a mount, which tells them itself (shared/volume.h). Some of the
// wrong ones show in no trial between two hosts that both live.
#include "shared/volume.h"
#include "tools/deelproef.h"
#include <set>

namespace zg {
namespace {

// Translators that are there when they are switched on.
constexpr struct {
    const char *type, *instelling;
} LAGEN[] = {
    {"performance/md-cache", "performance.stat-prefetch"},
    {"performance/write-behind", "performance.write-behind"},
    {"performance/quick-read", "performance.quick-read"},
    {"performance/open-behind", "performance.open-behind"},
    {"performance/io-cache", "performance.io-cache"},
    {"performance/read-ahead", "performance.read-ahead"},
    {"performance/readdir-ahead", "performance.readdir-ahead"},
};
// And options of those that are always there.
constexpr struct {
    const char *type, *optie, *instelling;
    bool zo_niet, hoort; // what no word means, and what it should be
} OPTIES[] = {
    {"protocol/client", "strict-locks", "client.strict-locks", false, true},
    {"cluster/replicate", "eager-lock", "cluster.eager-lock", true, false},
};

bool is_aan(const std::string& s, bool zo_niet) {
    return s.empty() ? zo_niet : s == "on" || s == "yes" || s == "true" || s == "enable" || s == "1";
}

} // namespace

bool deel_instellingen(const std::string& punt, std::string* kwaal) {
    std::set<std::string> fout;
    const bool weet = IOVOLUME(punt, [&](const std::string& type, const std::string& map) {
        for (const auto& l : LAGEN)
            if (type == l.type)
                fout.insert(l.instelling + std::string(" is on"));
        for (const auto& o : OPTIES)
            if (type == o.type && is_aan(IOWOORD(map + "/options/" + o.optie), o.zo_niet) != o.hoort)
                fout.insert(o.instelling + std::string(o.hoort ? " is off" : " is on"));
    });
    kwaal->clear();
    for (const std::string& f : fout)
        *kwaal += (kwaal->empty() ? "" : ", ") + f;
    return weet;
}

} // namespace zg
