// Locks that others hold, waited for and told on the screen: of a whole file, of a record.
#include "shared/files.h"
#include "shared/houder.h"
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
