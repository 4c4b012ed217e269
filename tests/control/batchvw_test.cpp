// Exclusion of users and batch runs, by real processes on real locks.
#include "control/batchvw.h"
#include "support/systeem.h"
#include "term/scherm.h"

namespace zg::test {
namespace {

struct Batch : Systeem {
    Batch() {
        gebruiker_in(4, "Joke", "03");
        gebruiker_in(9, "Pieter", "");
    }
    // As user `slot` (99 the batch user): a claim on group 5.
    static bool claim(int32_t slot, bool groep, bool vragen) {
        open();
        sessie = slot;
        return groep ? batch_claim(BATCH_ORDERS) : user_claim(BATCH_ORDERS, vragen);
    }
    // Another program, without a terminal; and one on a terminal, that answers with the result as its status.
    static auto als(int32_t slot, bool groep) {
        return [=] { return claim(slot, groep, false); };
    }
    static auto op_scherm(int32_t slot, bool groep) {
        return [=] {
            SCRINIT();
            bool ok = claim(slot, groep, true);
            SCREXIT();
            return ok ? 10 : 11;
        };
    }
};

TEST_F(Batch, UsersSideBySide) {
    Agent joke(als(4, false)), pieter(als(9, false));
    EXPECT_TRUE(joke.ok() && pieter.ok());
    EXPECT_FALSE(Agent(als(99, true)).ok()) << "an unattended run doesn't wait";
    EXPECT_TRUE(Agent([] {
                    open();
                    return IOLOCK('E', iotab_fd(), 40085 + 4 * 99, 99) == 1 && // the groups beside it
                           IOLOCK('E', iotab_fd(), 40085 + 6 * 99, 99) == 1 &&
                           IOLOCK('T', iotab_fd(), 40085 + 5 * 99 + 3, 1) == 0 &&
                           IOLOCK('T', iotab_fd(), 40085 + 5 * 99 + 8, 1) == 0 &&
                           IOLOCK('T', iotab_fd(), 40085 + 5 * 99 + 4, 4) == 1;
                }).ok())
        << "each holds his own byte of the group, and nothing else";
    joke.dood();
    pieter.dood();
    EXPECT_TRUE(Agent(als(99, true)).ok()) << "a dead process holds nothing";
}

TEST_F(Batch, UserWaitsForTheRunOrGivesUp) {
    Agent run(als(99, true));
    ASSERT_TRUE(run.ok());
    Terminal t(op_scherm(4, false), {}), weg(op_scherm(9, false), {});
    ASSERT_TRUE(t.wacht("Verwerking is actief")) << t.scherm();
    t.wacht("Wilt u wachten? (J/N)");
    t.stuur("j");
    ASSERT_TRUE(t.wacht("Wilt u wachten? (J/N)J")) << t.scherm();
    t.stuur("\r");
    ASSERT_TRUE(t.weg("(J/N)J")) << "the question is there again";
    ASSERT_TRUE(weg.wacht("(J/N)")) << weg.scherm();
    weg.stuur("n\r");
    EXPECT_EQ(weg.einde(), 11);
    EXPECT_TRUE(t.leeft());
    run.dood();
    EXPECT_EQ(t.einde(), 10);
}

TEST_F(Batch, RunNamesOrCountsTheUsers) {
    auto joke = std::make_unique<Agent>(als(4, false));
    Agent pieter(als(9, false));
    Terminal t(op_scherm(7, true), {});
    ASSERT_TRUE(t.wacht("Aantal gebruikers 2")) << t.scherm();
    t.wacht("Er zijn gebruikers actief die verwerking blokkeren!");
    pieter.dood();
    ASSERT_TRUE(t.wacht("Gebruiker Joke (tty03)")) << t.scherm();
    joke.reset();
    EXPECT_EQ(t.einde(), 10);
    Agent run(als(99, true));
    Terminal tweede(op_scherm(8, true), {});
    ASSERT_TRUE(tweede.wacht("Verwerking is reeds gestart")) << tweede.scherm();
    tweede.stuur("\x1b");
    EXPECT_EQ(tweede.einde(), 11);
}

TEST_F(Batch, Faults) {
    sessie = 4;
    verwacht_stop([] { batch_claim(16); }, "batchvw: errno=1");
    verwacht_stop([] { user_claim(16, false); }, "batchvw: errno=2");
    verwacht_stop([] { sluit(), user_claim(5, false); }, "batchvw: errno=3");
    verwacht_stop([] { sessie = 0, user_claim(5, false); }, "batchvw: errno=2");
}

// Counters: tests/shared/iotab_test.cpp.
TEST_F(Batch, OrderNumbers) {
    zet(5, systeller{9999998, {}}, SYS_RECORD);
    EXPECT_EQ(order_nummer(), 9999999);
    EXPECT_EQ(order_nummer(), 1000);
}

} // namespace
} // namespace zg::test
