// Who may do what with a file, for tests of directories that several users share. Another group than one's own needs
// root; without it everything has one's own.
#pragma once
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace zg::test {

inline const gid_t GROEP = geteuid() == 0 ? 4711 : getegid();

// Mode and group as "0660 4711".
inline std::string rechten(const std::string& pad) {
    struct stat st {};
    if (stat(pad.c_str(), &st) != 0)
        return "none";
    char uit[40];
    snprintf(uit, sizeof uit, "%04o %u", st.st_mode & 07777, st.st_gid);
    return uit;
}

} // namespace zg::test
