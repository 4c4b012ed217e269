#include "tools/demotekst.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include "term/natl.h"
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>

namespace zg {

void demofout(const std::string& wat) {
    fprintf(stderr, "zgdemo: %s\n", wat.c_str());
    exit(1);
}

void demobestand(const std::string& pad, const void* inhoud, size_t bytes) {
    int fd = SYSNIEUW(pad.c_str(), O_WRONLY | O_TRUNC);
    if (fd < 0 || !SYSSCHRIJF(fd, inhoud, bytes) || SYS.close(fd) != 0)
        demofout(pad + ": " + strerror(errno));
}

Demobron::Demobron(const std::string& pad) : pad_(pad) {
    FILE* f = fopen(pad.c_str(), "re");
    if (!f)
        demofout(pad + ": " + strerror(errno));
    char buf[8192];
    for (size_t n; (n = fread(buf, 1, sizeof buf, f)) > 0;)
        inhoud_.append(buf, n);
    fclose(f);
}

void Demobron::fout(const std::string& wat) const {
    demofout(pad_ + ":" + std::to_string(regelnr_) + ": " + wat);
}

int Demobron::getal(const std::string& woord, int laag, int hoog) const {
    char* einde;
    errno = 0;
    long w = strtol(woord.c_str(), &einde, 10);
    if (woord.empty() || *einde || errno || w < laag || w > hoog)
        fout("not a number from " + std::to_string(laag) + " to " + std::to_string(hoog) + ": " + woord);
    return static_cast<int>(w);
}

uint16_t Demobron::datum(const std::string& woord) const {
    int j, m, d;
    char tekst[16];
    if (sscanf(woord.c_str(), "%4d-%2d-%2d", &j, &m, &d) != 3)
        fout("not a date: " + woord);
    snprintf(tekst, sizeof tekst, "%02d%02d%04d", d % 100, m % 100, j % 10000);
    uint16_t nr = DATUMGELDIG(tekst) ? DATUMNR(tekst) : 0;
    if (nr == 0)
        fout("not a date: " + woord);
    return nr;
}

std::string Demobron::cp850(const std::string& utf8) const {
    std::string uit;
    if (!CP850NAAR(utf8, &uit))
        fout("a character without a place in code page 850: " + utf8);
    return uit;
}

bool Demobron::volgende(Demoregel* regel) {
    while (plaats_ < inhoud_.size()) {
        size_t einde = inhoud_.find('\n', plaats_);
        std::string r = inhoud_.substr(plaats_, einde - plaats_);
        plaats_ = einde == std::string::npos ? inhoud_.size() : einde + 1;
        regelnr_++;
        if (r.empty() || r[0] == '#')
            continue;
        if (r[0] == '[') {
            sectie_ = r.substr(1, r.find(']') - 1);
            continue;
        }
        *regel = {sectie_, {}, {}};
        std::string woord;
        bool in = false, iets = false;
        for (size_t i = 0; i < r.size(); i++) {
            char c = r[i];
            if (c == '"') {
                in = !in, iets = true;
            } else if (c == ' ' && !in) {
                if (iets)
                    regel->woorden.push_back(woord);
                woord.clear(), iets = false;
            } else if (c == '\\' && in && i + 1 < r.size() && r[i + 1] == 'n') {
                woord += '\n', i++;
            } else {
                woord += c, iets = true;
            }
        }
        if (iets)
            regel->woorden.push_back(woord);
        if (regel->woorden.empty())
            continue;
        size_t spatie = r.find(' ');
        regel->rest = spatie == std::string::npos ? "" : r.substr(spatie + 1);
        return true;
    }
    return false;
}

const char* demowaarde(const std::vector<std::string>& woorden, std::string_view naam, std::string* ruimte) {
    for (const std::string& w : woorden)
        if (w.size() > naam.size() && w.starts_with(naam) && w[naam.size()] == '=') {
            *ruimte = w.substr(naam.size() + 1);
            return ruimte->c_str();
        }
    return nullptr;
}

} // namespace zg
