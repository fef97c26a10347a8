#include "host/collect/trace.h"

#include <new>

#include "host/text/json_text.h"

namespace host {
namespace {

JsonObject BeginEvent(std::string_view name) {
  JsonObject event;
  event.AddText("event", name);
  return event;
}

void AddTexts(JsonObject& event, std::string_view name, const std::vector<std::string>& texts) {
  event.Add(name, [&](std::string& json) { AppendJsonList(json, texts, &AppendJsonBytes); });
}

}  // namespace

void TraceWriter::Write(JsonObject& event) { out << event.Take() << '\n'; }

void TraceWriter::Write(JsonObject& event, std::string_view name, std::string_view bytes,
                        std::string_view rest) {
  out << event.TakeBefore(name);
  WriteJsonBytes(out, bytes);
  out << rest << "}\n";
}

void TraceWriter::Module(const std::string& name, const std::string& description) {
  Write(BeginEvent("module").AddBytes("name", name).AddBytes("description", description));
}

void TraceWriter::Layout(const std::string& table) { layoutTable = table; }

void TraceWriter::Enumerate(const std::string& module, const std::string& table) {
  Write(BeginEvent("enumerate").AddBytes("module", module).AddBytes("table", table));
}

void TraceWriter::Log(const LogLine& line) {
  Write(BeginEvent("log").AddNumber("level", line.level).AddBytes("file", line.file), "text",
        line.text);
}

void TraceWriter::OnInstance(std::uint64_t id, const std::string& className, const std::string& key,
                             int number) {
  Write(BeginEvent("instance")
            .AddNumber("id", id)
            .AddBytes("class", className)
            .AddBytes("key", key)
            .AddNumber("number", number));
}

void TraceWriter::OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                             const std::string& value, bool flag) {
  Write(BeginEvent("property").AddNumber("id", id).AddBytes("key", key).AddBytes("label", label),
        "value", value, flag ? R"(,"flag":true)" : R"(,"flag":false)");
}

void TraceWriter::OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                             int value, bool flag) {
  Write(BeginEvent("property")
            .AddNumber("id", id)
            .AddBytes("key", key)
            .AddBytes("label", label)
            .AddNumber("value", value)
            .AddFlag("flag", flag));
}

void TraceWriter::OnAttribute(std::uint64_t id, const std::string& propertyKey,
                              const std::string& name, const std::string& value) {
  JsonObject event = BeginEvent("attribute");
  event.AddNumber("id", id);
  AddTexts(event, "strings", {propertyKey, name, value});
  Write(event);
}

void TraceWriter::OnAdd(std::uint64_t id) { Write(BeginEvent("add").AddNumber("id", id)); }

void TraceWriter::OnRelease(std::uint64_t id) {
  try {
    Write(BeginEvent("release").AddNumber("id", id));
  } catch (const std::bad_alloc&) {
    // A destructor calls, out of which nothing can be thrown; whoever completes the file sees this.
    out.setstate(std::ios::badbit);
  }
}

JsonObject TraceWriter::BeginLayout(const char* call, const std::vector<std::string>& names) const {
  JsonObject event = BeginEvent("layout");
  event.AddBytes("table", layoutTable).AddText("call", call);
  AddTexts(event, "names", names);
  return event;
}

void TraceWriter::OnRowHeaders(const halyard::repository::RInstancesWrapper& /*table*/,
                               const std::vector<std::string>& names,
                               const std::vector<unsigned>& widths, bool flag) {
  JsonObject event = BeginLayout("SetRowHeaders", names);
  event.Add("widths", [&](std::string& json) { AppendJsonNumbers(json, widths); });
  Write(event.AddFlag("flag", flag));
}

void TraceWriter::OnColumnHeaders(const halyard::repository::RInstancesWrapper& /*table*/,
                                  const std::vector<std::string>& headers, unsigned first,
                                  unsigned second) {
  JsonObject event = BeginLayout("SetColumnHeaders", headers);
  Write(event.AddNumber("first", first).AddNumber("second", second));
}

void TraceWriter::OnProcess(const std::string& application, const std::string& commandLine,
                            bool inheritHandles, bool pipe) {
  Write(BeginEvent("process")
            .AddBytes("application", application)
            .AddBytes("commandLine", commandLine)
            .AddFlag("inheritHandles", inheritHandles)
            .AddFlag("pipe", pipe));
}

void TraceWriter::OnSystem(const std::string& command) {
  Write(BeginEvent("system").AddBytes("command", command));
}

void TraceWriter::OnOpen(const std::string& path, const std::string& mode) {
  Write(BeginEvent("open").AddBytes("path", path).AddText("mode", mode));
}

void TraceWriter::OnConsole(std::string_view text) {
  JsonObject event = BeginEvent("console");
  Write(event, "text", text);
}

}  // namespace host
