#include "OrvanPlatform/bus/bus_message.h"

#include <systemd/sd-bus.h>

#include "OrvanPlatform/bus/bus_error.h"
#include "OrvanPlatform/error.h"

namespace orvan {
namespace {

[[noreturn]] void throwMalformed(const char* attempt) {
  throw Error{BusError::malformed, attempt};
}

void requireWritten(int result) {
  if (result < 0) {
    throwMalformed("writing a message");
  }
}

/// How many bytes follow a character's first one; -1 when it begins none.
int followingBytes(unsigned char first) {
  if (first < 0x80) {
    return 0;
  }
  if (first >= 0xC2 && first <= 0xDF) {
    return 1;
  }
  if (first >= 0xE0 && first <= 0xEF) {
    return 2;
  }
  return first >= 0xF0 && first <= 0xF4 ? 3 : -1;
}

/// Whether a second byte keeps its character in the shortest form, no surrogate and below the last code point.
bool mayFollow(unsigned char first, unsigned char second) {
  switch (first) {
    case 0xE0:
      return second >= 0xA0;
    case 0xED:
      return second < 0xA0;
    case 0xF0:
      return second >= 0x90;
    case 0xF4:
      return second < 0x90;
    default:
      return true;
  }
}

bool beginsWithCharacter(std::string_view text, std::size_t length) {
  if (text.size() < length ||
      (length > 1 && !mayFollow(static_cast<unsigned char>(text[0]), static_cast<unsigned char>(text[1])))) {
    return false;
  }
  for (const char byte : text.substr(1, length - 1)) {
    if ((static_cast<unsigned char>(byte) & 0xC0U) != 0x80) {
      return false;
    }
  }
  return true;
}

bool canBeSent(std::string_view text) {
  while (!text.empty()) {
    const int following = followingBytes(static_cast<unsigned char>(text.front()));
    const auto length = static_cast<std::size_t>(following) + 1;
    if (text.front() == '\0' || following < 0 || !beginsWithCharacter(text, length)) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

} // namespace

BusWriter& BusWriter::text(std::string_view value) {
  if (!canBeSent(value)) {
    throwMalformed("writing a text");
  }
  const std::string terminated{value};
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_STRING, terminated.c_str()));
  return *this;
}

BusWriter& BusWriter::boolean(bool value) {
  const int number = value ? 1 : 0;
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_BOOLEAN, &number));
  return *this;
}

BusWriter& BusWriter::byte(std::uint8_t value) {
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_BYTE, &value));
  return *this;
}

BusWriter& BusWriter::int32(std::int32_t value) {
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_INT32, &value));
  return *this;
}

BusWriter& BusWriter::uint32(std::uint32_t value) {
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_UINT32, &value));
  return *this;
}

BusWriter& BusWriter::int64(std::int64_t value) {
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_INT64, &value));
  return *this;
}

BusWriter& BusWriter::real(double value) {
  requireWritten(sd_bus_message_append_basic(message_, SD_BUS_TYPE_DOUBLE, &value));
  return *this;
}

BusWriter& BusWriter::texts(std::span<const std::string> values) {
  return array("s", [&](BusWriter& writer) {
    for (const auto& value : values) {
      writer.text(value);
    }
  });
}

BusWriter& BusWriter::container(char kind, const char* types, const Contents& contents) {
  requireWritten(sd_bus_message_open_container(message_, kind, types));
  contents(*this);
  requireWritten(sd_bus_message_close_container(message_));
  return *this;
}

BusWriter& BusWriter::structure(const char* types, const Contents& members) {
  return container(SD_BUS_TYPE_STRUCT, types, members);
}

BusWriter& BusWriter::array(const char* elementType, const Contents& elements) {
  return container(SD_BUS_TYPE_ARRAY, elementType, elements);
}

BusWriter& BusWriter::variant(const char* type, const Contents& value) {
  return container(SD_BUS_TYPE_VARIANT, type, value);
}

BusWriter& BusWriter::entry(std::string_view key, const char* valueType, const Contents& value) {
  return container(SD_BUS_TYPE_DICT_ENTRY, "sv",
                   [&](BusWriter& writer) { writer.text(key).variant(valueType, value); });
}

void BusReader::basic(char type, void* value) {
  if (sd_bus_message_read_basic(message_, type, value) <= 0) {
    throwMalformed("reading a message");
  }
}

std::string BusReader::text() {
  const char* value = nullptr;
  basic(SD_BUS_TYPE_STRING, static_cast<void*>(&value));
  return value;
}

bool BusReader::boolean() {
  int value = 0;
  basic(SD_BUS_TYPE_BOOLEAN, &value);
  return value != 0;
}

std::uint8_t BusReader::byte() {
  std::uint8_t value = 0;
  basic(SD_BUS_TYPE_BYTE, &value);
  return value;
}

std::int32_t BusReader::int32() {
  std::int32_t value = 0;
  basic(SD_BUS_TYPE_INT32, &value);
  return value;
}

std::uint32_t BusReader::uint32() {
  std::uint32_t value = 0;
  basic(SD_BUS_TYPE_UINT32, &value);
  return value;
}

std::int64_t BusReader::int64() {
  std::int64_t value = 0;
  basic(SD_BUS_TYPE_INT64, &value);
  return value;
}

double BusReader::real() {
  double value = 0;
  basic(SD_BUS_TYPE_DOUBLE, &value);
  return value;
}

std::vector<std::string> BusReader::texts() {
  std::vector<std::string> values;
  array("s", [&] { values.push_back(text()); });
  return values;
}

/// False at the end of the container that holds it.
bool BusReader::enter(char kind, const char* types) {
  const int entered = sd_bus_message_enter_container(message_, kind, types);
  if (entered < 0) {
    throwMalformed("reading a message");
  }
  return entered > 0;
}

void BusReader::leave() {
  int end = sd_bus_message_at_end(message_, 0);
  while (end == 0) {
    if (sd_bus_message_skip(message_, nullptr) < 0) {
      throwMalformed("reading a message");
    }
    end = sd_bus_message_at_end(message_, 0);
  }
  if (end < 0 || sd_bus_message_exit_container(message_) < 0) {
    throwMalformed("reading a message");
  }
}

void BusReader::structure(const char* types, const std::function<void()>& members) {
  if (!enter(SD_BUS_TYPE_STRUCT, types)) {
    throwMalformed("reading a message");
  }
  members();
  leave();
}

void BusReader::array(const char* elementType, const std::function<void()>& element) {
  if (!enter(SD_BUS_TYPE_ARRAY, elementType)) {
    throwMalformed("reading a message");
  }
  while (sd_bus_message_at_end(message_, 0) == 0) {
    element();
  }
  leave();
}

void BusReader::entries(const std::function<void(const std::string& key, std::string_view type)>& value) {
  array("{sv}", [&] {
    enter(SD_BUS_TYPE_DICT_ENTRY, "sv");
    const std::string key = text();
    char kind = 0;
    const char* type = nullptr;
    if (sd_bus_message_peek_type(message_, &kind, &type) <= 0 || type == nullptr) {
      throwMalformed("reading a message");
    }
    const std::string valueType = type;
    enter(SD_BUS_TYPE_VARIANT, valueType.c_str());
    value(key, valueType);
    leave();
    leave();
  });
}

BusMessage::BusMessage(sd_bus_message* message) : message_(sd_bus_message_ref(message), sd_bus_message_unref) {}

std::string BusMessage::sender() const {
  const char* name = sd_bus_message_get_sender(message_.get());
  return name == nullptr ? "" : name;
}

} // namespace orvan
