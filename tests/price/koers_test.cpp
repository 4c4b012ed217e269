// Currencies, rates by date, conversion and the integer form of rates.
#include "price/ing_val.h"
#include "price/koers.h"
#include "price/uniprijs.h"
#include "support/systeem.h"
#include "term/datum.h"
#include <random>

namespace zg {
namespace {

struct Koersen : test::Systeem {
    Koersen() {
        VASTIN(instel15.valuta, "EUR");
        valuta(3, "EUR", 2, "Euro");
        valuta(1, "USD", 2, "Amerikaanse dollar");
        valuta(99, "JPY", 0, "Japanse yen");
        valuta(50, "ODD", 7, "");
        valuta_vergeet();
        maak("k1,NODUPS,C,1,3,I,11,12");
    }
    ~Koersen() override { koers_sluit(); }
    static void maak(const char* sleutel) {
        koers_sluit();
        ICB* icb = test::nieuw_paar("DTKOERS", {"valutakoersen,12", sleutel});
        for (const koersrec& rec : {koersrec{{'U', 'S', 'D'}, 0, 8800, 1, 40000},
                                    {{'U', 'S', 'D'}, 0, 9150, 1, 42000},
                                    {{'U', 'S', 'D'}, 0, 8990, 1, 42420},
                                    {{'J', 'P', 'Y'}, 0, 7900, 100, 41000},
                                    {{'U', 'S', 'C'}, 0, 1, 1, 1},
                                    {{'A', 'A', 'A'}, 0, 5000, 0, 100},
                                    {{'N', 'U', 'L'}, 0, 0, 1, 100}})
            test::schrijf(icb, rec);
        IXCLOSE(icb);
        koers_open();
    }
};

TEST_F(Koersen, ByDate) {
    struct {
        const char* code;
        uint16_t datum;
        double koers;
    } const rijen[] = {
        {"USD", 42000, 0.9150}, {"USD", 41999, 0.8800}, {"USD", 42420, 0.8990},
        {"USD", 65535, 0.8990}, {"USD", 39999, 1.0}, // none that early; not that of USC
        {"JPY", 42000, 0.0079}, {"JPY", 40999, 1.0},    {"GBP", 42000, 1.0},
        {"EUR", 42000, 1.0},    {"NUL", 42000, 1.0}, // no rate can be 0
    };
    for (const auto& r : rijen)
        EXPECT_DOUBLE_EQ(koers_datum(r.code, r.datum), r.koers) << r.code << r.datum;
    EXPECT_DOUBLE_EQ(koers_vandaag("USD"), koers_datum("USD", VANDAAG()));
    koersrec rec;
    koers_record("USD", 42100, &rec);
    EXPECT_TRUE(rec.koers == 9150 && rec.datum == 42000);
    koers_record("XXX", 42100, &rec);
    EXPECT_EQ(rec.koers, 0);
}

// A key that isn't code and date never gives a wrong currency's rate, nor a later one.
TEST_F(Koersen, OtherKey) {
    for (const auto& [sleutel, datum, koers] : test::Rijen<const char*, uint16_t, double>{
             {"k1,NODUPS,I,11,12,C,1,3", 42000, 0.9150},
             {"k1,NODUPS,I,11,12,C,1,3", 41000, 1.0}, // that day has a rate of JPY
             {"k1,C,1,3", 39999, 1.0},                // all of them are later
         }) {
        maak(sleutel);
        EXPECT_DOUBLE_EQ(koers_datum("USD", datum), koers) << sleutel << " " << datum;
    }
}

TEST_F(Koersen, Faults) {
    test::verwacht_stop([] { koers_datum("AAA", 200); }, "koers: errno=2"); // a unit of 0 in the file
    test::verwacht_stop([] { koers_sluit(), koers_vandaag("USD"); }, "koers: errno=1");
    test::verwacht_stop([] { valuta_zoek("   "); }, "ing_val: errno=1");
}

TEST_F(Koersen, CurrencyTable) {
    EXPECT_TRUE(valuta_zoek("JPY"));
    EXPECT_TRUE(VASTGELIJK(valuta_nu.naam, "Japanse yen"));
    EXPECT_FALSE(valuta_zoek("XXX"));
    EXPECT_TRUE(VASTGELIJK(valuta_nu.code, "JPY")) << "the current one stays";
    EXPECT_EQ(valuta_of_thuis(""), "EUR");
    EXPECT_EQ(valuta_of_thuis("USDxxx"), "USD");
    EXPECT_FALSE(thuisvaluta_anders("   ") || thuisvaluta_anders("EUR"));
    EXPECT_TRUE(thuisvaluta_anders("USD"));
    EXPECT_EQ(valuta_decimalen("JPY"), 0);
    EXPECT_EQ(valuta_decimalen("XXX"), 2);
    EXPECT_EQ(valuta_decimalen(""), 2);
    std::string volgorde;
    for (const auto& v : valuta_tabel())
        volgorde += std::to_string(v.nr) + " ";
    EXPECT_EQ(volgorde, "1 3 50 99 ");
}

TEST(Koers, IntegerForm) {
    struct {
        double koers;
        int32_t geheel;
        int eenheid;
    } const rijen[] = {
        {0.5, 50000, 10},     {0.00543, 54300, 1000}, {12.34567, 1234567, 10},
        {12.3456, 123456, 1}, {1.0, 10000, 1},        {0.0, 0, 1},
        {-2.5, -25000, 1},    {0.00001, 1000, 10000}, {1e300, INT32_MAX, 1},
    };
    for (const auto& r : rijen) {
        int32_t geheel;
        uint16_t eenheid;
        koers_integer(r.koers, &geheel, &eenheid);
        EXPECT_EQ(geheel, r.geheel) << r.koers;
        EXPECT_EQ(eenheid, r.eenheid) << r.koers;
    }
}

TEST_F(Koersen, Conversion) {
    EXPECT_EQ(naar_thuis(1, "USD", 0.001), 1) << "a price never becomes nothing";
    EXPECT_EQ(naar_thuis(100, "JPY", 1.0), 10000);
    EXPECT_EQ(naar_thuis(10000, "USD", 0.9150), 9150);
    EXPECT_EQ(naar_thuis_factor(10000, "USD", 0.9150, 10850), 9928);
    EXPECT_EQ(naar_valuta(9928, "USD", 0.9150, 10850), 10000);
    EXPECT_EQ(naar_valuta(10000, "JPY", 1.0, 10000), 100);
    EXPECT_EQ(naar_thuis(10000, "USD", 0), naar_thuis(10000, "USD", koers_vandaag("USD"))) << "0: today's";
    EXPECT_EQ(naar_thuis(INT32_MAX, "USD", 1e9), INT32_MAX) << "kept within an amount";
    EXPECT_EQ(naar_valuta(100, "USD", 1.0, 0), 1) << "a factor of 0 from a file";
    EXPECT_EQ(naar_thuis(-250, "USD", 2.0), -500);
    valuta(3, "EUR", 0, "Euro zonder centen");
    valuta_vergeet();
    EXPECT_EQ(naar_thuis(10000, "USD", 1.0), 100);
    EXPECT_EQ(naar_valuta(100, "USD", 1.0, 10000), 10000);
}

TEST_F(Koersen, ShortestRate) {
    struct {
        const char* code;
        int32_t vreemd, thuis, factor;
        double koers;
    } const rijen[] = {
        {"USD", 10000, 9150, 10000, 0.915},
        {"USD", 1667, 2058, 10000, 1.2345}, // 1.2343 to 1.2348: the first digit that differs, halfway
        {"USD", 1, 3703, 300, 123430},      // 123416.67 to 123450: zeros up to the point, wherever that is
        {"USD", 1, 100000, 10000, 100000},  // 99999.5 to 100000.5: bounds of another length
        {"USD", 15, 1, 10000, 1 / 15.0},    // 0.1 is the upper bound: 1.5 would be 2
        {"JPY", 100, 7900, 10500, 0},
        {"USD", INT32_MAX - 1, INT32_MAX - 1, 30000, 0},
        {"USD", 0, 100, 10000, 1}, // nothing to divide by
        {"USD", 100, 0, 10000, 1},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(std::to_string(r.vreemd) + " " + std::to_string(r.thuis));
        const double koers = koers_vernauwen(r.code, r.vreemd, r.thuis, r.factor);
        if (r.koers != 0)
            EXPECT_DOUBLE_EQ(koers, r.koers);
        if (r.vreemd && r.thuis)
            EXPECT_EQ(naar_thuis_factor(r.vreemd, r.code, koers, r.factor), r.thuis) << koers;
    }
    std::mt19937 toeval(63);
    for (int i = 0; i < 20000; i++) {
        const char* code = i % 2 ? "USD" : "JPY";
        const auto vreemd = static_cast<int32_t>(1 + toeval() % (1U << toeval() % 31)),
                   thuis = static_cast<int32_t>(1 + toeval() % (1U << toeval() % 31));
        const double koers = koers_vernauwen(code, vreemd, thuis, 10500);
        ASSERT_EQ(naar_thuis_factor(vreemd, code, koers, 10500), thuis) << vreemd << " at " << koers;
    }
}

// Order discount on and off a stored net price; `terug` is what a price that was set anew is stored as.
TEST(Prijzen, orderkorting_erbij_en_eraf) {
    for (const auto& [opgeslagen, korting, netto, terug] : test::Rijen<int32_t, int, int32_t, int32_t>{
             {1000, 0, 1000, 1000},
             {1000, -250, 975, 1000},
             {100, -250, 98, 101},
             {1, -5000, 1, 2},
             {100, 1000, 110, 100},
             {999, -10000, 1, 1},
             {INT32_MAX, 10000, INT32_MAX - 1, 1073741823},
             {2000, -500, 1900, 2000},
             {2105, -500, 2000, 2105}, // 20.00 is stored as 21.05
             {625, -5016, 311, 624},   // 311.5 but for the last bit
             {100, 32767, 428, 100},
             {100, -32768, 1, 1},
         }) {
        const auto k = static_cast<int16_t>(korting);
        EXPECT_EQ(toeslag_erbij(opgeslagen, k), netto) << opgeslagen << " " << korting;
        EXPECT_EQ(toeslag_eraf(netto, k), terug) << opgeslagen << " " << korting;
    }
}

TEST_F(Koersen, purchase_row_in_its_context) {
    prijsrijen rijen{};
    up_zet_maat(&rijen, 1, 500, 10000);
    up_zet_maat(&rijen, 2, 500, PRIJS_ONBEKEND);
    up_zet_maat(&rijen, 95, -4, 0);
    up_zet_maat(&rijen, 40, 1, INT32_MAX - 1);
    EXPECT_EQ(rijen.bruto[95], 1);
    for (const auto& [code, koers, factor, inkoop1, inkoop40] :
         test::Rijen<const char*, double, int32_t, int32_t, int32_t>{
             {"USD", 0.915, 10850, 9928, 2131968077},
             {"USD", 2, 0, 20000, INT32_MAX - 1}, // never the mark
             {"USD", -2, 10000, 1, 1},            // bits of a damaged header
             {"USD", 214748.3647, INT32_MIN, 1, 1},
             {"USD", 214748.3647, INT32_MAX, INT32_MAX - 1, INT32_MAX - 1},
             {"ODD", 2, 10000, 20000, INT32_MAX - 1}, // seven decimals count as two
             {"JPY", 1, 10000, 1000000, INT32_MAX - 1},
             {"", 1, 10000, 10000, INT32_MAX - 1},
         }) {
        SCOPED_TRACE(code);
        up_valuta(code, koers, factor);
        up_inkoop_alle(&rijen);
        EXPECT_EQ(rijen.inkoop[1], inkoop1);
        EXPECT_EQ(rijen.inkoop[40], inkoop40);
        EXPECT_EQ(rijen.inkoop[2], PRIJS_ONBEKEND);
        EXPECT_EQ(rijen.inkoop[3], 0);
        EXPECT_EQ(rijen.inkoop[95],
                  std::clamp(naar_thuis_factor(1, code, koers, up_context.koersfactor), 1, INT32_MAX - 1));
    }
    // A rate of the day is looked up once, not for each price.
    up_valuta("USD", 0, 10000);
    EXPECT_DOUBLE_EQ(up_context.koers, koers_vandaag("USD"));
    const SYSCALLS echt = SYS;
    SYS.pread = [](int fd, void* buf, size_t n, off_t plaats) {
        ADD_FAILURE() << "a price reads the file";
        return pread(fd, buf, n, plaats);
    };
    up_inkoop_alle(&rijen);
    SYS = echt;
    EXPECT_EQ(rijen.inkoop[1], naar_thuis(10000, "USD", koers_vandaag("USD")));
}

TEST_F(Koersen, Texts) {
    EXPECT_EQ(koers_tekst("EUR", 1.5), "nvt");
    EXPECT_EQ(koers_tekst("", 1.5), "nvt");
    EXPECT_EQ(koers_tekst("USD", 1.25), "1.25000  ");
    EXPECT_EQ(koers_tekst("USD", 0.0079), "79.00000  (per 10000)");
    EXPECT_EQ(koers_tekst("USD", 0).substr(0, 17), "actuele koers -> ");
    EXPECT_EQ(bedrag_tekst("JPY", 1234), "1234");
    EXPECT_EQ(bedrag_tekst("USD", 1205), "12.05");
    EXPECT_EQ(bedrag_tekst("USD", -5), "-0.05");
    EXPECT_EQ(bedrag_tekst("", 922337203685477580), "9223372036854775.80");
}

} // namespace
} // namespace zg
