// SPDX-License-Identifier: GPL-3.0-or-later
//
// Makes the database file that it is given, with the sample day and the week before it, for tests that start
// the program itself.
#include "storage/RepositoryOpener.h"
#include "support/SampleDay.h"

#include <QFile>

int main(int, char** argv) {
    using namespace kestu;
    const auto repository =
        openRepository({.explicitPath = QFile::decodeName(argv[1]), .dataHome = {}}, systemNow);
    test::fillSampleDay(*repository);
    test::fillSampleWeek(*repository);
}
