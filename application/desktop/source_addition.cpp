#include "application/desktop/source_addition.h"

#include <QCoreApplication>
#include <algorithm>

#include "application/desktop/wording.h"
#include "application/desktop/written_path.h"
#include "application/sources/remembered_source.h"

namespace orvan {
namespace {

struct AdditionWords {
  Q_DECLARE_TR_FUNCTIONS(AdditionWords)
};

} // namespace

std::vector<SourceAddition> addSources(const std::vector<RecognizedSource>& sources, Instant now,
                                       Connection& connection) {
  std::vector<SourceAddition> additions;
  additions.reserve(sources.size());
  for (const auto& source : sources) {
    const auto result = addSource(source, usualUsualInterval, now, connection);
    const auto known = rememberedSources(connection);
    const auto other = std::ranges::find(known, result.number, &RememberedSource::number);
    additions.push_back({source, result.outcome, other->path});
  }
  return additions;
}

QString inWords(const SourceAddition& addition) {
  const auto kind = inWords(addition.source.kind);
  const auto path = shownPath(addition.source.path);
  switch (addition.outcome) {
    case AddedSource::Outcome::added:
      return AdditionWords::tr("Added: %1 in %2.", "the kind of a source and its path").arg(kind, path);
    case AddedSource::Outcome::known:
      return AdditionWords::tr("%1 is on the list already.").arg(path);
    case AddedSource::Outcome::refused:
      break;
  }
  const bool isWithin = addition.other.native().size() < addition.source.path.native().size();
  return isWithin ? AdditionWords::tr("%1 lies inside %2, which is read already.").arg(path, shownPath(addition.other))
                  : AdditionWords::tr("%2 lies inside %1. Remove that first.").arg(path, shownPath(addition.other));
}

} // namespace orvan
