#include "copy/RsyncRun.h"

#include "copy/CopyLog.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

namespace Velmora::Daemon::Copy {

namespace {

using Clock = std::chrono::steady_clock;

struct Pipe {
    int read = -1;
    int write = -1;
    bool open() {
        int fds[2];
        if (::pipe2(fds, O_CLOEXEC) != 0)
            return false;
        read = fds[0];
        write = fds[1];
        return true;
    }
    void closeWrite() { if (write >= 0) ::close(write); write = -1; }
    ~Pipe() {
        if (read >= 0) ::close(read);
        closeWrite();
    }
};

// Splits what a pipe delivers into lines for a handler.
class LineSplitter
{
public:
    explicit LineSplitter(const RsyncRun::LineHandler& handler) : m_handler(handler) {}
    void feed(const char* data, size_t size)
    {
        for (size_t i = 0; i < size; ++i) {
            if (data[i] == '\n' || data[i] == '\r')
                flush();
            else if (m_line.size() < RsyncRun::LineLimit)
                m_line += data[i];
        }
    }
    void flush()
    {
        if (!m_line.empty() && m_handler)
            m_handler(m_line);
        m_line.clear();
    }

private:
    const RsyncRun::LineHandler& m_handler;
    std::string m_line;
};

void killGroup(pid_t pid)
{
    ::kill(-pid, SIGKILL);
    ::kill(pid, SIGKILL);
}

} // namespace

RsyncRun::RsyncRun(std::string program, std::vector<std::string> arguments, std::chrono::milliseconds stallLimit)
    : m_program(std::move(program)), m_arguments(std::move(arguments)), m_stallLimit(stallLimit)
{
}

RsyncRun::Result RsyncRun::run(const std::atomic_bool& stop, const LineHandler& onError, const TickHandler& onTick) const
{
    Result result;
    Pipe out, err;
    if (!out.open() || !err.open()) {
        qCWarning(copyLog, "No pipes for %s: %s", m_program.c_str(), std::strerror(errno));
        return result;
    }

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out.write, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err.write, STDERR_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setpgroup(&attributes, 0);
    sigset_t defaults;
    sigfillset(&defaults);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);

    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(m_program.c_str()));
    for (const std::string& argument : m_arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    char path[] = "PATH=/usr/sbin:/usr/bin:/sbin:/bin";
    char locale[] = "LC_ALL=C";
    char* environment[] = {path, locale, nullptr};

    pid_t pid = -1;
    const int spawned = ::posix_spawn(&pid, m_program.c_str(), &actions, &attributes, argv.data(), environment);
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
    out.closeWrite();
    err.closeWrite();
    if (spawned != 0) {
        qCWarning(copyLog, "%s did not start: %s", m_program.c_str(), std::strerror(spawned));
        return result;
    }

    const LineHandler ignored;
    LineSplitter outLines(ignored), errLines(onError);
    pollfd fds[2] = {{out.read, POLLIN, 0}, {err.read, POLLIN, 0}};
    int openPipes = 2;
    Clock::time_point lastSign = Clock::now();
    char buffer[16384];
    for (;;) {
        if (stop) {
            killGroup(pid);
            ::waitpid(pid, nullptr, 0);
            result.outcome = Outcome::Stopped;
            return result;
        }
        if (onTick && onTick())
            lastSign = Clock::now();
        if (Clock::now() - lastSign > m_stallLimit) {
            qCWarning(copyLog, "%s showed no progress for %lld s; killed as stuck", m_program.c_str(),
                static_cast<long long>(std::chrono::duration_cast<std::chrono::seconds>(m_stallLimit).count()));
            killGroup(pid);
            ::waitpid(pid, nullptr, 0);
            result.outcome = Outcome::Stalled;
            return result;
        }
        if (openPipes == 0) {
            int status = 0;
            const pid_t ended = ::waitpid(pid, &status, WNOHANG);
            if (ended == pid) {
                if (WIFEXITED(status)) {
                    result.outcome = Outcome::Exited;
                    result.exitCode = WEXITSTATUS(status);
                } else {
                    result.outcome = Outcome::Crashed;
                    result.exitCode = WIFSIGNALED(status) ? WTERMSIG(status) : -1;
                }
                return result;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            continue;
        }
        if (::poll(fds, 2, 100) < 0 && errno != EINTR)
            break;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR)))
                continue;
            const ssize_t got = ::read(fds[i].fd, buffer, sizeof buffer);
            if (got > 0) {
                lastSign = Clock::now();
                (i == 0 ? outLines : errLines).feed(buffer, size_t(got));
            } else if (got == 0 || errno != EINTR) {
                (i == 0 ? outLines : errLines).flush();
                fds[i].fd = -1;
                --openPipes;
            }
        }
    }
    qCWarning(copyLog, "Waiting for %s failed: %s", m_program.c_str(), std::strerror(errno));
    killGroup(pid);
    ::waitpid(pid, nullptr, 0);
    result.outcome = Outcome::Crashed;
    return result;
}

} // namespace Velmora::Daemon::Copy
