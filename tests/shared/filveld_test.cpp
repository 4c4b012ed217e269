// The branch field on a terminal: typed, unknown, picked from its list, left alone. And the waiting of a lock on
// a whole file, told on the screen.
#include "shared/files.h"
#include "shared/filveld.h"
#include "shared/houder.h"
#include "shared/iofil.h"
#include "shared/sysrec.h"
#include "store/ix.h"
#include "support/proces.h"
#include "term/gesprek.h"
#include "term/vast.h"
#include <fcntl.h>
#include <unistd.h>

namespace zg {
namespace {

using test::Agent;
using test::Gesprek;
using test::Terminal;

void maak_filialen() {
    firma = {};
    firma.filialen = 5;
    test::schrijf_bestand("DTFILGEG.TXT", "");
    iofil('O', 0, nullptr);
    const int nummers[] = {1, 2, 3, 14, 20};
    for (int i = 0; i < 5; i++) {
        filiaalrec rec{};
        VASTIN(rec.naam, "Winkel " + std::to_string(nummers[i]) + " \x9B");
        rec.nummer = static_cast<uint8_t>(nummers[i]);
        iofil('W', i, &rec);
    }
}

// The field with 2 in it: the number afterwards, and whether it counts as changed.
std::string veld(const char* opties) {
    maak_filialen();
    uint8_t nummer = 2;
    int gewijzigd = fil_veld(5, 10, 20, opties, &nummer);
    return test::vorm("%d%s", nummer, gewijzigd ? " changed" : "");
}

TEST(BranchField, KeysAndWhatComesOfThem) {
    struct {
        const char* toetsen;
        const char* opties;
        const char* uitslag;
    } const rijen[] = {
        {"14<Enter>", "ZP", "14 changed"},
        {"<Enter>", "ZP", "2"},
        {"2<Enter>", "ZP", "2"},
        {"<Esc>", "ZP", "2"},
        {"14<Esc>", "ZP", "2"},
        {"0<Enter>", "ZP", "0 changed"},
        {"<Enter>", "IZP", "0 changed"},
        {"14<F5><Enter>", "ZP", "2"},
        {"<F5><Down><Down><Enter>", "ZP", "14 changed"},
        {"<F5><Esc><Enter>", "ZP", "2"},
        {"<F5>20<Enter><Enter>", "ZP", "20 changed"},
        {"<F5>7<Enter><Esc>3<Enter>", "ZP", "3 changed"},
        {"4<Enter>3<Enter>", "ZP", "3 changed"},
    };
    for (const auto& r : rijen) {
        test::TijdelijkeMap map;
        Gesprek t([&] { return veld(r.opties); });
        ASSERT_TRUE(t.wacht("Winkel 2 ø")) << t.scherm();
        t.toetsen(r.toetsen);
        EXPECT_EQ(t.antwoord(), r.uitslag) << r.toetsen;
    }
}

TEST(BranchField, ShowsListAndName) {
    test::TijdelijkeMap map;
    Gesprek t([] { return veld("ZP"); });
    t.toetsen("4<Enter>");
    EXPECT_TRUE(t.wacht("<4> Onbekend filiaal")) << t.scherm();
    t.toetsen("<F5>");
    ASSERT_TRUE(t.wacht("Winkel 20 ø")) << t.scherm();
    EXPECT_NE(t.scherm().find("Filialen"), std::string::npos) << t.scherm();
    // The whole list with the cursor on the present number; a number that isn't there changes nothing.
    EXPECT_TRUE(t.wacht_op(5, 44, "  1  Winkel 1 ø")) << t.scherm();
    t.toetsen("<Down>7<Enter>");
    EXPECT_TRUE(t.wacht_op(5, 44, "  1  Winkel 1 ø") && t.cel(7, 50).keus) << t.scherm();
    t.toetsen("<Esc>");
    EXPECT_TRUE(t.weg("Winkel 20"));
    t.toetsen("<Esc>");
    EXPECT_EQ(t.antwoord(), "2");
}

// What waits without asking for a key; its answer is the status.
std::function<int()> op_scherm(const std::function<int()>& doe) {
    return [doe] {
        SCRINIT();
        int uit = doe();
        SCREXIT();
        return uit;
    };
}

TEST(Waiting, LockedFileIsToldAndWaitedFor) {
    test::TijdelijkeMap map;
    test::schrijf_bestand("BRON", "inhoud");
    Agent houder([] {
        int fd = open("BRON", O_RDWR);
        return IOFLOCK(fd, 3, 10) == 1;
    });
    Terminal t(op_scherm([] { return IOCOPY("BRON", "DOEL", -1); }));
    EXPECT_TRUE(t.wacht_op(24, 1, "Informatie in gebruik op ander scherm")) << t.scherm();
    EXPECT_EQ(IOEXISTS("DOEL"), 0);
    houder.laat_los();
    EXPECT_EQ(t.einde(), 1);
    EXPECT_EQ(test::lees_bestand("DOEL"), "inhoud");
}

// The store's wait routine as the program sets it: who is in the way of this record.
TEST(Waiting, RecordHolderIsNamed) {
    test::TijdelijkeMap map;
    ICB* icb = IXCREATE("PROEF", 1);
    IXUPDFCB(icb, 0, "proefrecords,20");
    IXUPDFCB(icb, 1, "k1,NODUPS,I,1,4");
    IXINITIX(icb);
    uint8_t rec[IXRECMAX] = {7};
    IXWRITE(icb, rec);
    IXCLOSE(icb);
    Agent houder([&] {
        ICB* eigen = IXOPEN("PROEF", 2);
        return IXREADL(eigen, rec) == 1;
    });
    ASSERT_TRUE(houder.ok());
    Terminal t(op_scherm([&] {
        IXWAITHOOK = houder_wacht;
        return IXREADL(IXOPEN("PROEF", 2), rec);
    }));
    EXPECT_TRUE(t.wacht_op(24, 1, "PROEF: proefrecords --> Informatie in gebruik op ander scherm"))
        << t.scherm();
    houder.dood();
    EXPECT_EQ(t.einde(), 1);
}

} // namespace
} // namespace zg
