// The HTTP side of the service: the three scripts on cpp-httplib, one log line
// per request on standard error, and a clean stop on SIGTERM or SIGINT.
#pragma once

#include "cServiceArgs.h"
#include "iLyricStore.h"

namespace toval::service {

// Serves until SIGTERM or SIGINT; the process exit code (0 after a clean stop).
// Call before any thread is started: it blocks the two signals in the process.
int Serve(const cServiceArgs& args, iLyricStore& store);

}  // namespace toval::service
