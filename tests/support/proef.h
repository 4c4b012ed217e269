// What nearly every test stands on, so that none lists it again: GoogleTest, the system's headers, a directory of its own and
// a terminal, other processes, files and system calls.
#pragma once
#include "shared/files.h"
#include "shared/syscalls.h"
#include "support/proces.h"
#include "support/terminal.h"
#include "term/vast.h"
#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <set>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zg::test {

// Does a text hold another? When that is not what was expected it is shown.
inline testing::AssertionResult bevat(const std::string& tekst, const std::string& deel) {
    return (tekst.find(deel) != tekst.npos ? testing::AssertionSuccess() : testing::AssertionFailure())
           << "\"" << deel << "\" in:\n"
           << tekst;
}

// Other bytes at a place of a file.
inline void wijzig_bestand(const std::string& pad, size_t plaats, std::string_view bytes) {
    std::string alles = lees_bestand(pad);
    schrijf_bestand(pad, alles.replace(plaats, bytes.size(), bytes));
}

// A test in a directory of its own.
struct InMap : testing::Test {
    TijdelijkeMap map;
};

} // namespace zg::test
