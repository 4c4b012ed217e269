// Where the programs stand, and what is installed with them: found from the running program, so that a build directory
// and an installation under any prefix need no word from the environment.
#pragma once
#include <string>

namespace zg {

// The directory of the running program, with '/' behind it; empty where the system doesn't tell.
std::string EIGENMAP();

// The directory `naam` of what is installed with the programs ("terminfo", "catalogues", "demo"), without '/' behind it; in a
// build directory it is beside them. Empty when there is none.
std::string PAKKETMAP(const char* naam);

} // namespace zg
