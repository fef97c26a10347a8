#include "host/formats/report_charts.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>

#include "host/answers/health/wall_time.h"

namespace host {
namespace {

// --- a value between limits ---

constexpr double kGaugeWidth = 96;
constexpr double kGaugeHeight = 14;

/// The scale of a gauge: all that it shows, with room at both ends.
class GaugeScale {
 public:
  explicit GaugeScale(const Gauge& gauge) : low(gauge.value), high(gauge.value) {
    for (const Real& limit :
         {gauge.lowerCritical, gauge.lowerWarning, gauge.upperWarning, gauge.upperCritical}) {
      if (!limit) continue;
      low = std::min(low, *limit);
      high = std::max(high, *limit);
    }
    // Without a lower limit, nothing is the least that there is.
    if (!gauge.lowerCritical && !gauge.lowerWarning) low = std::min(low, 0.0);
    constexpr double kRoom = 0.08;
    const double room = high > low ? (high - low) * kRoom : 1;
    low -= room;
    high += room;
  }

  double Place(double value) const { return (value - low) / (high - low) * kGaugeWidth; }

 private:
  double low;
  double high;
};

void WriteZone(Markup style, double from, double to, HtmlWriter& html) {
  if (to <= from) return;
  html.Add("<rect class=\"").Add(style).Add("\" y=\"5\" height=\"4\" x=\"").Real(from);
  html.Add("\" width=\"").Real(to - from).Add("\"/>");
}

void WriteTick(Markup style, double at, double height, HtmlWriter& html) {
  html.Add("<rect class=\"").Add(style).Add("\" width=\"1.5\" x=\"").Real(at - 0.75);
  html.Add("\" y=\"").Real((kGaugeHeight - height) / 2).Add("\" height=\"").Real(height);
  html.Add("\"/>");
}

std::string DescribeGauge(const Gauge& gauge) {
  std::string text = fmt::format("{}", gauge.value);
  const auto add = [&](const char* what, const Real& limit) {
    if (limit) text += fmt::format(", {} {}", what, *limit);
  };
  add("lower critical limit", gauge.lowerCritical);
  add("lower warning limit", gauge.lowerWarning);
  add("upper warning limit", gauge.upperWarning);
  add("upper critical limit", gauge.upperCritical);
  return text;
}

// --- events by day ---

constexpr std::size_t kDaysShown = 30;
constexpr std::int64_t kSecondsOfDay = 86'400;

struct DayCounts {
  std::size_t critical = 0;
  std::size_t warning = 0;
  std::size_t other = 0;

  std::size_t Sum() const { return critical + warning + other; }
};
using MonthCounts = std::array<DayCounts, kDaysShown>;

std::string FormatDay(std::int64_t day) {
  // Days before 1970 as well, which not every system's own function takes.
  const std::chrono::year_month_day date{std::chrono::sys_days{std::chrono::days{day}}};
  return fmt::format("{}-{:02}-{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

std::string DescribeDay(std::int64_t day, const DayCounts& counts) {
  return fmt::format("{}: {} critical, {} warning, {} other", FormatDay(day), counts.critical,
                     counts.warning, counts.other);
}

MonthCounts CountByDay(const Events& events, const std::vector<std::size_t>& rows,
                       std::int64_t lastDay) {
  MonthCounts days;
  for (const std::size_t row : rows) {
    const auto seconds = ReadWallTime(events.GetText(row, EventColumn::kTime));
    if (!seconds) continue;
    // A clock ahead of the one that tells when the collection was is of the last day, too.
    const std::int64_t age = std::max<std::int64_t>(lastDay - *seconds / kSecondsOfDay, 0);
    if (age >= static_cast<std::int64_t>(kDaysShown)) continue;
    DayCounts& day = days[kDaysShown - 1 - static_cast<std::size_t>(age)];
    const std::int64_t level = events.GetInteger(row, EventColumn::kLevel).value_or(0);
    ++(level >= 2 ? day.critical : level == 1 ? day.warning : day.other);
  }
  return days;
}

constexpr double kDayWidth = 16;
constexpr double kBarWidth = 12;
constexpr double kChartHeight = 72;
constexpr double kBarsTop = 14;

void WriteBar(Markup style, double x, double& bottom, std::size_t count, std::size_t most,
              HtmlWriter& html) {
  if (count == 0) return;
  constexpr double kLeast = 2;
  const double height = std::max(
      kLeast, (kChartHeight - kBarsTop) * static_cast<double>(count) / static_cast<double>(most));
  bottom -= height;
  html.Add("<rect class=\"").Add(style).Add("\" x=\"").Real(x).Add("\" y=\"").Real(bottom);
  html.Add("\" width=\"").Real(kBarWidth).Add("\" height=\"").Real(height).Add("\"/>");
}

}  // namespace

std::optional<Gauge> MakeGauge(const Sensor& sensor) {
  if (!sensor.reading) return std::nullopt;
  Gauge gauge{*sensor.reading, sensor.lc ? sensor.lc : sensor.lnr, sensor.lnc, sensor.unc,
              sensor.uc ? sensor.uc : sensor.unr};
  if (!gauge.lowerCritical && !gauge.lowerWarning && !gauge.upperWarning && !gauge.upperCritical) {
    return std::nullopt;
  }
  return gauge;
}

std::optional<Gauge> MakeGauge(const Drive& drive) {
  if (!drive.temperature || !drive.temperatureLimit) return std::nullopt;
  Gauge gauge{*drive.temperature};
  gauge.upperCritical = drive.temperatureLimit;
  return gauge;
}

void WriteGauge(const Gauge& gauge, HtmlWriter& html) {
  const GaugeScale scale(gauge);
  html.Add(
      "<svg class=\"chart gauge\" viewBox=\"0 0 96 14\" width=\"96\" height=\"14\" role=\"img\" "
      "aria-label=\"");
  html.Text(DescribeGauge(gauge))
      .Add("\"><rect class=\"track\" y=\"5\" width=\"96\" height=\"4\"/>");
  const double end = kGaugeWidth;
  if (gauge.lowerWarning) WriteZone("zone-warning", 0, scale.Place(*gauge.lowerWarning), html);
  if (gauge.lowerCritical) WriteZone("zone-critical", 0, scale.Place(*gauge.lowerCritical), html);
  if (gauge.upperWarning) {
    WriteZone("zone-warning", scale.Place(*gauge.upperWarning), end, html);
  }
  if (gauge.upperCritical) {
    WriteZone("zone-critical", scale.Place(*gauge.upperCritical), end, html);
  }
  constexpr double kShort = 8;
  for (const Real& limit : {gauge.lowerWarning, gauge.upperWarning}) {
    if (limit) WriteTick("tick-warning", scale.Place(*limit), kShort, html);
  }
  for (const Real& limit : {gauge.lowerCritical, gauge.upperCritical}) {
    if (limit) WriteTick("tick-critical", scale.Place(*limit), kGaugeHeight, html);
  }
  html.Add("<circle class=\"value\" cy=\"7\" r=\"4\" cx=\"").Real(scale.Place(gauge.value));
  html.Add("\"/></svg>");
}

void WriteEventsByDay(const Events& events, const std::vector<std::size_t>& rows,
                      std::string_view asOf, HtmlWriter& html) {
  const auto now = ReadWallTime(asOf);
  if (!now) return;
  const std::int64_t lastDay = *now / kSecondsOfDay;
  const std::int64_t firstDay = lastDay - static_cast<std::int64_t>(kDaysShown) + 1;
  const MonthCounts days = CountByDay(events, rows, lastDay);
  std::size_t most = 0;
  std::string words;
  for (std::size_t i = 0; i < days.size(); ++i) {
    most = std::max(most, days[i].Sum());
    if (days[i].Sum() == 0) continue;
    words +=
        (words.empty() ? "" : "; ") + DescribeDay(firstDay + static_cast<std::int64_t>(i), days[i]);
  }
  if (most == 0) return;
  html.Add("<figure class=\"days\"><figcaption>Entries a day, in the 30 days up to ");
  html.Text(FormatDay(lastDay))
      .Add(
          ": <span class=\"key key-critical\">critical</span> at the top, "
          "<span class=\"key key-warning\">warning</span>, <span class=\"key\">other</span> at the "
          "bottom; the figures count critical and warning.</figcaption>");
  html.Add("<svg class=\"chart\" viewBox=\"0 0 480 90\" role=\"img\" aria-label=\"").Text(words);
  html.Add("\"><rect class=\"axis\" x=\"0\" y=\"72\" width=\"480\" height=\"1\"/>");
  for (std::size_t i = 0; i < days.size(); ++i) {
    const DayCounts& day = days[i];
    if (day.Sum() == 0) continue;
    const double x = static_cast<double>(i) * kDayWidth + 2;
    double bottom = kChartHeight;
    html.Add("<g><title>").Text(DescribeDay(firstDay + static_cast<std::int64_t>(i), day));
    html.Add("</title>");
    WriteBar("bar-other", x, bottom, day.other, most, html);
    WriteBar("bar-warning", x, bottom, day.warning, most, html);
    WriteBar("bar-critical", x, bottom, day.critical, most, html);
    if (day.critical + day.warning > 0) {
      html.Add("<text text-anchor=\"middle\" x=\"").Real(x + kBarWidth / 2).Add("\" y=\"");
      html.Real(bottom - 3).Add("\">").Number(day.critical + day.warning).Add("</text>");
    }
    html.Add("</g>");
  }
  html.Add("<text x=\"0\" y=\"86\">").Text(FormatDay(firstDay));
  html.Add("</text><text text-anchor=\"end\" x=\"480\" y=\"86\">").Text(FormatDay(lastDay));
  html.Add("</text></svg></figure>");
}

}  // namespace host
