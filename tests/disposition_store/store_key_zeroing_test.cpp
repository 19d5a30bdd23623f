#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <new>
#include <string_view>

#include "OrvanRelationshipAttention/disposition_store/attention_disposition_store.h"
#include "OrvanRelationshipAttention/evidence/attention_evidence_compiler.h"
#include "tests/support/test_store.h"

namespace {

/// So many of the test key's bytes in a row that nothing else looks alike.
constexpr std::string_view trace = "\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7\7";
constexpr unsigned char keyByte = 7;

std::atomic<int> tracesFreed = 0;

void examineAndFree(void* block) noexcept {
  if (block != nullptr && memmem(block, malloc_usable_size(block), trace.data(), trace.size()) != nullptr) {
    ++tracesFreed;
  }
  std::free(block);
}

} // namespace

// Every block that C++ code gives back is looked through first.
void* operator new(std::size_t size) {
  // calloc, so that a block does not show what its memory held before.
  void* const block = std::calloc(1, size == 0 ? 1 : size);
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  return block;
}
void operator delete(void* block) noexcept {
  examineAndFree(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
  examineAndFree(block);
}

namespace orvan {
namespace {

class StoreKey : public testing::Test {
 protected:
  static void SetUpTestSuite() { deriveKeysQuickly(); }

  void SetUp() override {
    createStore(file());
    tracesFreed = 0;
  }

  std::filesystem::path file() const { return folder_.path() / "store.db"; }

  /// Opens the store for writing and for reading; tells how many of the two succeeded.
  int open(std::size_t keyLength) const {
    const CredentialVault vault{std::make_shared<KeyInMemory>(keyLength, keyByte)};
    const auto writing = faultOf([&] {
      AttentionDispositionStore store(file(), vault);
      waitFor(store.executor(), store.records("p-1"));
    });
    const auto reading = faultOf([&] {
      AttentionEvidenceCompiler compiler(file(), vault, nullptr, AttentionEvidenceCompilerOptions::defaults);
      waitFor(compiler.executor(), compiler.compile("p-1", Instant{}));
    });
    return (writing ? 0 : 1) + (reading ? 0 : 1);
  }

 private:
  ScratchFolder folder_;
};

TEST_F(StoreKey, WouldBeFoundInABlockThatWasNotZeroed) {
  void* const forgotten = ::operator new(32);
  std::memset(forgotten, keyByte, 32);
  ::operator delete(forgotten);
  EXPECT_EQ(tracesFreed, 1);
}

TEST_F(StoreKey, IsInNoBlockThatIsGivenBackWhetherOrNotItOpensTheStore) {
  EXPECT_EQ(open(32), 2);
  for (const std::size_t length : {16U, 31U, 33U}) {
    EXPECT_EQ(open(length), 0);
  }
  std::ofstream(file()) << std::string(8192, 'x');
  EXPECT_EQ(open(32), 0);
  EXPECT_EQ(tracesFreed, 0);
}

} // namespace
} // namespace orvan
