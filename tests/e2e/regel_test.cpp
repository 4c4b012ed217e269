// Lines on an order as a buyer makes them: from nothing, duplicated, changed; the keys, and the bytes of the journal
// then.
#include "e2e/storingsmap.h"
#include "order/ioord.h"
#include "shared/maatbalk.h"

using namespace zg::test;
using zg::VASTIN;

namespace {

// A line as the journal holds it.
struct Lijn {
    zg::ordmodel m{};
    zg::orddessin d{};
    std::string modeltekst, dessintekst;
    int32_t bruto = 0, netto = 0; // of each size
    std::string termen;

    std::string model() const { return record('M', m) + tekst(3, modeltekst); }
    std::string dessin() const {
        std::string uit = record('D', d) + tekst(4, dessintekst);
        for (int maat = 1; maat <= 95; maat++)
            if (d.maten[maat / 8] >> maat % 8 & 1)
                uit += rec_maat(maat, bruto, netto);
        return uit + termen;
    }
    // One gross price and one advice price for these sizes.
    void prijs(int32_t per_stuk, int32_t advies, std::initializer_list<uint8_t> maten) {
        bruto = netto = per_stuk;
        memset(d.maten, 0, sizeof d.maten);
        memset(d.adviesblok, 0, sizeof d.adviesblok);
        for (uint8_t maat : maten) {
            d.maten[maat / 8] = static_cast<uint8_t>(d.maten[maat / 8] | 1 << maat % 8);
            d.adviesblok[0] = maat;
        }
        memcpy(d.adviesblok + 8, &advies, sizeof advies);
    }
};

// A term with pieces of the sizes from 1 on, in the first branch.
std::string termijn(int van, int tot, std::initializer_list<int32_t> aantallen) {
    std::string uit = rec_term(van, tot);
    int maat = 0;
    for (int32_t n : aantallen)
        uit += rec_cel(0, ++maat, n);
    return uit;
}

// A journal without the moments at which its lines were added.
std::string zonder_tijd(std::string jrn) {
    for (size_t p = 0; p < jrn.size(); p += 1 + static_cast<size_t>(zg::ord_lengte(jrn[p])))
        if (jrn[p] == 'D')
            memset(&jrn[p + 1 + offsetof(zg::orddessin, tijdstempel)], 0, 2);
    return jrn;
}

// The journal with one record for another, wherever it stands.
template <class R> std::string met(std::string jrn, char tag, const R& oud, const R& nieuw) {
    const std::string van = record(tag, oud), naar = record(tag, nieuw);
    for (size_t p = 0; (p = jrn.find(van, p)) != std::string::npos; p += naar.size())
        jrn.replace(p, van.size(), naar);
    return jrn;
}

zg::ordmaat prijs(uint8_t maat, int32_t bruto, int32_t netto) {
    return {maat, {}, bruto, netto};
}

} // namespace

// On the demo data: a line field by field, the same in another colour, under another name, in another size type.
TEST(Regel, VanNietsEnGedupliceerd) {
    DemoMap map;
    const std::string jrn = map.bestand("2016Z/ORD0011.JRN"), voor = lees_bestand(jrn);
    Programma p(overgave(map), demo_opties(map));
    p.eerste_order(11);
    p.t.toetsen("T", " MODEL ");
    p.t.toetsen("BROU<Enter>", 7, 22, "101   Brouwer");
    p.t.toetsen("nieuw<Enter>1120<Enter><Enter><Enter>Let op<Esc><Esc>", " DESSIN ");
    EXPECT_TRUE(p.t.wacht_op(11, 22, "D     Dames")) << "the brand's\n" << p.t.scherm();
    p.t.toetsen(
        "Katoen<Enter>Streep<Enter>14<Enter>Streeptrui<Enter><Enter>2ook<Esc>M<Enter>49,95<Enter><Esc>",
        "alle maten van deze maatsoort");
    p.t.toetsen("<Down>S<Enter><Enter>20<Enter>");
    EXPECT_TRUE(p.t.wacht_op(19, 16, "60.50___")) << "two and a half times, with VAT\n" << p.t.scherm();
    p.t.toetsen("<Enter><Esc>", "Levertermijn");
    p.t.toetsen("010316<Enter>310316<Enter>3<Enter><Enter>4<Enter><Enter><Enter>");
    p.t.toetsen("D010416<Enter>300416<Enter>A<Esc>"); // a second term with the same pieces
    EXPECT_TRUE(
        p.t.wacht_op(9, 2, "BROU NIEUW           Katoen       Streep           1120  14 D    36     720.00"))
        << p.t.scherm();
    p.t.toetsen("D<Enter>20<Enter><Esc><Esc>A<Esc>"); // joins the model, quantities too
    p.t.toetsen(
        "D<Enter><Enter>Mander<Enter><Esc>P<Enter>25<Enter><Enter><Enter><Esc><Esc>N<Esc>"); // another name, no quantities
    p.t.toetsen("D<Enter><Enter>S2<Enter><Esc>", " Damesmaten "); // another size type
    p.t.toetsen("S<Enter><Enter>30<Enter><Enter><Esc><Enter><Enter>1<Enter><Esc><Esc>", 4, 58, "5");
    p.uit("<Esc><Esc>"); // the menu is next

    Lijn l;
    l.m.merk = 101;
    VASTIN(l.m.model, "NIEUW");
    l.m.maatsoort = l.m.etiketsoort = 1;
    l.m.artikelgroep = 1120;
    l.modeltekst = "Let op", l.dessintekst = "ook";
    VASTIN(l.d.dessin, "Streep");
    VASTIN(l.d.materiaal, "Katoen");
    VASTIN(l.d.omschrijving, "Streeptrui");
    l.d.kleur = 14;
    l.d.doelgroep = 'D';
    l.d.regtype = 1;
    l.d.consprijs = 4995;
    l.prijs(2000, 6050, {1, 2, 3, 4, 5});
    const uint16_t maart = WERKDATUM, april = WERKDATUM + 31;
    l.termen = termijn(maart, maart + 30, {3, 3, 4, 4, 4}) + termijn(april, april + 29, {3, 3, 4, 4, 4});
    std::string verwacht = voor + l.model() + l.dessin();
    l.d.kleur = 20;
    verwacht += l.dessin();
    VASTIN(l.m.model, "ANDER");
    l.termen = "";
    l.prijs(2500, 6050, {1, 2, 3, 4, 5}); // what it is sold for is as it was
    verwacht += l.model() + l.dessin();
    l.m.maatsoort = 2;
    l.prijs(3000, 9075, {1, 2, 3, 4, 5, 6, 7, 8});
    l.termen = termijn(maart, maart + 30, {1}); // the dates of the first line of this run
    verwacht += l.model() + l.dessin();
    EXPECT_TRUE(zonder_tijd(lees_bestand(jrn)) == verwacht);
}

// F6 gives up a new line wherever it is asked, ESC leaves nothing out that a line can't do without; the cursor's line
// is whole afterwards, and a change of it brings nothing of what was given up.
TEST(Regel, NieuweOpgegeven) {
    const std::string voor = maak_order(maak_kop("Mijn"), {{5, "A", "D1"}, {5, "A", "D2"}});
    Orderscherm p(voor);
    p.t.toetsen("T");
    EXPECT_TRUE(p.t.wacht_op(7, 22, "5     Vijf Sterren")) << "that of the line above\n" << p.t.scherm();
    p.t.toetsen("<Esc><Esc>", 25, 1, "Ingave verplicht");
    EXPECT_EQ(p.t.cursor_rij(), 8) << "the name\n" << p.t.scherm();
    p.t.toetsen("X<Enter><Esc>");
    EXPECT_EQ(p.t.cursor_rij(), 9) << "the group\n" << p.t.scherm();
    p.t.toetsen("0<Enter>");
    EXPECT_EQ(p.t.cursor_rij(), 9) << "0 is none\n" << p.t.scherm();
    p.t.toetsen("<Back>10001<Enter>");
    EXPECT_TRUE(p.t.wacht_op(11, 22, "1     Maten")) << "the group's\n" << p.t.scherm();
    p.t.toetsen("S9<Enter>J<Enter>Nieuw<Enter>A<Enter><Esc><Esc>");
    EXPECT_TRUE(p.t.wacht_op(11, 22, "9     Nieuw")) << "made, and taken\n" << p.t.scherm();
    p.t.toetsen("S1<Enter>OTekst<Esc><Esc>", " DESSIN ");
    EXPECT_EQ(p.t.cursor_rij(), 9) << "the colour\n" << p.t.scherm();
    p.t.toetsen("2<Enter>MKATOEN<Enter>C9<Enter><Esc>");
    p.t.toetsen("<F6>J<Enter>", 4, 58, "2");
    // At the bars, the toggles and their question; at a date, in a cell, at the choices.
    for (const char* tot : {"", "SN", "S", "S<Enter><Enter>33<Enter><Esc><Esc>",
                            "S<Enter><Enter>33<Enter><Esc><Esc><Enter><Enter>3",
                            "S<Enter><Enter>33<Enter><Esc><Esc><Enter><Enter>3<Enter><Esc>"}) {
        SCOPED_TRACE(tot);
        p.t.toetsen("T<Esc><Esc>X<Enter><Esc>10001<Enter><Esc><Esc><Esc>2<Enter><Esc>");
        p.t.wacht("alle maten van deze maatsoort");
        p.t.toetsen(std::string(tot) + "<F6><Enter><F6>J<Enter>", 24, 1, "Uw keuze _  Toevoegen");
        EXPECT_EQ(p.t.stuk(4, 58, 1), "2") << p.t.scherm();
    }
    p.uit("WDDANDERS<Enter><Esc><Esc>");
    zg::orddessin oud{}, nieuw{};
    memcpy(&oud, &voor[voor.find("DD1") + 1], sizeof oud);
    nieuw = oud;
    VASTIN(nieuw.dessin, "ANDERS");
    EXPECT_TRUE(p.journaal() == met(voor, 'D', oud, nieuw));
    EXPECT_EQ(p.restjes(), "");
}

// One change of the second line of a model, and what the journal holds then.
TEST(Regel, Gewijzigd) {
    zg::ordkop kop = maak_kop("Mijn");
    kop.korting = -1000;
    const std::string begin = maak_order(kop, {{5, "A", "D1"}, {5, "A", "D2", 2}, {5, "B", "D3"}});
    zg::ordmodel a{}, b{};
    zg::orddessin d2{}, ander{};
    memcpy(&a, &begin[begin.find("M\5") + 1], sizeof a);
    memcpy(&d2, &begin[begin.find("DD2") + 1], sizeof d2);
    const zg::ordmaat s = prijs(1, 1000, 1000);
    const std::string lijn = record('D', d2) + record('S', s);
    auto met_lijn = [&](const std::string& jrn, const std::string& nieuw) {
        std::string uit = jrn;
        return uit.replace(uit.find(lijn), lijn.size(), nieuw);
    };
    b = a, ander = d2;
    VASTIN(b.model, "NAAM");
    ander.maten[0] = 6;
    zg::orddessin zonder = d2, minder = d2,
                  meer = ander; // another set of sizes packs the advice prices: the least
    minder.adviesblok[0] = 1, meer.adviesblok[0] = 2;
    minder.adviesblok[8] = meer.adviesblok[8] = 1;
    zonder.kleur = 1, zonder.consprijs = 1250;
    const std::string los = met_lijn(begin, record('D', ander) + record('S', s)),
                      kaal = met_lijn(begin, record('D', d2) + record('S', prijs(1, 0, 0)));
    std::string verdwaald = begin; // pieces of a size that has no prices
    verdwaald[begin.find(lijn) + lijn.size() + sizeof(zg::ordlevt) + 1 + 2] = 2;
    const std::string twee =
        met_lijn(begin, record('D', ander) + record('S', s) + record('S', prijs(2, 900, 900)));
    struct {
        const char *wat, *toetsen, *gezegd;
        std::string voor, na;
        const char* daarna = "<Esc>";
    } const rijen[] = {
        {"a name holds for all lines of the model", "WMMnaam<Enter><Esc>", "", begin, met(begin, 'M', a, b)},
        {"another size system than the sizes of the lines", "WMR6<Enter><Esc>", "ander maatstelsel", begin,
         begin},
        {"the size system of its brand", "WMR<F5><F10>W182<Enter>", "Orderregels met maten", begin, begin,
         "<Esc><Esc><Esc><Esc><Esc>"},
        {"and of its supplier", "WLW25172<Enter>", "Orderregels met maten", begin, begin, "<Esc><Esc><Esc>"},
        {"colour and price to the consumer", "WDK1<Enter>C12,50<Enter><Esc>", "", begin,
         met_lijn(begin, record('D', zonder) + record('S', s))},
        {"a price keeps its discount", "WPP<Enter>20<Enter><Enter><Enter><Esc><Esc>", "",
         met_lijn(begin, record('D', d2) + record('S', prijs(1, 1000, 800))),
         met_lijn(begin, record('D', d2) + record('S', prijs(1, 2000, 1600)))},
        {"a price that was nothing has none", "WPP<Enter>20<Enter><Enter><Enter><Esc><Esc>", "", kaal,
         met_lijn(begin, record('D', d2) + record('S', prijs(1, 2000, 2222)))},
        {"a new size has its neighbour's price", "WPMN<Enter><Right>J<Esc><Enter><Esc>", "", begin,
         met_lijn(begin, record('D', meer) + record('S', s) + record('S', prijs(2, 1000, 1000)))},
        {"a size that went has none", "WPMN<Enter><Right>N<Esc><Enter><Esc>", "", twee,
         met_lijn(begin, record('D', minder) + record('S', s))},
        {"a size with quantities stays", "WPMN<Enter>N<Esc><Enter><Esc>", "", twee, twee},
        {"sizes are those with prices", "WM", "Maten niet correct!", los, begin, "<Enter><Esc><Esc>"},
        {"and those with quantities", "WM", "Maten niet correct!", verdwaald,
         met_lijn(verdwaald, record('D', ander) + record('S', s) + record('S', prijs(2, 0, 0))),
         "<Enter><Esc><Esc>"},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        Orderscherm p(r.voor);
        p.t.toetsen("<Down>");
        p.t.reeks(r.toetsen);
        if (r.gezegd[0])
            p.t.wacht(r.gezegd);
        p.uit(r.daarna);
        EXPECT_TRUE(zonder_tijd(p.journaal()) == zonder_tijd(r.na));
    }
}

// The bar of the last line goes with the program; it is the size table's memory, and that is closed behind it.
TEST(Regel, BalkWegAanHetEinde) {
    Datamap map;
    map.journaal(maak_order(maak_kop("Basis"), {Regel{}}));
    const auto t = met_storing(
        map, map.overgave(), [] {}, [] { return zg::maatbalk ? 1 : 0; });
    t->wacht_op(1, 46, "2016");
    t->toetsen("<Enter><Enter>12<Enter><Enter>", 24, 1, "Uw keuze");
    t->toetsen("<Esc>");
    t->stuur("\033");
    EXPECT_EQ(t->einde(), 0) << t->scherm();
}
