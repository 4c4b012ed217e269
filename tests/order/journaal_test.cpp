// Open, change, commit: the journal byte for byte, the work file and its index beside it.
#include "bouw.h"

namespace zg::test {
namespace {

using Journaal = InOrderMap;

const std::vector<Order> DRIE = {maak_order(1, {2, 1}), maak_order(2, {1, 3, 2}), maak_order(3, {1})};
TEST_F(Journaal, nieuwe_order_en_leeggemaakte_order) {
    Order nieuw = maak_order(4, {});
    // Refused header, then a header without lines: no journal stays behind.
    for (bool met_kop : {false, true}) {
        ASSERT_TRUE(kies(-1));
        if (met_kop)
            ASSERT_TRUE(nieuwe_kop(nieuw));
        EXPECT_TRUE(sluit());
        EXPECT_FALSE(bestaat("JRN"));
    }
    // Lines one by one: the second joins the model of the first.
    nieuw.modellen = {{9, "m", {maak_regel(5), maak_regel(6)}}};
    for (const std::vector<Order>& voor : {std::vector<Order>{}, DRIE}) {
        if (!voor.empty())
            zet("JRN", bytes(voor));
        ASSERT_TRUE(kies(-1));
        ASSERT_TRUE(nieuwe_kop(nieuw));
        ors_ingang cursor{};
        for (Regel& l : nieuw.modellen[0].regels) {
            neem_regel(nieuw.modellen[0], l);
            ASSERT_TRUE(wrk_regel_in(&cursor, cursor.regel == 0, &regel_nu));
            l.tijd = regel_nu.dessin.tijdstempel;
        }
        EXPECT_EQ(cursor.regel, 2);
        EXPECT_EQ(kwalen("WRK", ORD_WERK), "");
        EXPECT_TRUE(sluit());
        EXPECT_EQ(inhoud("JRN"), bytes(voor) + bytes(nieuw));
        // And all its lines out again.
        ASSERT_TRUE(kies(static_cast<int>(voor.size())));
        for (cursor = regel_op(1); cursor.regel;)
            ASSERT_TRUE(wrk_regel_uit(&cursor));
        EXPECT_TRUE(sluit());
        EXPECT_EQ(bestaat("JRN"), !voor.empty());
        if (!voor.empty())
            EXPECT_EQ(inhoud("JRN"), bytes(voor));
    }
}

// One change at one place of an order of models 1, 3 and 2 lines; the same change on the plain values.
struct Plaats {
    size_t model, regel;
};
Plaats plaats_van(const Order& o, int nr) {
    for (size_t m = 0, n = 1;; n += o.modellen[m++].regels.size())
        if (static_cast<size_t>(nr) < n + o.modellen[m].regels.size())
            return {m, static_cast<size_t>(nr) - n};
}

TEST_F(Journaal, regels_in_uit_en_vervangen) {
    const std::vector<int> VORM = {1, 3, 2};
    for (char wat : {'u', 'm', 'i', 'v'}) { // delete, insert with model, insert without, replace
        for (int nr = 1; nr <= 6; nr++) {
            SCOPED_TRACE(std::string(1, wat) + std::to_string(nr));
            std::vector<Order> orders = DRIE;
            orders[1] = maak_order(2, VORM);
            zet("JRN", bytes(orders));
            ASSERT_TRUE(kies(1));
            act_record act;
            memcpy(&act, inhoud("ACT").data(), sizeof act);
            EXPECT_EQ(act.sessie, 3);
            ors_ingang cursor = regel_op(nr);
            Order& o = orders[1];
            auto [m, r] = plaats_van(o, nr);
            Model& mod = o.modellen[m];
            int verwacht_nr = nr;
            Regel l = maak_regel(950 + nr);
            if (wat == 'u') {
                mod.regels.erase(mod.regels.begin() + static_cast<ptrdiff_t>(r));
                if (mod.regels.empty())
                    o.modellen.erase(o.modellen.begin() + static_cast<ptrdiff_t>(m));
                ASSERT_TRUE(wrk_regel_uit(&cursor));
                verwacht_nr = nr == 6 ? 5 : nr;
            } else if (wat == 'v') {
                mod.merk = 77;
                l.tijd = mod.regels[r].tijd; // the moment of adding stays
                mod.regels[r] = l;
                neem_regel(mod, l);
                regel_nu.dessin.tijdstempel = 1;
                ASSERT_TRUE(wrk_regel_vervang(&cursor, &regel_nu));
            } else {
                Model nieuw{88, "nieuw model", {}};
                neem_regel(wat == 'm' ? nieuw : mod, l);
                ASSERT_TRUE(wrk_regel_in(&cursor, wat == 'm', &regel_nu));
                l.tijd = regel_nu.dessin.tijdstempel;
                verwacht_nr = 1;
                for (size_t i = 0; i <= m; i++)
                    verwacht_nr += VORM[i];
                if (wat == 'm') {
                    nieuw.regels = {l};
                    o.modellen.insert(o.modellen.begin() + static_cast<ptrdiff_t>(m) + 1, nieuw);
                } else {
                    mod.regels.push_back(l);
                }
            }
            EXPECT_EQ(cursor.regel, verwacht_nr);
            EXPECT_EQ(inhoud("WRK"), bytes(o, true));
            auto verwacht = index_van(o);
            EXPECT_EQ(aantal_regels, static_cast<int32_t>(verwacht.size()));
            EXPECT_EQ(inhoud("ORS"),
                      std::string(reinterpret_cast<char*>(verwacht.data()), verwacht.size() * 12));
            EXPECT_FALSE(bestaat("TMP"));
            EXPECT_TRUE(sluit());
            EXPECT_EQ(inhoud("JRN"), bytes(orders));
        }
    }
}

TEST_F(Journaal, index_lezen_aan_de_randen) {
    zet("JRN", bytes(DRIE));
    ASSERT_TRUE(kies(1)); // six lines
    struct {
        char modus;
        int van, naar; // 0: refused
    } const rijen[] = {{'F', 0, 1}, {'F', 5, 1}, {'N', 0, 1}, {'N', 5, 6}, {'N', 6, 0}, {'P', 1, 0},
                       {'P', 2, 1}, {'P', 0, 0}, {'R', 6, 6}, {'R', 7, 0}, {'R', 0, 0}, {'?', 1, 0}};
    for (const auto& rij : rijen) {
        ors_ingang e{static_cast<uint16_t>(rij.van), 0, 0, 0};
        EXPECT_EQ(ors_lees(rij.modus, &e), rij.naar != 0) << rij.modus << rij.van;
        if (rij.naar)
            EXPECT_EQ(e.regel, rij.naar) << rij.modus << rij.van;
    }
    sluit();
}

TEST_F(Journaal, alleen_bekeken_verandert_niets) {
    struct {
        bool register_;
        char recht;
        int status;
        bool alleen_lezen, genummerd = true;
    } const rijen[] = {{false, 'A', 0, false},      {false, 'I', 0, false},     {false, 'A', 7, true},
                       {true, 'I', 4, true},        {true, 'I', 0, false},      {true, 'A', 4, false},
                       {true, 'A', 0, true, false}, {true, 'A', 4, true, false}};
    for (const auto& rij : rijen) {
        SCOPED_TRACE(std::to_string(rij.register_) + rij.recht + std::to_string(rij.status));
        std::vector<Order> orders = rij.genummerd ? genummerd(DRIE) : DRIE;
        orders[1].status = rij.status;
        zet("JRN", bytes(orders));
        registermodus = rij.register_;
        gebruikersrecht = rij.recht;
        struct stat voor, na;
        stat(pad("JRN").c_str(), &voor);
        ASSERT_TRUE(kies(1));
        EXPECT_EQ(order_alleen_lezen, rij.alleen_lezen);
        if (!rij.alleen_lezen) { // a header accepted as it stands is no change
            char levering[BLOKLEN], betaling[BLOKLEN];
            werk->offset = 0;
            ord_lees(werk, 'R');
            ord_tekst_lees(werk, 1, levering);
            ord_tekst_lees(werk, 2, betaling);
            EXPECT_TRUE(ord_kop_schrijf(werk, levering, betaling));
        }
        if (rij.alleen_lezen)
            aantal_regels = 0; // even an order that seems to have lost its lines
        EXPECT_TRUE(sluit());
        stat(pad("JRN").c_str(), &na);
        EXPECT_EQ(na.st_ino, voor.st_ino);
        EXPECT_EQ(inhoud("JRN"), bytes(orders));
        EXPECT_EQ(scratch(), "");
    }
}

// ---- locks

TEST_F(Journaal, opener_volgt_een_vervangen_journaal) {
    zet("JRN", bytes({DRIE[0]}));
    static int keren;
    keren = 0;
    const auto echt = SYS.open;
    // Another program commits between our open and our lock, twice.
    SYS.open = [](const char* p, int v, mode_t m) {
        int fd = ::open(p, v, m);
        if (++keren <= 2) {
            zet("TMP", bytes(DRIE));
            rename(pad("TMP").c_str(), pad("JRN").c_str());
        }
        return fd;
    };
    journaal = ord_open_jrn("2016Z", 12, O_RDWR | O_CREAT);
    SYS.open = echt;
    ASSERT_TRUE(journaal);
    EXPECT_EQ(keren, 3);
    int n = 0;
    for (bool er = ord_eerste_order(journaal); er; er = ord_volgende_order(journaal))
        n++;
    EXPECT_EQ(n, 3);
}

} // namespace
} // namespace zg::test
