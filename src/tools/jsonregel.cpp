#include "tools/jsonregel.h"
#include "tools/tool.h"
#include <algorithm>
#include <nlohmann/json.hpp>

namespace zg {

namespace {

using json = nlohmann::json;

// What the parser calls; false ends it.
struct Ontvanger {
    Jsonvelden* velden;
    std::string fout{};
    int diepte = 0;

    bool mis(const std::string& wat) { return fout = wat, false; }
    bool geen_waarde() {
        return mis(diepte ? citaat(velden->back().first) + ": not a text or a whole number"
                          : "not a JSON object");
    }
    bool waarde(const std::string& tekst) {
        return diepte ? velden->back().second = tekst, true : geen_waarde();
    }

    bool null() { return geen_waarde(); }
    bool boolean(bool /*waar*/) { return geen_waarde(); }
    bool number_integer(json::number_integer_t n) { return waarde(std::to_string(n)); }
    bool number_unsigned(json::number_unsigned_t n) { return waarde(std::to_string(n)); }
    bool number_float(json::number_float_t /*n*/, const std::string& /*s*/) { return geen_waarde(); }
    bool string(std::string& s) { return waarde(s); }
    bool binary(json::binary_t& /*b*/) { return geen_waarde(); }
    bool start_object(size_t /*n*/) { return diepte++ == 0 || geen_waarde(); }
    bool end_object() { return true; }
    bool start_array(size_t /*n*/) { return geen_waarde(); }
    bool end_array() { return true; }
    bool key(std::string& naam) {
        if (std::ranges::any_of(*velden, [&](const auto& v) { return v.first == naam; }))
            return mis(citaat(naam) + " stands in it twice");
        velden->emplace_back(naam, "");
        return true;
    }
    bool parse_error(size_t plaats, const std::string& /*token*/, const json::exception& /*e*/) {
        return mis("not a JSON object, at character " + std::to_string(plaats));
    }
};

} // namespace

std::string json_regel(std::string_view regel, Jsonvelden* velden) {
    velden->clear();
    Ontvanger o{velden};
    json::sax_parse(regel.begin(), regel.end(), &o);
    return o.fout;
}

} // namespace zg
