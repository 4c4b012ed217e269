// Twenty programs on one table: they insert, change, delete, open it for themselves alone, rebuild it and walk it in
// every way, for some seconds, or for ten minutes with ZG_LONG=1. A part of the records stands still throughout, and
// every walk must give each of those once, in order; nobody may wait without end; and then the full check. The seed is
// printed; ZG_SEED sets it.
// On several hosts at once: ZG_MAP names the directory that they share, whose table is made by the first and left there;
// ZG_PROGRAMMAS how many work here, ZG_SECONDEN how long, ZG_RECORDS on how many, and with ZG_WANDELAARS so many of them only walk. ZG_TRAAG
// makes each write take up to so many microseconds and each read a quarter of it, as over a network.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <atomic>
#include <sys/mman.h>

namespace zg::test {
namespace {

constexpr int ELKE_VAST = 4;

int getal(const char* naam, int anders) {
    const char* s = getenv(naam);
    return s ? atoi(s) : anders;
}
const uint32_t RECORDS = static_cast<uint32_t>(getal("ZG_RECORDS", 1200)), VASTE = RECORDS / ELKE_VAST;
constexpr int WAAKHOND = 120; // seconds without a step by a program: it waits without end

struct [[gnu::packed]] Rec {
    uint32_t nr;
    char naam[40];
    uint16_t groep;
    int32_t waarde;
    char rest[14];
};
static_assert(sizeof(Rec) == 64);

// The second key is 44 bytes long, ten to a node: three levels, and a split in every few inserts.
const Tabel tabel{sizeof(Rec), {"k,I,1,4", "n,C,5,44", "g,I,45,46"}};

bool vast(uint32_t nr) {
    return nr % ELKE_VAST == 0;
}

Rec rec(uint32_t nr, uint32_t keer) {
    Rec r{};
    r.nr = nr;
    const uint32_t menging = (nr * 2654435761u + (vast(nr) ? 0 : keer) * 40503u) % 100'000;
    snprintf(r.naam, sizeof r.naam, "naam %05u %u", menging, nr);
    r.groep = static_cast<uint16_t>(menging % 37);
    r.waarde = static_cast<int32_t>(keer);
    return r;
}

// What the programs tell the one who watches; in memory that they share.
struct Stand {
    std::atomic<int64_t> gezien; // second of the last step
    std::atomic<int> wat;
    std::atomic<int64_t> stappen, wandelingen, alleen, herbouwd;
    char fout[160];
};

enum Werk { WANDELEN, SCHRIJVEN, WISSEN, VASTHOUDEN, ALLEEN_OPENEN, HERBOUWEN, LEZEN };

int64_t nu() {
    timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec;
}

struct Programma {
    Stand& s;
    Toeval t;
    ICB* icb = nullptr;
    bool wandelaar = false;

    bool mis(const char* wat, int soort, uint32_t nr, uint32_t laatste = 0, long aantal = 1) {
        snprintf(s.fout, sizeof s.fout,
                 "%s: walk of kind %d by key %d, record %u (%ld of them), last given %u", wat, soort,
                 IXSLEUTEL(icb), nr, aantal, laatste);
        return false;
    }

    // Every way there is; a step is one call.
    bool wandel() {
        const int sleutel = 1 + static_cast<int>(t(3)), soort = static_cast<int>(t(4));
        std::vector<uint8_t> gegeven(VASTE);
        Rec r{}, vorige{};
        IXSWITCH(icb, sleutel);
        int32_t nr = -1, vorige_nr = -1;
        bool eerste = true;
        int ok;
        icb->currec = 0; // the lowest of equal values
        if (soort == 1) {
            memset(&r, 0xFF, sizeof r);
            icb->currec = -1;
            ok = IXPREVR(icb, &r, 0);
        } else
            ok = soort == 2 ? IXFIRSTK(icb, &r, 0) : IXFIRST(icb, &r);
        const IXKEYDEF def = icb->h.keydef[sleutel - 1];
        while (ok || (soort == 3 && icb->currec >= 0)) {
            Rec hier = r;
            nr = icb->currec;
            if (ok && soort == 2 && IXGET(icb, &hier, nr) != 1)
                ok = 0; // gone since
            if (ok && hier.nr < RECORDS && vast(hier.nr)) {
                if (++gegeven[hier.nr / ELKE_VAST] > 1)
                    return mis("given twice", soort, hier.nr);
                const Rec zo = rec(hier.nr, 0);
                if (memcmp(&zo, &hier, offsetof(Rec, waarde)) != 0)
                    return mis("not as it stands", soort, hier.nr);
                uint8_t a[IXSLEUTELMAX + 4], b[IXSLEUTELMAX + 4];
                IXMAAKSLEUTEL(def, &vorige, vorige_nr, def.keylen, a);
                IXMAAKSLEUTEL(def, &hier, nr, def.keylen, b);
                const int d = IXVERGELIJK(def, a, b, def.keylen);
                if (!eerste && (soort == 1 ? d <= 0 : d >= 0))
                    return mis("out of order", soort, hier.nr);
                vorige = hier;
                vorige_nr = nr;
                eerste = false;
            }
            icb->currec = nr;
            ok = soort == 1   ? IXPREVR(icb, &r, 0)
                 : soort == 2 ? IXNEXTK(icb, &r, 0)
                 : soort == 3 ? IXSKIP(icb, &r, 0, 1, &nr)
                              : IXNEXT(icb, &r);
            s.gezien = nu();
        }
        for (uint32_t i = 0; i < VASTE; i++)
            if (!gegeven[i])
                return mis("left out", soort, i * ELKE_VAST, vorige.nr,
                           std::count(gegeven.begin(), gegeven.end(), 0));
        s.wandelingen++;
        return true;
    }

    uint32_t los() { // the number of a record that may change
        return t(VASTE) * ELKE_VAST + 1 + t(ELKE_VAST - 1);
    }
    bool schrijf() {
        const Rec r = rec(los(), t(1000));
        return IXWRITE(icb, &r) == 1;
    }
    void wis() {
        Rec r = rec(los(), 0);
        IXSWITCH(icb, 1);
        if (IXREADL(icb, &r))
            IXDELETE(icb, &r);
        else
            IXUNLOCK(icb, &r);
    }
    void houd_vast() {
        Rec r = rec(los(), 0);
        IXSWITCH(icb, 1);
        const uint32_t nr = r.nr;
        IXREADL(icb, &r);
        usleep(t(2000));
        if (t(2)) {
            r = rec(nr, t(1000));
            IXWRITE(icb, &r);
        } else
            IXUNLOCK(icb, &r);
    }
    bool lees() {
        const Rec zo = rec(t(VASTE) * ELKE_VAST, 0);
        Rec r = zo;
        IXSWITCH(icb, 1);
        if (!IXREAD(icb, &r) || memcmp(&zo, &r, offsetof(Rec, waarde)) != 0)
            return mis("not read", 9, zo.nr);
        return true;
    }

    bool stap() {
        const uint32_t lot = t(1000);
        const Werk werk = wandelaar   ? WANDELEN
                          : lot < 60  ? WANDELEN
                          : lot < 450 ? SCHRIJVEN
                          : lot < 700 ? WISSEN
                          : lot < 740 ? VASTHOUDEN
                          : lot < 750 ? ALLEEN_OPENEN
                          : lot < 753 ? HERBOUWEN
                                      : LEZEN;
        s.wat = werk;
        bool goed = true;
        switch (werk) {
        case WANDELEN:
            goed = wandel();
            break;
        case SCHRIJVEN:
            goed = schrijf();
            break;
        case WISSEN:
            wis();
            break;
        case VASTHOUDEN:
            houd_vast();
            break;
        case ALLEEN_OPENEN:
            IXCLOSE(icb);
            icb = IXOPEN("T", 1);
            for (int i = 0; i < 20; i++) {
                goed = goed && schrijf();
                wis();
            }
            goed = goed && (t(3) || wandel());
            IXCLOSE(icb);
            icb = IXOPEN("T", 2);
            s.alleen++;
            break;
        case HERBOUWEN:
            IXCLOSE(icb);
            goed = IXBLDIX("T") == 1;
            icb = IXOPEN("T", 2);
            s.herbouwd++;
            break;
        case LEZEN:
            goed = lees();
            break;
        }
        s.gezien = nu();
        s.stappen++;
        if (!goed && !s.fout[0])
            snprintf(s.fout, sizeof s.fout, "refused, work %d", werk);
        return goed;
    }
};

int traag;
SYSCALLS vlug;

void talm(int us) {
    usleep(static_cast<useconds_t>(random() % us));
}
ssize_t traag_schrijven(int fd, const void* buf, size_t n, off_t plaats) {
    talm(traag);
    const ssize_t uit = vlug.pwrite(fd, buf, n, plaats);
    talm(traag);
    return uit;
}
ssize_t traag_lezen(int fd, void* buf, size_t n, off_t plaats) {
    talm(traag / 4 + 1);
    return vlug.pread(fd, buf, n, plaats);
}

TEST(Foltering, TwintigProgrammas) {
    const int seconden = getal("ZG_SECONDEN", getenv("ZG_LONG") ? 600 : 6);
    const int PROGRAMMAS = getal("ZG_PROGRAMMAS", 20), wandelaars = getal("ZG_WANDELAARS", 0);
    const char* gedeeld = getenv("ZG_MAP");
    traag = getal("ZG_TRAAG", 0);
    vlug = SYS;
    const char* gegeven = getenv("ZG_SEED");
    const uint64_t zaad = gegeven ? strtoull(gegeven, nullptr, 10) : static_cast<uint64_t>(getpid());
    printf("seed %llu\n", static_cast<unsigned long long>(zaad));
    TijdelijkeMap map;
    KorteWacht kort;
    if (gedeeld) {
        ASSERT_TRUE(IOCHDIR(gedeeld));
    }
    if (access("T.INX", F_OK) != 0) {
        ICB* icb = maak_open("T", tabel, 1);
        for (uint32_t nr = 0; nr < RECORDS; nr++) {
            const Rec r = rec(nr, 0);
            ASSERT_EQ(1, IXWRITE(icb, &r));
        }
        IXCLOSE(icb);
    }
    const size_t maat = sizeof(Stand) * static_cast<size_t>(PROGRAMMAS);
    auto* stand =
        static_cast<Stand*>(mmap(nullptr, maat, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    const int64_t einde = nu() + seconden;
    std::vector<pid_t> pids(static_cast<size_t>(PROGRAMMAS));
    fflush(nullptr);
    for (int p = 0; p < PROGRAMMAS; p++) {
        stand[p].gezien = nu();
        srandom(static_cast<unsigned>(zaad) + static_cast<unsigned>(p));
        if ((pids[static_cast<size_t>(p)] = fork()) == 0) {
            if (p % 3 == 0 || traag) // some without their files in memory, where it isn't said for all
                setenv("ZGKAART", "0", traag);
            if (traag)
                SYS.pwrite = traag_schrijven, SYS.pread = traag_lezen;
            Programma prog{stand[p], Toeval(zaad * 100 + static_cast<uint64_t>(p)), IXOPEN("T", 2),
                           p < wandelaars};
            bool goed = true;
            while (goed && nu() < einde)
                goed = prog.stap();
            IXCLOSE(prog.icb);
            _exit(goed ? 0 : 3);
        }
    }
    int bezig = PROGRAMMAS;
    while (bezig > 0) {
        usleep(20'000);
        for (int p = 0; p < PROGRAMMAS; p++) {
            pid_t& pid = pids[static_cast<size_t>(p)];
            if (!pid)
                continue;
            int status = 0;
            if (waitpid(pid, &status, WNOHANG) == pid) {
                EXPECT_EQ(0, status) << "program " << p << ", work " << stand[p].wat << ": " << stand[p].fout;
            } else if (nu() - stand[p].gezien > WAAKHOND) {
                ADD_FAILURE() << "program " << p << " waits without end, work " << stand[p].wat;
                kill(pid, SIGKILL);
                waitpid(pid, nullptr, 0);
            } else
                continue;
            pid = 0;
            bezig--;
        }
    }
    int64_t stappen = 0, wandelingen = 0, alleen = 0, herbouwd = 0;
    for (int p = 0; p < PROGRAMMAS; p++) {
        stappen += stand[p].stappen, wandelingen += stand[p].wandelingen;
        alleen += stand[p].alleen, herbouwd += stand[p].herbouwd;
    }
    printf("%lld steps, %lld walks, %lld times alone, %lld rebuilds\n", static_cast<long long>(stappen),
           static_cast<long long>(wandelingen), static_cast<long long>(alleen),
           static_cast<long long>(herbouwd));
    EXPECT_TRUE(wandelingen > 0 || seconden == 0);
    munmap(stand, maat);
    if (gedeeld && seconden > 0) // others still work: the last one, of no seconds, looks
        return;
    EXPECT_GEZOND("T");
    ICB* icb = IXOPEN("T", 0);
    for (uint32_t nr = 0; nr < RECORDS; nr += ELKE_VAST) {
        const Rec zo = rec(nr, 0);
        Rec r = zo;
        EXPECT_EQ(1, IXREAD(icb, &r));
        EXPECT_EQ(0, memcmp(&zo, &r, offsetof(Rec, waarde)));
    }
    IXCLOSE(icb);
}

} // namespace
} // namespace zg::test
