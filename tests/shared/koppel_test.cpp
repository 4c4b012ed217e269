// Link tables: what goes with a number, what stays, and that a refused write is told.
#include "shared/koppel.h"
#include "support/paar.h"
#include "support/proef.h"

namespace zg::test {
namespace {

const Koppeling KLEUREN[] = {{"DTKL%*4d.TXT", 36, 4, Koppeling::WIS}};
const Koppeling GROEPEN[] = {{"DTBC*.TXT", 40, 4, Koppeling::NUL}, {"DTMRKMS.TXT", 4, 4, Koppeling::WIS}};
const Koppeling MERKEN[] = {{"DTMRKMS.TXT", 0, 2, Koppeling::WIS}};

struct Koppelingen : InMap {
    // A table of records with a key in its first four bytes and a number at an offset.
    static void tabel(const char* naam, int lengte, int plaats, std::initializer_list<int32_t> nummers) {
        mkdir("edistam", 0777);
        const std::string pad = std::string("edistam/") + naam;
        ICB* icb = nieuw_paar(pad.c_str(), {"koppel," + std::to_string(lengte), "een,NODUPS,I,1,4"}, 2);
        int32_t sleutel = 65536 + 7; // the low half is a brand
        for (int32_t nr : nummers) {
            std::array<uint8_t, IXRECMAX> rec{};
            memcpy(rec.data(), &sleutel, 4);
            memcpy(rec.data() + plaats, &nr, 4);
            schrijf(icb, rec);
            sleutel += 65536;
        }
        IXCLOSE(icb);
    }
    static std::string nummers(const char* naam, int plaats) {
        ICB* icb = IXOPEN((std::string("edistam/") + naam).c_str(), 0);
        uint8_t rec[IXRECMAX];
        std::string uit;
        int antwoord;
        for (int32_t nr = 0; (antwoord = IXGET(icb, rec, nr)) >= 0; nr++) {
            int32_t n;
            memcpy(&n, rec + plaats, 4);
            if (antwoord == 1)
                uit += std::to_string(n) + " ";
        }
        IXCLOSE(icb);
        EXPECT_EQ(IXCHECK((std::string("edistam/") + naam).c_str()) >= 0, true) << naam;
        return uit;
    }
};

TEST_F(Koppelingen, GoWithTheNumber) {
    EXPECT_TRUE(koppel_wis(KLEUREN, 5, "mutkl")) << "no directory is no fault";
    tabel("DTKL0012", 80, 36, {5, 6, 5, 65541, 5});
    tabel("DTKL0013", 80, 36, {5});
    tabel("DTKLEUR", 80, 36, {5}); // not of a partner
    tabel("DTBC01", 80, 40, {5, 6});
    tabel("DTMRKMS", 10, 4, {5, 6, 5});
    EXPECT_TRUE(koppel_wis(KLEUREN, 5, "mutkl"));
    EXPECT_EQ(nummers("DTKL0012", 36) + "| " + nummers("DTKL0013", 36) + "| " + nummers("DTKLEUR", 36),
              "6 65541 | | 5 ");
    EXPECT_TRUE(koppel_wis(GROEPEN, 5, "mutart"));
    EXPECT_EQ(nummers("DTBC01", 40), "0 6 ");
    EXPECT_EQ(nummers("DTMRKMS", 4), "6 ");
    EXPECT_TRUE(koppel_wis(MERKEN, 7, "mutmrk"));
    EXPECT_EQ(nummers("DTMRKMS", 4), "") << "two bytes of number";
    EXPECT_TRUE(koppel_bestanden_weg("DTKL0012.*"));
    EXPECT_EQ(lees_bestand("edistam/DTKL0012.TXT") + lees_bestand("edistam/DTKL0012.INX"), "");
    EXPECT_NE(lees_bestand("edistam/DTKL0013.INX"), "");
}

TEST_F(Koppelingen, RefusedAndBroken) {
    tabel("DTKL0012", 80, 36, {5, 6, 5});
    tabel("DTBC01", 80, 40, {5});
    static decltype(SYS.pwrite) echt;
    echt = SYS.pwrite;
    SYS.pwrite = [](int fd, const void* buf, size_t n, off_t plaats) -> ssize_t {
        // 80 bytes: a record of the data file
        return n == 80 ? (errno = ENOSPC, -1) : echt(fd, buf, n, plaats);
    };
    testing::internal::CaptureStderr();
    EXPECT_FALSE(koppel_wis(KLEUREN, 5, "mutkl"));
    EXPECT_FALSE(koppel_wis(GROEPEN, 5, "mutart"));
    SYS.pwrite = echt;
    EXPECT_NE(testing::internal::GetCapturedStderr(), "") << "told";
    EXPECT_EQ(nummers("DTKL0012", 36), "5 6 5 ");
    schrijf_bestand("edistam/DTKL0012.INX", "");
    verwacht_stop([] { koppel_wis(KLEUREN, 5, "mutkl"); },
                  "mutkl: Open niet gelukt (file=edistam/DTKL0012, errno=2)");
}

} // namespace
} // namespace zg::test
