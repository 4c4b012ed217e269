// Shared by the files of the work file (wrk, wrkregel, commit, herstel) and by nobody else: the TMP file
// under construction and the index that is built with it.
//
// TMP is written through a buffer; the first failure is kept and ends in the answer of tmp_af, so copying
// loops need not look. Until tmp_naar_wrk or the commit renames it nothing but TMP has changed.
#pragma once
#include "order/ordloop.h"
#include "order/wrk.h"
#include <functional>

namespace zg {

// Append a record as it stands; with `indexeer` as tmp_schrijf.
bool tmp_rauw(const uint8_t* data, size_t lengte, bool indexeer);
// Flush: false (errno) when anything written since tmp_nieuw failed.
bool tmp_af();
int tmp_fd();
// Hand the descriptor over: the caller closes it.
int tmp_neem();
// Close and delete TMP; the index and aantal_regels are again those of the last finished file.
void tmp_weg();
// Start TMP for a changed work file with a new index; false: told, nothing changed.
bool tmp_begin_wrk();
// Onto the disk itself; false (errno) when it has no room for it after all.
bool tmp_op_schijf();
// TMP, locked, takes the place of WRK, and `werk` goes on with it; the ORS file is the new index. `tevoren` is what has to
// be done first, when nothing is left that a full disk can refuse. False: told, by whom it was refused; work file and index
// as they were.
bool tmp_naar_wrk(const std::function<bool()>& tevoren = {});
// A refused write of one of the files, told with what stays; where the session has lost them that is another's to say.
void wrk_geweigerd(const char* ext, int reden, const char* regel2, const char* regel3);
// Write the index built with TMP to the ORS file; false (errno): the old one stands there again.
bool ors_af();

// The five T records of a text into 310 bytes; a block of nothing but newlines is empty.
void tekst_records(int soort, const char* blok, uint8_t* uit);

} // namespace zg
