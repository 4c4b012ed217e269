// ordload: an order journal from the JSON lines of orddump. All of it is read into a file without a name, checked there,
// and only then takes the journal's place, whole and under the journal's lock, as a commit of the order program does.
#include "control/batchvw.h"
#include "order/ioord.h"
#include "order/ordloop.h"
#include "shared/files.h"
#include "shared/iotab.h"
#include "shared/syscalls.h"
#include "store/spoel.h"
#include "tools/ordjson.h"
#include "tools/ordkeur.h"
#include "tools/ordplaats.h"
#include "tools/tool.h"
#include "tools/wie.h"
#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <unistd.h>

namespace {

using namespace zg;
namespace fs = std::filesystem;

struct Wens {
    std::string journaal, invoer;
    bool vervang = false, check = false;
};
Wens wens;

// A descriptor that goes with its holder, and its locks with it.
struct Vat {
    explicit Vat(int open) : fd(open) {}
    ~Vat() {
        if (fd >= 0)
            SYS.close(fd);
    }
    Vat(const Vat&) = delete;
    Vat& operator=(const Vat&) = delete;
    int fd;
};

Uitkomst mis(Uitkomst uit, const std::string& naam, const std::string& wat) {
    return klacht(naam, wat), uit;
}

// The records into `fd`, and for each its line into `regels`. Told when it can't be done.
Uitkomst lees(std::istream& in, const std::string& naam, int fd, Spoel* regels) {
    std::string regel, bestand, eerste;
    std::vector<uint8_t> rec, hap;
    int64_t nr = 0, omvang = 0, records = 0;
    const auto weg = [&] {
        const bool goed = SYSSCHRIJF(fd, hap.data(), hap.size());
        hap.clear();
        return goed;
    };
    while (std::getline(in, regel)) {
        nr++;
        if (regel.empty())
            continue;
        const auto bij_regel = [&](const std::string& wat) {
            return mis(FOUT_GEVONDEN, naam, "line " + std::to_string(nr) + ": " + wat);
        };
        if (const std::string fout = ord_uit_json(regel, &rec, &bestand); !fout.empty())
            return bij_regel(fout);
        if (!records++)
            eerste = bestand;
        if (bestand != eerste)
            return bij_regel("of another file: " + citaat(bestand) + "; one journal at a time");
        hap.insert(hap.end(), rec.begin(), rec.end());
        omvang += static_cast<int64_t>(rec.size());
        if (omvang > INT32_MAX)
            return bij_regel("the journal would be longer than 2 GB");
        if ((hap.size() >= LOOPBLOK && !weg()) || !regels->schrijf(&nr, sizeof nr))
            return mis(FOUT_GEVONDEN, wens.journaal, strerror(errno));
    }
    if (in.bad())
        return mis(NIET_TE_OPENEN, naam, "can't be read");
    if (!records)
        return mis(FOUT_GEVONDEN, naam, "nothing to load");
    return weg() ? GOED : mis(FOUT_GEVONDEN, wens.journaal, strerror(errno));
}

// What orddump would find wrong in it, by the lines that were read.
Uitkomst keur(const std::string& naam, int fd, const ordomgeving& omgeving, Spoel* regels,
              ordtelling* telling) {
    const std::vector<ordkwaal> kwalen = ord_keur(fd, ORD_JOURNAAL, omgeving, telling);
    std::map<int64_t, int64_t> regel_op; // of the places that are told
    for (const ordkwaal& k : kwalen)
        regel_op[k.pos] = 0;
    ordloop l;
    ordrauw r;
    ordloop_begin(&l, fd, 0, INT64_MAX);
    for (int64_t n = 0; !kwalen.empty() && ordloop_volgende(&l, &r) == LOOP_RECORD; n++)
        if (const auto p = regel_op.find(r.offset); p != regel_op.end())
            regels->lees(n * int64_t{sizeof n}, &p->second, sizeof n);
    for (const ordkwaal& k : kwalen)
        klacht(naam, "line " + std::to_string(regel_op[k.pos]) + ": " + k.wat);
    return kwalen.empty() ? GOED : FOUT_GEVONDEN;
}

// Byte 0 of the open journal, and still of the file with that name.
Uitkomst neem_slot(int fd, const std::string& pad) {
    struct stat hier, daar;
    if (IOLOCK('E', fd, 0, 1) && SYS.fstat(fd, &hier) == 0 && stat(pad.c_str(), &daar) == 0 &&
        hier.st_ino == daar.st_ino && hier.st_dev == daar.st_dev)
        return GOED;
    return mis(IN_GEBRUIK, pad, "in use" + door_wie(pad, fd, 0, 1));
}

bool kopieer(int van, int naar) {
    std::vector<uint8_t> hap(LOOPBLOK);
    for (int64_t p = 0;;) {
        const ssize_t n = SYSLEES(van, hap.data(), hap.size(), p);
        if (n <= 0)
            return n == 0;
        if (!SYSSCHRIJF(naar, hap.data(), static_cast<size_t>(n)))
            return false;
        p += n;
    }
}

// The bytes of `fd` as the journal that `jrn` is open on, locked. Refused by the disk the old one stands.
bool zet(int fd, int jrn, const std::string& pad) {
    const std::string tmp = pad.substr(0, pad.size() - 3) + "TMP";
    const auto nog_vast = [&] { // the names are ours as long as the journal's lock is
        errno = ord_slotfout(jrn, pad.c_str());
        return errno == 0;
    };
    const Vat nieuw(nog_vast() ? SYSNIEUW(tmp.c_str(), O_RDWR | O_TRUNC) : -1);
    if (nieuw.fd >= 0 && kopieer(fd, nieuw.fd) && SYSEVENALS(nieuw.fd, pad.c_str()) &&
        (SYS.fsync(nieuw.fd) == 0 || errno == EINVAL || errno == ENOTSUP) && IOLOCK('E', nieuw.fd, 0, 1) &&
        nog_vast() && SYS.rename(tmp.c_str(), pad.c_str()) == 0)
        return true;
    const int fout = errno;
    if (nieuw.fd >= 0 && nog_vast())
        SYS.unlink(tmp.c_str());
    errno = fout;
    return false;
}

// Into the journal's place, in the data directory's hands.
Uitkomst plaats_journaal(int fd, const std::string& pad) {
    const bool was = IOEXISTS(pad.c_str()) != 0;
    const Vat jrn(SYSNIEUW(pad.c_str(), O_RDWR));
    if (jrn.fd < 0)
        return mis(NIET_TE_OPENEN, pad, strerror(errno));
    if (const Uitkomst uit = neem_slot(jrn.fd, pad))
        return uit;
    Uitkomst uit = GOED;
    if (SYSOMVANG(jrn.fd) > 0 && !wens.vervang)
        uit = mis(FOUT_GEBRUIKT, pad, "exists already; --replace lets it go");
    else if (IOSIZE((pad.substr(0, pad.size() - 3) + "WRK").c_str()) > 0)
        uit = mis(IN_GEBRUIK, pad, "an order of it was broken off; choose the supplier in the program first");
    else if (!zet(fd, jrn.fd, pad))
        uit = mis(FOUT_GEVONDEN, pad, strerror(errno));
    if (uit != GOED && !was && SYSOMVANG(jrn.fd) == 0 && ord_slotfout(jrn.fd, pad.c_str()) == 0)
        SYS.unlink(pad.c_str());
    return uit;
}

// What keeps users from the orders of the season keeps a load out. It holds the byte of an unattended run in their group, so
// that no batch run begins meanwhile.
Uitkomst meld_aan(const std::string& seizoen) {
    if (FILES_PRESENT("STAT%*02hd.TXT"))
        return mis(IN_GEBRUIK, wens.journaal, "master data waits to be taken up first: STATnn.TXT");
    if (const std::string nieuw = seizoen + "/NEWORD.TXT"; IOEXISTS(nieuw.c_str()))
        return mis(IN_GEBRUIK, wens.journaal, "orders wait to be taken up first: " + nieuw);
    if (access("DTSYS.TXT", F_OK) != 0)
        return GOED;
    int32_t nr = 0;
    iotab('O', &nr, nullptr, SYS_RECORD);
    if (batch_gebruikers(BATCH_ORDERS).size() == 99)
        return mis(IN_GEBRUIK, wens.journaal, "processing is active");
    sessie = BATCHGEBRUIKER;
    user_claim(BATCH_ORDERS, false);
    return GOED;
}

Uitkomst laad() {
    Ordplaats plaats;
    if (!ord_plaats(wens.journaal, &plaats) || plaats.werk)
        return mis(FOUT_GEBRUIKT, wens.journaal, "not called SEASON/ORDnnnn.JRN");
    for (const char* naam : {"/DTSER.INX", "/DTSER.TXT"})
        if (IOEXISTS((plaats.map + naam).c_str()))
            return mis(FOUT_GEBRUIKT, plaats.map + naam,
                       "the full registration is in use here; orders would have no labels");
    const std::string pad = fs::absolute(wens.journaal).string();
    if (struct stat st; stat(pad.c_str(), &st) == 0 && !S_ISREG(st.st_mode))
        return mis(NIET_TE_OPENEN, pad, "not a plain file");
    if (IOSIZE(pad.c_str()) > 0 && !wens.vervang && !wens.check)
        return mis(FOUT_GEBRUIKT, pad, "exists already; --replace lets it go");
    std::ifstream bestand;
    if (!wens.invoer.empty()) {
        bestand.open(wens.invoer, std::ios::binary);
        if (!bestand || IOISDIR(wens.invoer.c_str()))
            return mis(NIET_TE_OPENEN, wens.invoer, strerror(bestand ? EISDIR : errno));
    }
    const Vat inhoud(NAAMLOOSBESTAND(pad.c_str()));
    if (inhoud.fd < 0)
        return mis(NIET_TE_OPENEN, fs::path(pad).parent_path().string(), strerror(errno));
    const std::string naam = wens.invoer.empty() ? "standard input" : wens.invoer;
    Spoel regels(pad);
    ordtelling telling;
    Uitkomst uit = lees(wens.invoer.empty() ? std::cin : bestand, naam, inhoud.fd, &regels);
    if (uit == GOED)
        uit = keur(naam, inhoud.fd, ord_omgeving(plaats), &regels, &telling);
    if (uit == GOED && !wens.check && (uit = tool_map(plaats.map)) == GOED &&
        (uit = meld_aan(plaats.seizoen)) == GOED)
        uit = plaats_journaal(inhoud.fd, pad);
    if (uit == GOED)
        fprintf(stderr, "%s: %lld orders, %lld lines, %lld records%s\n", pad.c_str(),
                static_cast<long long>(telling.orders), static_cast<long long>(telling.regels),
                static_cast<long long>(telling.records), wens.check ? ", good" : "");
    return uit;
}

} // namespace

int main(int argc, char** argv) {
    tool_begin("ordload");
    CLI::App app{"make an order journal from the JSON lines of orddump.\n"
                 "They are checked first; the journal is made whole or not at all.",
                 "ordload"};
    tool_kop(app, "0 good, 1 found wrong, 2 used wrong, 3 cannot open, 4 in use.");
    app.add_option("JOURNAL", wens.journaal, "SEASON/ORDnnnn.JRN of a data directory")->required();
    app.add_option("-i,--input", wens.invoer, "file to read, else standard input");
    app.add_flag("-r,--replace", wens.vervang, "an existing journal of that name may go");
    app.add_flag("-c,--check", wens.check, "only check");
    if (int uit; !tool_woorden(app, argc, argv, &uit))
        return uit;
    return tool_einde(laad());
}
