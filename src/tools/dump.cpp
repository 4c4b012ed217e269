#include "tools/dump.h"
#include "term/natl.h"
#include "term/vast.h"
#include "tools/jsonregel.h"
#include "tools/tool.h"
#include <algorithm>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>

namespace zg {

namespace {

using json = nlohmann::json;

// A value that holds no control bytes (they are pictures by now), as a JSON string.
void json_bij(std::string& regel, std::string_view tekst) {
    regel += '"';
    for (char c : tekst) {
        if (c == '"' || c == '\\')
            regel += '\\';
        regel += c;
    }
    regel += '"';
}

template <class T> bool getal(std::string_view s, T* uit) {
    auto [einde, fout] = std::from_chars(s.data(), s.data() + s.size(), *uit);
    return fout == std::errc() && einde == s.data() + s.size() && !s.empty();
}

} // namespace

Dumpkop dumpkop(const IXHEADER& kop, std::string_view naam) {
    Dumpkop d;
    d.naam = schoon(naam);
    d.titel = tekst_uit(VASTUIT(kop.title));
    d.reclen = kop.reclen;
    d.freehead = kop.freehead;
    for (int s = 0; s < kop.nkeys; s++)
        d.sleutels.push_back(sleuteltekst(kop.keydef[s]));
    return d;
}

// One more value of a CSV line.
void DumpSchrijver::cel(std::string_view tekst) {
    if (!regel_.empty())
        regel_ += scheiding_;
    const bool kaal = tekst.find_first_of("\"\r\n #") == std::string_view::npos &&
                      tekst.find(scheiding_) == std::string_view::npos && !(regel_.empty() && tekst.empty());
    if (kaal) {
        regel_ += tekst;
        return;
    }
    regel_ += '"';
    for (char c : tekst) {
        if (c == '"')
            regel_ += '"';
        regel_ += c;
    }
    regel_ += '"';
}

void DumpSchrijver::kop(const Dumpkop& kop, const std::vector<Veld>& velden, bool kaal) {
    velden_ = velden;
    kaal_ = kaal;
    regel_.clear();
    if (json_ && !kaal) {
        json j = {{"ixdump", 1},          {"name", kop.naam},         {"title", kop.titel},
                  {"reclen", kop.reclen}, {"freehead", kop.freehead}, {"keys", kop.sleutels}};
        regel_ = j.dump(-1, ' ', false, json::error_handler_t::replace) + "\n";
    } else if (!json_) {
        std::string definitie;
        if (!kaal) {
            regel_ = "#ixdump";
            for (const std::string& c : {std::string("1"), kop.naam, kop.titel, std::to_string(kop.reclen),
                                         std::to_string(kop.freehead)})
                cel(c);
            for (const std::string& s : kop.sleutels)
                cel(s);
            definitie = regel_ + "\n";
        }
        regel_ = "nr";
        if (!kaal)
            cel("vrij");
        for (const Veld& v : velden)
            cel(v.naam);
        regel_ = definitie + regel_ + "\n";
    }
    fwrite(regel_.data(), 1, regel_.size(), uit_);
}

void DumpSchrijver::record(int32_t nr, const uint8_t* rec) {
    regel_ = (json_ ? "{\"nr\":" : "") + std::to_string(nr);
    if (!json_ && !kaal_)
        cel("");
    for (const Veld& v : velden_) {
        if (!json_) {
            cel(veld_uit(v, rec));
            continue;
        }
        regel_ += ",\"" + v.naam + "\":";
        if (v.soort == 'u' || v.soort == 'i')
            regel_ += veld_uit(v, rec);
        else
            json_bij(regel_, veld_uit(v, rec));
    }
    regel_ += json_ ? "}\n" : "\n";
    fwrite(regel_.data(), 1, regel_.size(), uit_);
}

void DumpSchrijver::vrij(int32_t nr, int32_t volgende) {
    if (json_)
        fprintf(uit_, "{\"nr\":%d,\"vrij\":%d}\n", nr, volgende);
    else
        fprintf(uit_, "%d%c%d%s\n", nr, scheiding_, volgende,
                std::string(velden_.size(), scheiding_).c_str());
}

bool DumpLezer::mislukt(const std::string& wat) {
    if (fout_.empty())
        fout_ = "line " + std::to_string(regelnr_) + ": " + wat;
    return false;
}

// The next line that isn't empty into tekst_.
bool DumpLezer::regel() {
    if (wachtend_)
        return wachtend_ = false, true;
    constexpr size_t TE_LANG = 1 << 20;
    do {
        tekst_.clear();
        int c;
        while ((c = getc_unlocked(in_)) != EOF && c != '\n') {
            tekst_ += static_cast<char>(c);
            if (tekst_.size() > TE_LANG)
                return mislukt("longer than a megabyte");
        }
        if (c == EOF && ferror(in_))
            return mislukt("can't be read on");
        if (c == EOF && tekst_.empty())
            return false;
        zonder_einde_ = c == EOF;
        regelnr_++;
        if (!tekst_.empty() && tekst_.back() == '\r')
            tekst_.pop_back();
    } while (tekst_.empty());
    if (regelnr_ == 1 && tekst_.starts_with("\xEF\xBB\xBF"))
        tekst_.erase(0, 3);
    return true;
}

bool DumpLezer::csv(std::vector<std::string>* cellen) {
    cellen->clear();
    size_t i = 0;
    for (;;) {
        std::string& cel = cellen->emplace_back();
        if (i < tekst_.size() && tekst_[i] == '"') {
            for (i++;; i++) {
                if (i >= tekst_.size())
                    return mislukt("a quote that isn't closed");
                if (tekst_[i] == '"' && (i + 1 >= tekst_.size() || tekst_[++i] != '"'))
                    break;
                cel += tekst_[i];
            }
            if (i < tekst_.size() && tekst_[i] == '"')
                i++;
        } else {
            while (i < tekst_.size() && tekst_[i] != scheiding_)
                cel += tekst_[i++];
        }
        if (i >= tekst_.size())
            return true;
        if (tekst_[i] != scheiding_)
            return mislukt("text behind a closing quote");
        i++;
    }
}

bool DumpLezer::kop(Dumpkop* kop, bool* gevonden) {
    *gevonden = false;
    if (!regel())
        return mislukt("nothing to load");
    json_ = tekst_[0] == '{';
    if (json_) {
        json j = json::parse(tekst_, nullptr, false);
        if (!j.is_object())
            return mislukt("not a JSON object");
        if (!j.contains("ixdump"))
            return wachtend_ = true;
        try {
            kop->naam = j.at("name"), kop->titel = j.at("title");
            kop->sleutels = j.at("keys").get<std::vector<std::string>>();
            if (!getal(j.at("reclen").dump(), &kop->reclen) ||
                !getal(j.at("freehead").dump(), &kop->freehead))
                return mislukt("reclen and freehead must be whole numbers");
        } catch (const json::exception&) {
            return mislukt("the head line misses name, title, reclen, freehead or keys");
        }
        return *gevonden = true;
    }
    std::vector<std::string> cellen;
    constexpr std::string_view BEGIN = "#ixdump";
    if (tekst_.starts_with(BEGIN) && tekst_.size() > BEGIN.size())
        scheiding_ = tekst_[BEGIN.size()];
    if (!csv(&cellen))
        return false;
    if (cellen[0] == BEGIN) {
        if (cellen.size() < 7 || !getal(cellen[4], &kop->reclen) || !getal(cellen[5], &kop->freehead))
            return mislukt("the head line needs version, name, title, record length, free head and a key");
        kop->naam = cellen[2], kop->titel = cellen[3];
        kop->sleutels.assign(cellen.begin() + 6, cellen.end());
        *gevonden = met_kop_ = true;
        if (!regel() || !csv(&cellen))
            return mislukt("the column names are missing");
    }
    kolommen_ = cellen;
    return true;
}

bool DumpLezer::indeling(std::vector<Veld> velden, int reclen) {
    velden_ = std::move(velden);
    reclen_ = reclen;
    for (const std::string& kolom : kolommen_) {
        int plaats = kolom == "nr" ? -1 : kolom == "vrij" ? -2 : -3;
        for (size_t i = 0; i < velden_.size(); i++)
            if (velden_[i].naam == kolom)
                plaats = static_cast<int>(i);
        if (plaats == -3)
            return mislukt("no such field: " + citaat(kolom) +
                           (kolom.find_first_of(";\t|") == std::string::npos ? "" : " (--delimiter?)"));
        if (std::ranges::find(plaats_, plaats) != plaats_.end())
            return mislukt("two columns are called " + citaat(kolom));
        plaats_.push_back(plaats);
    }
    return true;
}

bool DumpLezer::rij_csv(Dumprij* rij) {
    std::vector<std::string> cellen;
    if (!csv(&cellen))
        return false;
    if (cellen.size() > plaats_.size())
        return mislukt("more values than columns");
    if (cellen.size() < plaats_.size() && (met_kop_ || zonder_einde_))
        return mislukt(std::to_string(cellen.size()) + " values for " + std::to_string(plaats_.size()) +
                       " columns: is its end cut off?");
    if (met_kop_ && zonder_einde_)
        return mislukt("the last line has no end: is it cut off?");
    for (size_t i = 0; i < cellen.size(); i++) {
        if (plaats_[i] == -1 && !cellen[i].empty() && !getal(cellen[i], &rij->nr))
            return mislukt("nr: not a number");
        if (plaats_[i] == -2 && !cellen[i].empty()) {
            if (!getal(cellen[i], &rij->volgende))
                return mislukt("vrij: not a number");
            rij->vrij = true;
        }
        if (plaats_[i] >= 0) {
            std::string fout = veld_in(velden_[static_cast<size_t>(plaats_[i])], cellen[i], rij->rec);
            if (!fout.empty())
                return mislukt(fout);
        }
    }
    return true;
}

bool DumpLezer::rij_json(Dumprij* rij) {
    Jsonvelden velden;
    if (const std::string fout = json_regel(tekst_, &velden); !fout.empty())
        return mislukt(fout);
    for (const auto& [naam, waarde] : velden) {
        if (naam == "nr" || naam == "vrij") {
            if (!getal(waarde, naam == "nr" ? &rij->nr : &rij->volgende))
                return mislukt(naam + ": not a number");
            rij->vrij |= naam == "vrij";
            continue;
        }
        const auto veld = std::ranges::find(velden_, naam, &Veld::naam);
        if (veld == velden_.end())
            return mislukt("no such field: " + citaat(naam));
        if (const std::string fout = veld_in(*veld, waarde, rij->rec); !fout.empty())
            return mislukt(fout);
    }
    return true;
}

bool DumpLezer::rij(Dumprij* rij) {
    if (!fout_.empty() || !regel())
        return false;
    *rij = Dumprij{volgnr_, false, -1, {}};
    if (!(json_ ? rij_json(rij) : rij_csv(rij)))
        return false;
    if (rij->nr < volgnr_)
        return mislukt("record number " + std::to_string(rij->nr) + " is not ascending");
    constexpr int32_t GATMAX = 1'000'000; // a slip of the pen shall not fill the disk
    if (rij->nr - volgnr_ > GATMAX)
        return mislukt("record number " + std::to_string(rij->nr) + " leaves out more than a million slots");
    if (rij->vrij) {
        memset(rij->rec, 0xFF, sizeof rij->rec);
        memcpy(rij->rec + 1, &rij->volgende, 4);
    } else if (!IXRECLIVE(rij->rec, reclen_)) {
        return mislukt("a record of nothing but 0xFF would count as free");
    }
    if (rij->nr == INT32_MAX)
        return mislukt("record number too high");
    volgnr_ = rij->nr + 1;
    return true;
}

} // namespace zg
