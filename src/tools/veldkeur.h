// Records held against the table of fields (tools/indeling.def), each field by itself: numbers out of their range, letters
// that there aren't, days that no calendar has, bytes in a text that are no letters. What a field names elsewhere is looked
// up by the parts of the check that know those tables.
#pragma once
#include "tools/indeling.h"
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zg {

// What is wrong with a field, its name in front: "btwcode 99, of 1 to 10"; empty when nothing is. Texts are told by their
// bytes in hexadecimal.
std::string veld_kwaal(const Veld& veld, const uint8_t* rec);

// The records of one table. Of each field the first few that are wrong are told, and how many more there are.
class Veldkeur {
public:
    // `lengte`: bytes of a record; fields behind it are passed over. Of a table that isn't known nothing is wrong.
    Veldkeur(const std::string& tabel, int lengte);
    // Called what `wie` says when something is wrong, or by the table's own words; code page 850.
    using Naam = std::function<std::string()>;
    void zie(const uint8_t* rec, const Naam& wie = {});
    // What another rule finds wrong with a field, or with several.
    void kwaal(const std::string& veld, const std::string& wat, const Naam& wie);
    void meld(std::vector<std::string>* naar) const;

private:
    std::string naam(const uint8_t* rec) const;
    std::string wie_;
    std::vector<Veld> velden_, met_regel_;
    std::vector<std::string> kwalen_;
    std::map<std::string, int64_t> per_veld_ = {};
};

} // namespace zg
