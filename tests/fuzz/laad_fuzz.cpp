// Texts fed to ixload, as CSV or as JSON lines. Nothing may crash; and what was loaded comes back the same from its
// own dump, in both forms.
#include "fuzz/hulp.h"
#include "store/ix.h"
#include "tools/opdracht.h"

using namespace zg;
using namespace zg::fuzz;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    begin();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n) {
    if (n < 1)
        return 0;
    schrijf("in", std::string(reinterpret_cast<const char*>(data) + 1, n - 1));
    Opdracht o;
    o.namen = {data[0] & 1 ? "DTMERK" : "L"};
    o.bestand = "in";
    o.vervang = true;
    o.woordenboek = (data[0] & 6) == 6;
    const std::string pad = o.namen[0] + ".TXT";
    int uitkomst = FOUT_GEVONDEN;
    ronde([&] { uitkomst = ixload(o); });
    if (uitkomst != GOED)
        return 0;
    const std::string geladen = lees(pad.c_str());
    for (bool json : {false, true}) {
        Opdracht uit;
        uit.namen = o.namen;
        uit.json = json;
        uit.bestand = "uit";
        o.bestand = "uit";
        o.woordenboek = false;
        std::string rapport;
        bool heel = ronde([&] { uitkomst = ixdump(uit) ? 10 : ixload(o); }, &rapport);
        if (!heel || uitkomst != GOED || lees(pad.c_str()) != geladen)
            kapot("a dump does not give the data back, status " + std::to_string(uitkomst) + " " + rapport);
    }
    return 0;
}
