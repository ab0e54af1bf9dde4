#pragma once

#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "common/ChannelMap.h"
#include "common/Parse.h"
#include "support/Seed.h"

// Every kind of entry of the library, with an input that it takes, for tests of what holds for all of them.
// Nothing here allocates while it creates, parses or destroys, but what the library does.

/// An input, in a block of exactly its size: what is read behind it is seen.
using TBytes = std::vector<char>;

/// An object, and what is done with it.
struct SEntry {
    std::function<bool()> create;
    std::function<bool()> parse;
    std::function<std::string()> input;
    std::function<void(const std::string& bytes)> take;  ///< parse and create have other bytes from now on
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

inline void PrintTo(const SEntryKind& kind, std::ostream* out)
{
    *out << kind.name;
}

/// For the name of a test.
inline std::string NameOfKind(const testing::TestParamInfo<SEntryKind>& kind)
{
    std::string name = kind.param.name;
    for (char& c : name) {
        c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
    }
    return name;
}

TEntryKinds LlsEntries();
TEntryKinds RouteEntries();
TEntryKinds MmtEntries();
TEntryKinds GuideEntries();
TEntryKinds StoreEntries();

/// A kind of entry on objects of T, whose input is the seed of this name from byte `skip` on.
template <class T>
SEntryKind EntryKind(const std::string& seed, std::size_t skip, bool (*create)(T&, const TBytes&),
                     bool (*parse)(T&, TBytes&), std::string (*digest)(const T&), bool mayLose = false)
{
    const auto makeOf = [=](const std::string& bytes) {
        const auto object = std::make_shared<T>();
        const auto input = std::make_shared<TBytes>(bytes.begin(), bytes.end());
        return SEntry{[=] { return create(*object, *input); },
                      [=] { return parse(*object, *input); },
                      [=] { return std::string(input->begin(), input->end()); },
                      [=](const std::string& other) { *input = TBytes(other.begin(), other.end()); },
                      [=] { return digest(*object); },
                      [=] { object->Destroy(); },
                      mayLose};
    };
    return {seed, [=] { return makeOf(Seed(seed, skip)); }, makeOf};
}

template <class T>
bool CreatePlainly(T& object, const TBytes& /*input*/)
{
    return object.Create();
}

inline bool FeedItem(IParse& parser, const TBytes& bytes)
{
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    IParse::SItem item = {reinterpret_cast<const unsigned char*>(bytes.data()), size, size * 8, 0, true};
    return parser.Parse(&item);
}

template <class T>
bool ParseDocument(T& parser, TBytes& text)
{
    return parser.Parse(text.data(), static_cast<unsigned int>(text.size()));
}

/// A parser of XML documents.
template <class T>
SEntryKind DocumentKind(const std::string& seed, std::size_t skip, std::string (*digest)(const T&),
                        bool (*create)(T&, const TBytes&) = CreatePlainly<T>)
{
    return EntryKind<T>(seed, skip, create, ParseDocument<T>, digest);
}

/// What a map tells of each of its services, in lines.
std::string Services(const CChannelMap& map);

inline std::string TextOf(const char* text)
{
    return text ? text : "";
}
