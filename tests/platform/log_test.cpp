#include "OrvanPlatform/log.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>

namespace orvan {
namespace {

/// What `write` puts into the log, read back from the other end of a pipe.
template <typename Write>
std::string linesOf(Write write) {
  std::array<int, 2> ends{};
  EXPECT_EQ(pipe(ends.data()), 0);
  write(jsonLinesLogSink(ends[1]));
  close(ends[1]);
  std::array<char, 4096> buffer{};
  const auto length = read(ends[0], buffer.data(), buffer.size());
  close(ends[0]);
  return {buffer.data(), static_cast<std::size_t>(length)};
}

TEST(Log, WithoutAJournalALineIsOneJsonObjectOrLost) {
  const std::string lines = linesOf([](std::shared_ptr<LogSink> sink) {
    const LogChannel channel{std::move(sink), "test"};
    channel.write("a \"quoted\"\nevent", {{"field", "1"}});
    channel.write("bytes that are no text: \xff");
  });
  EXPECT_EQ(lines,
            "{\"subsystem\":\"org.orvan.Orvan\",\"category\":\"test\",\"level\":\"default\","
            "\"message\":\"a \\\"quoted\\\"\\nevent field=1\",\"field\":\"1\"}\n"
            "{\"subsystem\":\"org.orvan.Orvan\",\"category\":\"test\",\"level\":\"default\","
            "\"message\":\"bytes that are no text: \uFFFD\"}\n");
  EXPECT_NO_THROW((LogChannel{jsonLinesLogSink(-1), "test"}.write("a line that nobody takes is lost")));
}

} // namespace
} // namespace orvan
