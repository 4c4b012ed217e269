// Prompts on a row of the current window, and the top row of a screen. Message boxes: box.cpp; the line
// editor: regeledit.cpp; the interrupt poll: onderbreken.cpp.
#include "term/prompt.h"
#include "term/ingave.h"
#include "term/natl.h"
#include "term/strings.h"
#include "term/teksten.h"
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace zg {

namespace {

constexpr int TITELMAX = 40;
char toptitel[TITELMAX + 1];

bool is_sleutel(const void* p) {
    auto* s = static_cast<const int32_t*>(p);
    return s >= SCHERM.toets && s < SCHERM.toets + TOETS_SLOTS;
}

} // namespace

int JNVRAAG(int rij, int kolom, const char* fmt, ...) {
    char buf[1024];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(buf, sizeof buf, fmt, ap);
    va_end(ap);

    const char ja = TXTLETTER(T_JA), nee = TXTLETTER(T_NEE);
    const char* vraag = buf;
    bool vast = false;
    uint8_t antwoord = 0;
    if (vraag[0] == '[' && vraag[1] != '\0' && vraag[2] == ']') {
        vast = true;
        antwoord = vraag[1] == '+' || vraag[1] == ja;
        vraag += vraag[3] == ',' ? 4 : 3;
    }
    if (*vraag == '\0')
        vraag = TXT(T_AKKOORD);

    // Question, "? (J/N)" and one cell for the answer: a question that is too long loses its own end only.
    int ruimte = std::max(0, WINBREEDTE() - (kolom - 1) - 8);
    SCRCLREOL(rij, kolom);
    SCRPUT(A_LABEL, rij, kolom, "%.*s? (%c/%c)", ruimte, vraag, ja, nee);
    int veld = kolom + std::min(static_cast<int>(strlen(vraag)), ruimte) + 7;
    INGAVE(rij, veld, vast ? "b,/E" : "b,/EI", &SCHERM.toets[key_cancel], &antwoord);
    if (TOETSWEG())
        return 0;
    return antwoord != 0;
}

void ENTERWACHT(int rij, int kolom) {
    SCRCLREOL(rij, kolom);
    SCRPUT(A_LABEL, rij, kolom, "%s", TXT(T_ENTER_VERVOLG));
    TOETSAAN(K_ENTER);
    TOETSKIES("");
}

// Not inlined: the compiler would take a text for a key that isn't read.
[[gnu::noinline]] int32_t TOETSKIESDOE(const void* const* argumenten, int aantal) {
    const char* tekens = "";
    for (int i = 0; i < aantal; i++) {
        if (!is_sleutel(argumenten[i])) {
            tekens = static_cast<const char*>(argumenten[i]);
            break;
        }
        TOETSAAN(*static_cast<const int32_t*>(argumenten[i]));
    }
    for (const char* t = tekens; *t; t++)
        TOETSAAN(static_cast<unsigned char>(*t));

    BEZIGWIS();
    WINCURSOR(0);
    int32_t key = TOETS();
    const bool mis = !TOETSTOE(key);
    for (; !TOETSTOE(key); key = TOETS())
        error("%s", TXT(T_ONGELDIGE_TOETS));
    if (mis)
        error("%s", "");
    WINCURSOR(1);
    BEZIGTOON();

    // A command key means that nothing was entered, as in an empty field; so does ENTER.
    if (TOETSNAMED(key) || key == K_ENTER)
        SCHERM.vlag |= V_LEEG;
    else
        SCHERM.vlag &= ~static_cast<uint32_t>(V_LEEG);
    INSTEL.toe.reset();
    std::fill(std::begin(INSTEL.uitleg), std::end(INSTEL.uitleg), nullptr);
    return SCHERM.laatste = key;
}

void TOPTITEL(const char* tekst) {
    snprintf(toptitel, sizeof toptitel, "%s", tekst ? tekst : "");
    TRIM(toptitel);
    GROOT(toptitel);
    TOPREGEL(' ', "%s", "");
}

void TOPREGEL(char soort, const char* fmt, ...) {
    char tekst[256], regel[sizeof toptitel + sizeof tekst + 4];
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(tekst, sizeof tekst, fmt, ap);
    va_end(ap);
    BEGINGROOT(tekst);
    snprintf(regel, sizeof regel, "%s%s%s", toptitel, *toptitel && *tekst ? " * " : "", tekst);

    if (soort == 'C')
        SCRCLREOW(1, 1);
    else
        SCRCLREOL(1, 1);
    int w = SCHERM.cols - 2;
    SCRPUT(A_KEUS, 1, 1, " %-*.*s ", w, w, regel);
}

void WACHTBOX() {
    const char* tekst = TXT(T_EVEN_GEDULD_AUB);
    int w = static_cast<int>(strlen(tekst)) + 4;
    WINOPEN1(SCHERM.lines / 2, (SCHERM.cols - w) / 2, 3, w);
    WINBOX(nullptr);
    SCRPUT(A_WAARDE, 1, 2, "%s", tekst);
    SCRFLUSH(0);
    WINCLOSE();
}

} // namespace zg
