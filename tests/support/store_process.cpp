// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program behind StoreProcess: opens the file that it is given and obeys one line after the other.
#include "storage/Repository.h"

#include <QFile>

#include <grp.h>
#include <unistd.h>

#include <iostream>

namespace kestu {
namespace {

using namespace Qt::StringLiterals;

void say(const std::string& line) {
    std::cout << line << std::endl; // flushed: who waits for it stands at the other end of a pipe
}

bool becomeStranger() {
    constexpr gid_t nogroup = 65534;
    constexpr uid_t nobody = 65534;
    return geteuid() != 0 || (setgroups(0, nullptr) == 0 && setresgid(nogroup, nogroup, nogroup) == 0 &&
                              setresuid(nobody, nobody, nobody) == 0);
}

[[noreturn]] void record(Repository& repository) {
    const ActivityId id = repository.insertActivity(
        {.bundleId = u"writer"_s, .appName = {}, .title = {}, .url = {}}, instantAt(0));
    for (long end = 1;; ++end) {
        repository.extendActivity(id, instantAt(static_cast<double>(end)));
        say(std::to_string(end));
    }
}

void obey(Repository& repository, const std::string& line) {
    if (line == "record") {
        record(repository);
    }
    try {
        repository.database().executeScript(QString::fromStdString(line));
        say("ok");
    } catch (const DatabaseError& error) {
        say(error.what());
    }
}

int serve(const char* path) {
    try {
        Repository repository(std::make_unique<Database>(QFile::decodeName(path)), systemNow);
        say("open");
        for (std::string line; std::getline(std::cin, line);) {
            obey(repository, line);
        }
        return 0;
    } catch (const DatabaseError& error) {
        say(error.what());
        return 1;
    }
}

} // namespace
} // namespace kestu

int main(int argc, char** argv) {
    if (argc != 3) {
        std::cerr << "usage: store_process DATABASE [stranger|\"\"]\n";
        return 2;
    }
    if (std::string(argv[2]) == "stranger" && !kestu::becomeStranger()) {
        std::cerr << "cannot become another user\n";
        return 2;
    }
    return kestu::serve(argv[1]);
}
