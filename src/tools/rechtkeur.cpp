#include "tools/rechtkeur.h"
#include "term/strings.h"
#include "tools/journaalkeur.h"
#include "tools/restkeur.h"
#include <cerrno>
#include <cstring>
#include <pwd.h>
#include <set>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

struct Recht {
    std::string pad;
    mode_t is, hoort;
    uid_t eigenaar;
    gid_t groep, hoort_groep;
    bool link = false;
};

// `map` is the directory of data. Where its group may not write, one account works there, and the group doesn't count.
Recht oordeel(const std::string& pad, const struct stat& st, const struct stat& map) {
    const bool samen = map.st_mode & S_IWGRP;
    const mode_t is = st.st_mode & 07777, groep = samen ? S_IRGRP | S_IWGRP : 0, eigen = S_IRUSR | S_IWUSR;
    mode_t hoort = eigen | groep;
    if (S_ISDIR(st.st_mode)) { // sticky, nobody could put a file in place of a colleague's
        const mode_t te_veel = S_IWOTH | (samen ? S_ISVTX : 0);
        hoort = (is | S_IRWXU | (samen ? S_IRWXG | S_ISGID : 0)) & ~te_veel;
    } else if (!(is & ~mode_t{eigen | S_IRGRP | S_IWGRP | S_IROTH}))
        hoort |= is;
    return {pad, is, hoort, st.st_uid, st.st_gid, samen ? map.st_gid : st.st_gid};
}

std::vector<Recht> alle() {
    std::vector<Recht> uit;
    struct stat boven;
    if (stat(".", &boven) != 0)
        return uit;
    std::set<std::string> gehad;
    const auto neem = [&](const std::string& pad, bool map) {
        struct stat st, zelf;
        if (!gehad.insert(pad).second || stat(pad.c_str(), &st) != 0 || lstat(pad.c_str(), &zelf) != 0 ||
            !(map ? S_ISDIR(st.st_mode) : S_ISREG(st.st_mode)))
            return;
        uit.push_back(oordeel(pad, st, boven));
        uit.back().link = S_ISLNK(zelf.st_mode);
    };
    neem(".", true);
    for (const std::string& map : keur_seizoenen())
        neem(map, true);
    neem("edistam", true);
    for (const std::string& pad : keur_bekend()) {
        if (const size_t streep = pad.rfind('/'); streep != std::string::npos && streep > 0)
            neem(pad.substr(0, streep), true);
        if (!pad.ends_with(".TMP")) // a macro on its way to the next program is its user's alone
            neem(pad, false);
    }
    return uit;
}

bool anders(const Recht& r) {
    return r.is != r.hoort || r.groep != r.hoort_groep;
}

// Only the bit missing that hands the group on: the programs give new files their directory's group themselves.
bool zonder_setgid(const Recht& r) {
    return r.groep == r.hoort_groep && (r.is | S_ISGID) == r.hoort;
}

std::string wat(const Recht& r) {
    std::string uit;
    if (r.groep != r.hoort_groep)
        uit = VORM("group %u, its directory's is %u", r.groep, r.hoort_groep);
    if (r.is != r.hoort)
        uit += (uit.empty() ? "" : "; ") + VORM("mode %04o, should be %04o", r.is, r.hoort);
    return uit;
}

} // namespace

keurbestanden rechten_keur() {
    keurbestanden uit;
    for (const Recht& r : alle()) {
        keurbestand b{r.pad, ""};
        if (anders(r) && r.link)
            b.kwalen.push_back("the file that it is a link to: " + wat(r));
        else if (anders(r))
            (zonder_setgid(r) ? b.noten : b.kwalen).push_back(wat(r));
        if (!getpwuid(r.eigenaar))
            b.noten.push_back(VORM("owner %u, whom this machine doesn't know", r.eigenaar));
        if (!b.kwalen.empty() || !b.noten.empty())
            uit.push_back(std::move(b));
    }
    return uit;
}

std::vector<std::string> rechten_herstel() {
    std::vector<std::string> uit;
    for (const Recht& r : alle())
        if (anders(r)) {
            if (r.link) {
                uit.push_back(r.pad + ": " + wat(r) + ": a link, left alone");
                continue;
            }
            // The group first: giving it takes the setgid bit away.
            const bool goed = (r.groep == r.hoort_groep ||
                               chown(r.pad.c_str(), static_cast<uid_t>(-1), r.hoort_groep) == 0) &&
                              chmod(r.pad.c_str(), r.hoort) == 0;
            uit.push_back(r.pad + ": " + wat(r) +
                          (goed ? ": put right" : std::string(": ") + strerror(errno)));
        }
    return uit;
}

} // namespace zg
