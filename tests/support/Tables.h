#pragma once

#include <string>

#include "common/Parse.h"
#include "support/Recorder.h"

/// Gives bytes to a parser in a heap block of exactly their size, with the cursor at `bitpos`.
inline bool Feed(IParse& parser, const std::string& bytes, unsigned int bitpos = 0)
{
    const std::vector<unsigned char> block = Exact(bytes);
    const unsigned int size = static_cast<unsigned int>(block.size());
    IParse::SItem item = {block.data(), size, size * 8, bitpos, true};
    return parser.Parse(&item);
}

/// Gives an XML table to a parser, under a header that it has not seen.
inline bool FeedXml(IParse& parser, const std::string& xml)
{
    static unsigned char s_version = 0;
    static unsigned char s_group = 0;
    s_group = static_cast<unsigned char>(s_group + (++s_version == 0));
    return Feed(parser, std::string("\1") + static_cast<char>(s_group) + '\0' + static_cast<char>(s_version) + xml);
}

/// Gives every prefix of a whole table, each under a header of its own, and counts those that changed
/// what `state` tells.
template <class TState>
int ChangingPrefixes(IParse& parser, const std::string& xml, TState state)
{
    const auto before = state();
    int changed = 0;
    for (std::size_t size = 0; size < xml.size(); ++size) {
        FeedXml(parser, xml.substr(0, size));
        changed += state() != before;
    }
    return changed;
}
