// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/linux/RunningProgram.h"

#include "platform/linux/ProcessTree.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <array>

namespace kestu {
namespace {

/// Lists of words, parted by blanks.
struct Interpreter {
    QStringView names;         // without their versions
    QStringView valueOptions;  // the next word is their value
    QStringView scriptOptions; // the next word is the script, or a module or class by its name
    QStringView codeOptions;   // the next word is code, and no script is run
};

// From their manuals. Options that are not named here stand alone.
constexpr auto interpreters = std::to_array<Interpreter>({
    {u"python pypy", u"-W -X -Q --check-hash-based-pycs", u"-m", u"-c"},
    {u"perl", u"-I", u"", u"-e -E"},
    {u"ruby", u"-I -r -C", u"", u"-e"},
    {u"sh dash bash zsh ksh mksh fish", u"-o +o -O +O --rcfile --init-file", u"", u"-c"},
    {u"node nodejs", u"-r --require --import", u"", u"-e --eval -p --print"},
    {u"java",
     u"-cp -classpath --class-path -p --module-path --add-modules --add-opens --add-exports --add-reads",
     u"-jar -m --module", u""},
    {u"php", u"-c -d -z", u"-f", u"-r"},
    {u"lua luajit", u"-l", u"", u"-e"},
    {u"guile", u"-L -C -x -l -e", u"-s", u"-c"},
    {u"gjs gjs-console", u"-I --include-path", u"", u"-c --command"},
    {u"dotnet", u"", u"exec", u""},
    {u"tclsh wish mono electron nw", u"", u"", u""},
});

// Windows of these belong to what runs inside of them.
constexpr QStringView hosts = u"busybox env sudo pkexec nice bwrap firejail flatpak snap snap-confine wine "
                              u"wine-preloader wine64-preloader Xephyr Xwayland xterm rxvt urxvt st";

bool has(QStringView words, const QString& word) {
    return !word.isEmpty() && words.split(u' ').contains(word);
}

/// Windows programs keep their own paths on their command line.
QString lastPart(const QString& path) {
    return path.sliced(std::max(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\')) + 1);
}

QString nameWithoutVersion(const QString& executable) {
    QString name = lastPart(executable);
    while (!name.isEmpty() && (name.back().isDigit() || name.endsWith(u'.') || name.endsWith(u'-'))) {
        name.chop(1);
    }
    return name;
}

const Interpreter* interpreterOf(const QString& executable) {
    const QString name = nameWithoutVersion(executable);
    const auto* const found =
        std::ranges::find_if(interpreters, [&](const Interpreter& known) { return has(known.names, name); });
    return found != interpreters.end() ? &*found : nullptr;
}

QString startedByEnv(const QStringList& words) {
    for (qsizetype at = 1; at < words.size(); ++at) {
        const QString& word = words.at(at);
        if (has(u"-u --unset -C --chdir", word)) {
            ++at;
        } else if (!word.startsWith(u'-') && !word.contains(u'=')) {
            return startedProgram(words.sliced(at));
        }
    }
    return {};
}

QString scriptOf(const Interpreter& interpreter, const QStringList& words) {
    for (qsizetype at = 1; at < words.size(); ++at) {
        const QString& word = words.at(at);
        if (has(interpreter.codeOptions, word)) {
            return {};
        }
        if (has(interpreter.scriptOptions, word)) {
            return words.value(at + 1);
        }
        if (has(interpreter.valueOptions, word)) {
            ++at;
        } else if (!word.startsWith(u'-') && !word.startsWith(u'+')) {
            return word;
        }
    }
    return {};
}

QStringList commandOf(const QString& procRoot, std::int64_t processId) {
    QStringList words = QString::fromLocal8Bit(processFile(procRoot, processId, u"cmdline")).split(u'\0');
    if (words.last().isEmpty()) {
        words.removeLast(); // each word ends with the mark
    }
    return words;
}

QString resolved(const QString& folder, const QString& path) {
    if (QDir::isRelativePath(path) && folder.isEmpty()) {
        return {};
    }
    const QFileInfo file(QDir(folder), path);
    const QString canonical = file.canonicalFilePath();
    return canonical.isEmpty() ? QDir::cleanPath(file.absoluteFilePath()) : canonical;
}

/// A package is run by a file that every package calls the same: its folder has the name.
QString scriptName(const QString& script, const QString& file) {
    const QString name = lastPart(script);
    return name == u"__main__.py" || name == u"app.asar" ? QFileInfo(file).dir().dirName() : name;
}

} // namespace

RunningProgram runningProgram(const QString& procRoot, std::int64_t processId) {
    const QString executable = executableOf(procRoot, processId);
    QStringList words = commandOf(procRoot, processId);
    const QString ownWord = words.value(0);
    if (!executable.isEmpty() && !words.isEmpty()) {
        words.first() = executable; // the first word is the program's own claim
    }
    const QString& program = executable.isEmpty() ? ownWord : executable;
    if (interpreterOf(program) == nullptr) {
        return {.file = executable, .name = lastPart(runsOtherPrograms(program) ? ownWord : program)};
    }
    const QString script = startedProgram(words);
    if (script.isEmpty()) {
        return {.file = {}, .name = lastPart(ownWord.isEmpty() ? program : ownWord)};
    }
    const QString file = resolved(linkTarget(procRoot, processId, u"cwd"), script);
    return {.file = file, .name = scriptName(script, file)};
}

QString startedProgram(const QStringList& words) {
    const QString program = words.value(0);
    if (lastPart(program) == u"env") {
        return startedByEnv(words);
    }
    const Interpreter* interpreter = interpreterOf(program);
    return interpreter != nullptr ? scriptOf(*interpreter, words) : program;
}

bool runsOtherPrograms(const QString& executable) {
    return interpreterOf(executable) != nullptr || has(hosts, nameWithoutVersion(executable)) ||
           lastPart(executable).startsWith(u"qemu-");
}

} // namespace kestu
