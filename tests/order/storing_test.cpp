// The journal under faults: killed at every call that writes, a disk that is full at every call, files that
// were damaged. Whatever happens, the other orders stay byte for byte, and the order is one of its whole
// states.
#include "bouw.h"
#include "support/roepstoring.h"
#include <climits>
#include <random>

namespace zg::test {
namespace {

using Storingen = InOrderMap;

const std::vector<Order> DRIE = {maak_order(1, {2, 1}), maak_order(2, {1, 2}), maak_order(3, {1})};

// A session on the n-th order: header, one line of each kind of change, commit. The states that the order
// passes through, as whole journals, are gathered once in an undisturbed run.
struct Sessie {
    int order; // -1: a new one
    bool leegmaken, register_;
    std::vector<Order> drie() const { return register_ ? genummerd(DRIE) : DRIE; }
};

std::ostream& operator<<(std::ostream& o, const Sessie& s) {
    return o << "order " << s.order << (s.leegmaken ? " emptied" : "")
             << (s.register_ ? " registermodus" : "");
}

const Sessie SESSIES[] = {{0, false, false}, {1, false, false}, {2, false, false}, {-1, false, false},
                          {1, true, false},  {1, false, true},  {0, true, true}};

// Every step may be refused on a full disk; the user goes on or leaves.
int sessie(const Sessie& s, const std::function<void()>& gezien) {
    registermodus = s.register_;
    if (!kies(s.order)) {
        ord_sluit_jrn(journaal);
        journaal = nullptr;
        return 3;
    }
    Order nieuw = maak_order(9, {});
    Model m{9, "m", {}};
    ors_ingang cursor{};
    if (order_nieuw) {
        nieuwe_kop(nieuw);
    } else {
        char blok[BLOKLEN] = "gewijzigd", leeg[BLOKLEN] = "";
        kop.korting = -250;
        ord_kop_schrijf(werk, blok, leeg);
        gezien();
        cursor = regel_op(1);
    }
    if (s.leegmaken) {
        while (cursor.regel && wrk_regel_uit(&cursor))
            gezien();
    } else if (werk->tag == 'O' && inhoud("WRK").size()) {
        for (int i = 0; i < 2; i++) {
            neem_regel(m, maak_regel(70 + i));
            const int32_t was = aantal_regels;
            // The other one joins its model, as a duplicate does. What was refused isn't counted.
            if (!wrk_regel_in(&cursor, i == 0, &regel_nu) && aantal_regels != was)
                return 5;
            gezien();
        }
        if (cursor.regel) {
            neem_regel(m, maak_regel(80));
            wrk_regel_vervang(&cursor, &regel_nu);
            gezien();
            wrk_regel_uit(&cursor);
        }
    }
    gezien();
    regel_uit = {}; // there is no register behind these journals
    return sluit() ? 0 : 4;
}

// The bytes without the moment at which a line was added, which differs from run to run.
std::string zonder_tijd(std::string b) {
    for (size_t p = 0; p < b.size() && ord_lengte(b[p]) >= 0; p += 1 + static_cast<size_t>(ord_lengte(b[p])))
        if (b[p] == 'D' && p + 108 < b.size())
            b[p + 107] = b[p + 108] = 0;
    return b;
}

// What the commit of the present work file would make of the journal.
std::string vastgelegd(const Sessie& s) {
    std::string werkbytes = inhoud("WRK"), order;
    bool regels = false;
    for (size_t p = 0; p < werkbytes.size();) {
        size_t n = 1 + static_cast<size_t>(ord_lengte(werkbytes[p]));
        regels |= werkbytes[p] == 'D';
        if (werkbytes[p] != 'T' || werkbytes[p + 2])
            order += werkbytes.substr(p, n);
        p += n;
    }
    if (s.register_ && order.size())
        order[1 + 46] = 4;
    std::string uit;
    for (int i = 0; i < 3; i++)
        uit += i != s.order ? bytes(s.drie()[static_cast<size_t>(i)]) : regels ? order : "";
    return zonder_tijd(s.order < 0 && regels ? uit + order : uit);
}

std::vector<std::string> toestanden(const Sessie& s) {
    std::vector<std::string> uit = {zonder_tijd(bytes(s.drie()))};
    zet("JRN", bytes(s.drie()));
    if (s.register_ && s.order >= 0) { // opened and left, the status goes to 4
        std::vector<Order> met_status = s.drie();
        met_status[static_cast<size_t>(s.order)].status = 4;
        uit.push_back(zonder_tijd(bytes(met_status)));
    }
    EXPECT_EQ(sessie(s, [&] { uit.push_back(vastgelegd(s)); }), 0);
    EXPECT_EQ(zonder_tijd(inhoud("JRN")), uit.back()) << s;
    return uit;
}

void toets_toestand(const std::vector<std::string>& goed, const std::string& waar) {
    EXPECT_TRUE(std::find(goed.begin(), goed.end(), zonder_tijd(inhoud("JRN"))) != goed.end()) << waar;
    // Without a WRK, or with an empty one, the rest means nothing and goes with the next order.
    EXPECT_EQ(bestaat("WRK") ? inhoud("WRK") : "", "") << waar;
}

// The n-th call that writes is disturbed, where an earlier session left its scratch files; then the status.
int verstoord(const Sessie& s, int n, Storing wat, std::string* gezegd = nullptr) {
    zet("JRN", bytes(s.drie()));
    for (const char* ext : {"ORS", "TMP"})
        zet(ext, "left behind");
    auto doe = [&] {
        stoor(n, wat);
        int uit = sessie(s, [] {});
        return gestoord() ? uit : 9;
    };
    return in_kind(doe, gezegd);
}

int hersteld(const Sessie& s, int n = INT_MAX) {
    auto doe = [&] {
        registermodus = s.register_;
        stoor(n, Storing::Dood);
        return herstart();
    };
    return in_kind(doe);
}

TEST_F(Storingen, gedood_bij_elke_schrijfactie) {
    for (const Sessie& s : SESSIES) {
        std::vector<std::string> goed = toestanden(s);
        for (Storing dood : {Storing::Dood, Storing::HalfDood}) {
            int aantal[3] = {};
            for (int n = 1, einde; (einde = verstoord(s, n, dood)) != 9; n++) {
                if (einde == 0) // a half write is one kind of call; the others go on undisturbed
                    continue;
                ASSERT_EQ(einde, 128 + SIGKILL) << s << " at " << n;
                std::string waar = ::testing::PrintToString(n) + " of order " + std::to_string(s.order);
                int her = hersteld(s);
                ASSERT_LE(her, 2) << waar;
                aantal[her]++;
                if (her == 2)
                    EXPECT_EQ(zonder_tijd(inhoud("JRN")), goed[0]) << waar;
                toets_toestand(goed, waar);
            }
            if (dood == Storing::Dood) {
                EXPECT_GT(aantal[1], 5) << s;
                // Only between the first WRK and its ACT: before that is made, before the fchmod that gives it its
                // mode, before it is filled.
                EXPECT_LE(aantal[2], 3) << s;
            }
        }
    }
}

TEST_F(Storingen, gedood_en_dan_tijdens_het_herstel_weer) {
    const Sessie s = SESSIES[1];
    std::vector<std::string> goed = toestanden(s);
    for (int n = 1; verstoord(s, n, Storing::Dood) != 9; n++)
        for (int k = 1, einde = 99; einde > 2; k++) {
            verstoord(s, n, Storing::Dood);
            einde = hersteld(s, k);
            hersteld(s);
            toets_toestand(goed, std::to_string(n) + "/" + std::to_string(k));
        }
}

TEST_F(Storingen, schijf_vol_bij_elke_schrijfactie) {
    for (const Sessie& s : SESSIES) {
        std::vector<std::string> goed = toestanden(s);
        for (Storing vol : {Storing::Vol, Storing::VoorGoedVol}) {
            std::string gezegd;
            for (int n = 1, einde; (einde = verstoord(s, n, vol, &gezegd)) != 9; n++) {
                std::string waar =
                    ::testing::PrintToString(n) + " of order " + std::to_string(s.order) + gezegd;
                ASSERT_TRUE(einde == 0 || einde == 3 || einde == 4) << waar;
                if (einde) { // told, with file and reason
                    EXPECT_TRUE(bevat(gezegd, "schijf vol")) << waar;
                    EXPECT_EQ(zonder_tijd(inhoud("JRN")), goed[0]) << waar;
                }
                if (einde == 0 && vol == Storing::Vol && s.order >= 0) // one change refused, the others made
                    EXPECT_NE(zonder_tijd(inhoud("JRN")), goed[0]) << waar << " lost without a word";
                if (einde == 4) // the commit was refused: the next start does it
                    EXPECT_EQ(hersteld(s), 1) << waar;
                // What was refused on the way and gone on without gives states of its own; the others' bytes
                // and the form of the whole are what counts.
                EXPECT_EQ(kwalen("JRN", ORD_JOURNAAL), "") << waar;
                std::string nu = inhoud("JRN");
                for (int i = 0; i < 3; i++)
                    if (i != s.order)
                        EXPECT_TRUE(bevat(nu, bytes(s.drie()[static_cast<size_t>(i)]))) << waar;
                EXPECT_EQ(scratch(), "") << waar;
            }
        }
    }
}

// ---- damage

std::string act(int32_t start, int32_t volgende, int32_t omvang) {
    act_record a{.start = start, .volgende = volgende, .omvang = omvang};
    return {reinterpret_cast<char*>(&a), sizeof a};
}

TEST_F(Storingen, herstel_gelooft_niets) {
    const std::string jrn = bytes(DRIE), wrk = bytes(maak_order(2, {2}), true);
    const auto o1 = static_cast<int32_t>(bytes(DRIE[0]).size());
    const auto o2 = o1 + static_cast<int32_t>(bytes(DRIE[1]).size());
    const auto eind = static_cast<int32_t>(jrn.size());
    const auto in_tekst = static_cast<int32_t>(jrn.find("OOTDMSX")); // an 'O' that is no record
    for (const auto& [wat, act_, wrk_, goed] : Rijen<const char*, std::string, std::string, bool>{
             {"sound, in the middle", act(o1, o2, eind), wrk, true},
             {"sound, the last", act(o2, -1, eind), wrk, true},
             {"sound, new", act(eind, -1, eind), wrk, true},
             {"no marker", "", wrk, false},
             {"marker of 99 bytes", act(o1, o2, eind).substr(1), wrk, false},
             {"journal has grown", act(o1, o2, eind - 1), wrk, false},
             {"start at the least number", act(INT32_MIN, o2, eind), wrk, false},
             {"start beyond the end", act(INT32_MAX, -1, eind), wrk, false},
             {"start on an O inside a text", act(in_tekst, o1, eind), wrk, false},
             {"next one skipped: an order would go", act(0, o2, eind), wrk, false},
             {"next one forgotten: the rest would go", act(o1, -1, eind), wrk, false},
             {"next one in front", act(o2, o1, eind), wrk, false},
             {"next one wild", act(o1, INT32_MAX, eind), wrk, false},
             {"work file cut", act(o1, o2, eind), wrk.substr(0, wrk.size() - 1), false},
             {"work file with an unknown tag", act(o1, o2, eind), wrk + "Q", false},
             {"work file without a header", act(o1, o2, eind), wrk.substr(121), false},
             {"work file with two orders", act(o1, o2, eind), wrk + wrk, false},
             {"work file of zeros", act(o1, o2, eind), std::string(500, '\0'), false},
         }) {
        zet("JRN", jrn);
        zet("WRK", wrk_);
        zet("ACT", act_);
        EXPECT_EQ(in_kind(herstart), goed ? 1 : 2) << wat;
        if (!goed)
            EXPECT_EQ(inhoud("JRN"), jrn) << wat;
        EXPECT_EQ(scratch(), "") << wat;
    }
}

// The changes are those of a colleague, the label file has them: they don't hang on who comes by first. Where nothing was
// changed the journal stays as it is.
TEST_F(Storingen, herstel_door_wie_alleen_mag_kijken) {
    std::vector<Order> orders = genummerd(DRIE), anders = orders;
    orders[1].status = 5;
    anders[1] = genummerd({maak_order(2, {2, 3})})[0];
    anders[1].status = 4;
    const auto o1 = static_cast<int32_t>(bytes(orders[0]).size());
    const auto o2 = o1 + static_cast<int32_t>(bytes(orders[1]).size());
    for (const char recht : {'A', 'I'})
        for (const bool gewijzigd : {true, false}) {
            SCOPED_TRACE(std::string(1, recht) + (gewijzigd ? ", changed" : ", looked at"));
            zet("JRN", bytes(orders));
            zet("WRK", bytes((gewijzigd ? anders : orders)[1], true));
            zet("ACT", act(o1, o2, static_cast<int32_t>(bytes(orders).size())));
            auto doe = [&] {
                registermodus = true;
                gebruikersrecht = recht;
                return herstart();
            };
            EXPECT_EQ(in_kind(doe), 1);
            EXPECT_EQ(inhoud("JRN"), bytes(gewijzigd ? anders : orders));
            EXPECT_EQ(scratch(), "");
        }
}

TEST_F(Storingen, kapot_journaal_stopt_bij_het_openen) {
    const std::string jrn = bytes(DRIE);
    const size_t laatste = jrn.rfind('F');
    std::string groot = jrn;
    while (groot.size() < 40000) // the damage lies beyond the first buffer
        groot += bytes(DRIE);
    struct {
        std::string jrn_;
        size_t pos;
        char tag;
    } const rijen[] = {
        {jrn.substr(0, jrn.size() - 1), laatste, 'F'},
        {jrn.substr(0, laatste + 1), laatste, 'F'},
        {jrn + "Q", jrn.size(), 'Q'},
        {jrn + "X", jrn.size(), 'X'},
        {"Z" + jrn, 0, 'Z'},
        {groot + "?" + jrn, groot.size(), '?'},
        {groot + "O", groot.size(), 'O'},
    };
    ASSERT_EQ(jrn.size(), laatste + 9);
    for (const auto& rij : rijen) {
        zet("JRN", rij.jrn_);
        zet("WRK", "werk");
        std::string gezegd;
        EXPECT_EQ(in_kind(herstart, &gezegd), 1);
        std::string verwacht =
            "Order 2016Z-ORD0012.JRN inconsistent, pos. " + std::to_string(rij.pos) + " (" + rij.tag + ")";
        EXPECT_TRUE(bevat(gezegd, verwacht)) << verwacht;
        EXPECT_EQ(inhoud("JRN"), rij.jrn_);
        EXPECT_EQ(inhoud("WRK"), "werk");
    }
}

TEST_F(Storingen, regel_met_onmogelijke_inhoud) {
    struct {
        const char* wat;
        std::function<void(Regel&)> maak;
        char tag; // 0: loads
    } const rijen[] = {
        {"branch outside the firm", [](Regel& l) { l.termen[0].aantallen[1].filiaal = 3; }, 'F'},
        {"size 96", [](Regel& l) { l.termen[0].aantallen[0].maat = 96; }, 'F'},
        {"quantity below 0", [](Regel& l) { l.termen[0].aantallen[0].aantal = -1; }, 'F'},
        {"quantity 0", [](Regel& l) { l.termen[0].aantallen[0].aantal = 0; }, 0},
        {"sum beyond 32 bits",
         [](Regel& l) { l.termen[0].aantallen[0].aantal = l.termen[0].aantallen[1].aantal = INT32_MAX; },
         'D'},
    };
    for (const auto& rij : rijen) {
        std::vector<Order> orders = DRIE;
        Regel& l = orders[0].modellen[0].regels[0]; // line 101: two terms
        ASSERT_EQ(l.termen.size(), 2U);
        rij.maak(l);
        zet("JRN", bytes(orders));
        std::string gezegd;
        int einde = in_kind([] { return kies(0) && regel_lees(regel_op(1), &regel_nu) ? 0 : 9; }, &gezegd);
        EXPECT_EQ(einde, rij.tag ? 1 : 0) << rij.wat << gezegd;
        if (rij.tag) {
            EXPECT_TRUE(bevat(gezegd, "ORD0012.JRN inconsistent")) << rij.wat;
            EXPECT_EQ(scratch(), "") << "told before anything is made";
        }
        EXPECT_EQ(inhoud("JRN"), bytes(orders)) << rij.wat;
        for (const char* ext : {"WRK", "ORS", "ACT"})
            unlink(pad(ext).c_str());
    }
}

// Random bytes in any of the files: a report or a refusal, never a crash; and sound orders in front of the
// damage are never changed.
TEST_F(Storingen, willekeurige_bytes) {
    std::mt19937 toeval(20160301);
    auto getal = [&](size_t n) { return static_cast<size_t>(toeval() % n); };
    const std::string jrn = bytes(DRIE), wrk = bytes(maak_order(2, {2, 1}), true);
    const auto o1 = static_cast<int32_t>(bytes(DRIE[0]).size());
    const auto o2 = o1 + static_cast<int32_t>(bytes(DRIE[1]).size());
    for (int ronde = 0; ronde < 400; ronde++) {
        std::map<std::string, std::string> files = {
            {"JRN", jrn}, {"WRK", wrk}, {"ACT", act(o1, o2, static_cast<int32_t>(jrn.size()))}};
        if (ronde % 4 == 0)
            files.erase("WRK");
        auto it = files.begin();
        std::advance(it, static_cast<ptrdiff_t>(getal(files.size())));
        std::string& doel = it->second;
        for (size_t i = 1 + getal(3); i--;) {
            switch (getal(4)) {
            case 0:
                doel[getal(doel.size())] = static_cast<char>(toeval());
                break;
            case 1:
                doel[getal(doel.size())] = "OMDTSEBLFX"[getal(10)];
                break;
            case 2:
                doel.resize(1 + getal(doel.size()));
                break;
            case 3:
                doel.insert(getal(doel.size()), std::string(1 + getal(140), "OMDTSEBLF\0"[getal(10)]));
                break;
            }
        }
        for (const auto& [ext, b] : files)
            zet(ext.c_str(), b);
        std::string gezegd;
        int einde = in_kind(
            [] {
                herstart();
                for (int n = 0; n < 3; n++) {
                    if (!kies(n))
                        return 0;
                    ors_ingang e{};
                    regelloop loop;
                    regelloop_begin(&loop);
                    for (bool er = ors_lees('F', &e); er; er = ors_lees('N', &e))
                        regel_lees(&loop, e, &regel_nu);
                    if (e.regel && regel_lees(e, &regel_nu)) {
                        wrk_regel_vervang(&e, &regel_nu);
                        wrk_regel_uit(&e);
                    }
                    sluit();
                }
                return 0;
            },
            &gezegd);
        ASSERT_TRUE(einde == 0 || (einde == 1 && gezegd.find("inconsistent") != std::string::npos))
            << "round " << ronde << ": " << einde << "\n"
            << gezegd;
        for (const char* ext : {"WRK", "TMP", "ORS", "ACT", "JRN"})
            unlink(pad(ext).c_str());
    }
}

} // namespace
} // namespace zg::test
