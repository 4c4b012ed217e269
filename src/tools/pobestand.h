// A translator's file: gettext's PO, as much of it as the texts of the program need. Bytes are UTF-8.
#pragma once
#include <string>
#include <vector>

namespace zg {

// One text. `sleutel` is its msgctxt ("DETAIL 27.100"), `noten` and `plaats` are what stands above it for the
// translator; `wazig`: marked fuzzy, a translation of what the text once was.
struct Porij {
    std::string sleutel, bron, vertaald, plaats;
    std::vector<std::string> noten;
    bool formaat = false, wazig = false;
    int regel = 0; // in the file it came from
};

struct Pobestand {
    std::string kop; // the translation of the empty msgid: "Language: en\n..."
    std::vector<Porij> rijen;
};

// The texts of a file. On false nothing is to be used, and *fout says in which line what is wrong.
bool po_lees(const std::string& pad, Pobestand* po, std::string* fout);
// The file on standard output.
void po_schrijf(const Pobestand& po);

} // namespace zg
