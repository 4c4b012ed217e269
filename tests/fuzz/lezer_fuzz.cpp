// Everybody else who reads files: the demo firm's data directory with bytes, words and ends changed at will, looked through
// by the operators' check, repaired, and read by the programs' own readers; and the texts that tools take. Nothing may
// crash or run for ever; what a repair called done is free of lost blocks; a record out of JSON is the same in JSON again.
#include "edi/edifys.h"
#include "edi/edihdl.h"
#include "fuzz/hulp.h"
#include "order/ordcheck.h"
#include "print/printtabel.h"
#include "shared/iotab.h"
#include "store/ix.h"
#include "term/macro/macrobestand.h"
#include "tools/boomkeur.h"
#include "tools/druktekst.h"
#include "tools/journaalkeur.h"
#include "tools/macrotekst.h"
#include "tools/ordjson.h"
#include "tools/pobestand.h"
#include "tools/registerkeur.h"
#include "tools/restkeur.h"
#include "tools/stamkeur.h"
#include "tools/systeemkeur.h"
#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <unistd.h>

using namespace zg;
using namespace zg::fuzz;
namespace fs = std::filesystem;

namespace {

std::map<std::string, std::string> heel; // every file of the directory, by path
std::vector<std::string> doelen;         // those that are damaged; indexes have a harness of their own
std::set<std::string> vuil;              // to be put back before the next round

std::vector<std::string> namen() {
    std::vector<std::string> uit;
    for (const auto& e : fs::recursive_directory_iterator("."))
        if (e.is_regular_file())
            uit.push_back(e.path().string().substr(2));
    return uit;
}

void zet_terug(bool alles) {
    for (const std::string& naam : namen())
        if (!heel.contains(naam))
            fs::remove(naam);
    for (const auto& [naam, bytes] : heel)
        if (alles || vuil.contains(naam))
            schrijf(naam.c_str(), bytes);
    vuil.clear();
}

void beschadig(Bron& in) {
    for (uint32_t n = 1 + in.onder(6); n > 0; n--) {
        const std::string& naam = doelen[in.onder(static_cast<uint32_t>(doelen.size()))];
        std::string s = lees(naam.c_str());
        const uint8_t wat = in.byte();
        // Half of the hits fall in the first 4 kB, where the heads of tables are.
        const size_t bereik = wat & 0x40 ? s.size() : std::min(s.size(), size_t{4096});
        const size_t plaats = in.onder(static_cast<uint32_t>(bereik));
        if ((wat & 7) == 7)
            s.resize(wat & 0x80 ? plaats : s.size() + in.onder(700), static_cast<char>(in.byte()));
        for (uint32_t lang = 1 + in.onder(8); (wat & 7) != 7 && plaats + lang <= s.size() && lang > 0; lang--)
            s[plaats + lang - 1] = static_cast<char>(in.byte());
        schrijf(naam.c_str(), s);
        vuil.insert(naam);
    }
}

void over_register(bool herstel) {
    const bool open = ronde([&] { keur_open(herstel); });
    bool gelukt = false;
    const bool klaar = open && ronde([&] {
                           register_keur(1);
                           if (herstel)
                               register_herstel(&gelukt);
                           if (gelukt)
                               for (const keurbestand& b : register_keur(1))
                                   if (b.verloren && b.kwalen.size() == 1)
                                       kapot("lost behind a repair: " + b.naam + ": " + b.kwalen[0]);
                       });
    (void)klaar;
    ronde([] { keur_sluit(); });
}

void map_ronde(Bron& in) {
    const bool herstel = in.byte() & 1;
    beschadig(in);
    std::set<std::string> stuk;
    int32_t nr = 0;
    if (ronde([&] { iotab('O', &nr, nullptr, SYS_RECORD); })) {
        ronde([] { systeem_keur(); });
        ronde([&] { bomen_keur(keur_paren(""), 0, &stuk); });
        ronde([&] { stam_keur(stamboek_lees(), [&](const char* naam) { return !stuk.contains(naam); }); });
        ronde([] { tabel_keur(); });
        if (!stuk.contains("DTSER") && !stuk.contains("DTIPA") && !stuk.contains("DTEAN") &&
            !stuk.contains("DTORDNR"))
            over_register(herstel);
        ronde([] {
            const stamboek boek = stamboek_lees();
            journalen_lees(&boek);
        });
        ronde([] { rest_keur(); });
    }
    ronde([&] { iotab('C', &nr, nullptr, SYS_RECORD); });
    ronde([] {
        printtabellen t;
        if (prt_lees(&t))
            for (const prtconfig& c : t.configs)
                prt_bytes(c.init, sizeof c.init);
    });
    ronde([] {
        std::vector<mac_rec> macros;
        if (MACROLEES(0, &macros) == 1)
            for (const mac_rec& m : macros)
                MACROGAAF(m), macro_regel(m);
    });
    ronde([] {
        for (const char* naam : {"ZEBEDI", "EDIDIR", "EDIRPC", "RPCHOST", "EDICMD"})
            ediget(naam), edigetpc(naam), edi_kaal(naam, true);
        ediset("EDICMD", "x");
        for (int n : {0, 991})
            ediflagset(n), ediflagget(n);
        edi_methode_zet(2);
        edifilenr();
    });
    vuil.insert({"DTRCMSYS.TXT", "DTIPCSYS.TXT"});
    zet_terug(herstel);
}

void als_json(const std::string& tekst) {
    std::istringstream in(tekst);
    std::vector<uint8_t> rec, weer;
    std::string bestand, journaal;
    for (std::string regel; std::getline(in, regel);) {
        if (!ord_uit_json(regel, &rec, &bestand).empty())
            continue;
        journaal.append(reinterpret_cast<const char*>(rec.data()), rec.size());
        const ordrauw r{static_cast<char>(rec[0]), 0, rec.data(), rec.size()};
        if (const std::string fout = ord_uit_json(ord_json(r, "n"), &weer, &bestand);
            !fout.empty() || weer != rec)
            kapot("a record out of JSON is another in JSON: " + fout);
    }
    schrijf("j", journaal);
    const int fd = open("j", O_RDONLY | O_CLOEXEC);
    ordtelling telling;
    ord_controle(fd, ORD_JOURNAAL, {.filialen = 5, .leverancier = 12, .seizoen = "2016Z"}, &telling);
    close(fd);
}

using Lezer = void (*)(const std::string& tekst);
const Lezer TEKSTEN[] = {
    als_json,
    [](const std::string& tekst) {
        Pobestand po;
        std::string fout;
        schrijf("po", tekst);
        po_lees("po", &po, &fout);
    },
    [](const std::string& tekst) { // a macro's line stays the same once it is one
        mac_rec rec{}, weer{};
        if (!macro_ontleed(druk_woorden(tekst), &rec).empty())
            return;
        const std::string regel = macro_regel(rec);
        if (!macro_ontleed(druk_woorden(regel), &weer).empty() || macro_regel(weer) != regel)
            kapot("a macro's line is another when it is read again: " + regel);
    },
    [](const std::string& tekst) {
        std::string fout;
        schrijf("druk", tekst);
        if (druk_laad("druk", &fout) != GOED)
            return;
        printtabellen t;
        prt_lees(&t);
        schrijf("druk", druk_tekst(t, 0));
        if (druk_laad("druk", &fout) != GOED)
            kapot("the list of printers can't be loaded: " + fout);
    },
    [](const std::string& tekst) { // what a message says
        char uit[9], ean[14] = {};
        std::string getal = tekst.substr(0, tekst.find('\0'));
        edidatum(tekst.c_str(), uit);
        edigetal(getal.data());
        memcpy(ean, tekst.data(), std::min(tekst.size(), sizeof ean - 1));
        ediean(ean);
    },
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char*** argv) {
    const fs::path hier = fs::absolute((*argv)[0]).parent_path();
    begin();
    const std::string demo =
        hier.string() + "/zgdemo . --register --from " + hier.string() + "/demo >/dev/null";
    if (system(demo.c_str()) != 0)
        kapot("no demo firm");
    setenv("ZEBPRT", ".", 1);
    for (const std::string& naam : namen()) {
        heel[naam] = lees(naam.c_str());
        if (naam.find(".INX") == std::string::npos)
            doelen.push_back(naam);
    }
    std::ranges::sort(doelen);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t n) {
    if (n < 2)
        return 0;
    const uint8_t soort = data[0];
    if (soort >= std::size(TEKSTEN) * 16) {
        Bron in(data + 1, n - 1);
        map_ronde(in);
        return 0;
    }
    ronde([&] { TEKSTEN[soort / 16](std::string(reinterpret_cast<const char*>(data) + 1, n - 1)); });
    if (soort / 16 == 3)
        vuil = {doelen.begin(), doelen.end()};
    zet_terug(soort / 16 == 3);
    return 0;
}
