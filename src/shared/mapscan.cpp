// DIRECTORY and FILES_PRESENT: names in a directory by pattern, sorted, with scans inside scans.
#include "shared/files.h"
#include "term/natl.h"
#include "term/scherm.h"
#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace zg {
namespace {

constexpr size_t SCANS = 10;

struct Scan {
    std::vector<std::string> namen;
    size_t lees = 0;
    int lengte = 12;
};
std::vector<Scan> stapel;

std::string bestandsdeel(std::string patroon) {
    if (patroon.size() > 1 && patroon[1] == ':')
        patroon.erase(0, 2);
    size_t schuin = patroon.rfind('/');
    return schuin == std::string::npos ? patroon : patroon.substr(schuin + 1);
}

void vervang(std::string& s, size_t plaats, size_t lengte, const char* door) {
    if (plaats != std::string::npos)
        s.replace(plaats, lengte, door);
}

std::string matchformaat(const char* patroon) {
    std::string f = bestandsdeel(patroon);
    if (f.empty())
        return "%*s %c";
    if (f.back() == '*')
        vervang(f, f.size() - 1, 1, "%*s");
    vervang(f, f.find("*."), 2, "%*[^.].");
    size_t punt = f.find(".*");
    if (punt != std::string::npos)
        vervang(f, punt + 1, 1, "%*s");
    for (size_t i = 0; (i = f.find('?', i)) != std::string::npos; i += 3)
        vervang(f, i, 1, "%*c");
    return f + " %c";
}

// Only directives that store nothing may stand before the last " %c".
bool veilig(const std::string& f) {
    for (size_t i = 0; i + 3 < f.size(); i++) {
        if (f[i] != '%')
            continue;
        if (f[++i] == '%')
            continue;
        if (f[i] != '*')
            return false;
        for (i++; isdigit(static_cast<uint8_t>(f[i]));)
            i++;
        while (f[i] == 'h' || f[i] == 'l')
            i++;
        if (!f[i] || !strchr("diouxXsc[", f[i]))
            return false;
        if (f[i] == '[') {
            size_t dicht = f.find(']', i + (f[i + 1] == '^' ? 3 : 2));
            if (dicht == std::string::npos)
                return false;
            i = dicht;
        }
    }
    return true;
}

bool past_formaat(const std::string& formaat, const char* naam) {
    char teken = 0;
    return sscanf((std::string(naam) + " \x01").c_str(), formaat.c_str(), &teken) == 1 && teken == 1;
}

bool past_joker(const char* p, const char* s) {
    const char *ster = nullptr, *terug = nullptr;
    while (*s) {
        if (*p == '*') {
            ster = ++p;
            terug = s;
        } else if (*p &&
                   (*p == '?' || NGROOT(static_cast<uint8_t>(*p)) == NGROOT(static_cast<uint8_t>(*s)))) {
            p++;
            s++;
        } else if (ster) {
            p = ster;
            s = ++terug;
        } else {
            return false;
        }
    }
    while (*p == '*')
        p++;
    return !*p;
}

bool past_patroon(const std::string& patroon, const char* naam) {
    if (past_joker(patroon.c_str(), naam))
        return true;
    size_t n = patroon.size();
    return n >= 2 && patroon.compare(n - 2, 2, ".*") == 0 && !strchr(naam, '.') &&
           past_joker(patroon.substr(0, n - 2).c_str(), naam);
}

// Calls doe(full directory name with its '/', entry) for each entry of the kind; false when the pattern is
// too long or its directory can't be read.
template <class Doe> bool loop_map(const char* patroon, int kind, Doe doe) {
    if (strlen(patroon) > DIRPATROON)
        return false;
    std::string map = patroon, voor;
    if (map.size() > 1 && map[1] == ':')
        map.erase(0, 2);
    size_t schuin = map.rfind('/');
    map = schuin == std::string::npos ? "" : map.substr(0, schuin + 1);
    if (!map.empty()) {
        char vol[PATH_MAX];
        if (!realpath(map.c_str(), vol))
            return false;
        voor = vol;
        if (voor.back() != '/')
            voor += '/';
    }
    DIR* dir = opendir(map.empty() ? "." : map.c_str());
    if (!dir)
        return false;
    struct stat st;
    while (const dirent* de = readdir(dir))
        if (stat((voor + de->d_name).c_str(), &st) == 0 &&
            (kind == 2 ? S_ISDIR(st.st_mode) : S_ISREG(st.st_mode)))
            doe(voor, de->d_name);
    closedir(dir);
    return true;
}

int open_scan(const char* patroon, int kind) {
    if (stapel.size() >= SCANS)
        SCRFATAL("DIRECTORY : ALLOC");
    Scan scan;
    std::string formaat = matchformaat(patroon);
    if (!veilig(formaat))
        return 0;
    loop_map(patroon, kind, [&](const std::string& voor, const char* naam) {
        if (voor.size() + strlen(naam) < DIRNAAM && past_formaat(formaat, naam)) {
            scan.namen.push_back(voor + naam);
            scan.lengte = std::max(scan.lengte, static_cast<int>(scan.namen.back().size()));
        }
    });
    if (scan.namen.empty())
        return 0;
    std::sort(scan.namen.begin(), scan.namen.end());
    stapel.push_back(std::move(scan));
    return 1;
}

} // namespace

int DIRECTORY(char letter, char* patroon_of_naam, int kind) {
    if (letter == 'O')
        return open_scan(patroon_of_naam, kind);
    if (stapel.empty())
        return 0;
    Scan& scan = stapel.back();
    if (letter == 'N') {
        if (scan.lees >= scan.namen.size())
            return 0;
        const std::string& naam = scan.namen[scan.lees++];
        memcpy(patroon_of_naam, naam.c_str(), naam.size() + 1);
        return 1;
    }
    if (letter == 'C') {
        stapel.pop_back();
        return 1;
    }
    return 0;
}

int DIRECTORYAANTAL() {
    return stapel.empty() ? 0 : static_cast<int>(stapel.back().namen.size());
}

int DIRECTORYLENGTE() {
    return stapel.empty() ? 12 : stapel.back().lengte;
}

const char* DIRECTORYNAAM(int index) {
    if (index < 0 || index >= DIRECTORYAANTAL())
        return "";
    return stapel.back().namen[static_cast<size_t>(index)].c_str();
}

int IOPAST(const char* patroon, const char* naam) {
    return past_joker(patroon, naam) ? 1 : 0;
}

int FILES_PRESENT(const char* patroon) {
    if (stapel.size() >= SCANS)
        SCRFATAL("FILES_PRESENT : ALLOC voor DIR_ENT");
    const std::string naam_deel = bestandsdeel(patroon);
    bool directief = naam_deel.find("%*") != std::string::npos;
    std::string formaat = directief ? matchformaat(patroon) : naam_deel;
    if (directief && !veilig(formaat))
        return 0;
    int aantal = 0;
    loop_map(patroon, 0, [&](const std::string&, const char* naam) {
        aantal += directief ? past_formaat(formaat, naam) : past_patroon(formaat, naam);
    });
    return aantal;
}

} // namespace zg
