// A private, throw-away PostgreSQL cluster for the tests: initdb and pg_ctl
// from Debian's postgresql package, listening only on a Unix socket in a temp
// folder, stopped and removed at the end of the test program. PostgreSQL
// refuses to run as root, so as root the cluster runs as "nobody". Where it
// cannot start, NewDatabase() is empty and Why() says why (the tests skip).
#pragma once

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <pqxx/pqxx>
#include <string>

namespace toval::test {

class PgCluster {
  public:
    // The one cluster of this test program, started on first use.
    static PgCluster& Shared() {
        static PgCluster cluster;
        return cluster;
    }

    const std::string& Why() const { return why_; }
    // A fresh, empty database on the cluster; empty when there is no cluster.
    std::string NewDatabase() {
        if (dir_.empty()) return {};
        const std::string name = "t" + std::to_string(++databases_);
        pqxx::connection c(Conninfo("postgres"));
        pqxx::nontransaction(c).exec0("CREATE DATABASE " + name);
        return Conninfo(name);
    }

    ~PgCluster() {
        if (dir_.empty()) return;
        Run(bin_ + "/pg_ctl -D " + dir_ + "/data -m immediate -w stop >/dev/null 2>&1");
        std::error_code ec;
        std::filesystem::remove_all(dir_, ec);
    }

  private:
    PgCluster() {
        std::error_code ec;
        for (const auto& entry : std::filesystem::directory_iterator("/usr/lib/postgresql", ec)) {
            if (std::filesystem::exists(entry.path() / "bin/initdb") &&
                entry.path().string() > bin_) {
                bin_ = (entry.path() / "bin").string();
            }
        }
        if (bin_.empty()) {
            why_ = "no PostgreSQL server installed (Debian package postgresql)";
            return;
        }
        char name[] = "/tmp/toval-pg-XXXXXX";
        if (!::mkdtemp(name)) {
            why_ = "no temp folder";
            return;
        }
        dir_ = name;
        if (::geteuid() == 0) {
            const passwd* nobody = ::getpwnam("nobody");
            if (!nobody || ::chown(name, nobody->pw_uid, nobody->pw_gid) != 0) {
                why_ = "running as root and cannot hand a folder to nobody";
                std::filesystem::remove_all(dir_, ec);
                dir_.clear();
                return;
            }
            as_ = "runuser -u nobody -- ";
        }
        const std::string data = dir_ + "/data";
        if (!Run(bin_ + "/initdb -D " + data + " -A trust -U toval -E UTF8 --no-locale --no-sync" +
                 " >" + dir_ + "/initdb.log 2>&1") ||
            !Run(bin_ + "/pg_ctl -D " + data + " -l " + dir_ + "/server.log -w -t 60 -o \"-k " +
                 dir_ + " -c listen_addresses= -c fsync=off -c max_connections=300\" start" +
                 " >/dev/null 2>&1")) {
            why_ = "initdb or pg_ctl failed (see " + dir_ + ")";
            dir_.clear();  // keep the folder for a look
        }
    }

    std::string Conninfo(const std::string& database) const {
        return "host=" + dir_ + " user=toval dbname=" + database;
    }
    bool Run(const std::string& command) const { return std::system((as_ + command).c_str()) == 0; }

    std::string bin_, dir_, as_, why_;
    int databases_ = 0;
};

}  // namespace toval::test
