#include <cstdlib>
#include <iostream>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "tests/support/disposition_samples.h"
#include "tests/support/test_store.h"

namespace orvan {
namespace {

/// Applies the actions of `count` numbered items from `first` on, acknowledging each by its number. With a rival action
/// each is followed by that action on the contested item of the same place, acknowledged with the state that holds.
void applyNumbered(const char* file, int first, int count, const std::string& rival) {
  AttentionDispositionStore store(file, CredentialVault{std::make_shared<KeyInMemory>()});
  const auto apply = [&store](const AttentionCatchUpItem& item, const AttentionItemAction& action) {
    return waitFor(store.executor(), store.apply(item, action, actionTime)).state();
  };
  for (int place = 0; place < count; ++place) {
    const int number = first + place;
    apply(numberedItem(number), numberedAction(number));
    std::cout << number;
    if (rival != "none") {
      const auto action = rival == "dismiss" ? AttentionItemAction::dismiss() : AttentionItemAction::resolve();
      std::cout << ' ' << caseName(apply(contestedItem(place), action).kind());
    }
    // Nothing is held back: what was not acknowledged when the process is killed never was.
    std::cout << std::endl;
  }
}

} // namespace
} // namespace orvan

/// disposition_writer FILE FIRST COUNT none|dismiss|resolve
int main(int count, char** arguments) {
  if (count != 5) {
    return 2;
  }
  try {
    orvan::deriveKeysQuickly();
    orvan::applyNumbered(arguments[1], std::stoi(arguments[2]), std::stoi(arguments[3]), arguments[4]);
    return EXIT_SUCCESS;
  } catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
