// A copy of the demo data directory in a temporary place, and the program started in it as a buyer starts it:
// from the menu.
#pragma once
#include "support/proef.h"

namespace zg::test {

class DemoMap {
public:
    // The firm of these texts, made with an option of zgdemo: "--register" for the full registration, "--empty-register"
    // for one without a series. Its data is made once a test program, and copied.
    explicit DemoMap(const std::string& teksten = "data/demo", const std::string& optie = "");
    const std::string& pad() const { return map_.pad(); }
    std::string bestand(const std::string& naam) const { return pad() + "/" + naam; }
    // Every plain file's content by name, season directories included.
    std::map<std::string, std::string> inhoud() const;
    // Names of files that differ between two such pictures.
    // All of a file of such records, one behind the other.
    template <class R> std::vector<R> alle(const char* naam) const {
        const std::string bytes = lees_bestand(bestand(naam));
        std::vector<R> uit(bytes.size() / sizeof(R));
        memcpy(static_cast<void*>(uit.data()), bytes.data(), uit.size() * sizeof(R));
        return uit;
    }
    static std::string verschil(const std::map<std::string, std::string>& a,
                                const std::map<std::string, std::string>& b);

private:
    TijdelijkeMap map_{false};
};

// A value at a place of a file, which grows where it ends before.
template <class T> void zet(const DemoMap& map, const char* naam, size_t plaats, T waarde) {
    std::string b = lees_bestand(map.bestand(naam));
    if (b.size() < plaats + sizeof waarde)
        b.resize(plaats + sizeof waarde);
    memcpy(&b[plaats], &waarde, sizeof waarde);
    schrijf_bestand(map.bestand(naam), b);
}

// Options for the menu or the program in that directory, with the clock at 1 March 2016.
Opties demo_opties(const DemoMap& map);
std::string programma(const char* naam); // path of a built program
// The menu up to the season prompt, as the n-th free user.
void naar_seizoen(Terminal& t, int gebruiker = 1);
// A user of this slot on his way from one program to the next, since `tijd`.
void onderweg(const std::string& dtsys, int slot, int64_t tijd);
// Log in and hand over without a menu: the slot of DTSYS.TXT written as the menu does. The argv of zgbestel.
std::vector<std::string> overgave(const DemoMap& map, int slot = 1, const char* naam = "Joke");

} // namespace zg::test
