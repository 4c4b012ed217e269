// Does a translation fit? Each text beside its default: the place it has on the screen, what the code reads in
// it, and the letters of choices that stand beside each other.
#include "term/natl.h"
#include "tools/pobestand.h"
#include "tools/taaltabel.h"
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

namespace zg {
namespace {

int fouten;

void fout(const std::string& wie, const std::string& wat) {
    fprintf(stderr, "%s: %s\n", wie.c_str(), wat.c_str());
    fouten++;
}

// The runs of a character, by their lengths.
std::vector<size_t> reeksen(const std::string& s, char c) {
    std::vector<size_t> uit;
    for (size_t p = 0; (p = s.find(c, p)) != std::string::npos; p += uit.back())
        uit.push_back(std::min(s.find_first_not_of(c, p), s.size()) - p);
    return uit;
}

// The columns of a head, names with two blanks or more between them: where each begins and ends.
std::vector<std::pair<size_t, size_t>> kolommen(const std::string& s) {
    std::vector<std::pair<size_t, size_t>> uit;
    for (size_t p = s.find_first_not_of(' '); p != std::string::npos;) {
        size_t eind = std::min(s.find("  ", p), s.find_last_not_of(' ') + 1);
        uit.push_back({p, eind});
        p = s.find_first_not_of(' ', eind);
    }
    return uit;
}

bool zelfde_kolommen(const std::string& a, const std::string& b) {
    const auto van = kolommen(a), naar = kolommen(b);
    return std::equal(van.begin(), van.end(), naar.begin(), naar.end(), [](const auto& x, const auto& y) {
        return x.first == y.first || x.second == y.second;
    });
}

bool dubbele(std::string s) {
    std::sort(s.begin(), s.end());
    return std::adjacent_find(s.begin(), s.end()) != s.end();
}

struct Vertaling {
    std::map<std::string, const Porij*> rijen;
    std::vector<std::pair<std::string, std::string>> antwoorden; // as texts name them, and as these should
    const std::string& van(const Tekst& t) const {
        static const std::string leeg;
        auto r = rijen.find(tekst_sleutel(t));
        return r == rijen.end() ? leeg : r->second->vertaald;
    }
};

std::vector<std::pair<std::string, std::string>> antwoorden(const Vertaling& v) {
    std::string ja = "J", nee = "N";
    for (const Tekstrij& r : TEKSTRIJEN)
        for (auto [naam, letter] : {std::pair{"T_JA", &ja}, std::pair{"T_NEE", &nee}})
            if (!strcmp(r.naam, naam))
                *letter = v.van(r.tekst);
    return {{"J/N", ja + "/" + nee}, {"J, N", ja + ", " + nee}, {"[J]", "[" + ja + "]"}};
}

void keur(const Tekstrij& r, const Porij& po, const Vertaling& v) {
    const std::string wie = std::string(r.map) + ": " + r.naam + " \"" + po.vertaald + "\"";
    const std::string &uit = po.vertaald, bron = CP850UTF8(r.tekst.standaard);
    const bool keuze = bron.find('&') != std::string::npos;
    const Tekstplaats* plaats = tekst_plaats(r);
    std::string bytes;
    auto rand = [](const std::string& s) { return std::pair{s.starts_with(' '), s.ends_with(' ')}; };
    auto stuur = [](char c) { return static_cast<uint8_t>(c) < 32 && c != '\n'; };

    if (po.bron != bron)
        return fout(wie, "is of an older text: \"" + po.bron + "\", which is now \"" + bron + "\"");
    if (po.wazig || uit.empty() != bron.empty())
        return fout(wie, po.wazig ? "is marked fuzzy" : "not translated");
    if (!CP850NAAR(uit, &bytes) || std::any_of(uit.begin(), uit.end(), stuur))
        fout(wie, "has a character that code page 850 hasn't got, or a control");
    if (!TXTPAST(r.tekst.standaard, bytes.c_str()))
        fout(wie, "hasn't the directives of \"" + bron + "\" in their order");
    if (const int breed = tekst_breedte(uit, keuze), ruimte = tekst_ruimte(r); breed > ruimte)
        fout(wie, std::to_string(breed) + " columns, " + std::to_string(ruimte) + " is the room" +
                      (plaats ? std::string(" (") + plaats->waar + ")" : ""));
    if (rand(uit) != rand(bron))
        fout(wie, "a blank at an end is missing, or one too many");
    for (auto [teken, wat] : {std::pair{'\n', "lines"}, std::pair{'&', "marks of a letter"}})
        if (std::count(uit.begin(), uit.end(), teken) != std::count(bron.begin(), bron.end(), teken))
            fout(wie, std::string("not as many ") + wat);
    if (reeksen(uit, '_') != reeksen(bron, '_'))
        fout(wie, "other places for numbers (_)");
    if (plaats && plaats->soort == Tekstplaats::kop && !zelfde_kolommen(bron, uit))
        fout(wie, "its columns aren't those of \"" + bron + "\"");
    if (plaats && plaats->soort == Tekstplaats::letters && (uit.size() != bron.size() || dubbele(uit)))
        fout(wie, "letters missing, or one twice");
    for (const auto& [ons, hun] : v.antwoorden)
        if (bron.find(ons) != std::string::npos && uit.find(hun) == std::string::npos)
            fout(wie, "doesn't name the answers " + hun);
}

// Letters that are chosen from at one time, and that no text with a letter is in no choice.
void keur_keuzen(const Vertaling& v) {
    std::set<std::string> genoemd;
    for (const Tekstkeuze& k : TEKSTKEUZEN) {
        std::map<char, std::string> bij;
        std::istringstream in(k.namen);
        for (std::string naam; in >> naam;) {
            auto r = std::find_if(TEKSTRIJEN.begin(), TEKSTRIJEN.end(),
                                  [&](const Tekstrij& x) { return naam == x.naam; });
            genoemd.insert(naam);
            if (r == TEKSTRIJEN.end()) {
                fout("taalplaatsen.def", "no text is called " + naam);
                continue;
            }
            const std::string& uit = v.van(r->tekst);
            const size_t merk = uit.find('&');
            const size_t plek = merk == std::string::npos ? 0 : merk + 1;
            const char letter =
                plek < uit.size() ? static_cast<char>(NGROOT(static_cast<uint8_t>(uit[plek]))) : ' ';
            if (letter == ' ')
                fout(naam, "has no letter");
            else if (const auto [al, nieuw] = bij.emplace(letter, naam); !nieuw)
                fout(k.waar, al->second + " and " + naam + " have one letter, " + letter);
        }
    }
    for (const Tekstrij& r : TEKSTRIJEN)
        if (strchr(r.tekst.standaard, '&') && !genoemd.count(r.naam))
            fout(r.naam, "is in no KEUZE of taalplaatsen.def");
    for (const Tekstplaats& p : TEKSTPLAATSEN)
        if (std::none_of(TEKSTRIJEN.begin(), TEKSTRIJEN.end(),
                         [&](const Tekstrij& r) { return tekst_heet(r, p); }))
            fout("taalplaatsen.def", std::string("no text is called ") + p.naam);
}

} // namespace

int taal_keur(const Pobestand& po) {
    fouten = 0;
    Vertaling v;
    std::set<std::string> over;
    for (const Porij& r : po.rijen) {
        if (!v.rijen.emplace(r.sleutel, &r).second)
            fout(r.sleutel, "stands twice");
        over.insert(r.sleutel);
    }
    v.antwoorden = antwoorden(v);
    for (const Tekstrij& r : TEKSTRIJEN) {
        auto rij = v.rijen.find(tekst_sleutel(r.tekst));
        if (rij == v.rijen.end())
            fout(r.naam, "is missing: " + tekst_sleutel(r.tekst));
        else
            keur(r, *rij->second, v);
        over.erase(tekst_sleutel(r.tekst));
    }
    for (const std::string& sleutel : over)
        fout(sleutel, "is no text of the program");
    keur_keuzen(v);
    return fouten;
}

} // namespace zg
