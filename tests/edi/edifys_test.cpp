// The settings of the transfer: by name, out of the older form, changed by two programs at once.
#include "edi/edifys.h"
#include "shared/report.h"
#include "support/proef.h"
#include "support/roepstoring.h"

namespace zg::test {
namespace {

using Instellingen = InMap;

std::string record(std::initializer_list<std::pair<size_t, const char*>> velden) {
    std::string uit(512, '\0');
    for (auto [plaats, tekst] : velden)
        uit.replace(plaats, strlen(tekst), tekst);
    return uit;
}

TEST_F(Instellingen, ByName) {
    for (const char* naam : {"ZEBEDI", "EDIDIR", "EDICMD"}) // nothing there: nothing made
        EXPECT_TRUE(!*ediget(naam) && !*edigetpc(naam) && !ediset(naam, "x") && !edisetpc(naam, "x") &&
                    !ediflagset(1) && !ediflagget(1));
    EXPECT_EQ(FILES_PRESENT("*"), 0);
    const std::string vol(60, 'v'), past(59, 'p');
    schrijf_bestand("DTRCMSYS.TXT", record({{128, vol.c_str()},
                                            {188, "rpc"},
                                            {248, "weg"},
                                            {308, "cmd"},
                                            {368, "host"},
                                            {392, "z"},
                                            {393, "\1"},
                                            {500, "staart"}}));
    mkdir("map", 0700);
    const struct {
        const char *naam, *zet, *geeft; // zet null: as it is
        int goed;
    } rijen[] = {
        {"ZEBEDI", nullptr, vol.c_str(), 0},
        {"$ZEBEDI/order", "/een pad met 'blanks'; $(ls)", "/een pad met 'blanks'; $(ls)", 1},
        {"ZEBEDI EDICMD", nullptr, "/een pad met 'blanks'; $(ls)", 0},
        {"ZEBEDI", past.c_str(), past.c_str(), 1},
        {"ZEBEDI", vol.c_str(), past.c_str(), 0},
        {"EDIDIR", nullptr, "", 0}, // not there any more
        {"EDIDIR", "map", "map", 1},
        {"EDIRPC", "", "", 1},
        {"RPCHOST", "12345678901234567890", "12345678901234567890", 1},
        {"RPCHOST", "123456789012345678901", "12345678901234567890", 0},
        {"EDICMD", "een\nnaam", "cmd", 0},
        {"EDI", "x", "", 0},
    };
    for (const auto& r : rijen) {
        EXPECT_TRUE(!r.zet || ediset(r.naam, r.zet) == r.goed) << r.naam << " " << r.zet;
        EXPECT_STREQ(ediget(r.naam), r.geeft) << r.naam;
    }
    EXPECT_EQ(lees_bestand("DTRCMSYS.TXT"), record({{128, past.c_str()},
                                                    {248, "map"},
                                                    {308, "cmd"},
                                                    {368, "12345678901234567890"},
                                                    {393, "\1"},
                                                    {500, "staart"}}));
}

// The flags begin at byte 388 and go to the end of the record: 32 to 39 are the byte that the other file clears.
TEST_F(Instellingen, Flags) {
    schrijf_bestand("DTRCMSYS.TXT", record({}));
    for (int n : {0, 32, 39, 991})
        EXPECT_EQ(ediflagset(n), 1) << n;
    EXPECT_EQ(edisetpc("EDICMD", "anders"), 1);
    for (int n : {-1, 992, INT32_MAX})
        EXPECT_TRUE(!ediflagset(n) && !ediflagget(n)) << n;
    EXPECT_EQ(lees_bestand("DTIPCSYS.TXT"),
              record({{308, "anders"}, {388, "\1"}, {392, "\x81"}, {511, "\x80"}}));
    EXPECT_TRUE(ediflagget(39) && !ediflagget(38) && !*ediget("EDICMD"));
}

TEST_F(Instellingen, ClosedAndRefused) {
    edirec rec{};
    verwacht_stop([&] { edisys('R', 0, &rec); }, "edifys: errno=1");
    verwacht_stop([&] { edisyspc('R', 0, &rec); }, "edifys: errno=1");
    EXPECT_EQ(edisys('O', 0, nullptr), 0);
    ASSERT_TRUE(edi_maak(2));
    const std::string was = lees_bestand("DTRCMSYS.TXT");
    EXPECT_EQ(was, record({{5, "\1"}, {393, "\2"}}));
    EXPECT_EQ(edisys('q', 0, &rec), 0);
    const Afloop a = in_proces([] {
        stoor_roep(0, false);
        return ediset("EDICMD", "nieuw");
    });
    EXPECT_EQ(a.status, 0);
    EXPECT_TRUE(bevat(a.uitvoer, "DTRCMSYS.TXT kan niet worden geschreven: schijf vol"));
    EXPECT_EQ(lees_bestand("DTRCMSYS.TXT"), was);
    EXPECT_EQ(ediset("EDICMD", "nieuw"), 1);
    Agent ander([] { return edisys('C', 0, nullptr) && edisys('O', 0, nullptr) && edisys('T', 0, nullptr); });
    EXPECT_TRUE(ander.ok()) << "each write gives the lock back";
    edisys('C', 0, nullptr);
}

// Both forms of the older file, killed at each call and refused each: under the new name stands the whole record or
// nothing, and the next run ends with it.
TEST_F(Instellingen, OlderFile) {
    const std::string vijf("\5a\0b\6", 5), kort = vijf + std::string(123, 'x');
    const std::string lang = record({{0, "\2"}, {128, "/edi"}, {393, "\2"}});
    for (const auto& [oud, nieuw] : Rijen<std::string, std::string>{
             {kort, vijf + std::string(507, '\0')}, {lang, lang}, {"\1", "\1" + std::string(511, '\0')}})
        for (bool dood : {true, false})
            for (int n = 0, status = 1; status != 0; n++) {
                SCOPED_TRACE(std::to_string(oud.size()) + (dood ? " killed at " : " refused ") +
                             std::to_string(n));
                ASSERT_LT(n, 20);
                IOUNLINK("DTRCMSYS.TXT");
                IOUNLINK("EDISYS.CVC");
                ASSERT_EQ(symlink("elders", "EDISYS.CVC"), 0); // whatever stands there isn't written through
                schrijf_bestand("DTEDI.TXT", oud);
                status = in_proces([&] {
                             stoor_roep(n, dood);
                             ediget("ZEBEDI");
                             return gestoord() ? 7 : 0;
                         }).status;
                EXPECT_FALSE(IOEXISTS("elders"));
                EXPECT_TRUE(!IOEXISTS("DTRCMSYS.TXT") || lees_bestand("DTRCMSYS.TXT") == nieuw);
                EXPECT_TRUE(IOEXISTS("DTRCMSYS.TXT") || lees_bestand("DTEDI.TXT") == oud);
                EXPECT_EQ(in_proces([] { return edisys('O', 0, nullptr); }).status, 1);
                EXPECT_EQ(lees_bestand("DTRCMSYS.TXT"), nieuw);
                EXPECT_FALSE(IOEXISTS("DTEDI.TXT") || IOEXISTS("EDISYS.CVC")) << "or it is converted again";
            }
    schrijf_bestand("DTRCMSYS.TXT", record({{308, "blijft"}}));
    schrijf_bestand("DTEDI.TXT", lang);
    EXPECT_STREQ(ediget("EDICMD"), "blijft") << "converted only while there is none";
}

// Two programs that change what belongs to each: nothing is lost, and no reader sees half of it.
TEST_F(Instellingen, TwoProgramsAtOnce) {
    constexpr int KEREN = 10'000;
    ASSERT_TRUE(edi_maak(1));
    edisys('C', 0, nullptr);
    auto werk = [](const char* naam, int eerste) {
        return [naam, eerste] {
            edisys('O', 0, nullptr);
            for (int i = 0; i < KEREN; i++) {
                const std::string waarde(static_cast<size_t>(1 + i % 20), static_cast<char>('a' + i % 26));
                if (!ediset(naam, waarde.c_str()) || waarde != ediget(naam))
                    return false;
                if (i % 20 == 0 && !ediflagset(eerste + i / 20 % 496 * 2))
                    return false;
            }
            return true;
        };
    };
    Agent ander([&](const std::string&) { return werk("RPCHOST", 1)() ? "yes" : "no"; });
    ander.vraag("begin", 0);
    EXPECT_TRUE(in_proces([&] { return werk("EDICMD", 0)() ? 0 : 1; }, 300'000).status == 0);
    EXPECT_EQ(ander.antwoord(300'000), "yes");
    for (int n = 0; n < EDIVLAGGEN; n++)
        EXPECT_TRUE(ediflagget(n)) << n;
}

} // namespace
} // namespace zg::test
