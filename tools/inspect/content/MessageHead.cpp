#include "content/MessageHead.h"

#include "base/Gunzip.h"
#include "base/Names.h"

namespace vyr::inspect {

namespace {

constexpr std::size_t k_beforeLength = 3;
constexpr std::size_t k_uriLength = 6;  // of an ATSC 3.0 message's payload

/// Width of the length, in bytes. Ids of the ranges for 16 and for 32 bits have those; of the others each
/// message has its own.
std::size_t LengthSize(unsigned id)
{
    switch (id) {
        case 0x0209:
        case 0x020B:
        case 0x020C:
            return 4;
        default:
            return id <= 0x0010 || id >= 0x7000 ? 4 : 2;
    }
}

void Mix(std::uint64_t& hash, SView bytes)
{
    hash = hash * 1099511628211u ^ ContentHash(bytes);
}

SView Uri(SView payload)
{
    return payload.From(k_uriLength + 1).First(payload[k_uriLength]);
}

void AddName(std::vector<unsigned>& kind, SView name)
{
    const std::uint64_t hash = ContentHash(name);
    kind.insert(kind.end(), {static_cast<unsigned>(hash >> 32), static_cast<unsigned>(hash)});
}

/// The package of an MP table that names one: the first part, or the whole.
void ReadMpt(SMessageHead& head)
{
    constexpr std::size_t k_idLength = 5;
    const SView table = head.payload;
    if (table.size > k_idLength && (table[0] == 0x11 || table[0] == 0x20)) {
        AddName(head.kind, table.From(k_idLength + 1).First(table[k_idLength]));
    }
}

void ReadAtsc3(SMessageHead& head)
{
    constexpr std::size_t k_type = 2;
    constexpr std::size_t k_version = 4;
    constexpr std::size_t k_compression = 5;
    if (head.payload.size <= k_version) {
        return;
    }
    head.kind.insert(head.kind.end(), {head.payload.Be16(0), head.payload.Be16(k_type)});
    head.versions.push_back(head.payload[k_version]);
    const std::optional<SView> content = Atsc3Content(head.payload);
    if (content) {
        AddName(head.kind, Uri(head.payload));
    }
    head.content = content.value_or(SView());
    head.hash = 0;
    Mix(head.hash, head.payload.First(k_version));
    // Of one that is not whole there is no telling the URI from the content.
    Mix(head.hash, content.value_or(head.payload.From(k_version + 1)));
    Mix(head.hash, content ? Uri(head.payload) : SView());
    head.hash = head.hash * 31 + (content ? head.payload[k_compression] : 0u);
}

/// False: the bytes end before the length does. Signed messages in signed ones are followed as deep as the
/// library does.
bool Read(SView bytes, int depth, SMessageHead& head)
{
    if (bytes.size < k_beforeLength) {
        return false;
    }
    head.id = bytes.Be16(0);
    head.version = bytes[2];
    const std::size_t lengthSize = LengthSize(head.id);
    if (bytes.size < k_beforeLength + lengthSize) {
        return false;
    }
    const std::size_t length = lengthSize == 4 ? bytes.Be32(k_beforeLength) : bytes.Be16(k_beforeLength);
    const SView behind = bytes.From(k_beforeLength + lengthSize);
    head.payload = behind.First(length);
    head.whole = behind.size >= length;
    head.trailing = behind.From(length);
    head.kind = {head.id};
    head.versions = {head.version};
    head.hash = ContentHash(head.payload);
    if (head.id >= 0x0011 && head.id <= 0x0020) {
        ReadMpt(head);
    } else if (head.id == k_atsc3Message) {
        ReadAtsc3(head);
    } else if (head.id == k_signedMessage && depth < 4 && head.payload.size >= 6) {
        SMessageHead wrapped;
        if (Read(head.payload.From(6).First(head.payload.Be32(2)), depth + 1, wrapped)) {
            head.kind.push_back(head.payload.Be16(0));
            head.kind.insert(head.kind.end(), wrapped.kind.begin(), wrapped.kind.end());
            head.versions.insert(head.versions.end(), wrapped.versions.begin(), wrapped.versions.end());
            head.hash = wrapped.hash;
            head.content = wrapped.content;
        }
    }
    return true;
}

}  // namespace

bool ReadMessageHead(SView bytes, SMessageHead& head)
{
    return Read(bytes, 1, head);
}

std::optional<SView> Atsc3Content(SView payload)
{
    if (payload.size <= k_uriLength) {
        return std::nullopt;
    }
    const std::size_t at = k_uriLength + 1 + payload[k_uriLength];
    if (payload.size < at + 4 || payload.size - at - 4 < payload.Be32(at)) {
        return std::nullopt;
    }
    return payload.From(at + 4).First(payload.Be32(at));
}

bool IsMessageFile(SView bytes)
{
    constexpr std::size_t k_padding = 16;
    SMessageHead head;
    if (!ReadMessageHead(bytes, head) || !head.whole || MessageName(head.id) == nullptr) {
        return false;
    }
    const bool maybeTable = head.id >> 8 == 2;
    return head.trailing.size <= (maybeTable ? 0 : k_padding);
}

}  // namespace vyr::inspect
