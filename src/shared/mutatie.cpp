// Till mutations, see shared/mutatie.h. Those that wait are noted in a file of the user's slot, MUTnn.RES, a line each, before
// their record is written or anything is waited for: what a kill leaves there goes out at the slot's next start. One that
// goes out twice, or of a record that was not written, does no harm, since it only says where to look.
#include "shared/mutatie.h"
#include "shared/regelbij.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "shared/sysrec.h"
#include "shared/teksten.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <vector>

namespace zg {

bool (*MUTATIEHAAK)(std::span<const Mutatie> mutaties);

namespace {

std::vector<Mutatie> bewaard, vooraf; // to be sent; their records may still be refused
bool houden;
bool nieuw;    // something since the last try to send
int noot = -1; // the file that holds what is kept

std::string notitie() {
    char naam[32];
    snprintf(naam, sizeof naam, "MUT%02d.RES", sessie);
    return naam;
}

// Where it can't be, memory has to do.
void noteer(const Mutatie& m) {
    if (sessie > 0 && noot < 0)
        noot = SYSNIEUW(notitie().c_str(), O_RDWR | O_APPEND | O_EXCL | O_NOFOLLOW | O_NOCTTY);
    if (noot >= 0)
        REGELBIJ(noot, m.letter + m.inhoud);
}

void wis_noot() {
    if (noot < 0 || !bewaard.empty() || !vooraf.empty())
        return;
    SYS.unlink(notitie().c_str());
    SYS.close(noot);
    noot = -1;
}

bool staat_in(const std::vector<Mutatie>& reeks, const Mutatie& m) {
    return std::find(reeks.begin(), reeks.end(), m) != reeks.end();
}

} // namespace

bool kassakoppeling() {
    return (firma.vlag30 & 4) != 0;
}

bool mutatie(char letter, const std::string& inhoud) {
    const Mutatie m{letter, inhoud};
    if (MUTATIEHAAK && kassakoppeling()) {
        nieuw = true;
        if (!staat_in(bewaard, m)) {
            if (!std::erase(vooraf, m))
                noteer(m);
            bewaard.push_back(m);
        }
    }
    return houden || mutaties_stuur();
}

void mutatie_vooraf(char letter, const std::string& inhoud) {
    const Mutatie m{letter, inhoud};
    if (!MUTATIEHAAK || !kassakoppeling() || staat_in(bewaard, m) || staat_in(vooraf, m))
        return;
    noteer(m);
    vooraf.push_back(m);
}

void mutatie_niet(char letter, const std::string& inhoud) {
    std::erase(vooraf, Mutatie{letter, inhoud});
    wis_noot();
}

bool mutaties_om(std::span<const Mutatie> mutaties, bool (*schrijf)()) {
    for (const Mutatie& m : mutaties)
        mutatie_vooraf(m.letter, m.inhoud);
    const bool goed = schrijf();
    for (const Mutatie& m : mutaties)
        goed ? void(mutatie(m.letter, m.inhoud)) : mutatie_niet(m.letter, m.inhoud);
    return goed;
}

void mutaties_houd() {
    houden = true;
}

bool mutaties_stuur() {
    houden = false;
    if (!nieuw)
        return true;
    nieuw = false;
    if (!bewaard.empty() && MUTATIEHAAK && !MUTATIEHAAK(bewaard))
        return false;
    bewaard.clear();
    wis_noot();
    return true;
}

bool mutaties_herstel() {
    noot = SYS.open(notitie().c_str(), O_RDWR | O_APPEND | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, 0);
    if (noot < 0 && errno == ENOENT)
        return true;
    struct stat st;
    if (noot < 0 || SYS.fstat(noot, &st) != 0 || !S_ISREG(st.st_mode) || st.st_nlink != 1) {
        if (noot >= 0)
            SYS.close(noot);
        noot = -1;
        ALARMBOX(notitie().c_str(), TXT(T_MUT_NOTITIE_VREEMD));
        return true;
    }
    constexpr int64_t OMVANG_MAX = 1 << 20; // a line's mutations are some kilobytes
    std::string regels(static_cast<size_t>(std::clamp<int64_t>(SYSOMVANG(noot), 0, OMVANG_MAX)), '\0');
    const ssize_t n = IOLEES(noot, regels.data(), regels.size(), 0);
    regels.resize(static_cast<size_t>(std::max<ssize_t>(n, 0)));
    size_t van = 0; // a line that a kill has cut is no mutation
    for (size_t tot; (tot = regels.find('\n', van)) != std::string::npos; van = tot + 1)
        if (tot > van)
            bewaard.push_back({regels[van], regels.substr(van + 1, tot - van - 1)});
    nieuw = true;
    return mutaties_stuur();
}

} // namespace zg
