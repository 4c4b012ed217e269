// Pictures on a disk that refuses, and killed: links and new files.
#include "store/rebuild.h"
#include "sub/afb_hdl.h"
#include "sub/omserie.h"
#include "support/roepstoring.h"
#include "support/systeem.h"
#include "term/toets.h"

namespace zg::test {
namespace {

constexpr seriesleutel A{1110, 14, 1}, B{1110, 14, 2};
const std::string NIEUW = "foto/nieuw/ZOMER.PCX", EERSTE = "foto/0103/ZOMER.PCX",
                  TWEEDE = "foto/0103/ZOMER.01.PCX";

struct Fotomap : Systeem {
    Fotomap() {
        EXPECT_NE(DDNEW(DDNUMMER("DTSERPIC"), "DTSERPIC"), 0);
        sysafbeelding s{};
        VASTIN(s.map, "foto");
        zet(7, s, SYS_RECORD);
    }
    ~Fotomap() override { uit(); }
    static void in() {
        open();
        dtserpic = IXOPEN("DTSERPIC", 2);
        afb_instelling();
    }
    static void uit() {
        if (dtserpic)
            IXCLOSE(dtserpic);
        dtserpic = nullptr;
    }
    // Links of both series, and what the new file's names hold: "a.PCX 3 |  |new||old|".
    static std::string stand() {
        in();
        std::string tekst;
        for (const seriesleutel& s : {A, B}) {
            uint16_t merk = 0;
            const std::string naam = afb_van(s, &merk);
            tekst += naam + " " + std::to_string(merk) + "|";
        }
        uit();
        for (const std::string& pad : {NIEUW, EERSTE, TWEEDE})
            tekst += (IOEXISTS(pad.c_str()) ? lees_bestand(pad) : "-") + "|";
        return tekst;
    }
    static void begin() {
        in();
        afb_wis(A), afb_schrijf(B, "b.PCX", 103);
        uit();
        EXPECT_EQ(system("rm -rf foto; mkdir -p foto/nieuw foto/0103"), 0);
        schrijf_bestand(NIEUW, std::string(5000, 'n'));
        schrijf_bestand(EERSTE, "oud");
        schrijf_bestand(EERSTE + ".2147483647", "a copy whose maker was killed");
    }
};

// The work in a program of its own, with the n-th call that writes its last one, or refused: 10 and its answer, 20 and it when
// it was disturbed.
int doe(const std::function<bool()>& werk, int n, bool dood, bool zonder_link) {
    Terminal t([&] {
        Fotomap::in();
        SCRINIT();
        for (const int32_t key : {K_F3, K_F6})
            TOETSTERUG(key);
        stoor_roep(n, dood);
        if (zonder_link)
            SYS.link = [](const char*, const char*) { return errno = EPERM, -1; };
        const bool goed = werk();
        const int uit = (gestoord() ? 20 : 10) + goed;
        SYS = roep_echt;
        SCREXIT();
        return uit;
    });
    EXPECT_TRUE(t.kalm() || !t.leeft());
    if (t.leeft()) // a box with the refusal
        t.toetsen("<Enter>");
    return t.einde();
}

// Each call that writes refused, or the last of the process: a link is the old or the new one, a file is whole under one of
// its names, and what stood there stays. Where there are no links between files it is copied.
TEST_F(Fotomap, KilledAndRefused) {
    const std::string vol(5000, 'n');
    const std::vector<std::string> bestanden = {vol + "|oud|-|", vol + "|oud|" + vol + "|",
                                                "-|oud|" + vol + "|"};
    const auto import = [] { return afb_import(103) == 1; };
    const struct {
        const char* naam;
        std::function<bool()> doe;
        std::vector<std::string> goed; // the last: undisturbed
        bool zonder_link = false;
    } rijen[] = {
        {"linked", [] { return afb_schrijf(A, "a.PCX", 103); }, {" 0|b.PCX 103|", "a.PCX 103|b.PCX 103|"}},
        {"loosened", [] { return afb_wis(B); }, {" 0|b.PCX 103|", " 0| 0|"}},
        {"read in", import, bestanden},
        {"copied", import, bestanden, true},
    };
    for (const auto& r : rijen)
        for (bool dood : {false, true})
            for (int n = 0, klaar = 0; !klaar; n++) {
                SCOPED_TRACE(std::string(r.naam) + (dood ? " killed at " : " refused ") + std::to_string(n));
                ASSERT_LT(n, 60);
                begin();
                const int status = doe(r.doe, n, dood, r.zonder_link);
                klaar = status == 11;
                EXPECT_TRUE(klaar || status == 20 || status == 21 || (dood && status == 128 + SIGKILL))
                    << status;
                std::vector<std::string> gewist;
                EXPECT_EQ(IXBLDIX("DTSERPIC", &gewist), 1);
                const std::string nu = stand();
                auto past = [&](const std::string& g) { return nu.find(g) != std::string::npos; };
                EXPECT_TRUE(klaar ? past(r.goed.back()) : std::any_of(r.goed.begin(), r.goed.end(), past))
                    << nu.substr(0, 60);
                EXPECT_TRUE(dood || past(r.goed.back()) == ((status & 1) != 0)) << "what was answered is so";
                if (dood && r.goed.size() == 3 && !r.zonder_link) { // again: it isn't read in twice
                    doe(r.doe, 1000, false, false);
                    EXPECT_TRUE(bevat(stand(), r.goed.back()));
                    EXPECT_FALSE(IOEXISTS("foto/0103/ZOMER.02.PCX"));
                }
                EXPECT_TRUE(!klaar || r.goed.size() < 3 || system("ls foto/0103 | grep -qv PCX$") != 0)
                    << "nothing beside";
            }
    schrijf_bestand(NIEUW, vol);
    schrijf_bestand("foto/0104", "");
    const Afloop plat = in_proces([] {
        in();
        return afb_import(104);
    });
    EXPECT_EQ(plat.uitvoer, "foto/0104\nis geen map\n");
}

} // namespace
} // namespace zg::test
