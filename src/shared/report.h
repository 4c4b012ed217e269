// Error reports that stop the program: one Dutch line with the module's tag and a number, a box, Enter,
// status 1. Nothing returns. Used by the store and everything above it.
#pragma once
#include "term/scherm.h"
#include <cstdint>
#include <string>
#include <sys/types.h>

namespace zg {

struct ICB;

// Words for an errno: "geen rechten", "schijf vol"; "fout 123" for one that has none. Static, until the next call.
const char* IOREDEN(int fout);
// Why a file can't be had: a line of its own under the report that follows.
void STOPREDEN(int fout);
// Up to n bytes from a place of a file that has to be read: less only at its end. What the disk or the network refuses is no
// end and no damage; it stops the program: "Bestand NAME kan niet gelezen worden (errno=%d)".
ssize_t IOLEES(int fd, void* buf, size_t n, int64_t plaats);
int64_t IOOMVANG(int fd);             // the same for the size of a file
[[noreturn]] void IOLEESFOUT(int fd); // the report, from errno
std::string IOFDNAAM(int fd);         // of an open file, without its directory; for a report
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
