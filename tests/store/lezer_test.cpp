// Readers without a lock beside a writer who stops half-way, and walks whose record another changes: none may leave out
// or repeat what stood still. Then keys whose values are equal.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include "store/rebuild.h"

namespace zg::test {
namespace {

struct [[gnu::packed]] Rec {
    uint16_t nr;
    uint16_t plaats;
    char rest[12];
};
static_assert(sizeof(Rec) == 16);

const Tabel tabel{sizeof(Rec), {"k,I,1,2", "p,I,3,4"}};

void zet(ICB* icb, int nr, int plaats) {
    Rec r{};
    r.nr = static_cast<uint16_t>(nr);
    r.plaats = static_cast<uint16_t>(plaats);
    ASSERT_EQ(1, IXWRITE(icb, &r));
}

// A reader told by words: find N | first | next | prev | skip | key K | readl | unlock. Answers the place, or "-".
struct Lezer {
    ICB* icb = nullptr;
    Rec r{};
    int32_t nr = 0;
    std::string operator()(const std::string& o) {
        if (!icb)
            icb = IXOPEN("T", 2);
        int uit = 1;
        if (o.substr(0, 4) == "key ")
            return IXSWITCH(icb, atoi(o.c_str() + 4)), "ok";
        if (o.substr(0, 5) == "find ") {
            r.nr = r.plaats = static_cast<uint16_t>(atoi(o.c_str() + 5));
            uit = IXREAD(icb, &r);
        } else if (o == "first")
            r = Rec{}, uit = IXFIRST(icb, &r);
        else if (o == "next")
            uit = IXNEXT(icb, &r);
        else if (o == "prev")
            uit = IXPREVR(icb, &r, 0);
        else if (o == "nextk")
            return IXNEXTK(icb, &r, 0) ? std::to_string(r.nr) : "-";
        else if (o == "skip")
            nr = icb->currec, uit = IXSKIP(icb, &r, 0, 1, &nr);
        else if (o == "close")
            return IXCLOSE(icb), "ok";
        return uit ? std::to_string(r.plaats) : "-";
    }
};

// Who holds the header lock and does nothing until he is told to let go.
struct Houder {
    int fd = -1;
    std::string operator()(const std::string& o) {
        if (fd < 0)
            fd = open("T.INX", O_RDWR | O_CLOEXEC);
        return IOLOCK(o == "hold" ? 'E' : 'U', fd, 0, IXBLOK) ? "ok" : "no";
    }
};

// The writer has written the left half behind the last block and cut the right half down; the way to the left half is
// not there yet. Programs of the package write in this order.
TEST(Lezer, SchrijverStaatStilMiddenInEenSplitsing) {
    TijdelijkeMap map;
    KorteWacht kort;
    ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,2"}}, 2);
    int n = 0;
    for (; icb->h.nblocks < 8; n += 2)
        zet(icb, n, n);
    std::string voor, na;
    for (;; n += 2) { // up to a split of the leaf that is not a root's
        voor = lees_index("T.INX");
        zet(icb, n, n);
        na = lees_index("T.INX");
        if (na.size() > voor.size())
            break;
    }
    IXCLOSE(icb);
    // All as after it but for the root, which is as before it; marked.
    std::string midden = na;
    midden.replace(IXBLOK, IXBLOK, voor, IXBLOK, IXBLOK);
    midden.replace(0, IXBLOK, voor, 0, IXBLOK);
    midden[offsetof(IXHEADER, busy)] = 1;
    const int32_t links = static_cast<int32_t>(voor.size() / IXBLOK);
    IXKNOOP blad;
    memcpy(&blad, &na[static_cast<size_t>(links) * IXBLOK], sizeof blad);
    const uint8_t *eerste = blad.entries, *laatste = eerste + (blad.count - 1) * 6;
    const int laagste = eerste[0] * 256 + eerste[1], hoogste = laatste[0] * 256 + laatste[1];
    struct {
        const char* wat;
        std::string begin, vraag;
        int uit;
    } gevallen[] = {
        {"read", "find " + std::to_string(laagste - 2), "find " + std::to_string(laagste + 4), laagste + 4},
        {"walk", "find " + std::to_string(laagste - 2), "next", laagste},
        {"back", "find " + std::to_string(hoogste + 2), "prev", hoogste},
        {"walk by key", "find " + std::to_string(laagste - 2), "nextk", laagste},
    };
    for (const auto& g : gevallen) {
        schrijf_bestand("T.INX", voor);
        Agent lezer{Lezer{}}, schrijver{Houder{}};
        EXPECT_NE("-", lezer.vraag(g.begin)) << g.wat;
        ASSERT_EQ("ok", schrijver.vraag("hold"));
        schrijf_bestand("T.INX", midden);
        const std::string meteen = lezer.vraag(g.vraag);
        EXPECT_TRUE(meteen == Agent::geen_antwoord || meteen == std::to_string(g.uit))
            << g.wat << ": " << meteen;
        schrijf_bestand("T.INX", na);
        schrijver.vraag("let go");
        if (meteen == Agent::geen_antwoord) {
            EXPECT_EQ(std::to_string(g.uit), lezer.antwoord()) << g.wat;
        }
    }
}

// The record is written and its keys are not yet: the walk waits instead of going by a key that has moved on.
TEST(Lezer, SchrijverStaatStilTussenRecordEnSleutels) {
    TijdelijkeMap map;
    KorteWacht kort;
    ICB* icb = maak_open("T", tabel, 2);
    for (int i = 0; i < 10; i++)
        zet(icb, i, i * 10);
    const std::string voor = lees_index("T.INX");
    Agent lezer{Lezer{}}, schrijver{Houder{}};
    lezer.vraag("key 2");
    EXPECT_EQ("0", lezer.vraag("first"));
    zet(icb, 1, 500);
    const std::string na = lees_index("T.INX");
    IXCLOSE(icb);
    std::string midden = voor;
    midden[offsetof(IXHEADER, busy)] = 1;
    ASSERT_EQ("ok", schrijver.vraag("hold"));
    schrijf_bestand("T.INX", midden);
    EXPECT_EQ(Agent::geen_antwoord, lezer.vraag("next"));
    schrijf_bestand("T.INX", na);
    schrijver.vraag("let go");
    EXPECT_EQ("20", lezer.antwoord());
}

// What a reader meets beside an exclusive handle makes no sense: who only reads says so, and doesn't wait for him.
TEST(Lezer, OngerijmdNaastEenAlleengebruiker) {
    TijdelijkeMap map;
    ICB* icb = maak_open("T", tabel, 2);
    for (int i = 0; i < 400; i++)
        zet(icb, i, i);
    IXCLOSE(icb);
    Agent alleen{Houder{}};
    ASSERT_EQ("ok", alleen.vraag("hold"));
    const std::string rapport = stopt([] {
        ICB* lezer = IXOPEN("T", 0);
        std::string index = lees_index("T.INX");
        std::fill(index.begin() + 4 * IXBLOK, index.end(), '\xEE');
        schrijf_bestand("T.INX", index);
        Rec r{};
        IXREAD(lezer, &r);
    });
    EXPECT_NE(std::string::npos, rapport.find("iet consistent")) << rapport;
}

// All that stands still is there, forth and back and by key: -1, or the number of the first that isn't.
int ontbreekt(ICB* icb, int van, int tot, int stap) {
    Rec r{};
    std::vector<int> heen, terug;
    for (int ok = IXFIRST(icb, &r); ok; ok = IXNEXT(icb, &r))
        heen.push_back(r.nr);
    memset(&r, 0xFF, sizeof r);
    icb->currec = -1;
    for (int ok = IXPREVR(icb, &r, 0); ok; ok = IXPREVR(icb, &r, 0))
        terug.push_back(r.nr);
    const int aantal = (tot - van) / stap;
    for (int i = 0; i < aantal;
         i++) { // out of the other end's leaf, so that each is looked for from the root
        const int nr = van + i * stap;
        r.nr = static_cast<uint16_t>(i * 4 < aantal * 3 ? tot - stap : van);
        if (!IXREAD(icb, &r))
            return r.nr;
        r.nr = static_cast<uint16_t>(nr);
        if (std::count(heen.begin(), heen.end(), nr) != 1 ||
            std::count(terug.begin(), terug.end(), nr) != 1 || !IXREAD(icb, &r))
            return nr;
    }
    return -1;
}

// A writer of ours leaves every entry in reach at each of his writes: he is killed at it, and a reader who was in the
// file before finds all that stood still.
TEST(Lezer, VindtAllesNaElkeSchrijfopdracht) {
    const Tabel een{sizeof(Rec), {"k,I,1,2"}};
    struct {
        const char* wat;
        void (*werk)(ICB*);
    } gevallen[] = {
        {"inserts that split",
         [](ICB* i) {
             for (int nr = 501; nr < 640; nr += 2)
                 zet(i, nr, nr);
         }},
        {"deletes that empty leaves",
         [](ICB* i) {
             for (int nr = 401; nr < 600; nr += 2) {
                 Rec r{};
                 r.nr = static_cast<uint16_t>(nr);
                 if (IXREAD(i, &r))
                     IXDELETE(i, &r);
             }
         }},
    };
    for (const auto& g : gevallen) {
        TijdelijkeMap map;
        ICB* icb = maak_open("T", een, 2);
        for (int nr = 0; nr < 1000; nr += 10)
            zet(icb, nr, nr);
        for (int nr = 401; nr < 500; nr += 2)
            zet(icb, nr, nr);
        const std::string idx = lees_index("T.INX"), data = lees_bestand("T.TXT");
        int status = 1;
        for (int n = 1; status && n < 500; n++) {
            schrijf_bestand("T.INX", idx);
            schrijf_bestand("T.TXT", data);
            ICB* lezer = IXOPEN("T", 0);
            Rec r{};
            IXFIRST(lezer, &r);
            status = in_kind([&] {
                ICB* i = IXOPEN("T", 2);
                stoor(n);
                g.werk(i);
            });
            ASSERT_EQ(-1, ontbreekt(lezer, 0, 1000, 10)) << g.wat << ", write " << n;
            IXCLOSE(lezer);
        }
        EXPECT_EQ(0, status) << g.wat;
        IXCLOSE(icb);
    }
}

// A rebuild gives the blocks under a reader to other places, other keys and other levels, and leaves the counters as they
// were, just before a block is read, a child or one that is read a second time to be sure of it: nothing is missed or met
// twice.
struct {
    std::string index;
    off_t vorige;
    int beurt, tot;
    bool elke = false; // else second ones alone
} herbouw;

ssize_t herbouwd(int fd, void* p, size_t n, off_t plaats) {
    if (n == IXBLOK) {
        if ((herbouw.elke || plaats == herbouw.vorige) && ++herbouw.beurt == herbouw.tot)
            schrijf_bestand("T.INX", herbouw.index);
        herbouw.vorige = plaats;
    }
    return pread(fd, p, n, plaats);
}

TEST(Lezer, HerbouwOnderDeWandelaar) {
    constexpr int RECORDS = 710;
    struct Lang {
        char k[20], p[20];
        static void zet(char* naar, int nr) { snprintf(naar, 20, "%05d", nr); }
    };
    const SYSCALLS echt = SYS;
    TijdelijkeMap map;
    // Both keys over the same numbers, even and odd, and three levels deep: a leaf of the one could be one of the
    // other, and a node of any level one of another.
    ICB* icb = maak_open("T", {sizeof(Lang), {"k,C,1,20", "p,NODUPS,C,21,40"}}, 2);
    Lang r{};
    for (int i = 0; i < RECORDS; i++) {
        Lang::zet(r.k, i * 37 % RECORDS * 2);
        Lang::zet(r.p, i * 7 % RECORDS * 2 + 1);
        ASSERT_EQ(1, IXWRITE(icb, &r));
    }
    IXCLOSE(icb);
    const std::string voor = lees_index("T.INX");
    ASSERT_EQ(1, IXBLDIX("T"));
    herbouw.index = lees_index("T.INX");
    ASSERT_NE(voor, herbouw.index);
    for (int sleutel = 1; sleutel <= 2; sleutel++) {
        herbouw.beurt = 1;
        for (int tot = 1; tot <= herbouw.beurt; tot += 7) {
            schrijf_bestand("T.INX", voor);
            ICB* lezer = IXOPEN("T", 0);
            IXSWITCH(lezer, sleutel);
            herbouw = {std::move(herbouw.index), -1, 0, tot, true};
            lees_door(herbouwd);
            r = {};
            int lopend = 0, gelezen = 0;
            for (int ok = IXFIRST(lezer, &r); ok; ok = IXNEXT(lezer, &r))
                lopend++;
            IXSWITCH(lezer, 1);
            for (int i = 0; i < RECORDS; i++) {
                Lang::zet(r.k, i * 2);
                gelezen += IXREAD(lezer, &r);
            }
            SYS = echt;
            ASSERT_EQ(std::pair(RECORDS, RECORDS), std::pair(lopend, gelezen))
                << "key " << sleutel << ", rebuilt before read " << tot;
            IXCLOSE(lezer);
        }
    }
}

// The leaf in hand is a node of a higher level when it is read a second time: what stands in it then are ways, no
// records.
TEST(Lezer, BladWordtTak) {
    const SYSCALLS echt = SYS;
    TijdelijkeMap map;
    ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,2"}}, 2);
    for (int nr = 0; nr < 1000; nr += 2)
        zet(icb, nr, nr);
    std::string index = lees_index("T.INX");
    auto knoop = [&](int32_t blok) {
        return reinterpret_cast<IXKNOOP*>(&index[static_cast<size_t>(blok) * IXBLOK]);
    };
    auto wijzer = [](IXKNOOP* k, int i) { return k->entries + i * 6 + 2; };
    const int32_t tweede = LEES32(wijzer(knoop(1), 1));
    ASSERT_TRUE(knoop(1)->level == 2 && knoop(tweede)->level == 1);
    // A way may stand above the last entry behind it, as when that was one higher and has gone.
    IXCLOSE(icb);
    const int hoort = knoop(1)->entries[6] * 256 + knoop(1)->entries[7];
    knoop(1)->entries[7]++;
    schrijf_bestand("T.INX", index);
    // A third level: the leaf moves behind the last block, the root into its place.
    const auto nieuw = static_cast<int32_t>(index.size() / IXBLOK);
    index.append(index, static_cast<size_t>(tweede) * IXBLOK, IXBLOK);
    memcpy(knoop(tweede), knoop(1), IXBLOK);
    memcpy(wijzer(knoop(tweede), 1), &nieuw, sizeof nieuw);
    knoop(1)->level = 3;
    knoop(1)->count = 1;
    memset(knoop(1)->entries, 0xFF, 2);
    memcpy(wijzer(knoop(1), 0), &tweede, sizeof tweede);
    const int32_t blokken = nieuw + 1;
    memcpy(&index[offsetof(IXHEADER, nblocks)], &blokken, sizeof blokken);
    herbouw = {std::move(index), -1, 0, 1};
    ICB* lezer = IXOPEN("T", 0);
    lees_door(herbouwd);
    Rec r{};
    r.nr = static_cast<uint16_t>(hoort + 1);
    EXPECT_EQ(1, IXPREVK(lezer, &r, 0));
    SYS = echt;
    EXPECT_EQ(hoort, r.nr);
    EXPECT_GE(herbouw.beurt, 1);
    IXCLOSE(lezer);
}

// A read may show a block half written: its first bytes new and the others old, or the reverse. Each read of a leaf
// shows that once, in turn. Of the root it would show itself by the header, which is written behind it.
struct {
    std::string oud;
    int beurt, tot;
    bool nieuw_eerst;
} scheur;

ssize_t gescheurd(int fd, void* p, size_t n, off_t plaats) {
    const ssize_t uit = pread(fd, p, n, plaats);
    if (n != IXBLOK || plaats < 3 * IXBLOK || plaats + IXBLOK > static_cast<off_t>(scheur.oud.size()) ||
        ++scheur.beurt != scheur.tot)
        return uit;
    // Where the two differ, a quarter of the difference is before the seam.
    uint8_t* nu = static_cast<uint8_t*>(p);
    const char* oud = &scheur.oud[static_cast<size_t>(plaats)];
    size_t eerste = 0, laatste = n;
    while (eerste < n && nu[eerste] == static_cast<uint8_t>(oud[eerste]))
        eerste++;
    while (laatste > eerste && nu[laatste - 1] == static_cast<uint8_t>(oud[laatste - 1]))
        laatste--;
    const size_t naad = 5 + ((3 * eerste + laatste) / 4 - 5) / 6 * 6;
    for (size_t i = eerste; i < laatste; i++)
        if ((i < naad) != scheur.nieuw_eerst)
            nu[i] = static_cast<uint8_t>(oud[i]);
    return uit;
}

// In the first leaf, whose last entry is no sentinel and whose first is of zeros: each hides something else.
TEST(Lezer, HalfGeschrevenBlok) {
    const SYSCALLS echt = SYS;
    for (const char* wat : {"insert", "delete", "split"})
        for (const bool nieuw_eerst : {false, true}) {
            TijdelijkeMap map;
            ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,2"}}, 2);
            for (int nr = 0; nr < 600; nr += 6)
                zet(icb, nr, nr);
            if (*wat == 'd')
                zet(icb, 31, 31);
            scheur = {lees_index("T.INX"), 0, 0, nieuw_eerst};
            Rec r{};
            r.nr = 31;
            if (*wat == 'd' && IXREAD(icb, &r))
                IXDELETE(icb, &r);
            else if (*wat == 'i')
                zet(icb, 31, 31);
            const int32_t blokken = icb->h.nblocks;
            for (int nr = 3; *wat == 's' && icb->h.nblocks == blokken; nr += 6) {
                scheur.oud = lees_index("T.INX");
                zet(icb, nr, nr);
            }
            schrijf_bestand("T.INX", lees_index("T.INX")); // by a program that doesn't count changes
            ICB* lezer = IXOPEN("T", 0);
            lees_door(gescheurd);
            int n = 1;
            for (; n < 2000; n++) {
                scheur.beurt = 0;
                scheur.tot = n;
                ASSERT_EQ(-1, ontbreekt(lezer, 0, 600, 6)) << wat << nieuw_eerst << ", read " << n;
                if (scheur.beurt < n)
                    break;
            }
            SYS = echt;
            EXPECT_GT(n, 100);
            EXPECT_LT(n, 2000);
            IXCLOSE(lezer);
            IXCLOSE(icb);
        }
}

// Another moves the record that the walk stands on, or uses its slot. A walker that moves it himself goes on from there.
TEST(Wandeling, RecordVerplaatstOnderDeWandelaar) {
    struct {
        const char* wat;
        void (*doe)(ICB* ander, Lezer& ik);
        const char *stap, *uit;
    } gevallen[] = {
        {"moved by another", [](ICB* a, Lezer&) { zet(a, 3, 65); }, "next", "40"},
        {"moved, and read again",
         [](ICB* a, Lezer& ik) {
             zet(a, 3, 65);
             IXSWITCH(ik.icb, 1);
             EXPECT_EQ(1, IXREADL(ik.icb, &ik.r));
             IXUNLOCK(ik.icb, &ik.r);
             IXSWITCH(ik.icb, 2);
         },
         "next", "40"},
        {"moved, read again, back",
         [](ICB* a, Lezer& ik) {
             zet(a, 3, 65);
             EXPECT_EQ(1, IXGET(ik.icb, &ik.r, ik.icb->currec));
         },
         "prev", "20"},
        {"moved, by number", [](ICB* a, Lezer&) { zet(a, 3, 65); }, "skip", "40"},
        {"moved back, by number", [](ICB* a, Lezer&) { zet(a, 3, 5); }, "skip", "40"},
        {"slot used again, by number",
         [](ICB* a, Lezer&) {
             Rec r{};
             r.nr = 3;
             IXREAD(a, &r);
             IXDELETE(a, &r);
             zet(a, 77, 85);
         },
         "skip", "40"},
        {"moved by the walker himself", [](ICB*, Lezer& ik) { zet(ik.icb, 3, 65), ik.r.plaats = 65; }, "next",
         "70"},
        {"by himself, by number", [](ICB*, Lezer& ik) { zet(ik.icb, 3, 65); }, "skip", "70"},
        {"another place asked for", [](ICB*, Lezer& ik) { ik.r.plaats = 75; }, "next", "80"},
    };
    for (const auto& g : gevallen) {
        TijdelijkeMap map;
        ICB* ander = maak_open("T", tabel, 2);
        for (int i = 0; i < 10; i++)
            zet(ander, i, i * 10);
        Lezer ik;
        ik("key 2");
        ik("first");
        for (int i = 0; i < 3; i++)
            ik("next");
        ASSERT_EQ(3, ik.r.nr) << g.wat;
        g.doe(ander, ik);
        EXPECT_EQ(g.uit, ik(g.stap)) << g.wat;
        ik("close");
        IXCLOSE(ander);
        EXPECT_GEZOND("T");
    }
}

// A selection over a table is older than its records: each is given once, at the place of its entry.
TEST(Wandeling, TijdelijkeIndexIsOuderDanZijnRecords) {
    TijdelijkeMap map;
    ICB* icb = maak_open("T", tabel, 2);
    ICB* keuze = IXCREATE("T.07", 1);
    IXUPDFCB(keuze, 0, "keuze,16");
    IXUPDFCB(keuze, 1, "p,NODUPS,I,3,4");
    IXINITIX(keuze);
    for (int i = 0; i < 200; i++) {
        zet(icb, i, 1000 + i);
        Rec r{};
        EXPECT_EQ(1, IXGET(icb, &r, icb->currec));
        keuze->currec = icb->currec;
        IXADDKEYS(keuze, &r);
    }
    for (int i = 0; i < 200; i += 3)
        zet(icb, i, i % 2 ? 100 + i : 5000 - i);
    Rec r{};
    int n = 0;
    for (int ok = IXFIRST(keuze, &r); ok; ok = IXNEXT(keuze, &r), n++)
        ASSERT_EQ(n, r.nr);
    EXPECT_EQ(200, n);
    IXCLOSE(keuze);
    IXCLOSE(icb);
}

// Equal values of a key without record number: of them the entry of the record itself goes, in whatever leaf it stands.
TEST(GelijkeSleutels, ElkZijnEigenEntry) {
    for (int mode : {1, 2}) {
        TijdelijkeMap map;
        ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,2", "p,NODUPS,I,3,4", "r,NODUPS,C,5,16"}}, mode);
        std::vector<int> nrs;
        for (int i = 0; i < 900; i++) {
            zet(icb, i, i / 300);
            nrs.push_back(i);
        }
        Toeval t(5);
        for (size_t i = nrs.size() - 1; i > 0; i--)
            std::swap(nrs[i], nrs[t(static_cast<uint32_t>(i) + 1)]);
        for (size_t i = 0; i < nrs.size(); i++) {
            if (i % 3 == 2) {
                zet(icb, nrs[i], nrs[i] / 300 + 1); // to the equal ones of the next value
                continue;
            }
            Rec r{};
            r.nr = static_cast<uint16_t>(nrs[i]);
            ASSERT_EQ(1, IXREAD(icb, &r));
            IXDELETE(icb, &r);
        }
        IXCLOSE(icb);
        IXTELLING telling;
        EXPECT_EQ(std::vector<std::string>{}, IXDIEPCHECK("T", &telling)) << mode;
        EXPECT_EQ(300, telling.levend);
        icb = IXOPEN("T", mode);
        for (int nr : nrs) {
            Rec r{};
            r.nr = static_cast<uint16_t>(nr);
            if (IXREAD(icb, &r))
                IXDELETE(icb, &r);
        }
        IXCLOSE(icb);
        EXPECT_GEZOND("T");
    }
}

// One entry twice, another never: as many entries as records, and the deep check sees it all the same.
TEST(GelijkeSleutels, DubbelEnVergeten) {
    TijdelijkeMap map;
    ICB* icb = maak_open("T", {sizeof(Rec), {"k,I,1,2", "p,NODUPS,I,3,4"}}, 2);
    zet(icb, 1, 7), zet(icb, 2, 7);
    IXCLOSE(icb);
    std::string idx = lees_index("T.INX");
    memcpy(&idx[2 * IXBLOK + 5 + 6], &idx[2 * IXBLOK + 5], 6);
    schrijf_bestand("T.INX", idx);
    const std::string uit = gezondheid("T");
    EXPECT_NE(std::string::npos, uit.find("leads to record 1 a second time")) << uit;
    EXPECT_NE(std::string::npos, uit.find("record 0 is not found by its key")) << uit;
}

} // namespace
} // namespace zg::test
