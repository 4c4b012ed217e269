// Error reports that stop the program: one Dutch line with the module's tag and a number, a box, Enter,
// status 1. Nothing returns. Used by the store and everything above it.
#pragma once
#include "term/scherm.h"

namespace zg {

struct ICB;

// Words for an errno: "geen rechten", "schijf vol"; "fout 123" for one that has none. Static, until the next call.
const char* IOREDEN(int fout);
// Why a file can't be had: a line of its own under the report that follows.
void STOPREDEN(int fout);
// Box of up to three lines that waits for a key; null lines are left out. Without a screen on the error output.
void ALARMBOX(const char* regel1, const char* regel2 = nullptr, const char* regel3 = nullptr);
// The same: "NAME kan niet worden geschreven: schijf vol", and up to two lines about what stays.
void SCHRIJFFOUT(const char* bestand, int fout, const char* regel2 = nullptr, const char* regel3 = nullptr);

// Tags are file names: directory and extension are dropped, capitals folded.
[[noreturn]] void NOMEM(const char* tag, int nr); // "%s: Onvoldoende geheugen (nr=%d)"
[[noreturn]] void OPENFAIL(const char* tag,
                           const char* bestand); // "... Open niet gelukt (file=%s, errno=%d)"
[[noreturn]] void BADKEY(const char* tag, const char* naam, int keynr,
                         int verwacht);                                  // naam: 11 bytes at most
[[noreturn]] void BADKEY(const char* tag, const ICB* icb, int verwacht); // defined beside the store
[[noreturn]] void INTERNAL(const char* tag, int nr);                     // "%s: errno=%d"
[[noreturn]] void IOFAIL(const char* tag, int nr);

} // namespace zg
