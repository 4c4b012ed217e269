// Module controle: the state of the package, critical steps, log files; see control/controle.h.
#include "control/controle.h"
#include "control/teksten.h"
#include "shared/iotab.h"
#include "shared/regelbij.h"
#include "shared/report.h"
#include "shared/syscalls.h"
#include "term/datum.h"
#include "term/vast.h"
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace zg {
namespace {

constexpr int32_t STATUSRECORD = 10;
constexpr size_t TEKSTMAX = sizeof status10.tekst - 1;
constexpr uint8_t KRITIEK_ORDER = 12;    // the level of this program
constexpr int KEREN = 3, TUSSENTIJD = 1; // looks at a slot, seconds between them

// By number from 1.
constexpr const Tekst* TOESTANDEN[] = {
    &T_ST_BACKUP,     &T_ST_CONTROLE,  &T_ST_ONDERHOUD, &T_ST_KOPIEREN,       &T_ST_UPDATE,
    &T_ST_CONVERSIE,  &T_ST_BESTANDEN, &T_ST_KRITIEK,   &T_ST_LAATSTE_BACKUP, &T_ST_EAN,
    &T_ST_EAN_EXTERN, nullptr,         &T_ST_DATACOM,   &T_ST_MIGRATIE,
};

sysstatus lees_status() {
    sysstatus s;
    int32_t nr = STATUSRECORD;
    iotab('R', &nr, &s, SYS_RECORD);
    return s;
}

template <class F> bool wijzig_status(F doe) {
    sysstatus s;
    int32_t nr = STATUSRECORD;
    iotab('X', &nr, &s, SYS_RECORD);
    doe(&s);
    if (!iotab('W', &nr, &s, SYS_RECORD))
        return false;
    status10 = s;
    return true;
}

void zet_code(sysstatus* s, uint8_t code) {
    s->status = code;
    if (code == STATUS_VRIJ)
        s->tekst[0] = 0;
    else if (code == STATUS_FOUT || code == STATUS_FOUT2)
        VASTIN(s->tekst, "@7");
    else if (code == STATUS_KRITIEK)
        VASTIN(s->tekst, "@8");
}

// Marked, and nobody holds it.
bool gestorven(int32_t nr) {
    gebruikerslot g;
    return nr != sessie && iotab('R', &nr, &g, SYS_GEBRUIKER) && g.userstate >= STAND_KRITIEK &&
           iotab('T', &nr, &g, SYS_GEBRUIKER);
}

} // namespace

bool status_zet(uint8_t code) {
    return wijzig_status([code](sysstatus* s) { zet_code(s, code); });
}

bool status_tekst_zet(std::string_view tekst) {
    return wijzig_status([tekst](sysstatus* s) {
        s->status = STATUS_TEKST;
        VASTIN(s->tekst, tekst.substr(0, TEKSTMAX));
    });
}

std::string status_tekst(std::string_view tekst) {
    if (tekst.empty() || tekst[0] != '@')
        return std::string(tekst);
    size_t nr = 0;
    for (const char c : tekst.substr(1)) {
        if (c < '0' || c > '9' || nr > std::size(TOESTANDEN))
            return "";
        nr = nr * 10 + static_cast<size_t>(c - '0');
    }
    return nr >= 1 && nr <= std::size(TOESTANDEN) && TOESTANDEN[nr - 1] ? TXT(*TOESTANDEN[nr - 1]) : "";
}

std::string status_nu() {
    return status_tekst(VASTUIT(lees_status().tekst));
}

std::vector<int32_t> kritiek_gestorven() {
    std::vector<int32_t> wie;
    for (int32_t nr = 1; nr <= SYS_GEBRUIKER.slots; nr++)
        if (gestorven(nr))
            wie.push_back(nr);
    for (int keer = 1; keer < KEREN && !wie.empty(); keer++) {
        sleep(TUSSENTIJD);
        std::erase_if(wie, [](int32_t nr) { return !gestorven(nr); });
    }
    return wie;
}

bool status_vrij() {
    if (lees_status().status != STATUS_VRIJ)
        return false;
    if (kritiek_gestorven().empty())
        return true;
    wijzig_status([](sysstatus* s) {
        if (s->status == STATUS_VRIJ) // while the slots were looked at a batch run may have begun
            zet_code(s, STATUS_KRITIEK);
    });
    return false;
}

bool kritiek_wis() {
    bool goed = true;
    for (int32_t nr = 1; nr <= SYS_GEBRUIKER.slots; nr++) {
        gebruikerslot g;
        if (!gestorven(nr) || !iotab_probeer(&nr, &g, SYS_GEBRUIKER))
            continue;
        if (g.userstate >= STAND_KRITIEK) {
            g.userstate = 0;
            goed = iotab('W', &nr, &g, SYS_GEBRUIKER) && goed;
        } else {
            iotab('U', &nr, &g, SYS_GEBRUIKER);
        }
    }
    return goed;
}

uint8_t kritiek_zet(uint8_t stand) {
    return sessie >= 1 && sessie <= SYS_GEBRUIKER.slots && stand != 0 ? gebruiker_stand(stand)
                                                                      : gebruiker.userstate;
}

Kritiek::Kritiek() : stond_(gebruiker.userstate) {
    if (stond_ < STAND_KRITIEK)
        kritiek_zet(KRITIEK_ORDER);
}

Kritiek::~Kritiek() {
    kritiek_zet(stond_);
}

bool logregel(const char* pad, int inspring, std::string_view tekst) {
    if (!strstr(pad, ".LOG"))
        INTERNAL("controle", 1);
    char kop[32];
    snprintf(kop, sizeof kop, "%-8.8s %-5.5s", DATUM8(VANDAAG()), TIJDTEKST(NUSECONDEN()));
    const int fd = REGELOPEN(pad);
    if (fd < 0)
        return false;
    const bool goed =
        REGELBIJ(fd, std::string(kop) + " " + std::string(static_cast<size_t>(std::max(inspring, 0)), ' ') +
                         std::string(tekst));
    const int fout = errno;
    SYS.close(fd);
    errno = fout;
    return goed;
}

} // namespace zg
