#include "application/desktop/own_addresses_model.h"

#include <QVariantMap>
#include <utility>

#include "OrvanPlatform/internet_date_time.h"
#include "application/desktop/wording.h"
#include "application/import/address/normal_address.h"
#include "application/import/ledger/own_addresses.h"
#include "application/session/own_address_change.h"

namespace orvan {
namespace {

struct Adding {
  std::vector<AddedOwnAddress> added;
  bool isReadAgain;
};

Adding addIn(Session& session, const std::string& address, Instant now) {
  return session.writableStore().write([&](Connection& connection) {
    return Adding{addOwnAddresses({address}, formatInternetDateTime(now), connection), isAnythingRead(connection)};
  });
}

struct Removal {
  /// It was removed meanwhile, or is the only one.
  bool isRefused = false;
  GivenUp givenUp = GivenUp::asItWas;
  std::optional<AddressHolder> holder = std::nullopt;
};

Removal removeIn(Session& session, const std::string& address, Instant now) {
  return session.writableStore().write([&](Connection& connection) {
    const auto known = ownAddresses(connection);
    const bool isKnown = std::ranges::find(known, address, &OwnAddress::address) != known.end();
    if (!isKnown || known.size() == 1) {
      return Removal{.isRefused = true};
    }
    const auto givenUp = giveUpOwnAddress(address, formatInternetDateTime(now), connection);
    return Removal{.givenUp = givenUp, .holder = holderOfAddress(address, connection)};
  });
}

} // namespace

Task<void> OwnAddressesModel::refresh() {
  const auto known =
      co_await tools().store.ask([](Session& session) { return session.readableStore().read(ownAddresses); });
  QVariantList addresses;
  for (const auto& own : known) {
    const bool isUnused = own.hasMail.has_value() && !*own.hasMail;
    addresses.push_back(QVariantMap{
        {"address", displayText(own.address)},
        {"detail", isUnused ? tr("No mail that was read names it") : QString{}},
    });
  }
  if (std::exchange(addresses_, addresses) != addresses) {
    Q_EMIT changed();
  }
  if (addresses.isEmpty()) {
    setGlance(tr("None is known"));
  } else {
    setGlance(addresses.size() == 1 ? tr("1 address") : tr("%1 addresses").arg(addresses.size()));
  }
}

void OwnAddressesModel::add(const QString& address) {
  if (address.trimmed().isEmpty()) {
    return;
  }
  if (auto normal = normalAddress(address.toStdString())) {
    begin(addNormal(*std::move(normal)));
  } else {
    refuse(tr("That is no mail address. One looks like robin@example.org."));
  }
}

Task<void> OwnAddressesModel::addNormal(std::string address) {
  const auto adding = co_await tools().store.ask(
      [address, now = tools().now()](Session& session) { return addIn(session, address, now); });
  if (adding.added.empty()) {
    say(tr("%1 is known as yours already.").arg(displayText(address)));
    co_return;
  }
  auto told = tr("%1 is yours now.").arg(displayText(address));
  if (const auto& holder = adding.added.front().takenFrom) {
    const auto name = displayText(holder->displayName);
    told += u' ' + (holder->hasOthers ? tr("It was taken for %1's, whose other addresses stay theirs.").arg(name)
                                      : tr("It was taken for %1, who is nobody else any more.").arg(name));
  }
  if (adding.isReadAgain) {
    told += u' ' + tr("Mail and calendars are read again from their beginning.");
  }
  say(told);
  co_await refresh();
  Q_EMIT storeChanged();
  if (adding.isReadAgain) {
    Q_EMIT mustBeReadAgain();
  }
}

void OwnAddressesModel::remove(const QString& address) {
  if (addresses_.size() == 1) {
    refuse(
        tr("That is the only address known as yours, and without any there is no telling your mail from others'. Add "
           "another first."));
    return;
  }
  begin(removeNormal(address.toStdString()));
}

Task<void> OwnAddressesModel::removeNormal(std::string address) {
  const auto removal = co_await tools().store.ask(
      [address, now = tools().now()](Session& session) { return removeIn(session, address, now); });
  co_await refresh();
  if (removal.isRefused) {
    co_return;
  }
  auto told = tr("%1 is not yours any more.").arg(displayText(address));
  if (removal.holder) {
    told += u' ' + tr("It is %1's again.").arg(displayText(removal.holder->displayName));
  }
  if (removal.givenUp == GivenUp::toBeReadAgain) {
    told += u' ' + tr("Mail and calendars are read again from their beginning. Until that is done, what "
                      "was read while it was yours stays as it is.");
  }
  say(told);
  Q_EMIT storeChanged();
  if (removal.givenUp == GivenUp::toBeReadAgain) {
    Q_EMIT mustBeReadAgain();
  }
}

} // namespace orvan
