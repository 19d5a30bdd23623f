#pragma once

#include <cstdint>

namespace orvan {

/// The windows and caps of compilation. A day is 86400 seconds. Nothing is validated here, and callers must not pass a
/// negative cap: a negative number of people or of resumed interactions ends the program where it is used, and a
/// negative row limit means no limit.
class AttentionEvidenceCompilerOptions {
 public:
  constexpr AttentionEvidenceCompilerOptions(std::int64_t upcomingInteractionWindowDays,
                                             std::int64_t quietPeriodThresholdDays, std::int64_t recentWindowDays,
                                             std::int64_t maxOpenThreadsPerPerson,
                                             std::int64_t maxUpcomingInteractionsPerPerson,
                                             std::int64_t maxCommitmentsPerPerson,
                                             std::int64_t maxResumedInteractionIDsPerBundle,
                                             std::int64_t maxPeopleGlobalCap) noexcept
      : upcomingInteractionWindowDays_(upcomingInteractionWindowDays),
        quietPeriodThresholdDays_(quietPeriodThresholdDays),
        recentWindowDays_(recentWindowDays),
        maxOpenThreadsPerPerson_(maxOpenThreadsPerPerson),
        maxUpcomingInteractionsPerPerson_(maxUpcomingInteractionsPerPerson),
        maxCommitmentsPerPerson_(maxCommitmentsPerPerson),
        maxResumedInteractionIDsPerBundle_(maxResumedInteractionIDsPerBundle),
        maxPeopleGlobalCap_(maxPeopleGlobalCap) {}

  /// The shipped settings.
  static const AttentionEvidenceCompilerOptions defaults;

  /// How far ahead a meeting counts as upcoming.
  constexpr std::int64_t upcomingInteractionWindowDays() const noexcept { return upcomingInteractionWindowDays_; }
  /// The shortest gap between two consecutive interactions that counts as a quiet period.
  constexpr std::int64_t quietPeriodThresholdDays() const noexcept { return quietPeriodThresholdDays_; }
  /// How long ago a resumption of contact may be, and the span in which user corrections are counted.
  constexpr std::int64_t recentWindowDays() const noexcept { return recentWindowDays_; }
  constexpr std::int64_t maxOpenThreadsPerPerson() const noexcept { return maxOpenThreadsPerPerson_; }
  constexpr std::int64_t maxUpcomingInteractionsPerPerson() const noexcept { return maxUpcomingInteractionsPerPerson_; }
  constexpr std::int64_t maxCommitmentsPerPerson() const noexcept { return maxCommitmentsPerPerson_; }
  constexpr std::int64_t maxResumedInteractionIDsPerBundle() const noexcept {
    return maxResumedInteractionIDsPerBundle_;
  }
  /// How many people a compilation of everyone looks at, whether or not they turn out to have evidence.
  constexpr std::int64_t maxPeopleGlobalCap() const noexcept { return maxPeopleGlobalCap_; }

 private:
  std::int64_t upcomingInteractionWindowDays_;
  std::int64_t quietPeriodThresholdDays_;
  std::int64_t recentWindowDays_;
  std::int64_t maxOpenThreadsPerPerson_;
  std::int64_t maxUpcomingInteractionsPerPerson_;
  std::int64_t maxCommitmentsPerPerson_;
  std::int64_t maxResumedInteractionIDsPerBundle_;
  std::int64_t maxPeopleGlobalCap_;
};

// clang-format off
inline constexpr AttentionEvidenceCompilerOptions AttentionEvidenceCompilerOptions::defaults{
    /*upcomingInteractionWindowDays=*/14,
    /*quietPeriodThresholdDays=*/21,
    /*recentWindowDays=*/30,
    /*maxOpenThreadsPerPerson=*/5,
    /*maxUpcomingInteractionsPerPerson=*/5,
    /*maxCommitmentsPerPerson=*/5,
    /*maxResumedInteractionIDsPerBundle=*/5,
    /*maxPeopleGlobalCap=*/200};
// clang-format on

} // namespace orvan
