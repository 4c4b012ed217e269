// Files in memory: reading makes no calls while nobody writes; and what is done to a file under its mapping is told, or not
// noticed, but never the end of the program.
#include "shared/replica.h"
#include "shared/report.h"
#include "store/hulp.h"
#include "store/kaart.h"
#include "store/kop.h"
#include "store/node.h"
#include "store/rebuild.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint32_t nr;
    char naam[20], rest[8];
};
static_assert(sizeof(Rec) == 32);
const Tabel tabel{sizeof(Rec), {"k,I,1,4", "n,C,5,24"}};
constexpr uint32_t RECORDS = 2000;

Rec rec(uint32_t nr) {
    Rec r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "naam %u", nr * 7919 % 10'007);
    return r;
}

ICB* gevuld() {
    ICB* icb = maak_open("T", tabel, 2);
    for (uint32_t i = 0; i < RECORDS; i++) {
        const Rec r = rec(i);
        EXPECT_EQ(1, IXWRITE(icb, &r));
    }
    return icb;
}

uint32_t loop(ICB* icb, int sleutel) {
    uint32_t n = 0;
    Rec r{};
    IXSWITCH(icb, sleutel);
    for (int er = IXFIRST(icb, &r); er && n <= 2 * RECORDS; er = IXNEXT(icb, &r))
        n++;
    return n;
}

// Calls on files from now on. What ends in zeros at the end of a file is asked for, since it could have been cut there, and
// does not count; nor does the growth of the index, which comes once in a while.
int aanroepen, index_fd;
void tel(const ICB* icb) {
    aanroepen = 0;
    index_fd = icb->idxfd;
    SYS.pread = [](int fd, void* p, size_t n, off_t o) {
        aanroepen += o + static_cast<off_t>(n) != lseek(fd, 0, SEEK_END);
        return pread(fd, p, n, o);
    };
    SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) {
        aanroepen += fd != index_fd || o < lseek(fd, 0, SEEK_END);
        return pwrite(fd, p, n, o);
    };
    SYS.fstat = [](int fd, struct stat* s) { return aanroepen += fd != index_fd, fstat(fd, s); };
    SYS.slot = [](int fd, int o, struct flock* s) { return aanroepen++, fcntl(fd, o, s); };
}

TEST(Kaart, AanroepenPerWijziging) {
    const struct {
        const char* wat;
        int hoogstens;
        void (*werk)(ICB* icb, uint32_t i);
    } rijen[] = {
        {"update", 3,
         [](ICB* icb, uint32_t i) {
             Rec r = rec(i);
             IXREADL(icb, &r);
             r.rest[0] = static_cast<char>(i % 7);
             IXWRITE(icb, &r);
         }},
        {"insert", 4,
         [](ICB* icb, uint32_t i) {
             Rec r = rec(RECORDS + i);
             r.rest[7] = '.'; // else the file could have been cut behind it
             IXWRITE(icb, &r);
         }},
        {"write over, not locked", 3,
         [](ICB* icb, uint32_t i) {
             Rec r = rec(i);
             r.rest[1] = 'y';
             IXWRITE(icb, &r);
         }},
        {"insert, and keep", 5,
         [](ICB* icb, uint32_t i) {
             Rec r = rec(2 * RECORDS + i);
             r.rest[7] = '.';
             IXWRITEK(icb, &r);
             IXLOCK(icb, 13);
             aanroepen--; // which comes later
         }},
        {"moved key", 5,
         [](ICB* icb, uint32_t i) {
             Rec r = rec(i);
             IXREADL(icb, &r);
             r.naam[0] = 'm';
             IXWRITE(icb, &r);
         }},
        {"delete, and insert", 9,
         [](ICB* icb, uint32_t i) {
             Rec r = rec(RECORDS + i);
             IXREADL(icb, &r);
             IXDELETE(icb, &r);
             r = rec(5 * RECORDS + i);
             IXWRITE(icb, &r);
         }},
    };
    TijdelijkeMap map;
    ICB* icb = gevuld();
    const SYSCALLS echt = SYS;
    constexpr int N = RECORDS / 2;
    for (const auto& r : rijen) {
        if (!in_kaart("T"))
            GTEST_SKIP() << "no mapping here";
        tel(icb);
        for (uint32_t i = 0; i < N; i++)
            r.werk(icb, i);
        SYS = echt;
        EXPECT_LE(aanroepen, r.hoogstens * N) << r.wat;
    }
    IXCLOSE(icb);
    EXPECT_GEZOND("T");
}

// On a shared file system each of them is a turn over the wire: one key, records in their order, the growth of the index and
// the step from leaf to leaf apart. Others who write in between cost a look, and nothing else.
TEST(Kaart, AanroepenGedeeld) {
    setenv("ZGGEDEELD", "1", 1);
    TijdelijkeMap map;
    constexpr uint32_t N = 400;
    static int geteld;
    ICB *icb = maak_open("G", {80, {"k,I,1,4"}}, 2), *ander = nullptr;
    char r[80] = {};
    const auto zet = [&](ICB* i, uint32_t nr, bool lezen) {
        memcpy(r, &nr, sizeof nr);
        r[70] = 'x';
        EXPECT_TRUE(!lezen || IXREADL(i, r));
        r[71]++;
        EXPECT_EQ(1, IXWRITE(i, r));
    };
    for (uint32_t i = 0; i < N; i++)
        zet(icb, i * 2, false);
    const SYSCALLS echt = SYS;
    SYS.pread = [](int fd, void* p, size_t n, off_t o) { return geteld++, pread(fd, p, n, o); };
    SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) { return geteld++, pwrite(fd, p, n, o); };
    SYS.fstat = [](int fd, struct stat* s) { return geteld++, fstat(fd, s); };
    SYS.slot = [](int fd, int o, struct flock* s) { return geteld++, fcntl(fd, o, s); };
    geteld = 0;
    for (uint32_t i = 0; i < N; i++)
        zet(icb, i * 2, true);
    EXPECT_LE(geteld, 5 * N + N / 10) << "update";
    geteld = 0;
    for (uint32_t i = 0; i < N; i++)
        zet(icb, 2 * (N + i), false);
    EXPECT_LE(geteld, 7 * N + N / 4) << "insert";
    SYS = echt;
    // Behind another's change nothing of one's own is believed.
    const int kinderen = in_kind([&] {
        ander = IXOPEN("G", 2);
        for (uint32_t i = 0; i < N; i++)
            zet(ander, i * 2 + 1, false);
        IXCLOSE(ander);
    });
    EXPECT_EQ(0, kinderen);
    for (uint32_t i = 0; i < N; i++)
        zet(icb, 2 * (N + i) + 1, false);
    EXPECT_EQ(static_cast<uint32_t>(icb->h.nrecs), 4 * N);
    IXCLOSE(icb);
    unsetenv("ZGGEDEELD");
    EXPECT_GEZOND("G");
}

// On a replica a file's name is looked up between a lock that was got and the next reading of the file; elsewhere never.
TEST(Kaart, NamenOpEenReplica) {
    static int namen, sloten, ongekeken;
    static std::set<std::string> gekeken; // since the last lock
    static const SYSCALLS echt = SYS;
    const auto werk = [](ICB* icb, uint32_t nr) {
        Rec r = rec(nr);
        EXPECT_EQ(1, IXREADL(icb, &r));
        r.rest[0]++;
        EXPECT_EQ(1, IXWRITE(icb, &r)); // an update
        r.nr += RECORDS;
        EXPECT_EQ(0, IXREADL(icb, &r));
        EXPECT_EQ(1, IXWRITE(icb, &r)); // a new one, behind a reserved key
        EXPECT_EQ(0, IXDELETE(icb, &r));
        EXPECT_EQ(0, IXREAD(icb, &r));
        r.nr = nr;
        EXPECT_EQ(1, IXREAD(icb, &r));
    };
    for (const std::string waar : {"0", "1", "replica"})
        for (const int mode : {1, 2}) {
            SCOPED_TRACE(waar + ", mode " + std::to_string(mode));
            TijdelijkeMap map;
            IXCLOSE(gevuld());
            setenv("ZGGEDEELD", waar.c_str(), 1);
            namen = sloten = ongekeken = 0;
            SYS.naam = [](const char* pad) {
                namen++;
                EXPECT_TRUE(IOEXISTS(pad)) << pad;
                gekeken.insert(pad);
                return echt.naam(pad);
            };
            SYS.slot = [](int fd, int o, struct flock* s) {
                const bool neemt = o == F_SETLK && s->l_type != F_UNLCK;
                const int uit = echt.slot(fd, o, s);
                if (uit == 0 && neemt)
                    sloten++, gekeken.clear();
                return uit;
            };
            SYS.pread = [](int fd, void* p, size_t n, off_t o) {
                const ssize_t uit = echt.pread(fd, p, n, o);
                ongekeken += gekeken.count(IOFDNAAM(fd)) == 0;
                return uit;
            };
            ICB* icb = IXOPEN("T", mode);
            for (uint32_t nr = 0; nr < 20; nr++)
                werk(icb, nr * 7);
            Rec r = rec(1);
            EXPECT_EQ(1, IXREAD(icb, &r));
            const int zonder_slot = namen;
            usleep((NAAMVERS + 20) * 1000);
            EXPECT_EQ(1, IXREAD(icb, &r));
            EXPECT_EQ(namen > zonder_slot, waar == "replica") << "a while later";
            IXCLOSE(icb);
            SYS = echt;
            unsetenv("ZGGEDEELD");
            if (waar == "replica") {
                EXPECT_LE(ongekeken, 2) << "behind a lock"; // but for what is read before the first
                EXPECT_LE(namen, 2 * sloten);
                EXPECT_GE(namen, mode == 1 ? 2 : 5 * 20);
            } else
                EXPECT_EQ(namen, 0);
            EXPECT_GEZOND("T");
        }
}

TEST(Kaart, LezenZonderAanroepen) {
    TijdelijkeMap map;
    ICB *schrijver = gevuld(), *lezer = IXOPEN("T", 0);
    if (!IXKAARTER(lezer->idxfd))
        GTEST_SKIP() << "no mapping here";
    const SYSCALLS echt = SYS;
    tel(lezer);
    Rec r = rec(1234);
    EXPECT_EQ(1, IXREAD(lezer, &r));
    r.nr = RECORDS + 5;
    EXPECT_EQ(0, IXREAD(lezer, &r));
    EXPECT_EQ(RECORDS, loop(lezer, 1));
    EXPECT_EQ(RECORDS, loop(lezer, 2));
    EXPECT_EQ(0, aanroepen);
    SYS = echt;
    // What another writes is there at once, through the same mapping.
    r = rec(RECORDS + 5);
    EXPECT_EQ(1, IXWRITE(schrijver, &r));
    EXPECT_EQ(RECORDS + 1, loop(lezer, 1));
    EXPECT_EQ(RECORDS + 1, loop(lezer, 2));
    IXCLOSE(lezer);
    IXCLOSE(schrijver);
}

// Another program changes what a walk comes to next, in the leaf that the walk has in hand.
TEST(Kaart, VeranderdVlakVoorDeWandelaar) {
    TijdelijkeMap map;
    ICB *schrijver = gevuld(), *lezer = IXOPEN("T", 0);
    const bool kaart = IXKAARTER(lezer->idxfd);
    const struct {
        const char* wat;
        void (*doe)(ICB* icb, Rec volgende);
        uint32_t uit, inhoud; // number of the record that comes, from here on, and its first byte of content
    } gevallen[] = {
        {"nothing", [](ICB*, Rec) {}, 1, 0},
        {"another content", [](ICB* icb, Rec v) { v.rest[0] = 'x', IXWRITE(icb, &v); }, 1, 'x'},
        {"gone", [](ICB* icb, Rec v) { IXREADL(icb, &v), IXDELETE(icb, &v); }, 2, 0},
        {"come in between", [](ICB* icb, Rec v) { IXWRITE(icb, &v); }, 1, 0},
        {"its place taken by another",
         [](ICB* icb, Rec v) { IXREADL(icb, &v), IXDELETE(icb, &v), v.nr += 5000, IXWRITE(icb, &v); }, 2, 0},
    };
    for (const auto& g : gevallen)
        for (uint32_t van = 100; van < 1900; van += 601) {
            Rec r = rec(van);
            const Rec volgende = rec(van + 4);
            Rec weg = volgende;
            if (g.wat[0] == 'c' && IXREADL(schrijver, &weg))
                IXDELETE(schrijver, &weg);
            ASSERT_EQ(1, IXREAD(lezer, &r));
            for (int stap = 0; stap < 3; stap++)
                ASSERT_EQ(1, IXNEXT(lezer, &r));
            EXPECT_EQ(0, in_kind([&] { g.doe(schrijver, volgende), _exit(0); }));
            if (!kaart)
                usleep(60'000); // for so long a leaf may serve
            const uint32_t hier = r.nr;
            EXPECT_EQ(1, IXNEXT(lezer, &r)) << g.wat;
            EXPECT_EQ(hier + g.uit, r.nr) << g.wat;
            EXPECT_EQ(static_cast<char>(g.inhoud), r.rest[0]) << g.wat;
            EXPECT_EQ(1, IXWRITE(schrijver, &volgende));
        }
    IXCLOSE(lezer);
    IXCLOSE(schrijver);
    EXPECT_GEZOND("T");
}

// Cut, emptied, rebuilt or replaced under who has it open: an answer, or a report; and with the file whole again the same
// handle goes on.
TEST(Kaart, BestandVeranderdOnderDeLezer) {
    struct {
        const char* wat;
        const char* bestand;
        int64_t lengte; // it is cut to; below 0 so many bytes less
    } gevallen[] = {
        {"index emptied", "T.INX", 0},
        {"index cut to its header", "T.INX", IXBLOK},
        {"index cut in its roots", "T.INX", 700},
        {"index cut in the middle", "T.INX", 20 * IXBLOK + 100},
        {"index without its last block", "T.INX", -IXBLOK},
        {"data emptied", "T.TXT", 0},
        {"data cut in the middle", "T.TXT", 32'000 + 7},
        {"data without its last record", "T.TXT", -32},
        {"data cut in its last record", "T.TXT", -20},
    };
    for (const auto& g : gevallen)
        for (const int mode : {0, 2}) {
            SCOPED_TRACE(std::string(g.wat) + ", mode " + std::to_string(mode));
            TijdelijkeMap map;
            IXCLOSE(gevuld());
            const std::string heel = lees_bestand(g.bestand);
            const int64_t lengte = g.lengte < 0 ? static_cast<int64_t>(heel.size()) + g.lengte : g.lengte;
            for (const int werk : {1, 2, 3, 4}) {
                const int status = in_kind([&] {
                    ICB* icb = IXOPEN("T", mode);
                    loop(icb, 1);
                    Rec r = rec(1999);
                    IXREAD(icb, &r);
                    if (truncate(g.bestand, lengte) != 0)
                        _exit(9);
                    if (werk <= 2)
                        loop(icb, werk);
                    for (uint32_t i = 0; werk == 3 && i < RECORDS; i++)
                        if (const Rec zo = r = rec(i); IXREAD(icb, &r) && memcmp(&r, &zo, sizeof r) != 0)
                            _exit(7); // what lies behind the end is no record
                    if (werk == 4 && mode == 2)
                        r = rec(1998), IXREADL(icb, &r), IXWRITE(icb, &r), r = rec(70'000), IXWRITE(icb, &r);
                    schrijf_bestand(g.bestand, heel);
                    if (werk != 4 && (loop(icb, 1) != RECORDS || loop(icb, 2) != RECORDS))
                        _exit(8);
                    _exit(0);
                });
                EXPECT_TRUE(status == 0 || status == 1) << "work " << werk << ": status " << status;
                schrijf_bestand(g.bestand, heel);
            }
        }
}

// Cut while a writer stores into it: what he stored is lost with the file's end, so he stops with a report and the mark stays.
TEST(Kaart, AfgekaptOnderDeSchrijver) {
    TijdelijkeMap map;
    IXCLOSE(gevuld());
    if (!in_kaart("T"))
        GTEST_SKIP() << "no mapping here";
    EXPECT_EQ(1, in_kind([] {
                  ICB* icb = IXOPEN("T", 2);
                  static void (*const zet)(int, void*, const void*, size_t, off_t) = SYS.kaartzet;
                  SYS.kaartzet = [](int fd, void* naar, const void* van, size_t n, off_t o) {
                      if (truncate("T.INX", 8 * IXBLOK) == 0)
                          zet(fd, naar, van, n, o);
                  };
                  Rec r = rec(1234);
                  r.naam[0] = 'x';
                  IXWRITE(icb, &r);
              }));
    EXPECT_EQ('\x01', lees_bestand("T.INX")[offsetof(IXHEADER, busy)]);
}

// A file that outgrows its mapping gets a longer one in its place.
TEST(Kaart, EenPerBestand) {
    TijdelijkeMap map;
    IXCLOSE(gevuld());
    if (!in_kaart("T"))
        GTEST_SKIP() << "no mapping here";
    ICB* icb = IXOPEN("T", 2);
    ASSERT_EQ(0, truncate("T.TXT", 300 << 20));
    char byte;
    for (const int lengte : {150 << 20, 300 << 20})
        IXKAARTLEES(icb->datfd, 0, &byte, 1, lengte);
    const std::string kaarten = lees_bestand("/proc/self/maps");
    EXPECT_EQ(kaarten.find("/T.TXT\n"), kaarten.rfind("/T.TXT\n")) << kaarten;
    IXCLOSE(icb);
}

// Rebuilt in place beside a reader: each walk of his gives everything.
TEST(Kaart, HerbouwdOnderDeLezer) {
    TijdelijkeMap map;
    IXCLOSE(gevuld());
    ICB* lezer = IXOPEN("T", 0);
    for (int keer = 0; keer < 3; keer++) {
        EXPECT_EQ(RECORDS, loop(lezer, 2));
        EXPECT_EQ(0, in_kind([] { _exit(IXBLDIX("T") == 1 ? 0 : 1); }));
        EXPECT_EQ(RECORDS, loop(lezer, 1));
    }
    IXCLOSE(lezer);
}

// A program that doesn't count leaves the same bytes behind each change. It puts a record under a walker's feet.
TEST(Kaart, NietTellendeSchrijver) {
    for (const uint32_t geen : {0u, 0x62626262u}) {
        TijdelijkeMap map;
        ICB *schrijver = gevuld(), *lezer = IXOPEN("T", 0);
        const auto zonder = [&] { SYSSCHRIJFOP(schrijver->idxfd, &geen, sizeof geen, TELPLAATS); };
        Rec ver = rec(1), r{};
        strcpy(ver.naam, "zzz");
        EXPECT_EQ(1, IXWRITE(schrijver, &ver));
        zonder();
        IXSWITCH(lezer, 2);
        IXFIRST(lezer, &r);
        for (int keer = 0; keer < 100; keer++) {
            EXPECT_EQ(1, IXNEXT(lezer, &r));
            strcpy(ver.naam, r.naam);
            strcat(ver.naam, "!");
            EXPECT_EQ(1, IXWRITE(schrijver, &ver));
            zonder();
            EXPECT_EQ(1, IXNEXT(lezer, &r));
            EXPECT_STREQ(ver.naam, r.naam) << geen;
        }
        IXCLOSE(lezer);
        IXCLOSE(schrijver);
        EXPECT_GEZOND("T");
    }
}

// A writer between any two reads of a search: leaves split, and the way that was read leads to half of one.
struct {
    ICB* schrijver;
    int beurt, tot;
    uint32_t vanaf;
} ertussen;

ssize_t met_schrijver(int fd, void* p, size_t n, off_t plaats) {
    if (++ertussen.beurt == ertussen.tot)
        for (uint32_t i = 0; i < 100; i++) {
            const Rec r = rec(ertussen.vanaf + i);
            EXPECT_EQ(1, IXWRITE(ertussen.schrijver, &r));
        }
    return pread(fd, p, n, plaats);
}

TEST(Kaart, SchrijverTussenTweeLezingen) {
    const SYSCALLS echt = SYS;
    TijdelijkeMap map;
    ICB *schrijver = maak_open("T", tabel, 2), *lezer = IXOPEN("T", 0);
    for (uint32_t i = 0; i < 300; i++) {
        const Rec r = rec(i * 1000);
        EXPECT_EQ(1, IXWRITE(schrijver, &r));
    }
    for (int n = 1; n <= 12; n++) {
        const uint32_t gezocht = 1000 * static_cast<uint32_t>(20 * n);
        ertussen = {schrijver, 0, n, gezocht + 1};
        Rec r = rec(gezocht);
        lees_door(met_schrijver);
        EXPECT_EQ(1, IXREAD(lezer, &r)) << "before read " << n;
        SYS = echt;
    }
    IXCLOSE(lezer);
    IXCLOSE(schrijver);
    EXPECT_GEZOND("T");
}

} // namespace
} // namespace zg::test
