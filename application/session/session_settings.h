#pragma once

#include <cstdint>
#include <filesystem>

#include "OrvanRelationshipAttention/evidence/values/attention_evidence_compiler_options.h"

namespace orvan {

/// Where the user's store and key are, and how many people are looked at.
struct SessionSettings {
  std::filesystem::path store;
  std::filesystem::path keyFile;
  /// How many of the people who can have a reason, the most worthwhile first.
  std::int64_t peopleCap = AttentionEvidenceCompilerOptions::defaults.maxPeopleGlobalCap();

  /// The shipped settings: in the folder "orvan" below the user's data folder. Reads the environment, so nothing may
  /// change that at the same time.
  static SessionSettings defaults();

  /// Throws Error with ApplicationStoreError::folderNotPrivate when others can look into the store's folder and it is
  /// the shipped one. Of another folder that is the user's own affair.
  void requirePrivateFolder() const;
};

} // namespace orvan
