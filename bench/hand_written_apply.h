#pragma once

#include <sqlite3.h>

#include <array>
#include <filesystem>
#include <string_view>

namespace orvan {

/// What one apply() has to do to the store at the least: its statements, compiled once, with nothing around them. The
/// measure that the disposition store is held against.
class HandWrittenApply {
 public:
  explicit HandWrittenApply(const std::filesystem::path& file);
  ~HandWrittenApply();
  HandWrittenApply(const HandWrittenApply&) = delete;
  HandWrittenApply& operator=(const HandWrittenApply&) = delete;

  struct Reference {
    std::string_view kind;
    std::string_view identifier;
  };
  struct Row {
    std::string_view itemKey;
    std::string_view personKey;
    std::array<Reference, 3> references;
  };

  /// Dismisses the row's item for the first time.
  void dismiss(const Row& row);

 private:
  enum Step { begin, select, candidate, evidence, disposition, commit, stepCount };

  void bind(Step step, int position, std::string_view text);
  void run(Step step);

  sqlite3* handle_ = nullptr;
  std::array<sqlite3_stmt*, stepCount> statements_{};
};

} // namespace orvan
