// The ledger of locks: what this process holds, as the system has it. At the end of every test it is empty, or the test
// fails with the files and ranges. A temporary directory of a test switches it on.
#pragma once
#include <string>

namespace zg::test {

void slotboek_aan();
std::string slotboek(); // what is held now, a line each; "" for nothing

} // namespace zg::test
