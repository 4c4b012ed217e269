// In-place edits of NUL-ended strings and the builders of printf formats. Number pictures: term/picture.cpp.
#include "term/strings.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {
namespace {

constexpr int FORMAATMAX = 1024;
char formaat[FORMAATMAX]; // the builders' one buffer

const char* bouw(int w, const char* soort) {
    if (w)
        snprintf(formaat, sizeof formaat, "%%%d%s", w, soort);
    else
        snprintf(formaat, sizeof formaat, "%%%s", soort);
    return formaat;
}

// Width and cut alike; a negative width aligns left, whichever side was asked.
const char* bouw_afgekapt(int w, bool links, const char* erachter) {
    int n = std::abs(w);
    if (w)
        snprintf(formaat, sizeof formaat, "%%%s%d.%ds%s", links || w < 0 ? "-" : "", n, n, erachter);
    else
        snprintf(formaat, sizeof formaat, "%%s%s", erachter);
    return formaat;
}

} // namespace

void WISTEKENS(char* s, int pos, int n) {
    int lengte = static_cast<int>(strlen(s));
    if (pos < 0 || n <= 0 || n > lengte || pos > lengte - n)
        return;
    memmove(s + pos, s + pos + n, static_cast<size_t>(lengte - pos - n));
    memset(s + lengte - n, 0, static_cast<size_t>(n));
}

void VOEGIN(char* s, char c, int pos) {
    const char tekst[2] = {c, 0};
    VOEGTEKST(s, tekst, pos);
}

void VOEGTEKST(char* s, const char* t, int pos) {
    size_t lengte = strlen(s), bij = strlen(t);
    if (pos < 0 || static_cast<size_t>(pos) > lengte)
        return;
    memmove(s + pos + bij, s + pos, lengte - static_cast<size_t>(pos) + 1);
    memmove(s + pos, t, bij);
}

int ZOEKTEKEN(char c, const char* s) {
    const char* p = c ? strchr(s, c) : nullptr;
    return p ? static_cast<int>(p - s) : -1;
}

void RTRIM(char* s) {
    size_t n = strlen(s);
    while (n > 0 && s[n - 1] == ' ')
        s[--n] = 0;
}

void LTRIM(char* s) {
    WISTEKENS(s, 0, static_cast<int>(strspn(s, " ")));
}

void TRIM(char* s) {
    RTRIM(s);
    LTRIM(s);
}

std::string VORM(const char* fmt, ...) {
    char tekst[161];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(tekst, sizeof tekst, fmt, ap);
    va_end(ap);
    return tekst;
}

const char* TXTC(int w) {
    return bouw(w, "c");
}
const char* TXTS(int w) {
    return bouw(w, "s");
}
const char* TXTD(int w) {
    return bouw(w, "d");
}
const char* TXTHD(int w) {
    return bouw(w, "hd");
}
const char* TXTLD(int w) {
    return bouw(w, "ld");
}
const char* TXTU(int w) {
    return bouw(w, "u");
}
const char* TXTHU(int w) {
    return bouw(w, "hu");
}
const char* TXTLU(int w) {
    return bouw(w, "lu");
}
const char* TXTLINKS(int w) {
    return bouw_afgekapt(w, true, "");
}
const char* TXTRECHTS(int w) {
    return bouw_afgekapt(w, false, "");
}
const char* TXTLABEL(int w) {
    return bouw_afgekapt(w, true, ": ");
}
const char* TXTRUIMTE() {
    return strcpy(formaat, " %s ");
}
const char* TXTDUBBELPUNT() {
    return strcpy(formaat, "%s: ");
}

const char* TXTVELD(int voor, int w, int na) {
    constexpr int BLANCOMAX = 400;
    char midden[40];
    strcpy(midden, TXTRECHTS(w));
    snprintf(formaat, sizeof formaat, "%*s%s%*s", std::clamp(voor, 0, BLANCOMAX), "", midden,
             std::clamp(na, 0, BLANCOMAX), "");
    return formaat;
}

const char* TXTBLANCO(int n) {
    n = std::clamp(n, 0, FORMAATMAX - 1);
    memset(formaat, ' ', static_cast<size_t>(n));
    formaat[n] = 0;
    return formaat;
}

} // namespace zg
