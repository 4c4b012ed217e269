// The records of order journals as JSON lines: {"offset":0,"tag":"O","leverancier":12,...}, with the field names of
// tools/indeling.def. Every byte of a record comes back.
#pragma once
#include "order/ordloop.h"
#include "tools/indeling.h"
#include <string>
#include <string_view>
#include <vector>

namespace zg {

// The fields of a record's body, ascending and without a gap.
const std::vector<Veld>& ord_velden(char tag);
// Unnamed bytes of a body that hold nothing.
bool ord_leeg(const Veld& veld, const uint8_t* lichaam);

// One line without its end. `bestand`: the file's name, empty to leave it out.
std::string ord_json(const ordrauw& rec, const std::string& bestand);

// The reverse: tag and body into *rec. A field that isn't named is zero, "offset" is passed over, and *bestand gets what the
// line has for it. Empty when it went in, else what is wrong.
std::string ord_uit_json(std::string_view regel, std::vector<uint8_t>* rec, std::string* bestand);

} // namespace zg
