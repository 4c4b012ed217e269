// The small firm of tests/e2e/proef: three branches, a few master records, and the journals that the case puts
// there. Everything varies by what the case says, nothing by the demo data.
#pragma once
#include "support/demomap.h"
#include "support/ordbytes.h"

namespace zg::test {

inline constexpr uint16_t WERKDATUM = 42430; // 1 March 2016
inline constexpr int SESSIE = 7;

class Datamap : public DemoMap {
public:
    Datamap();

    // Bytes of DTSYS.TXT in place; the session's slot begins at slot().
    void sys(size_t plaats, std::string_view bytes);
    static size_t slot(int sessie = SESSIE) { return 2640 + 64 * (static_cast<size_t>(sessie) - 1); }
    void journaal(const std::string& inhoud, int leverancier = 12, const std::string& seizoen = "2016Z");
    std::string journaal(int leverancier = 12) const; // of summer 2016; "" when absent
    bool bestaat(const std::string& naam) const;
    std::string restjes() const; // names of the scratch files of that season

    // The menu's hand-over for a session: its slot is made ready. And the program's command line.
    std::vector<std::string> overgave(int sessie = SESSIE, const char* gebruiker = "Joke");
    Opties opties() const; // clock 1 March 2016; BIN leads to a stand-in that shows what it was started with
};

struct InDatamap : testing::Test {
    Datamap map;
};

// The order of supplier 99 gets a kind of message that has receiving locations, as the EDI programs do it.
void met_locatie(const DemoMap& map);

// Records as they stand in a journal.
struct Regel {
    uint16_t merk = 5;
    std::string model = "JURK";
    std::string dessin = "UNI";
    uint16_t kleur = 1;
    int aantal = 1; // pieces of size 1 in branch 0
    int32_t prijs = 1000;
    uint8_t maatsoort = 1;
};
ordkop maak_kop(const std::string& omschrijving, uint16_t datum = WERKDATUM);
std::string rec_model(int merk, const std::string& naam, int maatsoort, int32_t groep = 10001);
orddessin een_dessin(const std::string& naam, int kleur, int maten); // of sizes 1 to `maten`
inline std::string rec_maat(int maat, int32_t bruto, int32_t netto) {
    return record('S', ordmaat{static_cast<uint8_t>(maat), {}, bruto, netto});
}
inline std::string rec_term(int van, int tot) {
    return record('L', ordlevt{static_cast<uint16_t>(van), static_cast<uint16_t>(tot)});
}
inline std::string rec_cel(int filiaal, int maat, int32_t aantal) {
    return record('F', ordfil{static_cast<uint8_t>(filiaal), static_cast<uint8_t>(maat), 0, aantal});
}
// An order: header, conditions that aren't empty, and its lines; equal brand and model share an M.
std::string maak_order(const ordkop& kop, const std::vector<Regel>& regels, const std::string& levering = "",
                       const std::string& betaling = "");
ordkop kop_van(const std::string& jrn); // of its first order

} // namespace zg::test
