#include "store/hulp.h"
#include "store/bestand.h"
#include "store/diepcheck.h"
#include "store/kaart.h"
#include "store/kop.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

void korte_wacht(ICB*) {
    KorteWacht::teller++;
    usleep(1000);
}
void (*oude_wacht)(ICB*);

struct {
    int tot = 0, fout = 0;
    Deel deel = NIETS;
    Duur duur = VOORTAAN;
    bool geweest = false;
} storing;

void (*const echt_zet)(int, void*, const void*, size_t, off_t) = SYS.kaartzet;

// Is it time? A kill doesn't return from here.
bool nu(bool groeit, const std::function<void(Deel)>& doe) {
    const bool eerste = --storing.tot == 0;
    if (storing.tot > 0 || (storing.duur == EENMAAL && !eerste) || (storing.duur == VOL && !groeit))
        return false;
    if (!storing.geweest)
        doe(storing.deel);
    storing.geweest = true;
    if (storing.fout == 0)
        kill(getpid(), SIGKILL);
    errno = storing.fout;
    return true;
}
ssize_t storend_pwrite(int fd, const void* p, size_t n, off_t plaats) {
    ssize_t gedaan = -1;
    const bool groeit = plaats + static_cast<off_t>(n) > SYSOMVANG(fd);
    if (!nu(groeit, [&](Deel d) {
            if (d != NIETS && n > 1)
                gedaan = pwrite(fd, p, d == HALF ? n / 2 : n, plaats);
        }))
        return pwrite(fd, p, n, plaats);
    if (gedaan > 0)
        storing.tot = storing.duur == EENMAAL ? 1 : storing.tot; // the rest of it is refused
    return gedaan;                                               // a short write first, then refused
}
// A store can't be refused.
void storend_zet(int fd, void* naar, const void* van, size_t n, off_t plaats) {
    const auto zet = [&](size_t k) { echt_zet(fd, naar, van, k, plaats); };
    if (storing.fout == 0)
        nu(false, [&](Deel d) { zet(d == HALF ? n / 2 : d == ALLES ? n : 0); });
    zet(n);
}
int storend_ruimte(int fd, off_t plaats, off_t n) {
    return nu(true, [](Deel) {}) ? -1 : fallocate(fd, FALLOC_FL_KEEP_SIZE, plaats, n);
}
int storend_ftruncate(int fd, off_t lengte) {
    return nu(false, [](Deel) {}) ? -1 : ftruncate(fd, lengte);
}

} // namespace

void stoor(int n, int fout, Deel deel, Duur duur) {
    storing = {n, fout, deel, duur, false};
    SYS.pwrite = storend_pwrite;
    SYS.kaartzet = storend_zet;
    SYS.ftruncate = storend_ftruncate;
    SYS.ruimte = storend_ruimte;
}
bool gestoord() {
    return storing.geweest;
}

bool in_kaart(const std::string& naam) {
    ICB* icb = IXOPEN(naam.c_str(), 0);
    const bool er = IXKAARTZETTEN(icb->idxfd, IXBLOK);
    IXCLOSE(icb);
    return er;
}

void lees_door(ssize_t (*lees)(int fd, void* p, size_t n, off_t plaats)) {
    static ssize_t (*deze)(int, void*, size_t, off_t);
    SYS.pread = deze = lees;
    SYS.kaartlees = [](int fd, void* naar, const void*, size_t n, off_t plaats) {
        deze(fd, naar, n, plaats);
    };
}

int KorteWacht::teller;
KorteWacht::KorteWacht() {
    teller = 0;
    oude_wacht = IXWAITHOOK;
    IXWAITHOOK = korte_wacht;
}
KorteWacht::~KorteWacht() {
    IXWAITHOOK = oude_wacht;
}

ICB* maak_open(const std::string& naam, const Tabel& tabel, int mode) {
    maak_paar(naam, tabel);
    return IXOPEN(naam.c_str(), mode);
}

std::string lees_index(const std::string& pad) {
    std::string uit = lees_bestand(pad);
    for (size_t i = TELPLAATS; i < TELPLAATS + 4 && i < uit.size(); i++)
        uit[i] = 0;
    return uit;
}

void definieer(ICB* icb, const Tabel& tabel) {
    IXUPDFCB(icb, 0, ("proef," + std::to_string(tabel.reclen)).c_str());
    int k = 0;
    for (const std::string& s : tabel.sleutels)
        IXUPDFCB(icb, ++k, s.c_str());
}

void maak_paar(const std::string& naam, const Tabel& tabel) {
    ICB* icb = IXCREATE(naam.c_str(), 1);
    definieer(icb, tabel);
    IXINIT(icb);
    IXCLOSE(icb);
}

std::string gezondheid(const std::string& naam) {
    std::string uit;
    for (const std::string& b : IXDIEPCHECK(naam.c_str()))
        uit += b + "\n";
    if (IXCHECK(naam.c_str()) < 0)
        uit += "IXCHECK: -1\n";
    return uit;
}

std::string stopt(const std::function<void()>& werk) {
    const Afloop a = in_proces([&] { return werk(), 0; });
    return a.status == 0   ? ""
           : a.status != 1 ? "status " + std::to_string(a.status)
                           : (a.uitvoer.empty() ? "stopped without a word" : a.uitvoer);
}

int in_kind(const std::function<void()>& werk) {
    return in_proces([&] { return werk(), 0; }, 600'000).status;
}

int processen(int n, const std::function<bool(int)>& werk) {
    fflush(nullptr);
    std::vector<pid_t> pids;
    for (int p = 0; p < n; p++) {
        pid_t pid = fork();
        if (pid == 0)
            _exit(werk(p) ? 0 : 1);
        pids.push_back(pid);
    }
    int mis = 0;
    for (pid_t pid : pids) {
        int status = 0;
        waitpid(pid, &status, 0);
        mis += status != 0;
    }
    return mis;
}

} // namespace zg::test
