// A real toval-service on 127.0.0.1, started as its own process on a port it
// picks itself, its standard error written to a file (which never fills up
// like a pipe). Every wait is bounded; the process is killed when the object
// goes.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace toval::test {

class ServiceProcess {
  public:
    explicit ServiceProcess(std::vector<std::string> args) {
        args.insert(args.begin(), TOVAL_SERVICE_BIN);
        args.insert(args.end(), {"--port", "0"});
        char name[] = "/tmp/toval-service-log-XXXXXX";
        err_ = ::mkostemp(name, O_CLOEXEC);
        if (err_ < 0) return;
        ::unlink(name);
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(err_, 2);
            std::vector<char*> argv;
            for (auto& a : args)
                argv.push_back(a.data());
            argv.push_back(nullptr);
            ::execv(argv[0], argv.data());
            ::_exit(127);
        }
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (port_ == 0 && std::chrono::steady_clock::now() < end && Running()) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            ReadLog();
            const size_t at = log_.find("listening on ");
            const size_t eol = log_.find('\n', at);
            if (at == std::string::npos || eol == std::string::npos) continue;
            const std::string where = log_.substr(at, eol - at);
            port_ = std::stoi(where.substr(where.rfind(':') + 1));
        }
    }
    ~ServiceProcess() {
        if (pid_ > 0 && !exited_) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        if (err_ >= 0) ::close(err_);
    }
    ServiceProcess(const ServiceProcess&) = delete;
    ServiceProcess& operator=(const ServiceProcess&) = delete;

    int Port() const { return port_; }
    std::u16string Host() const {
        const std::string host = "127.0.0.1:" + std::to_string(port_);
        return std::u16string(host.begin(), host.end());
    }

    // Sends the signal and waits up to limitMs for the exit; the exit status
    // (as waitpid gives it), or -1 when the process did not end.
    int Stop(int signal, int limitMs) {
        ::kill(pid_, signal);
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs);
        int status = 0;
        while (std::chrono::steady_clock::now() < end) {
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                exited_ = true;
                ReadLog();
                return status;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return -1;
    }

    // Everything the service wrote to standard error so far.
    const std::string& Log() {
        ReadLog();
        return log_;
    }

    bool Running() {
        if (pid_ <= 0 || exited_) return false;
        int status = 0;
        if (::waitpid(pid_, &status, WNOHANG) == pid_) exited_ = true;
        return !exited_;
    }

  private:
    void ReadLog() {
        char buffer[4096];
        ssize_t n;
        while ((n = ::pread(err_, buffer, sizeof buffer, static_cast<off_t>(log_.size()))) > 0)
            log_.append(buffer, static_cast<size_t>(n));
    }

    pid_t pid_ = -1;
    int err_ = -1;
    int port_ = 0;
    bool exited_ = false;
    std::string log_;
};

}  // namespace toval::test
