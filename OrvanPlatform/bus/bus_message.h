#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct sd_bus_message;

namespace orvan {

/// Puts values into a message that is to be sent, in their order. The name of each operation is the value's D-Bus type:
/// text "s", boolean "b", byte "y", int32 "i", uint32 "u", int64 "x", real "d", texts "as". What holds other values
/// takes a function that writes them.
///
/// Lives as long as the call that hands it out. Throws Error with BusError::malformed for text that is not UTF-8 or
/// holds a zero byte (a bus ends the connection of whoever sends such), and for values where the type forbids them.
class BusWriter {
 public:
  using Contents = std::function<void(BusWriter&)>;

  explicit BusWriter(sd_bus_message* message) noexcept : message_(message) {}

  BusWriter& text(std::string_view value);
  BusWriter& boolean(bool value);
  BusWriter& byte(std::uint8_t value);
  BusWriter& int32(std::int32_t value);
  BusWriter& uint32(std::uint32_t value);
  BusWriter& int64(std::int64_t value);
  BusWriter& real(double value);
  BusWriter& texts(std::span<const std::string> values);

  /// `types` are those of the members: structure("sx", …) writes "(sx)".
  BusWriter& structure(const char* types, const Contents& members);
  /// `elementType` is one complete type: array("{sv}", …) writes "a{sv}".
  BusWriter& array(const char* elementType, const Contents& elements);
  /// One entry of an array of "{sv}".
  BusWriter& entry(std::string_view key, const char* valueType, const Contents& value);
  BusWriter& variant(const char* type, const Contents& value);

 private:
  BusWriter& container(char kind, const char* types, const Contents& contents);

  sd_bus_message* message_;
};

/// Takes the values out of a message that has come, in their order. Operations are named as those of BusWriter.
///
/// Must not outlive its message. Throws Error with BusError::malformed when the next value is of another type or there
/// is none; the rest of the message then is not to be read.
class BusReader {
 public:
  explicit BusReader(sd_bus_message* message) noexcept : message_(message) {}

  std::string text();
  bool boolean();
  std::uint8_t byte();
  std::int32_t int32();
  std::uint32_t uint32();
  std::int64_t int64();
  double real();
  std::vector<std::string> texts();

  /// Members that are not read are passed over.
  void structure(const char* types, const std::function<void()>& members);
  /// Calls `element` once for each element, which is to read it.
  void array(const char* elementType, const std::function<void()>& element);
  /// For each entry of "a{sv}": `value` is called with the key and the type of the value ("s", "as", …), and reads it
  /// or leaves it.
  void entries(const std::function<void(const std::string& key, std::string_view type)>& value);

 private:
  void basic(char type, void* value);
  bool enter(char kind, const char* types);
  void leave();

  sd_bus_message* message_;
};

/// A message that has come. Copies share it. Belongs to the thread of its connection.
class BusMessage {
 public:
  /// Takes a share in `message`.
  explicit BusMessage(sd_bus_message* message);

  /// Where reading goes on; a message is read once.
  BusReader reader() const noexcept { return BusReader{message_.get()}; }
  sd_bus_message* handle() const noexcept { return message_.get(); }
  /// The unique name of who sent it ("" for what the connection itself made up).
  std::string sender() const;

 private:
  std::shared_ptr<sd_bus_message> message_;
};

} // namespace orvan
