// Module iokasmut: KASMUT.TXT, the mutations that a batch run takes to tills and back office. A line is branch, till,
// letter and data: "255255GX". Programs append side by side, each under his own byte of group 1; who takes the file away
// holds the whole group. Nothing happens, and all is answered with yes, while tills aren't linked.
#pragma once
#include "shared/mutatie.h"
#include <span>
#include <string>

namespace zg {

// Open the file, made when it is missing: `mode` 1 to append, waiting without a question while the group is a batch run's;
// else to read or take away, with the group (false when the user won't wait, or there is no file). Openings are
// counted: within another it is a yes, and the last kasmut_close ends file and lock. What can't be opened stops with
// OPENFAIL.
bool kasmut_open(int mode);
void kasmut_close();

// A line, where its letter says so; without an opening around it, opened for this one. False when it was refused, which was
// told: nothing of it stands. An unknown branch stops with konl_mut INTERNAL 3.
bool kasmut_write(int filiaal, int kassa, char letter, const std::string& inhoud);
bool kasmut_branch(int filiaal, char letter, const std::string& inhoud); // all its tills
bool kasmut_all(char letter, const std::string& inhoud);
// For all tills, in one opening. What MUTATIEHAAK is set to.
bool kasmut_reeks(std::span<const Mutatie> mutaties);

// Who a letter is for: 1 the tills, when that till is known, 2 the back office, when its link is on.
inline constexpr int KLASSE_KASSA = 1, KLASSE_KANTOOR = 2;
int kasmut_class(int filiaal, int kassa, char letter);

// The till article register, another program's: asked to take up an article ('A') or a series and size ('E') before their
// line goes out, where DTARTREG has its index and a till is concerned. Null: nobody keeps it.
extern void (*ARTREGHAAK)(char letter, const std::string& inhoud);

} // namespace zg
