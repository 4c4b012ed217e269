// Bar codes as texts, and the codes of sizes in their file.
#include "shared/ean.h"
#include "shared/eanhdl.h"
#include "support/systeem.h"
#include "term/datum.h"
#include "term/gesprek.h"

namespace zg {
namespace {

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
        const char* letter; // letter and number, empty for none
    } rijen[] = {
        {"8711253001202", 7, true, -1, "E0"},
        {"8711253001203", 7, false, -1, ""},
        {"036000291452", 7, true, -1, "E0"},        // 12 digits
        {"03513538", 7, false, 3513538, "3513538"}, // 8 digits from a 0 on
        {"17654326", 7, true, -1, "E0"},
        {"17654326", 8, false, 17654326, "17654326"}, // 8 digits are a label number
        {"2200001234567", 7, true, 1234567, "1234567"},
        {"2200001234567", 6, true, -1, ""}, // too high for six digits
        {"2801000000001", 7, true, -1, "A1"},
        {"2827000000001", 7, true, -1, ""},
        {"24000123", 7, true, 123, "E0"},
        {"12345678", 7, false, -1, ""},
        {" 77 ", 7, false, 77, "77"},
        {"M12", 7, false, -1, "M12"},
        {"A1000000000", 7, false, -1, ""},
        {"X12", 7, false, -1, ""},
        {"", 7, false, -1, ""},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(std::string(r.tekst) + ", " + std::to_string(r.labels) + " digits");
        const Cijfers c(r.labels);
        EXPECT_EQ(ean_geldig(r.tekst), r.geldig);
        EXPECT_EQ(ean_lees_etiket(r.tekst), r.etiket);
        char letter = 0;
        int32_t nummer = 0;
        const bool is = ean_lees_letter(r.tekst, &letter, &nummer);
        EXPECT_EQ((letter ? std::string(1, letter) : "") + (is ? std::to_string(nummer) : ""), r.letter);
    }
    const Cijfers c(7, "2801");
    char letter;
    int32_t nummer;
    EXPECT_TRUE(ean_lees_letter("2801000000001", &letter, &nummer));
    EXPECT_EQ(letter, 'E') << "a listed prefix isn't ours";
    EXPECT_EQ(ean_toon("8711253001202", 13) + ean_toon("8711253001203", 20), "87112530012028711253001203*");
    EXPECT_EQ(ean_maat(1) + ean_etiket('A', 1), "20130000000152801000000001");
    for (int32_t n = 1; n < 1'000'000; n += 7919)
        EXPECT_EQ(ean_lees_etiket(ean_etiket_kort(n, 13).c_str()) +
                      ean_lees_etiket(ean_etiket_kort(n, 8).c_str()),
                  2 * n);
}

constexpr seriesleutel S{110, 5, 1}, ANDER{110, 5, 2};

struct Codes : test::Systeem {
    ICB* ean = nullptr;
    Codes() {
        DDNEW(16, "DTEAN");
        ean = IXOPEN("DTEAN", 2);
    }
    ~Codes() override { IXCLOSE(ean); }
    // Sizes and their codes of a series.
    std::string codes(const seriesleutel& s) const {
        std::string uit;
        eanrec rec;
        for (uint8_t maat = 1; maat <= 95; maat++)
            if (leeseanmaat(ean, &rec, s, maat))
                uit += std::to_string(maat) + ":" + VASTTEKST(rec.code).substr(4, 8) + " ";
        return uit;
    }
    static eanrec rec(const std::string& code, char soort, const seriesleutel& s, uint8_t maat) {
        eanrec uit{.soort = soort,
                   .kleur = s.kleur,
                   .artikelgroep = s.artikelgroep,
                   .volgnummer = s.volgnummer,
                   .maat = maat};
        VASTIN(uit.code, code);
        return uit;
    }
    static void teller(uint32_t n) { zet(14, systeller{static_cast<int32_t>(n), {}}, SYS_RECORD); }
};

constexpr uint8_t MATEN_1_3_17[12] = {0b1010, 0, 0b10}, MAAT_3[12] = {0b1000};

TEST_F(Codes, MadePassedOverAndDeleted) {
    teller(41);
    test::schrijf(ean, rec(ean_maat(43), 'A', {}, 0)); // by another hand
    EXPECT_TRUE(eanhdl('W', ean, S, MATEN_1_3_17, 7));
    EXPECT_EQ(codes(S), "1:00000042 3:00000044 17:00000045 ");
    EXPECT_TRUE(eanhdl('W', ean, S, MATEN_1_3_17)) << "they have theirs";
    EXPECT_EQ(ean_over(), 99'999'999 - 45);
    EXPECT_TRUE(eanhdl('W', ean, ANDER, MAAT_3));
    eanrec r;
    leeseanmaat(ean, &r, S, 17);
    EXPECT_EQ(r.bron * 100'000 + r.datum, 700'000 + VANDAAG());
    // DTBARC has the size one byte further, and several codes a size.
    DDNEW(8, "DTBARC");
    ICB* barc = IXOPEN("DTBARC", 2);
    for (int i = 0; i < 6; i++) {
        r = rec("barc" + std::to_string(i), 0, i < 5 ? S : ANDER, 0);
        r.bron = i < 3 ? 3 : 4;
        test::schrijf(barc, r);
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
    teller(4'000'000'000);
    EXPECT_EQ(ean_over(), 0);
}

// A code typed for size 3 of a series that has one: what is refused is told and the field stays, the record moves along.
TEST_F(Codes, EnteredByHand) {
    teller(41);
    EXPECT_TRUE(eanhdl('W', ean, S, MAAT_3));
    test::schrijf(ean, rec("8711253001202", 'A', ANDER, 0));
    test::schrijf(ean, rec("8711253001219", 'M', ANDER, 3));
    test::schrijf(ean, rec("8711253001226", 'M', ANDER, 17)); // a size that it has no more
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
        t.toetsen("<Home>" + std::string(code) + "<Enter>", melding);
    }
    EXPECT_EQ(t.antwoord("<Home>8711253001226<Enter>"), "ja");
    EXPECT_EQ(codes(S) + codes(ANDER), "3:25300122 3:25300121 ");
}

} // namespace
} // namespace zg
