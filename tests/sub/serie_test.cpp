// Series: numbers and reservations among several programs, the lock, deletion with all that hangs from a series (at each
// write killed and refused), the search by letters, sort indexes.
#include "shared/ean.h"
#include "shared/eanhdl.h"
#include "shared/ioeti.h"
#include "shared/ioink.h"
#include "shared/mutatie.h"
#include "store/wachtrij.h"
#include "sub/omserie.h"
#include "sub/serdel.h"
#include "sub/serzoek.h"
#include "support/schrijfstoring.h"
#include "support/systeem.h"
#include "term/datum.h"
#include "term/gesprek.h"

namespace zg::test {
namespace {

constexpr seriesleutel A{1110, 14, 1}, B{1110, 14, 2}, C{1110, 20, 1};
const char* const PAREN[] = {"DTSER", "DTEAN", "DTORDNR", "DTSERPIC", "DTIPA", "DTMERK"};

struct Serie : Systeem {
    Serie() {
        for (const char* p : PAREN)
            EXPECT_NE(DDNEW(DDNUMMER(p), p), 0) << p;
        schrijf_bestand("DTETI.TXT", "");
        schrijf_bestand("DTIPG.TXT", "");
        firma.filialen = 5;
        firma.vlag30 = 4; // tills are linked
        instel15.overdracht = 1;
        in(1);
    }
    ~Serie() override { uit(); }
    static void in(int slot) {
        sessie = slot;
        register_open();
        dtmerk = IXOPEN("DTMERK", 2);
    }
    static void uit() {
        register_sluit();
        if (dtmerk)
            IXCLOSE(dtmerk);
        dtmerk = nullptr;
    }
    static serrec rec(const seriesleutel& sleutel, int merk = 104, const char* model = "KJOLE") {
        serrec s{.serie = sleutel, .merk = static_cast<uint16_t>(merk), .etiketkop = -1};
        VASTIN(s.model, model);
        return s;
    }
    static serrec maak(const serrec& van) {
        serrec s = van;
        EXPECT_TRUE(serie_volgnummer_neem(s.serie));
        s.nummer = serie_nummer_nieuw();
        EXPECT_TRUE(serie_schrijf(s));
        serie_los();
        return s;
    }
    static size_t gereserveerd() { return IXRESERVERINGEN(dtser->idxfd, dtser->h).size(); }
};

// A program of a user: his slot is his while it lives.
std::string gebruiker_doet(const std::string& wat) {
    if (wat[0] == 'i') { // in, as slot n
        Systeem::open();
        dtser = dtserpic = dtean = dtordnr = nullptr;
        int32_t slot = wat[1] - '0';
        gebruikerslot g{};
        iotab('X', &slot, &g, SYS_GEBRUIKER);
        sessie = slot;
        dtser = IXOPEN("DTSER", 2);
        serie_nummers_opruimen();
        return "in";
    }
    if (wat[0] == 'v')
        return std::to_string(serie_volgnummer_vrij(A.artikelgroep, A.kleur));
    if (wat[0] == 'n')
        return serie_volgnummer_neem({A.artikelgroep, A.kleur, static_cast<uint16_t>(wat[1] - '0')}) ? "mine"
                                                                                                     : "no";
    if (wat[0] == 'l')
        return serie_nummer_los(), "";
    serrec s{};
    if (wat[0] == 'r')
        return serie_neem(A, &s) ? "locked" : "no";
    return serie_los(), "";
}

TEST_F(Serie, StampsAndRunningNumbers) {
    EXPECT_EQ(serie_stempel(DATUMNR("03011980"), 43199), 2 * 86400 + 86398);
    EXPECT_EQ(serie_stempel(UINT16_MAX, 0), INT32_MAX);
    serrec s = rec(A);
    s.stempel = 100;
    EXPECT_TRUE(serie_mag(s, 100));
    EXPECT_FALSE(serie_mag(s, 99)) << "made behind that order";

    EXPECT_EQ(maak(rec(A)).nummer, 1000) << "the first ever";
    zet(2, systeller{999, {}}, SYS_RECORD);
    EXPECT_EQ(serie_nummer_nieuw(), 1001) << "1000 is in use";
    zet(2, systeller{9999999, {}}, SYS_RECORD);
    EXPECT_EQ(serie_nummer_nieuw(), 1001);
}

// Else orders would be written that have no labels.
TEST_F(Serie, RegisterThatLostItsIndexStops) {
    EXPECT_TRUE(register_aanwezig());
    uit();
    IOUNLINK("DTSER.INX");
    verwacht_stop([] { register_aanwezig(); }, "DTSER.INX");
    IOUNLINK("DTSER.TXT");
    EXPECT_FALSE(register_aanwezig());
}

// Two at once get two numbers, without a wait; what a dead program had is given up at its slot's next start, what a living
// one has is not, also where both name it.
TEST_F(Serie, ReservedNumbers) {
    Agent een(gebruiker_doet), twee(gebruiker_doet);
    een.vraag("i3");
    twee.vraag("i4");
    EXPECT_EQ(een.vraag("v"), "1");
    EXPECT_EQ(twee.vraag("v"), "2");
    EXPECT_EQ(twee.vraag("n1"), "no");
    EXPECT_EQ(lees_bestand("SERNR04.RES"), "") << "it gave its own up and got none";
    EXPECT_EQ(twee.vraag("v"), "2");
    EXPECT_EQ(gereserveerd(), 2u);
    een.dood();
    EXPECT_EQ(lees_bestand("SERNR03.RES").size(), sizeof A);
    EXPECT_EQ(serie_volgnummer_vrij(A.artikelgroep, A.kleur), 3) << "nobody knows that 1 is free";

    // The dead one had noted a number that it did not get, and that another has.
    schrijf_bestand("SERNR03.RES", lees_bestand("SERNR03.RES") + lees_bestand("SERNR04.RES"));
    Agent weer(gebruiker_doet);
    weer.vraag("i3");
    EXPECT_EQ(gereserveerd(), 2u) << "1 given up, 2 and 3 not";
    EXPECT_EQ(lees_bestand("SERNR03.RES"), lees_bestand("SERNR04.RES"));
    EXPECT_EQ(weer.vraag("v"), "1");
    EXPECT_EQ(twee.vraag("l"), "");
    EXPECT_EQ(weer.vraag("l"), "");
    serie_nummer_los();
    EXPECT_EQ(gereserveerd(), 0u);
    EXPECT_EQ(lees_bestand("SERNR04.RES"), "");
}

// Nothing is reserved by who asks for an absent series; a deleted series' key is free for another at once, and giving the
// lock up takes nothing from him.
TEST_F(Serie, LockAndAbsence) {
    serrec s{};
    EXPECT_FALSE(serie_neem(A, &s));
    EXPECT_EQ(gereserveerd(), 0u);
    maak(rec(A));
    Agent ander(gebruiker_doet);
    ander.vraag("i3");
    ASSERT_TRUE(serie_neem(A, &s));
    EXPECT_EQ(ander.vraag("r"), Agent::geen_antwoord) << "mine";
    serie_los();
    EXPECT_EQ(ander.antwoord(), "locked");
    ander.vraag("x");
    ASSERT_TRUE(serie_neem(A, &s));
    ASSERT_TRUE(serie_verwijderen(dtser, &s, false));
    EXPECT_EQ(ander.vraag("n1"), "mine");
    serie_los();
    EXPECT_EQ(gereserveerd(), 1u) << "his";
    ander.vraag("l");
}

// Only keys and their bytes count in the files of other programs.
struct Resten {
    static constexpr const char* ALLE[] = {"DTIO", "DTFIN", "DTONTV", "DTGO", "DTBARC", "DTBASER", "DTBAORD"};
    static void maak() {
        for (const auto& [nr, naam] : {std::pair{17, "DTFIN"},
                                       {42, "DTONTV"},
                                       {18, "DTGO"},
                                       {8, "DTBARC"},
                                       {9, "DTBASER"},
                                       {7, "DTBAORD"}})
            EXPECT_NE(DDNEW(nr, naam), 0) << naam;
        IXCLOSE(nieuw_paar("DTIO", {"io,24", "k,NODUPS,I,1,4,I,9,12", "s,I,13,16,I,17,18,I,19,20"}));
        schrijf_bestand("DTBAPAR.TXT", std::string(3 * 432, 'x'));
    }
    template <class T> static void in(uint8_t* buffer, int positie, T waarde) {
        memcpy(buffer + positie - 1, &waarde, sizeof waarde);
    }
    static void zet(const char* naam, const std::function<void(uint8_t*)>& vul) {
        uint8_t buffer[IXRECMAX] = {};
        vul(buffer);
        ICB* icb = IXOPEN(naam, 2);
        EXPECT_EQ(IXWRITE(icb, buffer), 1) << naam;
        IXCLOSE(icb);
    }
    static void van_label(int32_t nummer) {
        zet("DTIO", [=](uint8_t* r) { in(r, 1, nummer), in(r, 9, nummer); });
        zet("DTFIN", [=](uint8_t* r) { in(r, 17, nummer), in(r, 21, nummer); });
        zet("DTONTV", [=](uint8_t* r) { in(r, 5, nummer), in(r, 1, static_cast<int16_t>(nummer)); });
        zet("DTGO",
            [=](uint8_t* r) { in(r, 5, nummer), in(r, 25, static_cast<int16_t>(nummer)), in(r, 9, nummer); });
    }
    static void van_serie(const seriesleutel& s) {
        zet("DTBARC", [=](uint8_t* r) {
            memcpy(r, serie_tekst(s).data(), serie_tekst(s).size());
            in(r, 17, s.artikelgroep), in(r, 15, s.kleur), in(r, 21, s.volgnummer), r[23] = 3;
        });
        zet("DTBASER", [=](uint8_t* r) { in(r, 1, s); });
        zet("DTBAORD",
            [=](uint8_t* r) { in(r, 1, s), in(r, 11, s.kleur), r[12] = static_cast<uint8_t>(s.volgnummer); });
        std::string par = lees_bestand("DTBAPAR.TXT");
        memcpy(par.data() + 432 * (s.volgnummer - 1), &s, sizeof s);
        schrijf_bestand("DTBAPAR.TXT", par);
    }
};

struct Verwijder : Serie {
    std::set<std::string> gemist; // bytes that only A has
    static void label(const seriesleutel& s, int32_t* kop, int status, int maat) {
        const etiketketen keten(s, kop);
        etiket l{.serie = s, .status = static_cast<uint8_t>(status), .maat = static_cast<uint8_t>(maat)};
        int32_t nr = 0;
        EXPECT_EQ(ioeti('W', &nr, &l), 1);
        if (status > 1)
            Resten::van_label(nr);
    }
    static void vol(const seriesleutel& s, bool met_etiketten = true) {
        maak(rec(s));
        serrec r{};
        ASSERT_TRUE(serie_neem(s, &r));
        int32_t kop = -1;
        for (int i = 0; met_etiketten && i < 23; i++)
            label(s, &kop, 1 + i % 4, 1 + i % 3);
        r.etiketkop = kop;
        r.in_nota = 6, r.voorraad = 6, r.verkopen = 6, r.correcties = 5;
        if (!met_etiketten)
            r.in_nota = r.voorraad = r.verkopen = r.correcties = 0;
        ASSERT_TRUE(serie_schrijf(r));
        for (int lev : {12, 13, 13}) {
            prijsset set{
                .serie = s, .setnr = static_cast<uint16_t>(lev), .tot = PRIJS_TOT, .van = 1, .groep = -1};
            ASSERT_TRUE(ioink_write(&set, {{{2}, 100, 90}}));
        }
        uint8_t maten[12] = {14};
        ASSERT_TRUE(eanhdl('W', dtean, s, maten));
        schrijf(dtserpic, serpicrec{.serie = s});
        Resten::van_serie(s);
        serie_los();
    }
    // What there is of a series in all files, as a text of counts.
    static std::string er_is(const seriesleutel& s) {
        serrec r{};
        uint8_t alle[12];
        memset(alle, 0xFF, sizeof alle);
        prijsset set{};
        set.serie = s;
        std::string uit = vorm("rec %d ean %d set %d", serie_lees(s, &r), 95 - ean_nodig(dtean, s, alle),
                               ioink_move('F', &set, 3, 1));
        int labels = 0, eigen = 0;
        if (serie_lees(s, &r) && r.etiketkop >= 0) {
            int32_t kop = r.etiketkop, nr = kop;
            const etiketketen keten(s, &kop);
            etiket l;
            for (int er = ioeti('F', &nr, &l); er == 1; er = ioeti('N', &nr, &l))
                labels++;
        }
        for (const char* naam : Resten::ALLE) {
            ICB* icb = IXOPEN(naam, 0);
            uint8_t b[IXRECMAX];
            for (int32_t nr = 0, er; (er = IXGET(icb, b, nr)) >= 0; nr++)
                eigen += er;
            IXCLOSE(icb);
        }
        const std::string par = lees_bestand("DTBAPAR.TXT");
        const bool in_par =
            par.find(std::string(reinterpret_cast<const char*>(&s), sizeof s)) != std::string::npos;
        return uit + vorm(" labels %d others %d par %d", labels, eigen, in_par);
    }
};

TEST_F(Verwijder, AllOfOneAndNothingOfAnother) {
    Resten::maak();
    vol(A);
    vol(B);
    Resten::van_label(9999); // nobody's
    IXCLOSE(sort_index("MAKV", "DTSER.07"));
    static std::string gemeld;
    gemeld.clear();
    MUTATIEHAAK = [](std::span<const Mutatie> mutaties) {
        for (const Mutatie& m : mutaties)
            gemeld += m.letter + m.inhoud + "|";
        return true;
    };
    const std::string b = er_is(B);
    // 17 of 23 labels each in four files, three more of each series, four of the label that is nobody's
    EXPECT_EQ(b, "rec 1 ean 3 set 1 labels 23 others 146 par 1");
    serrec s{};
    ASSERT_TRUE(serie_neem(A, &s));
    static uint8_t hoogst;
    gebruiker.userstate = 1;
    const auto haak = IXCOMMITHOOK;
    IXCOMMITHOOK = [] { return hoogst = std::max<uint8_t>(hoogst, gebruiker.userstate), 0; };
    EXPECT_TRUE(serie_verwijderen(dtser, &s, false));
    IXCOMMITHOOK = haak;
    EXPECT_EQ(vorm("%d %d", hoogst, int{gebruiker.userstate}), "12 1") << "a critical step";
    gebruiker.userstate = 0;
    mutatie(MUT_MERK, "0104"); // of a screen that is opened meanwhile
    EXPECT_EQ(gemeld, "") << "not under the lock";
    serie_los();
    MUTATIEHAAK = nullptr;
    EXPECT_EQ(gemeld, "G0001000010401110KJOLE          *E|M0104|");
    EXPECT_EQ(er_is(A), "rec 0 ean 0 set 0 labels 0 others 75 par 0");
    EXPECT_EQ(er_is(B), "rec 1 ean 3 set 1 labels 23 others 75 par 1");
    ICB* index = IXOPEN("DTSER.07", 0);
    uint8_t r[IXRECMAX] = {};
    EXPECT_EQ(IXFIRST(index, r), 1);
    EXPECT_EQ(IXNEXT(index, r), 0) << "B alone";
    IXCLOSE(index);
    // Its blocks are the next that are given out, its record's slot is used again, and with it its number.
    serpicrec oud{};
    oud.serie = A;
    schrijf(dtserpic, oud); // a link that was left
    EXPECT_EQ(serie_volgnummer_vrij(A.artikelgroep, A.kleur), 1);
    EXPECT_EQ(
        IXEXISTS(dtserpic, std::string(reinterpret_cast<char*>(&oud), sizeof oud).append(512, 0).data()), 0);
    serie_nummer_los();
    const int64_t omvang = IOSIZE("DTETI.TXT");
    vol(A);
    EXPECT_EQ(IOSIZE("DTETI.TXT"), omvang);
    EXPECT_EQ(IOSIZE("DTSER.TXT"), 2 * 200);
}

// Killed or refused at each write: B is whole, and A can be deleted again until nothing of it is left.
TEST_F(Verwijder, KilledAndRefusedAtEachWrite) {
    Resten::maak();
    vol(A);
    vol(B, false);
    uit();
    const std::vector<std::string> paren = {"DTSER",  "DTEAN", "DTSERPIC", "DTIPA",   "DTIO",   "DTFIN",
                                            "DTONTV", "DTGO",  "DTBARC",   "DTBASER", "DTBAORD"};
    std::vector<std::string> namen = {"DTSYS.TXT", "DTETI.TXT", "DTIPG.TXT", "DTBAPAR.TXT"};
    for (const std::string& p : paren)
        namen.insert(namen.end(), {p + ".INX", p + ".TXT"});
    const auto verwijder = [] { // 1 when it has gone, 2 when it wasn't there
        open();
        in(1);
        serrec s{};
        const int uitkomst = !serie_neem(A, &s) ? 2 : serie_verwijderen(dtser, &s, false) ? 1 : 0;
        serie_los();
        uit();
        return uitkomst;
    };
    int keren = 0;
    bij_elke_schrijf(namen, 7, verwijder, [&](const Storing& st) { // some 400 writes
        EXPECT_TRUE(st.status == st.klaar || st.uitvoer.starts_with("DTSYS"))
            << st.uitvoer; // the user's slot
        keren++;
        for (const std::string& p : paren) {
            EXPECT_TRUE(st.dood || IXCHECK(p.c_str()) >= 0) << p;
            EXPECT_EQ(IXBLDIX(p.c_str()), 1) << p;
        }
        EXPECT_GE(in_proces(verwijder).status, 1) << "again";
        open();
        in(1);
        EXPECT_EQ(er_is(B), "rec 1 ean 3 set 1 labels 0 others 3 par 1");
        EXPECT_EQ(er_is(A), "rec 0 ean 0 set 0 labels 0 others 3 par 0");
        EXPECT_EQ(gereserveerd(), 0u);
        uit();
    });
    EXPECT_GT(keren, 20);
    in(1);
}

TEST_F(Verwijder, QuestionAndDamage) {
    Resten::maak();
    instel15.optie12 = 4;
    vol(A);
    vol(C, false);
    auto vraag = [](const seriesleutel& s) {
        return [s] {
            open();
            in(1);
            serrec r{};
            serie_neem(s, &r);
            const bool weg = serie_verwijderen(dtser, &r, true);
            serie_los();
            uit();
            return vorm("%d", weg);
        };
    };
    uit();
    gesprek_met(vraag(A), {{"", "Serie heeft ORDERS IN NOTA/VOORRAAD/VERKOPEN/CORRECTIES"}, {"<Enter>", ""}},
                "0");
    // The code of a sold label among the open sales.
    IXCLOSE(nieuw_paar("KSZI", {"zicht,32", "a,NODUPS,I,1,4", "b,C,13,25,I,1,4"}));
    Resten::zet("KSZI", [](uint8_t* r) {
        r[0] = 1;
        memcpy(r + 12, ean_etiket(0, 3).data(), 13); // the third label of the first block
    });
    gesprek_met(vraag(A), {{"", "zichtverkopen"}, {"<Enter><Enter>", ""}}, "0");
    gesprek_met(vraag(C), {{"", "Serie heeft geen etiketten"}, {"J<Enter>", ""}}, "1");
    std::string eti = lees_bestand("DTETI.TXT");
    eti[376 + 4] = 99; // the second block is another colour's
    schrijf_bestand("DTETI.TXT", eti);
    const std::string ser = lees_bestand("DTSER.TXT");
    gesprek_met(vraag(A), {{"", "1110.14.1"}, {"<Enter>", ""}}, "0");
    EXPECT_EQ(lees_bestand("DTETI.TXT"), eti);
    EXPECT_EQ(lees_bestand("DTSER.TXT"), ser);
    in(1);
}

// ---- search and sort

struct Zoek : Serie {
    Zoek() {
        for (const auto& [nr, naam] : {std::pair{104, "NORD"}, {109, "KROO"}, {110, "KRJU"}}) {
            merkrec m{};
            m.merk = static_cast<uint16_t>(nr);
            VASTIN(m.zoeknaam, naam);
            schrijf(dtmerk, m);
        }
        maak(rec({1110, 14, 1}, 104, "KJOLE"));
        maak(rec({1110, 14, 3}, 104, "SKJORTE"));
        maak(rec({1110, 20, 1}, 109, "BLUSE"));
        maak(rec({2200, 1, 1}, 104, "BLUSE"));
        uit();
    }
    ~Zoek() override { in(1); }
    static std::string zoek(const char* letters) {
        open();
        in(1);
        serrec r{};
        const bool er = serie_zoek(5, 1, letters, &r);
        uit();
        return er ? serie_tekst(r.serie) : "none";
    }
};

TEST_F(Zoek, ByTheLettersOfAKey) {
    gesprekken([] { return zoek("AKV"); },
               {
                   {"1110<Enter>14<Enter>3<Enter>", "1110.14.3"},
                   {"1110<Enter><Enter><Enter>", "1110.14.1"}, // each is proposed as the first has it
                   {"1110<Enter>14<Enter>2<Enter>", "none"},   // the last letter isn't passed over
                   {"2000<Enter><Enter><Enter>", "2200.1.1"},  // the next one
                   {"9999<Enter>2200<Enter><Enter><Enter>", "2200.1.1"}, // behind the last: asked again
                   {"1110<Enter>15<Enter><Enter>", "1110.20.1"},
                   {"<Enter>", "none"},
                   {"1110<Enter><Esc>", "none"},
                   {"1110<Enter><F5><Down><Enter>", "1110.14.3"},
                   {"1110<Enter><F5>2200<Enter><Enter>", "2200.1.1"}, // typed in the list
               });
    // Brand and model come before the group, which the file's key has between them.
    gesprekken([] { return zoek("RMAKV"); },
               {
                   {"104<Enter><Enter><Enter><Enter><Enter>", "2200.1.1"},
                   {"nord<Enter>kjole<Enter><Enter><Enter><Enter>", "1110.14.1"},
                   {"kr<Enter>kro<Enter><Enter><Enter><Enter><Enter>", "1110.20.1"}, // two begin with kr
                   {"nord<Enter>c<Enter><Enter><Enter><Enter>", "1110.14.1"},
                   {"nord<Enter>kjole<Enter>1200<Enter><Enter><Enter>",
                    "1110.14.3"},                // none of that group: the next name
                   {"krju<Enter><Esc>", "none"}, // none of it or behind it: asked again
               });
    Gesprek lijst([] { return zoek("AKV"); });
    lijst.toetsen("<F5>");
    EXPECT_TRUE(lijst.regel(4).starts_with(
        "│ Artgr Klr  Vnr Merk Model           Materiaal    Dessin       Km Jaar S Z D"))
        << "each word fits its column: " << lijst.scherm();
    lijst.toetsen("<Esc><Esc>");
    Gesprek t([] { return zoek("AKV"); });
    t.toetsen("1500<Enter>", 25, 1, "<1500.0.0> Onbekende serie. Eerstvolgende genomen");
    EXPECT_TRUE(bevat(t.regel(5), "2200")) << "its group stands in the field";
    EXPECT_EQ(t.antwoord("<Esc>"), "none");
}

TEST_F(Zoek, SortOrders) {
    gesprekken(
        [] {
            std::string orde;
            const bool goed = sort_volgorde(3, 20, "AKVRMDJSENZBL", &orde);
            return vorm("%d %s", goed, orde.c_str());
        },
        {
            {"M<Enter>", "1 MAKV"},
            {"VA<Enter>", "1 VAK"},
            {"MM<Enter><Esc>", "0"},       // a letter twice is asked again
            {"RMDJSENZ<Enter><Esc>", "0"}, // eight and three
        });
    in(1);
    EXPECT_EQ(sort_index("RMDJSENZBLA", "DTSER.07"), nullptr);
    IXCLOSE(sort_index("MAKV", "DTSER.07"));
    EXPECT_EQ(sort_titel("DTSER.07"), "MAKV");
    std::string gezien;
    ICB* icb = IXOPEN("DTSER.07", 0);
    uint8_t buffer[IXRECMAX] = {};
    serrec r;
    for (int er = IXFIRST(icb, buffer); er == 1; er = IXNEXT(icb, buffer)) {
        stam_uit(buffer, 200, &r);
        gezien += VASTTEKST(r.model) + serie_tekst(r.serie) + " ";
    }
    IXCLOSE(icb);
    EXPECT_EQ(gezien, "BLUSE1110.20.1 BLUSE2200.1.1 KJOLE1110.14.1 SKJORTE1110.14.3 ");
    // In use elsewhere it goes, else it follows a changed key; a file that isn't one stays.
    serrec oud{}, nieuw{};
    ASSERT_TRUE(serie_lees({1110, 14, 3}, &oud));
    nieuw = oud;
    VASTIN(nieuw.model, "AAA");
    schrijf_bestand("DTSER.BAK", std::string(2048, 'x'));
    serie_index_bij(oud, &nieuw);
    icb = IXOPEN("DTSER.07", 0);
    memset(buffer, 0, sizeof buffer);
    EXPECT_EQ(IXFIRST(icb, buffer), 1);
    EXPECT_EQ(memcmp(buffer, &oud.serie, 8), 0) << "AAA is the first now";
    IXCLOSE(icb);
    Agent ander([] { return IXOPEN("DTSER.07", 1) != nullptr; });
    serie_index_bij(nieuw, nullptr);
    EXPECT_FALSE(IOEXISTS("DTSER.07"));
    EXPECT_EQ(lees_bestand("DTSER.BAK").size(), 2048u);
    uit();
}

} // namespace
} // namespace zg::test
