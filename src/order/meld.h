// What the order files tell the user: file in use, out of reach, damaged (a refused write: SCHRIJFFOUT). Without a screen (tests, the
// operators' tools) the same lines go to the error output.
#pragma once
#include "order/ioord.h"
#include "order/ordloop.h"
#include "order/teksten.h"
#include <cstdint>

namespace zg {

// Windows at the bottom, wait for Enter: "Order ORD0012.JRN in gebruik op ander scherm." and in front of the wait who holds
// it, empty when unknown; "Order ORD0012.JRN: Bestand niet te openen" and the reason, an errno.
void ord_meld_bezet(const char* naam, const char* houder);
void ord_meld_geen_toegang(const char* naam, int reden);
// Second row from the bottom, waits for Enter: "NAME: Bestand niet te openen", the reason on the row under it.
void ord_meld_niet_open(const char* naam, int reden);
// Stops: "Order 2016Z-ORD0012.JRN inconsistent, pos. 1234 (Q)".
[[noreturn]] void ord_inconsistent(const ordhandle* h, int64_t pos, char tag);

// For the siblings of ioord. ord_verder: the next record of a walk over the handle's file, false at the end; what
// can't be read stops the program. ord_wissel: the handle goes on with
// another descriptor, from offset 0; the old one is closed. ord_schrijf_op: bytes in place; false when that failed,
// told, with the old bytes put back.
bool ord_verder(const ordhandle* h, ordloop* l, ordrauw* r);
void ord_wissel(ordhandle* h, int fd);
bool ord_schrijf_op(ordhandle* h, int32_t plaats, const void* bytes, size_t n);

} // namespace zg
