// The printed lists of distributions and runs: blocks of sizes, one type and all, from their lists on the screen.
#include "print/afdruk.h"
#include "sub/lijstprint.h"
#include "sub/reeksen.h"
#include "sub/voorverd.h"
#include "support/systeem.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

namespace fs = std::filesystem;

// Types 3 (32 sizes, "a1" and up) and 5 (two sizes); three branches; the user's printer is the directory "papier".
struct Lijstprint : Systeem {
    aantalmatrix m;
    Lijstprint() {
        maak_filialen({1, 2, 20});
        VASTIN(firma.naam, "De Proef");
        firma.maatstelsel = 1;
        std::vector<std::string> maten;
        for (int i = 1; i <= 32; i++)
            maten.push_back("a" + std::to_string(i));
        maak_maatsoort(3, "Lang", maten);
        maak_maatsoort(5, "Kort", {"b1", "b2"});
        dtmaat = IXOPEN("DTMAAT", 2);
        dtvvtab = nieuw_paar("DTVVTAB", {"voorverdeling,424", "k1,NODUPS,I,1,1,I,3,4,I,5,6"}, 2);
        archief();
        balk_open(1, 3, nullptr);
        fmclear(&m);
        fmset(&m, 0, 1, 5), fmset(&m, 0, 32, 12345), fmset(&m, 2, 30, 7);
        vv_bewaren(3, 8, m);
        fmclear(&m);
        fmset(&m, 1, 2, 4);
        vv_bewaren(3, 9, m);
        vv_bewaren(5, 1, m);
        maatreeksrec rec{};
        rec.maatsoort = 3, rec.aantal[1] = 2, rec.aantal[31] = 1, rec.aantal[0] = 3;
        zet(1, rec, SYS_MAATREEKS);
        rec.maatsoort = 5, rec.aantal[31] = 0, rec.aantal[0] = 2;
        zet(4, rec, SYS_MAATREEKS);
        const uint8_t twee[MAATBYTES] = {6};
        balk_kies(twee); // what is shown doesn't count
    }
    ~Lijstprint() override {
        balk_sluit();
        IXCLOSE(dtvvtab);
        dtvvtab = nullptr;
        unsetenv("ZEBPRT");
    }
    static void archief() {
        fs::create_directory("papier");
        fs::create_directory("prt");
        setenv("ZEBPRT", "prt", 1);
        printtabellen t;
        prt_lees(&t);
        printer(2, "Archief");
        verbinding(2, 1, "papier", true);
        config(2, 1, 80, 66), config(2, 2, 132, 66); // 80 columns won't do, whatever the slot says
        const printwens wens{2, 0, 0};
        memcpy(gebruiker.vrij18, &wens, sizeof wens);
        gebruiker.opties = PRT_80 | PRT_KORT;
    }
    // The next report that comes out: heads without their date, pages by "=".
    static std::string papier() {
        for (int i = 0; i < 400; i++, usleep(25'000))
            for (const auto& e : fs::directory_iterator("papier"))
                if (e.path().filename().string()[0] == 'T') {
                    const std::string tekst = lees_bestand(e.path());
                    fs::remove(e.path());
                    return kaal(tekst);
                }
        return "nothing came out";
    }
    static std::string kaal(const std::string& tekst) {
        std::string uit;
        for (size_t p = 0; p < tekst.size();) {
            const size_t e = std::min(tekst.find('\n', p), tekst.size());
            std::string regel(VASTTRIM(std::string_view(tekst).substr(p, e - p)));
            p = e + 1;
            if (const size_t kop = regel.find(" blad:"); kop != std::string::npos)
                regel = std::string(VASTTRIM(regel.substr(0, kop - 18)));
            if (!regel.empty() && regel[0] == '\f')
                regel.replace(0, 1, "=");
            if (!regel.empty())
                uit += regel + "\n";
        }
        return uit;
    }
};

TEST_F(Lijstprint, BlocksAndPages) {
    const std::string drie = R"(FILIAALVERDELINGEN                  Verdelingnr. 8   Maatsoort: 3  Lang
 fil   tot    a1  a2  a3  a4  a5  a6  a7  a8  a9 a10 a11 a12 a13 a14 a15 a16 a17 a18 a19 a20 a21 a22 a23 a24 a25 a26 a27 a28 a29 a30
   1 12350     5
  20     7                                                                                                                         7
 tot 12357     5                                                                                                                   7
 fil   tot   a31 a32
   1 12350     12345
  20     7
 tot 12357     12345
=FILIAALVERDELINGEN                  Verdelingnr. 9   Maatsoort: 3  Lang
 fil   tot    a1  a2  a3  a4  a5  a6  a7  a8  a9 a10 a11 a12 a13 a14 a15 a16 a17 a18 a19 a20 a21 a22 a23 a24 a25 a26 a27 a28 a29 a30
   2     4         4
 tot     4         4
 fil   tot   a31 a32
   2     4
 tot     4
)",
                      vijf = R"(=FILIAALVERDELINGEN                  Verdelingnr. 1   Maatsoort: 5  Kort
 fil   tot    b1  b2
   2     4         4
 tot     4         4
)";
    vv_lijst(3);
    EXPECT_EQ(papier(), drie + "=\n");
    EXPECT_EQ(balk_kolommen(), 2) << "the bar in force stays";
    vv_lijst(0);
    EXPECT_EQ(papier(), drie + vijf + "=\n");
    reeks_lijst(0);
    EXPECT_EQ(papier(), R"(MAATREEKSEN                              Maatsoort: 3  Lang
       tot    a1  a2  a3  a4  a5  a6  a7  a8  a9 a10 a11 a12 a13 a14 a15 a16 a17 a18 a19 a20 a21 a22 a23 a24 a25 a26 a27 a28 a29 a30
   1     3     2
       tot   a31 a32
   1     3     1
=MAATREEKSEN                              Maatsoort: 5  Kort
       tot    b1  b2
   4     2     2
=
)");
    reeks_lijst(7); // no such type: an empty report
    EXPECT_EQ(fs::directory_iterator("papier"), fs::directory_iterator());
}

// "&Printen" goes on in the list.
TEST_F(Lijstprint, FromTheLists) {
    auto lijst = [&](bool reeks) {
        return [&, reeks]() -> std::string {
            open();
            IXCLOSE(dtvvtab), IXCLOSE(dtmaat);
            dtvvtab = IXOPEN("DTVVTAB", 2), dtmaat = IXOPEN("DTMAAT", 2);
            reeksrij rij{};
            balk_kies(nullptr);
            const bool ja =
                reeks ? reeks_kiezen(3, "SWTV", nullptr, &rij) : vv_kiezen(3, "SWTV", nullptr, &m);
            return (ja ? "ja " : "nee ") + std::to_string(balk_kolommen());
        };
    };
    for (const bool reeks : {false, true}) {
        Gesprek g(lijst(reeks));
        for (const char* keus : {"PD", "PA", "P<Esc>"}) {
            g.toetsen(keus);
            EXPECT_TRUE(
                g.wacht(reeks ? " maatreeksen, maatsoort 3 Lang " : " filiaalverdelingen, maatsoort 3 Lang "))
                << g.scherm();
            const std::string tekst = keus[1] == '<' ? "" : papier();
            EXPECT_EQ(tekst.find("Maatsoort: 3 ") != tekst.npos, keus[1] != '<') << tekst;
            EXPECT_EQ(tekst.find("Maatsoort: 5 ") != tekst.npos, keus[1] == 'A') << tekst;
        }
        EXPECT_EQ(g.antwoord("S"), "ja 32");
    }
}

} // namespace
} // namespace zg::test
