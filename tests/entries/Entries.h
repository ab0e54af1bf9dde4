#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/ChannelMap.h"
#include "common/Parse.h"
#include "support/Seed.h"

// Every kind of entry of the library, with an input that it takes, for tests of what holds for all of them.
// Nothing here allocates while it creates, parses or destroys, but what the library does.

/// An object, and what is done with it.
struct SEntry {
    std::function<bool()> create;
    std::function<bool()> parse;
    std::function<std::string()> digest;  ///< of what was parsed, however often; "": what it logs is the digest
    std::function<void()> destroy;
    /// Whether a parse that says true may have lost something, as that of a table does by its description.
    bool mayLose;
};

struct SEntryKind {
    std::string name;
    std::function<SEntry()> make;
    std::function<SEntry(const std::string& bytes)> makeOf;  ///< of other bytes, whatever they are
};

using TEntryKinds = std::vector<SEntryKind>;

TEntryKinds LlsEntries();
TEntryKinds RouteEntries();
TEntryKinds MmtEntries();
TEntryKinds GuideEntries();
TEntryKinds StoreEntries();

/// A kind of entry on objects of T, whose input is the seed of this name from byte `skip` on.
template <class T>
SEntryKind EntryKind(const std::string& seed, std::size_t skip, bool (*create)(T&, const std::string&),
                     bool (*parse)(T&, std::string&), std::string (*digest)(const T&), bool mayLose = false)
{
    const auto makeOf = [=](const std::string& bytes) {
        const auto object = std::make_shared<T>();
        const auto input = std::make_shared<std::string>(bytes);
        return SEntry{[=] { return create(*object, *input); }, [=] { return parse(*object, *input); },
                      [=] { return digest(*object); }, [=] { object->Destroy(); }, mayLose};
    };
    return {seed, [=] { return makeOf(Seed(seed, skip)); }, makeOf};
}

template <class T>
bool CreatePlainly(T& object, const std::string& /*input*/)
{
    return object.Create();
}

inline bool FeedItem(IParse& parser, const std::string& bytes)
{
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    IParse::SItem item = {reinterpret_cast<const unsigned char*>(bytes.data()), size, size * 8, 0, true};
    return parser.Parse(&item);
}

template <class T>
bool ParseDocument(T& parser, std::string& text)
{
    return parser.Parse(text.data(), static_cast<unsigned int>(text.size()));
}

/// A parser of XML documents.
template <class T>
SEntryKind DocumentKind(const std::string& seed, std::size_t skip, std::string (*digest)(const T&),
                        bool (*create)(T&, const std::string&) = CreatePlainly<T>)
{
    return EntryKind<T>(seed, skip, create, ParseDocument<T>, digest);
}

/// What a map tells of each of its services, in lines.
std::string Services(const CChannelMap& map);

inline std::string TextOf(const char* text)
{
    return text ? text : "";
}
