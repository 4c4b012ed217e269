// In-place edits of NUL-ended strings, builders of printf formats, and number pictures.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

namespace zg {

// Delete n characters at pos, unless they are not all there; the freed tail becomes NUL.
void WISTEKENS(char* s, int pos, int n);
// Insert before pos (0 to the length; elsewhere nothing happens). s has room for it.
void VOEGIN(char* s, char c, int pos);
void VOEGTEKST(char* s, const char* t, int pos);
// Index of the first one, -1 when there is none.
int ZOEKTEKEN(char c, const char* s);
// Blanks off the end, off the front, off both.
void RTRIM(char* s);
void LTRIM(char* s);
void TRIM(char* s);
// What printf would write, cut at 160 characters.
std::string VORM(const char* fmt, ...) __attribute__((format(printf, 1, 2)));
// A number in a picture of "9Z* .,", its sign behind it; "*" all over when it doesn't fit. uit holds
// strlen(plaatje) + 2.
void PICTURE(const char* plaatje, double waarde, char* uit);

// Builders of printf formats, in one static buffer valid until the next call. Width 0: the plain directive;
// below 0: left aligned. TXTLINKS, TXTRECHTS and TXTLABEL also cut at the width, TXTLABEL adds ": ".
const char* TXTC(int w);
const char* TXTS(int w);
const char* TXTD(int w);
const char* TXTHD(int w);
const char* TXTLD(int w);
const char* TXTU(int w);
const char* TXTHU(int w);
const char* TXTLU(int w);
const char* TXTLINKS(int w);
const char* TXTRECHTS(int w);
const char* TXTLABEL(int w);
const char* TXTRUIMTE();
const char* TXTDUBBELPUNT();
// TXTRECHTS(w) between `voor` and `na` blanks.
const char* TXTVELD(int voor, int w, int na);
// n blanks.
const char* TXTBLANCO(int n);

} // namespace zg
