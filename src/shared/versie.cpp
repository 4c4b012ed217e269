// Release and commit; the commit is a constant that each build makes anew (cmake/commit.cmake).
#include "shared/versie.h"
#include "shared/sysrec.h"
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace zg {

extern const char COMMIT[];

std::string VERSIE(const char* programma) {
    const std::string release(RELEASE, strcspn(RELEASE, " "));
    return std::string(programma) + " " + release + " (" + COMMIT + ")";
}

void VERSIE_OF_HULP(const char* programma, const char* hulp, int argc, char** argv) {
    if (argc != 2)
        return;
    if (strcmp(argv[1], "--version") == 0)
        puts(VERSIE(programma).c_str());
    else if (strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0)
        fputs(hulp, stdout);
    else
        return;
    exit(fflush(stdout) == 0 && !ferror(stdout) ? 0 : 1);
}

} // namespace zg
