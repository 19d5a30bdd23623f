#pragma once

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "bench/evidence_floor.h"
#include "tests/support/connection_watch.h"

namespace orvan::bench {

/// The library's compiler on a generated store, with its connection in sight.
class LibrarySide {
 public:
  LibrarySide(const std::filesystem::path& file, const std::vector<std::string>& personKeys);

  AttentionEvidenceBundle compile(const std::string& personKey);
  std::vector<AttentionEvidenceBundle> compileAll();
  sqlite3* handle() const noexcept { return handle_; }

 private:
  ConnectionWatch watch_;
  AttentionEvidenceCompiler compiler_;
  sqlite3* handle_;
};

/// The floor under it, with the same people.
class FloorSide {
 public:
  FloorSide(const std::filesystem::path& file, std::vector<std::string> personKeys,
            const EvidenceFloor::Statements& statements)
      : floor_(file, statements), personKeys_(std::move(personKeys)) {}

  std::vector<AttentionEvidenceBundle> compileAll();
  sqlite3* handle() const noexcept { return floor_.handle(); }

 private:
  EvidenceFloor floor_;
  std::vector<std::string> personKeys_;
};

/// The statements that the library runs for `personKey`, who must have been seen in an account.
EvidenceFloor::Statements statementsOf(LibrarySide& library, const std::string& personKey);

/// How many pages a connection has had to read and decrypt since it was opened.
std::int64_t pageMisses(sqlite3* connection);

/// How many steps SQLite's virtual machine took for a connection's statements since this was asked last.
std::int64_t takeMachineSteps(sqlite3* connection);

} // namespace orvan::bench
