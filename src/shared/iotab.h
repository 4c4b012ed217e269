// Module iotab: the fixed tables in DTSYS.TXT, slot by slot. The file is opened once and kept open, since
// closing it drops the lock on the user's own slot. shared/sysrec.h has the tables and their records.
#pragma once
#include "shared/sysrec.h"
#include <vector>

namespace zg {

// One slot of a table; the number counts from 1 and moves with 'F', 'N', 'P'. The record holds tabel.grootte.
//   'O' open, number := 1; stops the program when the file is missing
//   'C' close
//   'R' read: 1 when the slot is there and not empty
//   'X' the same, locked: waits, with the holder's name on the screen
//   'F' the slot itself, or the first filled one behind it
//   'N' next filled one; number slots + 1 at the end
//   'P' previous filled one; number 0 at the start
//   'W' write and release, 'w' write and keep, 'D' clear and release
//   'T' is it free? 'U' release
// W, w and D write nothing outside the table and answer 1; when the write is refused they answer 0, which has been
// told, and the slot stays as it was. A number outside answers 0 for the other letters,
// and takes no lock. An empty or missing slot leaves zeros in the record; 'X' keeps its lock then.
int iotab(char letter, int32_t* nr, void* record, const Systabel& tabel);

template <class R> int iotab(char letter, Slot<R>* slot, const Systabel& tabel) {
    int32_t nr = slot->nr; // the slot is packed: no pointer to its number
    int uit = sizeof(R) >= static_cast<size_t>(tabel.grootte) ? iotab(letter, &nr, &slot->r, tabel) : 0;
    slot->nr = nr;
    return uit;
}

// As 'X', but without waiting: 0 and no lock when another holds the slot, or it is empty.
int iotab_probeer(int32_t* nr, void* record, const Systabel& tabel);

// The first empty slot that nobody else holds, locked: its number, 0 when there is none.
int32_t iotab_vrij(const Systabel& tabel);

// A table that is small and read often: its filled slots in order, read whole at first use.
template <class R> struct Tabelbeeld {
    const Systabel& tabel;
    std::vector<Slot<R>> slots = {};
    bool geladen = false;

    const std::vector<Slot<R>>& alle() {
        Slot<R> slot{};
        while (!geladen && iotab('N', &slot, tabel))
            slots.push_back(slot);
        geladen = true;
        return slots;
    }
    void vergeet() { slots.clear(), geladen = false; }
};

// Is the user's slot on its way from one program to the next? It is free for that moment, and not for others to take.
bool in_overgave(const gebruikerslot& slot);

int iotab_fd(); // descriptor of DTSYS.TXT, -1 when closed

// The file by another name, from the next 'O' on; null for DTSYS.TXT again. The text must live as long.
void iotab_naam(const char* pad);

// The two tables of one-digit codes by the user's set, 'R' only: *nr is the code on entry. On success it is the
// units digit of the slot read: in the first table the code again, from 1; in the second the code + 1. A slot of
// another set is not found.
int iotab_setcode(int32_t* nr, tekst20* record);
int iotab_setcode2(int32_t* nr, setcode2rec* record);
// The four code tables by kind 1 to 4 (actiecode, correctiecode, inkoopcode, deelseizoen): slot 0 is the head
// slot, whose number becomes 1.
int iotab_code(char letter, int soort, int32_t* nr, tekst30* record);

// Draw the next number of a counter record (2 series, 5 orders): from 1000 to `hoogste`, then 1000 again; numbers that
// are in use (`bezet`) are passed over. 0 when it couldn't be written (told), nobody has that number then, or when all are
// in use.
int32_t iotab_teller(int sysrecord, int32_t hoogste, bool (*bezet)(int32_t) = nullptr);

} // namespace zg
