#include "application/cli/showing.h"

#include <unistd.h>

#include "application/session/shown_items.h"

namespace orvan {
namespace {

/// Scripts see nothing.
bool isSeen(const CommandContext& context) {
  return context.output == OutputForm::human && isatty(STDOUT_FILENO) != 0;
}

} // namespace

void openToShow(const CommandContext& context) {
  if (isSeen(context)) {
    context.session.openForShowing();
  } else {
    context.session.openForReading();
  }
}

void noteShown(const CommandContext& context, std::span<const AttentionCatchUpItem> items) {
  if (isSeen(context)) {
    rememberShown(items, context.asOf, context.session);
  }
}

} // namespace orvan
