// The journals of all seasons, see tools/journaalkeur.h. Descriptors are opened for reading only, so no lock of anybody's is
// touched.
#include "tools/journaalkeur.h"
#include "order/ordcheck.h"
#include "order/ordloop.h"
#include "order/ordrec.h"
#include "order/prijswerk.h"
#include "order/register.h"
#include "shared/files.h"
#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

namespace zg {
namespace {

namespace fs = std::filesystem;

bool cijfers(const std::string& s, size_t van, size_t n) {
    return s.size() >= van + n &&
           std::all_of(s.begin() + static_cast<ptrdiff_t>(van), s.begin() + static_cast<ptrdiff_t>(van + n),
                       [](unsigned char c) { return isdigit(c) != 0; });
}

// "2016Z" and "ORD0012.JRN"
bool is_seizoen(const std::string& naam) {
    return naam.size() == 5 && cijfers(naam, 0, 4) && isupper(static_cast<unsigned char>(naam[4]));
}
// Of a supplier, with that extension.
bool is_van(const std::string& naam, const char* ext) {
    return naam.starts_with("ORD") && naam.ends_with(ext) && naam.size() > 7 &&
           cijfers(naam, 3, naam.size() - 7);
}
bool is_journaal(const std::string& naam) {
    return is_van(naam, ".JRN");
}
uint16_t leverancier_van(const std::string& naam) {
    return static_cast<uint16_t>(strtoul(naam.c_str() + 3, nullptr, 10));
}

std::vector<std::string> namen_in(const std::string& map,
                                  const std::function<bool(const std::string&)>& soort) {
    std::vector<std::string> uit;
    std::error_code fout;
    for (const auto& e : fs::directory_iterator(map, fout))
        if (soort(e.path().filename()))
            uit.push_back(e.path().filename());
    std::sort(uit.begin(), uit.end());
    return uit;
}

struct Bestand {
    explicit Bestand(const std::string& pad) : fd(open(pad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~Bestand() {
        if (fd >= 0)
            close(fd);
    }
    Bestand(const Bestand&) = delete;
    Bestand& operator=(const Bestand&) = delete;
    int fd;
};

void orders_van(int fd, const std::string& pad, bool in_hand, journalen* j) {
    ordloop l;
    ordrauw r;
    ordmodel m{};
    ordloop_begin(&l, fd, 0, INT64_MAX);
    while (ordloop_volgende(&l, &r) == LOOP_RECORD) {
        if (r.tag == 'O') {
            ordkop k;
            memcpy(&k, r.data + 1, sizeof k);
            j->orders.push_back({pad + " at " + std::to_string(r.offset),
                                 k.leverancier,
                                 k.jaar,
                                 k.orderdatum,
                                 k.seizoen,
                                 k.ontvangstlocatie,
                                 k.ordernummer,
                                 {},
                                 in_hand});
        } else if (r.tag == 'M') {
            memcpy(&m, r.data + 1, sizeof m);
        } else if (r.tag == 'D' && !j->orders.empty()) {
            orddessin d;
            memcpy(&d, r.data + 1, sizeof d);
            j->regels++;
            if (d.geregistreerd)
                j->orders.back().series.emplace(sleutel_van({m.artikelgroep, d.kleur, d.volgnummer}),
                                                uint16_t{d.tijdstempel});
        }
    }
}

void lees_journaal(const std::string& map, const std::string& naam, int filialen, journalen* j) {
    const std::string pad = map + "/" + naam, wrk = pad.substr(0, pad.size() - 3) + "WRK";
    const Bestand b(pad);
    if (b.fd < 0) {
        if (errno == ENOENT) // an emptied one went meanwhile
            return;
        j->kwalen.push_back(pad + ": " + strerror(errno));
        j->leveranciers_stuk.insert(leverancier_van(naam));
        return;
    }
    bool in_hand = !IOLOCK('T', b.fd, 0, 1);
    if (in_hand)
        j->noten.push_back(pad + ": in use");
    else if (IOSIZE(wrk.c_str()) > 0) {
        in_hand = true;
        j->noten.push_back(wrk + ": a broken-off order, restored when the supplier is chosen again");
    }
    ordtelling telling;
    for (const ordkwaal& k : ord_controle(b.fd, ORD_JOURNAAL, filialen, &telling)) {
        (in_hand ? j->noten : j->kwalen).push_back(pad + " at " + std::to_string(k.pos) + ": " + k.wat);
        j->leveranciers_stuk.insert(leverancier_van(naam));
    }
    j->bestanden++;
    orders_van(b.fd, pad, in_hand, j);
    if (in_hand)
        j->leveranciers_in_hand.insert(leverancier_van(naam));
}

// A change of many labels that was noted and isn't finished: of prices, or of what the header has for all of them.
struct Nootsoort {
    const char* ext;
    std::string (*lees)(const std::string& pad); // what it changes; empty when it isn't whole
    const char* vraag;                           // what a damaged one leaves open
};
const Nootsoort NOTEN[] = {
    {".PRS",
     [](const std::string& pad) -> std::string {
         prijswerk noot;
         if (!prijswerk_lees(pad, &noot))
             return {};
         return "prices of " + std::to_string(noot.series.size()) + " series";
     },
     "which prices were to change"},
    {".LBW",
     [](const std::string& pad) -> std::string {
         int32_t nummer;
         if (!label_noot_lees(pad, &nummer))
             return {};
         return "code or location of the labels of order " + std::to_string(nummer);
     },
     "which labels were to get their order's code or location"},
};

void lees_noot(const Nootsoort& soort, const std::string& pad, journalen* j) {
    if (const std::string wat = soort.lees(pad); !wat.empty())
        j->noten.push_back(pad + ": " + wat + " half changed, finished when the supplier is chosen again");
    else if (IOEXISTS(pad.c_str())) // else it was finished meanwhile
        j->kwalen.push_back(pad + ": damaged: " + soort.vraag + " can't be told");
}

} // namespace

journalen journalen_lees(int filialen) {
    journalen j;
    for (const std::string& map : namen_in(".", is_seizoen)) {
        j.seizoenen.insert({static_cast<uint16_t>(strtoul(map.c_str(), nullptr, 10)), map[4]});
        for (const std::string& naam : namen_in(map, is_journaal))
            lees_journaal(map, naam, filialen, &j);
        // A new order of a supplier without a journal has a work file alone until its commit.
        for (const std::string& naam : namen_in(map, [](const std::string& n) { return is_van(n, ".WRK"); }))
            if (IOSIZE((map + "/" + naam).c_str()) > 0)
                j.leveranciers_in_hand.insert(leverancier_van(naam));
        for (const Nootsoort& soort : NOTEN)
            for (const std::string& naam :
                 namen_in(map, [&soort](const std::string& n) { return is_van(n, soort.ext); }))
                lees_noot(soort, map + "/" + naam, &j);
    }
    return j;
}

} // namespace zg
