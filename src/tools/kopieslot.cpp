// What holds the original still for the last rounds of a copy, and who was at work in it, see tools/kopie.h. The files
// are opened for reading alone and locked as a reader locks a record: that keeps writers out, and who may only read the
// directory can make a copy.
#include "control/controle.h"
#include "edi/edifys.h"
#include "shared/files.h"
#include "shared/gedeeld.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "term/vast.h"
#include "tools/kopie.h"
#include "tools/tool.h"
#include "tools/wie.h"
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <unistd.h>
#include <utility>

namespace zg {

namespace {

constexpr char DTSYS[] = "DTSYS.TXT";
constexpr int ETIKETTEN = 4, PRIJZEN = 9; // system records that lead to the free labels and price records

int64_t plaats(int nr, const Systabel& tabel) {
    return tabel.start + int64_t{nr - 1} * tabel.grootte;
}

struct Gebied {
    int64_t start, lengte;
};

std::vector<Gebied> gebieden(const std::string& naam) {
    if (naam != DTSYS)
        return {{0, IXBLOK}};
    return {{plaats(ETIKETTEN, SYS_RECORD), SYS_RECORD.grootte},
            {plaats(PRIJZEN, SYS_RECORD), SYS_RECORD.grootte}};
}

bool nog_dezelfde(int fd, const std::string& pad) {
    struct stat a, b;
    return SYS.fstat(fd, &a) == 0 && stat(pad.c_str(), &b) == 0 && a.st_dev == b.st_dev &&
           a.st_ino == b.st_ino;
}

// The files to hold, opened; those that are gone or were replaced are let go.
bool open_vast(Kopie* k) {
    for (auto i = k->vast.begin(); i != k->vast.end();)
        if (k->boom.contains(i->first) && nog_dezelfde(i->second, k->van + "/" + i->first)) {
            ++i;
        } else {
            SYS.close(i->second);
            i = k->vast.erase(i);
        }
    for (const auto& [naam, post] : k->boom) {
        if (!S_ISREG(post.st.st_mode) || (naam != DTSYS && !naam.ends_with(".INX")) || k->vast.contains(naam))
            continue;
        const int fd = SYS.open((k->van + "/" + naam).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
        if (fd >= 0) {
            k->vast[naam] = fd;
        } else if (errno != ENOENT) {
            k->fout = naam + ": " + strerror(errno);
            return false;
        }
    }
    return true;
}

void laat_los(Kopie* k) {
    for (const auto& [naam, fd] : k->vast)
        for (const Gebied& g : gebieden(naam))
            IOLOCK('U', fd, g.start, g.lengte);
}

bool probeer(Kopie* k, std::string* wie) {
    for (const auto& [naam, fd] : k->vast)
        for (const Gebied& g : gebieden(naam))
            if (!IOLOCK('S', fd, g.start, g.lengte)) {
                *wie = naam + ": in use" + door_wie(k->van + "/" + naam, fd, g.start, g.lengte);
                return laat_los(k), false;
            }
    for (const auto& [naam, fd] : k->vast)
        if (!nog_dezelfde(fd, k->van + "/" + naam)) {
            *wie = naam + ": replaced";
            return laat_los(k), false;
        }
    return true;
}

} // namespace

int64_t kopie_klok() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1000 + t.tv_nsec / 1'000'000;
}

bool kopie_vast(Kopie* k, int64_t eind, std::string* wie) {
    constexpr int PAUZE = 2000; // microseconds: a busy writer lets a lock go for moments only
    for (int poging = 0;; poging++) {
        if (!open_vast(k))
            return false;
        if (probeer(k, wie))
            return true;
        if (kopie_gestopt || kopie_klok() > eind) {
            k->fout = kopie_gestopt ? "stopped" : *wie;
            return false;
        }
        IOWACHT(poging, PAUZE);
    }
}

void kopie_los(Kopie* k) {
    laat_los(k);
    for (const auto& [naam, fd] : k->vast)
        if (naam != DTSYS) // still asked for users
            SYS.close(fd);
    std::erase_if(k->vast, [](const auto& v) { return v.first != DTSYS; });
}

std::vector<std::string> kopie_kritiek(const Kopie& k, bool kopie) {
    std::vector<std::string> namen;
    const auto bron = k.vast.find(DTSYS);
    const int fd = kopie ? SYS.open((k.naar + "/" + DTSYS).c_str(), O_RDONLY | O_CLOEXEC, 0) : -1;
    for (int nr = 1; bron != k.vast.end() && nr <= SYS_GEBRUIKER.slots; nr++) {
        gebruikerslot g;
        if (SYSLEES(kopie ? fd : bron->second, &g, sizeof g, plaats(nr, SYS_GEBRUIKER)) ==
                static_cast<ssize_t>(sizeof g) &&
            g.userstate >= STAND_KRITIEK &&
            IOLOCKPID(bron->second, plaats(nr, SYS_GEBRUIKER), SYS_GEBRUIKER.grootte) != 0)
            namen.push_back(toon(gebruiker_naam(g)));
    }
    if (fd >= 0)
        SYS.close(fd);
    return namen;
}

std::vector<std::string> kopie_in_handen(const Kopie& k) {
    std::vector<std::string> uit;
    for (const auto& [naam, post] : k.boom) {
        if (!naam.ends_with(".WRK") || post.st.st_size == 0)
            continue;
        const std::string pad = k.van + "/" + naam;
        const int fd = SYS.open(pad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
        const std::string wie = fd < 0 ? "" : door_wie(pad, fd, 0, 1);
        if (fd >= 0)
            SYS.close(fd);
        uit.push_back(naam + ": an order in hand" + wie + ", in the copy as it stood");
    }
    return uit;
}

std::vector<std::string> kopie_buiten(const Kopie& k) {
    std::vector<std::string> uit;
    const auto lees = [&](const char* bestand, void* naar, size_t n, int64_t waar) {
        const int fd = SYS.open((k.naar + "/" + bestand).c_str(), O_RDONLY | O_CLOEXEC, 0);
        const bool goed = fd >= 0 && SYSLEES(fd, naar, n, waar) == static_cast<ssize_t>(n);
        if (fd >= 0)
            SYS.close(fd);
        return goed;
    };
    const auto noem = [&](const char* wat, const std::string& tekst) {
        const std::string map(VASTTRIM(tekst));
        char* echt = realpath((map.starts_with("/") ? map : k.van + "/" + map).c_str(), nullptr);
        char* hier = realpath(k.van.c_str(), nullptr);
        if (!map.empty() && echt && hier && !std::string(echt).starts_with(std::string(hier) + "/") &&
            strcmp(echt, hier) != 0)
            uit.push_back(std::string(wat) + " " + toon(map) +
                          " is outside the directory, and not in the copy");
        free(echt);
        free(hier);
    };
    sysafbeelding afb;
    edirec edi;
    if (lees(DTSYS, &afb, sizeof afb, plaats(7, SYS_RECORD)))
        noem("pictures:", std::string(VASTUIT(afb.map)));
    if (lees(EDIBESTAND, &edi, sizeof edi, 0)) {
        noem("mailboxes:", std::string(VASTUIT(edi.zebedi)));
        noem("location files:", std::string(VASTUIT(edi.edidir)));
    }
    for (const auto& [wat, waar] : {std::pair{"macros:", getenv("MACRO")}, {"printers:", getenv("ZEBPRT")}})
        if (waar)
            noem(wat, waar);
    return uit;
}

} // namespace zg
