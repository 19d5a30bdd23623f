#include "OrvanSpineCore/internal/store_terms.h"

#include <array>

namespace orvan::internal {
namespace {

constexpr std::array reading{
    "PRAGMA cipher_page_size = 4096",
    "PRAGMA busy_timeout = 5000",
    "PRAGMA query_only = 1",
};

constexpr std::array writing{
    "PRAGMA cipher_page_size = 4096", "PRAGMA foreign_keys = ON",   "PRAGMA journal_mode = WAL",
    "PRAGMA synchronous = FULL",      "PRAGMA temp_store = MEMORY", "PRAGMA wal_autocheckpoint = 0",
    "PRAGMA mmap_size = 0",           "PRAGMA secure_delete = ON",  "PRAGMA busy_timeout = 5000",
};

/// The two classes of the library open stores of whatever origin: they ask no more than they must.
constexpr StoreTerms compiler{
    OpenMode::readOnly, reading, FileDemand::encrypted, SchemaDemand::none, StorePool::relationshipAttention, true};
constexpr StoreTerms dispositions{OpenMode::readWriteCreate,        writing, FileDemand::encrypted, SchemaDemand::none,
                                  StorePool::relationshipAttention, false};
constexpr StoreTerms reader{OpenMode::readOnly,    reading, FileDemand::regular, SchemaDemand::none,
                            StorePool::projection, true};
constexpr StoreTerms writer{OpenMode::readWrite, writing, FileDemand::regular, SchemaDemand::none,
                            StorePool::actions,  true};
constexpr StoreTerms ownReader{OpenMode::readOnly,     reading, FileDemand::isPrivate, SchemaDemand::newest,
                               StorePool::application, true};
constexpr StoreTerms ownWriter{OpenMode::readWrite,    writing, FileDemand::isPrivate, SchemaDemand::newest,
                               StorePool::application, true};
constexpr StoreTerms ownMover{OpenMode::readWrite,    writing, FileDemand::isPrivate, SchemaDemand::notNewer,
                              StorePool::maintenance, true};

} // namespace

const StoreTerms& termsOf(StoreRole role) noexcept {
  switch (role) {
    case StoreRole::evidenceCompiler:
      return compiler;
    case StoreRole::dispositionStore:
      return dispositions;
    case StoreRole::programReader:
      return reader;
    case StoreRole::programWriter:
      return writer;
    case StoreRole::applicationReader:
      return ownReader;
    case StoreRole::applicationWriter:
      return ownWriter;
    case StoreRole::applicationMover:
      return ownMover;
  }
  return compiler;
}

} // namespace orvan::internal
