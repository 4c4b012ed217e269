// The two message catalogues and the guard on them: a catalogue's text is taken only where its printf
// directives are those of the default. The tables of texts: teksten.def in each folder.
#include "term/natl.h"
#include "term/plaats.h"
#include "term/tekst.h"
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <nl_types.h>
#include <string>

namespace zg {
namespace {

const nl_catd DICHT = reinterpret_cast<nl_catd>(-1);
const char* const NAMEN[] = {"ZEBCAT", "DETAIL"};
nl_catd open_catalogus[2] = {DICHT, DICHT};

// The next printf directive from *s on, "%%" skipped; empty at the end. *s goes behind it.
std::string_view volgende_opdracht(const char** s) {
    const char* p = *s;
    while ((p = strchr(p, '%')) != nullptr && p[1] == '%')
        p += 2;
    if (!p) {
        *s += strlen(*s);
        return {};
    }
    const char* begin = p++;
    p += strspn(p, "-+ #0'123456789.*$hlLqjzt");
    if (*p)
        p++;
    *s = p;
    return {begin, static_cast<size_t>(p - begin)};
}

// The package's own catalogue in the language of the environment; "nl_BE.UTF-8" does with "nl_BE" and with "nl".
nl_catd eigen_catalogus(const char* naam) {
    std::string taal;
    for (const char* variabele : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (const char* waarde = getenv(variabele); waarde && *waarde) {
            taal = waarde;
            break;
        }
    const std::string map =
        taal.empty() || taal.find('/') != std::string::npos ? "" : PAKKETMAP("catalogues");
    nl_catd catalogus = DICHT;
    for (size_t n = taal.size(); !map.empty() && catalogus == DICHT && n != std::string::npos;
         n = taal.find_last_of("@._")) {
        taal.resize(n);
        catalogus = catopen((map + "/" + taal + "/" + naam).c_str(), 0);
    }
    return catalogus;
}

} // namespace

bool TXTPAST(const char* standaard, const char* vertaald) {
    for (;;) {
        std::string_view a = volgende_opdracht(&standaard), b = volgende_opdracht(&vertaald);
        if (a != b)
            return false;
        if (a.empty())
            return true;
    }
}

const char* TXT(const Tekst& tekst) {
    nl_catd catalogus = open_catalogus[tekst.catalogus];
    if (catalogus == DICHT || tekst.nummer == 0)
        return tekst.standaard;
    const char* vertaald = catgets(catalogus, tekst.set, tekst.nummer, tekst.standaard);
    return vertaald == tekst.standaard || TXTPAST(tekst.standaard, vertaald) ? vertaald : tekst.standaard;
}

char TXTLETTER(const Tekst& tekst) {
    char c = *TXT(tekst);
    return c ? c : *tekst.standaard;
}

void CATOPEN() {
    CATCLOSE();
    setlocale(LC_MESSAGES, "");
    for (int i = 0; i < 2; i++) {
        open_catalogus[i] = catopen(NAMEN[i], NL_CAT_LOCALE);
        if (open_catalogus[i] == DICHT) // a locale that this machine doesn't have: by the name in LANG
            open_catalogus[i] = catopen(NAMEN[i], 0);
        if (open_catalogus[i] == DICHT)
            open_catalogus[i] = eigen_catalogus(NAMEN[i]);
    }
}

void CATCLOSE() {
    for (nl_catd& c : open_catalogus) {
        if (c != DICHT)
            catclose(c);
        c = DICHT;
    }
}

} // namespace zg
