// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program behind StoreProcess: opens the file that it is given and obeys one line after the other.
#include "storage/Repository.h"

#include <QFile>

#include <iostream>

namespace kestu {
namespace {

void say(const std::string& line) {
    std::cout << line << std::endl; // flushed: who waits for it stands at the other end of a pipe
}

[[noreturn]] void record(Repository& repository) {
    const ActivityId id = repository.insertActivity({}, instantAt(0));
    for (long end = 1;; ++end) {
        const auto unsynced = repository.unsyncedWrites();
        repository.extendActivity(id, instantAt(static_cast<double>(end)));
        say(std::to_string(end));
    }
}

} // namespace
} // namespace kestu

int main(int, char** argv) {
    using namespace kestu;
    Repository repository(std::make_unique<Database>(QFile::decodeName(argv[1])), systemNow);
    for (std::string line; std::getline(std::cin, line);) {
        if (line == "record") {
            record(repository);
        }
        repository.database().executeScript(QString::fromStdString(line)); // its failure ends the process
        say("ok");
    }
}
