// A buyer's lines in the full registration, and the labels on file behind them: quantities, terms, the header's code and
// location, deletion, a damaged chain.
#include "e2e/loop.h"
#include "shared/ioeti.h"

using namespace zg::test;

namespace {

// A supplier without orders; the data directory between two runs of the program.
struct Etiketmap : DemoMap {
    Etiketmap() : DemoMap("data/demo", "--empty-register") {}
    zg::etiket label(int nummer) const {
        const zg::etiblok b = alle<zg::etiblok>("DTETI.TXT").at(static_cast<size_t>(nummer - 1) / 10);
        zg::etiket uit;
        zg::eti_uit(b.plaats[(nummer - 1) % 10], b.serie, 0, &uit);
        return uit;
    }
    // All labels of the file by number: what `toon` makes of each; those that are free as "-".
    template <class F> std::string labels(F toon) const {
        std::string uit;
        for (int nr = 1; nr <= 10 * std::ssize(alle<zg::etiblok>("DTETI.TXT")); nr++)
            uit += (label(nr).status ? toon(label(nr)) : "-") + " ";
        return uit;
    }
    // Status when it isn't on order, size, branch, days of the term behind the order.
    std::string cellen() const {
        return labels([](const zg::etiket& l) {
            return (l.status == 1 ? "" : std::to_string(l.status) + "*") + std::to_string(l.maat) + "/" +
                   std::to_string(l.filiaal) + "+" + std::to_string(l.levering_tot - l.orderdatum);
        });
    }
    void zet_label(int nummer, const zg::etiket& l) const {
        const auto blok = static_cast<size_t>(nummer - 1) / 10;
        zg::etiblok b = alle<zg::etiblok>("DTETI.TXT").at(blok);
        EXPECT_TRUE(zg::eti_pak(l, nullptr, b.plaats[(nummer - 1) % 10]));
        zet(*this, "DTETI.TXT", blok * sizeof b, b);
    }
    zg::serrec serie(int nr = 0) const { return alle<zg::serrec>("DTSER.TXT").at(static_cast<size_t>(nr)); }
    size_t leven(const char* naam, size_t reclen) const { // live records of a pair
        const std::string txt = lees_bestand(bestand(naam));
        size_t n = 0;
        for (size_t p = 0; p < txt.size(); p += reclen)
            n += zg::IXRECLIVE(&txt[p], static_cast<int>(reclen)) ? 1 : 0;
        return n;
    }
};

struct Buyer : Programma {
    explicit Buyer(const Etiketmap& map) : Programma(overgave(map), demo_opties(map)) {}
    void nieuwe_order() { t.toetsen("<Enter><Enter>99<Enter><Enter><Esc><Esc>", "Uw keuze _  Toevoegen"); }
    // 18 pieces of five sizes at the first branch, by the end of March.
    void nieuwe_regel(const char* kleur, const char* dan = "Uw keuze _  T") {
        t.toetsen("TBROU<Enter>nieuw<Enter>1120<Enter><Enter><Enter>Let op<Esc><Esc>", " DESSIN ");
        t.toetsen(std::string("Katoen<Enter>Streep<Enter>") + kleur +
                      "<Enter>Streeptrui<Enter><Enter>2ook<Esc>M<Enter><Enter><Esc><Enter>",
                  "alle maten van deze maatsoort");
        t.toetsen("<Down>S<Enter><Enter>20<Enter><Enter><Esc>", "Levertermijn");
        t.toetsen("010316<Enter>310316<Enter>3<Enter><Enter>4<Enter><Enter><Enter><Esc>", dan);
    }
};

TEST(Etiket, QuantitiesTermsAndHeader) {
    Etiketmap map;
    {
        Buyer p(map);
        p.nieuwe_order();
        p.nieuwe_regel("14");
        p.uit("<Esc><Esc>");
    }
    EXPECT_EQ(map.cellen(), "1/0+30 1/0+30 1/0+30 2/0+30 2/0+30 2/0+30 3/0+30 3/0+30 3/0+30 3/0+30 "
                            "4/0+30 4/0+30 4/0+30 4/0+30 5/0+30 5/0+30 5/0+30 5/0+30 - - ");
    const zg::etiket l = map.label(1);
    EXPECT_EQ(l.inkoop * 10 + l.inkoopcode, 20000);
    EXPECT_EQ(l.prijs * 10000 + l.netto, 60502000);
    EXPECT_EQ(l.leverancier * 10000 + l.ordernummer, 991000);
    EXPECT_EQ(l.maatsoort * 1000 + l.locatie, 1255);
    EXPECT_EQ(map.serie().in_nota, 18);
    met_locatie(map);
    // Others in the chain: one of another order on that day, one that has come in.
    zg::etiket ander = l, binnen = l;
    ander.ordernummer = 77;
    binnen.status = zg::ETI_VOORRAAD;
    map.zet_label(19, ander);
    map.zet_label(20, binnen);
    zg::etiket met_de_hand = l; // a price by hand stays with its piece
    met_de_hand.met_de_hand = 1;
    map.zet_label(1, met_de_hand);
    {
        Buyer p(map);
        p.eerste_order(99);
        const auto voor = map.inhoud();
        p.t.toetsen("WA<Esc>", "Uw keuze _  T"); // looked at
        EXPECT_EQ(lees_bestand(map.bestand("DTETI.TXT")), voor.at("DTETI.TXT"));
        p.t.toetsen("WAF1<Enter>2<Enter><Down>"); // the first branch 1 and 2, what is over away
        p.t.toetsen("<Esc>");
        p.t.toetsen("D010416<Enter>300416<Enter>A<Esc>", "Uw keuze _  T"); // a term with the same pieces
        EXPECT_EQ(map.cellen().substr(0, 70),
                  "1/0+30 1/0+60 2/0+60 2/0+30 2/0+30 2/0+60 3/0+30 3/0+30 3/0+30 3/0+30 ")
            << p.t.scherm();
        p.t.toetsen("WAL020316<Enter>100416<Enter><Esc>", "Uw keuze _  T"); // new dates for the first term
        EXPECT_EQ(map.cellen().substr(0, 20), "1/0+40 1/0+60 2/0+60") << p.t.scherm();
        EXPECT_EQ(map.cellen().find("+30"), map.cellen().rfind("+30") - 9) << "those of the others";
        p.t.toetsen("WOI2<Enter>N2");
        p.t.toetsen("14<Enter><Esc>", "Uw keuze _  T");
        p.uit("<Esc><Esc>");
    }
    const std::string wie = map.labels([](const zg::etiket& e) {
        return std::to_string(e.status) + ":" + std::to_string(e.inkoopcode) + ":" +
               std::to_string(e.locatie);
    });
    std::string verwacht;
    for (int nr = 1; nr <= 40; nr++)
        verwacht += nr == 19 ? "1:2:255 " : nr == 20 ? "2:2:255 " : map.label(nr).status ? "1:2:14 " : "- ";
    EXPECT_EQ(wie, verwacht) << "the code goes to all of that day, the location to the order's own";
    EXPECT_EQ(map.serie().in_nota * 10 + map.serie().voorraad, 311) << map.cellen();
    EXPECT_EQ(lees_bestand(map.bestand("DTORDNR.TXT"))[39], 14);
    EXPECT_EQ(map.label(1).met_de_hand, 1);
    { // deleted: what has come in stays, without the number; the other order's label has its own
        Buyer p(map);
        p.eerste_order(99);
        p.t.toetsen("VJ<Enter>", "Uw keuze _  Toevoegen");
        p.uit("<Esc><Esc>");
    }
    EXPECT_EQ(map.labels([](const zg::etiket& e) {
        return std::to_string(e.status) + ":" + std::to_string(e.ordernummer);
    }),
              "- - - - - - - - - - - - - - - - - - 1:77 2:0 - - - - - - - - - - - - - - - - - - - - ");
    EXPECT_EQ(map.leven("DTORDNR.TXT", 48) * 10 + map.leven("DTSER.TXT", 200), 1U);
    EXPECT_EQ(map.serie().in_nota * 10 + map.serie().voorraad, 11);
}

TEST(Etiket, SeriesDeletedAndItsPlacesUsedAgain) {
    Etiketmap map;
    Buyer p(map);
    p.nieuwe_order();
    p.nieuwe_regel("14");
    const std::string eti = lees_bestand(map.bestand("DTETI.TXT"));
    EXPECT_EQ(map.leven("DTEAN.TXT", 28), 6U) << "five sizes and the lock";
    p.t.toetsen("VJ<Enter>", "Serie ook verwijderen");
    p.t.toetsen("J<Enter>", "Serie heeft geen etiketten");
    p.t.toetsen("J<Enter>", "Uw keuze _  Toevoegen");
    EXPECT_EQ(map.leven("DTSER.TXT", 200) + map.leven("DTIPA.TXT", 40), 0U);
    EXPECT_EQ(map.leven("DTEAN.TXT", 28), 1U);
    EXPECT_EQ(map.cellen(), "- - - - - - - - - - - - - - - - - - - - ");
    p.nieuwe_regel("20");
    EXPECT_EQ(lees_bestand(map.bestand("DTETI.TXT")).size(), eti.size());
    EXPECT_EQ(lees_bestand(map.bestand("DTSER.TXT")).size(), 200U);
    EXPECT_EQ(map.serie().etiketkop, 1) << "the block freed last";
    p.t.toetsen("VJ<Enter>N<Enter>", "Uw keuze _  Toevoegen"); // this one keeps its series
    EXPECT_EQ(map.serie().in_nota, 0);
    p.uit("<Esc><Esc>");
}

// What there is no room for is said before anything of the line is written.
TEST(Etiket, RefusedBeforeAnythingIsWritten) {
    // systeem: places of DTSYS.TXT
    for (const auto& [systeem, melding] : Rijen<std::vector<std::pair<size_t, std::string>>, const char*>{
             {{{14 * 64 + 6, "\6"}, {3 * 64, std::string("\x9F\x86\1\0\x9F\x86\1\0", 8)}},
              "Geen ruimte voor 18 nieuwe etiketten"},
             {{{13 * 64, std::string("\xFC\xE0\xF5\5", 4)}}, "EAN"}, // three codes left
         }) {
        SCOPED_TRACE(melding);
        Etiketmap map;
        std::string sys = lees_bestand(map.bestand("DTSYS.TXT"));
        for (const auto& [plaats, bytes] : systeem)
            sys.replace(plaats, bytes.size(), bytes);
        schrijf_bestand(map.bestand("DTSYS.TXT"), sys);
        if (systeem.size() == 2) { // as full as it gets
            EXPECT_EQ(truncate(map.bestand("DTETI.TXT").c_str(), 99'999 * 376), 0);
        }
        Buyer p(map);
        p.nieuwe_order();
        const auto voor = map.inhoud();
        p.nieuwe_regel("14", melding);
        p.t.toetsen("<Enter>", "Uw keuze _  Toevoegen");
        // The number was noted before it was reserved; the codes' lock and the queue of numbers are as they were.
        std::string anders;
        for (const auto& [naam, inhoud] : map.inhoud())
            if (naam.starts_with("DT") && (!voor.contains(naam) || voor.at(naam) != inhoud))
                anders += naam + " ";
        EXPECT_EQ(anders, "");
        p.uit("<Esc><Esc>");
        EXPECT_EQ(lees_bestand(map.bestand("2016Z/ORD0099.JRN")), "");
    }
}

TEST(Etiket, DamagedChain) {
    Etiketmap map;
    {
        Buyer p(map);
        p.nieuwe_order();
        p.nieuwe_regel("14");
        p.nieuwe_regel("20");
        p.uit("<Esc><Esc>");
    }
    std::string eti = lees_bestand(map.bestand("DTETI.TXT"));
    eti[offsetof(zg::etiblok, volgende)] = 3; // into the chain of the other line
    schrijf_bestand(map.bestand("DTETI.TXT"), eti);
    Buyer p(map);
    p.leverancier(99);
    p.t.wacht("</> voor nieuwe order");
    p.t.toetsen("<Enter>", "DTETI.TXT: serie 1120.14.1, blok 3");
    p.t.wacht("Etiket niet van 1120.14.1");
    p.t.toetsen("<Enter>");
    EXPECT_TRUE(p.t.wacht("Uw keuze _  T")) << "told once\n" << p.t.scherm();
    EXPECT_EQ(lees_bestand(map.bestand("DTETI.TXT")), eti);
    p.t.toetsen("<Down>WAF1<Enter><Esc><Esc>", "Uw keuze _  T"); // the other one works
    EXPECT_EQ(map.serie(1).in_nota, 16);
    p.t.toetsen("WOI2<Enter><Esc>", "Etiket niet van 1120.14.1"); // so does the header, but for that line
    p.t.toetsen("<Enter>", "De etiketten van deze orderregels zijn niet gewijzigd:");
    p.t.wacht("1: 1120.14.1");
    p.t.toetsen("<Enter>", "Uw keuze _  T");
    EXPECT_EQ(map.label(1).inkoopcode * 10 + map.label(21).inkoopcode, 2);
    p.uit("<Esc><Esc>");

    // A series whose record leads to no chain has no pieces, and gets one with its first.
    std::string ser = lees_bestand(map.bestand("DTSER.TXT"));
    ser.replace(200 + offsetof(zg::serrec, etiketkop), 4, "\xFF\xFF\xFF\xFF");
    ser.replace(200 + offsetof(zg::serrec, in_nota), 4, 4, '\0'); // with the counts, as a deletion leaves it
    schrijf_bestand(map.bestand("DTSER.TXT"), ser);
    Buyer q(map);
    q.leverancier(99);
    q.t.wacht("</> voor nieuwe order");
    q.t.toetsen("<Enter><Enter><Down>WA", "Levertermijn");
    q.t.toetsen("010316<Enter>310316<Enter>3<Enter><Enter>4<Enter><Enter><Enter><Esc>", "Uw keuze _  T");
    EXPECT_EQ(map.serie(1).etiketkop * 100 + map.serie(1).in_nota, 418) << q.t.scherm();
    q.uit("<Esc><Esc>");
}

} // namespace
