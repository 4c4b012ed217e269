// Bar codes as texts, and the codes of sizes in their file.
#include "shared/ean.h"
#include "shared/eanhdl.h"
#include "shared/leesstam.h"
#include "support/paar.h"
#include "support/proces.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include "term/datum.h"
#include "term/gesprek.h"
#include "term/vast.h"
#include <tuple>

namespace zg {
namespace {

using test::in_proces;
using test::nieuw_paar;

struct Cijfers {
    explicit Cijfers(int labels, const char* prefix = "") {
        instel15 = {};
        instel15.etiketcijfers = static_cast<uint8_t>(labels);
        instel15.prefix_aan = *prefix != 0;
        VASTIN(instel15.prefix[8], prefix);
    }
    ~Cijfers() { instel15 = {}; }
};

TEST(Ean, ValidAndLabelCodes) {
    const struct {
        const char* tekst;
        int labels;
        bool geldig;
        int32_t etiket;
        const char* letter; // letter and number, null for none
    } rijen[] = {
        {"8711253001202", 7, true, -1, "E0"},
        {"8711253001203", 7, false, -1, nullptr},
        {"036000291452", 7, true, -1, "E0"},        // 12 digits
        {"03513538", 7, false, 3513538, "3513538"}, // 8 digits from a 0 on
        {"17654326", 7, true, -1, "E0"},
        {"17654326", 8, false, 17654326, "17654326"}, // 8 digits are a label number
        {"2200001234567", 7, true, 1234567, "1234567"},
        {"2200001234567", 6, true, -1, nullptr}, // too high for six digits
        {"2801000000001", 7, true, -1, "A1"},
        {"2827000000001", 7, true, -1, nullptr},
        {"24000123", 7, true, 123, "E0"},
        {"12345678", 7, false, -1, nullptr},
        {" 77 ", 7, false, 77, "77"},
        {"M12", 7, false, -1, "M12"},
        {"A1000000000", 7, false, -1, nullptr},
        {"X12", 7, false, -1, nullptr},
        {"", 7, false, -1, nullptr},
    };
    for (const auto& r : rijen) {
        const Cijfers c(r.labels);
        const std::string waar = std::string(r.tekst) + ", " + std::to_string(r.labels) + " digits";
        EXPECT_EQ(ean_geldig(r.tekst), r.geldig) << waar;
        EXPECT_EQ(ean_lees_etiket(r.tekst), r.etiket) << waar;
        char letter = '?';
        int32_t nummer = -1;
        const bool is = ean_lees_letter(r.tekst, &letter, &nummer);
        EXPECT_EQ(is, r.letter != nullptr) << waar;
        if (is && r.letter) {
            EXPECT_EQ((letter ? std::string(1, letter) : "") + std::to_string(nummer), r.letter) << waar;
        }
    }
    const Cijfers c(7, "2801");
    char letter;
    int32_t nummer;
    EXPECT_TRUE(ean_lees_letter("2801000000001", &letter, &nummer));
    EXPECT_EQ(letter, 'E') << "a listed prefix isn't ours";
    EXPECT_EQ(ean_toon("8711253001202", 13) + ean_toon("8711253001203", 20), "87112530012028711253001203*");
}

TEST(Ean, CodesMadeReadBack) {
    const Cijfers c(7);
    for (int32_t nummer = 1; nummer < 1'000'000; nummer += 7919) {
        char letter;
        int32_t n;
        const std::string code = ean_etiket('M', nummer);
        EXPECT_TRUE(ean_geldig(code.c_str()) && ean_lees_letter(code.c_str(), &letter, &n)) << code;
        EXPECT_TRUE(letter == 'M' && n == nummer) << code;
        EXPECT_EQ(ean_lees_etiket(ean_etiket_kort(nummer, 13).c_str()), nummer);
        EXPECT_EQ(ean_lees_etiket(ean_etiket_kort(nummer, 8).c_str()), nummer);
        EXPECT_TRUE(ean_geldig(ean_maat(nummer).c_str()));
    }
    EXPECT_EQ(ean_maat(1), "2013000000015");
}

constexpr seriesleutel S{110, 5, 1}, ANDER{110, 5, 2};

struct Codes : test::Systeem {
    ICB* ean = nullptr;
    Codes() {
        instel15 = {};
        ean = nieuw_paar(
            "DTEAN", {"ean,28", "1,NODUPS,C,1,13", "2,NODUPS,C,14,14,I,17,20,I,15,16,I,21,22,I,23,23"}, 2);
    }
    ~Codes() override { dicht(); }
    void dicht() {
        if (ean)
            IXCLOSE(ean);
        ean = nullptr;
    }
    // Sizes and their codes of a series.
    std::string codes(const seriesleutel& s) {
        std::string uit;
        eanrec rec;
        for (uint8_t maat = 1; maat <= 95; maat++)
            if (leeseanmaat(ean, &rec, s, maat))
                uit += std::to_string(maat) + ":" + VASTTEKST(rec.code).substr(4, 8) + " ";
        return uit;
    }
    static void teller(uint32_t n) { zet(14, systeller{static_cast<int32_t>(n), {}}, SYS_RECORD); }
    bool mutex_vrij() {
        eanrec nul{};
        VASTIN(nul.code, "0");
        uint8_t buffer[IXRECMAX] = {};
        memcpy(buffer, &nul, sizeof nul);
        const bool staat = IXREAD(ean, buffer) == 1;
        return in_proces([&] {
                   ICB* icb = IXOPEN("DTEAN", 2);
                   IXREADL(icb, buffer);
                   return 0;
               }).status == 0 &&
               staat;
    }
};

constexpr uint8_t MATEN_1_3_17[12] = {0b1010, 0, 0b10}, MAAT_3[12] = {0b1000};

TEST_F(Codes, MadePassedOverAndDeleted) {
    teller(41);
    eanrec bezet{};
    VASTIN(bezet.code, ean_maat(43)); // by another hand
    bezet.soort = 'A';
    test::schrijf(ean, bezet);
    EXPECT_TRUE(eanhdl('W', ean, S, MATEN_1_3_17, 7));
    EXPECT_EQ(codes(S), "1:00000042 3:00000044 17:00000045 ");
    EXPECT_TRUE(eanhdl('W', ean, S, MATEN_1_3_17)) << "they have theirs";
    EXPECT_EQ(ean_over(), 99'999'999 - 45);
    EXPECT_TRUE(eanhdl('W', ean, ANDER, MAAT_3));
    eanrec rec;
    leeseanmaat(ean, &rec, S, 17);
    EXPECT_EQ(rec.bron * 100'000 + rec.datum, 700'000 + VANDAAG());
    EXPECT_TRUE(mutex_vrij());
    // DTBARC has the size one byte further, and several codes a size.
    ICB* barc = nieuw_paar("DTBARC", {"barc,32", "1,NODUPS,C,1,13", "2,I,17,20,I,15,16,I,21,22,I,24,24"}, 2);
    for (int i = 0; i < 6; i++) {
        uint8_t b[IXRECMAX] = {};
        eanrec r{};
        VASTIN(r.code, "barc" + std::to_string(i));
        r.artikelgroep = 110;
        r.kleur = 5;
        r.volgnummer = i < 5 ? 1 : 2;
        memcpy(b, &r, sizeof r);
        b[23] = i < 3 ? 3 : 4;
        EXPECT_EQ(IXWRITE(barc, b), 1);
    }
    EXPECT_TRUE(eanhdl('D', ean, ANDER, MAAT_3));
    EXPECT_TRUE(eanhdl('B', ean, S, MAAT_3));
    EXPECT_EQ(codes(S) + codes(ANDER), "1:00000042 17:00000045 ");
    int staan = 0;
    uint8_t b[IXRECMAX];
    for (int32_t nr = 0; nr < 6; nr++)
        staan = staan * 2 + (IXGET(barc, b, nr) == 1);
    EXPECT_EQ(staan, 0b000111) << "those of size 3 and this series";
    IXCLOSE(barc);
    teller(99'999'998);
    EXPECT_FALSE(eanhdl('W', ean, ANDER, MATEN_1_3_17)) << "one number left";
    EXPECT_EQ(codes(ANDER), "1:99999999 ");
    EXPECT_EQ(ean_nodig(ean, ANDER, MATEN_1_3_17), 2);
    EXPECT_EQ(ean_over(), 0);
    teller(4'000'000'000);
    EXPECT_EQ(ean_over(), 0);
    EXPECT_TRUE(mutex_vrij());
}

TEST_F(Codes, EveryWriteRefusedOrTheLast) {
    teller(10);
    eanrec ander{}; // by another program: the file has no record of the mutex yet
    VASTIN(ander.code, ean_maat(10));
    ander.soort = 'M';
    ander.artikelgroep = ANDER.artikelgroep;
    ander.kleur = ANDER.kleur;
    ander.volgnummer = ANDER.volgnummer;
    ander.maat = 3;
    test::schrijf(ean, ander);
    dicht();
    test::bij_elke_schrijf(
        {"DTEAN.INX", "DTEAN.TXT", "DTSYS.TXT"}, 1,
        [&] {
            open();
            ean = IXOPEN("DTEAN", 2);
            return eanhdl('W', ean, S, MATEN_1_3_17) && eanhdl('B', ean, S, MAAT_3) ? 1 : 0;
        },
        [&](const test::Storing& st) {
            EXPECT_EQ(st.status, st.klaar ? 1 : 0) << st.uitvoer;
            if (IXCHECK("DTEAN") < 0)
                return; // left busy by the kill: ixremake's
            ean = IXOPEN("DTEAN", 2);
            EXPECT_EQ(codes(ANDER), "3:00000010 ");
            EXPECT_EQ(in_proces([&] {
                          ICB* icb = IXOPEN("DTEAN", 2);
                          open();
                          return eanhdl('W', icb, S, MATEN_1_3_17) ? 0 : 1;
                      }).status,
                      0)
                << "no code stays reserved";
            EXPECT_EQ(ean_nodig(ean, S, MATEN_1_3_17), 0);
            dicht();
        });
    ean = IXOPEN("DTEAN", 2);
}

// A code typed for size 3 of a series that has one: what is refused is told and the field stays, the record moves along.
TEST_F(Codes, EnteredByHand) {
    teller(41);
    EXPECT_TRUE(eanhdl('W', ean, S, MAAT_3));
    eanrec van{}; // of an article, of a series' size, of a size that the other series has no more
    for (const auto& [code, soort, maat] :
         {std::tuple{"8711253001202", 'A', 0}, {"8711253001219", 'M', 3}, {"8711253001226", 'M', 17}}) {
        VASTIN(van.code, code);
        van.soort = soort;
        van.artikelgroep = ANDER.artikelgroep;
        van.kleur = ANDER.kleur;
        van.volgnummer = ANDER.volgnummer;
        van.maat = static_cast<uint8_t>(maat);
        test::schrijf(ean, van);
    }
    test::Gesprek t([] {
        ICB* icb = IXOPEN("DTEAN", 2);
        open();
        const bool anders =
            ean_veld(5, 10, icb, S, 3, [](const seriesleutel&, uint8_t maat) { return maat == 3; });
        IXCLOSE(icb);
        return std::string(anders ? "ja" : "nee");
    });
    const std::pair<const char*, const char*> geweigerd[] = {
        {"8711253001203", "<8711253001203> Ongeldige EAN-code"},
        {"2801000000001", "EAN-code niet toegestaan"},
        {"8711253001202", "<8711253001202> gedefineerd bij artikel 110"},
        {"8711253001219", "<8711253001219> gedefineerd bij serie 110.5.2!"},
    };
    for (const auto& [code, melding] : geweigerd) {
        t.toetsen("<Home>" + std::string(code) + "<Enter>");
        EXPECT_TRUE(t.wacht(melding)) << t.scherm();
    }
    t.toetsen("<Home>8711253001226<Enter>");
    EXPECT_EQ(t.antwoord(), "ja");
    dicht();
    ean = IXOPEN("DTEAN", 2);
    EXPECT_EQ(codes(S) + codes(ANDER), "3:25300122 3:25300121 ");
    EXPECT_EQ(ean_nodig(ean, ANDER, MATEN_1_3_17), 2) << "17 has lost its code to it";
}

} // namespace
} // namespace zg
