#pragma once

#include <cctype>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "Fuzz.h"

// Mutators that keep the structure of an input, beside libFuzzer's own, which is asked for the other half. A target
// that has use for one ends in VYR_MUTATOR(MutateXml) or another of them.

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t max) __attribute__((weak));

#define VYR_MUTATOR(mutate)                                                                               \
    extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t*, std::size_t, std::size_t, unsigned);    \
    extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t max, \
                                                   unsigned seed)                                         \
    {                                                                                                     \
        return HalfAndHalf(mutate, data, size, max, seed);                                                \
    }

/// Draws of one mutation.
class CDraw {
  public:
    explicit CDraw(unsigned seed) : m_random(seed) {}

    /// Below n; 0 when n is 0.
    std::size_t Below(std::size_t n) { return n ? m_random() % n : 0; }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template <class T>
    const T& Of(const std::vector<T>& all)
    {
        return all[Below(all.size())];
    }

  private:
    std::minstd_rand m_random;
};

/// Half of the mutations by `mutate(CDraw&, std::string&)`, as far as the result fits; the others by libFuzzer.
template <class TMutate>
std::size_t HalfAndHalf(TMutate mutate, std::uint8_t* data, std::size_t size, std::size_t max, unsigned seed)
{
    CDraw draw(seed);
    if (draw.OneIn(2)) {
        std::string bytes(reinterpret_cast<const char*>(data), size);
        for (std::size_t n = 1 + draw.Below(3); n > 0; --n) {
            mutate(draw, bytes);
        }
        if (!bytes.empty() && bytes.size() <= max) {
            std::memcpy(data, bytes.data(), bytes.size());
            return bytes.size();
        }
    }
    return LLVMFuzzerMutate(data, size, max);
}

/// libFuzzer's own mutation of a part, which may grow by `more`.
inline std::string Mutated(const std::string& part, std::size_t more)
{
    std::vector<std::uint8_t> bytes(part.begin(), part.end());
    bytes.resize(part.size() + more + 1);
    bytes.resize(LLVMFuzzerMutate(bytes.data(), part.size(), bytes.size()));
    return std::string(bytes.begin(), bytes.end());
}

/// Names of elements and attributes in the target's dictionary, seen from the top of the tree.
struct SXmlNames {
    std::vector<std::string> elements = {"a"};
    std::vector<std::string> attributes = {"id"};

    SXmlNames()
    {
        std::ifstream file(VYR_FUZZ_DICTIONARY, std::ios::binary);
        const std::string text(std::istreambuf_iterator<char>(file), {});
        std::size_t begin = 0;
        for (std::size_t i = 0; i <= text.size(); ++i) {
            const char c = i < text.size() ? text[i] : ' ';
            if (std::isalnum(static_cast<unsigned char>(c)) || (c && std::strchr("_-.:", c))) {
                continue;
            }
            if (i > begin && begin > 0 && text[begin - 1] == '<') {
                elements.push_back(text.substr(begin, i - begin));
            } else if (i > begin && c == '=') {
                attributes.push_back(text.substr(begin, i - begin));
            }
            begin = i + 1;
        }
    }
};

/// A change of the markup in an input, whatever else is in it: elements and attributes come, go, move and change.
inline void MutateXml(CDraw& draw, std::string& text)
{
    static const SXmlNames s_names;
    static const std::vector<std::string> k_values = {"",
                                                      "0",
                                                      "1",
                                                      "2",
                                                      "3",
                                                      "-1",
                                                      "7",
                                                      "255",
                                                      "65536",
                                                      "4294967296",
                                                      "99999999999999999999",
                                                      "1.5",
                                                      "true",
                                                      "false",
                                                      "en",
                                                      "urn:x:1",
                                                      "http://a/b",
                                                      "239.255.1.1",
                                                      "2026-01-01T00:00:00Z",
                                                      "PT1H2M3.5S",
                                                      "&amp;",
                                                      "1 2 3",
                                                      "YWJj"};
    const auto value = [&] { return draw.OneIn(50) ? std::string(draw.Below(5000), 'x') : draw.Of(k_values); };
    /// Texts, and what stands among elements and is none: it has another name or no name at all.
    const auto content = [&] {
        const std::string inside = value();
        return !draw.OneIn(4)  ? inside
               : draw.OneIn(3) ? "<!--" + inside + "-->"
               : draw.OneIn(2) ? "<![CDATA[" + inside + "]]>"
                               : "<?" + draw.Of(s_names.elements) + ' ' + inside + "?>";
    };
    const auto attribute = [&] { return ' ' + draw.Of(s_names.attributes) + "=\"" + value() + '"'; };
    const auto element = [&](const std::string& inside) {
        const std::string& name = draw.Of(s_names.elements);
        std::string made = '<' + name;
        for (std::size_t n = draw.Below(4); n > 0; --n) {
            made += attribute();
        }
        return made + '>' + inside + "</" + name + '>';
    };
    /// Of the start tag of an element, drawn among all; npos: there is none.
    const auto begin = [&] {
        const std::size_t from = draw.Below(text.size());
        for (const std::size_t start : {from, std::size_t{0}}) {
            for (std::size_t at = start; (at = text.find('<', at)) != std::string::npos; ++at) {
                if (at + 1 < text.size() && std::isalpha(static_cast<unsigned char>(text[at + 1]))) {
                    return at;
                }
            }
        }
        return std::string::npos;
    };
    /// Behind the element that begins there.
    const auto end = [&text](std::size_t at) {
        int depth = 0;
        for (std::size_t next = at; (next = text.find('>', next)) != std::string::npos; ++next) {
            const std::size_t open = text.rfind('<', next);
            const char kind = text[open + 1];
            depth += kind == '/' ? -1 : text[next - 1] == '/' || kind == '!' || kind == '?' ? 0 : 1;
            if (depth <= 0) {
                return next + 1;
            }
        }
        return text.size();
    };
    const std::size_t at = begin();
    if (at == std::string::npos) {
        text += element(content());
        return;
    }
    const std::size_t tagEnd = std::min(text.find('>', at), text.size() - 1);
    switch (draw.Below(8)) {
        case 0:  // a child, or what becomes one
            if (text[tagEnd - 1] != '/') {
                text.insert(tagEnd + 1,
                            draw.OneIn(3) ? content() : element(draw.OneIn(3) ? element(content()) : content()));
                break;
            }
            [[fallthrough]];
        case 1:  // a sibling behind it
            text.insert(end(at), element(content()));
            break;
        case 2:
            text.insert(tagEnd - (text[tagEnd - 1] == '/' ? 1 : 0), attribute());
            break;
        case 3: {  // another value, or none of the attribute
            const std::size_t quote = text.find_first_of("\"'", at);
            const std::size_t close = quote < tagEnd ? text.find(text[quote], quote + 1) : std::string::npos;
            if (close != std::string::npos) {
                const std::size_t name = text.rfind(' ', quote);
                const bool away = draw.OneIn(4) && name != std::string::npos && name > at;
                text.replace(away ? name : quote + 1, close + (away ? 1 : 0) - (away ? name : quote + 1),
                             away ? "" : value());
            }
            break;
        }
        case 4: {  // another text
            const std::size_t next = std::min(text.find('<', tagEnd), text.size());
            text.replace(tagEnd + 1, next > tagEnd ? next - tagEnd - 1 : 0, content());
            break;
        }
        case 5:
            text.erase(at, end(at) - at);
            break;
        case 6: {  // again, there or elsewhere
            const std::string copy = text.substr(at, end(at) - at);
            const std::size_t other = begin();
            text.insert(draw.OneIn(2) ? at : end(other), copy);
            break;
        }
        default: {  // another name, at both ends
            const std::size_t last = end(at);
            const std::string& name = draw.Of(s_names.elements);
            const std::size_t length = std::min(text.find_first_of(" />", at + 1), text.size()) - at - 1;
            const std::size_t close = text.rfind("</", last - 1);
            if (close != std::string::npos && close > at &&
                text.compare(close + 2, length, text, at + 1, length) == 0) {
                text.replace(close + 2, length, name);
            }
            text.replace(at + 1, length, name);
            break;
        }
    }
}

/// A change somewhere in a binary structure after which the length fields around it count right again: those that
/// hold the message, table or descriptor as a whole, or of what could be one, some.
inline void MutateBinary(CDraw& draw, std::string& bytes)
{
    if (bytes.size() < 4) {
        bytes += std::string(4, '\0');
    }
    const std::size_t at = 2 + draw.Below(bytes.size() - 2);
    const std::size_t cut = std::min(draw.OneIn(2) ? draw.Below(40) : 0, bytes.size() - at);
    std::string part = bytes.substr(at, cut);
    part = draw.OneIn(3) ? bytes.substr(draw.Below(bytes.size()), draw.Below(40)) : Mutated(part, 20);
    const auto change = static_cast<std::int64_t>(part.size()) - static_cast<std::int64_t>(cut);
    for (std::size_t width : {4u, 2u, 1u}) {
        for (std::size_t field = 0; field + width <= at; ++field) {
            std::uint32_t length = 0;
            for (std::size_t i = 0; i < width; ++i) {
                length = length << 8 | static_cast<unsigned char>(bytes[field + i]);
            }
            const std::size_t end = field + width + length;
            if (length == 0 || end < at + cut || end > bytes.size() || (end < bytes.size() && draw.OneIn(3))) {
                continue;
            }
            std::int64_t counted = length + change;
            for (std::size_t i = width; i-- > 0; counted >>= 8) {
                bytes[field + i] = static_cast<char>(counted);
            }
            field += width - 1;
        }
    }
    bytes.replace(at, cut, part);
}

/// A change of delivery units in a row, behind a byte of options and each behind the mark: of a fragment, of how many
/// there are, or anywhere; the table of the unit counts right again.
inline void MutateUnit(CDraw& draw, std::string& bytes)
{
    struct SFragment {
        std::string entry;  // without its offset
        std::string bytes;
    };
    const auto number = [](const std::string& text, std::size_t at, std::size_t width) {
        std::size_t value = 0;
        for (std::size_t i = at; i < at + width && i < text.size(); ++i) {
            value = value << 8 | static_cast<unsigned char>(text[i]);
        }
        return value;
    };
    const auto put = [](std::size_t value, int width) {
        std::string text;
        for (int i = width; i-- > 0;) {
            text += static_cast<char>(value >> 8 * i);
        }
        return text;
    };
    if (bytes.empty() || bytes[0] & 1) {
        bytes = std::string(1, '\0');  // compressed: begins anew
    }
    const std::size_t mark = bytes.rfind("\xFFNEXT");
    const std::size_t begin = mark == std::string::npos ? 1 : mark + 5;
    const std::string unit = bytes.substr(begin);
    const std::size_t count = std::min<std::size_t>(number(unit, 6, 3), 64);
    const std::size_t table = 9, data = table + 12 * count;
    std::vector<SFragment> fragments;
    for (std::size_t i = 0; i < count && data <= unit.size(); ++i) {
        const std::size_t from = number(unit, table + 12 * i + 8, 4);
        const std::size_t to = i + 1 < count ? number(unit, table + 12 * i + 20, 4) : unit.size() - data;
        if (from <= to && to <= unit.size() - data) {
            fragments.push_back({unit.substr(table + 12 * i, 8), unit.substr(data + from, to - from)});
        }
    }
    const std::size_t picked = draw.Below(fragments.size());
    switch (fragments.empty() ? 0 : draw.Below(6)) {
        case 0: {
            static const std::vector<std::string> k_fragments = {"<Service id='1'/>", "<Content id='1'/>",
                                                                 "<Schedule id='1'/>"};
            const std::size_t type = draw.Below(4);
            const std::string text = draw.Of(k_fragments);
            fragments.push_back({put(draw.Below(9), 4) + put(draw.Below(3), 4), put(0, 1) + put(type, 1) + text});
            break;
        }
        case 1:
            fragments.push_back(fragments[picked]);
            break;
        case 2:
            fragments.erase(fragments.begin() + static_cast<std::ptrdiff_t>(picked));
            break;
        case 3:
            fragments[picked].bytes = Mutated(fragments[picked].bytes, 20);
            break;
        default:
            MutateXml(draw, fragments[picked].bytes);
            break;
    }
    std::string head = put(0, 6) + put(fragments.size(), 3);
    std::string all;
    for (const SFragment& fragment : fragments) {
        head += fragment.entry + put(all.size(), 4);
        all += fragment.bytes;
    }
    bytes.replace(begin, std::string::npos, head + all);
    if (draw.OneIn(20)) {
        bytes += "\xFFNEXT" + head + all;
    }
}
