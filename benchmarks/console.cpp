// A short command of the console, as a whole process, against an empty program that loads two plug-ins.

#include "ways.h"

#include <QString>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarn::benchmarks {
namespace {

/// Runs a program until it ends well, with what it prints thrown away.
void run(char* const* arguments)
{
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t process = 0;
    int status = 0;
    if (::posix_spawn(&process, arguments[0], &actions, nullptr, arguments, environ) != 0
        || ::waitpid(process, &status, 0) != process || status != 0) {
        std::fprintf(stderr, "%s does not end as it should\n", arguments[0]);
        std::abort();
    }
    posix_spawn_file_actions_destroy(&actions);
}

char console[] = TARN_CONSOLE;
char controls[] = "controls";
char* consoleArguments[] = {console, controls, nullptr};

char version[] = "--version";
char* versionArguments[] = {console, version, nullptr};

char empty[] = TARN_EMPTY_PROGRAM;
char* emptyArguments[] = {empty, nullptr};

} // namespace

std::vector<Way> allWays()
{
    static const QTemporaryDir state; // of no instrument that the user has
    qputenv("TARN_SERVICE_STATE", state.path().toUtf8());
    qunsetenv("TARN_SERVICE_PROVIDERS");
    return {
        repeated("tarn-service controls", "library", [] { run(consoleArguments); }),
        repeated("tarn-service controls", "empty program", [] { run(emptyArguments); }),
        repeated("tarn-service --version", "library", [] { run(versionArguments); }),
        repeated("tarn-service --version", "empty program", [] { run(emptyArguments); }),
    };
}

} // namespace tarn::benchmarks
