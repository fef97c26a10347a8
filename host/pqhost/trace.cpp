#include "host/pqhost/trace.h"

#include <nlohmann/json.hpp>

#include "host/pqhost/amt_login.h"
#include "host/pqhost/json_text.h"

namespace host {
namespace {

using Json = nlohmann::ordered_json;

Json ByteTexts(const std::vector<std::string>& texts) {
  Json list = Json::array();
  for (const std::string& text : texts) list.push_back(ByteText(text));
  return list;
}

void WriteLine(std::ostream& out, const Json& event) { out << event.dump() << '\n'; }

}  // namespace

void TraceWriter::Module(const std::string& name, const std::string& description) {
  WriteLine(
      out, {{"event", "module"}, {"name", ByteText(name)}, {"description", ByteText(description)}});
}

void TraceWriter::Layout(const std::string& table) { layoutTable = table; }

void TraceWriter::Enumerate(const std::string& module, const std::string& table) {
  WriteLine(out,
            {{"event", "enumerate"}, {"module", ByteText(module)}, {"table", ByteText(table)}});
}

void TraceWriter::Log(const LogLine& line) {
  WriteLine(out, {{"event", "log"},
                  {"level", line.level},
                  {"file", ByteText(line.file)},
                  {"text", ByteText(line.text)}});
}

void TraceWriter::OnInstance(std::uint64_t id, const std::string& className, const std::string& key,
                             int number) {
  WriteLine(out, {{"event", "instance"},
                  {"id", id},
                  {"class", ByteText(className)},
                  {"key", ByteText(key)},
                  {"number", number}});
}

void TraceWriter::OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                             const std::string& value, bool flag) {
  WriteLine(out, {{"event", "property"},
                  {"id", id},
                  {"key", ByteText(key)},
                  {"label", ByteText(label)},
                  {"value", ByteText(value)},
                  {"flag", flag}});
}

void TraceWriter::OnProperty(std::uint64_t id, const std::string& key, const std::string& label,
                             int value, bool flag) {
  WriteLine(out, {{"event", "property"},
                  {"id", id},
                  {"key", ByteText(key)},
                  {"label", ByteText(label)},
                  {"value", value},
                  {"flag", flag}});
}

void TraceWriter::OnAttribute(std::uint64_t id, const std::string& propertyKey,
                              const std::string& name, const std::string& value) {
  WriteLine(
      out,
      {{"event", "attribute"}, {"id", id}, {"strings", ByteTexts({propertyKey, name, value})}});
}

void TraceWriter::OnAdd(std::uint64_t id) { WriteLine(out, {{"event", "add"}, {"id", id}}); }

void TraceWriter::OnRelease(std::uint64_t id) {
  WriteLine(out, {{"event", "release"}, {"id", id}});
}

void TraceWriter::OnRowHeaders(const halyard::repository::RInstancesWrapper& /*table*/,
                               const std::vector<std::string>& names,
                               const std::vector<unsigned>& widths, bool flag) {
  WriteLine(out, {{"event", "layout"},
                  {"table", ByteText(layoutTable)},
                  {"call", "SetRowHeaders"},
                  {"names", ByteTexts(names)},
                  {"widths", widths},
                  {"flag", flag}});
}

void TraceWriter::OnColumnHeaders(const halyard::repository::RInstancesWrapper& /*table*/,
                                  const std::vector<std::string>& headers, unsigned first,
                                  unsigned second) {
  WriteLine(out, {{"event", "layout"},
                  {"table", ByteText(layoutTable)},
                  {"call", "SetColumnHeaders"},
                  {"names", ByteTexts(headers)},
                  {"first", first},
                  {"second", second}});
}

void TraceWriter::OnProcess(const std::string& application, const std::string& commandLine,
                            bool inheritHandles, bool pipe) {
  WriteLine(out,
            {{"event", "process"},
             {"application", ByteText(application)},
             {"commandLine",
              ByteText(passwords == Passwords::kHidden ? HidePassword(commandLine) : commandLine)},
             {"inheritHandles", inheritHandles},
             {"pipe", pipe}});
}

void TraceWriter::OnSystem(const std::string& command) {
  WriteLine(out, {{"event", "system"}, {"command", ByteText(command)}});
}

void TraceWriter::OnOpen(const std::string& path, const std::string& mode) {
  WriteLine(out, {{"event", "open"}, {"path", ByteText(path)}, {"mode", mode}});
}

void TraceWriter::OnConsole(std::string_view text) {
  WriteLine(out, {{"event", "console"}, {"text", ByteText(text)}});
}

}  // namespace host
