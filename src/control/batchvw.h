// Module batchvw: keeps users and night processing apart by locks on bytes of DTSYS.TXT that hold nothing: 16
// groups of 99 bytes, a byte per user slot. A user holds his own byte, a batch run all 99 of a group. Locks
// end with the process, so nothing is left to clean. User 99 is an unattended run: it never waits or asks.
#pragma once
#include <cstdint>
#include <vector>

namespace zg {

enum Batchgroep : int { BATCH_KASSA = 1, BATCH_ORDERS = 5 };

// The whole group for a batch run, waiting in a box that names or counts the users in the way. Groups above
// 15 and a closed DTSYS.TXT stop with INTERNAL 1 and 3 (2 and 3 for a user), or for user 99 through
// BATCHTERUG.
bool batch_claim(int groep);
void batch_vrij(int groep);
std::vector<int32_t> batch_gebruikers(int groep); // who is in, by slot; all 99 for a batch run
// The user's own byte (slot `sessie`), waiting while processing is active. False when `mag_vragen` and the
// user won't wait.
bool user_claim(int groep, bool mag_vragen);
void user_vrij(int groep);
// 1000 to 9999999, then 1000 again, those in use passed over; 0 when it could not be written (told).
int32_t order_nummer(bool (*bezet)(int32_t) = nullptr);

extern void (*BATCHTERUG)(); // back to the menu, for a fault in an unattended run; null: INTERNAL

} // namespace zg
