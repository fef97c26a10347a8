// pqfleet serve: the fleet as pages for a browser.

#include <fmt/format.h>
#include <httplib.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "fleet/commands/commands.h"
#include "fleet/database.h"
#include "fleet/end_request.h"
#include "fleet/pages.h"
#include "fleet/report_process.h"
#include "fleet/schema.h"
#include "fleet/settings.h"
#include "host/text/path_text.h"
#include "host/text/usage_error.h"

namespace fleet {
namespace {

constexpr char kServeFooter[] = R"(Examples:
  pqfleet serve                        http://127.0.0.1:8080/
  pqfleet serve --port 8090 --host fleet.example.org

Pages about all servers, for reading alone. It has no login: leave it where only
this machine reaches it, and let nginx, with certificates or a login, stand in
front. It asks the database as a reader; a user who is a member of fleet_reader
alone is enough, and reports need the store.
Exit codes: 0 ended; 1 the database refuses; 2 wrong use, or the database or the
address is not to be had.
)";

constexpr unsigned kUsualPort = 8080;
constexpr unsigned kMostPort = 65'535;
constexpr std::size_t kThreads = 8;
constexpr std::chrono::seconds kPatience{5};

struct ServeOptions {
  GivenSettings settings;
  std::vector<std::string> addresses;
  std::optional<unsigned> port;
  std::vector<std::string> hosts;
};

/// Pages have no scripts; the report has its own, and is a stranger to the pages.
constexpr char kPagePolicy[] =
    "default-src 'none'; style-src 'self'; img-src data:; form-action 'self'; base-uri 'none'; "
    "frame-ancestors 'none'";
constexpr char kReportPolicy[] =
    "sandbox allow-scripts allow-downloads allow-modals; "
    "frame-ancestors 'none'";

class PageServer {
 public:
  PageServer(const ServeOptions& options, Settings settings)
      : options(options), settings(std::move(settings)) {
    server.new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    server.set_read_timeout(kPatience);
    server.set_write_timeout(kPatience * 6);
    server.set_keep_alive_timeout(1);
    server.set_payload_max_length(0);
    server.set_default_headers({{"X-Content-Type-Options", "nosniff"},
                                {"Referrer-Policy", "no-referrer"},
                                {"Cache-Control", "no-store"},
                                {"Cross-Origin-Opener-Policy", "same-origin"},
                                {"Cross-Origin-Resource-Policy", "same-origin"}});
    server.set_pre_routing_handler([this](const auto& request, auto& response) {
      if (IsOurs(request.get_header_value("Host"))) {
        return httplib::Server::HandlerResponse::Unhandled;
      }
      Send(MakeErrorPage(421, "This is not the host of these pages: name it with --host."),
           response);
      return httplib::Server::HandlerResponse::Handled;
    });
    server.Get("/style.css", [](const auto&, auto& response) {
      response.set_content(GetPageStyle(), "text/css");
    });
    server.Get("/report",
               [this](const auto& request, auto& response) { SendReport(request, response); });
    server.Get(".*", [this](const auto& request, auto& response) { SendPage(request, response); });
  }

  void Run(EndRequest& endRequest, const host::Console& console) {
    const std::string address = options.addresses.empty() ? "127.0.0.1" : options.addresses.back();
    const unsigned port = options.port.value_or(kUsualPort);
    // By default it would share the port with whoever asks.
    server.set_socket_options([](int socket) {
      const int yes = 1;
      setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    });
    if (!server.bind_to_port(address, static_cast<int>(port))) {
      throw host::UsageError(fmt::format(
          "{} port {} is not to be had: name another --port or --address", address, port));
    }
    std::atomic<bool> hasEnded = false;
    std::thread listener([&] {
      server.listen_after_bind();
      hasEnded = true;
    });
    console.error << fmt::format("pqfleet: serving http://{}:{}/\n", address, port) << std::flush;
    constexpr std::chrono::minutes kLong{1};
    while (!endRequest.Sleep(kLong)) {
    }
    // What does not listen yet would not be stopped, and listen for ever.
    while (!server.is_running() && !hasEnded) std::this_thread::yield();
    server.stop();
    listener.join();
  }

 private:
  /// A page of another host that has its name lead here would otherwise be answered.
  bool IsOurs(const std::string& given) const {
    std::string name = given.substr(0, given.rfind(':'));
    const bool isNumber = name.find_first_not_of("0123456789.") == std::string::npos;
    return given.empty() || given.starts_with('[') || isNumber || name == "localhost" ||
           std::find(options.hosts.begin(), options.hosts.end(), name) != options.hosts.end();
  }

  static void Send(const Page& page, httplib::Response& response) {
    response.status = page.status;
    response.set_header("Content-Security-Policy", kPagePolicy);
    response.set_content(page.html, "text/html; charset=utf-8");
  }

  void SendPage(const httplib::Request& request, httplib::Response& response) const {
    try {
      PageWords words;
      for (const auto& [name, value] : request.params) words[name] = value;
      Connection connection(settings.database, "pqfleet serve");
      connection.Run(
          "begin read only; set local role fleet_reader; set local statement_timeout = '10s'");
      Send(MakePage(request.path, words, connection), response);
    } catch (const DatabaseFailure& failure) {
      Send(MakeErrorPage(503, fmt::format("The database: {}", failure.what())), response);
    }
  }

  void SendReport(const httplib::Request& request, httplib::Response& response) const {
    std::vector<std::string> words = {"show", "--format=html",
                                      "--server=" + request.get_param_value("name"),
                                      "--site=" + request.get_param_value("site")};
    if (request.has_param("at")) words.push_back("--at=" + request.get_param_value("at"));
    for (const std::string& text : options.settings.database) words.push_back("--database=" + text);
    if (options.settings.file) {
      words.push_back("--config=" + host::PathText(*options.settings.file));
    }
    if (!options.settings.store.empty()) {
      words.push_back("--store=" + options.settings.store.back());
    }
    if (options.settings.certificate) {
      words.push_back("--store-certificate=" + host::PathText(*options.settings.certificate));
    }
    const std::optional<std::string> report = RunReport(words);
    if (!report) {
      Send(MakeErrorPage(404,
                         "There is no report of that: its recording is not there, or cannot "
                         "be read."),
           response);
      return;
    }
    response.set_header("Content-Security-Policy", kReportPolicy);
    response.set_content(*report, "text/html; charset=utf-8");
  }

  const ServeOptions& options;
  Settings settings;
  httplib::Server server;
};

int RunServe(const ServeOptions& options, const host::Console& console) {
  const Settings settings = ReadSettings(options.settings);
  {
    Connection connection(settings.database, "pqfleet serve");
    RequireSchema(connection);
  }
  EndRequest endRequest;
  PageServer(options, settings).Run(endRequest, console);
  return host::kExitDone;
}

host::CommandRun DefineServe(host::OptionSet& set) {
  const auto options = std::make_shared<ServeOptions>();
  set.AddTexts("--address", "ADDRESS", options->addresses,
               "Listen at this address; 127.0.0.1 unless given");
  set.AddCount("--port", "PORT", options->port, kMostPort,
               "Listen at this port; 8080 unless given");
  set.AddTexts(
      "--host", "NAME", options->hosts,
      "Answer to this name, too; to localhost and to numbers unless given; may be repeated");
  AddSettingsOptions(set, options->settings);
  return [options](const host::Console& console) { return RunServe(*options, console); };
}

}  // namespace

const host::Command kServeCommand = {"serve", "Show the fleet in a browser", kServeFooter,
                                     &DefineServe};

}  // namespace fleet
