// The terminal as a printer: the port behind it, and its own screen put aside for plain lines.
#pragma once
#include <cstddef>

namespace zg {

// Until XLPR(false) what is sent to the terminal goes to its printer, each byte as it is; nothing of the screen goes out
// meanwhile (SCHERM.dicht). The description must have "mc5" and "mc4".
void XLPR(bool aan);

// The screen goes aside; SCRREGELS writes lines of code page 850: control bytes but line and form feeds are left out, a
// form feed begins a line. SCRTERUG waits for ENTER and brings the screen back as it was. SCRREGELS answers false when
// the user has typed CANCEL or ESC.
void SCRTERZIJDE();
bool SCRREGELS(const char* bytes, size_t n);
void SCRTERUG();

} // namespace zg
