// Damage: the deep check names each kind that is planted, and no flipped bit of an index makes anything crash or
// hang. Which flips can't be noticed is told by a list of the bytes that mean nothing.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"
#include "store/syscall.h"
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zg::test {
namespace {

constexpr int RECLEN = 8, RECORDS = 110;
const Tabel tabel{RECLEN, {"k,NODUPS,I,1,4", "w,I,5,6"}};

// 110 records, of which 50 and 60 are free.
void maak() {
    ICB* icb = maak_open("T", tabel, 2);
    uint8_t r[RECLEN] = {};
    for (int i = 0; i < RECORDS; i++) {
        ZET32(r, i);
        r[4] = static_cast<uint8_t>(i * 37);
        IXWRITE(icb, r);
    }
    for (int i : {50, 60}) {
        ZET32(r, i);
        IXREAD(icb, r);
        IXDELETE(icb, r);
    }
    ZET32(r, 999);
    IXREADL(icb, r); // one key reserved
    IXCLOSE(icb);
}

struct Bestanden {
    std::string idx = lees_bestand("T.INX"), data = lees_bestand("T.TXT");
    uint8_t& i(size_t blok, size_t plaats) { return reinterpret_cast<uint8_t&>(idx[blok * 512 + plaats]); }
    uint8_t* entry(size_t blok, int n) { // of key 1
        return &i(blok, 5 + static_cast<size_t>(n) * 8);
    }
    size_t blad() { return static_cast<size_t>(LEES32(entry(1, 0) + 4)); } // first leaf of key 1
    uint8_t* rec(int n) { return reinterpret_cast<uint8_t*>(&data[static_cast<size_t>(n) * RECLEN]); }
};

TEST(Diepcheck, NoemtElkeSchade) {
    struct {
        const char* melding;
        void (*bederf)(Bestanden&);
    } gevallen[] = {
        {"version 350", [](Bestanden& b) { b.i(0, 258) = 0x5E; }},
        {"marked as being changed", [](Bestanden& b) { b.i(0, 45) = 1; }},
        {"number of keys", [](Bestanden& b) { b.i(0, 11) = 9; }},
        {"key 1 allows duplicates", [](Bestanden& b) { b.i(0, 56) = 'J', b.i(0, 57) = 8, b.i(0, 58) = 42; }},
        {"counts 9 blocks", [](Bestanden& b) { b.i(0, 20) = 9; }},
        {"counts 109 records", [](Bestanden& b) { b.i(0, 16) = 109; }},
        {"not a whole number", [](Bestanden& b) { b.data += "x"; }},
        {"too short for a header", [](Bestanden& b) { b.idx.resize(100); }},
        {"free chain: leads to record 3, which is in use", [](Bestanden& b) { b.i(0, 12) = 3; }},
        {"free chain: runs in a circle", [](Bestanden& b) { ZET32(b.rec(50) + 1, 60); }},
        {"free chain: leads to record 4000", [](Bestanden& b) { ZET32(b.rec(50) + 1, 4000); }},
        {"free chain: ends in -7", [](Bestanden& b) { ZET32(b.rec(50) + 1, -7); }},
        {"free chain: has 1 records, the data file has 2", [](Bestanden& b) { ZET32(b.rec(60) + 1, -1); }},
        {"is not a queue", [](Bestanden& b) { b.i(3, 1) = 1; }},
        {"more than there is room for", [](Bestanden& b) { b.i(3, 4) = 255; }},
        {"keys 1 and 2 are the same", [](Bestanden& b) { b.i(3, 4) = 2, memcpy(&b.i(3, 9), &b.i(3, 5), 4); }},
        {"something behind the last key", [](Bestanden& b) { b.i(3, 4) = 0; }},
        {"belongs to key 2", [](Bestanden& b) { b.i(b.blad(), 0) = 2; }},
        {"says that it is of level 2", [](Bestanden& b) { b.i(b.blad(), 1) = 2; }},
        {"says that it is of level 0", [](Bestanden& b) { b.i(1, 1) = 0; }},
        {"counts 0 entries", [](Bestanden& b) { b.i(b.blad(), 4) = 0; }},
        {"counts 200 entries", [](Bestanden& b) { b.i(b.blad(), 4) = 200; }},
        {"something behind its last entry", [](Bestanden& b) { b.i(b.blad(), 4)--; }},
        {"entry 3 is out of order",
         [](Bestanden& b) {
             std::swap_ranges(b.entry(b.blad(), 1), b.entry(b.blad(), 2), b.entry(b.blad(), 2));
         }},
        {"entry 2 has the key of the one before",
         [](Bestanden& b) { memcpy(b.entry(b.blad(), 1), b.entry(b.blad(), 0), 4); }},
        {"the separator above is not the highest", [](Bestanden& b) { b.entry(1, 0)[3]++; }},
        {"leads to block 2, which is no node", [](Bestanden& b) { ZET32(b.entry(1, 0) + 4, 2); }},
        {"leads to block 70000, which is no node", [](Bestanden& b) { ZET32(b.entry(1, 0) + 4, 70'000); }},
        {"the sentinel is missing", [](Bestanden& b) { b.entry(1, b.i(1, 4) - 1)[0] = 0x7F; }},
        {"the sentinel leads to record 5",
         [](Bestanden& b) {
             size_t laatste = static_cast<size_t>(LEES32(b.entry(1, b.i(1, 4) - 1) + 4));
             ZET32(b.entry(laatste, b.i(laatste, 4) - 1) + 4, 5);
         }},
        {"leads to record 60, which is free", [](Bestanden& b) { ZET32(b.entry(b.blad(), 0) + 4, 60); }},
        {"leads to record 1000, which does not exist",
         [](Bestanden& b) { ZET32(b.entry(b.blad(), 0) + 4, 1000); }},
        {"is not the key of its record 7", [](Bestanden& b) { ZET32(b.entry(b.blad(), 0) + 4, 7); }},
        {"is not the key of its record 7", [](Bestanden& b) { b.rec(7)[0] = 250; }},
        {"record 50 is not found by its key", [](Bestanden& b) { memset(b.rec(50), 0, RECLEN); }},
        {"the tree has 108 records, the data file has 109 in use",
         [](Bestanden& b) { memset(b.rec(50), 0, RECLEN); }},
    };
    TijdelijkeMap map;
    maak();
    EXPECT_EQ("", gezondheid("T"));
    const Bestanden heel;
    for (auto& g : gevallen) {
        Bestanden b = heel;
        g.bederf(b);
        schrijf_bestand("T.INX", b.idx);
        schrijf_bestand("T.TXT", b.data);
        std::string alles;
        for (const std::string& s : IXDIEPCHECK("T"))
            alles += s + "\n";
        EXPECT_NE(std::string::npos, alles.find(g.melding)) << g.melding << " not in:\n" << alles;
    }
    EXPECT_EQ(std::vector<std::string>{"the index file can't be opened"}, IXDIEPCHECK("U"));
}

// Nothing goes by these bytes, so nothing can tell that they changed.
bool betekent_niets(size_t plaats) {
    size_t blok = plaats / 512, p = plaats % 512;
    if (blok == 3 && p >= 5 && p < 9)
        return true; // which key is reserved only its owner knows
    if (blok > 0)
        return p == 2 || p == 3 || p >= 510; // unused in every node
    if (p < 11 || (p >= 26 && p < 45) || p == 46 || p == 47 || p >= 260)
        return true; // name, title, unused
    if (p < 48 || p >= 258)
        return false;
    size_t sleutel = (p - 48) / 42, q = (p - 48) % 42;
    if (sleutel >= 2 || q < 8 || q == 41)
        return true;                                              // keys that the file hasn't, names, unused
    return (q >= 13 && q < 21) || (q >= 22 && q < 31) || q >= 32; // parts behind the last
}

// Everything that a program does; every answer is right as long as there is one.
void gebruik() {
    IXWAITHOOK = [](ICB*) { _exit(0); }; // a key that the damage reserved
    for (int mode : {0, 2, 1}) {
        ICB* icb = IXOPEN("T", mode);
        uint8_t r[RECLEN] = {};
        for (int k = 1; k <= 2; k++) {
            IXSWITCH(icb, k);
            int n = 0;
            memset(r, 0, sizeof r);
            for (int ok = IXFIRST(icb, r); ok && n < 3 * RECORDS; ok = IXNEXT(icb, r))
                n++;
            if (n == 3 * RECORDS)
                _exit(7);
            memset(r, 0xFF, sizeof r);
            for (int ok = IXLAST(icb, r), m = 0; ok && m < 20; m++)
                ok = IXPREVR(icb, r, 0);
            int32_t nr = 5;
            IXSKIP(icb, r, 0, -3, &nr);
            IXUNIQK(icb, r, 1);
        }
        IXSWITCH(icb, 1);
        for (int i : {0, 55, 99, 150}) {
            ZET32(r, i);
            if (IXREADL(icb, r)) {
                r[4]++;
                IXWRITE(icb, r);
                IXREAD(icb, r);
                IXDELETE(icb, r);
            }
        }
        for (int i = 300; i < 310; i++) {
            ZET32(r, i);
            IXWRITE(icb, r);
        }
        IXCLOSE(icb);
    }
}

TEST(Diepcheck, ElkeOmgeklapteBit) {
    TijdelijkeMap map;
    maak();
    const Bestanden heel;
    const size_t stap = getenv("ZG_LONG") ? 7 : 521; // the check looks at every flip, programs at some
    int fd = IXBESTANDOPEN("T.INX", O_RDWR), datfd = IXBESTANDOPEN("T.TXT", O_RDWR);
    size_t gezien = 0, stil = 0;
    for (size_t bit = 0; bit < heel.idx.size() * 8; bit++) {
        char fout = static_cast<char>(heel.idx[bit / 8] ^ (1 << (bit % 8)));
        ASSERT_EQ(1, IXSYSSCHRIJF(fd, &fout, 1, static_cast<int64_t>(bit / 8)));
        bool gemerkt = !IXDIEPCHECK(fd, datfd).empty();
        gezien += gemerkt;
        stil += !gemerkt;
        EXPECT_EQ(gemerkt, !betekent_niets(bit / 8)) << "byte " << bit / 8 << " of block " << bit / 4096;
        if (bit / 8 != offsetof(IXHEADER, version)) // the former version ends the program
            IXCHECK("T");
        if (bit % stap == 0) {
            int status = in_kind([] {
                int niets = open("/dev/null", O_RDWR);
                dup2(niets, 0);
                dup2(niets, 1);
                dup2(niets, 2);
                alarm(20);
                gebruik();
            });
            ASSERT_TRUE(status == 0 || status == 1) << "bit " << bit << ": " << status;
            schrijf_bestand("T.INX", heel.idx);
            schrijf_bestand("T.TXT", heel.data);
        } else
            ASSERT_EQ(1, IXSYSSCHRIJF(fd, &heel.idx[bit / 8], 1, static_cast<int64_t>(bit / 8)));
    }
    IXBESTANDDICHT(fd);
    IXBESTANDDICHT(datfd);
    RecordProperty("noticed", static_cast<int>(gezien));
    RecordProperty("without_meaning", static_cast<int>(stil));
    EXPECT_GT(gezien, 4 * stil);
}

} // namespace
} // namespace zg::test
