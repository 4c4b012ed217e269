// The store beside its peers, on the same work, turn by turn in one run, so that whatever else the machine does
// hits all of them. Every result is checked before its figure is printed. Under each of the store's own figures
// stands the floor: the same system calls made again without the store around them.
// usage: bench_store [-n RECORDS] [-d DIRECTORY] [-p store|...]   (-p: only engines whose name contains this)
#include "bench/bank.h"
#include "bench/spoor.h"
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <random>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace bank;

namespace bank {
void stop(const char* wat, const char* waarom) {
    fprintf(stderr, "bench_store: %s: %s\n", wat, waarom);
    exit(1);
}
} // namespace bank

namespace {

constexpr int BEURTEN = 40; // turns of an operation; every second of the store's is traced
constexpr int GROEPEN = 500;
constexpr int HERBOUWEN = 7; // rebuilds of each engine, of which the middle one counts

// Seconds: of this process on the processor, user and system, so that other work on the machine stays out of the
// figures. Nothing here waits for a disk. Where several processes are at work it is wall time.
double nu() {
    struct timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}
double wand() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}
double mediaan(std::vector<double> v) {
    if (v.empty())
        return 0;
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

struct Werk {
    int n;
    std::vector<Rij> rijen; // in the order of insertion; nr is a number from 0 to n - 1
    std::vector<int> van;   // nr -> place in rijen
    std::vector<bool> weg;
    std::mt19937 r{20};

    explicit Werk(int aantal)
        : n(aantal), van(static_cast<size_t>(aantal)), weg(static_cast<size_t>(aantal)) {
        std::vector<int> nrs(static_cast<size_t>(n));
        for (int i = 0; i < n; i++)
            nrs[static_cast<size_t>(i)] = i;
        std::shuffle(nrs.begin(), nrs.end(), r);
        for (int i = 0; i < n; i++) {
            Rij q{};
            q.nr = nrs[static_cast<size_t>(i)];
            maak_naam(q.naam);
            q.groep = static_cast<uint16_t>(r() % GROEPEN);
            for (char& c : q.code)
                c = static_cast<char>('A' + r() % 26);
            memset(q.rest, 'a' + i % 26, sizeof q.rest);
            rijen.push_back(q);
            van[static_cast<size_t>(q.nr)] = i;
        }
    }
    void maak_naam(char* naam) { // a few records to a name
        memcpy(naam, "JANSEN ", 7);
        for (int i = 7; i < 12; i++)
            naam[i] = static_cast<char>('A' + r() % (i < 10 ? 26 : 4));
    }
    Rij& rij(int nr) { return rijen[static_cast<size_t>(van[static_cast<size_t>(nr)])]; }
    Som som(int groep = -1) {
        Som s;
        for (const Rij& q : rijen)
            if (!weg[static_cast<size_t>(q.nr)] && (groep < 0 || q.groep == groep))
                s.tel(q);
        return s;
    }
};

struct Deelnemer {
    std::unique_ptr<Bank> bank;
    bool eigen; // the store itself
    std::vector<double> us;
};
std::vector<Deelnemer> deelnemers;
std::string map_;

struct Regel {
    std::string wat;
    double calls = 0, vloer = 0;
    std::vector<double> us;
};
std::vector<Regel> regels;

std::vector<spoor::Naar> bestanden(const std::vector<spoor::Aanroep>& lijst, const std::string& map) {
    std::vector<spoor::Naar> uit;
    for (const spoor::Aanroep& a : lijst) {
        bool al = std::any_of(uit.begin(), uit.end(), [&](const spoor::Naar& n) { return n.van == a.fd; });
        if (al)
            continue;
        char pad[4096];
        ssize_t n = readlink(("/proc/self/fd/" + std::to_string(a.fd)).c_str(), pad, sizeof pad - 1);
        eis(n > 0, "readlink");
        pad[n] = '\0';
        uit.push_back({a.fd, map + "/vloer" + std::filesystem::path(pad).extension().string()});
    }
    return uit;
}

// Run an operation of every engine in turns. doe(bank, from, to) does that part of the work and checks it.
void meet(const char* wat, int ops, const std::function<void(Bank&, int, int)>& doe) {
    Regel regel{wat, 0, 0, {}};
    std::vector<double> vloer, calls;
    for (Deelnemer& d : deelnemers)
        d.us.clear();
    for (int beurt = 0; beurt < BEURTEN; beurt++) {
        int van = static_cast<int>(int64_t{ops} * beurt / BEURTEN),
            tot = static_cast<int>(int64_t{ops} * (beurt + 1) / BEURTEN);
        if (tot == van)
            continue;
        for (Deelnemer& d : deelnemers) {
            if (d.eigen && beurt % 2) {
                for (const char* uit : {".INX", ".TXT"})
                    spoor::kopieer(map_ + "/BENCH" + uit, map_ + "/vloer" + uit);
                spoor::begin();
                doe(*d.bank, van, tot);
                auto lijst = spoor::einde();
                calls.push_back(static_cast<double>(lijst.size()) / (tot - van));
                vloer.push_back(spoor::herhaal(lijst, bestanden(lijst, map_)) * 1e6 / (tot - van));
                continue;
            }
            spoor::koel();
            double t = nu();
            doe(*d.bank, van, tot);
            d.us.push_back((nu() - t) * 1e6 / (tot - van));
        }
    }
    regel.calls = mediaan(calls);
    regel.vloer = mediaan(vloer);
    for (Deelnemer& d : deelnemers)
        regel.us.push_back(mediaan(d.us));
    regels.push_back(regel);
}

void kop() {
    printf("\n%-22s %8s %6s %8s %6s", "microseconds", "store", "calls", "floor", "x");
    for (size_t i = 1; i < deelnemers.size(); i++)
        printf(" %12s %6s", deelnemers[i].bank->naam(), "x");
    printf("\n");
}
void druk() {
    kop();
    for (const Regel& r : regels) {
        printf("%-22s %8.2f", r.wat.c_str(), r.us[0]);
        if (r.vloer > 0)
            printf(" %6.1f %8.2f %6.2f", r.calls, r.vloer, r.us[0] / r.vloer);
        else
            printf(" %6s %8s %6s", "", "", "");
        for (size_t i = 1; i < r.us.size(); i++)
            if (r.us[i] > 0)
                printf(" %12.2f %6.2f", r.us[i], r.us[i] / r.us[0]);
            else
                printf(" %12s %6s", "-", "");
        printf("\n");
    }
    fflush(stdout);
    regels.clear();
}

// What the machine gives.
void machine() {
    std::string pad = map_ + "/machine";
    int fd = open(pad.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0660);
    std::vector<char> blok(1 << 20);
    eis(pwrite(fd, blok.data(), blok.size(), 0) == static_cast<ssize_t>(blok.size()), "pwrite");
    constexpr int N = 100000;
    auto per = [](const char* wat, auto doe) {
        std::vector<double> v;
        for (int k = 0; k < 5; k++) {
            double t = nu();
            for (int i = 0; i < N; i++)
                doe(i);
            v.push_back((nu() - t) * 1e6 / N);
        }
        printf("%-46s %8.3f\n", wat, mediaan(v));
    };
    char doel[512];
    printf("%-46s %8s\n", "the machine", "us");
    per("pread of a cached block of 512", [&](int i) { (void)!pread(fd, doel, 512, i % 2048 * 512); });
    per("pwrite of a block of 512", [&](int i) { (void)!pwrite(fd, doel, 512, i % 2048 * 512); });
    per("lock and unlock of a region", [&](int) {
        struct flock s {};
        s.l_whence = SEEK_SET;
        s.l_len = 512;
        s.l_type = F_WRLCK;
        fcntl(fd, F_SETLK, &s);
        s.l_type = F_UNLCK;
        fcntl(fd, F_SETLK, &s);
    });
    per("memcpy of a record of 200", [&](int i) {
        memcpy(doel, blok.data() + i % 4096 * 200, 200);
        asm volatile("" : : "r"(doel) : "memory");
    });
    close(fd);
    unlink(pad.c_str());
}

void vergelijk(Som a, Som b, const char* wat, const char* wie) {
    if (!(a == b)) {
        fprintf(stderr, "%s of %s: %lld records instead of %lld\n", wat, wie,
                static_cast<long long>(a.aantal), static_cast<long long>(b.aantal));
        exit(1);
    }
}

void gedeeld(Werk& w) {
    for (Deelnemer& d : deelnemers)
        d.bank->open(map_, GEDEELD);
    const int n = w.n;
    meet("insert", n, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++)
            b.voegin(w.rijen[static_cast<size_t>(i)]);
    });
    auto willekeurig = [&](int i) { return static_cast<int>((int64_t{i} * 7919 + 13) % n); };
    Rij r{};
    meet("read by number", n, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++)
            eis(b.lees(willekeurig(i), &r) && r.nr == willekeurig(i), "read by number", b.naam());
    });
    meet("read by name", n, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++) {
            const Rij& q = w.rij(willekeurig(i));
            eis(b.leesnaam(q.naam, &r) && memcmp(r.naam, q.naam, 12) == 0, "read by name", b.naam());
        }
    });
    meet("read by group and code", n, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++) {
            const Rij& q = w.rij(willekeurig(i));
            eis(b.leescode(q.groep, q.code, &r) && r.groep == q.groep && memcmp(r.code, q.code, 10) == 0,
                "read by code", b.naam());
        }
    });
    std::vector<Som> sommen;
    for (int g = 0; g < GROEPEN; g++)
        sommen.push_back(w.som(g));
    meet("range, a group by code", GROEPEN, [&](Bank& b, int van, int tot) {
        for (int g = van; g < tot; g++)
            vergelijk(b.groep(static_cast<uint16_t>(g)), sommen[static_cast<size_t>(g)], "range", b.naam());
    });
    std::vector<Rij> voor = w.rijen;
    std::vector<std::array<char, 12>> namen(static_cast<size_t>(n / 2));
    for (auto& m : namen)
        w.maak_naam(m.data());
    meet("update under lock", n / 2, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++)
            eis(b.wijzig(willekeurig(i), namen[static_cast<size_t>(i)].data()), "update", b.naam());
    });
    for (int i = 0; i < n / 2; i++) {
        Rij& q = w.rij(willekeurig(i));
        memcpy(q.naam, namen[static_cast<size_t>(i)].data(), 12);
        q.teller++;
    }
    meet("delete under lock", n / 5, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++)
            eis(b.verwijder(willekeurig(i * 5)), "delete", b.naam());
    });
    for (int i = 0; i < n / 5; i++)
        w.weg[static_cast<size_t>(willekeurig(i * 5))] = true;
    const Som alles = w.som();
    auto lopen = [&](const char* wat, int sleutel) {
        Regel regel{wat, 0, 0, {}};
        for (Deelnemer& d : deelnemers) {
            std::vector<double> v;
            for (int k = 0; k < 3; k++) {
                double t = nu();
                vergelijk(d.bank->loop(sleutel), alles, wat, d.bank->naam());
                v.push_back((nu() - t) * 1e6 / static_cast<double>(alles.aantal));
            }
            regel.us.push_back(mediaan(v));
            if (d.eigen) {
                spoor::begin();
                d.bank->loop(sleutel);
                const auto lijst = spoor::einde();
                regel.calls = static_cast<double>(lijst.size()) / static_cast<double>(alles.aantal);
                for (const char* uit : {".INX", ".TXT"})
                    spoor::kopieer(map_ + "/BENCH" + uit, map_ + "/vloer" + uit);
                regel.vloer =
                    spoor::herhaal(lijst, bestanden(lijst, map_)) * 1e6 / static_cast<double>(alles.aantal);
            }
        }
        regels.push_back(regel);
    };
    lopen("walk by number", 1);
    lopen("walk by name", 2);
    lopen("walk by group and code", 3);
    Regel regel{"rebuild, a record", 0, 0, {}};
    for (Deelnemer& d : deelnemers)
        d.us.clear();
    for (int k = 0; k < HERBOUWEN; k++)
        for (Deelnemer& d : deelnemers) {
            double t = nu();
            if (d.bank->herbouw())
                d.us.push_back((nu() - t) * 1e6 / static_cast<double>(alles.aantal));
        }
    for (Deelnemer& d : deelnemers) {
        regel.us.push_back(mediaan(d.us));
        for (int s = 1; s <= 3; s++)
            vergelijk(d.bank->loop(s), alles, "walk after the rebuild", d.bank->naam());
    }
    regels.push_back(regel);
    for (Deelnemer& d : deelnemers)
        d.bank->sluit();
    printf("\nshared mode, one process, %d records of %zu bytes, three keys", n, sizeof(Rij));
    druk();
}

void alleen(Werk& w) {
    std::filesystem::create_directory(map_ + "/alleen");
    std::string bewaar = map_;
    map_ += "/alleen";
    for (Deelnemer& d : deelnemers) {
        d.bank->open(map_, ALLEEN);
        d.bank->begin();
    }
    meet("insert", w.n, [&](Bank& b, int van, int tot) {
        for (int i = van; i < tot; i++)
            b.voegin(w.rijen[static_cast<size_t>(i)]);
    });
    std::fill(w.weg.begin(), w.weg.end(), false);
    Regel slot{"the end, a record", 0, 0, {}}; // what was kept back until then
    for (Deelnemer& d : deelnemers) {
        double t = nu();
        d.bank->einde();
        t -= nu();
        vergelijk(d.bank->loop(1), w.som(), "walk", d.bank->naam());
        t += nu();
        d.bank->sluit();
        slot.us.push_back((nu() - t) * 1e6 / w.n);
    }
    regels.push_back(slot);
    map_ = bewaar;
    printf("\nexclusive mode; SQLite and LMDB in one transaction");
    druk();
}

// Processes at once, each with records of its own to insert, and updates all over.
void samen(Werk& w) {
    const int n = w.n / 5;
    for (int processen : {1, 2, 4, 8}) {
        Regel regel{std::to_string(processen) + " at once", 0, 0, {}};
        for (Deelnemer& d : deelnemers) {
            if (!d.bank->gedeeld()) {
                regel.us.push_back(0);
                continue;
            }
            std::string map = map_ + "/samen";
            std::filesystem::remove_all(map);
            std::filesystem::create_directory(map);
            d.bank->open(map, GEDEELD);
            d.bank->sluit();
            int poort[2];
            eis(pipe(poort) == 0, "pipe");
            std::vector<pid_t> kinderen;
            for (int p = 0; p < processen; p++) {
                pid_t kind = fork();
                if (kind == 0) {
                    close(poort[1]);
                    d.bank->open(map, GEDEELD);
                    char c;
                    (void)!read(poort[0], &c, 1);
                    for (int i = p; i < n; i += processen) {
                        d.bank->voegin(w.rijen[static_cast<size_t>(i)]);
                        if (i % 4 == 0)
                            eis(d.bank->wijzig(w.rijen[static_cast<size_t>(i)].nr, "JANSEN GEWYZ"), "update",
                                d.bank->naam());
                    }
                    d.bank->sluit();
                    _exit(0);
                }
                kinderen.push_back(kind);
            }
            usleep(300000); // until all have opened
            double t = wand();
            close(poort[0]);
            close(poort[1]);
            for (pid_t kind : kinderen) {
                int status;
                waitpid(kind, &status, 0);
                eis(status == 0, "process", d.bank->naam());
            }
            regel.us.push_back((wand() - t) * 1e6 / n);
            d.bank->open(map, GEDEELD);
            Som s;
            for (int i = 0; i < n; i++) {
                Rij q = w.rijen[static_cast<size_t>(i)];
                q.teller += i % 4 == 0;
                s.tel(q);
            }
            vergelijk(d.bank->loop(2), s, "walk", d.bank->naam());
            d.bank->sluit();
        }
        regels.push_back(regel);
    }
    printf("\nshared mode, wall time of an insert and a quarter update under lock");
    druk();
}

} // namespace

int main(int argc, char** argv) {
    int n = 100000;
    std::string map = "bench.tmp", alleen_wie;
    for (int c; (c = getopt(argc, argv, "n:d:p:")) != -1;)
        switch (c) {
        case 'n':
            n = atoi(optarg);
            break;
        case 'd':
            map = optarg;
            break;
        case 'p':
            alleen_wie = optarg;
            break;
        default:
            return 2;
        }
    std::filesystem::remove_all(map);
    std::filesystem::create_directories(map);
    map_ = std::filesystem::absolute(map).string();
    auto doe_mee = [&](std::unique_ptr<Bank> b) {
        bool eigen = deelnemers.empty();
        if (eigen || std::string(b->naam()).find(alleen_wie) != std::string::npos)
            deelnemers.push_back({std::move(b), eigen, {}});
    };
    doe_mee(ix_bank(true));
    doe_mee(ix_bank(false));
    doe_mee(sqlite_bank(true));
    doe_mee(sqlite_bank(false));
    doe_mee(lmdb_bank(false));
    doe_mee(lmdb_bank(true));
    doe_mee(bdb_bank());
    doe_mee(tokyo_bank());
    machine();
    Werk w(n);
    gedeeld(w);
    for (Rij& q : w.rijen)
        q.teller = 0;
    alleen(w);
    samen(w);
    std::filesystem::remove_all(map_);
    return 0;
}
