// What the tills and the back office must hear of: each change as the letter of its kind and its data. Nothing goes out
// unless tills are linked. The file that carries it is a module of its own, which hangs itself in. A mutation is sent when
// the change is on file and no record is held for it any more: who sends it may have to wait for a batch run.
#pragma once
#include <span>
#include <string>

namespace zg {

// The letters of this system's own changes. Who each is for: docs/formats.md.
enum Mutatiesoort : char {
    MUT_ARTIKELGROEP = 'C', // "%lu"
    MUT_EAN = 'E', // a code of a series' size: "%05ld%03hu%04hu%02hu" group, colour, number, place on the bar
    MUT_SERIE = 'G', // created, changed or deleted: "%07ld%04hu%05ld%s" number, old brand, group, "model*M"
    MUT_BTW = 'I',   // of an article group: "%05lu%02u" group, VAT code
    MUT_KLEUR = 'K', // "%lu"
    MUT_MERK = 'M',  // "%04d"
    MUT_MAATSOORT = 'Q',  // sizes put in between: "%lu"
    MUT_RELATIE = 'R',    // "%hu"
    MUT_PRIJS = 'W',      // prices of a series: "%05ld%03hu%04hu"
    MUT_MAAT = 'Y',       // a size more in a series: as 'E'
    MUT_ETIKET_BIJ = 'd', // labels of a series: as 'W'
    MUT_ETIKET_WEG = 'g',
};

struct Mutatie {
    char letter;
    std::string inhoud;
    bool operator==(const Mutatie&) const = default;
};

bool kassakoppeling(); // are tills linked? (system record 1)
// A mutation for all tills, sent now, or with the others when the series in hand is let go: each once. False when a line
// could not be written, which was told; it is sent again with the next.
bool mutatie(char letter, const std::string& inhoud);
// The same of a record that is about to be written: noted, so that no kill comes between the two. Behind the write comes
// `mutatie`, or `mutatie_niet` when it was refused.
void mutatie_vooraf(char letter, const std::string& inhoud);
void mutatie_niet(char letter, const std::string& inhoud);
// All of that around a write that holds nothing when it went well. Its answer.
bool mutaties_om(std::span<const Mutatie> mutaties, bool (*schrijf)());
// From now on a series is held: mutations are kept. And it is let go: what was kept is sent in one go.
void mutaties_houd();
bool mutaties_stuur();
// At the start, when the hook is set: what a program of this user's slot has left unsent. A note that isn't ours is told.
bool mutaties_herstel();
// Who writes them, all that came together; null while nobody does. Answers as mutatie.
extern bool (*MUTATIEHAAK)(std::span<const Mutatie> mutaties);

} // namespace zg
