#include "fuzz/hulp.h"
#include "store/bestand.h"
#include "store/ix.h"
#include "term/scherm.h"
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/resource.h>
#include <unistd.h>

extern "C" {
int __wrap_usleep(useconds_t);
unsigned __wrap_sleep(unsigned);
int __wrap_sched_yield(void);
int __wrap_usleep(useconds_t) {
    return 0;
}
unsigned __wrap_sleep(unsigned) {
    return 0;
}
int __wrap_sched_yield(void) {
    return 0;
}
}

namespace zg::fuzz {
namespace {

std::string map;
std::set<int> open_nu;
bool bezig; // with a round

int (*echt_open)(const char*, int, mode_t);
int (*echt_dicht)(int);

int volg_open(const char* pad, int vlaggen, mode_t bits) {
    int fd = echt_open(pad, vlaggen, bits);
    if (fd >= 0)
        open_nu.insert(fd);
    return fd;
}

int volg_dicht(int fd) {
    open_nu.erase(fd);
    return echt_dicht(fd);
}

void ruim_op() {
    std::error_code fout;
    if (chdir("/") == 0)
        std::filesystem::remove_all(map, fout);
}

} // namespace

void begin() {
    char naam[] = "/dev/shm/zgfuzzXXXXXX";
    if (!mkdtemp(naam) || chdir(naam) != 0)
        kapot("no directory in memory");
    map = naam;
    // Damaged counts lead far behind the end of a file; no round shall fill the memory, or take seconds.
    signal(SIGXFSZ, SIG_IGN);
    const rlimit grens{4 << 20, 4 << 20};
    setrlimit(RLIMIT_FSIZE, &grens);
    atexit(ruim_op);
    echt_open = SYS.open;
    echt_dicht = SYS.close;
    SYS.open = volg_open;
    SYS.close = volg_dicht;
    SCRFATALHAAK = [] {
        if (bezig)
            throw Stop{SCRFATALTEKST()};
        // The store at the end, which gives back what it reserved in files that a round has dropped.
        fprintf(stderr, "outside a round: %s\n", SCRFATALTEKST());
        ruim_op();
        _exit(0);
    };
    IXWAITHOOK = [](ICB*) { throw Stop{"in use"}; };
}

bool ronde(const std::function<void()>& werk, std::string* rapport) {
    bool heel = true;
    bezig = true;
    try {
        werk();
    } catch (const Stop& s) {
        heel = false;
        if (rapport)
            *rapport = s.rapport;
    }
    bezig = false;
    while (!open_nu.empty()) {
        int fd = *open_nu.begin();
        for (int i = 0; i < 8 && open_nu.count(fd); i++)
            IXBESTANDDICHT(fd);
        if (open_nu.count(fd))
            SYS.close(fd);
    }
    return heel;
}

void kapot(const std::string& wat) {
    fprintf(stderr, "FAULT: %s\n", wat.c_str());
    __builtin_trap();
}

void schrijf(const char* naam, const std::string& inhoud) {
    int fd = open(naam, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0 || write(fd, inhoud.data(), inhoud.size()) != static_cast<ssize_t>(inhoud.size()))
        kapot("can't write");
    close(fd);
}

std::string lees(const char* naam) {
    std::string uit;
    int fd = open(naam, O_RDONLY | O_CLOEXEC);
    char stuk[4096];
    for (ssize_t n; (n = read(fd, stuk, sizeof stuk)) > 0;)
        uit.append(stuk, static_cast<size_t>(n));
    close(fd);
    return uit;
}

} // namespace zg::fuzz
