// Pairs: names, creating, opening, versions, IXCHECK; and damaged headers, which end in a report that names the file.
#include "store/bestand.h"
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

const Tabel tabel{20, {"k,I,1,4", "t,C,5,12"}};

void vul(const char* naam, int van, int tot, int mode = 1) {
    ICB* icb = IXOPEN(naam, mode);
    char r[20] = {};
    for (int i = van; i < tot; i++) {
        ZET32(r, i);
        snprintf(r + 4, 8, "t%d", i % 7);
        EXPECT_EQ(1, IXWRITE(icb, r));
    }
    IXCLOSE(icb);
}

// One value in the header on disk.
template <class T> void zet_kop(const char* naam, size_t plaats, T waarde) {
    int fd = IXBESTANDOPEN((std::string(naam) + ".INX").c_str(), O_RDWR);
    EXPECT_EQ(1, SYSSCHRIJFOP(fd, &waarde, sizeof waarde, static_cast<int64_t>(plaats)));
    IXBESTANDDICHT(fd);
}

void zet_data(size_t plaats, const std::string& bytes) {
    schrijf_bestand("T.TXT", lees_bestand("T.TXT").replace(plaats, bytes.size(), bytes));
}

bool bevat(const std::string& tekst, const std::string& stuk) {
    return tekst.find(stuk) != std::string::npos;
}

TEST(Paar, Namen) {
    struct {
        const char *naam, *index, *data;
        bool tijdelijk;
    } gevallen[] = {
        {"DTIPA", "DTIPA.INX", "DTIPA.TXT", false},
        {"DTAG.07", "DTAG.07", "DTAG.TXT", true},

        {"../a.b/DTAG.07", "../a.b/DTAG.07", "../a.b/DTAG.TXT", true},
    };
    for (auto& g : gevallen) {
        EXPECT_EQ(g.index, IXINDEXPAD(g.naam));
        EXPECT_EQ(g.data, IXDATAPAD(g.naam));
        EXPECT_EQ(g.tijdelijk, IXTIJDELIJKENAAM(g.naam)) << g.naam;
    }
}

TEST(Paar, KopOpSchijf) {
    TijdelijkeMap map;
    maak_paar("langer_dan_elf", tabel);
    std::string idx = lees_index("langer_dan_elf.INX");
    ASSERT_EQ(4u * 512, idx.size());
    EXPECT_EQ("langer_dan_", idx.substr(0, 11));
    const uint8_t vast[] = {2, 0xFF, 0xFF, 0xFF, 0xFF, 0, 0, 0, 0, 4, 0, 0, 0, 20, 0};
    EXPECT_EQ(0, memcmp(vast, idx.data() + 11, sizeof vast));
    EXPECT_EQ("proef", std::string(idx.c_str() + 26));
    const uint8_t tweede[] = {'t', 0, 0, 0, 0, 0, 0, 0, 'J', 12, 31, 'C', 0};
    EXPECT_EQ(0, memcmp(tweede, idx.data() + 90, sizeof tweede));
    EXPECT_EQ("\x5F\x01", idx.substr(258, 2));
    EXPECT_EQ(std::string("\2\1\0\0\1", 5) + std::string(16, '\xFF') + '\0', idx.substr(1024, 22));
    EXPECT_EQ(std::string("\1\0", 2), idx.substr(1536, 2));
    EXPECT_EQ("", lees_bestand("langer_dan_elf.TXT"));
    EXPECT_EQ(0, IXCHECK("langer_dan_elf"));
}

TEST(Paar, TijdelijkeIndexOverGedeeldeData) {
    TijdelijkeMap map;
    KorteWacht kort;
    maak_paar("T", tabel);
    vul("T", 0, 100, 2);
    ICB* gewoon = IXOPEN("T", 2);
    ICB* tijdelijk = IXCREATE("T.07", 1);
    IXUPDFCB(tijdelijk, 0, "keuze,20");
    IXUPDFCB(tijdelijk, 1, "k,C,5,12,I,1,4");
    IXINITIX(tijdelijk);
    char r[20] = {};
    IXFIRST(gewoon, r);
    EXPECT_EQ(1, IXREADL(gewoon, r));
    Agent ander([](const std::string& o) -> std::string {
        static ICB* icb = IXOPEN("T", 2);
        char s[20] = {};
        return o == "try" ? (IXFIRST(icb, s), IXLOCK(icb, 3) ? "free" : "held") : "?";
    });
    EXPECT_EQ("held", ander.vraag("try"));
    for (int i = 0; i < 100; i += 2) {
        EXPECT_EQ(1, IXGET(gewoon, r, i));
        tijdelijk->currec = i;
        IXADDKEYS(tijdelijk, r);
    }
    int n = 0;
    for (int ok = (memset(r, 0, 20), IXFIRST(tijdelijk, r)); ok; ok = IXNEXT(tijdelijk, r))
        n += LEES32(r) % 2 == 0;
    EXPECT_EQ(50, n);
    tijdelijk->currec = 0;
    IXLOCK(tijdelijk, 13);
    IXCLOSE(tijdelijk);
    EXPECT_EQ("held", ander.vraag("try"))
        << "closing another handle on the data file must not drop its locks";
    EXPECT_GEZOND("T");
    EXPECT_EQ("held", ander.vraag("try")) << "nor may a check";
    IXCLOSE(gewoon);
    EXPECT_GE(IXCHECK("T.07"), 0);
    EXPECT_EQ(1, IXREMOVE("T.07")) << "looks for T.07.INX and T.07.TXT, which are not there";
    EXPECT_EQ(1, access("T.07", F_OK) + 1);
    EXPECT_EQ(1, IXREMOVE("T"));
    EXPECT_NE(0, access("T.TXT", F_OK));
}

TEST(Paar, AanmakenHoudtDeData) {
    TijdelijkeMap map;
    maak_paar("T", tabel);
    vul("T", 0, 5);
    std::string data = lees_bestand("T.TXT");
    ICB* icb = IXCREATE("T", 1);
    IXCLOSE(icb);
    EXPECT_EQ(data, lees_bestand("T.TXT"));
    EXPECT_EQ(512u, lees_index("T.INX").size());
    maak_paar("T", tabel); // IXINIT empties both
    EXPECT_EQ("", lees_bestand("T.TXT"));
    vul("T", 0, 500);
    icb = IXOPEN("T", 1); // an index emptied in place keeps nothing of the old trees
    IXINITIX(icb);
    IXCLOSE(icb);
    EXPECT_EQ(4u * 512, lees_index("T.INX").size());
}

TEST(Paar, Versies) {
    TijdelijkeMap map;
    maak_paar("T", tabel);
    for (uint16_t versie : {uint16_t{352}, uint16_t{100}})
        for (bool openen : {true, false}) {
            zet_kop("T", 258, versie);
            if (openen)
                IXCLOSE(IXOPEN("T", 0));
            else
                EXPECT_EQ(0, IXCHECK("T"));
            EXPECT_EQ("\x5F\x01", lees_index("T.INX").substr(258, 2)) << versie << openen;
        }
    zet_kop("T", 258, uint16_t{350});
    EXPECT_TRUE(bevat(stopt([] { IXOPEN("T", 0); }), "U kunt het bestand converteren met ixremake"));
    EXPECT_TRUE(bevat(stopt([] { IXCHECK("T"); }), "U kunt het bestand converteren met IXREMAKE.EXE"));
    rename("T.INX", "T.07");
    EXPECT_TRUE(bevat(stopt([] { IXOPEN("T.07", 0); }), "Programma is beeindigd"));
    EXPECT_EQ(-1, IXCHECK("T.07"));
}

TEST(Paar, CheckWeigert) {
    struct {
        const char* wat;
        void (*bederf)();
        int uit;
    } gevallen[] = {
        {"nothing", [] {}, 2},
        {"no index", [] { unlink("T.INX"); }, -1},
        {"no data", [] { unlink("T.TXT"); }, -1},
        {"511 bytes", [] { EXPECT_EQ(0, truncate("T.INX", 511)); }, -1},
        {"cut to the header", [] { EXPECT_EQ(0, truncate("T.INX", 512)); }, -1},
        {"not whole blocks", [] { schrijf_bestand("T.INX", lees_index("T.INX") + "x"); }, -1},
        {"busy", [] { zet_kop("T", 45, '\1'); }, -1},
        {"a record more", [] { schrijf_bestand("T.TXT", lees_bestand("T.TXT") + std::string(20, 'x')); }, -1},
        {"half a record less", [] { EXPECT_EQ(0, truncate("T.TXT", 20 * 100 - 10)); }, -1},
        {"chain into a live record", [] { zet_kop("T", 12, int32_t{3}); }, -1},
        {"chain past the end", [] { zet_kop("T", 12, int32_t{100}); }, -1},
        {"chain lost", [] { zet_kop("T", 12, int32_t{-1}); }, 0},

        {"a chain in a circle", [] { zet_data(10 * 20 + 1, std::string("\x0A\0\0\0", 4)); }, -1},
        {"a free record live by its last byte, which isn't looked at", [] { zet_data(21 * 20 - 1, "x"); }, 2},
        {"by the byte before", [] { zet_data(21 * 20 - 2, "x"); }, -1},
    };
    for (auto& g : gevallen) {
        TijdelijkeMap map;
        maak_paar("T", tabel);
        vul("T", 0, 100);
        ICB* icb = IXOPEN("T", 2);
        char r[20] = {};
        for (int i : {10, 20}) {
            IXGET(icb, r, i);
            IXDELETE(icb, r);
        }
        IXCLOSE(icb);
        g.bederf();
        EXPECT_EQ(g.uit, IXCHECK("T")) << g.wat;
    }
}

TEST(Paar, OpenenMislukt) {
    TijdelijkeMap map;
    EXPECT_TRUE(bevat(stopt([] { IXOPEN("T", 0); }), "QUILLDB(2): T.TXT "));
    schrijf_bestand("T.TXT", "");
    EXPECT_TRUE(bevat(stopt([] { IXOPEN("T", 0); }), "QUILLDB(2): T.INX "));
    schrijf_bestand("T.INX", std::string(511, 'x'));
    EXPECT_TRUE(bevat(stopt([] { IXOPEN("T", 0); }), "T.INX "));
    EXPECT_TRUE(bevat(stopt([] { IXCREATE("geen/T", 1); }), "File create mislukt : geen/T.TXT"));
    static char r[20];
    const std::pair<const char*, void (*)()> zonder[] = {
        {"IXREAD", [] { IXREAD(nullptr, r); }},          {"IXCLOSE", [] { IXCLOSE(nullptr); }},
        {"IXFIRSTK", [] { IXFIRSTK(nullptr, r, 1); }},   {"IXNEXTK", [] { IXNEXTK(nullptr, r, 1); }},
        {"IXPREVK", [] { IXPREVK(nullptr, r, 1); }},     {"IXLOCK", [] { IXLOCK(nullptr, 2); }},
        {"IXWRITE", [] { IXWRITE(nullptr, r); }},        {"IXDELETE", [] { IXDELETE(nullptr, r); }},
        {"IXUNLOCK", [] { IXUNLOCK(nullptr, r); }},      {"IXSWITCH", [] { IXSWITCH(nullptr, 1); }},
        {"IXSEARCH", [] { IXSEARCH(nullptr, '=', 4); }},
    };
    for (const auto& [wie, roep] : zonder)
        EXPECT_TRUE(bevat(stopt(roep), std::string(wie) + " : ICB == NULL")) << wie;
}

// A header that makes no sense is reported at the first look, before anything goes by it.
TEST(Paar, BedorvenKop) {
    struct {
        size_t plaats;
        std::string bytes;
        const char* melding;
    } gevallen[] = {
        {11, "\x06", "blok 0"},

        {16, "\xFF\xFF\xFF\xFF", "blok 0"},
        {20, std::string("\1\0\0\0", 4), "blok 0"},
        {24, std::string("\x01\x02", 2), "blok 0"},

        {45, "\x01", "Niet consistent"},

        {48 + 9, "\x3D", "blok 0"},
        {48 + 10, std::string("\0", 1), "blok 0"},

        {48 + 11, "X", "blok 0"},
        {48 + 21, std::string("\0", 1), "blok 0"},
        {48 + 31, "\xFF", "blok 0"},
        {512, "\x02", "blok 1"},
        {512 + 1, "\x0A", "blok 1"},

    };
    TijdelijkeMap map;
    maak_paar("T", tabel);
    vul("T", 0, 10);
    const std::string heel = lees_index("T.INX");
    for (auto& g : gevallen) {
        std::string idx = heel;
        idx.replace(g.plaats, g.bytes.size(), g.bytes);
        schrijf_bestand("T.INX", idx);
        for (int mode : {0, 1, 2}) {
            std::string uit = stopt([&] { IXOPEN("T", mode); });
            EXPECT_TRUE(bevat(uit, g.melding) && bevat(uit, "T          : ")) << g.plaats << ": " << uit;
        }
    }
}

// Another file in the place of one that is open: whoever writes stops before he writes where nobody looks; who opens has the
// new one. A directory under another name is no other file.
TEST(Paar, VervangenOnderDeSchrijver) {
    const struct {
        const char *wat, *opdracht;
        bool anders;
    } gevallen[] = {
        {"index", "cp T.INX N && mv N T.INX", true},
        {"data", "cp T.TXT N && mv N T.TXT", true},
        {"both", "cp T.INX N && mv N T.INX && cp T.TXT N && mv N T.TXT", true},
        {"gone", "rm T.INX", true},
        {"backup with a second name", "ln T.TXT L && cp T.TXT N && mv N T.TXT", true},
        {"second name", "ln T.TXT L && ln T.INX M", false},
        {"directory", "mv ../hier ../daar", false},
        {"touched", "touch T.INX T.TXT && chmod 660 T.INX", false},
    };
    const struct {
        const char* wat;
        void (*werk)(ICB* icb);
    } werken[] = {
        {"insert", [](ICB* icb) { EXPECT_EQ(1, IXWRITE(icb, "xxxxxxxxxxxxxxxxxxxy")); }},
        {"update under lock",
         [](ICB* icb) {
             char r[20] = {};
             IXREADL(icb, r);
             r[19] = 'z';
             EXPECT_EQ(1, IXWRITE(icb, r));
         }},
        {"delete",
         [](ICB* icb) {
             char r[20] = {};
             IXREAD(icb, r);
             IXDELETE(icb, r);
         }},
    };
    for (const auto& g : gevallen)
        for (const auto& w : werken)
            for (const int mode : {1, 2}) {
                SCOPED_TRACE(std::string(g.wat) + ", " + w.wat + ", mode " + std::to_string(mode));
                TijdelijkeMap map;
                ASSERT_TRUE(mkdir("hier", 0700) == 0 && IOCHDIR("hier"));
                maak_paar("T", tabel);
                vul("T", 0, 10);
                const std::string data = lees_bestand("T.TXT");
                const std::string uit = stopt([&] {
                    ICB* icb = IXOPEN("T", mode);
                    if (system(g.opdracht) != 0)
                        _exit(9);
                    w.werk(icb);
                    IXCLOSE(icb);
                });
                EXPECT_EQ(g.anders, bevat(uit, "T          : ") && bevat(uit, "vervangen")) << uit;
                if (g.anders) {
                    EXPECT_EQ(data, lees_bestand("T.TXT"));
                    continue;
                }
                EXPECT_EQ("", uit);
                EXPECT_GEZOND("T");
            }
}

// A handle that goes on: replaced between two writes it is told at the next, or at its close when the two follow each other within
// a tick of the clock. And who waits at the door
// of a pair that is replaced meanwhile comes in by the new one.
TEST(Paar, VervangenLater) {
    TijdelijkeMap map;
    maak_paar("M", tabel);
    vul("M", 0, 10);
    for (const int later : {20'000, 0}) {
        ASSERT_EQ(0, system("rm -f T.* && cp M.INX T.INX && cp M.INX N.INX && cp M.TXT T.TXT"));
        const std::string uit = stopt([later] {
            ICB* icb = IXOPEN("T", 2);
            char r[20] = {};
            const auto schrijf = [&](int nr) { return ZET32(r, nr), IXWRITE(icb, r); };
            EXPECT_EQ(1, schrijf(100));
            if (rename("N.INX", "T.INX") != 0)
                _exit(9);
            usleep(static_cast<useconds_t>(later));
            schrijf(101);
            if (later)
                _exit(7);
            IXCLOSE(icb);
        });
        EXPECT_TRUE(bevat(uit, "vervangen")) << later << uit;
    }

    static bool vervangen;
    vervangen = false;
    const SYSCALLS echt = SYS;
    SYS.slot = [](int fd, int opdracht, struct flock* slot) {
        vervangen = vervangen || rename("N.INX", "T.INX") == 0;
        return fcntl(fd, opdracht, slot);
    };
    ASSERT_EQ(0, system("cp T.INX N.INX"));
    ICB* icb = IXOPEN("T", 2);
    SYS = echt;
    struct stat open_nu, op_pad;
    ASSERT_EQ(0, fstat(icb->idxfd, &open_nu) + stat("T.INX", &op_pad));
    EXPECT_EQ(op_pad.st_ino, open_nu.st_ino);
    IXCLOSE(icb);
}

} // namespace
} // namespace zg::test
