// Refused writes: a full disk, a failing one, a write that comes short. Each write of each kind of change is refused in
// turn: the caller gets 0, both files are to the byte what they were, and the same change then succeeds. Where even the
// putting back is refused the program stops, the pair is marked, and a rebuild has the record old or new.
#include "store/hulp.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <tuple>

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint32_t nr;
    char naam[56];
    uint16_t groep;
    char rest[18];
};
static_assert(sizeof(Rec) == 80);

// The second key has seven places in a node, the third equal values.
const Tabel tabel{sizeof(Rec), {"k,I,1,4", "n,C,5,60", "g,NODUPS,I,61,62"}};

Rec rec(uint32_t nr, int naam) {
    Rec r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "naam %06d", naam);
    r.groep = static_cast<uint16_t>(naam % 5);
    r.rest[0] = static_cast<char>(nr);
    return r;
}

int zet(ICB* icb, uint32_t nr, int naam) {
    Rec r = rec(nr, naam);
    return IXWRITE(icb, &r);
}

int wis(ICB* icb, uint32_t nr) {
    Rec r = rec(nr, 0);
    return IXREAD(icb, &r) ? IXDELETE(icb, &r) + 1 : -9;
}

struct Geval {
    const char* wat;
    int vooraf, gewist; // records there, and of them so many gone
    int (*werk)(ICB*);  // one change; 0 when refused
    int minstens = 4;   // the first write that is not made any more
};

const Geval gevallen[] = {
    {"insert behind the last", 10, 0, [](ICB* i) { return zet(i, 11, 11); }},
    {"insert into a freed slot", 10, 2, [](ICB* i) { return zet(i, 55, 3); }},
    {"update of all keys", 60, 0, [](ICB* i) { return zet(i, 7, 90000); }},
    {"update that splits", 60, 0, [](ICB* i) { return zet(i, 59, 31); }},
    {"update in place", 60, 0,
     [](ICB* i) {
         Rec r = rec(7, 7);
         r.rest[9] = 'x';
         return IXWRITE(i, &r);
     }},
    {"update by number", 60, 0,
     [](ICB* i) {
         Rec r = rec(7, 8);
         return IXEXISTS(i, &r) ? IXUPDATE(i, &r) : -9;
     }},
    {"over the record, without its keys", 60, 0,
     [](ICB* i) {
         Rec r = rec(7, 7);
         r.rest[9] = 'x';
         return IXEXISTS(i, &r) ? IXPUTREC(i, &r) : -9;
     },
     2},
    {"delete", 60, 0, [](ICB* i) { return wis(i, 7); }},
    {"delete of the highest below the sentinel", 60, 0, [](ICB* i) { return wis(i, 59); }},
};

void maak(int vooraf, int gewist) {
    ICB* icb = maak_open("T", tabel, 2);
    for (int i = 0; i < vooraf; i++)
        ASSERT_EQ(1, zet(icb, static_cast<uint32_t>(i), i));
    for (int i = 0; i < gewist; i++)
        wis(icb, static_cast<uint32_t>(i) * 3);
    IXCLOSE(icb);
}

enum Uit { GEWEIGERD = 10, GEDAAN = 11, TOCH = 12, WAARDE = 13 };

// One try in a process of its own, as the n-th write is refused.
int poging(const Geval& g, int mode, int n, int fout, Deel deel, Duur duur) {
    return in_kind([&] {
        ICB* icb = IXOPEN("T", mode);
        const SYSCALLS echt = SYS;
        stoor(n, fout, deel, duur);
        const int uit = g.werk(icb);
        const bool mis = gestoord();
        SYS = echt;
        if (mis && uit == 0) { // and now there is room again: the same handle goes on with sound trees
            Rec r = rec(3000, 77);
            if (mode == 2 && (IXREADL(icb, &r) || (IXUNLOCK(icb, &r), false)))
                _exit(WAARDE);
        }
        IXCLOSE(icb);
        _exit(!mis ? GEDAAN : uit ? TOCH : GEWEIGERD);
    });
}

void elke_schrijfopdracht(const Geval& g) {
    for (int mode : {2, 1}) {
        TijdelijkeMap map;
        maak(g.vooraf, g.gewist);
        const std::string idx = lees_index("T.INX"), data = lees_bestand("T.TXT");
        for (const auto& [duur, fout, deel] : {std::tuple{EENMAAL, EIO, NIETS},
                                               {EENMAAL, EIO, HALF},
                                               {VOL, ENOSPC, NIETS},
                                               {VOL, ENOSPC, HALF},
                                               {VOORTAAN, EIO, NIETS},
                                               {VOORTAAN, EIO, HALF}}) {
            int n = 1, status = 0;
            for (; n < 60; n++) {
                SCOPED_TRACE(std::string(g.wat) + ", mode " + std::to_string(mode) + ", write " +
                             std::to_string(n) + ", kind " + std::to_string(duur) + std::to_string(deel));
                schrijf_bestand("T.INX", idx);
                schrijf_bestand("T.TXT", data);
                status = poging(g, mode, n, fout, deel, duur);
                if (status == GEDAAN)
                    break;
                if (duur == VOORTAAN && status == 1) { // what stood could not be put back
                    ASSERT_FALSE(n == 1 && deel == NIETS) << "nothing was changed: no reason to stop";
                    if (mode == 2 && IXCHECK("T") >= 0) { // the last write was the refused one, and all in it
                        ASSERT_EQ("", gezondheid("T"));
                    }
                    schrijf_bestand("T.TXT",
                                    lees_bestand("T.TXT").substr(0, lees_bestand("T.TXT").size() / 80 * 80));
                    ASSERT_EQ(1, IXBLDIX("T"));
                    ASSERT_EQ("", gezondheid("T"));
                    continue;
                }
                ASSERT_EQ(GEWEIGERD, status);
                ASSERT_EQ(data, lees_bestand("T.TXT"));
                ASSERT_TRUE(idx == lees_index("T.INX"));
                ASSERT_EQ("", gezondheid("T"));
                if (duur == EENMAAL) { // the same change, undisturbed
                    ASSERT_EQ(GEDAAN, poging(g, mode, 1000, 0, NIETS, EENMAAL));
                    ASSERT_EQ("", gezondheid("T"));
                }
            }
            EXPECT_EQ(GEDAAN, status) << g.wat;
            if (duur == EENMAAL) {
                EXPECT_GE(n, mode == 2 && !in_kaart("T") ? g.minstens : 2) << g.wat;
            }
        }
    }
}

TEST(Weigering, ElkeSchrijfopdrachtVanElkeWijziging) {
    for (const Geval& g : gevallen) {
        elke_schrijfopdracht(g);
        if (HasFatalFailure())
            return;
    }
}

// Splits of one, two and three levels, found by looking how far the index grows.
TEST(Weigering, SplitsingenVanElkeDiepte) {
    std::map<int, int> bij; // blocks that one insert adds: records there before it
    {
        TijdelijkeMap map;
        ICB* icb = maak_open("T", tabel, 2);
        for (int i = 0; i < 700; i++) {
            const int voor = icb->h.nblocks;
            ASSERT_EQ(1, zet(icb, static_cast<uint32_t>(i), i));
            bij.emplace(icb->h.nblocks - voor, i);
        }
        IXCLOSE(icb);
    }
    ASSERT_GE(bij.rbegin()->first, 4) << "leaf, two above it and a root";
    for (auto [blokken, vooraf] : bij) {
        static uint32_t nr;
        nr = static_cast<uint32_t>(vooraf);
        const Geval g{"split", vooraf, 0, [](ICB* i) { return zet(i, nr, static_cast<int>(nr)); },
                      blokken > 0 ? 7 : 6};
        elke_schrijfopdracht(g);
        if (HasFatalFailure())
            return;
    }
}

// The header of a finished change stands there although the disk has refused it; and then the program is killed at the
// second write of the putting back. The first one is the mark.
TEST(Weigering, LaatsteKopStaatErToch) {
    TijdelijkeMap map;
    maak(60, 0);
    EXPECT_EQ(128 + SIGKILL, in_kind([] {
                  setenv("ZGKAART", "0", 1);
                  static ICB* icb;
                  static int sinds;
                  icb = IXOPEN("T", 2);
                  SYS.pwrite = [](int fd, const void* p, size_t n, off_t plaats) -> ssize_t {
                      const bool kop = fd == icb->idxfd && plaats == 0;
                      if (sinds == 0 && !(kop && static_cast<const char*>(p)[offsetof(IXHEADER, busy)] == 0))
                          return pwrite(fd, p, n, plaats);
                      if (++sinds == 3)
                          kill(getpid(), SIGKILL);
                      const ssize_t uit = pwrite(fd, p, n, plaats);
                      return sinds == 1 ? (errno = EIO, -1) : uit;
                  };
                  zet(icb, 7, 90000);
              }));
    EXPECT_EQ(-1, IXCHECK("T"));
}

// A key that was reserved is free again when its record could not be written, but for who keeps it; and a reservation
// itself may be refused.
TEST(Weigering, Reserveringen) {
    TijdelijkeMap map;
    maak(10, 0);
    const std::string idx = lees_index("T.INX"), data = lees_bestand("T.TXT");
    for (int n = 1; n < 24; n++) {
        const bool houdt = n % 2;
        schrijf_bestand("T.INX", idx);
        schrijf_bestand("T.TXT", data);
        const int status = in_kind([n, houdt] {
            ICB* icb = IXOPEN("T", 2);
            const SYSCALLS echt = SYS;
            stoor(1 + n / 2, ENOSPC, NIETS, EENMAAL);
            Rec r = rec(50, 50);
            const int er = IXREADL(icb, &r);
            if (n < 2)
                _exit(er == -1 ? GEWEIGERD : TOCH); // not his: nothing to write, nothing to give up
            r = rec(50, 50);
            const int uit = er ? -1 : (houdt ? IXWRITEK : IXWRITE)(icb, &r);
            const bool mis = gestoord();
            SYS = echt;
            IXKNOOP rij;
            SYSLEES(icb->idxfd, &rij, sizeof rij, 4 * IXBLOK);
            if (mis && houdt && rij.count != 1)
                _exit(WAARDE);
            IXUNLOCK(icb, &r);
            IXCLOSE(icb);
            _exit(er ? WAARDE : !mis ? GEDAAN : uit ? TOCH : GEWEIGERD);
        });
        if (status == GEDAAN)
            break;
        ASSERT_EQ(GEWEIGERD, status) << n;
        EXPECT_TRUE(idx == lees_index("T.INX")) << n;
        EXPECT_EQ(data, lees_bestand("T.TXT")) << n;
    }
    EXPECT_GEZOND("T");
}

} // namespace
} // namespace zg::test
