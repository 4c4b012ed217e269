// What runs: the one line that every program answers to --version.
#pragma once
#include <string>

namespace zg {

// "zgbestel 8.70 (2913d49ab1c2)": release and commit of the sources; "+" behind the commit where they were changed since,
// "unknown" where the build couldn't tell.
std::string VERSIE(const char* programma);

// For a program that takes no options: with --version or --help (-h) as its only word the answer is written, `hulp` being
// the help's text, and the process ends: status 0, or 1 when standard output couldn't be written.
void VERSIE_OF_HULP(const char* programma, const char* hulp, int argc, char** argv);

} // namespace zg
