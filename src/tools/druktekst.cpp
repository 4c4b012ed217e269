// The four tables of the print directory as lines of text, and back.
#include "tools/druktekst.h"
#include "store/ix.h"
#include "term/natl.h"
#include "term/vast.h"
#include "tools/paar.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>
#include <set>
#include <sstream>

namespace zg {
namespace {

constexpr int CODEMAX = 32767;
constexpr int CAP_TEKENS = 17;
constexpr const char* TEKENSETS[] = {"cp850", "utf-8", "latin1", "ascii", "pdf"};

// A field: 'n' a name, whose bytes are its text; 'k' a control text, kept with its escapes; 'g' a number of so many bytes.
struct Drukveld {
    const char* naam;
    char soort;
    size_t plaats, lengte;
    int laag, hoog;
    bool nodig; // of a new record
};
struct Druksoort {
    const char* naam;
    Prttabel tabel;
    int nummers; // words of the key behind the kind
    int hoogste[3];
    std::vector<Drukveld> velden;
};

#define VELD(r, lid) offsetof(r, lid), sizeof(r::lid)
const Druksoort SOORTEN[] = {
    {"printer", PRT_PRINTERS, 1, {CODEMAX}, {{"naam", 'n', VELD(prtrec, naam), 0, 0, true}}},
    {"verbinding",
     PRT_VERBINDINGEN,
     2,
     {CODEMAX, 255},
     {{"apparaat", 'n', VELD(prtverbinding, apparaat), 0, 0, true},
      {"map", 'g', VELD(prtverbinding, map), 0, 1, false},
      {"naam", 'n', VELD(prtverbinding, naam), 0, 0, false}}},
    {"configuratie",
     PRT_CONFIGS,
     2,
     {CODEMAX, 255},
     {{"kolommen", 'g', VELD(prtconfig, kolommen), 1, 999, true},
      {"rijen", 'g', VELD(prtconfig, rijen), 0, PRT_ZONDER_BLADEN, true},
      {"staand", 'g', VELD(prtconfig, staand), 0, 1, false},
      {"omschrijving", 'n', VELD(prtconfig, omschrijving), 0, 0, false},
      {"init", 'k', VELD(prtconfig, init), 0, 0, false},
      {"exit", 'k', VELD(prtconfig, exit), 0, 0, false}}},
    {"tekst", PRT_CODES, 3, {CODEMAX, 255, CAP_TEKENS}, {{"tekst", 'k', VELD(prtcode, tekst), 0, 0, true}}},
};
#undef VELD

// A record under work: the bytes of one of the four.
struct Regel {
    const Druksoort* soort;
    int nummer[3];
    std::vector<std::pair<const Drukveld*, std::string>> waarden; // code page 850
    uint8_t rec[IXRECMAX];
};

bool getal(const std::string& tekst, int laag, int hoog, int* uit) {
    const char* einde = tekst.data() + tekst.size();
    const auto [tot, fout] = std::from_chars(tekst.data(), einde, *uit);
    return fout == std::errc() && tot == einde && *uit >= laag && *uit <= hoog;
}

// A value as the record has it; empty, or what is wrong with it.
std::string waarde(const Drukveld& v, const std::string& utf8, std::string* uit) {
    int n;
    if (v.soort == 'g') {
        *uit = utf8;
        return getal(utf8, v.laag, v.hoog, &n) ? ""
                                               : std::string("not a number from ") + std::to_string(v.laag) +
                                                     " to " + std::to_string(v.hoog);
    }
    if (!CP850NAAR(utf8, uit))
        return "a character without a place in code page 850";
    if (v.soort == 'n')
        *uit = prt_bytes(uit->data(), uit->size());
    return uit->size() > v.lengte ? "longer than " + std::to_string(v.lengte) + " bytes" : "";
}

std::string ontleed(const std::vector<std::string>& woorden, bool weg, Regel* r) {
    const auto* soort = std::find_if(std::begin(SOORTEN), std::end(SOORTEN), [&](const Druksoort& s) {
        return !woorden.empty() && s.naam == woorden[0];
    });
    if (soort == std::end(SOORTEN))
        return "printer, verbinding, configuratie or tekst comes first";
    *r = {};
    r->soort = soort;
    for (int i = 0; i < soort->nummers; i++) {
        const auto w = static_cast<size_t>(i) + 1;
        if (w >= woorden.size() || !getal(woorden[w], 1, soort->hoogste[i], &r->nummer[i]))
            return std::string(soort->naam) + ": number " + std::to_string(w) + " is from 1 to " +
                   std::to_string(soort->hoogste[i]);
    }
    for (auto i = static_cast<size_t>(soort->nummers) + 1; i < woorden.size(); i++) {
        const size_t is = woorden[i].find('=');
        const std::string naam = woorden[i].substr(0, is);
        const auto veld = std::find_if(soort->velden.begin(), soort->velden.end(),
                                       [&](const Drukveld& v) { return v.naam == naam; });
        if (weg || is == std::string::npos || veld == soort->velden.end())
            return std::string(soort->naam) + ": no such word: " + woorden[i];
        std::string bytes;
        if (const std::string fout = waarde(*veld, woorden[i].substr(is + 1), &bytes); !fout.empty())
            return naam + ": " + fout;
        if (soort->tabel == PRT_VERBINDINGEN && naam == "apparaat" && bytes.starts_with('-'))
            return "apparaat: a queue, a path, a directory (map=1), TERMINAL or AUX";
        r->waarden.emplace_back(&*veld, bytes);
    }
    if (soort->tabel == PRT_CODES && r->nummer[2] == CAP_TEKENS && !r->waarden.empty() &&
        std::find(std::begin(TEKENSETS), std::end(TEKENSETS), r->waarden[0].second) == std::end(TEKENSETS))
        return "tekst 17: cp850, utf-8, latin1, ascii or pdf";
    return "";
}

void zet_sleutel(Regel* r) {
    r->rec[0] = static_cast<uint8_t>(r->nummer[0]);
    r->rec[1] = static_cast<uint8_t>(r->nummer[0] >> 8);
    for (int i = 1; i < r->soort->nummers; i++)
        r->rec[i + 1] = static_cast<uint8_t>(r->nummer[i]);
}

void zet_waarden(Regel* r) {
    for (const auto& [veld, bytes] : r->waarden) {
        uint8_t* doel = r->rec + veld->plaats;
        memset(doel, 0, veld->lengte);
        if (veld->soort == 'g') {
            int n = 0;
            getal(bytes, veld->laag, veld->hoog, &n);
            for (size_t i = 0; i < veld->lengte; i++)
                doel[i] = static_cast<uint8_t>(n >> (8 * i));
        } else
            memcpy(doel, bytes.data(), bytes.size());
    }
}

std::string geen_printer(const Regel& r) {
    return "there is no printer " + std::to_string(r.nummer[0]);
}

// May it be done to a record that is there, or isn't?
Uitkomst past(Drukdaad daad, const Regel& r, bool er, std::string* fout) {
    if (er ? daad == Drukdaad::toevoegen : daad == Drukdaad::wijzigen || daad == Drukdaad::weg)
        return *fout = er ? "is there already" : "isn't there", FOUT_GEVONDEN;
    for (const Drukveld& v : r.soort->velden)
        if (!er && v.nodig &&
            std::none_of(r.waarden.begin(), r.waarden.end(), [&](const auto& w) { return w.first == &v; }))
            return *fout = std::string("a new one needs ") + v.naam + "=", FOUT_GEBRUIKT;
    return GOED;
}

// One record of one table.
Uitkomst doe_een(Drukdaad daad, Regel* r, std::string* fout) {
    ICB* icb = prt_open(r->soort->tabel, 2);
    if (!icb)
        return *fout = "the print tables can't be opened or made", NIET_TE_OPENEN;
    zet_sleutel(r);
    const int er = IXREADT(icb, r->rec);
    Uitkomst uit = er < 0 ? IN_GEBRUIK : past(daad, *r, er > 0, fout);
    if (er < 0)
        *fout = "this record is " + in_de_weg(icb);
    if (uit != GOED) {
        if (er >= 0)
            IXUNLOCK(icb, r->rec);
    } else if (daad == Drukdaad::weg) {
        if (IXDELETE(icb, r->rec) < 0)
            uit = FOUT_GEVONDEN, *fout = "not removed";
    } else {
        zet_waarden(r);
        if (!IXWRITE(icb, r->rec))
            uit = FOUT_GEVONDEN, *fout = "not written";
    }
    IXCLOSE(icb);
    return uit;
}

using Sleutel = std::array<int, 4>; // table, numbers

std::set<Sleutel> sleutels() {
    printtabellen t;
    prt_lees(&t);
    std::set<Sleutel> uit;
    for (const auto& p : t.printers)
        uit.insert({PRT_PRINTERS, p.code});
    for (const auto& v : t.verbindingen)
        uit.insert({PRT_VERBINDINGEN, v.code, v.nummer});
    for (const auto& c : t.configs)
        uit.insert({PRT_CONFIGS, c.code, c.nummer});
    for (const auto& c : t.codes)
        uit.insert({PRT_CODES, c.code, c.config, c.nummer});
    return uit;
}

// As names of printers are compared.
std::string printernaam(const std::string& bytes) {
    return GROOTKOPIE(std::string(VASTTRIM(bytes)));
}

std::string naam_van_ander(int code) {
    return "printer " + std::to_string(code) + " has this name";
}

// The printer's own records, before it goes itself.
Uitkomst doe_kinderen_weg(int code, const printtabellen& t, std::string* fout) {
    std::vector<Regel> weg;
    auto bij = [&](Prttabel tabel, int n1, int n2) {
        Regel r{};
        r.soort = &SOORTEN[tabel];
        r.nummer[0] = code, r.nummer[1] = n1, r.nummer[2] = n2;
        weg.push_back(r);
    };
    for (const auto& c : t.codes)
        if (c.code == code)
            bij(PRT_CODES, c.config, c.nummer);
    for (const auto& c : t.configs)
        if (c.code == code)
            bij(PRT_CONFIGS, c.nummer, 0);
    for (const auto& v : t.verbindingen)
        if (v.code == code)
            bij(PRT_VERBINDINGEN, v.nummer, 0);
    for (Regel& r : weg)
        if (const Uitkomst uit = doe_een(Drukdaad::weg, &r, fout); uit != GOED)
            return uit;
    return GOED;
}

// A value in double quotes where it has blanks or nothing; what would break the line as an escape.
std::string gequoot(const std::string& bytes, bool naam) {
    std::string veilig;
    for (const char c : bytes)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F || c == '"' || (naam && c == '\\')) {
            char hex[4];
            snprintf(hex, sizeof hex, "\\%02X", static_cast<unsigned>(static_cast<uint8_t>(c)));
            veilig += hex;
        } else
            veilig += c;
    const std::string utf8 = CP850UTF8(veilig);
    return utf8.empty() || utf8.find_first_of(" #") != std::string::npos ? "\"" + utf8 + "\"" : utf8;
}

template <class R> void regels(const std::vector<R>& records, Prttabel tabel, int code, std::string* uit) {
    const Druksoort& s = SOORTEN[tabel];
    for (const R& rec : records) {
        if (rec.code != code)
            continue;
        const auto* bytes = reinterpret_cast<const uint8_t*>(&rec);
        *uit += std::string(tabel == PRT_PRINTERS ? "" : "  ") + s.naam + " " + std::to_string(rec.code);
        for (int i = 1; i < s.nummers; i++)
            *uit += " " + std::to_string(bytes[i + 1]);
        for (const Drukveld& v : s.velden) {
            std::string tekst(reinterpret_cast<const char*>(bytes + v.plaats), v.lengte);
            if (v.soort == 'g') {
                int n = 0;
                for (size_t i = 0; i < v.lengte; i++)
                    n |= bytes[v.plaats + i] << (8 * i);
                tekst = std::to_string(n);
            } else
                tekst.resize(strnlen(tekst.data(), tekst.size()));
            if (v.nodig || (v.soort == 'g' ? tekst != "0" : !tekst.empty()))
                *uit += std::string(" ") + v.naam + "=" + gequoot(tekst, v.soort == 'n');
        }
        *uit += "\n";
    }
}

} // namespace

std::string druk_soorten(bool met_namen) {
    std::string uit;
    for (const Druksoort& s : SOORTEN) {
        uit += (uit.empty() ? "by:" : "+") + std::string(s.naam) + "/" + std::to_string(s.nummers) + "/";
        for (const Drukveld& v : s.velden)
            if (met_namen)
                uit += std::string(uit.ends_with('/') ? "" : ",") + v.naam + "=";
    }
    return uit;
}

std::vector<std::string> druk_woorden(const std::string& regel) {
    std::vector<std::string> uit;
    std::string woord;
    bool in = false, iets = false;
    for (const char c : regel + " ") {
        if (c == '#' && !in && !iets)
            break;
        if (c == '"')
            in = !in, iets = true;
        else if ((c == ' ' || c == '\t' || c == '\r') && !in) {
            if (iets)
                uit.push_back(woord);
            woord.clear(), iets = false;
        } else
            woord += c, iets = true;
    }
    if (in) // an open quote: the rest is one word, which nobody knows
        uit.push_back('"' + woord);
    return uit;
}

Uitkomst druk_doe(Drukdaad daad, const std::vector<std::string>& woorden, std::string* fout) {
    Regel r;
    const bool weg = daad == Drukdaad::weg;
    *fout = ontleed(woorden, weg, &r);
    if (!fout->empty())
        return FOUT_GEBRUIKT;
    printtabellen t;
    prt_lees(&t);
    const bool printer = r.soort->tabel == PRT_PRINTERS;
    const bool staat = std::any_of(t.printers.begin(), t.printers.end(),
                                   [&](const prtrec& p) { return p.code == r.nummer[0]; });
    if (weg && r.nummer[0] == PRT_SCHERM)
        return *fout = "printer 1 is the screen, which stays", FOUT_GEBRUIKT;
    if (!weg && !printer && !staat)
        return *fout = geen_printer(r), FOUT_GEVONDEN;
    if (printer && (daad == Drukdaad::toevoegen || daad == Drukdaad::wijzigen) && !r.waarden.empty())
        for (const prtrec& p : t.printers)
            if (p.code != r.nummer[0] && printernaam(VASTTEKST(p.naam)) == printernaam(r.waarden[0].second))
                return *fout = naam_van_ander(p.code), FOUT_GEVONDEN;
    if (weg && printer && staat)
        if (const Uitkomst uit = doe_kinderen_weg(r.nummer[0], t, fout); uit != GOED)
            return uit;
    return doe_een(daad, &r, fout);
}

Uitkomst druk_laad(const std::string& pad, std::string* fout) {
    std::ifstream in(pad);
    std::stringstream tekst;
    errno = 0;
    if (!in || !(tekst << in.rdbuf()))
        return *fout = pad + ": " + (errno ? strerror(errno) : "can't be read"), NIET_TE_OPENEN;
    std::set<Sleutel> er =
        sleutels(); // behind each line: the last is known to be right before the first is done
    std::vector<std::pair<std::string, std::vector<std::string>>> alle;
    std::map<int, std::string> namen;                 // of printers, behind the last line
    std::vector<std::pair<int, std::string>> genoemd; // by which line
    printtabellen nu;
    prt_lees(&nu);
    for (const prtrec& p : nu.printers)
        namen[p.code] = printernaam(VASTTEKST(p.naam));
    auto fouten = [&](Uitkomst uit, const std::string& waar) { return *fout = waar + *fout, uit; };
    std::string regel;
    for (int nr = 1; std::getline(tekst, regel); nr++) {
        const std::string waar = pad + ":" + std::to_string(nr) + ": ";
        const auto woorden = druk_woorden(regel);
        if (woorden.empty())
            continue;
        Regel r;
        if (*fout = ontleed(woorden, false, &r); !fout->empty())
            return fouten(FOUT_GEBRUIKT, waar);
        const Sleutel s{r.soort->tabel, r.nummer[0], r.nummer[1], r.nummer[2]};
        if (r.soort->tabel != PRT_PRINTERS && !er.contains({PRT_PRINTERS, r.nummer[0]}))
            return *fout = geen_printer(r), fouten(FOUT_GEVONDEN, waar);
        if (r.soort->tabel == PRT_PRINTERS && !r.waarden.empty())
            namen[r.nummer[0]] = printernaam(r.waarden[0].second), genoemd.emplace_back(r.nummer[0], waar);
        if (const Uitkomst uit = past(Drukdaad::zetten, r, er.contains(s), fout); uit != GOED)
            return fouten(uit, waar);
        er.insert(s);
        alle.emplace_back(waar, woorden);
    }
    for (auto g = genoemd.rbegin(); g != genoemd.rend(); ++g)
        for (const auto& [ander, naam] : namen)
            if (ander != g->first && naam == namen[g->first])
                return *fout = naam_van_ander(ander), fouten(FOUT_GEVONDEN, g->second);
    for (const auto& [waar, woorden] : alle)
        if (const Uitkomst uit = druk_doe(Drukdaad::zetten, woorden, fout); uit != GOED)
            return fouten(uit, waar);
    return GOED;
}

std::string druk_tekst(const printtabellen& t, int code) {
    std::string uit;
    for (const prtrec& p : t.printers) {
        if (code && p.code != code)
            continue;
        regels(std::vector<prtrec>{p}, PRT_PRINTERS, p.code, &uit);
        regels(t.verbindingen, PRT_VERBINDINGEN, p.code, &uit);
        regels(t.configs, PRT_CONFIGS, p.code, &uit);
        regels(t.codes, PRT_CODES, p.code, &uit);
    }
    return uit;
}

} // namespace zg
