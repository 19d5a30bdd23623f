#include "application/agent/refreshing/refresh_reports.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

namespace orvan {
namespace {

using Json = nlohmann::json;

bool isCounted(const Json& report, const char* count) {
  const auto found = report.find(count);
  return found != report.end() && found->is_number() && *found > 0;
}

bool tellsOfNews(const Json& source) {
  // Of contacts, what is joined is known under another name from now on; meetings may be called off.
  constexpr std::array counts{"new", "completed", "withdrawn", "joined"};
  constexpr std::array reports{"mail", "meetings", "cards"};
  return source.is_object() && std::ranges::any_of(reports, [&](const char* name) {
           const auto report = source.find(name);
           return report != source.end() && report->is_object() &&
                  std::ranges::any_of(counts, [&](const char* count) { return isCounted(*report, count); });
         });
}

FolderToWatch folderIn(const Json& row) {
  const auto& names = row.at("names");
  return {row.at("path").get<std::string>(),
          names.is_null() ? std::nullopt : std::optional{names.get<std::set<std::string>>()}};
}

} // namespace

std::optional<SourcesReport> sourcesToldIn(std::string_view report) {
  try {
    const auto document = Json::parse(report);
    SourcesReport told{document.at("remembered").get<std::int64_t>(), {}};
    std::ranges::transform(document.at("folders"), std::back_inserter(told.folders), folderIn);
    return told;
  } catch (const Json::exception&) {
    return std::nullopt;
  }
}

RefreshNews newsToldIn(std::string_view report) {
  const auto document = Json::parse(report, nullptr, false);
  if (!document.is_object() || !document.contains("sources")) {
    return RefreshNews::unknown;
  }
  return std::ranges::any_of(document.at("sources"), tellsOfNews) ? RefreshNews::some : RefreshNews::none;
}

} // namespace orvan
