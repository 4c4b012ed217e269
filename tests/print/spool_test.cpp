// The way out of a report: what arrives at a device and in a directory, and what is left, and told, when it doesn't.
#include "print/afdruk.h"
#include "print/zenden.h"
#include "shared/sysrec.h"
#include "support/roepstoring.h"
#include <poll.h>
#include <pty.h>

namespace zg::test {
namespace {

namespace fs = std::filesystem;

// What comes out of a descriptor until `n` bytes are there, slowly where asked.
std::string ontvang(int fd, size_t n, unsigned traag_us = 0) {
    std::string uit;
    char b[97];
    for (pollfd p{fd, POLLIN, 0}; uit.size() < n && poll(&p, 1, 30000) > 0; usleep(traag_us)) {
        const ssize_t k = read(fd, b, sizeof b);
        if (k <= 0)
            break;
        uit.append(b, static_cast<size_t>(k));
    }
    return uit;
}

// What the sender at work in this directory has open, but for its job.
std::string zender(const std::string& map) {
    std::error_code fout;
    std::string uit;
    for (const auto& p : fs::directory_iterator("/proc"))
        if (fs::read_symlink(p.path() / "cwd", fout) == map &&
            lees_bestand((p.path() / "comm").string()) == "zgspoel\n")
            for (const auto& f : fs::directory_iterator(p.path() / "fd", fout))
                if (const fs::path doel = fs::read_symlink(f.path(), fout);
                    doel != "/dev/null" && doel.filename().string().compare(0, 2, "PR") != 0)
                    uit += doel.string() + " ";
    return uit;
}

struct Spool : InMap {
    Spool() { SYS.mkdir("uit", 0777); }
    void TearDown() override { EXPECT_EQ(FILES_PRESENT("PR*"), 0); }
};

// A fifo and a terminal line as printers: three copies, byte for byte.
TEST_F(Spool, Devices) {
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    const int data = open("DTSYS.TXT", O_RDWR | O_CREAT, 0600); // stays open over an exec
    int meester = -1, slaaf = -1;
    char lijn[64];
    ASSERT_EQ(openpty(&meester, &slaaf, lijn, nullptr, nullptr), 0);
    const std::tuple<std::string, const char*, std::string> rijen[] = {
        {map.pad() + "/fifo", "cp850", "\x9B"},
        {map.pad() + "/fifo", "utf-8", "\xC3\xB8"},
        {lijn, "cp850", "\x9B"}};
    for (const auto& [pad, tekens, letter] : rijen) {
        SCOPED_TRACE(pad + " " + tekens);
        ASSERT_TRUE(begin(Printweg::apparaat, pad, 3, tekens));
        regels("regel", 40);
        EXPECT_EQ(XPRT_CLOSE(), 1); // nobody reads yet: the program isn't held up
        EXPECT_EQ(pad == lijn ? "" : zender(map.pad()), "") << "open in the sender";
        const std::string een = verwacht("regel", 40, letter);
        const int fd = pad == lijn ? dup(meester) : open(pad.c_str(), O_RDONLY);
        EXPECT_TRUE(ontvang(fd, 3 * een.size()) == een + een + een);
        EXPECT_TRUE(leeg());
        close(fd);
    }
    for (int f : {meester, slaaf, data})
        close(f);
}

// Two programs at one slow printer: the three copies of each behind one another, in either order.
TEST_F(Spool, TwoAtOnePrinter) {
    ASSERT_EQ(mkfifo("fifo", 0600), 0);
    for (const char* wie : {"een", "twee"})
        EXPECT_EQ(in_proces([&] {
                      begin(Printweg::apparaat, map.pad() + "/fifo", 3);
                      regels(wie, 6000);
                      return XPRT_CLOSE();
                  }).status,
                  1);
    const std::string een = verwacht("een", 6000), twee = verwacht("twee", 6000);
    const int fd = open("fifo", O_RDONLY);
    const std::string uit = ontvang(fd, 3 * (een.size() + twee.size()), 100);
    ASSERT_TRUE(uit == een + een + een + twee + twee + twee || uit == twee + twee + twee + een + een + een);
    close(fd);
    EXPECT_TRUE(leeg());
}

// A directory whose reader is behind: one file for all copies, over nothing that is there.
TEST_F(Spool, Directory) {
    ASSERT_TRUE(begin(Printweg::map, "uit", 3));
    regels("regel", 40);
    const std::string eerste = "uit/T" + printopdracht.spool.substr(1);
    schrijf_bestand(eerste, "oud");
    EXPECT_EQ(XPRT_CLOSE(), 1);
    EXPECT_TRUE(leeg());
    EXPECT_EQ(lees_bestand(eerste), "oud");
    EXPECT_TRUE(FILES_PRESENT("uit/TR????") == 2 && FILES_PRESENT("uit/*") == 2);
    std::string tweede = eerste; // counted on: the letters behind the digits
    size_t i = tweede.size() - 1;
    for (; tweede[i] == '9' || tweede[i] == 'Z'; i--)
        tweede[i] = tweede[i] == '9' ? '0' : 'A';
    tweede[i]++;
    EXPECT_EQ(lees_bestand(tweede), verwacht("regel", 40)) << eerste << " " << tweede;
}

// A file whose name somebody else took meanwhile: told, and the report is kept, to be sent again or dropped. Over it only
// when the user said so.
TEST_F(Spool, NameTaken) {
    for (const char* tekens : {"cp850", "pdf"}) {
        schrijf_bestand("uit/lijst", "van een ander");
        ASSERT_TRUE(begin(Printweg::bestand, "uit/lijst", 1, tekens));
        regels("regel", 3);
        EXPECT_TRUE(bevat(gezegd_door([] { EXPECT_EQ(XPRT_CLOSE(), 0); }), "al een bestand")) << tekens;
        EXPECT_EQ(lees_bestand("uit/lijst"), "van een ander");
        const std::vector<spooljob> achter = spool_achtergebleven("");
        ASSERT_EQ(achter.size(), 1u) << tekens;
        spool_weg(achter[0]);
        ASSERT_TRUE(begin(Printweg::bestand, "uit/lijst", 1, tekens));
        printopdracht.over = true;
        regels("regel", 3);
        EXPECT_EQ(XPRT_CLOSE(), 1) << tekens;
        EXPECT_TRUE(lees_bestand("uit/lijst").starts_with(*tekens == 'p' ? "%PDF-" : INIT + "regel 1"));
    }
}

// The next program of the user: what it tells.
std::string volgende() {
    return in_proces([] {
               sessie = 5;
               prt_meld_mislukt();
               return 0;
           })
        .uitvoer;
}

// The program, then the sender, is killed or refused at each of its calls in turn. A report is in the directory once and
// whole, or it is there and told, or it was never said to be printed; and what is there arrives when it is sent again.
TEST_F(Spool, AtEachCall) {
    const std::string heel = verwacht("regel", 6000);
    enum { WEIGERT = 9, ONGESTOORD = 11, GEZEGD = 13, ANDERS }; // how the disturbed process ended
    int keren = 0;
    for (int ronde = 0; ronde < 4; ronde++)
        for (int n = 0, status = 0; status != ONGESTOORD; n++) {
            const bool dood = ronde % 2, programma = ronde < 2;
            SCOPED_TRACE((programma ? "program " : "sender ") +
                         std::string(dood ? "killed at " : "refused ") + std::to_string(n));
            ASSERT_LT(n, 60);
            int slot = -1;
            spooljob job{.spool = "PRAA00",
                         .weg = Printweg::map,
                         .apparaat = "uit",
                         .titel = TITEL,
                         .tekens = "cp850",
                         .kopieen = 1,
                         .begin = static_cast<int64_t>(INIT.size()),
                         .eind = static_cast<int64_t>(heel.size() - EXIT.size()),
                         .sessie = 5};
            if (!programma) {
                schrijf_bestand(job.spool, heel);
                ASSERT_GE(slot = spool_maak(job), 0);
            }
            const auto [eind, gehoord] = in_proces([&] {
                sessie = 5;
                stoor_roep(n, dood);
                int uit = 0;
                if (!programma)
                    uit = spool_verstuur(slot, &job) ? GEZEGD : WEIGERT;
                else if (begin(Printweg::map, "uit")) {
                    regels("regel", 6000);
                    uit = XPRT_CLOSE() ? GEZEGD : WEIGERT;
                } else
                    uit = ANDERS; // no report at all
                return gestoord() ? uit : ONGESTOORD;
            });
            status = eind;
            close(slot);
            keren += status != ONGESTOORD;
            std::vector<spooljob> achter;
            EXPECT_TRUE(binnen([&] {
                bool bezig = false;
                for (const std::string& b : spool_beschrijvingen(""))
                    bezig = bezig || spool_kijk(b, &job) == Spoolpad::bezig;
                return !bezig;
            }));
            auto aangekomen = [&] {
                int er = 0;
                for (const auto& f : fs::directory_iterator("uit"))
                    if (f.path().filename().string()[0] == 'T') {
                        er++;
                        EXPECT_TRUE(lees_bestand(f.path().string()) == heel) << "half";
                    }
                return er;
            };
            const int er = aangekomen();
            EXPECT_LE(er, 1);
            achter = spool_achtergebleven("");
            const std::string gemeld = volgende() + gehoord;
            EXPECT_EQ(volgende(), "") << "told twice";
            if (status == ONGESTOORD || status == GEZEGD)
                EXPECT_TRUE(er == 1 && FILES_PRESENT("PR*") == (status == GEZEGD && !achter.empty() ? 2 : 0));
            if (status == WEIGERT) {
                EXPECT_TRUE(bevat(gemeld, "schijf vol"));
                EXPECT_EQ(FILES_PRESENT("PR????"), gemeld.find("bewaard") != std::string::npos);
                EXPECT_TRUE(!programma || er == 0);
            }
            EXPECT_TRUE(programma || er == 1 || achter.size() == 1) << "lost";
            for (const spooljob& a : achter) {
                EXPECT_TRUE(bevat(gemeld, TITEL));
                EXPECT_TRUE(er == 0 || a.stand == Spoolstand::bezig)
                    << "nobody would know that it may be out";
                EXPECT_TRUE(a.stand != Spoolstand::wacht || gemeld.find("afgebroken") != std::string::npos);
                EXPECT_EQ(system(("'" ZG_BINARY_DIR "/zgspoel' -w " + spool_beschrijving(a.spool)).c_str()),
                          0);
                EXPECT_EQ(aangekomen(), er + 1);
            }
            EXPECT_EQ(FILES_PRESENT("uit/PR*"), 0);
            for (const auto& f : fs::directory_iterator(".")) // an empty one was a try of a name
                EXPECT_TRUE(!f.is_regular_file() ||
                            (programma && f.file_size() == 0 && f.path().extension().empty()))
                    << f.path();
            for (const char* m : {".", "uit"})
                for (const auto& f : fs::directory_iterator(m))
                    if (f.is_regular_file())
                        fs::remove(f.path());
        }
    EXPECT_GE(keren, 40);
}

// A description of bytes that nobody wrote: none, or read without harm.
TEST_F(Spool, Damaged) {
    spooljob job{}, terug;
    job.spool = "PRAA00", job.weg = Printweg::map, job.kopieen = 2, job.apparaat = "u\n\\1B'; touch pwn";
    schrijf_bestand("PRAA00", "x");
    close(spool_maak(job));
    ASSERT_EQ(spool_kijk("PRAA00.JOB", &terug), Spoolpad::blijft);
    EXPECT_EQ(terug.apparaat, job.apparaat);
    const std::string heel = lees_bestand("PRAA00.JOB");
    for (size_t n = 0; n < heel.size(); n++) {
        schrijf_bestand("PRAA00.JOB", heel.substr(0, n));
        EXPECT_EQ(spool_kijk("PRAA00.JOB", &terug), Spoolpad::weg) << n;
        std::string anders = heel;
        anders[n] ^= 0x25;
        schrijf_bestand("PRAA00.JOB", anders);
        spool_kijk("PRAA00.JOB", &terug);
    }
    // A spool file that has lost its end is kept, and one that is gone is told.
    schrijf_bestand("PRAA00.JOB", heel);
    const int slot = spool_neem("PRAA00.JOB", &job);
    job.apparaat = "uit", job.eind = 2;
    EXPECT_FALSE(spool_verstuur(slot, &job));
    EXPECT_TRUE(IOEXISTS("PRAA00") && FILES_PRESENT("uit/*") == 0);
    job.apparaat = "PRAA00", job.weg = Printweg::apparaat, job.eind = 0,
    errno = 0; // a file in the place of a device
    EXPECT_FALSE(spool_verstuur(slot, &job));
    EXPECT_EQ(job.reden, spool_reden(ENODEV));
    // While the device is waited for nothing is out.
    job.apparaat = "/dev/null";
    in_proces([&] {
        static const auto open = SYS.open;
        SYS.open = [](const char* p, int v, mode_t m) {
            return strcmp(p, "/dev/null") == 0 ? raise(SIGKILL) : open(p, v, m);
        };
        return spool_verstuur(slot, &job) ? 1 : 2;
    });
    EXPECT_TRUE(spool_lees(slot, "PRAA00.JOB", &terug) && terug.stand == Spoolstand::wacht);
    IOUNLINK("PRAA00"); // by hand, before any of it was out
    job.stand = Spoolstand::fout, job.sessie = 5;
    EXPECT_TRUE(spool_schrijf(slot, job));
    close(slot);
    EXPECT_EQ(spool_achtergebleven("").size(), 1u);
    EXPECT_TRUE(bevat(volgende(), "is verwijderd"));
    EXPECT_EQ(FILES_PRESENT("PR*"), 0);
    ASSERT_TRUE(begin(Printweg::map, "uit"));
    regels("regel", 1);
    IOUNLINK(printopdracht.spool.c_str());
    EXPECT_EQ(XPRT_CLOSE(), 0);
    // Without its description it goes out all the same.
    ASSERT_TRUE(begin(Printweg::map, "uit"));
    regels("regel", 1);
    IOUNLINK(spool_beschrijving(printopdracht.spool).c_str());
    EXPECT_EQ(XPRT_CLOSE(), 1);
    EXPECT_TRUE(leeg() && FILES_PRESENT("uit/TR????") == 1);
}

} // namespace
} // namespace zg::test
