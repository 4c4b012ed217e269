// The state of the package: codes and texts, users who died in a critical step, the report of the backup program.
#include "control/controle.h"
#include "support/systeem.h"
#include "term/datum.h"

namespace zg::test {
namespace {

constexpr size_t TEKST = 64 * 9 + 8, CODE = 64 * 9 + 63; // of system record 10, in the file
constexpr size_t STAND = 2640 + 38;

struct Controle : Systeem {
    // Its bytes through the one descriptor: another's close would drop the locks.
    static std::string bytes() {
        std::string sys(130'000, '\0');
        EXPECT_GT(pread(iotab_fd(), sys.data(), sys.size(), 0), 0);
        return sys;
    }
    static std::string toestand() {
        const std::string sys = bytes();
        return std::to_string(sys[CODE]) + " " + sys.substr(TEKST, 50).c_str();
    }
    static int stand(int slot) { return bytes()[STAND + 64 * static_cast<size_t>(slot - 1)]; }
    static void zet_stand(int32_t slot, uint8_t stand) {
        gebruikerslot g{};
        VASTIN(g.username, "x");
        g.userstate = stand;
        zet(slot, g, SYS_GEBRUIKER);
    }
    // A program of that slot at this level, which holds the slot, lets it go and takes it on command.
    static std::string programma(const std::string& wat) {
        if (wat.starts_with("in")) {
            open();
            sessie = atoi(wat.c_str() + 2);
        }
        if (wat == "los") {
            iotab('U', &sessie, &gebruiker, SYS_GEBRUIKER);
            return "ja";
        }
        return iotab('X', &sessie, &gebruiker, SYS_GEBRUIKER) ? "ja" : "nee";
    }
};

TEST_F(Controle, CodesAndTexts) {
    sysstatus s{};
    VASTIN(s.tekst, "oud");
    s.klantnummer = 4711;
    memcpy(s.release, "8.70 ", 5);
    zet(10, s, SYS_RECORD);
    for (const auto& [code, na] :
         Rijen<uint8_t, const char*>{{1, "1 @7"}, {2, "2 @7"}, {3, "3 @8"}, {0, "0 "}}) {
        EXPECT_TRUE(status_zet(code));
        EXPECT_EQ(toestand(), na);
        EXPECT_EQ(status_vrij(), code == 0);
    }
    EXPECT_TRUE(status_tekst_zet(std::string(60, 'x')));
    EXPECT_EQ(toestand(), "9 " + std::string(49, 'x'));
    EXPECT_FALSE(status_vrij());
    EXPECT_EQ(bytes().substr(64 * 9 + 58, 5), "8.70 ") << "the rest stays";
    const std::pair<const char*, const char*> teksten[] = {{"@1", "Er wordt een back-up gemaakt"},
                                                           {"@11", "Converteren externe EAN-codes"},
                                                           {"@14", "Lantaarn afgesloten voor migratie"},
                                                           {"Bel Piet", "Bel Piet"}};
    for (const auto& [tekst, woorden] : teksten)
        EXPECT_EQ(status_tekst(tekst), woorden) << tekst;
    for (const char* geen : {"@12", "@15", "@0", "@", "@7x", "@4294967297", ""})
        EXPECT_EQ(status_tekst(geen), "") << geen;
}

TEST_F(Controle, KilledInACriticalStep) {
    auto kijk = [](const std::string&) {
        open();
        return std::string(status_vrij() ? "vrij" : "dicht");
    };
    zet_stand(5, 12);
    zet_stand(6, 9);
    sessie = 5;
    EXPECT_TRUE(status_vrij()) << "one's own slot";
    sessie = 0;
    {
        Agent p(programma);
        ASSERT_EQ(p.vraag("in5"), "ja");
        EXPECT_TRUE(status_vrij());
        // Between two programs, and taken again while it is looked at.
        ASSERT_EQ(p.vraag("los"), "ja");
        Agent kijker(kijk);
        EXPECT_EQ(kijker.vraag("kijk"), Agent::geen_antwoord) << "it looks again";
        ASSERT_EQ(p.vraag("neem"), "ja");
        EXPECT_EQ(kijker.antwoord(), "vrij");
        EXPECT_EQ(toestand(), "0 ");
        p.dood();
    }
    EXPECT_EQ(kritiek_gestorven(), std::vector<int32_t>{5});
    EXPECT_EQ(toestand(), "0 ") << "looking changes nothing";
    EXPECT_FALSE(status_vrij());
    EXPECT_EQ(toestand(), "3 @8");
    status_zet(STATUS_VRIJ);
    Agent kijker(kijk);
    EXPECT_EQ(kijker.vraag("kijk"), Agent::geen_antwoord);
    status_tekst_zet("Inventarisatie"); // meanwhile
    EXPECT_EQ(kijker.antwoord(), "dicht");
    EXPECT_EQ(toestand(), "9 Inventarisatie");
    EXPECT_TRUE(kritiek_wis() && status_zet(STATUS_VRIJ) && status_vrij());
    EXPECT_EQ(stand(5), 0);
    EXPECT_EQ(stand(6), 9) << "no mark";
}

TEST_F(Controle, Marks) {
    zet_stand(5, 1);
    sessie = 5;
    iotab('X', &sessie, &gebruiker, SYS_GEBRUIKER);
    EXPECT_TRUE(kritiek_zet(11) == 1 && kritiek_zet(0) == 11) << "0 would not be handed on";
    { const Kritiek binnen; }
    EXPECT_EQ(stand(5), 11) << "a step within another";
    kritiek_zet(1);
    {
        const Kritiek stap;
        EXPECT_EQ(stand(5), 12);
    }
    EXPECT_EQ(stand(5), 1);
    iotab('U', &sessie, &gebruiker, SYS_GEBRUIKER);
    sessie = 0;
    const std::string was = bytes();
    const Kritiek zonder;
    EXPECT_EQ(bytes(), was) << "nobody's slot";
}

// ---- the report

std::string dag(int geleden, const char* vorm = "%a %b %e 02:00:11 CET %Y") {
    const time_t nu = time(nullptr);
    struct tm t = *localtime(&nu);
    t.tm_mday -= geleden, t.tm_hour = 12, t.tm_isdst = -1; // by the calendar, also where summer time ends
    mktime(&t);
    char tekst[64];
    strftime(tekst, sizeof tekst, vorm, &t);
    return tekst;
}

constexpr char GOED[] = "backup gemaakt", TAPE[] = "Geen tape aanwezig", ACTIEF[] = "3 gebruikers";

std::string blok(const std::string& datum, const char* uitslag) {
    return datum + "\n" + uitslag + "\n---\n";
}

TEST_F(Controle, BackupReport) {
    const std::string nu = dag(1), oud = dag(31), net = dag(30);
    // na: text; "-" it stays, and the day too
    for (const auto& [naam, verslag, code, na, over] :
         Rijen<const char*, std::string, uint8_t, const char*, std::string>{
             {"good", blok(nu, GOED), 0, "", blok(nu, GOED)},
             {"no tape", blok(nu, GOED) + blok(nu, TAPE), 0, "Back-up niet gelukt, geen tape in tapestreamer",
              blok(nu, GOED) + blok(nu, TAPE)},
             {"users", blok(nu, ACTIEF), 0, "Back-up niet gelukt, gebruikers actief geweest",
              blok(nu, ACTIEF)},
             {"old ones go", blok(oud, TAPE) + blok(net, TAPE) + blok(nu, GOED), 0, "",
              blok(net, TAPE) + blok(nu, GOED)},
             {"other shapes", blok(dag(40, "%d %B %Y, 2:00"), TAPE) + blok(dag(40, "%b %d, %Y"), GOED), 0, "",
              ""},
             {"unreadable stay",
              blok("Foo 12 2016", TAPE) + blok("Feb 30 2016", TAPE) + blok("12-03-2016", GOED), 0, "",
              blok("Foo 12 2016", TAPE) + blok("Feb 30 2016", TAPE) + blok("12-03-2016", GOED)},
             {"shut", blok(oud, TAPE) + blok(nu, GOED), 9, "oud", blok(nu, GOED)},
             {"half a block", blok(oud, GOED) + nu + "\n" + TAPE, 0, "", nu + "\n" + TAPE},
             {"no block", nu + "\nGeen", 0, "-", nu + "\nGeen"},
             {"bytes", std::string("\0\xff\x1b\n\n\n\0", 7), 0,
              "Back-up niet gelukt, gebruikers actief geweest", std::string("\0\xff\x1b\n\n\n\0", 7)},
         }) {
        SCOPED_TRACE(naam);
        sysstatus s{};
        VASTIN(s.tekst, "oud");
        s.status = code;
        zet(10, s, SYS_RECORD);
        zet(19, sysbackup{7, {}}, SYS_RECORD);
        schrijf_bestand("result.bu", verslag);
        backup_lezen(".");
        const bool blijft = std::string(na) == "-";
        EXPECT_EQ(toestand(), std::to_string(code) + " " + (blijft ? "oud" : na));
        sysbackup b;
        int32_t nr = 19;
        iotab('R', &nr, &b, SYS_RECORD);
        EXPECT_EQ(b.datum, blijft ? 7 : VANDAAG());
        EXPECT_EQ(lees_bestand("result.bu"), over);
    }
}

// What lies in a directory where anybody may put files.
TEST_F(Controle, BackupReportOfAStranger) {
    const std::string verslag = blok(dag(31), GOED) + blok(dag(1), TAPE);
    mkdir("tmp", 0777);
    const std::string pad = "tmp/result.bu", nieuw = "tmp/result.new";
    auto gelezen = [&] {
        status_zet(STATUS_VRIJ);
        backup_lezen("tmp");
        return toestand() != "0 ";
    };
    schrijf_bestand("elders", verslag);
    ASSERT_EQ(symlink("../elders", pad.c_str()), 0);
    EXPECT_FALSE(gelezen()) << "a link";
    EXPECT_EQ(lees_bestand("elders"), verslag);
    unlink(pad.c_str());
    ASSERT_EQ(mkfifo(pad.c_str(), 0666), 0);
    EXPECT_FALSE(gelezen()) << "a pipe, that nobody writes";
    unlink(pad.c_str());
    schrijf_bestand(pad, verslag);
    if (geteuid() == 0) {
        ASSERT_EQ(chown(pad.c_str(), 4711, 4711), 0);
        EXPECT_FALSE(gelezen()) << "another user's";
        ASSERT_EQ(chown(pad.c_str(), 0, 0), 0);
    }
    // In the way of the new one: a link to a file of the user's, another menu's at work, one that was left behind.
    schrijf_bestand("mijn", "van mij");
    ASSERT_EQ(symlink("../mijn", nieuw.c_str()), 0);
    EXPECT_TRUE(gelezen());
    EXPECT_EQ(lees_bestand(pad) + lees_bestand("mijn"), verslag + "van mij");
    unlink(nieuw.c_str());
    schrijf_bestand(nieuw, "half");
    EXPECT_TRUE(gelezen());
    EXPECT_EQ(lees_bestand(pad) + lees_bestand(nieuw), verslag + "half");
    const struct timespec lang[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, nieuw.c_str(), lang, 0), 0);
    chmod(pad.c_str(), 0640);
    EXPECT_TRUE(gelezen());
    EXPECT_EQ(lees_bestand(pad), blok(dag(1), TAPE));
    EXPECT_FALSE(IOEXISTS(nieuw.c_str()));
    struct stat st;
    ASSERT_EQ(stat(pad.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 07777, 0640u);
}

// Refused at each call that makes the new report, and added to by the backup program meanwhile: what was there stays.
TEST_F(Controle, BackupReportNotReplaced) {
    const std::string verslag = blok(dag(31), GOED) + blok(dag(1), TAPE);
    static const SYSCALLS echt = SYS;
    const std::pair<const char*, void (*)()> storingen[] = {
        {"write", [] { SYS.write = [](int, const void*, size_t) -> ssize_t { return errno = ENOSPC, -1; }; }},
        {"fsync", [] { SYS.fsync = [](int) { return errno = EIO, -1; }; }},
        {"rename", [] { SYS.rename = [](const char*, const char*) { return errno = EPERM, -1; }; }},
        {"added to", [] {
             SYS.fsync = [](int) {
                 schrijf_bestand("result.bu", lees_bestand("result.bu") + "meer\n");
                 return 0;
             };
         }}};
    for (const auto& [naam, stoor] : storingen) {
        schrijf_bestand("result.bu", verslag);
        stoor();
        backup_lezen(".");
        SYS = echt;
        EXPECT_EQ(lees_bestand("result.bu").substr(0, verslag.size()), verslag) << naam;
        EXPECT_FALSE(IOEXISTS("result.new")) << naam;
    }
}

TEST_F(Controle, Log) {
    EXPECT_TRUE(logregel("NACHT.LOG", 0, "begin") && logregel("NACHT.LOG", 3, "regel\nmet een sprong"));
    std::string log = lees_bestand("NACHT.LOG");
    log.replace(9, 2, "uu").replace(12, 2, "mm");
    EXPECT_EQ(log.substr(0, 21) + log.substr(35),
              std::string(DATUM8(VANDAAG())) + " uu:mm begin\n    regel met een sprong\n");
    verwacht_stop([] { logregel("NACHT.TXT", 0, ""); }, "controle: errno=1");
}

} // namespace
} // namespace zg::test
