// docs/metrics.md, from the families.
#include <fmt/format.h>

#include <string>

#include "host/formats/prometheus.h"

namespace host {
namespace {

constexpr char kMetricsHead[] = R"(# Metrics

Made by `pqhost modules --format metrics` from what the metrics say of themselves.

    pqhost collect --format prometheus --output "C:\Program Files\windows_exporter\textfile_inputs\pqhost.prom"

writes what is true of the machine ([parts.md](parts.md)) and the verdict on it ([health.md](health.md)) as metrics, in
Prometheus' text format 0.0.4, for the textfile collector of windows_exporter or node_exporter. **These read `*.prom` alone**:
the file's name has to end so. It is written beside its place under another ending and renamed when it is whole, so a scrape
finds the old file or the new one. When `pqhost` ends with exit code 2 nothing is written, and the old file stays. An
answer of `pqhost query` is of no machine and has no metrics.

## When to collect

Every 15 to 60 minutes, by a task or a timer, never once a scrape: a collection takes seconds to minutes, and vendors' tools
load the controllers' firmware. [examples/](examples/) has, to be copied and adapted:

| file | for |
|---|---|
| `pqhost-task.xml` | Windows: `schtasks /Create /TN pqhost /XML pqhost-task.xml` has the system collect twice an hour, with the program in `C:\Program Files\pqhost`. Result 1 is no fault of the task: something could not be collected, which the metrics tell |
| `pqhost-metrics@.service`, `.timer` | Linux: replays what arrived. `systemctl enable --now pqhost-metrics@node31.timer` turns the recording `/var/spool/pqhost/node31` into metrics twice an hour |
| `pqhost-alerts.yml` | Prometheus: rules that alarm; `pqhost-alerts.test.yml` has for each a machine that sets it off and one that does not |

Where the server itself is scraped, `instance` names it. Files of several machines in one collector need `--identify`, which
labels each sample with `machine`; those of the timer have it. A recording has to arrive whole: copy it beside its place and
rename the folder.

## How old it is

A scrape reads a file of last week as if it were of now. `pqhost_collection_timestamp_seconds` tells when the tools answered: of a
live collection its end, of a recording when that was made, else what `pqhost health` judges as of (a clock without a zone counts
as UTC). The alert `PqhostStale` compares it with the present. The collector's own `node_textfile_mtime_seconds` is the
time of the copy or of the replay.

## What samples mean

- What no tool told has no sample; 0 is a reading.
- `..._health` is 0 OK, 1 warning, 2 critical, and `NaN` where nobody knows, which is neither more nor less than any number.
  `pqhost_health` is the exit code of `pqhost health`.
- Of `..._state` there is the series of the present state alone, with the value 1; when the state changes, another series comes.
- `..._total` counts what the controller counts. A new drive in the slot starts again, which `increase()` takes for a reset.
- A serial number is a label of `..._info` alone. An alert gets it by a join:
  `pqhost_drive_health * on(instance, machine, controller, slot) group_left(serial, model) pqhost_drive_info == 2`.
- Two parts with the same labels are told apart by ` #2` after the last one. A label without a value is left out.
- At most 100 findings have a series, the worst; `pqhost_findings` counts them all. Notices have none.

A server has about 20 series, 3 for each controller, up to 8 for each drive, 4 for each volume and 2 for each sensor.

## Families

)";

std::string JoinLabelNames(const MetricFamily& family) {
  std::string names;
  for (const MetricLabel& label : family.labels) {
    if (label.name.empty()) continue;
    if (!names.empty()) names += ", ";
    names += fmt::format("`{}`", label.name);
  }
  return names;
}

}  // namespace

std::string WriteMetricsDocument() {
  std::string text = kMetricsHead;
  text += "| name | type | labels | is |\n|---|---|---|---|\n";
  for (const MetricFamily& family : GetMetricFamilies()) {
    text += fmt::format("| `{}` | {} | {} | {} |\n", family.name, family.type,
                        JoinLabelNames(family), family.help);
  }
  return text;
}

}  // namespace host
