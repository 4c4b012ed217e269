// The rebuild: the same blocks as one insert after the other would give, the free chain, what it refuses, and
// kills and failing calls half-way.
#include "store/hulp.h"
#include "store/node.h"
#include "store/rebuild.h"
#include <random>
#include <sys/resource.h>

namespace zg::test {
namespace {

enum Volgorde { OPLOPEND, AFLOPEND, WILLEKEURIG };

struct Proef : Tabel {
    int aantal;
    Volgorde volgorde;
    int elke_vrij; // every so many records a free slot; 0 none
    const char* wat = "";
};

// Bytes 1 to 4 hold a number in the order asked for, the rest is drawn from few letters so that keys meet.
std::string maak_data(const Proef& t) {
    static const char letters[] = "AbBcC \x81\x84\x92\xE1\x01\x7F\xFFz";
    std::mt19937 r(1);
    std::vector<uint32_t> nummers(static_cast<size_t>(t.aantal));
    for (size_t i = 0; i < nummers.size(); i++)
        nummers[i] = static_cast<uint32_t>(t.volgorde == AFLOPEND ? nummers.size() - i : i);
    if (t.volgorde == WILLEKEURIG)
        std::shuffle(nummers.begin(), nummers.end(), r);
    std::string data;
    for (int i = 0; i < t.aantal; i++) {
        std::string rec(static_cast<size_t>(t.reclen), '\0');
        if (t.elke_vrij && i % t.elke_vrij == t.elke_vrij - 1) {
            rec.assign(rec.size(), '\xFF');
            ZET32(rec.data() + 1, static_cast<int32_t>(r() % 50)); // a link that means nothing
        } else {
            ZET32(rec.data(), static_cast<int32_t>(nummers[static_cast<size_t>(i)]));
            for (size_t p = 4; p < rec.size(); p++)
                if (r() % 8)
                    rec[p] = letters[r() % (sizeof letters - 1)];
            if (!IXRECLIVE(rec.data(), t.reclen - 1))
                rec[5] = 'A';
        }
        data += rec;
    }
    return data;
}

// A data file and an empty index over it that only has the definitions.
void zet_neer(const std::string& naam, const Tabel& t, const std::string& data) {
    std::filesystem::create_directories(std::filesystem::path(naam).parent_path());
    schrijf_bestand(naam + ".TXT", data);
    ICB* icb = IXCREATE(naam.c_str(), 1);
    definieer(icb, t);
    IXCLOSE(icb);
}

// The slow way: the steps of the rebuild on the tree's own routines.
void stap_voor_stap(const std::string& naam, const Tabel& t) {
    ICB* icb = IXCREATE(naam.c_str(), 1);
    definieer(icb, t);
    IXINITIX(icb);
    const int64_t records = IOSIZE((naam + ".TXT").c_str()) / t.reclen;
    const int per_stuk = 16384 / t.reclen;
    uint8_t rec[IXRECMAX];
    int32_t freehead = -1;
    for (int64_t begin = 0; begin < records; begin += per_stuk)
        for (int k = 1; k <= icb->h.nkeys; k++) {
            IXSWITCH(icb, k);
            const int lengte = IXKEYLEN(icb, 0);
            for (int64_t nr = begin; nr < std::min<int64_t>(begin + per_stuk, records); nr++) {
                icb->currec = static_cast<int32_t>(nr);
                IXRDREC(icb, rec);
                if (!IXRECLIVE(rec, t.reclen)) {
                    if (k == 1) {
                        ZET32(rec + 1, freehead);
                        IXWRREC(icb, rec);
                        freehead = icb->currec;
                    }
                    continue;
                }
                IXBLDKEY(icb, rec, lengte);
                IXSEARCH(icb, '=', lengte);
                icb->insptr = icb->currec;
                IXINSKEY(icb);
            }
        }
    icb->h.nrecs = static_cast<int32_t>(records);
    icb->h.freehead = freehead;
    IXCLOSE(icb);
}

// The index file but for the bytes behind its header, which mean nothing.
std::string index_van(const std::string& naam) {
    std::string s = lees_index(naam + ".INX");
    s.replace(sizeof(IXHEADER), IXBLOK - sizeof(IXHEADER), "");
    return s;
}

const Proef proeven[] = {
    {{20, {"k,I,1,4"}}, 0, OPLOPEND, 0, "empty"},
    {{20, {"k,I,1,4", "t,C,5,10"}}, 1, OPLOPEND, 0, "one record"},
    {{20, {"k,I,1,4"}}, 40, OPLOPEND, 1, "only free slots"},
    {{8, {"k,I,1,4"}}, 20000, OPLOPEND, 0, "ascending numbers, one key"},
    {{8, {"k,I,1,4"}}, 20000, AFLOPEND, 0, "descending"},
    {{60, {"k,I,1,4", "t,C,5,16", "u,C,17,20,I,1,1", "v,I,21,21,C,22,25", "w,C,1,56"}},
     6000,
     WILLEKEURIG,
     7,
     "five keys, equal texts, free slots"},
    {{30, {"k,I,1,4", "t,NODUPS,C,5,6"}}, 4000, WILLEKEURIG, 0, "second key without number, equal values"},
    {{30, {"k,C,5,6"}}, 3000, WILLEKEURIG, 5, "key 1 with equal values, as only damage makes them"},
    {{100, {"k,C,30,85,I,1,4"}}, 5000, WILLEKEURIG, 0, "longest keys, seven to a node"},
    {{20, {"k,I,1,4", "t,I,5,7"}}, 1000, WILLEKEURIG, 0, "integer part of three bytes is zeros"},
    {{512, {"k,I,1,4", "t,C,240,255"}}, 600, WILLEKEURIG, 9, "records of 512 bytes"},
    {{70, {"k,I,1,4", "t,C,5,59"}}, 90000, WILLEKEURIG, 0, "more than the sort holds at once"},
    {{8, {"k,I,1,4"}}, 270000, WILLEKEURIG, 6, "more ranks than are in memory at once"},
};

TEST(Rebuild, same_blocks_as_one_insert_after_the_other) {
    TijdelijkeMap map;
    for (const Proef& t : proeven) {
        SCOPED_TRACE(t.wat);
        const std::string data = maak_data(t);
        zet_neer("a/DTPROEF", t, data);
        zet_neer("b/DTPROEF", t, data);
        ASSERT_EQ(IXBLDIX("a/DTPROEF"), 1);
        stap_voor_stap("b/DTPROEF", t);
        const std::string eerst = index_van("a/DTPROEF");
        EXPECT_TRUE(eerst == index_van("b/DTPROEF"));
        EXPECT_TRUE(lees_bestand("a/DTPROEF.TXT") == lees_bestand("b/DTPROEF.TXT")) << "free chain";
        EXPECT_EQ(IXCHECK("a/DTPROEF"), t.elke_vrij ? t.aantal / t.elke_vrij : 0);
        if (!strstr(t.wat, "equal values") && !strstr(t.wat, "zeros")) {
            EXPECT_GEZOND("a/DTPROEF");
        }
        // Again over a whole index: nothing changes.
        ASSERT_EQ(IXBLDIX("a/DTPROEF"), 1);
        EXPECT_TRUE(index_van("a/DTPROEF") == eerst);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator("a"), {}), 2) << "nothing left behind";
    }
}

// What is refused is left as it was, to the byte; what is taken gives the same index as a whole one.
TEST(Rebuild, takes_any_header_that_tells_the_keys_and_no_other) {
    Proef t{{60, {"k,I,1,4", "t,C,5,9", "u,C,10,14", "v,C,15,19", "w,C,20,24"}}, 3000, WILLEKEURIG, 0};
    struct {
        const char* wat;
        int uit;
        void (*doe)(std::string* index, std::string* data);
    } gevallen[] = {
        {"half a record", 0, [](std::string*, std::string* d) { d->resize(d->size() - 7); }},
        {"header cut", 0, [](std::string* i, std::string*) { i->resize(259); }},
        {"record length 0", 0, [](std::string* i, std::string*) { (*i)[24] = (*i)[25] = 0; }},

        {"no keys", 0, [](std::string* i, std::string*) { (*i)[11] = 0; }},

        {"part behind the record", 0, [](std::string* i, std::string*) { (*i)[48 + 31] = 61; }},

        {"key length that isn't its parts'", 0, [](std::string* i, std::string*) { (*i)[48 + 9] = 61; }},
        {"version 350, seven keys, other node sizes", 1,
         [](std::string* i, std::string*) {
             (*i)[258] = '\x5E', (*i)[259] = 1, (*i)[11] = 7;
             for (size_t k = 0; k < 5; k++)
                 (*i)[48 + 42 * k + 10] = 1;
         }},
        {"cut behind the header", 1, [](std::string* i, std::string*) { i->resize(300); }},
        {"trees of zeros", 1,
         [](std::string* i, std::string*) { std::fill(i->begin() + 512, i->end(), '\0'); }},
        {"marked busy, counters wild", 1,
         [](std::string* i, std::string*) { i->replace(12, 12, 12, '\x7F'), (*i)[45] = 3; }},
        {"far too long", 1, [](std::string* i, std::string*) { i->resize(i->size() * 3, 'x'); }},
    };
    TijdelijkeMap map;
    zet_neer("./T", t, maak_data(t));
    ASSERT_EQ(IXBLDIX("T"), 1);
    const std::string heel = lees_index("T.INX"), data_heel = lees_bestand("T.TXT");
    for (const auto& g : gevallen) {
        std::string index = heel, data = data_heel;
        g.doe(&index, &data);
        schrijf_bestand("T.INX", index);
        schrijf_bestand("T.TXT", data);
        EXPECT_EQ(IXBLDIX("T"), g.uit) << g.wat;
        EXPECT_TRUE(lees_index("T.INX") == (g.uit ? heel : index)) << g.wat;
        EXPECT_TRUE(lees_bestand("T.TXT") == data) << g.wat;
    }
    EXPECT_EQ(IXBLDIX("NIETS"), 0);
    EXPECT_FALSE(IOEXISTS("NIETS.TXT"));
    EXPECT_EQ(IXBLDIX("DTLEV.07"), 0);
}

// Memory for a file five times as large is not larger, but for the half byte a record that the shape of a tree takes.
TEST(Rebuild, memory_does_not_grow_with_the_file) {
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "freed memory is kept aside here";
#endif
    TijdelijkeMap map;
    long piek[2];
    for (int i = 0; i < 2; i++) {
        Proef t{{40, {"k,I,1,4", "t,C,5,24"}}, i ? 500000 : 100000, WILLEKEURIG, 0};
        zet_neer("./T", t, maak_data(t));
        pid_t kind = fork();
        if (kind == 0)
            _exit(IXBLDIX("T") != 1);
        int status;
        struct rusage r;
        ASSERT_EQ(wait4(kind, &status, 0, &r), kind);
        ASSERT_EQ(status, 0);
        piek[i] = r.ru_maxrss;
    }
    EXPECT_LT(piek[1] - piek[0], 8 * 1024) << "KB, of " << piek[0];
}

TEST(Rebuild, killed_at_every_write_a_second_run_is_as_undisturbed) {
    Proef t{{60, {"k,I,1,4", "t,C,5,24"}}, 400, WILLEKEURIG, 4};
    const std::string data = maak_data(t);
    TijdelijkeMap map;
    zet_neer("./T", t, data);
    ASSERT_EQ(IXBLDIX("T"), 1);
    // Over the same data with another chain: an older index, sound in itself.
    const std::string goed = lees_index("T.INX"), goede_data = lees_bestand("T.TXT");
    int n = 1;
    for (int status = 1; status && n < 2000; n++) {
        schrijf_bestand("T.INX", goed);
        schrijf_bestand("T.TXT", data);
        status = in_kind([n] {
            stoor(n);
            _exit(IXBLDIX("T") != 1);
        });
        ASSERT_TRUE(status == 0 || status == 128 + SIGKILL) << n;
        if (status && lees_index("T.INX") != goed) {
            ASSERT_EQ(IXCHECK("T"), -1) << "a half-made index passes after write " << n;
        }
        ASSERT_EQ(IXBLDIX("T"), 1) << n;
        ASSERT_TRUE(lees_index("T.INX") == goed && lees_bestand("T.TXT") == goede_data) << n;
    }
    EXPECT_GT(n, 100); // header, free slots, blocks, length, header
}

TEST(Rebuild, a_full_disk_or_a_failing_one_is_told_and_cured_by_a_second_run) {
    Proef t{{60, {"k,I,1,4", "t,C,5,24"}}, 20000, WILLEKEURIG, 50}; // large enough for files of its own
    const std::string data = maak_data(t);
    TijdelijkeMap map;
    zet_neer("./T", t, data);
    ASSERT_EQ(IXBLDIX("T"), 1);
    const std::string goed = lees_index("T.INX"), goede_data = lees_bestand("T.TXT");
    int geweigerd = 0, gestopt = 0;
    for (int n : {1, 2, 5, 10, 14, 18, 22, 26, 30, 40, 100, 400, 1000, 1500})
        for (int fout : {ENOSPC, EIO}) {
            schrijf_bestand("T.INX", goed);
            schrijf_bestand("T.TXT", data);
            const std::string melding = stopt([&] {
                stoor(n, fout);
                if (IXBLDIX("T") == 1)
                    return;
                printf("refused, %s",
                       lees_index("T.INX") == goed && lees_bestand("T.TXT") == data ? "whole" : "");
                fflush(stdout);
                _exit(1);
            });
            if (melding == "refused, whole") // nothing of the pair was touched
                geweigerd++;
            else if (!melding.empty()) {
                gestopt++;
                EXPECT_NE(melding.find("QUILLDB(" + std::to_string(fout)), std::string::npos) << n << melding;
                EXPECT_EQ(IXCHECK("T"), -1) << n;
                EXPECT_EQ(melding.find("ixremake") != std::string::npos, lees_index("T.INX") != goed)
                    << n << melding;
            }
            ASSERT_EQ(IXBLDIX("T"), 1) << n;
            EXPECT_TRUE(lees_index("T.INX") == goed && lees_bestand("T.TXT") == goede_data) << n;
        }
    EXPECT_GT(geweigerd, 5);
    EXPECT_GT(gestopt, 5);
}

TEST(Bulk, fills_a_private_index_in_another_order) {
    TijdelijkeMap map;
    Proef t{{40, {"k,I,1,4"}}, 20000, WILLEKEURIG, 0};
    zet_neer("./DTLEV", t, maak_data(t));
    ASSERT_EQ(IXBLDIX("DTLEV"), 1);
    const std::string voor = lees_bestand("DTLEV.TXT");
    constexpr int RONDEN = 50; // selections: in some of them a leaf splits just when its parent has
    ICB* gedeeld = IXOPEN("DTLEV", 0);
    for (int ronde = 0; ronde < RONDEN; ronde++) {
        ICB* eigen = IXCREATE("DTLEV.07", 1);
        IXUPDFCB(eigen, 0, "keuze,40");
        IXUPDFCB(eigen, 1, "tekst,NODUPS,C,5,12,I,1,4");
        if (ronde == 0)
            IXUPDFCB(eigen, 2, "nr,I,1,4");
        IXINITIX(eigen);
        IXBULK('O', eigen, nullptr);
        char rec[40] = {};
        int n = 0;
        for (int ok = IXFIRST(gedeeld, rec); ok; ok = IXNEXT(gedeeld, rec))
            if (gedeeld->currec % RONDEN == ronde) {
                n++;
                eigen->currec = gedeeld->currec;
                IXBULK('W', eigen, rec);
            }
        IXBULK('C', eigen, nullptr);
        IXCLOSE(eigen);
        EXPECT_GEZOND("DTLEV.07");
        eigen = IXOPEN("DTLEV.07", 0);
        memset(rec, 0, sizeof rec);
        for (int ok = IXFIRST(eigen, rec); ok; ok = IXNEXT(eigen, rec))
            n--;
        EXPECT_EQ(n, 0);
        IXCLOSE(eigen);
    }
    IXCLOSE(gedeeld);
    EXPECT_TRUE(lees_bestand("DTLEV.TXT") == voor);
}

} // namespace
} // namespace zg::test
