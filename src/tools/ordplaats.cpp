#include "tools/ordplaats.h"
#include "shared/iofil.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "tools/paar.h"
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <unistd.h>

namespace zg {

namespace fs = std::filesystem;

namespace {

// "0012" and "12345", as a file is called after its supplier; -1 for another text.
int leverancier_van(const std::string& cijfers) {
    if (cijfers.size() < 4 || cijfers.size() > 5 ||
        !std::all_of(cijfers.begin(), cijfers.end(), [](unsigned char c) { return isdigit(c) != 0; }))
        return -1;
    const int nr = std::stoi(cijfers);
    return nr < 1 || nr > UINT16_MAX || (cijfers.size() == 5 && nr < 10000) ? -1 : nr;
}

// Up to n bytes from the start of a file; how many there are.
size_t begin_van(const std::string& pad, void* doel, size_t n) {
    const int fd = SYS.open(pad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    const ssize_t er = fd < 0 ? 0 : SYSLEES(fd, doel, n, 0);
    if (fd >= 0)
        SYS.close(fd);
    return er < 0 ? 0 : static_cast<size_t>(er);
}

// By number, whether DTLEV has it; empty when that can't be told.
std::vector<bool> relaties_van(const std::string& map) {
    const std::string naam = map + "/DTLEV";
    Paar paar;
    if (access((naam + ".INX").c_str(), R_OK) != 0 || access((naam + ".TXT").c_str(), R_OK) != 0 ||
        paar_open(naam, &paar) != GOED || !paar_kop(&paar).empty())
        return {};
    std::vector<bool> er(UINT16_MAX + 1);
    const auto lengte = static_cast<size_t>(paar.kop.reclen);
    std::vector<uint8_t> hap(lengte * 512);
    for (int64_t p = 0;;) {
        const ssize_t n = SYSLEES(paar.dat, hap.data(), hap.size(), p);
        for (size_t i = 0; n > 0 && i + lengte <= static_cast<size_t>(n); i += lengte)
            if (lengte > 1 && IXRECLIVE(&hap[i], paar.kop.reclen))
                er[static_cast<size_t>(hap[i] | hap[i + 1] << 8)] = true;
        if (n < static_cast<ssize_t>(hap.size()))
            return n < 0 ? std::vector<bool>{} : er;
        p += n;
    }
}

ordomgeving firma_van(const std::string& map) {
    ordomgeving uit;
    sysfirma eigen;
    if (begin_van(map + "/DTSYS.TXT", &eigen, sizeof eigen) == sizeof eigen && eigen.filialen <= FILIALEN)
        uit.filialen = eigen.filialen;
    // The head office is record 0.
    std::vector<filiaalrec> filialen(static_cast<size_t>(uit.filialen) + 1);
    const size_t er =
        begin_van(map + "/DTFILGEG.TXT", filialen.data(), filialen.size() * sizeof(filiaalrec)) /
        sizeof(filiaalrec);
    if (uit.filialen && er == filialen.size())
        for (size_t i = 1; i < er; i++)
            uit.filiaalnummers.push_back(filialen[i].nummer);
    uit.relaties = relaties_van(map);
    return uit;
}

} // namespace

bool is_seizoensmap(const std::string& naam) {
    return naam.size() == 5 && isupper(static_cast<unsigned char>(naam[4])) &&
           std::all_of(naam.begin(), naam.end() - 1, [](unsigned char c) { return isdigit(c) != 0; });
}

bool ord_plaats(const std::string& pad, Ordplaats* plaats) {
    const fs::path p = fs::absolute(pad).lexically_normal(), hier = p.parent_path();
    const std::string naam = p.filename().string(), ext = p.extension().string();
    if (!naam.starts_with("ORD") || (ext != ".JRN" && ext != ".WRK"))
        return false;
    const std::string midden = naam.substr(3, naam.size() - 7);
    plaats->werk = ext == ".WRK";
    if (is_seizoensmap(midden) && !plaats->werk) {
        plaats->map = hier.string(), plaats->seizoen = midden, plaats->leverancier = 0;
        return true;
    }
    plaats->map = hier.parent_path().string(), plaats->seizoen = hier.filename().string();
    plaats->leverancier = leverancier_van(midden);
    return plaats->leverancier > 0 && is_seizoensmap(plaats->seizoen);
}

std::vector<std::string> ord_bestanden(const std::string& map) {
    std::vector<std::string> uit, seizoenen;
    const auto neem = [&uit](const fs::directory_entry& e) {
        Ordplaats plaats;
        std::error_code fout;
        if (ord_plaats(e.path().string(), &plaats) && // what is no file is told when it is read
            (!plaats.werk || e.file_size(fout) > 0))
            uit.push_back(e.path().string());
    };
    std::error_code fout;
    for (const auto& e : fs::directory_iterator(map, fout))
        if (is_seizoensmap(e.path().filename().string()))
            seizoenen.push_back(e.path().string());
        else
            neem(e);
    for (const std::string& seizoen : seizoenen)
        for (const auto& e : fs::directory_iterator(seizoen, fout))
            neem(e);
    std::sort(uit.begin(), uit.end());
    return uit;
}

ordomgeving ord_omgeving(const Ordplaats& plaats) {
    static std::map<std::string, ordomgeving> gelezen; // one journal stands beside the other
    auto [p, nieuw] = gelezen.try_emplace(plaats.map);
    if (nieuw)
        p->second = firma_van(plaats.map);
    ordomgeving uit = p->second;
    uit.leverancier = plaats.leverancier;
    uit.seizoen = plaats.seizoen;
    return uit;
}

} // namespace zg
