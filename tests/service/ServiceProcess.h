// A real toval-service on 127.0.0.1, started as its own process on a port it
// picks itself, its standard error written to a file (which never fills up
// like a pipe). Every wait is bounded; the process is killed when the object
// goes.
#pragma once

#include <fcntl.h>
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
        while (pid_ > 0 && !exited_ && port_ == 0 && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            exited_ = ::waitpid(pid_, nullptr, WNOHANG) == pid_;
            ReadLog();
            // "toval-service: listening on 127.0.0.1:PORT"
            const size_t eol = log_.find('\n', log_.find("listening on "));
            if (eol != std::string::npos) port_ = std::stoi(log_.substr(log_.rfind(':', eol) + 1));
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

    // Sends the signal and waits up to limitMs for the exit; the exit status
    // (as waitpid gives it), or -1 when the process did not end.
    int Stop(int limitMs, int signal = SIGTERM) {
        ::kill(pid_, signal);
        const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMs);
        int status = 0;
        while (std::chrono::steady_clock::now() < end) {
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                exited_ = true;
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
