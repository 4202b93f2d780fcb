#pragma once
// Name-based UUIDs (RFC 4122, version 5: SHA-1 of a namespace and a name), so
// that every GUID of the type library follows from a stable name and stays the
// same from one build to the next. A host that registered one build keeps
// working with the next; a GUID changes only when the name it stands for does.
//
// SHA-1 is here only for that purpose; it is no guard against anyone who
// chooses names to collide.
#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vantor::server {

struct Uuid {
  // In network order, as RFC 4122 lays out the fields.
  std::array<uint8_t, 16> bytes{};

  // "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx" in lower case.
  std::string Text() const;
  // The text form, in either case, with or without braces; nothing for any
  // other text.
  static std::optional<Uuid> Parse(std::string_view text);
  int Version() const { return bytes[6] >> 4; }
  bool operator==(const Uuid&) const = default;
};

class Sha1 {
 public:
  static constexpr size_t kDigestSize = 20;
  using Digest = std::array<uint8_t, kDigestSize>;

  Sha1();
  void Update(std::span<const uint8_t> data);
  void Update(std::string_view data);
  // The digest of everything given; the object starts over afterwards.
  Digest Final();

  static Digest Of(std::string_view data);

 private:
  void Block(const uint8_t* block);
  void Reset();

  std::array<uint32_t, 5> h_{};
  std::array<uint8_t, 64> buffer_{};
  size_t buffered_ = 0;
  uint64_t length_ = 0;  // in bytes
};

// The version 5 UUID of a name in a namespace; the name is taken as its UTF-8
// bytes.
Uuid NameUuid(const Uuid& space, std::string_view name);

// The namespace all of the type library's names live in. Fixed for good:
// changing it would change every GUID the library has ever registered.
Uuid LibraryNamespace();

// The GUID of one entry of the type library, named "library:Vantor2014",
// "class:USButton", "interface:_USButton", "enum:ENUM_THEME", "record:X".
Uuid TypeLibGuid(std::string_view kind, std::string_view name);

}  // namespace vantor::server
