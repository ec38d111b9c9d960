// The command line of toval-service.
//
//   toval-service [serve] [options]   answer the program's requests
//   toval-service import DIR [--db]   store every .tvl/.lrc beside its audio file
//   toval-service check [--db]        the database's integrity check
//
// Options: --listen ADDR (127.0.0.1), --port N (8080; 0 picks a free one),
// --db PATH|CONNINFO (toval-service.db; "postgresql://..." or a libpq
// "key=value" string selects PostgreSQL), --announce VERSION, --move-to HOST,
// --sends-per-hour N (60), --max-lyric-bytes N (262144), --threads N (1024),
// --deadline SECONDS (20).
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "cLyricService.h"

namespace toval::service {

struct cServiceArgs {
    enum class Command { kServe, kImport, kCheck, kHelp };
    Command command = Command::kServe;
    std::string listen = "127.0.0.1";
    int32_t port = 8080;
    std::string database = "toval-service.db";
    std::string importDir;
    int32_t threads = 1024;
    int32_t deadlineSeconds = 20;
    cServiceOptions options;

    // Reads argv[1..]; false with `error` set when something is wrong.
    bool Parse(const std::vector<std::string>& args, std::string& error);
    // Whether the database names a PostgreSQL server.
    bool IsPostgres() const;

    static const char* Usage();
};

}  // namespace toval::service
