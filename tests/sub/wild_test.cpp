// Random keys in the screens of size types, bars and runs, on tables of which some contradict themselves: nothing
// crashes, hangs or stays open, and what must hold of sizes and rows does hold afterwards.
#include "sub/maatsoort.h"
#include "sub/reeksen.h"
#include "support/slotboek.h"
#include "support/systeem.h"
#include "support/wild.h"

namespace zg::test {
namespace {

void druk_toetsen() {
    static const int32_t BIJZONDER[] = {K_ENTER, K_ENTER, K_LEFT, K_RIGHT, K_UP,  K_DOWN, K_F3,
                                        K_F5,    K_F6,    K_F7,   K_F8,    K_F10, K_PGUP, K_PGDN,
                                        K_DC,    K_BACK,  K_HOME, K_ESC,   K_TAB};
    static const char TEKENS[] = "11112222349jjnnsttwwvvkxABM~- ,";
    for (int i = 0; i < 400; i++) // the last of the stack ends whatever is open
        TOETSTERUG(dobbel(3) ? K_ESC : K_ENTER);
    for (int i = dobbel(80); i > 0; i--)
        TOETSTERUG(dobbel(2) ? BIJZONDER[dobbel(std::size(BIJZONDER))] : TEKENS[dobbel(sizeof TEKENS - 1)]);
}

std::map<int, std::string> maten_van(uint8_t stelsel, uint8_t soort, bool* stuk) {
    std::map<int, std::string> uit;
    mthandle* h = mtopen(stelsel, soort, 0);
    mtinfo info{};
    for (int er = mtread(h, 'F', &info, 2); er; er = mtread(h, 'N', &info, 2))
        uit[info.maatnr] = VASTTEKST(info.naam);
    *stuk = h->stuk;
    mtclose(h);
    return uit;
}

// Each size has a label of its own; a damaged record may have it otherwise.
std::string label_fout(const std::map<int, std::string>& maten) {
    for (const auto& [nr, naam] : maten)
        for (const auto& [ander, zelfde] : maten)
            if (naam.empty() || (nr != ander && naam == zelfde))
                return "label \"" + naam + "\"";
    return "";
}

std::string onderhoud() {
    const auto stelsel = static_cast<uint8_t>(1 + dobbel(2)), soort = static_cast<uint8_t>(1 + dobbel(9));
    bool stuk = false, na_stuk = false;
    const auto voor = maten_van(stelsel, soort, &stuk);
    const std::string bytes = lees_bestand("DTMAAT.TXT");
    const bool er = maatsoort_onderhoud(dobbel(25), dobbel(80), stelsel, soort);
    const auto na = maten_van(stelsel, soort, &na_stuk);
    if (stuk)
        return bytes == lees_bestand("DTMAAT.TXT") ? "" : "a damaged table was written";
    if (na_stuk)
        return "damaged a table";
    for (const auto& [nr, naam] : voor)
        if (!na.contains(nr) || (naam[0] != '~' && na.at(nr) != naam))
            return "lost size " + naam;
    if (const std::string fout = label_fout(na); !fout.empty() && label_fout(voor).empty())
        return fout;
    return er && na.empty() ? "there, without sizes" : "";
}

std::string van_serie() {
    uint8_t maten[MAATBYTES], vast[MAATBYTES] = {}, oud[MAATBYTES];
    for (uint8_t& b : maten)
        b = static_cast<uint8_t>(worp() & worp() & worp());
    for (int i = 0; i < MAATBYTES; i++)
        vast[i] = static_cast<uint8_t>(maten[i] & worp());
    memcpy(oud, maten, sizeof oud);
    const bool er = serie_maten(dobbel(25), 1, maten, vast);
    if (er != (balk_heeft(maten) && balk_kolommen() > 0) && er)
        return "taken without a size";
    for (int m = 1; m <= MATEN; m++)
        if (maat_in(vast, m) && !maat_in(maten, m))
            return "took a size with quantities";
    return er || memcmp(oud, maten, sizeof oud) == 0 ? "" : "given up, and changed";
}

std::string reeksen() {
    reeksrij rij{};
    int64_t som = 0;
    uint8_t getoond[MAATBYTES];
    balk_maten(getoond);
    if (dobbel(2)) {
        if (!reeks_kiezen(maatbalk->soort, dobbel(4) ? "SWTV" : "S", nullptr, &rij))
            return "";
        for (int m = 1; m <= MATEN; m++) {
            if (rij[static_cast<size_t>(m)] < 0 || (rij[static_cast<size_t>(m)] && !maat_in(getoond, m)))
                return "a run beside the bar";
            som += rij[static_cast<size_t>(m)];
        }
        return som == rij[0] && som > 0 ? "" : "a run's sum";
    }
    aantalmatrix m;
    fmclear(&m);
    for (int i = dobbel(12); i > 0 && balk_kolommen(); i--)
        fmadd(&m, dobbel(firma.filialen), balk_maat(1 + dobbel(balk_kolommen())), dobbel(3000));
    const aantalmatrix was = m;
    const bool behoud = dobbel(2) != 0;
    const bool anders = reeks_scherm(maatbalk->soort, &m, behoud, nullptr);
    aantalmatrix geteld = m;
    fmtotals(&geteld);
    for (size_t i = 0; i < m.size(); i++) {
        const bool totaal = i >= matrix_plaats(firma.filialen, 0);
        if (m[i] < 0 || m[i] != (totaal && behoud ? was[i] : geteld[i]))
            return "cell " + std::to_string(i);
    }
    return anders == (m != was) ? "" : "change not told";
}

// Now and then a record that no program wrote. A free slot stays as it is: with other bytes it reads as a record that
// hangs in the chain of free ones, and the store stops there.
void beschadig() {
    std::string alles = lees_bestand("DTMAAT.TXT");
    if (const int regels = static_cast<int>(alles.size() / sizeof(maatrij))) {
        const size_t rij = static_cast<size_t>(dobbel(regels)) * sizeof(maatrij), byte = 14 + dobbel(4 * 40);
        const char teken = static_cast<char>(worp());
        if (IXRECLIVE(&alles[rij], sizeof(maatrij))) {
            alles[rij + byte] = teken;
            schrijf_bestand("DTMAAT.TXT", alles);
        }
    }
    int32_t nr = 1 + dobbel(9);
    maatreeksrec rec{static_cast<uint8_t>(1 + dobbel(9)), {}, {}};
    for (int i = 0; i < 20; i++)
        rec.aantal[dobbel(20)] = static_cast<int32_t>(dobbel(3) ? dobbel(50) : static_cast<int>(worp()));
    iotab('W', &nr, &rec, SYS_MAATREEKS);
}

TEST(SubWild, Keys) {
    TijdelijkeMap map;
    schrijf_bestand("DTSYS.TXT", std::string(130'000, '\0'));
    int32_t vensters = 0;
    auto begin = [&] {
        Systeem::open();
        maak_filialen({1, 2, 3, 14, 20});
        firma.maatstelsel = 1;
        dtmaat = nieuw_paar("DTMAAT", {"maten,404", "k1,NODUPS,I,1,1,I,2,2"}, 2);
        dtmtom = nieuw_paar("DTMTOM", {"maatomschr.,10", "k1,NODUPS,I,1,1,I,2,2,I,3,3"}, 2);
        vensters = SCHERM.aantal;
    };
    wilde_beurten(400, 1, begin, [&] {
        druk_toetsen();
        const int wat = dobbel(3);
        if (wat > 0)
            balk_open(static_cast<uint8_t>(1 + dobbel(2)), static_cast<uint8_t>(1 + dobbel(9)), nullptr);
        std::string fout = wat == 0 ? onderhoud() : wat == 1 ? van_serie() : reeksen();
        TOETSLEEG();
        if (SCHERM.aantal != vensters)
            fout += " a window stays";
        if (const std::string sloten = slotboek(); !sloten.empty())
            fout += " a lock stays: " + sloten;
        if (dobbel(20) == 0) {
            balk_sluit();
            beschadig();
        }
        return fout;
    });
}

} // namespace
} // namespace zg::test
