// The link tables of edistam: numbers that tie codes of partners to our own master data. A number that goes takes its records
// along, so what is left of one is a note: nobody ever asks for it. See tools/stamkeur.h.
#include "shared/files.h"
#include "shared/stamrec.h"
#include "term/strings.h"
#include "tools/stamkeur.h"
#include "tools/veldkeur.h"
#include <cstdlib>

namespace zg {

keurbestanden koppel_keur(const stamboek& boek) {
    const struct {
        const char* vorm; // of the name; its digits are a relation
        size_t plaats;
        int breedte;
        const keurnummers& bekend;
        const char* wat;
    } SOORTEN[] = {
        {"DTKL####.TXT", 36, 4, boek.kleuren, "colour"},
        {"DTAG####.TXT", 72, 4, boek.groepen, "article group"},
        {"DTBC*", 40, 4, boek.groepen, "article group"},
        {"DTMRKMS.TXT", 0, 2, boek.merken, "brand"},
        {"DTMRKMS.TXT", 4, 4, boek.groepen, "article group"},
        {"DTMMCDS.TXT", 0, 2, boek.merken, "brand"},
        {"DTRCLPAR.TXT", 0, 2, boek.leveranciers, "relation"},
    };
    keurbestanden uit;
    for (const std::string& naam : keur_namen("edistam"))
        for (const auto& s : SOORTEN) {
            if (!keur_past(s.vorm, naam) || !naam.ends_with(".TXT"))
                continue;
            const std::string paar = "edistam/" + naam.substr(0, naam.size() - 4);
            keurbestand b{paar, ""};
            if (!IOEXISTS((paar + ".INX").c_str()) && (uit.empty() || uit.back().naam != paar))
                b.kwalen.push_back(paar + ".INX isn't there: restore both files from a copy");
            keurhoop weg;
            const auto zie = [&](const keurnummers& bekend, const char* wat, int64_t nr) {
                if (!bekend.kent(static_cast<int32_t>(nr)))
                    weg.zie(VORM("%s %d isn't there", wat, static_cast<int>(nr)));
            };
            keur_records(paar, [&](int32_t, const uint8_t* rec, int lengte) {
                if (s.plaats + static_cast<size_t>(s.breedte) <= static_cast<size_t>(lengte))
                    zie(s.bekend, s.wat, veld_getal(rec + s.plaats, s.breedte, s.breedte == 4));
            });
            if (std::string_view(s.vorm).find('#') != std::string_view::npos)
                zie(boek.leveranciers, "relation", strtol(naam.c_str() + 4, nullptr, 10));
            weg.meld(&b.noten);
            uit.push_back(std::move(b));
        }
    return uit;
}

} // namespace zg
