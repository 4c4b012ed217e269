// Labels: a place's words, chains of blocks, the free ones; every write refused or the last one; damaged chains.
#include "shared/etikeur.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"

namespace zg::test {
namespace {

constexpr seriesleutel A{110, 5, 1}, B{110, 5, 2}, C{4711, 1, 30};

etiket order_label(const seriesleutel& serie, int maat) {
    const int32_t prijs = 100 + maat;
    return {.serie = serie,
            .status = ETI_ORDER,
            .maat = static_cast<uint8_t>(maat),
            .inkoop = prijs,
            .prijs = prijs,
            .netto = prijs,
            .ordernummer = 1000};
}

std::string hex(const uint8_t* bytes) {
    return test::hex({reinterpret_cast<const char*>(bytes), ETIPLAATS});
}

struct Etiketten : Systeem {
    int32_t a = -1, b = -1, c = -1;
    Etiketten() {
        firma.filialen = 5;
        schrijf_bestand("DTETI.TXT", "");
        ioeti('O', nullptr, nullptr);
    }
    ~Etiketten() override { ioeti('C', nullptr, nullptr); }
    int32_t* kop(const seriesleutel& s) { return zelfde_serie(s, A) ? &a : zelfde_serie(s, B) ? &b : &c; }

    // Labels of sizes van..tot behind each other; how many were written.
    int maak(const seriesleutel& s, int van, int tot) {
        const etiketketen keten(s, kop(s));
        int gelukt = 0;
        for (int maat = van; maat <= tot; maat++) {
            etiket l = order_label(s, maat);
            int32_t nr = 0;
            gelukt += ioeti('W', &nr, &l);
        }
        return gelukt;
    }
    // "number:size ..." along the chain, "!" and the reason when it is damaged.
    std::string keten(const seriesleutel& s) {
        const etiketketen in_hand(s, kop(s));
        std::string uit;
        etiket l;
        int32_t nr = *kop(s);
        int er = nr < 0 ? 0 : ioeti('F', &nr, &l);
        for (; er > 0; er = ioeti('N', &nr, &l))
            uit += std::to_string(nr) + ":" + std::to_string(l.maat) + " ";
        return er < 0 ? uit + "!" + ioeti_schade().reden : uit;
    }
    void wis(const seriesleutel& s, int32_t weg) {
        const etiketketen in_hand(s, kop(s));
        etiket l;
        int32_t nr = *kop(s);
        for (int er = ioeti('F', &nr, &l); er > 0 && nr != weg; er = ioeti('N', &nr, &l))
            ;
        EXPECT_EQ(ioeti('D', &nr, &l), 0);
    }
    static sysetiket tellers() {
        sysetiket t;
        int32_t nr = 4;
        iotab('R', &nr, &t, SYS_RECORD);
        return t;
    }
    static void zet_tellers(int32_t vrijkop, int32_t hoogste) {
        sysetiket t = tellers();
        t.vrijkop = vrijkop;
        t.hoogste = hoogste;
        zet(4, t, SYS_RECORD);
    }
    static etiblok blok(int32_t nr) {
        etiblok uit{};
        const std::string bytes = lees_bestand("DTETI.TXT");
        if (bytes.size() >= static_cast<size_t>(nr + 1) * sizeof uit)
            memcpy(&uit, bytes.data() + static_cast<size_t>(nr) * sizeof uit, sizeof uit);
        return uit;
    }
    static void zet_blok(int32_t nr, const std::function<void(etiblok*)>& doe) {
        etiblok nieuw = blok(nr);
        doe(&nieuw);
        wijzig_bestand("DTETI.TXT", static_cast<size_t>(nr) * sizeof nieuw,
                       {reinterpret_cast<char*>(&nieuw), sizeof nieuw});
        ioeti_heropen();
    }
    // The operators' check: blocks that nobody has are counted, all else is named.
    std::string keur(bool herstel = false) {
        etikeuring k;
        etitelling t;
        std::string uit;
        const keurmelding meld = [&](const std::string& regel) {
            if (regel.find("in no chain") == std::string::npos)
                uit += regel + "; ";
        };
        EXPECT_TRUE(etikeur_begin(&k));
        for (const seriesleutel& s : {A, B, C}) {
            etikeur_serie(&k, serrec{.serie = s, .etiketkop = *kop(s)}, &t, meld);
        }
        etikeur_einde(&k, meld);
        if (herstel)
            EXPECT_TRUE(etikeur_herstel(&k, meld));
        verloren = k.verloren;
        return uit;
    }
    int64_t verloren = 0;
};

TEST_F(Etiketten, WordsOfAPlace) {
    const etiket besteld{A, ETI_ORDER, 0,  5, 2, 117, 42000, 42050, 42100, 0,    0, 2999, 5995, 3250,
                         0, 0,         12, 3, 0, 0,   0,     0,     0,     1000, 3, 1,    {}};
    const etiket verkocht{{},     ETI_VERKOCHT, 0,   95,        249,  65535,   1,   0,  42000,
                          42001,  210,          1,   214748363, -250, 2,       9,   99, 9,
                          483647, 70000,        147, 0,         0,    9999999, 255, 0,  {}};
    etiket terug;
    const std::pair<etiket, const char*> rijen[] = {
        {besteld, "29750000 2EEA0000 F57E0000 00000000 00000000 00020204 750010A4 74A442A4 E8030000 "},
        {verkocht, "13000000 F7FFFF7F 3FF6FFFF FFFFFF7F 70110100 7F25F900 FFFF0100 10A411A4 7F0BC47D "},
    };
    uint8_t bytes[ETIPLAATS];
    for (const auto& [label, verwacht] : rijen) {
        ASSERT_TRUE(eti_pak(label, nullptr, bytes));
        EXPECT_EQ(hex(bytes), verwacht);
        eti_uit(bytes, label.serie, 0, &terug);
        EXPECT_EQ(memcmp(&terug, &label, sizeof label), 0) << verwacht;
    }
    // Whatever a place holds: written back unchanged it is the same, and another field doesn't touch the rest.
    for (int begin = 0; begin < 256; begin += 5)
        for (uint8_t status = 1; status <= 4; status++) {
            uint8_t oud[ETIPLAATS], weer[ETIPLAATS];
            for (int i = 0; i < ETIPLAATS; i++)
                oud[i] = static_cast<uint8_t>(begin * 7 + i * i * 31);
            int32_t woord2;
            memcpy(&woord2, oud + 8, 4);
            woord2 = woord2 / 100 * 10 + status - (woord2 < 0 ? 10 : 0);
            memcpy(oud + 8, &woord2, 4);
            ASSERT_EQ(eti_status(oud), status);
            eti_uit(oud, A, 0, &terug);
            ASSERT_TRUE(eti_pak(terug, oud, weer)) << begin;
            ASSERT_EQ(hex(oud), hex(weer));
            terug.inkoop = 77;
            terug.inkoopcode = 7;
            ASSERT_TRUE(eti_pak(terug, oud, weer));
            EXPECT_EQ(hex(weer), "09030000 " + hex(oud).substr(9));
        }
    const std::function<void(etiket*)> te_groot[] = {
        [](etiket* l) { l->inkoop = 214748364; }, [](etiket* l) { l->prijs = INT32_MAX; },
        [](etiket* l) { l->netto = INT32_MIN; },  [](etiket* l) { l->met_de_hand = 3; },
        [](etiket* l) { l->maat = 96; },          [](etiket* l) { l->maatsoort = 100; },
        [](etiket* l) { l->inkoopcode = 10; },    [](etiket* l) { l->ordernummer = 10000000; },
        [](etiket* l) { l->locatie = 255; },      [](etiket* l) { l->status = 5; },
    };
    for (const auto& doe : te_groot) {
        etiket l = besteld;
        doe(&l);
        EXPECT_FALSE(eti_pak(l, nullptr, bytes)) << &doe - te_groot;
    }
}

TEST_F(Etiketten, VatAndMarks) {
    firma.btw[0] = 210;
    maak(A, 1, 1);
    int32_t nr = 1;
    etiket l;
    ASSERT_EQ(ioeti('R', &nr, &l), 1);
    EXPECT_EQ(l.btw, 210) << "no article groups: code 1";
    EXPECT_EQ(l.locatie, 255);
    // A label in stock keeps its mark when marks aren't ours; where they are, record 20 must have a number.
    zet_blok(0, [](etiblok* blk) { blk->plaats[0][8]++, blk->plaats[0][23] = 8; });
    ioeti_keten(&A, &a);
    ASSERT_EQ(ioeti('R', &nr, &l), 1);
    EXPECT_EQ(l.status * 100 + l.merk_aan * 10 + l.merk, 217);
    l.inkoopcode = 4;
    l.merk_aan = 0;
    EXPECT_EQ(ioeti('W', &nr, &l), 1);
    EXPECT_EQ(blok(0).plaats[0][23], 8);
    l.merk_aan = 1;
    ioeti_merktoets();
    setenv("ZEB_INTERN", "1", 1);
    ioeti_heropen();
    verwacht_stop([] { ioeti_merktoets(); }, "ioeti: errno=5");
    zet(20, sysgetal{7, {}}, SYS_RECORD);
    ioeti_heropen();
    ioeti_merktoets();
    l.merk = 9;
    EXPECT_EQ(ioeti('W', &nr, &l), 1);
    EXPECT_EQ(blok(0).plaats[0][23], 10);
    unsetenv("ZEB_INTERN");
    ioeti_keten(nullptr, nullptr);
}

TEST_F(Etiketten, ChainsAndNumbers) {
    EXPECT_EQ(maak(A, 1, 10) + maak(B, 1, 1) + maak(A, 11, 11), 12);
    EXPECT_EQ(keten(A), "1:1 2:2 3:3 4:4 5:5 6:6 7:7 8:8 9:9 10:10 21:11 ");
    EXPECT_EQ(keten(B), "11:1 ");
    EXPECT_EQ(blok(0).volgende, 2);
    EXPECT_EQ(lees_bestand("DTETI.TXT").size(), 3U * 376);
    for (int32_t weg : {1, 3})
        wis(A, weg);
    wis(B, 11);
    EXPECT_EQ(keten(B), "");
    EXPECT_EQ(maak(A, 21, 23), 3);
    EXPECT_EQ(keten(A), "1:21 2:2 3:22 4:4 5:5 6:6 7:7 8:8 9:9 10:10 21:11 22:23 ")
        << "places are used again";
    // The last one freed is the first used; an emptied block stays in its chain until that is freed.
    EXPECT_TRUE(ioeti_vrij(A, &a));
    EXPECT_EQ(a, -1);
    EXPECT_EQ(ioeti_ruimte(10), 999'997 + 2);
    EXPECT_EQ(tellers().vrijkop * 100 + tellers().hoogste * 10 + tellers().vrij, 232);
    EXPECT_EQ(maak(C, 1, 21), 21);
    EXPECT_EQ(c, 2);
    EXPECT_EQ(blok(2).volgende * 10 + blok(0).volgende, 3) << "2, 0, then the file grows";
    EXPECT_EQ(tellers().vrijkop * 100 + tellers().hoogste * 10 + tellers().vrij, 440);
    EXPECT_EQ(keur(), "");
    // What another put into a block since is kept: a walk's step writes nothing back.
    maak(A, 1, 2);
    etiket l;
    ioeti_keten(&A, &a);
    int32_t nr = a;
    for (int er = ioeti('F', &nr, &l); er > 0;)
        er = ioeti('N', &nr, &l);
    EXPECT_TRUE(in_proces([&] { return maak(A, 50, 50) - 1; }).status == 0);
    l.inkoopcode = 5;
    EXPECT_EQ(ioeti('W', &nr, &l), 1);
    echt = SYS.pwrite;
    over = 0;
    doodgaan = false;
    SYS.pwrite = stoor;
    EXPECT_EQ(ioeti('W', &nr, &l), 1) << "what stands so isn't written";
    SYS.pwrite = echt;
    EXPECT_EQ(maak(A, 51, 51), 1);
    EXPECT_EQ(keten(A), "41:1 42:2 43:50 44:51 ");
    // What is written ahead of a walk is met as it was written.
    maak(B, 1, 40);
    ioeti_keten(&B, &b);
    nr = b;
    ioeti('F', &nr, &l);
    for (int i = 1; i < 25; i++)
        ioeti('N', &nr, &l);
    etiket ander = l;
    ander.maat = 95;
    int32_t verder = nr + 10;
    EXPECT_EQ(ioeti('W', &verder, &ander), 1);
    while (nr != verder && ioeti('N', &nr, &l) > 0)
        ;
    EXPECT_EQ(l.maat, 95);
    ioeti_keten(nullptr, nullptr);
}

TEST_F(Etiketten, FullFile) {
    instel15.etiketcijfers = 6;
    schrijf_bestand("DTETI.TXT", "");
    ASSERT_EQ(truncate("DTETI.TXT", 99'999 * 376), 0);
    zet_tellers(99'999, 99'999);
    EXPECT_EQ(ioeti_ruimte(1), 1);
    EXPECT_EQ(maak(A, 1, 10), 9) << "number 1000000 has seven digits";
    EXPECT_EQ(keten(A).substr(0, 17), "999991:1 999992:2");
    const std::string was = lees_bestand("DTSYS.TXT");
    EXPECT_EQ(maak(B, 1, 1), 0);
    EXPECT_EQ(b, -1);
    EXPECT_EQ(lees_bestand("DTSYS.TXT"), was);
    etiket l;
    for (int32_t nr : {0, -5, 1'000'000, 1'000'001, 999'998 + 2})
        EXPECT_EQ(ioeti('R', &nr, &l) * 10 + l.status, 0) << nr;
    verwacht_stop(
        [] {
            etiket nieuw = order_label(A, 1);
            int32_t nr = 1'000'001;
            ioeti('W', &nr, &nieuw);
        },
        "r=100000 -> Ongeldige etiketketting");
    ioeti_keten(&A, &a);
    EXPECT_FALSE(ioeti_past(1));
    ioeti_keten(nullptr, nullptr);
    zet_blok(99'999, [](etiblok* x) { x->volgende = 100'000; });
    EXPECT_TRUE(bevat(keten(A), "!Ongeldige etiketketting")) << keten(A);
}

// Each write of a piece of work refused, and the last of a program that dies.
TEST_F(Etiketten, EveryWriteRefusedOrTheLast) {
    const struct {
        const char* wat;
        std::function<void()> doe;
    } werken[] = {
        {"a new chain", [&] { maak(C, 1, 1); }},
        {"a block behind a full one", [&] { maak(A, 11, 11); }},
        {"a free place", [&] { maak(B, 2, 2); }},
        {"a label away",
         [&] {
             const etiketketen in_hand(B, &b);
             etiket l;
             int32_t nr = b;
             ioeti('F', &nr, &l);
             ioeti('D', &nr, &l);
         }},
        {"a chain freed", [&] { ioeti_vrij(A, &a); }},
    };
    gebruiker_in(1, "Piet", "p1");
    sessie = 1;
    iotab('R', &sessie, &gebruiker, SYS_GEBRUIKER);
    gebruiker_stand(1);
    maak(C, 1, 10);
    maak(A, 1, 10);
    maak(B, 1, 1);
    ioeti_vrij(C, &c); // one free block
    const int32_t a0 = a, b0 = b;
    const std::string al = keten(A), bl = keten(B);
    for (const auto& w : werken) {
        SCOPED_TRACE(w.wat);
        const bool vrijgegeven = !strcmp(w.wat, "a chain freed"), weg = !strcmp(w.wat, "a label away");
        bij_elke_schrijf(
            {"DTETI.TXT", "DTSYS.TXT"}, 1,
            [&] {
                Etiketten::open();
                a = a0, b = b0, c = -1;
                w.doe();
                return (a == a0) + 2 * (c < 0);
            },
            [&](const Storing& st) {
                ioeti_heropen();
                if (st.klaar)
                    return;
                const bool geweigerd = st.uitvoer.starts_with("DTETI");
                if (!st.dood) { // told once, in one line
                    EXPECT_EQ(std::count(st.uitvoer.begin(), st.uitvoer.end(), '\n'), 1) << st.uitvoer;
                    if (!vrijgegeven && geweigerd)
                        EXPECT_EQ(st.status, 3) << "no new head";
                }
                a = vrijgegeven ? -1 : a0; // which its series says before
                b = b0, c = -1;
                EXPECT_EQ(keur(), "");
                if (!vrijgegeven)
                    EXPECT_EQ(keten(A).substr(0, al.size()), al);
                if (!weg)
                    EXPECT_EQ(keten(B).substr(0, bl.size()), bl);
                EXPECT_LE(verloren, geweigerd && !vrijgegeven ? 0 : 2);
                keur(true);
                EXPECT_EQ(maak(C, 1, 25), 25);
                EXPECT_EQ(keur(), "");
                EXPECT_EQ(verloren, 0);
            });
    }
}

TEST_F(Etiketten, Damage) {
    maak(A, 1, 30); // blocks 0, 1, 2
    maak(B, 1, 20); // 3, 4
    maak(C, 1, 20); // 5, 6
    ioeti_vrij(C, &c);
    const std::string eti = lees_bestand("DTETI.TXT"), sys = lees_bestand("DTSYS.TXT"), bl = keten(B);
    // A block and the link that it gets; or the counters, which are 6 and 7.
    constexpr int STATUS = -1, KORT = -2, GEEN = -3;
    const struct {
        const char* wat;
        int32_t blok, volgende, vrijkop, hoogste;
        const char* reden; // of the walk along A; null: that goes well
    } rijen[] = {
        {"into another series", 1, 4, 6, 7, "Etiket niet van 110.5.1"},
        {"in a circle", 2, 0, 6, 7, "Etiketketting zonder einde"},
        {"past the end", 2, 99, 6, 7, "Buiten bestand"},
        {"past the limit", 2, 1000000, 6, 7, "Ongeldige etiketketting"},
        {"below 0", 0, -7, 6, 7, "Ongeldige etiketketting"},
        {"a free block", 2, 6, 6, 7, "Etiket niet van 110.5.1"},
        {"status 7", STATUS, 0, 6, 7, "Ongeldige etiketstatus"},
        {"cut file", KORT, 0, 6, 7, "Buiten bestand"},
        {"free chain into A", GEEN, 0, 1, 7, nullptr},
        {"free chain in a circle", 6, 6, 6, 7, nullptr},
        {"free chain past the end", 6, 8, 6, 7, nullptr},
        {"counters below the file", GEEN, 0, 4, 4, nullptr},
        {"counters the wrong way", GEEN, 0, 9, 7, nullptr},
        {"counters past the limit", GEEN, 0, 1000002, 1000002, nullptr},
        {"counters below 0", GEEN, 0, -1, 7, nullptr},
        {"counters far behind the file", GEEN, 0, 500, 500, nullptr},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        schrijf_bestand("DTETI.TXT", eti);
        schrijf_bestand("DTSYS.TXT", sys);
        open();
        zet_tellers(r.vrijkop, r.hoogste);
        if (r.blok >= 0)
            zet_blok(r.blok, [&](etiblok* x) { x->volgende = r.volgende; });
        else if (r.blok == STATUS)
            zet_blok(1, [](etiblok* x) { x->plaats[4][8] = 7, x->plaats[4][9] = 0; });
        else if (r.blok == KORT)
            schrijf_bestand("DTETI.TXT", eti.substr(0, 900));
        ioeti_heropen();
        const std::string beeld = keten(A);
        EXPECT_EQ(beeld.find('!') == std::string::npos, r.reden == nullptr) << beeld;
        if (r.reden)
            EXPECT_TRUE(bevat(beeld, r.reden));
        EXPECT_NE(keur(), "");
        const std::string nu = lees_bestand("DTETI.TXT"), tellers_nu = lees_bestand("DTSYS.TXT");
        if (r.blok != STATUS) { // its place comes behind a free one
            verwacht_stop([&] { maak(A, 31, 31); }, "ioeti(");
            ioeti_keten(&A, &a);
            EXPECT_FALSE(ioeti_past(1)) << "it is said before anything is written";
            ioeti_keten(nullptr, nullptr);
        }
        EXPECT_EQ(lees_bestand("DTETI.TXT"), nu);
        EXPECT_EQ(lees_bestand("DTSYS.TXT"), tellers_nu);
        if (nu.size() == eti.size())
            EXPECT_EQ(keten(B), bl) << "the others work";
        int32_t kop_nu = a;
        ioeti_vrij(A, &kop_nu);
        if (nu.size() == eti.size())
            EXPECT_EQ(keten(B), bl) << "nothing of another series was freed";
    }
}

} // namespace
} // namespace zg::test
