#include "application/desktop/single_instance.h"

#include <QCryptographicHash>
#include <chrono>
#include <system_error>

namespace orvan {
namespace {

constexpr auto windowPath = "/org/orvan/Window";
constexpr auto interfaceName = "org.orvan.Window1";

/// A name for each store, which does not tell where that lies.
std::string busNameFor(const std::filesystem::path& store) {
  std::error_code fault;
  const auto real = std::filesystem::weakly_canonical(store, fault);
  const auto text = QByteArray::fromStdString((fault ? store : real).string());
  constexpr int digits = 12;
  return "org.orvan.Window.store_" +
         QCryptographicHash::hash(text, QCryptographicHash::Sha256).toHex().left(digits).toStdString();
}

} // namespace

SingleInstance::SingleInstance(BusConnection& bus, const std::filesystem::path& store)
    : bus_(bus), name_(busNameFor(store)) {
  BusInterface window(interfaceName);
  window.method("Show", "ss", "", [this](BusCall call) {
    auto arguments = call.arguments();
    Wish wish;
    wish.person = arguments.text();
    wish.activationToken = arguments.text();
    call.answer();
    if (onShow_) {
      onShow_(wish);
    }
  });
  exported_ = bus_.exportInterface(windowPath, std::move(window));
}

void SingleInstance::claim(const Wish& wish, std::function<void(Claim)> answer) {
  bus_.requestName(name_, [this, wish, answer = std::move(answer)](std::expected<NameRequest, BusFailure> request) {
    // A bus that gives no names does not keep the user from their window.
    if (!request || *request == NameRequest::owned) {
      answer(Claim::first);
    } else {
      handOver(wish, answer);
    }
  });
}

void SingleInstance::handOver(const Wish& wish, const std::function<void(Claim)>& answer) {
  using namespace std::chrono_literals;
  bus_.call(
      {name_, windowPath, interfaceName}, "Show",
      [&wish](BusWriter& writer) { writer.text(wish.person).text(wish.activationToken); }, 5s,
      [answer](const BusAnswer& shown) { answer(shown ? Claim::handedOver : Claim::notAnswered); });
}

} // namespace orvan
