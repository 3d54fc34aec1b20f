#pragma once

#include <console/printing.h>

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace tarn::console {

/// How a run of the program ended.
struct Outcome {
    int exitCode = -1; ///< -1: it did not end by itself
    QByteArray out;
    QByteArray err;

    /// The objects on standard output, one a line; records a failure for a line that is none.
    [[nodiscard]] QList<QJsonObject> objects() const;

    /// The objects of that member ("progress", "result", "error").
    [[nodiscard]] QList<QJsonObject> objects(const char* member) const;

    /// The one object on standard output; records a failure if there are more or fewer, or if its
    /// envelope is not as documented.
    [[nodiscard]] QJsonObject object() const;

    [[nodiscard]] QJsonValue result() const { return object().value(QStringLiteral("result")); }
    [[nodiscard]] QJsonObject error() const { return object().value(QStringLiteral("error")).toObject(); }
};

/// Runs the built program as a process: in a folder of its own, with the state of its simulated
/// instruments in another.
class ConsoleTest : public testing::Test {
protected:
    ConsoleTest();

    /// Runs the program to its end with `input` on its standard input, which is no terminal.
    Outcome run(const QStringList& arguments, const QByteArray& input = {});

    /// The same with the words that bash makes of `words`, among them such that are no text.
    Outcome runInShell(const char* words);

    /// The same for an instrument of the test's own provider.
    Outcome runAwkward(const QString& address, const QStringList& arguments, const QByteArray& input = {});

    /// The same on a terminal, with `input` typed. What the terminal shows is the standard output.
    Outcome runOnTerminal(const QStringList& arguments, const QByteArray& input = {});

    /// What is typed, and done besides, once the terminal shows a text.
    struct Reply {
        QByteArray to;
        QByteArray input;
        std::function<void()> action = {};
    };

    /// The same for a conversation: each reply waits for what it answers to be shown.
    Outcome converse(const QStringList& arguments, const std::vector<Reply>& replies);

    /// The words of a command line, separated by blanks, as arguments.
    static QStringList words(const char* line) { return QString::fromUtf8(line).split(QLatin1Char{' '}); }

    /// The same as `run`, of an instrument at `address`.
    Outcome runAt(const QString& address, const QStringList& arguments)
    {
        return run(QStringList{QStringLiteral("--address"), address} + arguments);
    }

    /// Starts the program and waits until its standard error has said `words`.
    void startUntil(QProcess& process, const QStringList& arguments, const QByteArray& words);

    /// Waits until `process` has said `words` on standard error; all of it so far.
    static QByteArray awaitError(QProcess& process, const QByteArray& words);

    /// Prepares `process` to run the program.
    void prepare(QProcess& process, const QStringList& arguments) const;

    /// Presses Ctrl-C for `process`, which must be running.
    static void interrupt(const QProcess& process);

    /// Waits for `process` to end.
    static Outcome finish(QProcess& process);

    void setVariable(const QString& name, const QString& value) { m_environment.insert(name, value); }
    void useTestProvider(const QString& folder);

    /// The options that choose an instrument of the test's own provider, which is made available.
    QStringList awkward(const QString& address);

    /// A path in the folder in which the program runs.
    [[nodiscard]] QString path(const QString& name) const { return m_work.filePath(name); }
    [[nodiscard]] QString statePath() const { return m_state.path(); }

    void writeLocal(const QString& name, const QByteArray& contents) const;
    [[nodiscard]] QByteArray readLocal(const QString& name) const;

    /// The names of everything in the folder, hidden files too.
    [[nodiscard]] QStringList localNames() const;

private:
    QTemporaryDir m_work;
    QTemporaryDir m_state;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

} // namespace tarn::console
