// What the journal tells on the screen, in a terminal.
#include "bouw.h"
#include "order/meld.h"
#include "term/scherm.h"
#include <cerrno>
#include <gtest/gtest.h>

namespace zg::test {
namespace {

TEST(Venster, bezet_niet_te_openen_en_schijf_vol) {
    OrderMap map;
    Terminal t([] {
        SCRINIT();
        ord_meld_bezet("ORD0012.JRN");
        ord_meld_niet_open("2016Z/ORD0012.ORS");
        ord_meld_schrijffout("2016Z/ORD0012.TMP", ENOSPC, TXT(T_JRN_ORDER_BLIJFT), TXT(T_JRN_ORDER_BEWAARD));
        SCREXIT();
        return 7;
    });
    ASSERT_TRUE(t.wacht("voor vervolg")) << t.scherm();
    EXPECT_EQ(t.stuk(22, 3, 45), "Order ORD0012.JRN in gebruik op ander scherm.") << t.scherm();
    t.toetsen("<Enter>");
    ASSERT_TRUE(t.wacht_op(23, 1, "2016Z/ORD0012.ORS: Bestand niet te openen")) << t.scherm();
    t.toetsen("<Enter>");
    ASSERT_TRUE(t.wacht("2016Z/ORD0012.TMP kan niet worden geschreven: schijf vol")) << t.scherm();
    EXPECT_EQ(t.scherm().find("te openen"), std::string::npos) << t.scherm();
    EXPECT_NE(t.scherm().find("blijven bewaard"), std::string::npos) << t.scherm();
    t.toetsen("<Enter>");
    EXPECT_EQ(t.einde(), 7);
}

} // namespace
} // namespace zg::test
