#include "application/import/mail/machine_lines.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "application/import/mail/text_search.h"

namespace orvan {
namespace {

constexpr std::array patchBeginnings{"diff --git ", "diff -", "RCS file: ", "retrieving revision "};
constexpr std::array codeBeginnings{"//",          "/*",      "#include",    "#define",     "#!",     "SELECT ",
                                    "INSERT INTO", "UPDATE ", "DELETE FROM", "CREATE ",     "WHERE ", "VALUES ",
                                    "ALTER ",      "File \"", "Traceback (", "Caused by: ", "[ERROR", "[WARN",
                                    "[INFO",       "[DEBUG",  "ERROR:"};

/// Whether `line` begins as `pattern` says: "9" stands for a digit, "a" for an ASCII letter, other bytes for
/// themselves.
bool beginsLike(std::string_view line, std::string_view pattern) noexcept {
  return line.size() >= pattern.size() &&
         std::ranges::equal(pattern, line.substr(0, pattern.size()), [](char kind, char byte) {
           const auto lower = static_cast<char>(byte | 0x20);
           return kind == '9' ? isDigit(byte) : kind == 'a' ? lower >= 'a' && lower <= 'z' : kind == byte;
         });
}

/// "@@ -1,2 +3,4 @@"
bool isHunkHead(std::string_view line) noexcept {
  return beginsLike(line, "@@ -9") && line.substr(5).contains(" @@");
}

/// "application/main.cpp | 12 ++++--"
bool isChangedFile(std::string_view line) noexcept {
  const auto bar = line.rfind(" | ");
  if (bar == std::string_view::npos || line.substr(0, bar).find_last_not_of(' ') == std::string_view::npos) {
    return false;
  }
  const auto change = line.substr(bar + 3);
  const auto count = change.find_first_not_of(' ');
  return count != std::string_view::npos &&
         (change.substr(count).starts_with("Bin ") ||
          (isDigit(change[count]) && change.find_first_not_of(" 0123456789+-") == std::string_view::npos &&
           change.find_first_of("+-") != std::string_view::npos));
}

/// "commit 8d33a85212af..." and nothing else
bool isCommit(std::string_view line) noexcept {
  constexpr std::string_view label = "commit ";
  constexpr std::size_t shortestHash = 7;
  return line.starts_with(label) && line.size() >= label.size() + shortestHash &&
         line.find_first_not_of("0123456789abcdef", label.size()) == std::string_view::npos;
}

/// A moment to the second, as logs and exported chats begin their entries.
bool beginsWithLogTime(std::string_view line) noexcept {
  constexpr std::array times{"9999-99-99 99:99:99",
                             "9999-99-99T99:99:99",
                             "99:99:99",
                             "[99:99",
                             "[9999-99-",
                             "[99.99.",
                             "[99/99/",
                             "aaa 99 99:99:99",
                             "aaa  9 99:99:99",
                             "99.99.99, 99:99 - ",
                             "99.99.9999, 99:99 - ",
                             "99/99/9999, 99:99 - "};
  return std::ranges::any_of(times, [line](const char* time) { return beginsLike(line, time); });
}

bool isCodeSymbol(char byte) noexcept {
  return std::string_view{"{}[]()=<>&|;"}.contains(byte);
}

/// A statement or a brace. Lists of people's also end in ";", but not their words between two of such signs.
bool endsAsCode(std::string_view line) noexcept {
  constexpr std::ptrdiff_t mostBlanks = 9;
  const char last = line.back();
  return (last == ';' || last == '{' || last == '}') && std::ranges::count(line, ' ') <= mostBlanks &&
         std::ranges::count_if(line, isCodeSymbol) >= 2;
}

} // namespace

bool beginsPatch(TextLines lines) {
  const auto line = lines.front();
  const auto next = lines.size() > 1 ? lines[1] : std::string_view{};
  return startsWithOneOf(line, patchBeginnings) || isHunkHead(line) || isChangedFile(line) || isCommit(line) ||
         (line.starts_with("--- ") && next.starts_with("+++ ")) ||
         (line.starts_with("*** ") && next.starts_with("--- ")) ||
         (line.starts_with("Index: ") && next.starts_with("===="));
}

bool isMachineLine(std::string_view line) {
  return !line.empty() &&
         (startsWithOneOf(line, codeBeginnings) || beginsLike(line, "$ a") || beginsWithLogTime(line) ||
          endsAsCode(line) || (line.starts_with("at ") && line.ends_with(')') && line.contains(".java:")));
}

} // namespace orvan
