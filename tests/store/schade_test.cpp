// Programs at work, writing too, on an index in which one bit is wrong: each ends well or with a report, in time.
// flip_test.cpp has what the deep check makes of the flips. ZG_LONG=1 takes every bit, not one in a few hundred.
#include "store/hulp.h"
#include "store/node.h"
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace zg::test {
namespace {

constexpr int RECLEN = 8, RECORDS = 110;

void maak() {
    ICB* icb = maak_open("T", {RECLEN, {"k,NODUPS,I,1,4", "w,I,5,6"}}, 2);
    uint8_t r[RECLEN] = {};
    for (int i = 0; i < RECORDS; i++) {
        ZET32(r, i);
        r[4] = static_cast<uint8_t>(i * 37);
        IXWRITE(icb, r);
    }
    for (int i : {50, 60}) {
        ZET32(r, i);
        IXREAD(icb, r);
        IXDELETE(icb, r);
    }
    ZET32(r, 999);
    IXREADL(icb, r); // one key reserved
    IXCLOSE(icb);
}

void gebruik() {
    int niets = open("/dev/null", O_RDWR);
    for (int fd : {0, 1, 2})
        dup2(niets, fd);
    alarm(20);
    IXWAITHOOK = [](ICB*) { _exit(0); }; // a key that the damage reserved
    for (int mode : {0, 2, 1}) {
        ICB* icb = IXOPEN("T", mode);
        uint8_t r[IXRECMAX] = {}; // a damaged length is longer than the record
        for (int k = 1; k <= 2; k++) {
            IXSWITCH(icb, k);
            int n = 0;
            memset(r, 0, sizeof r);
            for (int ok = IXFIRST(icb, r); ok && n < 3 * RECORDS; ok = IXNEXT(icb, r))
                n++;
            if (n == 3 * RECORDS)
                _exit(7);
            memset(r, 0xFF, sizeof r);
            for (int ok = IXLAST(icb, r), m = 0; ok && m < 20; m++)
                ok = IXPREVR(icb, r, 0);
            int32_t nr = 5;
            IXSKIP(icb, r, 0, -3, &nr);
            IXUNIQK(icb, r, 1);
        }
        IXSWITCH(icb, 1);
        for (int i : {0, 55, 99, 150}) {
            ZET32(r, i);
            if (IXREADL(icb, r)) {
                r[4]++;
                IXWRITE(icb, r);
                IXREAD(icb, r);
                IXDELETE(icb, r);
            }
        }
        for (int i = 300; i < 310; i++) {
            ZET32(r, i);
            IXWRITE(icb, r);
        }
        IXCLOSE(icb);
    }
}

TEST(Schade, SchrijvenInEenOmgeklapteIndex) {
    TijdelijkeMap map;
    maak();
    const std::string idx = lees_bestand("T.INX"), data = lees_bestand("T.TXT");
    for (size_t bit = 0; bit < idx.size() * 8; bit += getenv("ZG_LONG") ? 1 : 521) {
        std::string fout = idx;
        fout[bit / 8] = static_cast<char>(fout[bit / 8] ^ (1 << (bit % 8)));
        schrijf_bestand("T.INX", fout);
        schrijf_bestand("T.TXT", data);
        int status = in_kind(gebruik);
        ASSERT_TRUE(status == 0 || status == 1) << "byte " << bit / 8 << " bit " << bit % 8 << ": " << status;
    }
}

} // namespace
} // namespace zg::test
