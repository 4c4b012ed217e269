// In-place edits of NUL-ended strings, builders of printf formats, and number pictures.
#pragma once
#include <cstddef>
#include <cstdint>

namespace zg {

void WISTEKENS(char* s, int pos, int n);
void VOEGIN(char* s, char c, int pos);
void VOEGTEKST(char* s, const char* t, int pos);
int ZOEKTEKEN(char c, const char* s);
int ZOEKTEKST(const char* t, const char* s);
void RTRIM(char* s);
void LTRIM(char* s);
void TRIM(char* s);
int VERGELIJK(const void* a, const void* b, size_t n);
void HEXTEKST(char* s);
size_t ALLOCEER(void** p, size_t min, size_t max);
// A number in a picture of "9Z* .,"; uit holds strlen(plaatje) + 2.
void PICTURE(const char* plaatje, double waarde, char* uit);

// Format builders, one shared static buffer valid until the next call.
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
const char* TXTVELD(int voor, int w, int na);
const char* TXTBLANCO(int n);

} // namespace zg
