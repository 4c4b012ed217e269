// Blocks that an exclusive handle holds back: few calls, the same files; killed or refused at any write nothing is lost that
// had returned, and no damaged index looks sound; who reads beside it finds what stood, and waits for nothing.
#include "store/hulp.h"
#include "store/node.h"
#include "store/rebuild.h"
#include "store/uitstel.h"
#include <atomic>
#include <sys/mman.h>
#include <tuple>

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint32_t nr;
    char naam[52];
    uint32_t waarde;
    char rest[4];
};
static_assert(sizeof(Rec) == 64);                                     // never half new
const Tabel tabel{sizeof(Rec), {"k,I,1,4", "n,C,5,56", "w,I,57,60"}}; // the second has seven places in a node
constexpr uint32_t AANTAL = 120;

Rec rec(uint32_t nr, uint32_t waarde = 0) {
    Rec r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "naam %06u", (nr + waarde) * 7919 % 100'003);
    r.waarde = waarde;
    r.rest[3] = '.';
    return r;
}

uint32_t geschud(uint32_t i) {
    return i * 37 % AANTAL;
}

struct Klein { // little is held back, so much is written on the way
    size_t was = UITSTELMAX;
    Klein() { UITSTELMAX = 40; }
    ~Klein() { UITSTELMAX = was; }
};

// What a child process tells: which records had come.
struct Gedeeld {
    std::atomic<int> stap, gelopen, klaar;
    bool er[AANTAL];
};
struct Uitstel : testing::Test {
    TijdelijkeMap map;
    Gedeeld* g = static_cast<Gedeeld*>(
        mmap(nullptr, sizeof(Gedeeld), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ~Uitstel() override { munmap(g, sizeof(Gedeeld)); }

    void laad(ICB* icb) {
        for (uint32_t i = 0; i < AANTAL; i++) {
            const Rec r = rec(geschud(i));
            g->er[r.nr] = IXWRITE(icb, &r);
        }
    }
    // Sound, and with those records that had come; `in_hand`: one more, maybe.
    void goed(bool in_hand) {
        ASSERT_EQ("", gezondheid("T"));
        ICB* icb = IXOPEN("T", 0);
        int meer = 0;
        for (uint32_t nr = 0; nr < AANTAL; nr++) {
            Rec r = rec(nr);
            const bool er = IXREAD(icb, &r);
            ASSERT_TRUE(er || !g->er[nr]) << nr << " is lost";
            meer += er && !g->er[nr];
        }
        IXCLOSE(icb);
        ASSERT_LE(meer, in_hand);
    }
};

// The same changes, one after the other by a shared handle and by an exclusive one.
TEST_F(Uitstel, WeinigAanroepenEnDezelfdeBestanden) {
    static int aanroepen, index_fd;
    const auto doe = [](ICB* icb, uint32_t n, bool alles) {
        Toeval t(5);
        for (uint32_t i = 0; i < n; i++) {
            const uint32_t nr = alles ? t(n / 3) : i * 37 % n;
            Rec r = rec(nr);
            if (alles && t(4) == 0 && IXREAD(icb, &r))
                IXDELETE(icb, &r);
            else {
                r = rec(nr, alles ? t(3) : 0);
                EXPECT_EQ(1, IXWRITE(icb, &r));
            }
        }
    };
    const SYSCALLS echt = SYS;
    for (const size_t max : {UITSTELMAX, size_t{40}, size_t{200}})
        for (const bool alles : {false, true}) {
            SCOPED_TRACE(std::to_string(max) + (alles ? " all kinds" : " inserts"));
            const size_t was = UITSTELMAX;
            maak_paar("A", tabel);
            maak_paar("T", tabel);
            ICB *gedeeld = IXOPEN("A", 2), *alleen = IXOPEN("T", 1);
            memcpy(alleen->h.name, "A", 2);
            doe(gedeeld, 2500, alles);
            UITSTELMAX = max;
            aanroepen = 0;
            index_fd = alleen->idxfd;
            SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) {
                aanroepen += fd == index_fd;
                EXPECT_LE(n, SYSSTUK);
                return pwrite(fd, p, n, o);
            };
            SYS.pread = [](int fd, void* p, size_t n, off_t o) {
                aanroepen += fd == index_fd;
                return pread(fd, p, n, o);
            };
            doe(alleen, 2500, alles);
            IXCLOSE(gedeeld);
            IXCLOSE(alleen);
            SYS = echt;
            UITSTELMAX = was;
            if (max == was && !alles) {
                EXPECT_LT(aanroepen, 250);
            }
            EXPECT_EQ(lees_bestand("A.TXT"), lees_bestand("T.TXT"));
            EXPECT_TRUE(lees_index("A.INX") == lees_index("T.INX"));
            EXPECT_GEZOND("T");
        }
}

// Inserts, and changes by which no file gets another size: there only the mark tells.
TEST_F(Uitstel, SterftBijElkeSchrijfopdracht) {
    const Klein klein;
    for (const bool nieuw : {true, false}) {
        int n = 1, status = 1;
        for (; status != 0 && n < 1000; n++)
            for (const Deel deel : {NIETS, HALF}) {
                maak_paar("T", tabel);
                memset(g->er, 0, sizeof g->er);
                if (!nieuw) {
                    ICB* icb = IXOPEN("T", 2);
                    laad(icb);
                    IXCLOSE(icb);
                }
                status = in_kind([&] {
                    ICB* icb = IXOPEN("T", 1);
                    stoor(n, 0, deel);
                    if (nieuw)
                        laad(icb);
                    for (uint32_t nr = 0; nr < 8 && !nieuw; nr++) {
                        const Rec r = rec(nr, 1);
                        IXWRITE(icb, &r);
                    }
                    IXCLOSE(icb);
                });
                ASSERT_TRUE(status == 0 || status == 128 + SIGKILL) << n;
                const bool af =
                    status == 0 || IXCHECK("T") >= 0; // or killed before the first write or behind the last
                if (!af) {                            // half a record goes
                    ASSERT_EQ(0,
                              truncate("T.TXT", static_cast<off_t>(lees_bestand("T.TXT").size() / 64 * 64)));
                    ASSERT_EQ(1, IXBLDIX("T"));
                }
                SCOPED_TRACE("write " + std::to_string(n) + " kind " + std::to_string(deel));
                goed(!af);
                if (HasFatalFailure())
                    return;
            }
        EXPECT_GT(n, nieuw ? static_cast<int>(AANTAL) + 15 : 40) << "nothing was written on the way";
        EXPECT_LT(n, 1000);
    }
}

TEST_F(Uitstel, GeweigerdBijElkeSchrijfopdracht) {
    const Klein klein;
    enum { GEDAAN = 10, VERTELD, ONVERTELD };
    for (const auto& [duur, fout, deel] : {std::tuple{EENMAAL, EIO, NIETS},
                                           {EENMAAL, EIO, HALF},
                                           {VOL, ENOSPC, NIETS},
                                           {VOL, ENOSPC, HALF},
                                           {VOORTAAN, EIO, HALF}}) {
        int status = 1;
        for (int n = 1; status != GEDAAN; n += duur == EENMAAL ? 1 : 3) {
            SCOPED_TRACE("write " + std::to_string(n) + " kind " + std::to_string(duur) +
                         std::to_string(deel));
            ASSERT_LT(n, 1000);
            maak_paar("T", tabel);
            memset(g->er, 0, sizeof g->er);
            status = in_kind([&, d = duur, f = fout, e = deel] {
                ICB* icb = IXOPEN("T", 1);
                stoor(n, f, e, d);
                laad(icb);
                IXCLOSE(icb); // told by now, or by a stop
                _exit(!gestoord() ? GEDAAN : IXWEIGERINGEN > 0 ? VERTELD : ONVERTELD);
            });
            if (status == 1) { // told by a stop: for good, or at the close
                const size_t data = lees_bestand("T.TXT").size();
                if (IXCHECK("T") < 0) {
                    ASSERT_EQ(0, truncate("T.TXT", static_cast<off_t>(data / 64 * 64)));
                    ASSERT_EQ(1, IXBLDIX("T"));
                }
                goed(true);
            } else {
                // Room that can't be asked for is no refusal: all has come.
                ASSERT_TRUE(
                    status == GEDAAN || status == VERTELD ||
                    (status == ONVERTELD && std::all_of(g->er, g->er + AANTAL, [](bool er) { return er; })))
                    << status;
                goed(false);
            }
            if (HasFatalFailure())
                return;
        }
    }
}

// After each write of the index a reader, in from before, walks all of it by either key.
TEST_F(Uitstel, LezerErnaast) {
    const Klein klein;
    maak_paar("T", tabel);
    ICB* lezer = IXOPEN("T", 2);
    for (uint32_t i = 0; i < AANTAL; i += 2) {
        const Rec r = rec(i);
        ASSERT_EQ(1, IXWRITE(lezer, &r));
    }
    IXCLOSE(lezer);
    lezer = IXOPEN("T", 0);
    static Gedeeld* ginds;
    static int index_fd;
    ginds = g;
    fflush(nullptr);
    const pid_t kind = fork();
    if (kind == 0) {
        ICB* icb = IXOPEN("T", 1);
        index_fd = icb->idxfd;
        SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) {
            const ssize_t uit = pwrite(fd, p, n, o);
            if (fd == index_fd) {
                const int hier = ++ginds->stap;
                while (ginds->gelopen < hier && getppid() != 1)
                    usleep(50);
            }
            return uit;
        };
        for (uint32_t i = 1; i < AANTAL; i += 2) {
            const Rec r = rec(geschud(i) | 1);
            IXWRITE(icb, &r);
        }
        ginds->klaar = 1;
        kill(getpid(), SIGKILL); // and the last of it is never written
    }
    const KorteWacht wacht;
    int rondes = 0;
    for (bool laatste = false; !laatste; rondes++) {
        laatste = g->klaar;
        const int stap = g->stap;
        for (const int sleutel : {1, 2, 3}) {
            IXSWITCH(lezer, sleutel);
            std::vector<bool> gezien(AANTAL);
            Rec r{};
            memset(static_cast<void*>(&r), 0, sizeof r);
            for (int er = IXFIRST(lezer, &r); er; er = IXNEXT(lezer, &r)) {
                ASSERT_LT(r.nr, AANTAL);
                ASSERT_FALSE(gezien[r.nr]) << r.nr << " twice";
                gezien[r.nr] = true;
            }
            for (uint32_t nr = 0; nr < AANTAL; nr += 2)
                ASSERT_TRUE(gezien[nr]) << nr << " by key " << sleutel << " behind write " << stap;
        }
        IXSWITCH(lezer, 1);
        for (uint32_t nr = 0; nr < AANTAL; nr += 2) {
            Rec r = rec(nr);
            ASSERT_EQ(1, IXREAD(lezer, &r)) << nr;
        }
        g->gelopen = stap;
    }
    int status;
    waitpid(kind, &status, 0);
    EXPECT_GT(rondes, 20);
    EXPECT_EQ(0, KorteWacht::teller) << "the reader waited";
    IXCLOSE(lezer);
    EXPECT_EQ(-1, IXCHECK("T"));
    EXPECT_EQ(1, IXBLDIX("T"));
    EXPECT_GEZOND("T");
}

} // namespace
} // namespace zg::test
