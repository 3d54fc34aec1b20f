#include <console/consoletest.h>

#include <QDir>
#include <QFile>

#include <array>
#include <csignal>
#include <vector>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::console {

namespace {

constexpr int patience = 60000; // ms; only a failing test waits that long

} // namespace

QList<QJsonObject> Outcome::objects() const
{
    QList<QJsonObject> objects;
    EXPECT_TRUE(out.isEmpty() || out.endsWith('\n')) << out.toStdString();
    for (const auto& line : out.chopped(out.isEmpty() ? 0 : 1).split('\n')) {
        QJsonParseError error;
        const auto document = QJsonDocument::fromJson(line, &error);
        EXPECT_TRUE(document.isObject()) << line.toStdString() << ": " << error.errorString().toStdString();
        objects.append(document.object());
    }
    return objects;
}

QList<QJsonObject> Outcome::objects(const char* member) const
{
    QList<QJsonObject> found;
    for (const auto& object : objects())
        if (const auto value = object.value(QLatin1StringView{member}); value.isObject())
            found.append(value.toObject());
    return found;
}

QJsonObject Outcome::object() const
{
    const auto all = objects();
    EXPECT_EQ(all.size(), 1) << out.toStdString();
    const auto object = all.isEmpty() ? QJsonObject{} : all.first();
    EXPECT_EQ(object.size(), 3);
    EXPECT_EQ(object.value(QStringLiteral("schema")).toString(), QStringLiteral("tarn-service/1"));
    EXPECT_TRUE(object.value(QStringLiteral("command")).isString());
    EXPECT_EQ(object.contains(QStringLiteral("error")), exitCode != 0);
    EXPECT_EQ(object.contains(QStringLiteral("result")), exitCode == 0);
    return object;
}

ConsoleTest::ConsoleTest()
{
    setVariable(QStringLiteral("TARN_SERVICE_STATE"), m_state.path());
    setVariable(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    setVariable(QStringLiteral("TERM"), QStringLiteral("xterm"));
    m_environment.remove(QStringLiteral("NO_COLOR"));
    m_environment.remove(QStringLiteral("TARN_SERVICE_PROVIDERS"));
    std::signal(SIGINT, SIG_DFL); // the program inherits it, and what runs the tests may ignore it
}

Outcome ConsoleTest::run(const QStringList& arguments, const QByteArray& input)
{
    QProcess process;
    prepare(process, arguments);
    process.start();
    EXPECT_TRUE(process.waitForStarted(patience)) << process.errorString().toStdString();
    process.write(input);
    process.closeWriteChannel();
    return finish(process);
}

Outcome ConsoleTest::runInShell(const char* words)
{
    QProcess shell;
    prepare(shell, {QStringLiteral("-c"), QStringLiteral(TARN_SERVICE_PROGRAM " ") + QString::fromUtf8(words)});
    shell.setProgram(QStringLiteral("bash"));
    shell.start();
    return finish(shell);
}

Outcome ConsoleTest::runAwkward(const QString& address, const QStringList& arguments, const QByteArray& input)
{
    return run(awkward(address) + arguments, input);
}

Outcome ConsoleTest::runOnTerminal(const QStringList& arguments, const QByteArray& input)
{
    return converse(arguments, {{{}, input}});
}

Outcome ConsoleTest::converse(const QStringList& arguments, const std::vector<Reply>& replies)
{
    std::vector<QByteArray> words{TARN_SERVICE_PROGRAM};
    for (const auto& argument : arguments)
        words.push_back(argument.toUtf8());
    std::vector<QByteArray> variables;
    for (const auto& variable : m_environment.toStringList())
        variables.push_back(variable.toUtf8());
    const auto pointers = [](std::vector<QByteArray>& texts) {
        std::vector<char*> result;
        for (auto& text : texts)
            result.push_back(text.data());
        result.push_back(nullptr);
        return result;
    };
    const auto argv = pointers(words);
    const auto environment = pointers(variables);
    const auto folder = m_work.path().toUtf8();

    int terminal = -1;
    const auto child = ::forkpty(&terminal, nullptr, nullptr, nullptr);
    if (child == 0) {
        if (::chdir(folder.constData()) == 0)
            ::execve(argv[0], argv.data(), environment.data());
        ::_exit(127);
    }
    EXPECT_GT(child, 0);
    Outcome outcome;
    auto reply = replies.begin();
    qsizetype answered = 0;
    std::array<char, 4096> block{};
    for (;;) {
        for (qsizetype at = 0; reply != replies.end() && (at = outcome.out.indexOf(reply->to, answered)) >= 0;
             ++reply) {
            answered = at + reply->to.size();
            if (reply->action)
                reply->action();
            EXPECT_EQ(::write(terminal, reply->input.constData(), static_cast<std::size_t>(reply->input.size())),
                      reply->input.size());
        }
        pollfd waiting{terminal, POLLIN, 0};
        if (::poll(&waiting, 1, patience) == 0) {
            ADD_FAILURE() << "still running after: " << outcome.out.toStdString();
            ::kill(child, SIGKILL);
        }
        const auto length = ::read(terminal, block.data(), block.size());
        if (length <= 0)
            break;
        outcome.out.append(block.data(), length);
    }
    EXPECT_TRUE(reply == replies.end()) << "'" << reply->to.toStdString() << "' was not shown";
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(terminal);
    if (WIFEXITED(status))
        outcome.exitCode = WEXITSTATUS(status);
    return outcome;
}

void ConsoleTest::startUntil(QProcess& process, const QStringList& arguments, const QByteArray& words)
{
    prepare(process, arguments);
    process.start();
    awaitError(process, words);
}

QByteArray ConsoleTest::awaitError(QProcess& process, const QByteArray& words)
{
    process.setReadChannel(QProcess::StandardError);
    QByteArray said;
    while (!said.contains(words) && process.waitForReadyRead(patience))
        said += process.readAllStandardError();
    EXPECT_TRUE(said.contains(words)) << said.toStdString();
    return said;
}

void ConsoleTest::prepare(QProcess& process, const QStringList& arguments) const
{
    process.setProgram(QStringLiteral(TARN_SERVICE_PROGRAM));
    process.setArguments(arguments);
    process.setProcessEnvironment(m_environment);
    process.setWorkingDirectory(m_work.path());
}

void ConsoleTest::interrupt(const QProcess& process)
{
    ASSERT_EQ(process.state(), QProcess::Running);
    ASSERT_GT(process.processId(), 0);
    ASSERT_EQ(::kill(static_cast<pid_t>(process.processId()), SIGINT), 0);
}

Outcome ConsoleTest::finish(QProcess& process)
{
    EXPECT_TRUE(process.waitForFinished(patience)) << process.errorString().toStdString();
    Outcome outcome;
    outcome.out = process.readAllStandardOutput();
    outcome.err = process.readAllStandardError();
    EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << outcome.err.toStdString();
    if (process.exitStatus() == QProcess::NormalExit)
        outcome.exitCode = process.exitCode();
    return outcome;
}

void ConsoleTest::useTestProvider(const QString& folder)
{
    setVariable(QStringLiteral("TARN_SERVICE_PROVIDERS"), QStringLiteral(TARN_TEST_PROVIDERS "/") + folder);
}

QStringList ConsoleTest::awkward(const QString& address)
{
    useTestProvider(QStringLiteral("awkward_provider"));
    return {QStringLiteral("--provider"), QStringLiteral("awkward"), QStringLiteral("--address"), address};
}

void ConsoleTest::writeLocal(const QString& name, const QByteArray& contents) const
{
    QFile file{path(name)};
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << file.errorString().toStdString();
    ASSERT_EQ(file.write(contents), contents.size());
}

QByteArray ConsoleTest::readLocal(const QString& name) const
{
    QFile file{path(name)};
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << file.errorString().toStdString();
    return file.readAll();
}

QStringList ConsoleTest::localNames() const
{
    return QDir{m_work.path()}.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                         QDir::Name);
}

} // namespace tarn::console
