// The fixed tables of the demo firm: DTSYS.TXT, DTFILGEG.TXT, ORDPARM.SYS and the season directories.
#include "order/ordrec.h"
#include "shared/files.h"
#include "shared/iofil.h"
#include "shared/iomaat.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "term/vast.h"
#include "tools/demotekst.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <sstream>

namespace zg {

std::vector<int> demo_filialen;

// A size's number is its position.
int Demomaten::nummer(const std::string& maat) const {
    const auto plaats = std::find(maten.begin(), maten.end(), maat);
    return plaats == maten.end() ? 0 : static_cast<int>(plaats - maten.begin()) + 1;
}

namespace {

constexpr size_t SYSBYTES = 122952; // behind the last table

struct Beeld {
    std::vector<uint8_t> bytes = std::vector<uint8_t>(SYSBYTES);
    template <class R> R* slot(const Systabel& t, int nr) {
        return reinterpret_cast<R*>(bytes.data() + t.start + (nr - 1) * t.grootte);
    }
};

std::string achter(const std::vector<std::string>& woorden, size_t vanaf) {
    std::string s;
    for (size_t i = vanaf; i < woorden.size(); i++)
        s += (s.empty() ? "" : " ") + woorden[i];
    return s;
}

void scramble_in(char* veld, size_t breedte, const std::string& naam) {
    char tekst[64];
    snprintf(tekst, sizeof tekst, "%.*s", static_cast<int>(breedte) - 1, naam.c_str());
    SCRAMBLE(tekst);
    memcpy(veld, tekst, strlen(tekst));
}

// "name = value" of the [firma] section.
struct Firma {
    const Demobron& bron;
    Beeld& beeld;
    ordparm& parm;

    void zet(const Demoregel& r) {
        const std::string& naam = r.woorden[0];
        std::vector<std::string> w(r.woorden.begin() + std::min<ptrdiff_t>(2, std::ssize(r.woorden)),
                                   r.woorden.end());
        if (w.empty() || r.woorden[1] != "=")
            bron.fout("name = value");
        sysfirma* firma1 = beeld.slot<sysfirma>(SYS_RECORD, 1);
        sysinstel* instel = beeld.slot<sysinstel>(SYS_RECORD, 15);
        if (naam == "naam") {
            VASTIN(firma1->naam, bron.cp850(achter(w, 0)));
        } else if (naam == "klantnummer") {
            beeld.slot<sysstatus>(SYS_RECORD, 10)->klantnummer = bron.getal(w[0], 1, INT32_MAX);
        } else if (naam == "maatstelsel") {
            firma1->maatstelsel = static_cast<uint8_t>(bron.getal(w[0], 1, 99));
        } else if (naam == "btw") {
            for (size_t i = 0; i < w.size() && i < 10; i++)
                firma1->btw[i] = static_cast<uint16_t>(bron.getal(w[i], 0, 999));
        } else if (naam == "huisvaluta") {
            VASTIN(instel->valuta, w[0]);
        } else if (naam == "afbeeldingen") {
            auto* afb = beeld.slot<sysafbeelding>(SYS_RECORD, 7);
            VASTIN(afb->map, w[0]);
            afb->modus = 1;
        } else if (naam == "set") {
            set = static_cast<uint8_t>(bron.getal(w[0], 0, SET_MAX));
        } else if (naam == "werkdatum") {
            werkdatum = bron.datum(w[0]);
        } else if (naam == "seizoen") {
            parm.jaar = static_cast<uint16_t>(bron.getal(w[0], 0, 2078));
            parm.letter = w[1][0];
        } else if (naam == "seizoenen") {
            for (const std::string& map : w)
                if (!SYSNIEUWEMAP(map.c_str()) && !IOISDIR(map.c_str()))
                    demofout(map + ": " + strerror(errno));
        } else if (naam == "kopvraag") {
            vraag(parm.kopvraag, 20, w);
        } else if (naam == "modelvraag") {
            vraag(parm.modelvraag, 20, w);
        } else if (naam == "dessinvraag") {
            vraag(parm.dessinvraag, 10, w);
        } else {
            bron.fout("unknown name: " + naam);
        }
    }

    uint16_t werkdatum = 0;
    uint8_t set = 0; // of every user

private:
    void vraag(uint8_t* velden, int aantal, const std::vector<std::string>& w) {
        for (const std::string& nr : w)
            velden[bron.getal(nr, 0, aantal - 1)] = 1;
    }
};

void filialen(const std::vector<std::pair<int, std::string>>& lijst) {
    std::vector<filiaalrec> recs(lijst.size() + 1); // the head office first
    for (size_t i = 0; i < lijst.size(); i++) {
        scramble_in(recs[i + 1].naam, sizeof recs[i + 1].naam, lijst[i].second);
        recs[i + 1].nummer = static_cast<uint8_t>(lijst[i].first);
        demo_filialen.push_back(lijst[i].first);
    }
    demobestand("DTFILGEG.TXT", recs.data(), recs.size() * sizeof recs[0]);
}

} // namespace

void demo_systeem(const std::string& pad, const std::vector<Demomaten>& maten, bool registermodus) {
    Demobron bron(pad);
    Beeld beeld;
    ordparm parm{};
    Firma firma1{bron, beeld, parm};
    std::vector<std::pair<int, std::string>> fil;
    static const std::map<std::string, Systabel> TEKSTEN20 = {{"kleur", SYS_KLEUR},
                                                              {"maatstelsel", SYS_MAATSTELSEL},
                                                              {"prijsklasse", SYS_PRIJSKLASSE}},
                                                 CODES = {{"deelseizoen", SYS_DEELSEIZOEN},
                                                          {"inkoopcode", SYS_INKOOP},
                                                          {"actiecode", SYS_ACTIE},
                                                          {"correctiecode", SYS_CORRECTIE}};
    for (Demoregel r; bron.volgende(&r);) {
        const auto& w = r.woorden;
        if (r.sectie == "firma") {
            firma1.zet(r);
            continue;
        }
        int nr = bron.getal(w[0], 0, 999);
        if (r.sectie == "filialen") {
            fil.emplace_back(nr, bron.cp850(achter(w, 1)));
        } else if (r.sectie == "gebruikers") {
            gebruikerslot* g = beeld.slot<gebruikerslot>(SYS_GEBRUIKER, bron.getal(w[0], 1, 98));
            scramble_in(g->username, sizeof g->username, bron.cp850(w.at(2)));
            g->userkind = w[1][0];
            g->werkdatum = firma1.werkdatum;
            g->set = firma1.set;
        } else if (r.sectie == "valuta") {
            valutarec* v = beeld.slot<valutarec>(SYS_VALUTA, bron.getal(w[0], 1, 99));
            VASTIN(v->code, w.at(1));
            v->decimalen = static_cast<uint8_t>(bron.getal(w.at(2), 0, 2));
            VASTIN(v->naam, bron.cp850(achter(w, 3)));
        } else if (r.sectie == "land") {
            landrec* l = beeld.slot<landrec>(SYS_LAND, bron.getal(w[0], 1, 99));
            l->nummer = static_cast<uint16_t>(bron.getal(w.at(1), 0, 999));
            VASTIN(l->iso2, w.at(2));
            VASTIN(l->iso3, w.at(3));
            VASTIN(l->naam, bron.cp850(achter(w, 4)));
        } else if (r.sectie == "etiketsoort") {
            etiketsoortrec* e = beeld.slot<etiketsoortrec>(SYS_ETIKETSOORT, bron.getal(w[0], 1, 100));
            unsigned breedte, hoogte; // "30x10" in front of the text
            const bool maat = sscanf(w.at(1).c_str(), "%3ux%3u", &breedte, &hoogte) == 2;
            e->breedte = static_cast<uint8_t>(maat ? breedte : 40);
            e->hoogte = static_cast<uint8_t>(maat ? hoogte : 8);
            VASTIN(e->tekst, bron.cp850(achter(w, maat ? 2 : 1)));
        } else if (r.sectie == "kenmerksoort") {
            VASTIN(beeld.slot<tekst20>(SYS_SETCODE, firma1.set * 10 + bron.getal(w[0], 1, SET_MAX))->tekst,
                   bron.cp850(achter(w, 1)));
        } else if (r.sectie == "filiaalreeks") { // number, branches "1,3,20", name
            filiaalreeksrec* f = beeld.slot<filiaalreeksrec>(SYS_FILIAALREEKS, bron.getal(w[0], 1, 99));
            VASTIN(f->naam, bron.cp850(achter(w, 2)));
            std::istringstream nummers(w.at(1));
            for (std::string n; std::getline(nummers, n, ',');)
                for (size_t i = 0; i < fil.size(); i++)
                    if (fil[i].first == bron.getal(n, 1, 250))
                        f->filialen[i / 8] |= static_cast<uint8_t>(1 << (i % 8));
        } else if (auto t = TEKSTEN20.find(r.sectie); t != TEKSTEN20.end()) {
            VASTIN(beeld.slot<tekst20>(t->second, bron.getal(w[0], 1, t->second.slots))->tekst,
                   bron.cp850(achter(w, 1)));
        } else if (auto c = CODES.find(r.sectie); c != CODES.end()) {
            // Slot 0 is the head slot, one slot in front of the codes.
            VASTIN(beeld.slot<tekst30>(c->second, bron.getal(w[0], 0, 9))->tekst, bron.cp850(achter(w, 1)));
        } else {
            bron.fout("unknown section: " + r.sectie);
        }
    }
    beeld.slot<sysfirma>(SYS_RECORD, 1)->filialen = static_cast<uint8_t>(fil.size());
    memcpy(beeld.slot<sysstatus>(SYS_RECORD, 10)->release, RELEASE, 5);
    beeld.slot<sysinstel>(SYS_RECORD, 15)->artikelcijfers = 5;
    int balknr = 0, reeksnr = 0;
    for (const Demomaten& m : maten) {
        VASTIN(beeld.slot<tekst20>(SYS_MAATSOORT, m.soort)->tekst, m.naam);
        for (const auto& balk : m.balken) {
            maatbalkrec* b = beeld.slot<maatbalkrec>(SYS_MAATBALK, ++balknr);
            b->maatsoort = static_cast<uint8_t>(m.soort);
            for (const std::string& maat : balk)
                maat_aan(b->maten, m.nummer(maat));
        }
        for (const auto& reeks : m.reeksen) {
            maatreeksrec* rec = beeld.slot<maatreeksrec>(SYS_MAATREEKS, ++reeksnr);
            rec->maatsoort = static_cast<uint8_t>(m.soort);
            for (const auto& [maat, aantal] : reeks)
                for (int cel : {m.nummer(maat), 0})
                    rec->aantal[cel] += aantal;
        }
    }
    if (registermodus) {
        beeld.slot<sysetiket>(SYS_RECORD, 4)->vrijkop = 0;
        demobestand("DTETI.TXT", "", 0);
        demobestand("DTIPG.TXT", "", 0);
    }
    demobestand("DTSYS.TXT", beeld.bytes.data(), beeld.bytes.size());
    demobestand("ORDPARM.SYS", &parm, sizeof parm);
    filialen(fil);
}

} // namespace zg
