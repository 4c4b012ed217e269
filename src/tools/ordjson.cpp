#include "tools/ordjson.h"
#include "order/ordrec.h"
#include "tools/jsonregel.h"
#include "tools/tool.h"
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

namespace zg {

using json = nlohmann::ordered_json;

const std::vector<Veld>& ord_velden(char tag) {
    static std::map<char, std::vector<Veld>> bekend;
    auto& velden = bekend[tag];
    if (velden.empty()) {
        IXHEADER kop{};
        kop.reclen = static_cast<int16_t>(ord_lengte(tag));
        velden = indeling(std::string("ORD:") + tag, kop);
    }
    return velden;
}

bool ord_leeg(const Veld& veld, const uint8_t* lichaam) {
    const uint8_t* p = lichaam + veld.begin;
    return veld.naam[0] == '@' && std::all_of(p, p + veld.lengte, [](uint8_t b) { return b == 0; });
}

std::string ord_json(const ordrauw& rec, const std::string& bestand) {
    json j;
    if (!bestand.empty())
        j["file"] = bestand;
    j["offset"] = rec.offset;
    j["tag"] = std::string(1, rec.tag);
    for (const Veld& v : ord_velden(rec.tag)) {
        if (ord_leeg(v, rec.data + 1))
            continue;
        std::string waarde = veld_uit(v, rec.data + 1);
        if (v.soort == 'u' || v.soort == 'i')
            j[v.naam] = strtoll(waarde.c_str(), nullptr, 10);
        else
            j[v.naam] = waarde;
    }
    return toon_json(j.dump(-1, ' ', false, json::error_handler_t::replace));
}

std::string ord_uit_json(std::string_view regel, std::vector<uint8_t>* rec, std::string* bestand) {
    Jsonvelden velden;
    std::string fout = json_regel(regel, &velden), tag;
    bestand->clear();
    for (const auto& [naam, waarde] : velden)
        if (naam == "tag")
            tag = waarde;
        else if (naam == "file")
            *bestand = waarde;
    if (!fout.empty())
        return fout;
    const int lengte = tag.size() == 1 ? ord_lengte(tag[0]) : -1;
    if (lengte < 0)
        return tag.empty() ? "no tag" : "no such tag: " + citaat(tag);
    rec->assign(static_cast<size_t>(lengte) + 1, 0);
    rec->front() = static_cast<uint8_t>(tag[0]);
    const std::vector<Veld>& bekend = ord_velden(tag[0]);
    for (const auto& [naam, waarde] : velden) {
        if (naam == "tag" || naam == "file" || naam == "offset")
            continue;
        const auto v = std::ranges::find(bekend, naam, &Veld::naam);
        if (v == bekend.end())
            return "no such field of " + tag + ": " + citaat(naam);
        if (fout = veld_in(*v, waarde, rec->data() + 1); !fout.empty())
            return fout;
    }
    return {};
}

} // namespace zg
