// Locks of a data directory with who has them. Asked of the kernel region by region, so nothing is locked and nobody waits.
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "store/ix.h"
#include "store/node.h"
#include "term/strings.h"
#include "tools/systeemkeur.h"
#include "tools/wie.h"
#include <cstring>
#include <fcntl.h>

namespace zg {
namespace {

struct Gebied {
    int64_t begin, lengte; // 0: to the end of the file
    int64_t pid;           // -1: of an open file, not of a process
};

// All regions that somebody else has between two places; the kernel tells one at a time, in no order.
void sloten_van(int fd, int64_t van, int64_t lengte, std::vector<Gebied>* uit) {
    constexpr size_t MEEST = 200;
    struct flock f {};
    f.l_type = F_WRLCK;
    f.l_whence = SEEK_SET;
    f.l_start = van;
    f.l_len = lengte;
    if (uit->size() >= MEEST || SYS.slot(fd, F_GETLK, &f) != 0 || f.l_type == F_UNLCK)
        return;
    uit->push_back({f.l_start, f.l_len, f.l_pid});
    if (f.l_start > van)
        sloten_van(fd, van, f.l_start - van, uit);
    const int64_t achter = f.l_start + f.l_len;
    if (f.l_len > 0 && (lengte == 0 || achter < van + lengte))
        sloten_van(fd, achter, lengte ? van + lengte - achter : 0, uit);
}

std::vector<Gebied> sloten(int fd) {
    std::vector<Gebied> uit;
    sloten_van(fd, 0, 0, &uit);
    return uit;
}

int64_t slotplaats(int32_t nr) {
    return SYS_GEBRUIKER.start + int64_t{nr - 1} * SYS_GEBRUIKER.grootte;
}

// What a region is of a file: "record 12", "user 1".
std::string deel(const std::string& naam, const Gebied& g, const IXHEADER* kop) {
    if (naam == "DTSYS.TXT") {
        const int64_t batch = SYS_BATCHSLOTEN + int64_t{16} * 99;
        if (g.begin >= SYS_GEBRUIKER.start && g.begin < slotplaats(SYS_GEBRUIKER.slots + 1))
            return VORM("user slot %lld",
                        static_cast<long long>((g.begin - SYS_GEBRUIKER.start) / SYS_GEBRUIKER.grootte + 1));
        if (g.begin >= SYS_BATCHSLOTEN && g.begin < batch)
            return VORM("group %lld%s", static_cast<long long>((g.begin - SYS_BATCHSLOTEN) / 99),
                        g.lengte == 99 ? ", all of it" : "");
        if (g.begin < SYS_RECORD.slots * SYS_RECORD.grootte)
            return VORM("system record %lld", static_cast<long long>(g.begin / SYS_RECORD.grootte + 1));
        return VORM("bytes from %lld", static_cast<long long>(g.begin));
    }
    if (naam.ends_with(".INX"))
        return g.begin == 0 ? "header" : "queue of reserved keys";
    if (kop && g.lengte > 0)
        return VORM("record %lld", static_cast<long long>(g.begin / kop->reclen));
    return naam.ends_with(".TXT") && g.lengte == 0 ? "all of it" : "in hand";
}

} // namespace

std::vector<int32_t> wie_zijn_er() {
    std::vector<int32_t> uit;
    for (int32_t nr = 1; nr <= SYS_GEBRUIKER.slots; nr++) {
        gebruikerslot g, ongelezen;
        const bool er = iotab('R', &nr, &g, SYS_GEBRUIKER) != 0;
        if (!iotab('T', &nr, &ongelezen, SYS_GEBRUIKER) || (er && in_overgave(g)))
            uit.push_back(nr);
    }
    return uit;
}

std::string keur_proces(int64_t pid) {
    return pid > 0 ? wie_is(pid, iotab_fd()) : "a program";
}

std::string keur_houder(int32_t slot) {
    const std::string wie =
        wie_is(IOLOCKPID(iotab_fd(), slotplaats(slot), SYS_GEBRUIKER.grootte), iotab_fd());
    return wie.substr(0, wie.find(", user "));
}

keurbestanden sloten_keur(const std::vector<std::string>& bestanden) {
    keurbestanden uit;
    for (const std::string& naam : bestanden) {
        const bool systeem = naam == "DTSYS.TXT";
        const bool paar =
            naam.ends_with(".INX") ||
            (naam.ends_with(".TXT") && IOEXISTS((naam.substr(0, naam.size() - 4) + ".INX").c_str()));
        const std::string stam = paar ? naam.substr(0, naam.size() - 4) : naam;
        const keurlezer l(systeem ? "/dev/null" : naam);
        const int fd = systeem ? iotab_fd() : l.fd;
        const std::vector<Gebied> alle = fd < 0 ? std::vector<Gebied>{} : sloten(fd);
        if (alle.empty())
            continue;
        IXHEADER kop;
        const keurlezer inx(paar ? stam + ".INX" : "/dev/null");
        const bool heeft_kop =
            inx.fd >= 0 && SYSLEES(inx.fd, &kop, sizeof kop, 0) == ssize_t{sizeof kop} && !IXDEFFOUT(kop);
        keurbestand b{stam, ""};
        for (const Gebied& g : alle)
            b.noten.push_back(deel(naam, g, heeft_kop && naam.ends_with(".TXT") ? &kop : nullptr) +
                              ": in use by " + keur_proces(g.pid));
        uit.push_back(std::move(b));
    }
    return uit;
}

} // namespace zg
