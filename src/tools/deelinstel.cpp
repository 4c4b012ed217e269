// The settings of a GlusterFS volume as they are in force on a mount, which tells them itself (shared/volume.h). Some of the
// wrong ones show in no trial between two hosts that both live.
#include "shared/volume.h"
#include "tools/deelproef.h"
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <strings.h>

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
    for (const char* ja : {"on", "yes", "true", "enable", "1"})
        if (strcasecmp(s.c_str(), ja) == 0)
            return true;
    return s.empty() && zo_niet;
}

using Gezet = std::map<std::string, std::map<std::string, std::string>>; // by translator and option

// What a volume is set to behind the mount takes force there and then, while the options of the mount's translators go on
// telling the old words. The log of the mount, where it may be read, tells each translator's anew that is set, of all those
// it has: "... 0-zg-client-0: option strict-locks using set value off". What is told before a graph isn't of it.
Gezet later_gezet(const std::string& punt) {
    Gezet uit;
    std::ifstream in(punt + "/.meta/logging/logfile");
    for (std::string regel; std::getline(in, regel);) {
        if (regel == "Final graph:")
            uit.clear();
        const size_t p = regel.find(": option "), van = regel.find('-', regel.rfind(' ', p - 1) + 1);
        std::string optie, woord, rest;
        std::istringstream w(p == std::string::npos || van > p ? "" : regel.substr(p + strlen(": option ")));
        if (!(w >> optie >> woord >> rest) || woord != "using" || rest != "set" || !(w >> rest >> woord))
            continue;
        auto& laag = uit[regel.substr(van + 1, p - van - 1)];
        if (laag.contains(optie)) // the next time
            laag.clear();
        laag[optie] = woord;
    }
    return uit;
}

// Of a replica: fewer servers than three, or writes that don't ask for the greater part of them.
void keur_replica(const std::string& map, std::set<std::string>* fout) {
    std::error_code mis;
    const auto servers = std::distance(std::filesystem::directory_iterator(map + "/subvolumes", mis), {});
    if (!mis && servers < 3)
        fout->insert("replica " + std::to_string(servers) + " instead of 3");
    std::ifstream in(map + "/private");
    for (std::string naam, is, woord; in >> naam;)
        if (naam == "quorum-type" && in >> is >> woord && strcasecmp(woord.c_str(), "auto") != 0)
            fout->insert("cluster.quorum-type is " + woord);
}

} // namespace

bool deel_instellingen(const std::string& punt, std::string* kwaal) {
    std::set<std::string> fout;
    const Gezet later = later_gezet(punt);
    const bool weet = IOVOLUME(punt, [&](const std::string& type, const std::string& map) {
        for (const auto& l : LAGEN)
            if (type == l.type)
                fout.insert(l.instelling + std::string(" is on"));
        if (type == "cluster/replicate")
            keur_replica(map, &fout);
        const auto nu = later.find(std::filesystem::path(map).filename());
        for (const auto& o : OPTIES) {
            if (type != o.type)
                continue;
            std::string woord;
            if (nu == later.end())
                woord = IOWOORD(map + "/options/" + o.optie);
            else if (const auto w = nu->second.find(o.optie); w != nu->second.end())
                woord = w->second;
            if (is_aan(woord, o.zo_niet) != o.hoort)
                fout.insert(o.instelling + std::string(o.hoort ? " is off" : " is on"));
        }
    });
    kwaal->clear();
    for (const std::string& f : fout)
        *kwaal += (kwaal->empty() ? "" : ", ") + f;
    return weet;
}

} // namespace zg
