// ixcheck: the deep check of pairs, one line a file and a total.
#include "shared/woordenboek.h"
#include "store/diepcheck.h"
#include "store/wachtrij.h"
#include "term/natl.h"
#include "tools/opdracht.h"

namespace zg {

int ixcheck(const Opdracht& o) {
    gewone_bestanden();
    std::vector<std::string> namen;
    int slechtst = paren(o.namen, &namen) ? GOED : FOUT_GEBRUIKT;
    int goed = 0, fout = 0, dicht = 0;
    for (const std::string& naam : namen) {
        Paar paar;
        int uitkomst = paar_neem(naam, o.wacht, &paar);
        if (uitkomst != GOED) {
            dicht++;
            slechtst = slechtst == GOED ? uitkomst : slechtst;
            continue;
        }
        std::vector<std::string> bevindingen;
        {
            Werkbalk balk("check " + tabelnaam(naam));
            bevindingen = IXDIEPCHECK(paar.idx, paar.dat);
        }
        const bool leesbaar = paar_kop(&paar).empty();
        std::vector<std::string> gereserveerd;
        if (leesbaar && !o.stil)
            gereserveerd = IXRESERVERINGEN(paar.idx, paar.kop);
        paar_los(&paar);
        for (const std::string& s : gereserveerd)
            tool_zeg("%s: key reserved: %s\n", naam.c_str(), CP850UTF8(s).c_str());
        if (bevindingen.empty()) {
            goed++;
            if (!o.stil)
                tool_zeg("%s: good, %d records, %lld index blocks\n", naam.c_str(), paar.kop.nrecs,
                         static_cast<long long>(paar.idxbytes / IXBLOK));
            continue;
        }
        fout++;
        slechtst = FOUT_GEVONDEN;
        for (const std::string& b : bevindingen)
            tool_zeg("%s: %s\n", naam.c_str(), b.c_str());
    }
    if (!o.stil || fout + dicht > 0)
        tool_zeg("%d good, %d wrong, %d not checked\n", goed, fout, dicht);
    return slechtst;
}

} // namespace zg
