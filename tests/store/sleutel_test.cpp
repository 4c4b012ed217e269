// Keys: definition texts, key bytes, order.
#include "store/hulp.h"
#include "store/zoeker.h"

namespace zg::test {
namespace {

using std::string;
using namespace std::string_literals;

struct Losse { // a handle with definitions, no more
    TijdelijkeMap map;
    ICB* icb;
    explicit Losse(const Tabel& t) : icb(maak_open("T", t, 2)) {}
    ~Losse() { IXCLOSE(icb); }
};

TEST(Sleutel, Definities) {
    struct {
        int nummer;
        const char *tekst, *uit; // name, flag, length and entries; parts as type, first, last
    } gevallen[] = {
        {1, "key1,NODUPS,C,5,14,I,1,4", "key1 N 14 28 C5-14 I1-4"},
        {1, "code-cap,I,1,2,I,3,3,I,4,4", "code-cap N 4 63 I1-2 I3-3 I4-4"}, // key 1 never has duplicates

        {2, "cd-name,I,1,2,C,45,64", "cd-name J 26 16 I1-2 C45-64"},
        {2, "  spaced , NODUPS , I , 5 , 6 ", "spaced N 2 84 I5-6"},
        {2, "I,5,6,I,4,4,longer than eight,NODUPS", "longer t N 3 72 I5-6 I4-4"},

        {2, "NODUPS,C,1,60", " N 60 7 C1-60"},

        // The eleventh part has no room; what follows it still counts.
        {2, "k,I,1,1,I,2,2,I,3,3,I,4,4,I,5,5,I,6,6,I,7,7,I,8,8,I,9,9,I,10,10,I,11,11,NODUPS",
         "k N 10 36 I1-1 I2-2 I3-3 I4-4 I5-5 I6-6 I7-7 I8-8 I9-9 I10-10"},
    };
    for (auto& g : gevallen) {
        ICB icb{};
        IXUPDFCB(&icb, g.nummer, g.tekst);
        const IXKEYDEF& d = icb.h.keydef[g.nummer - 1];
        string uit = string(d.keyname, strnlen(d.keyname, 8)) + " " + d.dupflag + " " +
                     std::to_string(d.keylen) + " " + std::to_string(d.maxent);
        for (int i = 0; i < IXDELEN && d.ptype[i]; i++)
            uit += string(" ") + d.ptype[i] + std::to_string(d.pstart[i]) + "-" + std::to_string(d.pend[i]);
        EXPECT_EQ(g.uit, uit) << g.tekst;
        EXPECT_EQ(g.nummer, IXSLEUTEL(&icb));
        EXPECT_EQ(g.nummer, icb.h.nkeys);
    }
    ICB icb{};
    for (const char* tekst : {"TR_PTR_general_longer_than_19,16", ",0"}) { // empty and 0 change nothing
        IXUPDFCB(&icb, 0, tekst);
        EXPECT_EQ("TR_PTR_general_long", string(icb.h.title, 19));
        EXPECT_EQ(16, icb.h.reclen);
    }
}

TEST(Sleutel, GeweigerdeDefinities) {
    struct {
        int nummer;
        const char* tekst;
    } gevallen[] = {
        {1, "k,C,1,61"}, {2, "k,C,1,57"},  {2, "k,C,1,40,C,1,40"}, // pass 60 bytes, with the record number too
        {2, "k,NODUPS"}, {2, "k,C"},       {2, "k,C,0,5"},         // no part, before the record
        {2, "k,C,9,8"},  {2, "k,C,1,256"}, {6, "k,C,1,2"},         {0, "t,513"},
    };
    for (auto& g : gevallen)
        EXPECT_NE("", stopt([&] {
                      ICB icb{};
                      IXUPDFCB(&icb, g.nummer, g.tekst);
                  }))
            << g.tekst;
    // A part behind the record is seen when the index is made.
    TijdelijkeMap map;
    EXPECT_NE("", stopt([] { maak_paar("U", {8, {"k,C,5,9"}}); }));
}

TEST(Sleutel, Bytes) {
    // 0: i32 -2, 4: text "Ab" NUL then rubbish, 9: u16 0x1234, 11: a 3-byte "integer"
    const string rec = "\xFE\xFF\xFF\xFF"
                       "Ab\0xy"
                       "\x34\x12"
                       "\x01\x02\x03"s;
    struct {
        const char* tekst;
        int lengte; // 0: full
        string bytes;
    } gevallen[] = {
        {"NODUPS,I,1,4", 0, "\xFF\xFF\xFF\xFE"},
        {"NODUPS,C,5,9", 0, "Ab\0\0\0"s},
        {"NODUPS,I,10,11,I,10,10", 0, "\x12\x34\x34"},
        {"NODUPS,I,12,14", 0, "\0\0\0"s},                       // no integer is 3 bytes wide
        {"NODUPS,I,11,11,I,1,2,C,5,6", 1, "\x12\0\0\0\0"s},     // a prefix, padded
        {"NODUPS,I,11,11,I,1,2,C,5,6", 2, "\x12\xFF\xFE\0\0"s}, // a part begun is put in whole
        {"I,11,11", 0, "\x12\0\x01\x02\x03"s},                  // record number 0x010203
        {"I,11,11", 1, "\x12\0\0\0\0"s},                        // a prefix has none
    };
    for (auto& g : gevallen) {
        Losse l({14, {"k,I,1,1", g.tekst}});
        IXSWITCH(l.icb, 2);
        l.icb->currec = 0x010203;
        const int vol = IXKEYLEN(l.icb, 0);
        IXBLDKEY(l.icb, rec.data(), g.lengte ? g.lengte : vol);
        EXPECT_EQ(g.bytes, string(reinterpret_cast<char*>(l.icb->keybuf), static_cast<size_t>(vol)))
            << g.tekst;
    }
    Losse l({14, {"k,I,1,1", "I,1,4,C,5,9"}});
    IXSWITCH(l.icb, 2);
    EXPECT_EQ(4, IXKEYLEN(l.icb, 1));
    EXPECT_EQ(9, IXKEYLEN(l.icb, 2));
    EXPECT_EQ(9, IXKEYLEN(l.icb, 7));
    EXPECT_EQ(13, IXKEYLEN(l.icb, 0)); // with the record number
    // Back into a record: the parts, NULs included, and nothing else.
    IXBLDKEY(l.icb, rec.data(), 13);
    l.icb->curent = l.icb->keybuf;
    string terug(14, '#');
    IXKEYTOREC(l.icb, terug.data());
    EXPECT_EQ("\xFE\xFF\xFF\xFF"
              "Ab\0\0\0#####"s,
              terug);
    IXRDIX(l.icb, 2);
}

TEST(Sleutel, Vergelijken) {
    Losse l({14, {"k,I,1,1", "I,1,2", "C,1,4", "NODUPS,C,1,4,I,5,6"}});
    struct {
        int sleutel;
        string a, b;
        int lengte, teken;
    } gevallen[] = {
        {2, "\x7F\xFF\0\0\0\0"s, "\xFF\xFF\0\0\0\0"s, 6, -1}, // -1 sorts behind 32767
        {2, "\0\1\0\0\0\5"s, "\0\1\0\0\0\4"s, 6, 1},          // the record number decides
        {2, "\0\1\0\0\0\5"s, "\0\1\0\0\0\4"s, 2, 0},
        {3, "abc\0\0\0\0\5"s, "ABC\0\0\0\0\5"s, 8, 0},

        {4, "abc\0\0\2"s, "ABC\0\0\1"s, 4, 0},
        {4, "abcd\0\2"s, "ABCC\0\1"s, 2, 1}, // a part that is begun is compared whole
    };
    for (auto& g : gevallen) {
        IXSWITCH(l.icb, g.sleutel);
        int uit = IXCOMP(l.icb, g.a.data(), g.b.data(), g.lengte);
        EXPECT_EQ(g.teken, (uit > 0) - (uit < 0))
            << testing::PrintToString(g.a) << testing::PrintToString(g.b);
    }
}

// A search compares its key with many by a shorter way: the answers are the same, at every length.
TEST(Sleutel, EenTegenVelen) {
    TijdelijkeMap map;
    ICB* icb = maak_open("T", {40, {"a,I,1,4,C,5,9,I,10,11", "b,C,5,14,C,15,17", "c,C,5,9,I,1,2"}}, 1);
    Toeval t(1);
    const uint8_t letters[] = {0, 7, 'a', 'A', 'B', 0x84, 0x92, 0xE1, 0xFF};
    uint8_t a[IXSLEUTELMAX], b[IXSLEUTELMAX];
    for (int keer = 0; keer < 30'000; keer++) {
        const IXKEYDEF& def = icb->h.keydef[keer % 3];
        for (int i = 0; i < def.keylen; i++) {
            a[i] = letters[t(sizeof letters)];
            b[i] = t(6) ? a[i] : letters[t(sizeof letters)];
        }
        const int lengte = static_cast<int>(t(def.keylen + 2u)), zo = IXVERGELIJK(def, a, b, lengte),
                  kort = Vergelijker(def, a, lengte)(b);
        ASSERT_EQ((zo > 0) - (zo < 0), (kort > 0) - (kort < 0)) << "key " << keer % 3 + 1 << ", " << lengte;
    }
    IXCLOSE(icb);
}

TEST(Collatie, Voorbeelden) {
    struct {
        string a, b;
        int teken;
    } gevallen[] = {
        {"Abc", "ABC", 0},
        {"M\x81LLER", "MULLER", 1},  // an accent comes behind the plain letter
        {"M\x81LLER", "MULLES", -1}, // and only when all else is the same
        {"m\x81ller", "M\x9ALLER", 0},
        {"\x84", "\x85", -1},    // marks by their code: " before '
        {"M\x92\0"s, "MAE", -1}, // two letters for one, less on the second level
        {"\xE1", "S", 1},
        {"a\x07\0"s, "a\0\0"s, 1}, // control characters count last
        {"a\x07z", "az\0"s, 1},
        {"\x07", "\x08", -1},
        {"a\0b"s, "ab\0"s, -1}, // a NUL is a character, it does not end the text
        {"[", "a", 1},

        {"\xFF\xFF", "zz", 1},

        {"\xFF", "\xFF", 0},
    };
    for (auto& g : gevallen) {
        int n = static_cast<int>(g.a.size()), uit = IXCOLLATE(g.a.data(), g.b.data(), n);
        EXPECT_EQ(g.teken, (uit > 0) - (uit < 0))
            << testing::PrintToString(g.a) << testing::PrintToString(g.b);
        int om = IXCOLLATE(g.b.data(), g.a.data(), n);
        EXPECT_EQ(-g.teken, (om > 0) - (om < 0))
            << testing::PrintToString(g.b) << testing::PrintToString(g.a);
    }
}

// The order of every two bytes, alone and before another letter, as one sum: it was taken when the order had been
// compared with the table of letters and marks, and files are sorted by it.
TEST(Collatie, VolgordeVanAlleBytes) {
    uint64_t som = 14695981039346656037u;
    for (int i = 0; i < 0x20000; i++) {
        const uint8_t lang = static_cast<uint8_t>(i >> 16);
        const uint8_t a[2] = {static_cast<uint8_t>(i), 'A'}, b[2] = {static_cast<uint8_t>(i >> 8), 0x92};
        const int d = IXCOLLATE(a, b, 1 + lang);
        som = (som ^ static_cast<uint64_t>((d > 0) - (d < 0) + 1)) * 1099511628211u;
    }
    EXPECT_EQ(14608994577778431573u, som);
}

} // namespace
} // namespace zg::test
