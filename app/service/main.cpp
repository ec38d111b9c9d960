// toval-service: the lyric service that the program looks lyrics up in and
// sends lyrics to.
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "cPgStore.h"
#include "cServiceArgs.h"
#include "cSqliteStore.h"
#include "mImport.h"
#include "mServe.h"

using namespace toval::service;

namespace {

std::unique_ptr<iLyricStore> OpenStore(const cServiceArgs& args, size_t connections) {
    if (args.IsPostgres()) {
        auto store = std::make_unique<cPgStore>(args.database, connections);
        if (store->Valid()) return store;
        std::fprintf(stderr, "toval-service: cannot use the database: %s\n",
                     store->Problem().c_str());
        return nullptr;
    }
    auto store = std::make_unique<cSqliteStore>(args.database, connections);
    if (store->Valid()) return store;
    std::fprintf(stderr, "toval-service: cannot use %s: %s\n", args.database.c_str(),
                 store->Problem().c_str());
    return nullptr;
}

}  // namespace

int main(int argc, char** argv) {
    cServiceArgs args;
    std::string error;
    if (!args.Parse(std::vector<std::string>(argv + 1, argv + argc), error)) {
        std::fprintf(stderr, "toval-service: %s\n%s", error.c_str(), cServiceArgs::Usage());
        return 2;
    }
    if (args.command == cServiceArgs::Command::kHelp) {
        std::fputs(cServiceArgs::Usage(), stdout);
        return 0;
    }
    // SQLite serves lookups from a few connections as fast as from many;
    // PostgreSQL gains from a few per core.
    const size_t cores = std::max(2u, std::thread::hardware_concurrency());
    const auto store = OpenStore(args, args.IsPostgres() ? cores * 4 : cores * 2);
    if (!store) return 1;
    switch (args.command) {
        case cServiceArgs::Command::kImport: {
            const cImportCount n =
                Import(args.importDir, *store, std::cerr, args.options.maxLyricBytes);
            std::printf("stored %d, already there %d, skipped %d\n", n.stored, n.known, n.skipped);
            if (n.failed)
                std::fprintf(stderr, "toval-service: the database failed; import stopped\n");
            return n.failed ? 1 : 0;
        }
        case cServiceArgs::Command::kCheck: {
            const std::string problem = store->Check();
            const auto count = store->Count();
            if (!problem.empty() || !count) {
                std::printf("damaged: %s\n", problem.empty() ? "cannot count" : problem.c_str());
                return 1;
            }
            std::printf("ok, %lld lyrics\n", static_cast<long long>(*count));
            return 0;
        }
        default:
            return Serve(args, *store);
    }
}
