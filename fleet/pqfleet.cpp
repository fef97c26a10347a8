#include "fleet/pqfleet.h"

#include <exception>
#include <new>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/store.h"
#include "host/program/short_of_memory.h"
#include "host/recording/recording_reader.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kDescription[] =
    "Keeps the recordings of many servers, parses them, and answers questions about all of them.";

constexpr char kExamples[] = R"(Examples:
  pqfleet init --store /srv/fleet                make the database's tables and the store
  pqfleet submit /srv/incoming                   take recordings in
  pqfleet work --workers 4 --once                parse what is ready
  pqfleet query "SELECT server, serial FROM drives WHERE media_errors > 0"
  pqfleet show NODE31 --format html --output node31.html

The database is that of PGHOST, PGDATABASE and the like, or of --database.
Exit codes: 0 done; 1 something was refused, parked or failed; 2 wrong use, or
the database or the store is not there.
)";

int Fail(const host::Console& console, const std::exception& error, int exitCode) {
  host::Complain(console, error.what());
  return exitCode;
}

int RunAndExplain(const std::vector<std::string>& arguments, const host::Console& console) {
  const host::Program program{"pqfleet", kDescription, kExamples, GetCommands()};
  try {
    return host::RunCommandLine(program, arguments, console);
  } catch (const host::UsageError& error) {
    return Fail(console, error, host::kExitMisused);
  } catch (const host::RecordingError& error) {
    return Fail(console, error, host::kExitMisused);
  } catch (const StoreFailure& error) {
    return Fail(console, error, host::kExitMisused);
  } catch (const DatabaseFailure& error) {
    return Fail(console, error,
                error.SqlState().empty() ? host::kExitMisused : host::kExitIncomplete);
  } catch (const std::bad_alloc&) {
    host::Complain(console, host::kShortOfMemory);
    return host::kExitIncomplete;
  } catch (const std::exception& error) {
    return Fail(console, error, host::kExitIncomplete);
  }
}

}  // namespace

int RunPqfleet(const std::vector<std::string>& arguments, const host::Console& console) {
  const int exitCode = RunAndExplain(arguments, console);
  console.out.flush();
  if (console.out) return exitCode;
  host::Complain(console, "standard output could not be written");
  return exitCode == host::kExitDone ? host::kExitIncomplete : exitCode;
}

}  // namespace fleet
