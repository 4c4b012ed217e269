// Prices in the register: an order's discount and a line's prices in sets and labels, each at its own rate, split around
// other dates; broken off or refused anywhere they are all old or all new, and never taken twice.
#include "bouw.h"
#include "order/etiketloop.h"
#include "order/kop.h"
#include "order/prijswerk.h"
#include "order/register.h"
#include "price/ing_val.h"
#include "store/rebuild.h"
#include "sub/omserie.h"
#include "support/roepstoring.h"
#include "support/systeem.h"
#include "term/datum.h"

namespace zg::test {
namespace {

constexpr uint16_t DATUM = 42500, LEV = 12;
constexpr int32_t NUMMER = 1000;

// Two lines of an order, colours 1 and 2, each with a set of two groups and labels.
struct Registerprijs : InOrderMap {
    explicit Registerprijs(const char* valuta = "GBP") { bouw(valuta); }
    ~Registerprijs() override {
        registermodus = false;
        register_sluit();
        instel15 = {};
        firma = {};
        valuta_vergeet();
    }
    static seriesleutel serie(int kleur) { return {0, static_cast<uint16_t>(kleur), 0}; }

    void bouw(const char* valuta) {
        int32_t nr = 0;
        for (const char* code : {"EUR", "GBP", "JPY"}) {
            valutarec v{};
            VASTIN(v.code, code);
            v.decimalen = code[0] == 'J' ? 0 : 2;
            Systeem::zet(++nr, v, SYS_VALUTA);
        }
        valuta_vergeet();
        for (const char* naam : {"DTEAN", "DTIPA", "DTORDNR", "DTSER"})
            DDNEW(DDNUMMER(naam), naam);
        schrijf_bestand("DTETI.TXT", "");
        schrijf_bestand("DTIPG.TXT", "");
        registermodus = true;
        register_open();
        std::string order =
            bytes(Order{DATUM, "", "", {{1, "m", {maak_regel(1), maak_regel(2)}}}, 4, 0, NUMMER});
        memcpy(order.data() + 1 + offsetof(ordkop, valuta), valuta, 3);
        zet("JRN", order);
        for (int kleur : {1, 2}) {
            schrijf(dtser, serrec{.serie = serie(kleur), .etiketkop = -1, .nummer = 2000 + kleur});
            prijsset p{
                .serie = serie(kleur), .setnr = LEV, .tot = PRIJS_TOT, .koersfactor = 10000, .groep = -1};
            memcpy(p.valuta, valuta, 3);
            EXPECT_TRUE(ioink_write(&p, {{{1 << 3}, 1200, 1000}, {{1 << 4 | 1 << 5}, 13000, 12000}}));
        }
    }
    static void label(int kleur, int maat, int32_t inkoop, const std::function<void(etiket*)>& doe = {}) {
        etiket l{.serie = serie(kleur),
                 .status = ETI_ORDER,
                 .maat = static_cast<uint8_t>(maat),
                 .leverancier = LEV,
                 .orderdatum = DATUM,
                 .inkoop = inkoop,
                 .prijs = 2995,
                 .netto = 1000,
                 .ordernummer = NUMMER,
                 .locatie = 255};
        if (doe)
            doe(&l);
        serrec s;
        ASSERT_TRUE(serie_neem(l.serie, &s));
        int32_t nr = 0, eerste = s.etiketkop;
        {
            const etiketketen keten(s.serie, &eerste);
            EXPECT_EQ(ioeti('W', &nr, &l), 1);
        }
        s.etiketkop = eerste;
        EXPECT_TRUE(serie_schrijf(s));
        serie_los();
    }
    // The sets of a series, "van-tot:net/net", and the purchase values of its labels.
    static std::string stand(int kleur) {
        std::string uit;
        prijsset p{.serie = serie(kleur), .setnr = LEV};
        prijsgroepen g;
        for (char letter = 'F'; ioink_move(letter, &p, 4, 1); letter = 'N') {
            EXPECT_EQ(ioink_read(&p, &g), Prijsset::gelezen);
            uit += std::to_string(p.van) + "-" + std::to_string(p.tot) + ":";
            for (const prijsgroep& groep : g)
                uit += std::to_string(groep.netto) + "/";
            uit += " ";
        }
        serrec s;
        EXPECT_TRUE(serie_lees(serie(kleur), &s));
        EXPECT_TRUE(
            etiketten_loop(s, [&](int32_t, const etiket& l) { uit += std::to_string(l.inkoop) + " "; }));
        return uit;
    }
    static int16_t korting_in(const char* ext) {
        int16_t uit = 0;
        const std::string alles = inhoud(ext);
        if (alles.size() > sizeof(ordkop))
            memcpy(&uit, alles.data() + 1 + offsetof(ordkop, korting), sizeof uit);
        return uit;
    }
    // As the header does: its discount becomes another.
    static bool korting(int16_t nieuw) {
        ord_eerste_order(werk);
        const int16_t was = kop.korting;
        kop.korting = nieuw;
        return order_korting(was);
    }
};

TEST_F(Registerprijs, DiscountByCurrency) {
    const struct {
        const char* valuta;
        std::vector<std::array<int32_t, 3>> labels; // size, purchase value before and after 5 %
    } rijen[] = {
        {"EUR", {{3, 1020, 969}, {4, 12240, 11628}, {7, 55, 55}}}, // surcharge 1.02; no such size
        {"GBP",
         {{3, 1411, 1340}, {3, 1180, 1121}, {5, 14160, 13452}, {4, 0, 0}}}, // two rates in a size; no value
        {"JPY", {{3, 823, 782}, {4, 9876, 9382}}},
    };
    for (const auto& r : rijen) {
        register_sluit();
        for (const char* naam : {"DTEAN", "DTIPA", "DTORDNR", "DTSER"})
            IXREMOVE(naam);
        for (int32_t nr : {4, 9}) {
            char leeg[64];
            iotab('D', &nr, leeg, SYS_RECORD);
        }
        bouw(r.valuta);
        std::string eerst, straks;
        for (const auto& [maat, was, wordt] : r.labels) {
            label(1, maat, was);
            eerst += std::to_string(was) + " ";
            straks += std::to_string(wordt) + " ";
        }
        ASSERT_TRUE(kies(0));
        EXPECT_TRUE(korting(-500)) << r.valuta;
        EXPECT_EQ(stand(1), "0-65534:950/11400/ " + straks) << r.valuta;
        EXPECT_EQ(stand(2), "0-65534:950/11400/ ");
        EXPECT_EQ(korting_in("WRK"), -500);
        sluit();
        EXPECT_EQ(scratch(), "");
        EXPECT_EQ(IOEXISTS(pad("PRS").c_str()), 0);
    }
}

TEST_F(Registerprijs, WhichLabelsAndWhichDays) {
    label(1, 3, 1180);
    label(1, 3, 1180, [](etiket* l) { l->status = ETI_VOORRAAD; });
    label(1, 3, 1180, [](etiket* l) { l->ordernummer = 77; });
    label(1, 3, 1180, [](etiket* l) { l->leverancier = 13; });
    label(1, 3, 1180, [](etiket* l) { l->orderdatum = DATUM - 10; });
    label(1, 3, 1180, [](etiket* l) { l->orderdatum = DATUM - 30; });
    label(1, 3, 1180, [](etiket* l) { l->orderdatum = DATUM + 20; });
    label(2, 3, 1180, [](etiket* l) { l->orderdatum = DATUM + 1; });
    ASSERT_TRUE(kies(0));
    EXPECT_TRUE(korting(-500));
    EXPECT_EQ(stand(1), "0-42499:1000/12000/ 42500-42519:950/11400/ 42520-65534:1000/12000/ "
                        "1121 1121 1121 1180 1180 1180 1180 ");
    EXPECT_EQ(stand(2), "0-42500:950/11400/ 42501-65534:1000/12000/ 1180 ");
    EXPECT_TRUE(sluit());
}

TEST_F(Registerprijs, Refused) {
    label(1, 3, 1180);
    ASSERT_TRUE(kies(0));
    const std::string eerst = stand(1) + stand(2) + inhoud("WRK");
    label(2, 3, ETIBEDRAG_MAX - 10);
    EXPECT_TRUE(bevat(gezegd_door([] { EXPECT_FALSE(korting(100)); }), "bedrag te groot"))
        << "in the second line";
    EXPECT_EQ(stand(1) + stand(2).substr(0, 20) + inhoud("WRK"),
              eerst.substr(0, stand(1).size() + 20) + inhoud("WRK"));
    // Lines without their set, or with a damaged one, are named and stay; the others go on.
    EXPECT_TRUE(ioink_delete({.serie = serie(2), .setnr = LEV, .tot = PRIJS_TOT}));
    EXPECT_TRUE(bevat(gezegd_door([] { EXPECT_TRUE(korting(-500)); }), "2: 0.2.0"));
    EXPECT_EQ(stand(1), "0-65534:950/11400/ 1121 ");
    EXPECT_TRUE(sluit());
}

// A note of before: what others have changed since stays, and is named; a damaged one does nothing.
TEST_F(Registerprijs, WhatIsAnothersStays) {
    for (int i = 0; i < 3; i++)
        label(1, 3, 1180);
    label(2, 3, 1180);
    prijswerk noot{LEV, DATUM, NUMMER, -500, {}};
    for (int kleur : {1, 2}) {
        // the number is that of the first
        prijsserie p{.serie = serie(kleur), .nummer = 2001, .regel = kleur, .stond = true, .zet = true};
        EXPECT_EQ(ioink_find(p.serie, LEV, DATUM, &p.was, &p.groepen_was), Prijsset::gelezen);
        p.wordt = p.was;
        p.groepen = p.groepen_was;
        p.groepen[0].netto = 950;
        p.groepen_was[0].netto = kleur == 1 ? 999 : 1000;
        const prijsstand was = {1180, 2995}, anders = {1179, 2995}, wordt = {1121, 2995};
        p.etiketten = {{1, 3, was, wordt},
                       {2, 3, anders, wordt},
                       {3, 4, was, wordt},
                       {11, 3, was, wordt},
                       {999, 3, was, wordt}};
        noot.series.push_back(p);
    }
    const std::string oud = stand(1) + stand(2);
    wrk_namen();
    ASSERT_TRUE(prijswerk_noteer(noot));
    const std::string heel = inhoud("PRS");
    testing::internal::CaptureStderr();
    for (size_t n = 0; n < heel.size(); n += 7) { // cut, and one bit another
        std::string stuk = heel;
        stuk[n] = static_cast<char>(stuk[n] ^ 4);
        zet("PRS", n % 2 ? stuk : heel.substr(0, n));
        EXPECT_TRUE(prijswerk_afmaken());
        EXPECT_EQ(IOEXISTS(pad("PRS").c_str()), 0);
    }
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(stand(1) + stand(2), oud);
    zet("PRS", heel);
    EXPECT_TRUE(bevat(gezegd_door([] { EXPECT_TRUE(prijswerk_afmaken()); }), "1: 0.1.0, 2: 0.2.0"));
    EXPECT_EQ(stand(1) + stand(2), "0-65534:1000/12000/ 1121 1180 1180 0-65534:1000/12000/ 1180 ");
}

// A line in somebody's hand is waited for, and one whose holder dies goes on.
TEST_F(Registerprijs, WaitsForALockedLine) {
    label(2, 3, 1180);
    auto opnieuw = [] {
        Systeem::open();
        register_sluit();
        register_open();
    };
    Agent houder([&] {
        opnieuw();
        serrec s;
        return serie_neem(serie(2), &s);
    });
    ASSERT_TRUE(houder.ok());
    Agent order([&](const std::string&) {
        opnieuw();
        const bool goed = kies(0) && korting(-500);
        return std::string(goed && sluit() ? "done" : "refused");
    });
    EXPECT_EQ(order.vraag("discount"), Agent::geen_antwoord);
    EXPECT_EQ(stand(1), "0-65534:1000/12000/ ") << "nothing before all is read";
    houder.dood();
    EXPECT_EQ(order.antwoord(60'000), "done");
    EXPECT_EQ(stand(2), "0-65534:950/11400/ 1121 ");
    EXPECT_EQ(korting_in("JRN"), -500);
}

// A series that is being deleted has lost its set before its record: no reader calls that damage.
TEST_F(Registerprijs, AReaderBesideADeletion) {
    serrec s;
    ASSERT_TRUE(serie_neem(serie(2), &s));
    maat_aan(s.maten, 3);
    EXPECT_TRUE(serie_schrijf(s));
    serie_los();
    EXPECT_TRUE(ioink_deleteall(serie(2)));
    ASSERT_TRUE(kies(0));
    auto lees = [] {
        orderregel regel;
        EXPECT_TRUE(regel_lees(regel_op(2), &regel));
        EXPECT_EQ(serie_laad(&regel, false, false), Serie::gelezen);
    };
    {
        Agent houder([] {
            Systeem::open();
            register_sluit();
            register_open();
            serrec rec;
            return serie_neem(serie(2), &rec);
        });
        ASSERT_TRUE(houder.ok());
        EXPECT_EQ(gezegd_door(lees), "");
    }
    EXPECT_TRUE(bevat(gezegd_door(lees), "prijsset niet aanwezig"));
    EXPECT_TRUE(sluit());
}

// `doe` with its n-th call of the system the last one, or refused; then the supplier is chosen again. Sets and labels are
// as before or as they are to be, also where it was told that nothing changed or that all did.
void elke_storing(const std::function<bool()>& doe, const std::string& oud, const std::string& nieuw,
                  const std::function<bool()>& in_journaal) {
    register_sluit();
    std::map<std::string, std::string> bestanden;
    for (const char* naam :
         {"DTEAN.TXT", "DTEAN.INX", "DTIPA.TXT", "DTIPA.INX", "DTORDNR.TXT", "DTORDNR.INX", "DTSER.TXT",
          "DTSER.INX", "DTETI.TXT", "DTIPG.TXT", "DTSYS.TXT", "2016Z/ORD0012.JRN"})
        bestanden[naam] = lees_bestand(naam);
    for (const Storing soort : {Storing::Dood, Storing::Vol})
        for (int n = 1, klaar = 0; !klaar; n++) {
            SCOPED_TRACE(std::string(soort == Storing::Dood ? "killed at " : "refused at ") +
                         std::to_string(n));
            ASSERT_LT(n, 2000);
            for (const auto& [naam, wat] : bestanden)
                schrijf_bestand(naam.c_str(), wat);
            const int status = in_kind([&] {
                Systeem::open();
                register_open();
                if (!kies(0))
                    return 5;
                stoor(n, soort);
                const bool goed = doe();
                const bool over = !gestoord();
                SYS = roep_echt;
                serie_los();
                if (soort == Storing::Vol)
                    sluit();
                return over ? 9 : goed ? 1 : 0;
            });
            klaar = status == 9;
            EXPECT_NE(status, 5);
            for (const char* naam : {"DTIPA", "DTSER", "DTORDNR"})
                if (IXCHECK(naam) < 0)
                    IXBLDIX(naam);
            Systeem::open();
            register_open();
            herstart();
            journaal = ord_open_jrn(seizoensmap.c_str(), gekozen_leverancier, O_RDWR);
            wrk_namen();
            EXPECT_TRUE(prijswerk_afmaken());
            EXPECT_TRUE(prijswerk_afmaken()) << "once";
            ord_sluit(journaal);
            journaal = nullptr;
            const std::string nu = Registerprijs::stand(1) + Registerprijs::stand(2);
            const bool alles = nu == nieuw;
            if (!alles)
                EXPECT_EQ(nu, oud);
            if (in_journaal) {
                EXPECT_EQ(in_journaal(), alles);
                EXPECT_FALSE(alles && status == 0) << "told that nothing changed";
            }
            if (status == 1 || status == 9)
                EXPECT_TRUE(alles);
            EXPECT_EQ(IOEXISTS(pad("PRS").c_str()) + IOEXISTS(pad("PRN").c_str()), 0);
            register_sluit();
        }
    register_open();
}

TEST_F(Registerprijs, DiscountBrokenOff) {
    label(1, 3, 1180);
    label(1, 4, 14160);
    label(1, 3, 1180, [](etiket* l) { l->orderdatum = DATUM + 20; });
    label(2, 5, 14160);
    elke_storing([] { return korting(-500); }, stand(1) + stand(2),
                 "0-42519:950/11400/ 42520-65534:1000/12000/ 1121 13452 1180 0-65534:950/11400/ 13452 ",
                 [] { return korting_in("JRN") == -500; });
}

// Another net price and advice price of size 3; size 5 isn't the line's.
bool lijnprijzen() {
    orderregel regel;
    if (!regel_lees(regel_op(1), &regel) || !serie_neem(regel_serie(regel), &regel.serie))
        return false;
    memset(regel.dessin.maten, 0, MAATBYTES);
    memcpy(regel.aankoop.valuta, "GBP", 4);
    regel.prijzen = {};
    for (int maat : {3, 4}) {
        maat_aan(regel.dessin.maten, maat);
        up_zet_maat(&regel.prijzen, maat, maat == 3 ? 1200 : 13000, maat == 3 ? 1000 : 12000);
        up_zet_advies(&regel.prijzen, maat, 3195);
    }
    const prijsrijen oud = regel.prijzen;
    up_zet(&regel.prijzen.netto, 3, 1100);
    kop.toeslag = 0;
    return prijzen_kunnen(regel, oud) && prijzen_bij(regel, &oud);
}

// Labels of one series for it, and a bar of six sizes.
struct Lijnprijs : Registerprijs {
    Lijnprijs() {
        maak_maatsoort(2, "", {"1", "2", "3", "4", "5", "6"});
        dtmaat = IXOPEN("DTMAAT", 2);
        balk_open(1, 2, nullptr);
        label(1, 3, 1180);
        label(1, 3, 2360, [](etiket* l) { l->met_de_hand = 1; });
        label(1, 4, 14160, [](etiket* l) { l->status = ETI_VERKOCHT; });
        label(1, 3, 1180, [](etiket* l) { l->orderdatum = DATUM + 20; });
    }
    ~Lijnprijs() override {
        balk_sluit();
        IXCLOSE(dtmaat);
        dtmaat = nullptr;
    }
};

TEST_F(Lijnprijs, SetsAndLabels) {
    ASSERT_TRUE(kies(0));
    EXPECT_TRUE(lijnprijzen());
    serie_los();
    EXPECT_EQ(stand(1), "0-42519:1100/12000/ 42520-65534:1000/12000/ 1298 2596 14160 1180 ");
    serrec s;
    std::string prijzen;
    ASSERT_TRUE(serie_lees(serie(1), &s));
    etiketten_loop(s, [&](int32_t, const etiket& l) { prijzen += std::to_string(l.prijs) + " "; });
    EXPECT_EQ(prijzen, "3195 2995 2995 2995 ") << "not by hand, not sold, not of another day";
    // A day without a set gets one of its own, a supplier without any one for all days.
    prijsset nu{};
    prijsgroepen g;
    EXPECT_EQ(ioink_find(serie(1), LEV, DATUM, &nu, &g), Prijsset::gelezen);
    EXPECT_TRUE(ioink_delete(nu));
    EXPECT_TRUE(lijnprijzen());
    serie_los();
    EXPECT_EQ(stand(1).substr(0, 40), "42500-42500:1100/12000/ 42520-65534:1000");
    EXPECT_TRUE(ioink_deleteall(serie(1)));
    EXPECT_TRUE(lijnprijzen());
    serie_los();
    EXPECT_EQ(stand(1).substr(0, 24), std::to_string(DATUMNR("01011980")) + "-65534:1100/12000/ ");
    EXPECT_TRUE(sluit());
}

TEST_F(Lijnprijs, BrokenOff) {
    elke_storing(lijnprijzen, stand(1) + stand(2),
                 "0-42519:1100/12000/ 42520-65534:1000/12000/ 1298 2596 14160 1180 " + stand(2), {});
}

} // namespace
} // namespace zg::test
