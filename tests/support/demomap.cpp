#include "support/demomap.h"

namespace zg::test {

namespace fs = std::filesystem;

namespace {

// The data directory of a firm's text, made once a test program and removed with it.
const std::string& bron(const std::string& teksten, const std::string& optie) {
    static const auto alleen_van_ons = [maker = getpid()](TijdelijkeMap* map) { // not a child's that exits
        if (getpid() == maker)
            delete map;
    };
    static const std::unique_ptr<TijdelijkeMap, decltype(alleen_van_ons)> map(new TijdelijkeMap(false),
                                                                              alleen_van_ons);
    static std::map<std::string, std::string> gemaakt;
    std::string& pad = gemaakt[teksten + optie];
    if (pad.empty()) {
        pad = map->pad() + "/" + std::to_string(gemaakt.size());
        std::string opdracht = "\"" + programma("zgdemo") + "\" " + pad + " --from \"" ZG_SOURCE_DIR "/" +
                               teksten + "\" " + optie;
        EXPECT_EQ(system(opdracht.c_str()), 0);
    }
    return pad;
}

} // namespace

std::string programma(const char* naam) {
    return std::string(ZG_BINARY_DIR "/") + naam;
}

DemoMap::DemoMap(const std::string& teksten, const std::string& optie) {
    fs::copy(bron(teksten, optie), map_.pad(),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
}

std::map<std::string, std::string> DemoMap::inhoud() const {
    std::map<std::string, std::string> alles;
    for (const auto& e : fs::recursive_directory_iterator(pad()))
        if (e.is_regular_file())
            alles[fs::relative(e.path(), pad())] = lees_bestand(e.path());
    return alles;
}

std::string DemoMap::verschil(const std::map<std::string, std::string>& a,
                              const std::map<std::string, std::string>& b) {
    std::map<std::string, std::string> anders;
    std::set_symmetric_difference(a.begin(), a.end(), b.begin(), b.end(),
                                  std::inserter(anders, anders.end()));
    std::string uit;
    for (const auto& [naam, inhoud] : anders)
        uit += naam + " ";
    return uit;
}

Opties demo_opties(const DemoMap& map) {
    Opties o;
    o.map = map.pad();
    o.klok = "2016-03-01 12:00:00";
    o.omgeving = {{"BIN", ZG_BINARY_DIR}};
    return o;
}

void naar_seizoen(Terminal& t, int gebruiker) {
    t.wacht("Gebruiker");
    for (int i = 1; i < gebruiker; i++)
        t.toetsen("<Down>");
    t.toetsen("<Enter>", "Orders registreren");
    t.toetsen("<Enter>", "Seizoen");
    t.kalm();
}

void onderweg(const std::string& dtsys, int slot, int64_t tijd) {
    std::string sys = lees_bestand(dtsys);
    const size_t p = 2640 + static_cast<size_t>(slot - 1) * 64;
    sys[p + 38] = 2;
    const auto wanneer = static_cast<uint32_t>(tijd);
    memcpy(&sys[p + 40], &wanneer, 4);
    memcpy(&sys[p + 48], "zgbestel\0", 10);
    schrijf_bestand(dtsys, sys);
}

std::vector<std::string> overgave(const DemoMap& map, int slot, const char* naam) {
    onderweg(map.bestand("DTSYS.TXT"), slot, 0);
    return {programma("zgbestel"), "zgbestel", naam, std::to_string(slot), "zgbsmenu"};
}

} // namespace zg::test
