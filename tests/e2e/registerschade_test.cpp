// Damage in the files of the full registration: told, and nothing is written over it.
#include "e2e/storingsmap.h"
#include "shared/ioeti.h"
#include "tools/shell.h"

using namespace zg::test;

namespace {

// Damage met through the screens: it is told, its line can't be worked on, and nothing is written over.
TEST(Registerschade, ToldAndLeftAlone) {
    Storingsmap map;
    ASSERT_EQ(map.loop("<Enter><Enter>99<Enter><Enter><Esc><Esc>" + std::string(NIEUW) + WEG), 0);
    map.begin = map.inhoud();
    const size_t laatste = map.begin.at("DTSER.TXT").size() - sizeof(zg::serrec);
    int32_t kop;
    memcpy(&kop, &map.begin.at("DTSER.TXT")[laatste + offsetof(zg::serrec, etiketkop)], sizeof kop);
    const size_t blok = static_cast<size_t>(kop) * sizeof(zg::etiblok);
    const size_t link = blok + offsetof(zg::etiblok, volgende);
    const size_t groep = map.begin.at("DTIPG.TXT").size() - sizeof(zg::prijsgroeprec);
    static constexpr char BEKIJK[] = "<Enter>WAVJ<Enter>WOD010416<Enter><Esc><Esc><Esc><Esc><Esc><Esc>";
    const struct {
        const char *wat, *bestand;
        size_t plaats;
        std::string bytes; // empty: cut off there
        const char *toetsen, *gezegd;
    } rijen[] = {
        {"a chain into another series", "DTETI.TXT", link, i32(0), BEKIJK, "Etiket niet van 1120.20."},
        {"a circle", "DTETI.TXT", link, i32(kop), BEKIJK, "DTETI.TXT: serie 1120.20."},
        {"a chain past the end", "DTETI.TXT", link, i32(500'000), BEKIJK, "Buiten bestand"},
        {"a chain to a number that is none", "DTETI.TXT", link, i32(-7), BEKIJK, "DTETI.TXT: serie 1120.20."},
        {"status 5", "DTETI.TXT", link + 4 + 8, i32(20'005), BEKIJK, "DTETI.TXT: serie 1120.20."},
        {"status 9, all bits set", "DTETI.TXT", link + 4, std::string(zg::ETIPLAATS, '\xFF'), BEKIJK,
         "DTETI.TXT: serie 1120.20."},
        {"a size that the line hasn't", "DTETI.TXT", link + 4 + 20, "\x89\x13", "<Enter>WA", // 50, type 1
         "Regel niet toegankelijk"},
        {"a cut file", "DTETI.TXT", blok + 100, "", BEKIJK, "Buiten bestand"},
        {"a chain cut off", "DTSER.TXT", laatste + offsetof(zg::serrec, etiketkop), i32(-1), BEKIJK,
         "meer etiketten geteld"},
        {"a size type that there isn't", "DTSER.TXT", laatste + offsetof(zg::serrec, maatsoort), "\x4D", "",
         "maatsoort 77: stuks in een maat"},
        {"wild counts", "DTSER.TXT", laatste + offsetof(zg::serrec, in_nota), i32(99'999), BEKIJK,
         "meer etiketten geteld"},
        {"a group that disagrees", "DTIPG.TXT", groep + offsetof(zg::prijsgroeprec, setnr), i32(7), BEKIJK,
         "NIET consistent"},
        {"a cut file of groups", "DTIPG.TXT", groep + 3, "", BEKIJK, "NIET consistent"},
        {"wild counters of labels", "DTSYS.TXT", 3 * 64, i32(-5), NIEUW, "Tellers van de etiketten"},
        {"counters far behind the labels", "DTSYS.TXT", 3 * 64, i32(500'000) + i32(500'000), NIEUW,
         "Tellers van de etiketten"},
        {"free blocks that a series has", "DTSYS.TXT", 3 * 64, i32(kop), NIEUW,
         "Ketting van vrije etiketblokken"},
        {"free groups that a set has", "DTSYS.TXT", 8 * 64, i32(0), NIEUW, "Ketting van vrije prijsgroepen"},
        {"wild counters of groups", "DTSYS.TXT", 8 * 64, i32(-5), NIEUW, "Ketting van vrije prijsgroepen"},
        {"a cut file of series", "DTSER.TXT", laatste + 100, "", BEKIJK, "DTSER.TXT: serie 1120.20."},
        {"a series written over", "DTSER.TXT", laatste, std::string(sizeof(zg::serrec), '\0'), BEKIJK,
         "DTSER.TXT: serie 1120.20."},
        {"a cut file of sets", "DTIPA.TXT", map.begin.at("DTIPA.TXT").size() - sizeof(zg::prijsset) + 3, "",
         BEKIJK, "prijsset niet aanwezig"},
        {"free codes that a series has", "DTEAN.INX", 12, i32(1), NIEUW, "DTEAN"},
        {"a wild counter of codes", "DTSYS.TXT", 13 * 64, i32(-5), NIEUW, "EAN-code"},
    };
    for (const auto& r : rijen) {
        SCOPED_TRACE(r.wat);
        map.zet_terug();
        std::string b = map.begin.at(r.bestand);
        b = r.bytes.empty() ? b.substr(0, r.plaats) : b.replace(r.plaats, r.bytes.size(), r.bytes);
        schrijf_bestand(map.bestand(r.bestand), b);
        const auto voor = map.inhoud();
        const auto t = map.start(overgave(map), KIES);
        if (r.toetsen != BEKIJK) // met only where something is written
            t->toetsen(r.toetsen);
        t->wacht(r.gezegd, 5000);
        t->toetsen(r.toetsen == BEKIJK ? BEKIJK : "<Enter>");
        EXPECT_LE(Storingsmap::klaar(*t), 1) << t->scherm();
        for (const char* naam : {"DTETI.TXT", "DTIPG.TXT", "DTIPA.TXT", "DTSER.TXT"})
            EXPECT_TRUE(lees_bestand(map.bestand(naam)).starts_with(voor.at(naam))) << naam;
        if (r.toetsen == BEKIJK)
            EXPECT_EQ(lees_bestand(map.bestand(JRN)), voor.at(JRN))
                << "the line is gone, or the order has another date";
    }
}

// Killed between the record of a new series and its price set: the line has the prices that it was to get, and says so.
TEST(Registerschade, WithoutItsPriceSet) {
    Storingsmap map;
    ASSERT_EQ(map.loop("<Enter><Enter>99<Enter><Enter><Esc><Esc>" + std::string(WEG).substr(0, 10)), 0);
    map.begin = map.inhoud();
    const std::string nieuw = "<Enter><Enter>99<Enter><Enter><Esc><Esc>" + std::string(NIEUW) + WEG;
    ASSERT_EQ(map.loop(nieuw), 0);
    const zg::prijsgroeprec heel = map.alle<zg::prijsgroeprec>("DTIPG.TXT").back();
    const auto labels = labels_van(map, kop_van(lees_bestand(map.bestand(JRN))).ordernummer);
    ASSERT_FALSE(labels.empty());
    const std::string voor = map.begin.at("DTSER.TXT");
    int gezien = 0;
    for (int n = 0; n < 200 && !gezien; n++) {
        map.zet_terug();
        map.loop(nieuw, n);
        if (sh("ixcheck -q \"" + map.pad() + "\"").status ||
            lees_bestand(map.bestand("DTSER.TXT")).size() == voor.size() ||
            lees_bestand(map.bestand("DTIPA.TXT")) != map.begin.at("DTIPA.TXT"))
            continue;
        gezien++;
        const auto t = map.start(overgave(map), "<Enter><Enter>99<Enter><Enter><Enter>");
        t->wacht("prijsset niet aanwezig", 5000);
        t->wacht("De prijzen van de orderregel gelden");
        t->toetsen("<Enter>WA010316<Enter>310316<Enter>3<Enter><Enter>4<Enter><Enter><Enter><Esc>" +
                   std::string(WEG));
        EXPECT_EQ(Storingsmap::klaar(*t), 0) << t->scherm();
        const zg::prijsgroeprec nu = map.alle<zg::prijsgroeprec>("DTIPG.TXT").back();
        EXPECT_EQ(nu.netto, heel.netto);
        EXPECT_EQ(nu.bruto, heel.bruto);
        const auto later = labels_van(map, kop_van(lees_bestand(map.bestand(JRN))).ordernummer);
        EXPECT_EQ(later.size(), labels.size());
        for (const zg::etiket& l : later)
            EXPECT_EQ(l.inkoop, labels[0].inkoop);
        EXPECT_EQ(sh("zgcheck -q \"" + map.pad() + "\"").tekst, "");
    }
    EXPECT_TRUE(gezien) << "no kill left a series without its set";
}

// A pair that another's death left marked while a line is entered: nothing of the line is written, and nobody stops. An order
// whose number can't be written stays in its work file.
TEST(Registerschade, MarkedPairsAreSeenBeforeTheFirstWrite) {
    Storingsmap map;
    ASSERT_EQ(map.loop("<Enter><Enter>99<Enter><Enter><Esc><Esc>" + std::string(NIEUW) + WEG), 0);
    map.begin = map.inhoud();
    const std::string nieuw = NIEUW, voor_esc = nieuw.substr(0, nieuw.size() - 5);
    std::vector<std::array<std::string, 3>> rijen; // the pair, keys, the last one behind the mark
    for (const char* paar : {"DTSER", "DTIPA", "DTEAN"})
        rijen.insert(rijen.end(), {{paar, voor_esc, "<Esc>"},
                                   {paar, "WAF9<Enter><Esc>", "<Esc>"},
                                   {paar, "WOG5<Enter>", "<Esc>"},
                                   {paar, "VJ", "<Enter>"}});
    rijen.push_back({"DTORDNR", "WAF9<Enter><Esc><Esc>", "<Esc>"});
    for (const auto& [paar, toetsen, laatste] : rijen) {
        SCOPED_TRACE(paar + " at " + toetsen);
        map.zet_terug();
        const auto t = map.start(overgave(map), KIES + toetsen);
        ASSERT_TRUE(t->kalm(20'000)) << t->scherm();
        wijzig_bestand(map.bestand(paar + ".INX"), offsetof(zg::IXHEADER, busy), "\1");
        const auto voor = map.inhoud();
        t->toetsen(laatste);
        t->wacht(paar + ": niet consistent", 10'000);
        t->toetsen("<Enter>");
        t->kalm();
        for (const char* naam : {"DTSER.TXT", "DTIPA.TXT", "DTIPG.TXT", "DTETI.TXT", "DTEAN.TXT", JRN})
            EXPECT_EQ(lees_bestand(map.bestand(naam)), voor.at(naam)) << naam;
        t->toetsen(WEG);
        EXPECT_EQ(Storingsmap::klaar(*t), 0) << t->scherm();
    }
}

} // namespace
