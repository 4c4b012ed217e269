// The inside of field input, shared by its own files only: ingave.cpp (call and loop), formaat.cpp (format),
// bewerk.cpp (keys that change the text), keuring.cpp (validation), compose.cpp (F11), veldhulp.cpp (help).
// The text being edited is `ingavetekst`; every byte behind its end is NUL at all times.
#pragma once
#include "term/ingave.h"
#include <cstring>
#include <string>

namespace zg {

struct Veld {
    int cursor = 0;   // in the text, 0 to the width; never on a separator of a date
    int begin = 0;    // first visible character of a scrolling field
    bool vol = false; // the last character of an automatic field has been typed: ENTER comes by itself
    char oud[INGAVEMAX] = {};
    double oudwaarde = 0.0;
};

// Is the field of one of these types? Has it this option?
inline bool VELDTYPE(const char* letters) {
    return SCHERM.type && strchr(letters, SCHERM.type);
}
bool VELDOPTIE(char letter);
void VELDTEKENSET(int modus); // sets what INGAVESET answers

// A new text (cut at 271 bytes), or what stands there without trailing blanks; NUL behind it.
void VELDTEKST(const char* tekst);
void VELDTRIM(); // leaves a text of one character alone, in which a blank is a value
// The value as text in the field's width and decimals; longer when it doesn't fit, never cut.
void VELDGETAL();

// A date with separators (width 8 or 10) that isn't typed as +n or -n?
bool VELDSTREEPJES();
bool VELDRELATIEF();
// Put "-" at 2 and 5 where the text reaches them; take them out.
void VELDSCHEID();
void VELDKAAL(char* tekst);
// Text of a day number in the form of the field's width.
const char* VELDDATUM(uint16_t nr);

// A printable character: true when the text has taken it.
bool VELDTEKEN(Veld& v, int32_t key);
// Any other key that doesn't leave the field; true when it moved without a step of the cursor (all wiped at 0).
bool VELDBEWERK(Veld& v, int32_t key);
// Put the starting text and value back.
void VELDTERUG(const Veld& v);

// Check text and value; sets V_GEWIJZIGD, or V_GEWEIGERD after a report on the status line.
void VELDKEUR(Veld& v, int32_t key);

// What stands in front of the field on its row as its label, without colon, dots and blanks at the ends; empty for none.
std::string VELDNAAM();

// The compose box of F11: a character, or 0.
int32_t COMPOSEINVOER();

} // namespace zg
