// The list of what is in a copy, and the check of a copy by it and of its pairs, see tools/kopie.h. The list is one of
// sha256sum's, so that any machine can check it; what that doesn't know stands behind "# ", which it passes over.
#include "shared/files.h"
#include "shared/syscalls.h"
#include "store/diepcheck.h"
#include "tools/demomerk.h"
#include "tools/kopie.h"
#include "tools/paar.h"
#include "tools/schrijver.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <openssl/evp.h>
#include <set>

namespace zg {

namespace {

constexpr char KOP[] = "# zgcopy 1 ", EIND[] = "# end ", MAP[] = "# directory ", LINK[] = "# link ";

// The checksum of an open file in hex; empty with errno.
std::string som(int fd, Balk* balk, int64_t* gedaan) {
    static std::vector<char> stuk(1 << 20);
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> c(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    unsigned char uit[EVP_MAX_MD_SIZE];
    unsigned lengte = 0;
    bool goed = c && EVP_DigestInit_ex(c.get(), EVP_sha256(), nullptr) == 1;
    for (int64_t p = 0, n = 1; goed && n > 0; p += n, balk->bij(*gedaan += n)) {
        n = kopie_gestopt ? (errno = EINTR, -1) : SYSLEES(fd, stuk.data(), stuk.size(), p);
        goed = n >= 0 && EVP_DigestUpdate(c.get(), stuk.data(), static_cast<size_t>(n)) == 1;
    }
    if (!goed || EVP_DigestFinal_ex(c.get(), uit, &lengte) != 1)
        return errno = errno ? errno : EIO, "";
    std::string hex;
    for (unsigned i = 0; i < lengte; i++)
        for (const int half : {uit[i] >> 4, uit[i] & 15})
            hex += "0123456789abcdef"[half];
    return hex;
}

std::string som_van(const std::string& pad, Balk* balk, int64_t* gedaan) {
    const int fd = SYS.open(pad.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK, 0);
    if (fd < 0)
        return "";
    errno = 0;
    std::string uit = som(fd, balk, gedaan);
    const int fout = errno;
    SYS.close(fd);
    errno = fout;
    return uit;
}

// A name as sha256sum writes it: with a backslash in front of the line, and line feeds and backslashes as two signs.
std::string buiten(const std::string& naam, bool* anders) {
    std::string uit;
    for (const char c : naam)
        uit += c == '\n' ? "\\n" : c == '\r' ? "\\r" : c == '\\' ? "\\\\" : std::string(1, c);
    *anders = uit != naam;
    return uit;
}

std::string binnen(const std::string& tekst) {
    std::string uit;
    for (size_t i = 0; i < tekst.size(); i++)
        if (tekst[i] == '\\' && i + 1 < tekst.size()) {
            const char c = tekst[++i];
            uit += c == 'n' ? '\n' : c == 'r' ? '\r' : c;
        } else {
            uit += tekst[i];
        }
    return uit;
}

} // namespace

bool kopie_is_paar(const Kopieboom& boom, const std::string& naam) {
    return naam.ends_with(".INX") && boom.contains(naam.substr(0, naam.size() - 4) + ".TXT");
}

bool kopie_lijst(Kopie* k, const std::string& kop) {
    const std::string pad = k->naar + "/" + KOPIELIJST;
    int64_t bytes = 0, gedaan = 0, aantal = 0;
    for (const auto& [naam, post] : k->boom)
        bytes += post.st.st_size;
    Balk balk("checksums", bytes);
    Schrijver uit(pad);
    const auto regel = [&](const std::string& r) { return uit.zet((r + "\n").data(), r.size() + 1); };
    bool goed = regel(KOP + kop), anders;
    for (const auto& [naam, post] : k->boom) {
        const std::string tekst = buiten(naam, &anders);
        if (S_ISDIR(post.st.st_mode) || !post.link.empty()) {
            goed = goed && regel((S_ISDIR(post.st.st_mode) ? MAP : LINK) + tekst);
        } else if (goed) {
            const std::string hex = som_van(k->naar + "/" + naam, &balk, &gedaan);
            if (hex.empty()) {
                k->fout = naam + ": " + (kopie_gestopt ? "stopped" : strerror(errno));
                return false;
            }
            goed = regel((anders ? "\\" : "") + hex + "  " + tekst);
        }
        aantal++;
    }
    if (!goed || !regel(EIND + std::to_string(aantal)) || !uit.af() || SYS.fsync(uit.fd()) != 0 ||
        !SYSEVENALS(uit.fd(), (k->van + "/" + KOPIELIJST).c_str())) { // the group of what it lists
        k->fout = pad + ": " + strerror(errno);
        return false;
    }
    return true;
}

bool kopie_nakijken(const std::string& map, std::vector<std::string>* kwalen, std::vector<std::string>* noten,
                    std::string* fout) {
    const std::string lijst = map + "/" + KOPIELIJST;
    std::string regel;
    if (const int fd = open_gewoon(lijst, O_RDONLY); fd >= 0)
        SYS.close(fd);
    else if (errno != ENOENT)
        return *fout = lijst + ": " + openreden(errno), false;
    std::ifstream in(lijst, std::ios::binary);
    *fout = map + ": ";
    if (!in.is_open())
        return *fout += std::string("no ") + KOPIELIJST + " in it: no copy, or not the whole of one", false;
    if (!std::getline(in, regel) || !regel.starts_with(KOP))
        return *fout += std::string(KOPIELIJST) + " is no list of zgcopy", false;
    Kopie k{map, map + "/" + KOPIEWERK, {}, {}, {}, ""};
    Kopieboom boom;
    if (!kopie_boom(&k, &boom))
        return *fout = k.fout, false;
    int64_t bytes = 0, gedaan = 0, aantal = 0;
    for (const auto& [naam, post] : boom)
        bytes += post.st.st_size;
    Balk balk("checksums", bytes);
    std::set<std::string> genoemd;
    bool heel = false;
    while (!heel && std::getline(in, regel)) {
        if (regel.starts_with(EIND)) {
            heel = !in.eof() && regel == EIND + std::to_string(aantal) && in.peek() == EOF;
            break;
        }
        aantal++;
        const bool is_map = regel.starts_with(MAP), is_link = regel.starts_with(LINK);
        const size_t schuin = regel.starts_with("\\") ? 1 : 0, naam_op = schuin + 66;
        if (!is_map && !is_link && regel.size() <= naam_op)
            break;
        const std::string naam = binnen(regel.substr(is_map    ? strlen(MAP)
                                                     : is_link ? strlen(LINK)
                                                               : naam_op));
        genoemd.insert(naam);
        const auto post = boom.find(naam);
        if (post == boom.end()) {
            struct stat st;
            kwalen->push_back(naam + (lstat((map + "/" + naam).c_str(), &st) == 0 ? ": is of another kind"
                                                                                  : ": isn't there"));
            continue;
        }
        if (S_ISDIR(post->second.st.st_mode) != is_map || post->second.link.empty() == is_link) {
            kwalen->push_back(naam + ": is of another kind");
            continue;
        }
        const std::string hex = is_map || is_link ? "" : som_van(map + "/" + naam, &balk, &gedaan);
        if (!is_map && !is_link && hex != regel.substr(schuin, 64))
            kwalen->push_back(naam + ": " + (hex.empty() ? strerror(errno) : "its bytes have changed"));
        if (kopie_gestopt)
            return *fout = "stopped", false;
    }
    if (!heel)
        return *fout += std::string(KOPIELIJST) + " is cut off or damaged", false;
    for (const std::string& half : kopie_half(map, boom))
        if (!genoemd.contains(half.substr(0, half.find(':'))) || half.starts_with(DEMOMERK)) // else told
            kwalen->push_back(half);
    for (const auto& [naam, post] : boom)
        if (!genoemd.contains(naam))
            noten->push_back(naam + ": came later, the list doesn't name it");
    return true;
}

std::vector<std::string> kopie_half(const std::string& map, const Kopieboom& boom) {
    std::vector<std::string> uit;
    if (demo_half(map))
        uit.push_back(std::string(DEMOMERK) + ": " + DEMOHALFMADE);
    for (const auto& [naam, post] : boom) {
        const bool inx = naam.ends_with(".INX");
        if (!inx && !naam.ends_with(".TXT"))
            continue;
        const std::string stam = naam.substr(0, naam.size() - 4), andere = stam + (inx ? ".TXT" : ".INX");
        if ((kopie_paarnaam(stam) || (inx && naam.find('/') == std::string::npos)) && !boom.contains(andere))
            uit.push_back(andere + ": isn't there, so " + naam + " is half a pair");
    }
    return uit;
}

int kopie_paren(const std::string& map, std::vector<std::string>* kwalen) {
    Kopie k{map, map + "/" + KOPIEWERK, {}, {}, {}, ""};
    Kopieboom boom;
    int paren = 0;
    kopie_boom(&k, &boom);
    for (const auto& [naam, post] : boom) {
        if (!kopie_is_paar(boom, naam))
            continue;
        paren++;
        const std::string stam = naam.substr(0, naam.size() - 4), pad = map + "/" + stam;
        const int idx = SYS.open((pad + ".INX").c_str(), O_RDONLY | O_CLOEXEC, 0);
        const int dat = SYS.open((pad + ".TXT").c_str(), O_RDONLY | O_CLOEXEC, 0);
        const Werkbalk balk("check " + tabelnaam(pad));
        if (idx < 0 || dat < 0)
            kwalen->push_back(stam + ": " + strerror(errno));
        else
            for (const std::string& b : IXDIEPCHECK(idx, dat))
                kwalen->push_back(stam + ": " + b);
        for (const int fd : {idx, dat})
            if (fd >= 0)
                SYS.close(fd);
        if (kopie_gestopt)
            break;
    }
    return paren;
}

} // namespace zg
