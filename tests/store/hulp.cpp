#include "store/hulp.h"
#include "store/bestand.h"
#include "store/diepcheck.h"
#include "term/scherm.h"
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

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
int storend_ftruncate(int fd, off_t lengte) {
    return nu(false, [](Deel) {}) ? -1 : ftruncate(fd, lengte);
}

} // namespace

void stoor(int n, int fout, Deel deel, Duur duur) {
    storing = {n, fout, deel, duur, false};
    SYS.pwrite = storend_pwrite;
    SYS.ftruncate = storend_ftruncate;
}
bool gestoord() {
    return storing.geweest;
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
    int pijp[2];
    if (pipe(pijp) < 0)
        return "pipe";
    fflush(stdout);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(pijp[1], 1);
        close(pijp[0]);
        int niets = open("/dev/null", O_RDONLY);
        dup2(niets, 0);
        werk();
        _exit(0);
    }
    close(pijp[1]);
    std::string uit;
    char b[4096];
    for (ssize_t n; (n = read(pijp[0], b, sizeof b)) > 0;)
        uit.append(b, static_cast<size_t>(n));
    close(pijp[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return "";
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 1)
        return "status " + std::to_string(status);
    return uit.empty() ? "stopped without a word" : uit;
}

int in_kind(const std::function<void()>& werk) {
    fflush(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        werk();
        _exit(0);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
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

Agent::Agent(std::function<std::string(const std::string&)> doe) {
    int heen[2], terug[2];
    if (pipe(heen) < 0 || pipe(terug) < 0)
        abort();
    fflush(nullptr);
    pid_ = fork();
    if (pid_ == 0) {
        close(heen[1]);
        close(terug[0]);
        IXWAITHOOK = korte_wacht;
        char b[256];
        for (ssize_t n; (n = read(heen[0], b, sizeof b)) > 0;) {
            std::string a = doe(std::string(b, static_cast<size_t>(n))) + "\n";
            if (write(terug[1], a.data(), a.size()) < 0)
                break;
        }
        _exit(0);
    }
    close(heen[0]);
    close(terug[1]);
    heen_ = heen[1];
    terug_ = terug[0];
}

Agent::~Agent() {
    dood();
    close(heen_);
    close(terug_);
}

void Agent::dood() {
    if (pid_ > 0) {
        kill(pid_, SIGKILL);
        waitpid(pid_, nullptr, 0);
    }
    pid_ = 0;
}

std::string Agent::vraag(const std::string& opdracht) {
    if (write(heen_, opdracht.data(), opdracht.size()) < 0)
        return "dead";
    return antwoord(250);
}

std::string Agent::antwoord(int ms) {
    std::string uit;
    for (;;) {
        pollfd p{terug_, POLLIN, 0};
        if (poll(&p, 1, ms) <= 0)
            return geen_antwoord;
        char c;
        if (read(terug_, &c, 1) != 1)
            return "dead";
        if (c == '\n')
            return uit;
        uit += c;
    }
}

} // namespace zg::test
