// Locks: ranges, the queue of reserved keys, and two users on one record. The other user is a process that does as it
// is told.
#include "store/diepcheck.h"
#include "store/hulp.h"
#include "store/node.h"

namespace zg::test {
namespace {

// Commands: open MODE | close | lock N | test FILE START LENGTH (0 index, 1 data) | read, readl, unlock, delete N |
// write, keep N BYTE
struct Gebruiker {
    ICB* icb = nullptr;
    char r[40] = {};
    std::string operator()(const std::string& opdracht) {
        char wat[16] = "";
        int a = 0, b = 0, c = 0;
        sscanf(opdracht.c_str(), "%15s %d %d %d", wat, &a, &b, &c);
        const std::string w = wat;
        if (w == "open")
            return icb = IXOPEN("T", a), "ok";
        if (w == "close")
            return IXCLOSE(icb), "ok";
        if (w == "lock")
            return IXLOCK(icb, a) ? "1" : "0";
        if (w == "test") // is this range free for a write lock?
            return IOLOCK('T', a ? icb->datfd : icb->idxfd, b, c) ? "free" : "held";
        if (w != "write" && w != "keep" && w != "delete")
            memset(r, 0, sizeof r);
        ZET32(r, a);
        if (w == "keep")
            return IXWRITEK(icb, r) ? "1" : "0";
        if (w == "write")
            r[39] = static_cast<char>(b);
        else if (w == "unlock")
            return IXUNLOCK(icb, r), "ok";
        else if (w == "delete")
            return IXDELETE(icb, r), "ok";
        return (w == "write" ? IXWRITE(icb, r) : w == "readl" ? IXREADL(icb, r) : IXREAD(icb, r)) ? "1" : "0";
    }
};

const Tabel tabel{40, {"k,I,1,4,C,5,40", "n,C,5,8"}}; // key 1 of 40 bytes

struct Slot : testing::Test {
    TijdelijkeMap map;
    KorteWacht kort;
    Gebruiker ik;
    std::unique_ptr<Agent> ander;
    void SetUp() override {
        maak_paar("T", tabel);
        ander = std::make_unique<Agent>(Gebruiker{});
    }
    void open() {
        ik("open 2");
        ASSERT_EQ("ok", ander->vraag("open 2", 10'000)); // waits for nobody
    }
};

TEST_F(Slot, Gebieden) {
    open();
    ik("write 1");
    ik("write 2");
    struct {
        const char *eerst, *vraag, *uit;
    } gevallen[] = {
        {"readl 2", "test 1 40 40", "held"}, {"readl 2", "test 1 0 40", "free"},
        {"readl 2", "test 1 80 0", "free"},  {"readl 2", "test 0 0 0", "free"},
        {"readl 9", "test 1 0 0", "free"}, // a reservation is no lock
        {"lock 2", "test 0 0 512", "held"},  {"lock 2", "test 0 512 0", "free"},
        {"lock 12", "test 0 0 0", "free"},   {"lock 1", "test 1 4000 1", "held"},
        {"lock 1", "test 0 0 512", "held"},  {"lock 11", "test 1 0 0", "free"},
        {"lock 15", "test 1 0 0", "free"},
    };
    for (auto& g : gevallen) {
        ik(g.eerst);
        EXPECT_EQ(g.uit, ander->vraag(g.vraag)) << g.eerst;
        ik("lock 11");
        ik("unlock 9");
    }
    EXPECT_EQ("0", ik("lock 15"));
    EXPECT_EQ("0", ik("lock 5"));
    IXCLOSE(ik.icb);
}

TEST_F(Slot, RecordVanEenAnder) {
    open();
    ik("write 1 7");
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ("1", ander->vraag("read 1")) << "reading asks no lock";
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 1"));
    EXPECT_EQ("1", ik("write 1 8")); // lets go
    EXPECT_EQ("1", ander->antwoord());
    EXPECT_EQ(0, IXLOCK(ik.icb, 3));
    EXPECT_GE(kort.teller, 1);
    ander->dood(); // a lock ends with its process
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ(8, ik.r[39]);
    IXCLOSE(ik.icb);
}

TEST_F(Slot, VerdwenenTerwijlGewachtWerd) {
    open();
    ik("write 1");
    ik("write 2");
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 1"));
    ik("delete 1");
    EXPECT_EQ("0", ander->antwoord()) << "gone: the key is reserved for him now";
    EXPECT_EQ("free", ander->vraag("test 1 0 0"));
    ik("write 3"); // uses the slot
    EXPECT_EQ("1", ander->vraag("write 1"));
    EXPECT_EQ("1", ik("readl 3"));
    IXCLOSE(ik.icb);
    ander->vraag("close");
    EXPECT_GEZOND("T");
}

TEST_F(Slot, ReserverenVanEenNieuweSleutel) {
    open();
    EXPECT_EQ("0", ik("readl 5"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 5"));
    EXPECT_EQ("1", ik("write 5 1"));
    EXPECT_EQ("1", ander->antwoord()) << "it exists now";
    EXPECT_EQ("1", ander->vraag("write 5 2"));
    ander->vraag("delete 5");
    EXPECT_EQ("0", ander->vraag("readl 5")) << "nothing of the reservation has stayed";
    ander->vraag("unlock 5");
    EXPECT_EQ("0", ander->vraag("readl 6"));
    ander->vraag("unlock 6"); // gives up
    EXPECT_EQ("0", ik("readl 6"));
    ik("unlock 6");
    // A second time through the same handle is refused like any other's.
    EXPECT_EQ("0", ander->vraag("readl 7"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("readl 7"));
    ander->dood(); // what a crash leaves behind stays refused
    memset(ik.r, 0, sizeof ik.r);
    ik.r[0] = 7;
    IXBLDKEY(ik.icb, ik.r, 40);
    kort.teller = 0;
    EXPECT_EQ(0, IXLOCK(ik.icb, 4));
    EXPECT_EQ(1, kort.teller);
    IXLOCK(ik.icb, 14);
    IXLOCK(ik.icb, 14); // not there: no failure
    EXPECT_EQ(1, IXLOCK(ik.icb, 4));
    IXCLOSE(ik.icb);
    // The program's end, when its terminal has gone in the middle of a screen, gives up what it has reserved.
    EXPECT_EXIT(
        {
            Gebruiker weg;
            weg("open 2");
            weg("readl 8");
            exit(1);
        },
        testing::ExitedWithCode(1), "");
    ander = std::make_unique<Agent>(Gebruiker{});
    ander->vraag("open 2");
    EXPECT_EQ("0", ander->vraag("readl 8"));
}

TEST_F(Slot, WachtrijVol) {
    open();
    for (int i = 0; i < 11; i++) // 12 keys of 40 bytes
        EXPECT_EQ("0", ander->vraag("readl " + std::to_string(i)));
    ik.r[0] = 11;
    IXBLDKEY(ik.icb, ik.r, 40);
    IXSWITCH(ik.icb, 2);
    EXPECT_EQ(1, IXLOCK(ik.icb, 4));
    EXPECT_EQ(2, IXSLEUTEL(ik.icb)) << "the node in hand stays the handle's own";
    IXSWITCH(ik.icb, 1);
    std::string uit = stopt([&] { ik("readl 12"); });
    EXPECT_NE(std::string::npos, uit.find("T          : proef               --> Lock queue vol.")) << uit;
    for (int i : {3, 11, 0})
        ander->vraag("unlock " + std::to_string(i));
    EXPECT_EQ("0", ik("readl 12"));
    EXPECT_EQ("0", ik("readl 3"));
    std::string q = lees_index("T.INX").substr(3 * 512, 512);
    EXPECT_EQ(11, q[4]);
    EXPECT_EQ(std::string(505 - 440, '\0'), q.substr(5 + 440, 505 - 440));
    EXPECT_EQ(std::string("\1\0", 2), q.substr(0, 2));
    IXCLOSE(ik.icb);
}

TEST_F(Slot, Exclusief) {
    ASSERT_EQ("ok", ander->vraag("open 0"));
    ik("open 1");
    EXPECT_EQ("held", ander->vraag("test 0 0 512"));
    EXPECT_EQ("held", ander->vraag("test 1 0 0"));
    EXPECT_EQ(1, IXLOCK(ik.icb, 3));
    EXPECT_EQ(1, IXLOCK(ik.icb, 12));
    EXPECT_EQ("held", ander->vraag("test 0 0 512")) << "an update inside doesn't open the file to others";
    ik("write 1");
    EXPECT_EQ(0u, IXDIEPCHECK("T").at(0).find("in use")) << "it would let the lock go";
    Agent derde{Gebruiker{}}, lezer{Gebruiker{}};
    EXPECT_EQ("ok", lezer.vraag("open 0")) << "who only reads waits for nobody, whatever has been written";
    EXPECT_EQ(Agent::geen_antwoord, derde.vraag("open 2"));
    IXCLOSE(ik.icb);
    EXPECT_EQ("ok", derde.antwoord());
    EXPECT_EQ("1", lezer.vraag("read 1"));
    // And the other way: mode 1 waits for all record locks.
    EXPECT_EQ("1", derde.vraag("readl 1"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("open 1"));
    derde.vraag("unlock 1");
    EXPECT_EQ("ok", ander->antwoord());
}

// While the opener waits for the whole file the header that it has read grows old.
TEST_F(Slot, ExclusiefNaHetWerkVanEenAnder) {
    ik("open 2");
    ik("write 1");
    EXPECT_EQ("1", ik("readl 1"));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("open 1"));
    for (int i = 2; i < 60; i++)
        ik("write " + std::to_string(i));
    ik("unlock 1");
    EXPECT_EQ("ok", ander->antwoord());
    EXPECT_EQ("1", ander->vraag("write 100"));
    EXPECT_EQ("ok", ander->vraag("close"));
    EXPECT_EQ("1", ik("read 100"));
    EXPECT_EQ(59 * 40 + 40u, lees_bestand("T.TXT").size());
    IXCLOSE(ik.icb);
    EXPECT_GEZOND("T");
}

// Both sides of what was a deadlock: a writer with the header in hand wants a slot that an exclusive opener has locked
// with the whole file; and the opener wants the header.
TEST_F(Slot, InvoegenTegenEenExclusieveOpener) {
    open();
    for (int i = 1; i <= 3; i++)
        ik("write " + std::to_string(i));
    EXPECT_EQ("1", ik("readl 2"));
    ik("delete 2");                                   // a slot to use again
    for (const char* nieuw : {"keep 9", "keep 10"}) { // into the free slot, and behind the last
        SCOPED_TRACE(nieuw);
        // The opener has the data file; the writer is refused, and the header is free for the opener.
        ASSERT_EQ(1, IOLOCK('S', ik.icb->datfd, 0, 0));
        EXPECT_EQ(Agent::geen_antwoord, ander->vraag(nieuw));
        int vrij = 0;
        for (int i = 0; i < 10'000 && vrij < 20; i++, usleep(100))
            vrij += IOLOCK('T', ik.icb->idxfd, 0, IXBLOK);
        EXPECT_EQ(20, vrij) << "the writer holds on to the header";
        IOLOCK('U', ik.icb->datfd, 0, 0);
        EXPECT_EQ("1", ander->antwoord());
        ander->vraag("lock 13");
    }
    // The other side: the writer has the header, the opener lets go of the data file.
    ASSERT_EQ("1", ander->vraag("lock 2"));
    Agent opener{Gebruiker{}};
    EXPECT_EQ(Agent::geen_antwoord, opener.vraag("open 1")) << "waits to read the header";
    ander->vraag("lock 12");
    EXPECT_EQ("ok", opener.antwoord());
    opener.vraag("close");
    KorteWacht::teller = 0;
    Agent tweede([](const std::string& o) -> std::string { // from the whole file on
        static ICB* icb = IXOPEN("T", 2);
        return o == "open" ? "ok" : IXLOCK(icb, 1) ? "1" : "0";
    });
    EXPECT_EQ("ok", tweede.vraag("open"));
    ASSERT_EQ("1", ander->vraag("lock 2"));
    EXPECT_EQ(Agent::geen_antwoord, tweede.vraag("lock"));
    bool vrij = false;
    for (int i = 0; i < 20'000 && !vrij; i++, usleep(500))
        vrij = IOLOCK('T', ik.icb->datfd, 0, 0);
    EXPECT_TRUE(vrij) << "the opener holds on to the data file";
    ander->vraag("lock 12");
    EXPECT_EQ("1", tweede.antwoord());
    tweede.dood();
    IXCLOSE(ik.icb);
    ander->vraag("close");
    EXPECT_GEZOND("T");
}

// Who opens exclusively may enter a key that another has reserved: the reservation goes with it, or nobody would ever
// get that key again.
TEST_F(Slot, ReserveringVervuldDoorEenExclusieveHandle) {
    const struct {
        const char* wat;
        std::vector<const char*> voor,
            tussen; // what the other does before the key is reserved, and before it is given up
    } gevallen[] = {
        {"before it was opened", {}, {"open 1", "write 7", "close", "open 2"}},
        {"while the key is held back", {"open 1", "write 7"}, {"close", "open 2"}},
        {"while it is, and deleted later",
         {"open 1", "write 7"},
         {"write 8", "delete 8", "unlock me 7", "delete 7", "close", "open 2"}},
    };
    open();
    for (const auto& g : gevallen) {
        SCOPED_TRACE(g.wat);
        ander->vraag("close");
        for (const char* opdracht : g.voor)
            ander->vraag(opdracht);
        EXPECT_EQ("0", ik("readl 7"));
        for (const std::string opdracht : g.tussen)
            opdracht == "unlock me 7" ? ik("unlock 7") : ander->vraag(opdracht);
        ik("unlock 7");
        if (ik("readl 7") == "1")
            ik("delete 7");
        else
            ik("unlock 7");
        ASSERT_EQ("0", ander->vraag("readl 7"));
        ander->vraag("unlock 7");
    }
    // The queue is another's for a moment: its lock is waited for, or his key would be lost.
    ander->vraag("close");
    EXPECT_EQ("0", ik("readl 9"));
    ander->vraag("open 1");
    ander->vraag("write 9");
    ASSERT_EQ(1, IOLOCK('E', ik.icb->idxfd, 3 * IXBLOK, IXBLOK));
    EXPECT_EQ(Agent::geen_antwoord, ander->vraag("close"));
    IOLOCK('U', ik.icb->idxfd, 3 * IXBLOK, IXBLOK);
    EXPECT_EQ("ok", ander->antwoord());
    IXCLOSE(ik.icb);
}

// The queue's lock is another's, or can't be had at all: an insert waits, is killed or stops with the pair whole.
TEST_F(Slot, InvoegenTegenDeWachtrij) {
    open();
    for (int i = 1; i <= 3; i++)
        ik("write " + std::to_string(i));
    EXPECT_EQ("1", ik("readl 2"));
    ik("delete 2");                 // a slot to use again
    EXPECT_EQ("0", ik("readl 77")); // else the queue isn't asked for
    const auto paar = [&] {         // not by name: closing a file would let go of its locks
        std::string uit;
        for (int fd : {ik.icb->idxfd, ik.icb->datfd}) {
            std::string b(static_cast<size_t>(SYSOMVANG(fd)), 0);
            SYSLEES(fd, b.data(), b.size(), 0);
            uit += b;
        }
        return uit;
    };
    const std::string voor = paar();
    const int64_t rij = 3 * IXBLOK;
    const std::string uit = stopt([&] {
        SYS.slot = [](int fd, int opdracht, struct flock* s) {
            const bool weg = s->l_type == F_WRLCK && s->l_start == 3 * IXBLOK;
            return weg ? (errno = ENOLCK, -1) : fcntl(fd, opdracht, s);
        };
        ik("write 8");
    });
    EXPECT_NE(std::string::npos, uit.find("kan niet vergrendeld worden")) << uit;
    EXPECT_TRUE(voor == paar());
    for (const char* nieuw : {"write 9", "write 10"}) { // into the free slot, and behind the last
        SCOPED_TRACE(nieuw);
        const std::string was = paar();
        ASSERT_EQ(1, IOLOCK('E', ik.icb->idxfd, rij, IXBLOK));
        Agent ongeduldig{Gebruiker{}};
        EXPECT_EQ("ok", ongeduldig.vraag("open 2"));
        EXPECT_EQ(Agent::geen_antwoord, ongeduldig.vraag(nieuw));
        ongeduldig.dood();
        EXPECT_TRUE(was == paar());
        EXPECT_EQ(Agent::geen_antwoord, ander->vraag(nieuw));
        int vrij = 0;
        for (int i = 0; i < 10'000 && vrij < 20; i++, usleep(100))
            vrij += IOLOCK('T', ik.icb->idxfd, 0, IXBLOK);
        EXPECT_EQ(20, vrij) << "the writer holds on to the header";
        EXPECT_TRUE(was == paar());
        IOLOCK('U', ik.icb->idxfd, rij, IXBLOK);
        EXPECT_EQ("1", ander->antwoord());
        EXPECT_EQ(1, IOLOCK('T', ik.icb->datfd, 0, 0)) << "it holds on to the slot";
    }
    IXCLOSE(ik.icb);
    ander->vraag("close");
    EXPECT_GEZOND("T");
}

// Somebody has locked a slot that is free by now: the next one is taken, and this one stays for later.
TEST_F(Slot, VrijeSlotDieVastzit) {
    open();
    for (int i = 1; i <= 3; i++)
        ik("write " + std::to_string(i));
    EXPECT_EQ("1", ander->vraag("readl 2"));
    EXPECT_EQ("1", ik("read 2"));
    ik("delete 2"); // without asking for the lock
    EXPECT_EQ("1", ik("write 4"));
    EXPECT_EQ(4 * 40u, lees_bestand("T.TXT").size());
    EXPECT_EQ(1, ik.icb->h.freehead);
    ander->vraag("unlock 2");
    ander->vraag("lock 11");
    EXPECT_EQ("1", ik("write 5"));
    EXPECT_EQ(4 * 40u, lees_bestand("T.TXT").size());
    IXCLOSE(ik.icb);
    ander->vraag("close");
    EXPECT_GEZOND("T");
}

// A file system without locks, a full lock table, a server that has gone: a report, not a wait.
TEST_F(Slot, GeenSlotenMogelijk) {
    open();
    for (int fout : {ENOLCK, EOPNOTSUPP, EINVAL, ENOTCONN, EBADF, EBADFD, ESTALE, EIO})
        for (const char* werk : {"readl 1", "write 1", "test 0 0 512"}) {
            const std::string uit = stopt([&] {
                static int met;
                met = fout;
                SYS.slot = [](int, int, struct flock* s) {
                    return s->l_type == F_UNLCK ? 0 : (errno = met, -1);
                };
                ik(werk);
            });
            EXPECT_NE(std::string::npos, uit.find("kan niet vergrendeld worden")) << werk << uit;
            EXPECT_NE(std::string::npos, uit.find("Bestand T.")) << werk << uit;
        }
    IXCLOSE(ik.icb);
}

// A read that fails is no damage, and no end of a file: told as what it is, at each read of each piece of work, and nothing
// has been written.
TEST_F(Slot, LezenMislukt) {
    setenv("ZGGEDEELD", "1", 1); // every read is a call
    open();
    ik("write 1 7");
    IXCLOSE(ik.icb);
    const std::string index = lees_bestand("T.INX"), data = lees_bestand("T.TXT");
    static int fout, over;
    for (const char* werk : {"read 1", "readl 1", "readl 2", "write 1 9", "write 3", "delete 1"})
        for (int n = 0, klaar = 0; !klaar; n++) {
            ASSERT_LT(n, 40) << werk;
            fout = std::array{ENOTCONN, EBADFD, ESTALE, EIO}[static_cast<size_t>(n) % 4], over = n;
            const Afloop a = in_proces([&] {
                SYS.pread = [](int fd, void* p, size_t m, off_t waar) {
                    return over-- > 0 ? pread(fd, p, m, waar) : (errno = fout, ssize_t{-1});
                };
                ik("open 2");
                ik(werk);
                return over < 0 ? 9 : 0;
            });
            klaar = a.status == 0;
            if (klaar) {
                schrijf_bestand("T.INX", index);
                schrijf_bestand("T.TXT", data);
                break;
            }
            EXPECT_EQ(1, a.status) << werk << n << a.uitvoer;
            EXPECT_NE(std::string::npos, a.uitvoer.find("Bestand T.")) << werk << n << a.uitvoer;
            EXPECT_NE(std::string::npos,
                      a.uitvoer.find("kan niet gelezen worden (errno=" + std::to_string(fout)))
                << werk << n << a.uitvoer;
            EXPECT_TRUE(std::string(werk) == "readl 2" ||
                        (index == lees_bestand("T.INX") && data == lees_bestand("T.TXT")))
                << werk << n;
            schrijf_bestand("T.INX", index);
            schrijf_bestand("T.TXT", data);
        }
    unsetenv("ZGGEDEELD");
}

} // namespace
} // namespace zg::test
