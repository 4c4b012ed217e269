// Which destination a wish finds, what is asked, and what is refused before a job begins.
#include "print/afdruk.h"
#include "print/bestemlijst.h"
#include "shared/sysrec.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

// Printer 2: a queue, 80 columns short and 132 long; 3: a fifo, one configuration; 4: a directory, two ways to nothing.
struct Bestemmingen : Printmap {
    Bestemmingen() {
        printer(2, "Laser"), verbinding(2, 1, "laser/duplex");
        config(2, 1, 80, 60), config(2, 2, 132, 72, "\\1BE");
        printer(3, "Matrix"), verbinding(3, 1, "weg"), verbinding(3, 4, tijdelijk.pad() + "/elders/fifo");
        config(3, 9, 132, 66, "\\1B\\00", 0);
        EXPECT_EQ(mkfifo("elders/fifo", 0600), 0);
        programma("bin/lpstat",
                  "[ $# = 2 ] && case $2 in laser/duplex*|-*) ;; *) exit 1 ;; esac"); // takes options
    }
    // What becomes of a wish: "way device columns x rows, preview, character set", or the box.
    static std::string wens(uint16_t code, uint8_t vlaggen, uint8_t nr, uint16_t masker,
                            const char* bestand = nullptr) {
        if (!XPRT_OPEN({code, vlaggen, nr}, masker, bestand, "t"))
            return "no";
        const printjob& j = printopdracht;
        std::string uit = std::to_string(static_cast<int>(j.weg)) + " " +
                          j.apparaat.substr(j.apparaat.rfind('/') + 1) + " " + std::to_string(j.kolommen) +
                          "x" + std::to_string(j.rijen) +
                          (j.voorbeeld ? " kijk"
                           : j.staand  ? ""
                                       : " liggend") +
                          " " + j.tekens;
        XPRT_STAAK();
        return uit;
    }
};

TEST_F(Bestemmingen, Wishes) {
    for (const auto& [code, vlaggen, nr, masker, uit] :
         Rijen<uint16_t, uint8_t, uint8_t, uint16_t, const char*>{
             {2, 0, 0, PRT_80, "1 duplex 80x60 utf-8"},
             {2, 1, 1, PRT_80 | PRT_KORT, "1 duplex 80x60 kijk utf-8"},
             {2, 0, 0, PRT_132 | PRT_LANG, "1 duplex 132x72 cp850"}, // an init text: raw bytes
             {2, 1, 0, PRT_132, "0  132x64 kijk cp850"}, // long pages only when they are asked for
             {3, 0, 4, PRT_132, "2 fifo 132x66 liggend cp850"},
             {3, 0, 0, PRT_ALLES, "no"},               // its first connection, a queue that nobody knows
             {1, 0, 0, PRT_80, "0  80x64 kijk cp850"}, // the screen is looked at
         })
        EXPECT_EQ(wens(code, vlaggen, nr, masker), uit) << code << " " << masker;
    // No printer named, and none but the screen.
    IOUNLINK("prt/TR_PTRG.TXT");
    EXPECT_EQ(wens(0, 0, 0, PRT_ALLES), "0  132x64 kijk cp850");
    EXPECT_EQ(wens(0, 0, 0, PRT_40 | PRT_80), "0  80x64 kijk cp850");
    // Nothing left behind; and a refusal leaves room for the next job.
    EXPECT_EQ(FILES_PRESENT("PR*"), 0);
}

TEST_F(Bestemmingen, Refused) {
    const std::string hier = tijdelijk.pad();
    for (const auto& [apparaat, map, goed] : Rijen<std::string, bool, bool>{
             {"laser/duplex", false, true},
             {"-o", false, false},
             {"laser/duplex,weg", false, false}, // lpstat's way to ask for two
             {hier + "/uit", false, false},
             {"/dev/null", false, true},
             {"uit", true, true},
             {"elders/../uit/", true, true},
             {"2016Z", true, false},
             {"elders/../2016Z", true, false},
             {"geenmap", true, false},
             {"AUX", false, false},
             {"TERMINAL", true, false}, // a directory flag doesn't make it one
         }) {
        verbinding(3, 1, apparaat, map);
        EXPECT_EQ(wens(3, 0, 1, PRT_132) != "no", goed) << apparaat;
    }
    // A scheduler that doesn't answer holds nobody up.
    programma("bin/lpstat", "exec sleep 60");
    const time_t begin = time(nullptr);
    EXPECT_EQ(wens(2, 0, 0, PRT_80), "no");
    EXPECT_LT(time(nullptr) - begin, 30);
}

TEST_F(Bestemmingen, ToFile) {
    for (const auto& [bestand, masker, uit] : Rijen<const char*, uint16_t, const char*>{
             {"lijst.txt", PRT_80, "6 lijst.txt 80x64 utf-8"},
             {"elders/lijst.txt", PRT_132 | PRT_KORT, "6 lijst.txt 132x64 liggend utf-8"},
             {"elders/lijst.pdf", PRT_40, "6 lijst.pdf 40x64 pdf"},
             {nullptr, PRT_80, "no"},
             {"0123456789012345678901234567890123456789", PRT_80, "no"},
             {"elders/89012345678901234567890123456789.PDF", PRT_80,
              "6 89012345678901234567890123456789.PDF 80x64 pdf"}, // its ending doesn't count
             {"elders/fifo", PRT_80, "no"},
             {"geen/lijst.txt", PRT_80, "no"},
         })
        EXPECT_EQ(wens(0, PRT_BESTAND, 0, masker, bestand), uit) << (bestand ? bestand : "null");
    schrijf_bestand("uit/lijst.txt", "oud"); // nobody to ask
    EXPECT_EQ(wens(0, PRT_BESTAND, 0, PRT_80, "lijst.txt"), "no");
    EXPECT_EQ(lees_bestand("uit/lijst.txt"), "oud");
    // Its name and its text are in the characters of the terminal.
    for (const auto& [set, uit] :
         {std::pair{"ISO-8859-15", "6 \xE9 80x64 latin1"}, {"CP850", "6 \x82 80x64 cp850"}}) {
        Opties o;
        o.omgeving.push_back({"ZGTEKENSET", set});
        Terminal t(
            [&] {
                SCRINIT();
                const bool goed = wens(0, PRT_BESTAND, 0, PRT_80, "\x82") == uit;
                SCREXIT();
                return goed ? 3 : 4;
            },
            o);
        EXPECT_EQ(t.einde(), 3) << set;
    }
}

// The list: what stands in it for each bit of the mask, its rows, and that it can't be left when it may not.
TEST_F(Bestemmingen, List) {
    for (uint16_t i = 0; i < 20; i++) {
        printer(static_cast<uint16_t>(100 + i), ("Rij " + std::to_string(i)).c_str());
        verbinding(static_cast<uint16_t>(100 + i), 1, "uit", i % 2 != 0);
        config(static_cast<uint16_t>(100 + i), 1, 80, i % 2 ? 72 : 0);
        config(static_cast<uint16_t>(100 + i), 2, 96, PRT_ZONDER_BLADEN);
    }
    printtabellen t;
    ASSERT_TRUE(prt_lees(&t));
    const std::pair<int, size_t> aantallen[] = {
        {PRT_40, 1}, {PRT_80, 12}, {PRT_80 | PRT_LANG, 21}, {PRT_132, 3}, {PRT_KORT, 0}, {PRT_ALLES, 47},
    };
    for (const auto& [masker, n] : aantallen)
        EXPECT_EQ(prt_bestemmingen(t, static_cast<uint16_t>(masker)).size(), n) << masker;
    EXPECT_EQ(prt_lijstregel(prt_bestemmingen(t, PRT_80 | PRT_LANG)[2]),
              "Rij 1        via 1                config 1                       80   72 P J");
    EXPECT_EQ(prt_lijstregel(prt_bestemmingen(t, PRT_ALLES)[0]),
              "SCR          SCR                  SCR-40                         40 9999 L N");

    auto kies = [](bool uit) {
        return [uit] {
            SCRINIT();
            XPRT_LIJSTUIT(uit);
            gebruiker = {};
            const printwens w{0, PRT_BESTAND, 3};
            memcpy(gebruiker.vrij18, &w, sizeof w);
            if (XPRT_WENS().vlaggen != 3 || XPRT_WENS().verbinding != 3 || XPRT_MASKER() != PRT_ALLES)
                return 1;
            const std::string gevonden = wens(0, 1, 0, PRT_80);
            SCREXIT();
            return gevonden == "3 uit 80x0 kijk cp850" ? 3 : gevonden == "0  80x64 kijk cp850" ? 4 : 5;
        };
    };
    verbinding(102, 1, "uit", true);
    Terminal vast(kies(false));
    vast.wacht("Printer      Device               Configuratie                  Kol  Rij O W");
    vast.toetsen("<Esc>", "U dient een printbestemming te selecteren");
    vast.toetsen("rij 2<Enter>");
    vast.toetsen("<Enter>");
    EXPECT_EQ(vast.einde(), 3) << vast.scherm();
    Terminal los(kies(true));
    los.wacht("Rij 2");
    los.toetsen("<Esc>");
    EXPECT_EQ(los.einde(), 4);
}

} // namespace
} // namespace zg::test
