// The small windows of the price screens: discounts, the method of the definition flow, the calculation of an advice price.
// They change the context (up_context) and nothing else. A window closes itself on every way out; false is cancel or
// ESC, and then the context is as it was.
#pragma once
#include "price/uniprijs.h"
#include <string>

namespace zg {

// Windows stand 13 columns left of the caller's column on the screen, so that they don't hide the group in hand.

// Discount of the line, for the method "Automatisch", below the order's where there is one. An entry whose total with the
// order's discount leaves the range is refused and asked again.
bool regelkorting_venster(const char* titel, int kolom);
// "Nieuwe korting": the entry becomes up_context.nieuwe_korting and stands as proposal at the next group; forgotten when
// the order's discount is another one than at the window's last opening. `titel` may be null: none.
bool nieuwe_korting_venster(const char* titel, int kolom);
// The pick of the method of discount; into up_context.
void kortingsmethode_kiezen(int kolom);
// The method in force as a text: "Automatisch   10.00%", ...
std::string kortingsmethode_tekst();

// "Berekenen adviesprijs (n)": factor or margin (TAB changes over) and the rounded price, in which `advies` is entered.
// `groep` counts from 0, `inkoop` is the group's purchase price.
bool bereken_advies_venster(int groep, int32_t inkoop, int32_t* advies);

// A field that has a key of its own says so: "<F1> HELP" stands on the screen's top row as long as this lives.
class prijshint {
public:
    prijshint();
    ~prijshint();
    prijshint(const prijshint&) = delete;
    prijshint& operator=(const prijshint&) = delete;

private:
    bool was_; // a window over a field that has one leaves it standing
};
// The help of a field on F1: a box with the key and its meaning, "<F10>  Kortingsmethode".
void up_toetshulp(const char* toets, const char* tekst);

} // namespace zg
