// Small conversations: yes/no, wait for ENTER, message boxes, the top row, a line editor, the interrupt poll.
#pragma once
#include "term/scherm.h"
#include "term/toets.h"
#include <type_traits>

namespace zg {

// Yes/no on a row from a column; "[-]" or "[+]" in front of the text is the default answer, an empty text is
// "Akkoord". 1 for yes; 0 for no, CANCEL and ESC.
int JNVRAAG(int rij, int kolom, const char* fmt, ...) __attribute__((format(printf, 3, 4)));
// "<ENTER> voor vervolg" at a place; waits for ENTER.
void ENTERWACHT(int rij, int kolom);

// Wait for one of the table keys or one of the characters, which is the last argument. Answers the key, also
// in SCHERM.laatste; a table key and ENTER set V_LEEG, a character clears it.
int32_t TOETSKIESDOE(const void* const* argumenten, int aantal);
template <class... A> int32_t TOETSKIES(A... rest) {
    static_assert(sizeof...(rest) >= 1 && (std::is_pointer_v<A> && ...), "key pointers, then the characters");
    const void* argumenten[] = {static_cast<const void*>(rest)...};
    return TOETSKIESDOE(argumenten, static_cast<int>(sizeof...(rest)));
}

// Message box in the middle of the screen. optie: seconds, -1 wait for ENTER, -2 the last line is a yes/no
// question. plaats: colours (1 help-like, 2 warning, other ordinary). Answers 1, or the answer. Keeps
// SCHERM.vlag and SCHERM.laatste. optie below -2 stops with "FFLASH invalid option [%d]".
int FFLASH(int optie, int plaats, uint32_t attr, const char* titel, const char* fmt, ...)
    __attribute__((format(printf, 5, 6)));

// " FOUTMELDING " box; seconds, or 0 to wait for ENTER. Throws waiting keys away.
void FOUTBOX(const char* tekst, int seconden);

// Box above the status line, any line may be null; waits for any key.
enum Meldsoort { MELD_INFO = 1, MELD_ALARM = 2, MELD_WAARSCHUWING = 3 };
void MELDBOX(Meldsoort soort, const char* regel1, const char* regel2, const char* regel3);

// Top row of a screen: the title (40 characters, upper case) and behind it a text.
void TOPTITEL(const char* tekst);
void TOPREGEL(char soort, const char* fmt, ...) __attribute__((format(printf, 2, 3)));

void WACHTBOX();

// Line editor outside the field machinery; tekst holds lengte + 1. Answers K_F2 (entered) or K_ESC.
int32_t REGELEDIT(int rij, int kolom, char* tekst, int lengte);

// Has the user broken off the running work? Looks at the keyboard at most once a second.
int ONDERBREKEN();
void ONDERBREKAAN();
void ONDERBREKUIT();
int ONDERBREKVRAAG(); // ask now; the answer is the flag
void ONDERBREKRESET();

} // namespace zg
