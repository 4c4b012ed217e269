// Between the files of omserie: sernoten.cpp, serienummer.cpp, omserie.cpp.
#pragma once
#include "shared/registerrec.h"
#include <string>
#include <vector>

namespace zg {

// A buffer as long as any record, with a series' key in front: for what looks up by key 1 of its file.
struct Seriebuffer {
    explicit Seriebuffer(const seriesleutel& sleutel) { memcpy(rec, &sleutel, sizeof sleutel); }
    uint8_t rec[IXRECMAX] = {};
};

using Sleutels = std::vector<seriesleutel>;

std::string serie_notitie(int32_t slot);              // name of a slot's notes
Sleutels serie_genoteerd(int32_t slot);               // what stands in them
bool serie_gereserveerd(const seriesleutel& sleutel); // is its number reserved by this program?
void serie_nummer_gebruikt();                         // its record has been written: the note goes

} // namespace zg
