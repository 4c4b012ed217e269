// What the tills hear of a buyer's work: the lines in KASMUT.TXT, from the screens in which master data and series change;
// and what a death in the middle of it leaves.
#include "e2e/storingsmap.h"
#include "order/wrk.h"
#include "shared/sysrec.h"
#include "tools/shell.h"

using namespace zg::test;

namespace {

struct Kassafirma : DemoMap {
    Kassafirma(bool link, bool kantoor, bool kassa) : DemoMap("data/demo", "--register") {
        std::string sys = lees_bestand(bestand("DTSYS.TXT"));
        sys[30] = static_cast<char>(link ? sys[30] | 4 : sys[30] & ~4);
        sys[14 * 64 + 19] = kantoor;
        schrijf_bestand(bestand("DTSYS.TXT"), sys);
        if (kassa)
            schrijf_bestand(bestand("KAS0101.SYS"), "");
    }
    std::string mutaties() const {
        const std::string pad = bestand("KASMUT.TXT");
        return zg::IOEXISTS(pad.c_str()) ? lees_bestand(pad) : "none";
    }
};

// From the season prompt: a relation's name; on a line that is begun a brand's name, a group's turnover group, a size put in
// front of the others, a colour's name; and the line is given up.
constexpr char STAM[] =
    "<Enter><Enter><F5><F10>W11Nieuw<Enter><Esc><Esc>10<Enter><Enter>"
    "T<F5><F10>W11Xx<Enter><Esc><Enter>Bluze<Enter>"
    "<F5><F10>W115<Enter><Esc><Enter><Enter><F5><F10>12<F8>zz<Enter><Esc><Esc><Enter><Esc><Esc>"
    "Katoen<Enter>Uni<Enter><F5><F10>W11Rozig<Enter><Esc><Enter><F6>J<Enter>";
// A line: three sizes of which seven pieces are ordered.
constexpr char LIJN[] = "<Enter><Enter>10<Enter><Enter>"
                        "TBROU<Enter>nieuw<Enter>1120<Enter><Enter><Enter>Let op<Esc><Esc>"
                        "Katoen<Enter>Streep<Enter>20<Enter>Streeptrui<Enter><Enter>2ook<Esc>M<Enter><Enter>"
                        "<Esc><Enter><Down>S<Enter><Enter>20<Enter><Enter><Esc>"
                        "010316<Enter>310316<Enter>3<Enter><Enter>4<Enter><Enter><Enter><Esc>";

TEST(Mutatie, MasterData) {
    for (const auto& [link, kantoor, kassa, regels] : Rijen<bool, bool, bool, const char*>{
             {true, true, true, "255255R10\n255255M0101\n255255C1100\n255255I0110001\n255255Q1\n255255K1\n"},
             {true, false, true, "255255M0101\n255255C1100\n"},
             {false, true, true, "none"},
         }) {
        Kassafirma map(link, kantoor, kassa);
        Programma p(overgave(map), demo_opties(map));
        p.t.toetsen(STAM);
        EXPECT_EQ(map.mutaties(), regels) << link << kantoor << kassa << p.t.scherm();
    }
    Kassafirma map(true, true, false);
    Programma p(overgave(map), demo_opties(map));
    p.t.toetsen("<Enter><Enter>19<Enter>J<Enter>"); // an agent becomes a supplier too
    EXPECT_EQ(map.mutaties(), "255255R19\n");
}

// Killed behind the write of a record, before anything else: the next start tells it.
TEST(Mutatie, KilledBehindTheRecord) {
    static const auto echt = zg::SYS.pwrite;
    static const char* wat;
    constexpr char BEGIN[] = "<Enter><Enter>10<Enter><Enter>T";
    const struct {
        std::string toetsen;
        const char *wat, *regels; // `wat` stands in the record
    } rijen[] = {
        {"<Enter><Enter><F5><F10>W11Nieuw<Enter><Esc>", "Nieuw", "255255R10\n"},
        {std::string(BEGIN) + "<F5><F10>W11Xyx<Enter><Esc>", "Xyx", "255255M0101\n"},
        {std::string(BEGIN) + "<Enter>Bluze<Enter><F5><F10>W12Zxz<Enter><Esc>", "Zxz", "255255C1100\n"},
        {std::string(BEGIN) + "<Enter>Bluze<Enter>1120<Enter><Enter><F5><F10>12<F8>zqz<Enter><Esc><Esc>",
         "zqz", "255255Q1\n"},
        {std::string(BEGIN) +
             "<Enter>Bluze<Enter>1120<Enter><Enter><Enter><Esc><Esc>Katoen<Enter>Uni<Enter>" +
             "<F5><F10>W11Rozig<Enter><Esc>",
         "Rozig", "255255K1\n"},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        Kassafirma map(true, true, true);
        {
            const auto t = met_storing(map, overgave(map), [&] {
                wat = r.wat;
                zg::SYS.pwrite = [](int fd, const void* b, size_t n, off_t p) {
                    const ssize_t uit = echt(fd, b, n, p);
                    if (memmem(b, n, wat, strlen(wat)))
                        raise(SIGKILL);
                    return uit;
                };
            });
            t->toetsen(r.toetsen);
            EXPECT_EQ(t->einde(), 128 + SIGKILL) << t->scherm();
        }
        EXPECT_EQ(map.mutaties(), "none");
        sh("ixremake -q '" + map.pad() + "'"); // a pair that was left in the middle of its write
        Programma p(overgave(map), demo_opties(map));
        EXPECT_EQ(map.mutaties(), r.regels);
    }
}

// What one step of a line changes goes out together when the series is let go.
TEST(Mutatie, Series) {
    Kassafirma map(true, true, true);
    const std::string pad = map.bestand("KASMUT.TXT");
    Programma p(overgave(map), demo_opties(map));
    auto codes = [](int maten) {
        std::string uit;
        for (int m = 1; m <= maten; m++)
            uit += "255255E0112002000020" + std::to_string(m) + "\n";
        return uit;
    };
    for (const auto& [toetsen, regels] : Rijen<const char*, std::string>{
             {LIJN, "255255G0001121000001120NIEUW          *M\n255255d011200200002\n" + codes(5)},
             {"WMMOmega<Enter><Esc>", "255255G0001121010101120OMEGA          *M\n" + codes(5)},
             {"WPI<Enter>25<Enter><Enter><Enter><Esc><Esc>", "255255W011200200002\n" + codes(5)},
             {"WPA<Enter>30<Enter><Esc><Esc>", "255255W011200200002\n" + codes(5)},
             {"WPMN<Enter><Enter><Enter><Enter><Enter><Enter>J<Enter><Esc>", // a size more
              "255255Y01120020000206\n255255W011200200002\n" + codes(6)},
             {"VJ<Enter>J<Enter>J<Enter>", "255255g011200200002\n255255G0001121010101120OMEGA          *M\n"},
         }) {
        p.t.toetsen(toetsen);
        EXPECT_EQ(map.mutaties(), regels) << toetsen << p.t.scherm();
        zg::IOUNLINK(pad.c_str());
    }
}

// Killed at a write of the order files, which repair themselves; at the mark, before anything else is written; behind it. A
// hang-up there waits for the step's end, also on a slow disk. What the tills must hear of goes out at the user's next start.
TEST(Mutatie, KilledInACriticalStep) {
    static const zg::SYSCALLS echt = zg::SYS;
    enum Waar { VOOR, IN, ACHTER }; // of the step; the first write behind it takes the mark away
    static Waar waar, nu;
    static int over, sein; // writes there that go well before it
    const struct {
        Waar waar;
        int over, sein;
        const char* zegt;
        bool verteld; // to the tills
    } rijen[] = {{VOOR, 2, SIGKILL, "0 free", false},
                 {IN, 0, SIGKILL, "0 free", false},
                 {IN, 1, SIGKILL, "died in a critical step", false},
                 {ACHTER, 0, SIGKILL, "died in a critical step", true},
                 {IN, 1, SIGHUP, "0 free", true}};
    for (const auto& r : rijen) {
        SCOPED_TRACE(std::to_string(r.over) + " " + strsignal(r.sein));
        Kassafirma map(true, true, false);
        {
            const auto t = met_storing(map, overgave(map), [&] {
                waar = r.waar, nu = VOOR, over = r.over, sein = r.sein;
                zg::SYS.pwrite = [](int fd, const void* b, size_t n, off_t p) {
                    nu = zg::gebruiker.userstate >= 10 ? IN : nu == VOOR ? VOOR : ACHTER;
                    if (zg::aantal_regels > 0 && nu == waar && over-- == 0) {
                        raise(sein);
                        for (int i = 0; i < 8; i++) // longer than who is hung up on may take elsewhere
                            usleep(100'000);
                    }
                    return echt.pwrite(fd, b, n, p);
                };
            });
            t->toetsen(LIJN);
            EXPECT_EQ(t->einde(), r.sein == SIGHUP ? 1 : 128 + SIGKILL);
        }
        const Uit u = sh("zgstatus -D '" + map.pad() + "'");
        EXPECT_TRUE(u.zegt(r.zegt)) << u.tekst;
        EXPECT_TRUE(r.sein == SIGHUP || map.mutaties() == "none");
        Programma p(overgave(map), demo_opties(map));
        EXPECT_EQ(map.mutaties(),
                  r.verteld ? "255255G0001121000001120NIEUW          *M\n255255d011200200002\n" : "none");
    }
}

} // namespace
