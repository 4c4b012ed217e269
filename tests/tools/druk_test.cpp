// zgdruk, as an operator uses it: destinations, the test page, what is left behind, users' printers.
#include "print/xprt.h"
#include "shared/iotab.h"
#include "support/demomap.h"
#include "tools/shell.h"

namespace zg::test {
namespace {

struct Druk : testing::Test {
    DemoMap demo;
    Druk() {
        setenv("ZEBPRT", "print", 1);
        EXPECT_EQ(chdir(demo.pad().c_str()), 0);
    }
    ~Druk() override {
        unsetenv("ZEBPRT");
        EXPECT_EQ(chdir("/"), 0);
    }
};

// The demo firm's printers are there; what is listed loads again to the same; a wrong line keeps all of a file out.
TEST_F(Druk, ListAndLoad) {
    const std::string lijst = sh("zgdruk list").tekst;
    for (const char* tekst : {"printer 1 naam=SCR\n", "  tekst 2 1 17 tekst=pdf\n",
                              "init=\\1B@\\0F exit=\\12\\1B@\n", "omschrijving=\"A4 staand\""})
        EXPECT_TRUE(bevat(lijst, tekst)) << tekst;
    ASSERT_EQ(sh("zgdruk add printer 40 naam='M\xC3\xB8ller \"x\" \\5C' && zgdruk add verbinding 40 9 "
                 "apparaat='a b#c' "
                 "&& zgdruk add configuratie 40 255 kolommen=999 rijen=0 init='\\\\\\00\\FF' "
                 "omschrijving=\"$(printf '\\033')\"")
                  .tekst,
              "");
    const std::string een = sh("zgdruk list 40 > p; cat p").tekst;
    EXPECT_EQ(sh("zgdruk remove printer 40; zgdruk list").tekst, lijst);
    EXPECT_EQ(sh("zgdruk load p && zgdruk list 40").tekst, een);
    EXPECT_EQ(sh("zgdruk load p && zgdruk list > q && zgdruk load q && zgdruk list | diff - q").tekst, "");
    for (const char* fout : {"printer 42", "printer 42 naam=X", "tekst 1 1 17 tekst=utf8",
                             "verbinding 42 1 apparaat=x", "verbinding 41 1 naam=x"})
        EXPECT_TRUE(
            sh(std::string("printf 'printer 41 naam=x\\n") + fout + "\\n' > p; zgdruk load p").zegt("p:2: "))
            << fout;
    EXPECT_EQ(sh("zgdruk list 41").status, 1);
    EXPECT_EQ(sh("ixcheck -q print").status, 0);
}

TEST_F(Druk, AddChangeRemove) {
    const struct {
        const char* opdracht;
        int status;
    } rijen[] = {
        {"add printer 40 naam=x", 0},
        {"add printer 40 naam=x", 1},
        {"add printer 41 naam=X", 1}, // whose is it when it is asked for?
        {"add printer 41", 2},
        {"add printer 0 naam=x", 2},
        {"add printer 41x naam=x", 2},
        {"add printer 41 naam=1234567890123", 2},
        {"add printer 41 naam=\xE2\x82\xAC", 2}, // no euro in code page 850
        {"change printer 40 naam=yy", 0},
        {"add verbinding 41 1 apparaat=x", 1},
        {"add verbinding 40 1 apparaat=-o", 2},
        {"add verbinding 40 1 apparaat=x naam=n", 0},
        {"add configuratie 40 1 kolommen=80", 2},
        {"add configuratie 40 1 kolommen=80 rijen=9999 staand=1", 0},
        {"add tekst 40 1 17 tekst=utf8", 2},
        {"add tekst 40 1 3 tekst=x", 0},
        {"add tekst 40 1 4 tekst=y", 0},
        {"remove tekst 40 1 4", 0},
        {"remove printer 1", 2},
        {"remove verbinding 1 1", 2},
        {"frob", 2},
    };
    for (const auto& r : rijen) {
        const Uit uit = sh(std::string("zgdruk ") + r.opdracht);
        EXPECT_EQ(uit.status, r.status) << r.opdracht << "\n" << uit.tekst;
        EXPECT_EQ(uit.tekst.empty(), r.status == 0) << r.opdracht << "\n" << uit.tekst;
    }
    EXPECT_EQ(sh("zgdruk list 40").tekst,
              "printer 40 naam=yy\n  verbinding 40 1 apparaat=x naam=n\n"
              "  configuratie 40 1 kolommen=80 rijen=9999 staand=1\n  tekst 40 1 3 tekst=x\n");
    EXPECT_EQ(sh("zgdruk remove printer 40; zgdruk list 40").status, 1);
    EXPECT_EQ(sh("zgdruk add printer 40 naam=x; zgdruk list 40").tekst,
              "printer 40 naam=x\n"); // nothing of the old one
    EXPECT_EQ(sh("ZEBPRT= zgdruk -D /proc list").status, 3);
}

// A page that comes out; one that doesn't is told, listed, sent again when its directory is there, or dropped.
TEST_F(Druk, TestPageAndWhatIsLeft) {
    ASSERT_EQ(sh("zgdruk test 2 -f 1").tekst, "");
    const std::string blad = sh("pdftotext -layout uit/T* -").tekst;
    EXPECT_TRUE(bevat(blad, "Proefafdruk"));
    EXPECT_TRUE(bevat(blad, "7....+....8\n"));
    EXPECT_TRUE(bevat(blad, "\n63"));
    EXPECT_EQ(sh("zgdruk test 2 -f 3").status, 1);
    EXPECT_EQ(sh("zgdruk test 1").status, 2);
    EXPECT_EQ(sh("zgdruk test 6").status, 3); // nobody's terminal
    ASSERT_EQ(sh("zgdruk add verbinding 2 2 apparaat=/dev/full").tekst, "");
    for (const char* weg : {"zgdruk send --all", "zgdruk drop PR*.JOB"}) {
        const Uit uit = sh("zgdruk test 2 -c 2");
        EXPECT_EQ(uit.status, 1);
        EXPECT_TRUE(uit.zegt("not printed: schijf vol; kept as PR")) << uit.tekst;
        EXPECT_TRUE(sh("zgdruk jobs").zegt("0/1  device /dev/full  \"Proefafdruk\"  schijf vol"));
        EXPECT_TRUE(sh("zgdruk jobs -j").zegt("\"device\":\"/dev/full\",\"copies\":1,\"done\":0"));
        EXPECT_EQ(sh("zgdruk send --all").status, 1); // as full as before
        ASSERT_EQ(
            sh("sed -Ei '1s/ fout (.*) $/ bezig \\1/; s,^apparaat /dev/full,apparaat /dev/null,' PR*.JOB")
                .tekst,
            "");
        EXPECT_TRUE(sh("zgdruk jobs").zegt("the sender died, perhaps some of it is out"));
        EXPECT_EQ(sh(weg).tekst, "") << weg;
        EXPECT_EQ(sh("zgdruk jobs").tekst, "") << weg;
        EXPECT_EQ(FILES_PRESENT("PR*"), 0) << weg;
    }
    sh("zgdruk test 2 -c 2; mkfifo f; sed -Ei \"s,^apparaat /dev/full,apparaat $PWD/f,\" PR*.JOB");
    EXPECT_EQ(sh("timeout 60 zgdruk send --all --no-wait").status, 0); // nobody reads yet
    EXPECT_TRUE(sh("timeout 60 cat f").zegt("%PDF-"));
    sh("zgdruk test 2 -c 2; rm PR????");
    EXPECT_TRUE(sh("zgdruk jobs").zegt("its report was removed"));
    EXPECT_EQ(sh("zgdruk drop -a").status, 0);
    EXPECT_EQ(sh("zgdruk send PRAA00").status, 3);
    EXPECT_EQ(sh("zgdruk drop DTSYS.TXT").status, 3);
    EXPECT_EQ(sh("zgdruk send").status, 2);
}

TEST_F(Druk, UsersPrinters) {
    EXPECT_EQ(sh("zgdruk user").tekst, "1 Joke\n2 Pieter\n3 Bezoeker\n");
    const std::string voor = lees_bestand("DTSYS.TXT");
    ASSERT_EQ(sh("zgdruk user Pieter 5 -c 2 -p -m 68").tekst,
              "2 Pieter printer=5 verbinding=2 voorbeeld masker=68\n");
    std::string na = lees_bestand("DTSYS.TXT");
    const auto slot = static_cast<size_t>(SYS_GEBRUIKER.start + SYS_GEBRUIKER.grootte);
    EXPECT_EQ(na.substr(slot + 18, 4), std::string("\5\0\1\2", 4)); // code, look first, connection
    EXPECT_EQ(na.substr(slot + 28, 2), std::string("\x44\0", 2));
    na.replace(slot + 18, 4, 4, '\0').replace(slot + 28, 2, 2, '\0');
    EXPECT_EQ(na, voor); // nothing else
    EXPECT_EQ(sh("zgdruk user 2").tekst, "2 Pieter printer=5 verbinding=2 voorbeeld masker=68\n");
    EXPECT_EQ(sh("zgdruk user 2 0").tekst, "2 Pieter\n");
    for (const auto& [opdracht, status] : {std::pair{"user Jan 2", 1},
                                           {"user Joke 99", 1},
                                           {"user Joke 2 -c 7", 1},
                                           {"user Joke 2 -m 70000", 2},
                                           {"user Joke -p", 2},
                                           {"-D print user", 3}})
        EXPECT_EQ(sh(std::string("zgdruk ") + opdracht).status, status) << opdracht;
    Agent aan_het_werk([] {
        int32_t nr = 1;
        gebruikerslot g;
        iotab('O', &nr, nullptr, SYS_RECORD);
        return iotab_probeer(&nr, &g, SYS_GEBRUIKER) == 1;
    });
    ASSERT_TRUE(aan_het_werk.ok());
    EXPECT_EQ(sh("zgdruk user Joke 2").status, 4);
    EXPECT_EQ(sh("zgdruk user Joke").tekst, "1 Joke\n");
}

} // namespace
} // namespace zg::test
