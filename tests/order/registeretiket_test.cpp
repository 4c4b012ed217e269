// The labels of a line: what quantities become of them and they of quantities; every write refused; damage.
#include "order/etiketloop.h"
#include "order/kop.h"
#include "order/register.h"
#include "sub/omserie.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"

namespace zg::test {
namespace {

constexpr seriesleutel A{110, 5, 1};

struct Regeletiketten : Systeem {
    orderregel regel;
    serrec serie{};
    Regeletiketten() {
        maak_filialen({1, 2, 3, 14, 20});
        kop = {};
        kop.leverancier = 117;
        kop.orderdatum = 42000;
        kop.ordernummer = 1000;
        kop.inkoopcode = 4;
        schrijf_bestand("DTETI.TXT", "");
        ioeti('O', nullptr, nullptr);
        serie.serie = A;
        serie.etiketsoort = 2;
        serie.etiketkop = -1;
        etiket l{};
        l.serie = A;
        int32_t nr, eerste = -1;
        const etiketketen in_hand(A, &eerste);
        ioeti('I', &nr, &l);
        serie.etiketkop = eerste;
        regel_wis(&regel);
        regel.model.maatsoort = 12;
        for (int maat : {3, 5, 17})
            up_zet_maat(&regel.prijzen, maat, 1000 + maat, 900 + maat);
        regel.prijzen.inkoop.fill(777);
        up_zet_advies(&regel.prijzen, 3, 1995);
    }
    ~Regeletiketten() override {
        ioeti('C', nullptr, nullptr);
        kop = {};
    }
    // Pieces as "term/branch/size x number", terms in their order.
    void zet(const char* stukken) {
        regel.termen.clear();
        aantalmatrix m;
        int tot = 0, was = 0, filiaal, maat, aantal, lengte;
        for (; sscanf(stukken, "%d/%d/%dx%d %n", &tot, &filiaal, &maat, &aantal, &lengte) == 4;
             stukken += lengte) {
            if (tot != was)
                fmclear(&m);
            was = tot;
            fmadd(&m, filiaal, maat, aantal);
            lt_schrijf(&regel.termen, static_cast<uint16_t>(tot - 10), static_cast<uint16_t>(tot), m);
        }
    }
    // "number:term/branch/size" of all labels.
    std::string keten() const {
        std::string uit;
        EXPECT_TRUE(etiketten_loop(serie, [&](int32_t nr, const etiket& l) {
            uit += std::to_string(nr) + ":" + (l.status == ETI_ORDER ? "" : "*") +
                   std::to_string(l.levering_tot) + "/" + std::to_string(l.filiaal) + "/" +
                   std::to_string(l.maat) + " ";
        }));
        return uit;
    }
    void vreemd(const std::function<void(etiket*)>& doe) { // another label into the chain
        etiket l{.status = ETI_ORDER,
                 .maat = 3,
                 .leverancier = 117,
                 .orderdatum = 42000,
                 .levering_tot = 100,
                 .ordernummer = 1000};
        doe(&l);
        int32_t nr = 0, eerste = serie.etiketkop;
        const etiketketen in_hand(A, &eerste);
        EXPECT_EQ(ioeti('W', &nr, &l), 1);
    }
};

int schrijvingen, lezingen;
ssize_t tel(int fd, const void* buf, size_t n, off_t plaats) {
    schrijvingen++;
    return echt(fd, buf, n, plaats);
}

TEST_F(Regeletiketten, WhatBecomesOfQuantities) {
    for (const auto& [wat, stukken, labels] : Rijen<const char*, const char*, const char*>{
             {"made, in the order of the sizes", "100/0/5x1 100/0/3x2 100/1/3x1",
              "1:100/0/3 2:100/0/3 3:100/1/3 4:100/0/5 "},
             {"as it was", "100/0/5x1 100/0/3x2 100/1/3x1", "1:100/0/3 2:100/0/3 3:100/1/3 4:100/0/5 "},
             {"moved to the branch that has more", "100/0/5x1 100/0/3x1 100/1/3x1 100/4/3x1",
              "1:100/0/3 2:100/4/3 3:100/1/3 4:100/0/5 "},
             {"lowered, the last ones go", "100/0/5x1 100/4/3x1", "2:100/4/3 4:100/0/5 "},
             {"raised, and a term: places are used again", "100/0/5x2 100/4/3x1 120/2/17x2",
              "1:100/0/5 2:100/4/3 3:120/2/17 4:100/0/5 5:120/2/17 "},
             {"a size is no other size", "100/0/5x2 100/4/17x1 120/2/17x2",
              "1:100/0/5 2:100/4/17 3:120/2/17 4:100/0/5 5:120/2/17 "},
             {"from term to term", "100/0/5x1 120/0/5x1 120/2/17x2",
              "1:100/0/5 2:120/0/5 3:120/2/17 5:120/2/17 "},
             {"a term that is gone", "120/0/5x1 120/2/17x2", "2:120/0/5 3:120/2/17 5:120/2/17 "},
             {"eleven pieces", "120/0/5x1 120/2/17x2 130/0/3x8",
              "1:130/0/3 2:120/0/5 3:120/2/17 4:130/0/3 5:120/2/17 6:130/0/3 7:130/0/3 8:130/0/3 9:130/0/3 "
              "10:130/0/3 11:130/0/3 "},
         }) {
        zet(stukken);
        const levtermen termen = regel.termen;
        EXPECT_TRUE(labels_passen(regel, serie)) << wat;
        EXPECT_TRUE(labels_bij(&regel, &serie)) << wat;
        EXPECT_EQ(keten(), labels) << wat;
        // Saved again nothing is written; read back the line has the same terms, also where runs repeat.
        const std::string eti = lees_bestand("DTETI.TXT");
        echt = SYS.pwrite;
        SYS.pwrite = tel;
        schrijvingen = 0;
        EXPECT_TRUE(labels_bij(&regel, &serie)) << wat;
        SYS.pwrite = echt;
        EXPECT_EQ(schrijvingen, 0) << wat;
        etiket koers;
        regel.serie = serie;
        EXPECT_TRUE(labels_lees(&regel, &koers));
        EXPECT_EQ(regel.termen, termen) << wat;
        EXPECT_EQ(regel.op_bestand, serie.in_nota) << wat;
        EXPECT_EQ(matrix_totalen(regel.nota_aantallen)[0], serie.in_nota);
        EXPECT_EQ(koers.status * 100000 + koers.netto, 100000 + (koers.maat + 900)) << wat;
    }
    zet("100/0/3x1 130/0/3x1");
    regel.termen[0].van = 80;
    EXPECT_TRUE(labels_bij(&regel, &serie));
    zet("120/0/3x1");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    EXPECT_EQ(serie.levering_van * 1000 + serie.levering_tot, 80'130) << "bounds only widen";
    int32_t nr = 1;
    etiket l;
    ioeti('R', &nr, &l);
    EXPECT_EQ(l.inkoop * 10 + l.inkoopcode, 7774);
    EXPECT_EQ(l.prijs * 1000 + l.netto, 1'995'903);
    EXPECT_EQ(l.maatsoort * 1000 + l.locatie, 12'255) << "receiving locations aren't in use";
    EXPECT_EQ(l.etiketsoort * 1000 + l.levering_van, 110) << "the block's kind stays";
}

// The sums of a series are read once, and again behind a change that the counts in its record don't tell.
TEST_F(Regeletiketten, SumsHoldUntilALabelChanges) {
    labelsom som;
    auto stuks = [&] {
        static ssize_t (*echt)(int, void*, size_t, off_t);
        echt = SYS.pread;
        SYS.pread = [](int fd, void* buf, size_t n, off_t p) { return lezingen++, echt(fd, buf, n, p); };
        lezingen = 0;
        EXPECT_TRUE(labels_som(serie, &som));
        SYS.pread = echt;
        return som.besteld[3] * 1000 + som.besteld[5];
    };
    zet("100/0/3x999");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    EXPECT_EQ(stuks(), 999'000);
    EXPECT_EQ(stuks(), 999'000);
    EXPECT_EQ(lezingen, 1) << "the label that tells the rate";
    zet("100/0/3x998 100/0/5x1");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    EXPECT_EQ(stuks(), 998'001) << "this program's own change";
    etiket l = som.koers;
    l.inkoop = 555;
    int32_t nr = 1;
    ioeti('W', &nr, &l);
    stuks();
    EXPECT_EQ(som.koers.inkoop, 555) << "a change of prices in another program";
    vreemd([](etiket* e) { e->status = ETI_VOORRAAD; });
    serie.voorraad++;
    EXPECT_EQ(stuks(), 999'001) << "labels added in another program";
    kop.ordernummer = 1001;
    EXPECT_EQ(stuks(), 0) << "another order";
}

TEST_F(Regeletiketten, OthersStay) {
    zet("100/0/3x2");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    const std::function<void(etiket*)> anderen[] = {
        [](etiket* l) { l->ordernummer = 1001; },
        [](etiket* l) { l->ordernummer = 0; },
        [](etiket* l) { l->orderdatum++; },
        [](etiket* l) { l->leverancier++; },
        [](etiket* l) { l->status = ETI_VOORRAAD, l->levering_tot = 200; },
        [](etiket* l) { l->status = ETI_VERKOCHT; },
        [](etiket* l) { l->maat = 0, l->orderdatum = 1; },
    };
    for (const auto& doe : anderen)
        vreemd(doe);
    const std::string vreemde = keten().substr(keten().find("3:"));
    etiket koers;
    regel.serie = serie;
    EXPECT_TRUE(labels_lees(&regel, &koers));
    EXPECT_EQ(matrix_totalen(regel.nota_aantallen)[0], 2);
    EXPECT_EQ(matrix_totalen(regel.order_aantallen)[0], 4) << "delivered ones were ordered, too";
    zet("");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    EXPECT_EQ(keten(), vreemde);
    EXPECT_EQ(serie.in_nota * 100 + serie.voorraad * 10 + serie.verkopen, 511)
        << "counted, whatever stood there";
    EXPECT_TRUE(labels_lees(&regel, &koers));
    EXPECT_EQ(koers.levering_tot, 200) << "none on order: the one with the highest term";
    kop.ordernummer = 0; // number 0 is nobody's
    EXPECT_TRUE(labels_lees(&regel, &koers));
    EXPECT_EQ(matrix_totalen(regel.order_aantallen)[0] + koers.status, 0);
    kop.ordernummer = 1000;
    zet("100/1/3x3");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    regel.serie = serie;
    int over = 0;
    EXPECT_TRUE(label_wis(&regel, &over));
    EXPECT_EQ(over * 10 + regel.serie.in_nota, 75);
    EXPECT_EQ(keten(), vreemde);
    // A term's dates: this order's, nothing else in the label.
    zet("100/1/3x1");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    EXPECT_TRUE(levering_verzet(regel, 100, 130, 140));
    EXPECT_EQ(keten(), "1:140/1/3 " + vreemde);
}

TEST_F(Regeletiketten, ReceivingLocation) {
    dtart = nieuw_paar("DTART", {"art,304", "1,NODUPS,I,1,4"}, 2);
    for (const artrec& groep : {artrec{.artikelgroep = 110, .magazijn = 14},
                                {.artikelgroep = 111, .magazijn = 255},
                                {.artikelgroep = 112, .magazijn = 77}}) // no such branch
        schrijf(dtart, groep);
    const struct {
        int edi, locatie, groep, label;
    } rijen[] = {{0, 20, 110, 255}, {1, 20, 110, 255}, {2, 20, 110, 20}, {3, 0, 110, 0},
                 {3, 251, 110, 14}, {3, 251, 111, 1},  {3, 251, 112, 1}, {3, 251, 999, 1}};
    for (const auto& r : rijen) {
        firma.vlaggen = 4;
        kop.edi_soort = static_cast<uint8_t>(r.edi);
        kop.ontvangstlocatie = static_cast<uint8_t>(r.locatie);
        EXPECT_EQ(label_locatie(r.groep), r.label) << r.edi << " " << r.locatie << " " << r.groep;
        firma.vlaggen = 0;
        EXPECT_EQ(label_locatie(r.groep), 255);
    }
    IXCLOSE(dtart);
    dtart = nullptr;
}

// Refused at any write the labels are as they were, and it is told once; behind a kill the other order's stands.
TEST_F(Regeletiketten, EveryWriteRefusedOrTheLast) {
    zet("100/0/3x4 100/1/5x4");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    vreemd([](etiket* l) { l->ordernummer = 1001; });
    EXPECT_TRUE(labels_bij(&regel, &serie)); // which counts it
    const std::string was = keten();
    zet("100/2/3x2 100/1/5x2 120/0/17x9"); // moved, deleted, made in a new block
    bij_elke_schrijf(
        {"DTETI.TXT", "DTSYS.TXT"}, 1,
        [&] {
            open();
            ioeti_heropen();
            const serrec oud = serie;
            return labels_bij(&regel, &serie) ? 2 : memcmp(&oud, &serie, sizeof oud) ? 8 : 1;
        },
        [&](const Storing& st) {
            ioeti_heropen();
            EXPECT_TRUE(bevat(keten(), " 9:100/0/3 "));
            if (st.klaar || st.dood)
                return;
            EXPECT_EQ(std::count(st.uitvoer.begin(), st.uitvoer.end(), '\n'), 1) << st.uitvoer;
            EXPECT_EQ(st.status, 1);
            EXPECT_EQ(keten(), was);
        });
}

TEST_F(Regeletiketten, RefusedBeforeAnythingIsWritten) {
    zet("100/0/3x2");
    EXPECT_TRUE(labels_bij(&regel, &serie));
    const std::string eti = lees_bestand("DTETI.TXT");
    regel.prijzen.inkoop[5] = 214748364;
    zet("100/0/3x2 100/0/5x1");
    EXPECT_FALSE(labels_passen(regel, serie)) << "an amount";
    regel.prijzen.inkoop[5] = 214748363;
    EXPECT_TRUE(labels_passen(regel, serie));
    instel15.etiketcijfers = 6;
    zet("100/0/3x1000000");
    EXPECT_FALSE(labels_passen(regel, serie)) << "more pieces than there are numbers";
    // A label of this order with a branch that there isn't: the line can't be read, and isn't written over.
    vreemd([](etiket* l) { l->filiaal = 5; });
    const std::string stuk = lees_bestand("DTETI.TXT");
    etiket koers;
    regel.serie = serie;
    int over;
    EXPECT_FALSE(labels_lees(&regel, &koers));
    EXPECT_STREQ(ioeti_schade().reden, "maat of filiaal bestaat niet");
    EXPECT_FALSE(labels_passen(regel, serie) || labels_bij(&regel, &serie) || label_wis(&regel, &over));
    EXPECT_EQ(lees_bestand("DTETI.TXT"), stuk);
}

} // namespace
} // namespace zg::test
