// What the disk has lost: the end of a data file, the end of an index block. Walks stop with a report where they would have
// given less, and nothing is written behind the end. On both roads, whoever holds the handle.
#include "shared/gedeeld.h"
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint32_t nr;
    char naam[20], rest[8];
};
static_assert(sizeof(Rec) == 32);
constexpr uint32_t RECORDS = 500;

Rec rec(uint32_t nr) {
    Rec r{};
    r.nr = nr;
    snprintf(r.naam, sizeof r.naam, "naam %u", nr * 7919 % 10'007);
    r.rest[7] = '.';
    return r;
}

void maak() {
    ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,4", "n,C,5,24"}}, 2);
    for (uint32_t i = 0; i < RECORDS; i++) {
        const Rec r = rec(i);
        ASSERT_EQ(1, IXWRITE(icb, &r));
    }
    IXCLOSE(icb);
}

uint32_t loop(ICB* icb, int sleutel, bool terug) {
    uint32_t n = 0;
    Rec r{};
    IXSWITCH(icb, sleutel);
    if (terug) {
        memset(&r, 0xFF, sizeof r);
        icb->currec = INT32_MAX;
        while (n <= RECORDS && IXPREVR(icb, &r, 0))
            n++;
    } else
        for (int er = IXFIRST(icb, &r); er && n <= RECORDS; er = IXNEXT(icb, &r))
            n++;
    return n;
}

constexpr const char* RAAR = "iet consistent";

struct Afgekapt : testing::Test {
    TijdelijkeMap map;
    ~Afgekapt() override { unsetenv("ZGKAART"); }
    // Each road, each kind of handle.
    template <class F> void overal(F doe) {
        for (const char* kaart : {"1", "0"})
            for (const int mode : {0, 1, 2}) {
                SCOPED_TRACE(std::string("ZGKAART=") + kaart + ", mode " + std::to_string(mode));
                setenv("ZGKAART", kaart, 1);
                doe(mode);
            }
    }
};

TEST_F(Afgekapt, GegevensOnderDeWandelaar) {
    maak();
    const std::string data = lees_bestand("T.TXT");
    for (const size_t lengte : {data.size() - 32, data.size() - 20, size_t{250 * 32}, size_t{0}})
        overal([&](int mode) {
            schrijf_bestand("T.TXT", data.substr(0, lengte));
            for (const int sleutel : {1, 2})
                for (const bool terug : {false, true}) {
                    const std::string rapport = stopt([&] { loop(IXOPEN("T", mode), sleutel, terug); });
                    EXPECT_NE(std::string::npos, rapport.find(RAAR))
                        << lengte << ", key " << sleutel << terug << ": " << rapport;
                }
            EXPECT_EQ("", stopt([&] {
                          ICB* icb = IXOPEN("T", mode);
                          for (uint32_t i = 0; (i + 1) * 32 <= lengte; i++)
                              if (Rec r = rec(i); IXREAD(icb, &r) != 1)
                                  _exit(3);
                      }))
                << "read, " << lengte;
            // What lies behind the end isn't there; or is of zeros, when the file has grown again.
            for (const bool gegroeid : {false, true}) {
                if (gegroeid && lengte % 32 != 0) // its key stands there still
                    continue;
                schrijf_bestand("T.TXT", data.substr(0, lengte) +
                                             std::string(gegroeid ? data.size() - lengte : 0, '\0'));
                for (int (*lees)(ICB*, void*) : {IXREAD, IXREADL, IXFIRST, IXLAST}) {
                    Rec r = rec(RECORDS - 1 + (lees == IXLAST));
                    const std::string rapport = stopt([&] { lees(IXOPEN("T", mode), &r); });
                    EXPECT_NE(std::string::npos, rapport.find(RAAR)) << "grown " << gegroeid << rapport;
                }
            }
        });
}

// Emptied by another, or a sound pair with fewer records put in its place: no damage to who has it open, and nobody marks it.
TEST_F(Afgekapt, KleinerGewordenMaarHeel) {
    const struct {
        const char* wat;
        void (*doe)(ICB*);
    } gevallen[] = {
        {"close", [](ICB*) {}},
        {"insert",
         [](ICB* i) {
             const Rec r = rec(9);
             EXPECT_EQ(1, IXWRITE(i, &r));
         }},
        {"update",
         [](ICB* i) {
             Rec r = rec(3);
             EXPECT_EQ(1, IXREADL(i, &r));
             r.rest[0] = 'x';
             EXPECT_EQ(1, IXWRITE(i, &r));
         }},
        {"put",
         [](ICB* i) {
             Rec r = rec(3);
             EXPECT_EQ(1, IXREAD(i, &r));
             EXPECT_EQ(1, IXPUTREC(i, &r));
         }},
        {"delete",
         [](ICB* i) {
             Rec r = rec(3);
             EXPECT_EQ(1, IXREADL(i, &r));
             IXDELETE(i, &r);
         }},
    };
    for (const char* kaart : {"1", "0"})
        for (const auto& g : gevallen) {
            setenv("ZGKAART", kaart, 1);
            maak();
            EXPECT_EQ("", stopt([&] {
                          ICB* icb = IXOPEN("T", 2);
                          Rec r = rec(RECORDS + 1);
                          IXWRITE(icb, &r);
                          in_kind([] {
                              ICB* ander = IXOPEN("T", 1);
                              IXINIT(ander);
                              for (uint32_t n = 3; n < 6; n++) {
                                  const Rec nieuw = rec(n);
                                  IXWRITE(ander, &nieuw);
                              }
                              IXCLOSE(ander);
                          });
                          usleep(10'000); // names and sizes are looked at once in a tick
                          g.doe(icb);
                          IXCLOSE(icb);
                      }))
                << g.wat << kaart;
            EXPECT_GEZOND("T") << g.wat << kaart;
        }
}

// The file is cut in the moment before a write of it, which makes it grow again.
int data_fd;

TEST_F(Afgekapt, VlakVoorDeSchrijver) {
    if (IOGEDEELD())
        GTEST_SKIP()
            << "on a shared file system a write isn't looked at once more: each look goes over the wire";
    maak();
    const std::string data = lees_bestand("T.TXT"), index = lees_bestand("T.INX");
    constexpr uint32_t MIDDEN = RECORDS * 3 / 4;
    const struct {
        const char* wat;
        void (*werk)(ICB* icb, Rec r);
    } gevallen[] = {
        {"insert", [](ICB* icb, Rec r) { r.nr = 5555, IXWRITE(icb, &r); }},
        {"update", [](ICB* icb, Rec r) { IXREADL(icb, &r), r.rest[0] = 'x', IXWRITE(icb, &r); }},
        {"moved key", [](ICB* icb, Rec r) { IXREADL(icb, &r), r.naam[0] = 'x', IXWRITE(icb, &r); }},
        {"put", [](ICB* icb, Rec r) { IXREADL(icb, &r), r.rest[0] = 'x', IXPUTREC(icb, &r); }},
        {"delete", [](ICB* icb, Rec r) { IXREADL(icb, &r), IXDELETE(icb, &r); }},
    };
    for (const auto& g : gevallen)
        for (const uint32_t nr : {MIDDEN, RECORDS - 1})
            overal([&](int mode) {
                if (mode == 0 || (mode == 1 && getenv("ZGKAART")[0] == '0'))
                    return;
                schrijf_bestand("T.TXT", data);
                schrijf_bestand("T.INX", index);
                const std::string rapport = stopt([&] {
                    ICB* icb = IXOPEN("T", mode);
                    data_fd = icb->datfd;
                    SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) {
                        if (fd == data_fd && ftruncate(fd, 100 * 32) != 0)
                            _exit(3);
                        return pwrite(fd, p, n, o);
                    };
                    g.werk(icb, rec(nr));
                    IXCLOSE(icb);
                });
                EXPECT_NE(std::string::npos, rapport.find("ingekort")) << g.wat << nr << ": " << rapport;
                EXPECT_EQ(-1, IXCHECK("T")) << g.wat << nr;
            });
    // Before the change nothing is written: of a record that is gone, or of another when the last has lost its end.
    overal([&](int mode) {
        if (mode == 0)
            return;
        schrijf_bestand("T.INX", index);
        schrijf_bestand("T.TXT", data);
        const std::string rapport = stopt([mode] {
            ICB* icb = IXOPEN("T", mode);
            Rec r = rec(7777);
            IXWRITE(icb, &r);
            ASSERT_EQ(0, truncate("T.TXT", (RECORDS + 1) * 32 - 5));
            r.nr++;
            IXWRITE(icb, &r);
        });
        EXPECT_NE(std::string::npos, rapport.find("ingekort")) << rapport;
        EXPECT_EQ(data.size() + 27, lees_bestand("T.TXT").size());
    });
    schrijf_bestand("T.INX", index);
    schrijf_bestand("T.TXT", data);
    EXPECT_NE("", stopt([&] {
                  ICB* icb = IXOPEN("T", 2);
                  Rec r = rec(MIDDEN);
                  IXREADL(icb, &r);
                  ASSERT_EQ(0, truncate("T.TXT", 100 * 32));
                  IXPUTREC(icb, &r);
              }));
    EXPECT_EQ(100U * 32, lees_bestand("T.TXT").size());
}

// Somebody else may make the record in front all zeros in that very moment: no damage.
TEST_F(Afgekapt, NullenVanEenAnder) {
    for (const char* kaart : {"1", "0"}) {
        setenv("ZGKAART", kaart, 1);
        ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,4"}}, 2);
        for (uint32_t i = 0; i < 4; i++) {
            const Rec r = rec(i);
            IXWRITE(icb, &r);
        }
        data_fd = icb->datfd;
        const SYSCALLS echt = SYS;
        SYS.pwrite = [](int fd, const void* p, size_t n, off_t o) {
            static const char nul[32] = {};
            return fd == data_fd && pwrite(fd, nul, 32, 0) != 32 ? -1 : pwrite(fd, p, n, o);
        };
        for (uint32_t nr : {1U, 2U, 4U}) {
            Rec r = rec(nr);
            IXREADL(icb, &r);
            r.rest[0] = 'x';
            EXPECT_EQ(1, IXWRITE(icb, &r));
        }
        SYS = echt;
        IXCLOSE(icb);
        EXPECT_GE(IXCHECK("T"), 0);
    }
}

TEST_F(Afgekapt, VrijSlotAchterHetEinde) {
    maak();
    ICB* icb = IXOPEN("T", 2);
    Rec r = rec(RECORDS - 1);
    ASSERT_EQ(1, IXREADL(icb, &r));
    IXDELETE(icb, &r);
    IXCLOSE(icb);
    const std::string data = lees_bestand("T.TXT"), index = lees_bestand("T.INX");
    for (const size_t lengte : {data.size() - 32, data.size() - 1, size_t{100 * 32}})
        overal([&](int mode) {
            if (mode == 0)
                return;
            schrijf_bestand("T.TXT", data.substr(0, lengte));
            schrijf_bestand("T.INX", index);
            const std::string rapport = stopt([&] {
                const Rec nieuw = rec(7777);
                IXWRITE(IXOPEN("T", mode), &nieuw);
            });
            EXPECT_NE(std::string::npos, rapport.find("ingekort")) << lengte << ": " << rapport;
            EXPECT_EQ(lengte, lees_bestand("T.TXT").size());
        });
}

// Of a leaf the last entry, half of them, or all but the count are zeros.
TEST_F(Afgekapt, BladMetNullen) {
    maak();
    const std::string index = lees_bestand("T.INX");
    const int stappen[] = {0, 4 + 4, 20 + 4 + 4};
    for (size_t blok = 3; blok < index.size() / IXBLOK; blok++) {
        IXKNOOP k;
        memcpy(&k, &index[blok * IXBLOK], sizeof k);
        if (k.level != 1 || blok % 3 != 0)
            continue;
        ASSERT_GT(k.count, 2);
        for (const int van : {k.count - 1, k.count / 2, 0}) {
            IXKNOOP half = k;
            const int heel = van * stappen[k.keyno];
            memset(half.entries + heel, 0, static_cast<size_t>(KNOOPRUIMTE - heel));
            std::string kapot = index;
            memcpy(&kapot[blok * IXBLOK], &half, sizeof half);
            schrijf_bestand("T.INX", kapot);
            overal([&](int mode) {
                for (const bool terug : {false, true}) {
                    const std::string rapport = stopt([&] { loop(IXOPEN("T", mode), k.keyno, terug); });
                    EXPECT_NE(std::string::npos, rapport.find(RAAR))
                        << "block " << blok << " from entry " << van << terug << ": " << rapport;
                }
            });
        }
    }
}

} // namespace
} // namespace zg::test
