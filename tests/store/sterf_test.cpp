// Killed at work: at every single write of an operation in turn, and at any moment. A rebuild then gives back every
// write that had returned; the one in hand is old or new.
#include "store/hulp.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <sys/mman.h>

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec { // 32 divides a page, so a record is never half new
    uint32_t nr;
    char naam[20];
    int32_t waarde;
    int32_t rest;
};
static_assert(sizeof(Rec) == 32);

const Tabel tabel{32, {"k,I,1,4", "n,C,5,24", "w,I,25,28"}};

Rec rec(uint32_t nr, int32_t waarde) {
    Rec r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "naam %d", waarde);
    r.waarde = waarde;
    return r;
}

std::map<uint32_t, int32_t> inhoud() {
    std::map<uint32_t, int32_t> uit;
    ICB* icb = IXOPEN("T", 0);
    Rec r{};
    for (int ok = IXFIRST(icb, &r); ok; ok = IXNEXT(icb, &r))
        EXPECT_TRUE(uit.emplace(uint32_t{r.nr}, int32_t{r.waarde}).second) << r.nr << " stands twice";
    IXCLOSE(icb);
    return uit;
}

void schrijf(ICB* icb, uint32_t nr, int32_t waarde) {
    Rec r = rec(nr, waarde);
    IXWRITE(icb, &r);
}

void wis(ICB* icb, uint32_t nr) {
    Rec r = rec(nr, 0);
    if (IXREADL(icb, &r))
        IXDELETE(icb, &r);
}

TEST(Sterf, BijElkeSchrijfopdracht) {
    struct {
        const char* wat;
        int vooraf; // records 0, 10, 20 ...
        void (*werk)(ICB*);
        uint32_t nr;
        int32_t nieuw;  // -1: gone
        int minstens;   // writes it must take, or the case is not what it says
        int koppen = 2; // of the header among them
    } gevallen[] = {
        {"insert", 10, [](ICB* i) { schrijf(i, 55, 7); }, 55, 7, 6},
        {"insert that splits roots", 61, [](ICB* i) { schrijf(i, 55, 7); }, 55, 7, 7},
        {"insert that splits leaves", 105, [](ICB* i) { schrijf(i, 1055, 7); }, 1055, 7, 7},
        {"insert into a freed slot", 10,
         [](ICB* i) {
             wis(i, 30);
             schrijf(i, 55, 7);
         },
         55, 7, 12, 4},
        {"reserved, then inserted", 10,
         [](ICB* i) {
             Rec r = rec(55, 7);
             IXREADL(i, &r);
             schrijf(i, 55, 7);
         },
         55, 7, 8},
        {"update that moves two keys", 200, [](ICB* i) { schrijf(i, 50, 70'000); }, 50, 70'000, 7},
        {"update in place", 200,
         [](ICB* i) {
             Rec r = rec(50, 5);
             r.rest = 9;
             IXWRITE(i, &r);
         },
         50, 5, 3},
        {"delete", 200, [](ICB* i) { wis(i, 50); }, 50, -1, 6},
        {"delete of the last in its leaf", 200,
         [](ICB* i) {
             wis(i, 0);
             wis(i, 430);
         },
         430, -1, 12, 4},
    };
    for (auto& g : gevallen) {
        TijdelijkeMap map;
        ICB* icb = maak_open("T", tabel, 2);
        for (int i = 0; i < g.vooraf; i++)
            schrijf(icb, static_cast<uint32_t>(i) * 10, i);
        IXCLOSE(icb);
        const std::string idx = lees_index("T.INX"), data = lees_bestand("T.TXT");
        const std::map<uint32_t, int32_t> oud = inhoud();
        int n = 0, status = 1;
        for (; status != 0 && n < 60; n++)
            for (Deel deel : {NIETS, ALLES}) { // killed before the write, or behind it
                schrijf_bestand("T.INX", idx);
                schrijf_bestand("T.TXT", data);
                status = in_kind([&] {
                    ICB* i = IXOPEN("T", 2);
                    stoor(n + 1, 0, deel);
                    g.werk(i);
                });
                ASSERT_TRUE(status == 0 || status == 128 + SIGKILL) << g.wat << n;
                ASSERT_EQ(1, IXBLDIX("T")) << g.wat << ", write " << n;
                ASSERT_EQ("", gezondheid("T")) << g.wat << ", write " << n;
                // Everything but the record at work stands as it did; a delete before it may have been done.
                std::map<uint32_t, int32_t> nu = inhoud();
                auto waarde = [&](const std::map<uint32_t, int32_t>& m) {
                    return m.count(g.nr) ? m.at(g.nr) : -1;
                };
                const bool is_nieuw = waarde(nu) == g.nieuw;
                ASSERT_TRUE(is_nieuw || (status && waarde(nu) == waarde(oud))) << g.wat << ", write " << n;
                ASSERT_LE(oud.size(), nu.size() + 2) << g.wat << n;
                nu.erase(g.nr);
                for (auto& stuk : nu)
                    ASSERT_TRUE(std::includes(oud.begin(), oud.end(), &stuk, &stuk + 1)) << g.wat << n;
            }
        EXPECT_GT(n, g.minstens - (in_kaart("T") ? g.koppen : 0)) << g.wat;
        EXPECT_LT(n, 60) << g.wat;
    }
}

// Per process and record: what stands for sure, and what is being written. In memory that outlives a process.
struct Stand {
    int32_t vast, wordt; // -1 none
};
constexpr int PROCESSEN = 6, EIGEN = 300;

void werk(int p, Stand* stand, uint64_t zaad) {
    ICB* icb = IXOPEN("T", 2);
    Toeval t(zaad);
    for (int32_t i = 0;; i++) {
        uint32_t k = t(EIGEN), nr = k * PROCESSEN + static_cast<uint32_t>(p);
        Stand& s = stand[nr];
        Rec r = rec(nr, 0);
        bool er = IXREADL(icb, &r);
        if (er != (s.vast >= 0) || (er && r.waarde != s.vast))
            _exit(3);
        if (er && t(3) == 0) {
            s.wordt = -1;
            IXDELETE(icb, &r);
        } else {
            r = rec(nr, static_cast<int32_t>(t(1'000'000)));
            s.wordt = r.waarde;
            IXWRITE(icb, &r);
        }
        s.vast = s.wordt;
    }
}

TEST(Sterf, OpElkMoment) {
    const int doden = getenv("ZG_LONG") ? 2000 : 80;
    TijdelijkeMap map;
    KorteWacht kort;
    maak_paar("T", tabel);
    auto* stand = static_cast<Stand*>(mmap(nullptr, sizeof(Stand) * PROCESSEN * EIGEN, PROT_READ | PROT_WRITE,
                                           MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    for (int i = 0; i < PROCESSEN * EIGEN; i++)
        stand[i] = {-1, -1};
    Toeval t(static_cast<uint64_t>(getpid()));
    int gemarkeerd = 0;
    // On a busy machine the processes hardly get going before they die: on until one was hit in the middle.
    for (int dood = 0; dood < doden || (gemarkeerd == 0 && dood < 20 * doden); dood += PROCESSEN) {
        pid_t pids[PROCESSEN];
        fflush(nullptr);
        for (int p = 0; p < PROCESSEN; p++)
            if ((pids[p] = fork()) == 0) {
                werk(p, stand, static_cast<uint64_t>(dood * 10 + p) + t.staat);
                _exit(0);
            }
        for (pid_t pid : pids) { // one after the other: the others work on beside what the first left behind
            usleep(1000 + t(4000));
            kill(pid, SIGKILL);
        }
        for (pid_t pid : pids) {
            int status = 0;
            waitpid(pid, &status, 0);
            // A process may have met the mark that a killed one left, and stopped with a report; never a wrong answer.
            ASSERT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 1) << "status " << WEXITSTATUS(status);
        }
        gemarkeerd += IXCHECK("T") < 0;
        ASSERT_EQ(1, IXBLDIX("T"));
        ASSERT_EQ("", gezondheid("T"));
        std::map<uint32_t, int32_t> nu = inhoud();
        for (uint32_t nr = 0; nr < PROCESSEN * EIGEN; nr++) {
            int32_t is = nu.count(nr) ? nu[nr] : -1;
            ASSERT_TRUE(is == stand[nr].vast || is == stand[nr].wordt)
                << nr << " is " << is << ", was " << stand[nr].vast << ", in hand " << stand[nr].wordt;
            stand[nr] = {is, is};
        }
    }
    EXPECT_GT(gemarkeerd, 0) << "no kill hit an update";
    munmap(stand, sizeof(Stand) * PROCESSEN * EIGEN);
}

} // namespace
} // namespace zg::test
