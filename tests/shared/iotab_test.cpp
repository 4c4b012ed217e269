// Fixed tables, the lock primitive and the name of who holds a lock.
#include "shared/houder.h"
#include "support/systeem.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

constexpr Systabel PROEF{1000, 5, 20};

struct Tabellen : Systeem {
    static void tekst(int slot, const char* woord, const Systabel& tabel = PROEF) {
        tekst20 rec{};
        VASTIN(rec.tekst, woord);
        zet(slot, rec, tabel);
    }
    // Slots met by a walk with one letter: "1a 3c", with the number at its end.
    static std::string loop(char letter, int32_t nr) {
        std::string uit;
        char rec[20];
        while (iotab(letter, &nr, rec, PROEF))
            uit += std::to_string(nr) + rec + " ";
        return uit + "(" + std::to_string(nr) + ")";
    }
};

TEST_F(Tabellen, Walks) {
    EXPECT_EQ(loop('N', 0), "(6)");
    EXPECT_EQ(loop('P', 6), "(0)");
    tekst(1, "a");
    tekst(3, "c");
    EXPECT_EQ(loop('N', 0), "1a 3c (6)");
    EXPECT_EQ(loop('N', 1), "3c (6)");
    EXPECT_EQ(loop('P', 6), "3c 1a (0)");
    EXPECT_EQ(loop('P', 1), "(0)");
    EXPECT_EQ(loop('N', INT32_MIN), "1a 3c (6)");
    EXPECT_EQ(loop('P', INT32_MAX), "3c 1a (0)");
    EXPECT_EQ(loop('N', INT32_MAX), "(2147483647)");
    char rec[20];
    int32_t nr = 2;
    EXPECT_EQ(iotab('F', &nr, rec, PROEF), 1);
    EXPECT_EQ(nr, 3);
    nr = 3;
    EXPECT_EQ(iotab('D', &nr, rec, PROEF), 1);
    EXPECT_EQ(loop('N', 0), "1a (6)");
    EXPECT_EQ(loop('P', 6), "1a (0)");
}

TEST_F(Tabellen, OutsideTheTable) {
    for (Systabel naast : {Systabel{980, 1, 20}, Systabel{1100, 1, 20}})
        tekst(1, "of another", naast);
    std::string voor = lees_bestand("DTSYS.TXT");
    for (int32_t slot : {INT32_MIN, -1, 0, 6, 7, INT32_MAX}) {
        char rec[20] = "x";
        int32_t nr = slot;
        for (char letter : {'W', 'w', 'D'})
            EXPECT_EQ(iotab(letter, &nr, rec, PROEF), 1) << letter << slot;
        for (char letter : {'R', 'X', 'T', 'U', 'Q'})
            EXPECT_EQ(iotab(letter, &nr, rec, PROEF), 0) << letter << slot;
        EXPECT_EQ(nr, slot);
    }
    EXPECT_EQ(lees_bestand("DTSYS.TXT"), voor);
    EXPECT_TRUE(Agent([] {
                    int fd = ::open("DTSYS.TXT", O_RDWR);
                    return IOLOCK('T', fd, 0, 0) == 1;
                }).ok())
        << "a slot outside took a lock";
}

TEST_F(Tabellen, ShortFileReadsAsEmpty) {
    schrijf_bestand("DTSYS.TXT", std::string(1020, '\1') + "half");
    open();
    char rec[20];
    int32_t nr = 1;
    EXPECT_EQ(iotab('R', &nr, rec, PROEF), 1);
    nr = 2;
    EXPECT_EQ(iotab('R', &nr, rec, PROEF), 0);
    EXPECT_EQ(rec[0], 0) << "half a slot is no slot";
    EXPECT_EQ(loop('N', 1), "(6)");
    Slot<tekst20> slot{3, {}};
    EXPECT_EQ(iotab('R', &slot, SYS_KLEUR), 0);
    schrijf_bestand("DTSYS.TXT", std::string(64, '\xFF'));
    sys_lees();
    EXPECT_EQ(firma.filialen, FILIALEN);
    schrijf_bestand("DTSYS.TXT", "");
    sys_lees();
    EXPECT_EQ(firma.filialen, 0);
}

TEST_F(Tabellen, Counter) {
    EXPECT_EQ(iotab_teller(5, 9999999), 1000);
    EXPECT_EQ(iotab_teller(5, 9999999), 1001);
    for (int32_t staat : {-5, 9999999, INT32_MAX}) {
        zet(5, systeller{staat, {}}, SYS_RECORD);
        EXPECT_EQ(iotab_teller(5, 9999999), 1000) << staat;
    }
}

TEST_F(Tabellen, CodesBySet) {
    tekst(23, "drie", SYS_SETCODE);
    tekst(20, "nul", SYS_SETCODE);
    tekst(31, "ander", SYS_SETCODE);
    for (int slot : {20, 24, 30})
        zet(slot, setcode2rec{{static_cast<char>(slot)}}, SYS_SETCODE2);
    gebruiker.set = 2;
    tekst20 rec;
    setcode2rec rec2;
    // antwoord2: of the second table, which is one slot further
    for (const auto& [code, antwoord, na, antwoord2, na2] : Rijen<int32_t, int, int32_t, int, int32_t>{
             {3, 1, 3, 1, 4},
             {0, 0, 0, 0, 0},
             {-1, 0, -1, 1, 0},
             {9, 0, 9, 0, 9},
             {11, 0, 11, 0, 11}, // slots of another set, filled
             {4, 0, 4, 0, 4},
             {INT32_MAX, 0, INT32_MAX, 0, INT32_MAX},
         }) {
        int32_t nr = code, nr2 = code;
        EXPECT_EQ(iotab_setcode(&nr, &rec), antwoord) << code;
        EXPECT_EQ(nr, na) << code;
        EXPECT_EQ(iotab_setcode2(&nr2, &rec2), antwoord2) << code;
        EXPECT_EQ(nr2, na2) << code;
    }
}

// Another file in the place of DTSYS.TXT, from the next opening on.
TEST_F(Tabellen, OtherFile) {
    tekst(1, "deze");
    schrijf_bestand("ANDER.TXT", std::string(2000, '\0'));
    iotab_naam("ANDER.TXT");
    EXPECT_EQ(loop('N', 0), "1deze (6)");
    open();
    tekst(2, "die");
    EXPECT_EQ(loop('N', 0), "2die (6)");
    sluit();
    IOUNLINK("ANDER.TXT");
    verwacht_stop([] { open(); }, "ANDER.TXT niet aanwezig in /");
    verwacht_stop(
        [] {
            const char* lang = "een-heel-lange-mapnaam-met-haar-eind-eraan";
            if (SYS.mkdir(lang, 0700) == 0 && chdir(lang) == 0)
                open();
        },
        "-met-haar-eind-eraan");
    iotab_naam(nullptr);
    open();
    EXPECT_EQ(loop('N', 0), "1deze (6)");
}

TEST_F(Tabellen, FourCodeTables) {
    for (int soort = 1; soort <= 4; soort++) {
        tekst30 rec{};
        for (int32_t slot : {0, 1, 9}) {
            int32_t nr = slot;
            VASTIN(rec.tekst, std::to_string(soort * 10 + slot));
            EXPECT_EQ(iotab_code('W', soort, &nr, &rec), 1);
            EXPECT_EQ(nr, slot == 0 ? 1 : slot);
            const std::string bytes = lees_bestand("DTSYS.TXT");
            EXPECT_STREQ(bytes.c_str() + 10416 + (soort - 1) * 300 + slot * 30, VASTTEKST(rec.tekst).c_str());
        }
        int32_t nr = 0;
        EXPECT_EQ(iotab_code('N', soort, &nr, &rec), 1);
        EXPECT_EQ(VASTTEKST(rec.tekst), std::to_string(soort * 10 + 1)) << "a walk begins behind the head";
    }
}

TEST_F(Tabellen, ClosedFileStops) {
    sluit();
    verwacht_stop([] { loop('R', 1); }, "iotab: errno=9 a=R fd=-1 o=1000");
}

// What each letter answers against what another process holds, and that a refused try leaves nothing behind.
TEST_F(Tabellen, LockPrimitive) {
    struct {
        char ander; // held by the other process, 0 for nothing
        int s, e, t;
    } const rijen[] = {{0, 1, 1, 1}, {'S', 0, 0, 0}, {'E', 0, 0, 0}};
    for (const auto& r : rijen) {
        Agent agent([&] {
            int fd = ::open("DTSYS.TXT", O_RDWR);
            return !r.ander || IOLOCK(r.ander, fd, 100, 50);
        });
        ASSERT_TRUE(agent.ok());
        int fd = ::open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
        EXPECT_EQ(IOLOCK('T', fd, 149, 10), r.t) << r.ander;
        EXPECT_EQ(IOLOCK('T', fd, 150, 10), 1) << r.ander;
        EXPECT_EQ(IOLOCK('S', fd, 149, 10), r.s) << r.ander;
        EXPECT_TRUE(Agent([&] {
                        int ander = ::open("DTSYS.TXT", O_RDWR);
                        return IOLOCK('E', ander, 150, 5) == !r.s; // only a granted lock is still there
                    }).ok())
            << r.ander;
        IOLOCK('U', fd, 0, 0);
        EXPECT_EQ(IOLOCK('E', fd, 149, 10), r.e) << r.ander;
        EXPECT_EQ(IOLOCK('E', fd, 149, 10), r.e) << "one's own lock is no hindrance";
        EXPECT_EQ(IOLOCKPID(fd, 0, 0), r.ander ? agent.pid() : 0);
        agent.dood();
        EXPECT_EQ(IOLOCK('S', fd, 100, 50), 1) << "a dead process holds nothing";
        close(fd);
    }
    int fd = ::open("DTSYS.TXT", O_RDWR | O_CLOEXEC);
    EXPECT_EQ(IOLOCK('Q', fd, 0, 1) + IOLOCK('S', -1, 0, 1) + IOFLOCK(fd, 3, 0) + IOFLOCK(fd, 5, 10), 0);
    EXPECT_EQ(IOFLOCK(-1, 3, 10), 0) << "no waiting for what can't be";
    EXPECT_EQ(IOFLOCK(fd, 4, 10), 1);
    EXPECT_TRUE(Agent([] {
                    int ander = ::open("DTSYS.TXT", O_RDWR);
                    return IOLOCK('T', ander, 0, 130'000) == 1 && IOLOCK('T', ander, 130'009, 1) == 0;
                }).ok())
        << "4 locks from the end";
    close(fd);
}

TEST_F(Tabellen, HolderIsNamed) {
    gebruiker_in(7, "Joke \x9B", "03");
    gebruiker_in(8, "Pieter", "");
    struct {
        const char* woord;
        int slot; // of the holder, 0 for a process that isn't a user's
        const char* tekst;
    } const rijen[] = {
        {"", 7, "Informatie in gebruik door Joke \x9B (tty03)"},
        {"", 8, "Informatie in gebruik door Pieter"},
        {"~EDI", 8, "EDI: in gebruik door Pieter"},
        {"", 0, "Informatie in gebruik op ander scherm"},
    };
    schrijf_bestand("DATA", std::string(100, 'd'));
    int fd = ::open("DATA", O_RDWR | O_CLOEXEC);
    for (const auto& r : rijen) {
        Agent agent([&] {
            open();
            int32_t nr = r.slot;
            gebruikerslot g;
            int eigen = ::open("DATA", O_RDWR);
            return (r.slot == 0 || iotab('X', &nr, &g, SYS_GEBRUIKER)) && IOLOCK('S', eigen, 10, 10);
        });
        ASSERT_TRUE(agent.ok());
        char tekst[81];
        snprintf(tekst, sizeof tekst, "%s", r.woord);
        houder_tekst(tekst, sizeof tekst, fd, 10, 10);
        EXPECT_STREQ(tekst, r.tekst);
        houder_tekst(tekst, sizeof tekst, fd, 30, 10);
        EXPECT_STREQ(tekst, "Informatie in gebruik op ander scherm") << "free by now";
    }
    close(fd);
}

} // namespace
} // namespace zg::test
