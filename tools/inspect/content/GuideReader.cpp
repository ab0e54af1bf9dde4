#include "content/GuideReader.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "base/Gunzip.h"
#include "base/Json.h"
#include "base/Text.h"
#include "content/GuideContent.h"
#include "content/LibraryPort.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDUParse.h"
#include "model/Content.h"

namespace vyr::inspect {

namespace {

using TView = std::string_view;

constexpr std::size_t k_header = 9;
constexpr std::size_t k_entry = 12;

constexpr TView k_roots[] = {"ServiceGuideDeliveryDescriptor", "SGResponse", "Service", "Content", "Schedule"};

/// Name of the root element without its prefix; empty: the bytes do not begin like a document.
TView RootName(SView bytes)
{
    constexpr TView k_mark = "\xEF\xBB\xBF";
    constexpr TView k_blanks = " \t\r\n";
    TView text(reinterpret_cast<const char*>(bytes.data), bytes.size);
    text.remove_prefix(text.substr(0, k_mark.size()) == k_mark ? k_mark.size() : 0);
    const auto skip = [&text](TView begin, TView end) {
        if (text.substr(0, begin.size()) != begin) {
            return false;
        }
        const std::size_t at = text.find(end, begin.size());
        text.remove_prefix(at == TView::npos ? text.size() : at + end.size());
        return true;
    };
    do {
        text.remove_prefix(std::min(text.find_first_not_of(k_blanks), text.size()));
    } while (skip("<?", "?>") || skip("<!--", "-->") || skip("<!", ">"));
    if (text.empty() || text.front() != '<') {
        return {};
    }
    const TView name = text.substr(1, std::min(text.find_first_of(" \t\r\n/>", 1), text.size()) - 1);
    const std::size_t colon = name.find(':');
    return colon == TView::npos ? name : name.substr(colon + 1);
}

/// Number of the type of fragment that the root element is; 0: none.
unsigned FragmentType(TView root)
{
    for (unsigned type = 1; type <= 3; ++type) {
        if (root == FragmentTypeName(type)) {
            return type;
        }
    }
    return 0;
}

unsigned Offset(SView unit, std::size_t index)
{
    return unit.Be32(k_header + index * k_entry + 8);
}

bool IsUnit(SView bytes)
{
    if (bytes.size < k_header) {
        return false;
    }
    const std::size_t count = bytes.Be32(5) & 0xFFFFFF;
    const std::size_t first = k_header + count * k_entry;
    if (count == 0 || first + 2 * count > bytes.size) {
        return false;
    }
    constexpr unsigned k_encodings = 4;
    const bool known = bytes[first] == 0 ? FragmentTypeName(bytes[first + 1]) != nullptr : bytes[first] < k_encodings;
    if (!known || count == 1) {
        return known;
    }
    const unsigned begin = Offset(bytes, 0);
    const unsigned end = Offset(bytes, 1);
    return begin + 2 < end && end - begin <= bytes.size - first;
}

std::unique_ptr<CESGFragmentBase> MakeFragment(unsigned type)
{
    switch (type) {
        case 1:
            return std::make_unique<CESGServiceFragment>();
        case 2:
            return std::make_unique<CESGContentFragment>();
        default:
            return std::make_unique<CESGScheduleFragment>();
    }
}

/// The fragment, or null with the reason.
TOwned<CESGFragmentBase> ParseFragment(unsigned type, SView text, std::string& reason)
{
    TOwned<CESGFragmentBase> fragment(MakeFragment(type).release());
    fragment->Create();
    if (fragment->Parse(reinterpret_cast<const char*>(text.data), static_cast<unsigned>(text.size))) {
        return fragment;
    }
    const TView root = RootName(text);
    const SFailure* failure = LastFailure();
    if (failure && failure->cause != FAILURE_KIND) {
        reason = Reason();
    } else {
        reason = root != FragmentTypeName(type) ? "its root element is " + Quoted(Short(std::string(root)))
                                                : std::string("it has no id");
    }
    return nullptr;
}

SGuideFragment& Hold(unsigned type, const CESGFragmentBase& fragment, SView text, SGuideRead& read)
{
    SGuideFragment& held = read.fragments.emplace_back(GuideFragment(type, fragment));
    held.size = text.size;
    held.hash = ContentHash(text);
    return held;
}

SContent OneFragment(const SGuideFragment& held, const CESGFragmentBase& fragment)
{
    SContent content = FragmentContent(held, fragment);
    TJson json = {{"fragmentType", held.type}, {"fragmentTypeName", FragmentTypeName(held.type)}};
    json[FragmentTypeName(held.type)] = std::move(content.json);
    content.json = std::move(json);
    return content;
}

/// Goes through a unit with the steps of the library, which tells neither what it dropped nor why.
class CUnitWalk {
  public:
    CUnitWalk(const CSGDUParse::SSGDUParse& unit, SView bytes, SGuideRead& read)
        : m_unit(unit), m_bytes(bytes), m_read(read)
    {
    }

    /// Reads fragment after fragment; `whole`: the library came to the end.
    void Go(bool whole)
    {
        SContent& content = m_read.content.emplace();
        const std::size_t count = m_unit.arrayHead.size();
        content.json["extension_offset"] = m_unit.extensionOffset;
        content.json["n_o_service_guide_fragments"] = m_unit.nOServiceGuideFragments;
        content.json["fragments"] = TJson::array();
        m_at = k_header + count * k_entry;
        for (std::size_t i = 0; i < count && m_Fragment(i); ++i) {
        }
        const std::size_t shown = content.json["fragments"].size();
        if (!whole && shown < m_unit.nOServiceGuideFragments) {
            m_read.faults.push_back("fragment " + std::to_string(shown + 1) + " of " +
                                    std::to_string(m_unit.nOServiceGuideFragments) +
                                    " has no place in the unit: it and those behind it are lost");
        }
        content.headline = Counted(m_unit.nOServiceGuideFragments, "fragment");
    }

  private:
    bool m_Fragment(std::size_t index)
    {
        const SView rest = m_bytes.From(m_at);
        if (rest.size < 2 && (rest.size == 0 || rest[0] == 0)) {
            return false;
        }
        const unsigned encoding = rest[0];
        const bool last = index + 1 == m_unit.nOServiceGuideFragments;
        std::size_t length = rest.size - 2;
        if (encoding == 0 && !last) {
            const unsigned begin = m_unit.arrayHead[index]->fragmentOffset;
            const unsigned end = m_unit.arrayHead[index + 1]->fragmentOffset;
            if (begin + 2 >= end || end - begin - 2 > length) {
                return false;
            }
            length = end - begin - 2;
        }
        if (encoding == 0 && length == 0) {
            return false;
        }
        TJson json = TJson::object();
        const CSGDUParse::SFragmentHead& head = *m_unit.arrayHead[index];
        json["fragmentTransportID"] = head.fragmentTransportID;
        json["fragmentVersion"] = head.fragmentVersion;
        json["fragmentOffset"] = head.fragmentOffset;
        json["fragmentEncoding"] = encoding;
        const std::string title = "fragment " + std::to_string(index + 1);
        std::string line = "    " + std::to_string(index + 1) + ": ";
        if (encoding != 0) {
            m_Take(encoding, {});
            m_read.faults.push_back(title + " is of encoding " + std::to_string(encoding) +
                                    ", not XML: what stands behind it is not found");
            line += "encoding " + std::to_string(encoding) + '\n';
            m_at += 1;
        } else {
            m_Xml(rest[1], rest.From(2).First(length), title, json, line);
            m_read.parts.push_back(
                {rest[1], head.fragmentTransportID, head.fragmentVersion, rest.From(2).First(length)});
            m_at += 2 + length;
        }
        Append(m_read.content->json, "fragments", std::move(json));
        m_read.content->text += line;
        return true;
    }

    void m_Xml(unsigned type, SView text, const std::string& title, TJson& json, std::string& line)
    {
        const char* name = FragmentTypeName(type);
        json["fragmentType"] = type;
        PutText(json, "fragmentTypeName", name);
        json["size"] = text.size;
        if (const CESGFragmentBase* fragment = m_Take(0, text)) {
            SContent content = FragmentContent(Hold(type, *fragment, text, m_read), *fragment);
            json["parsed"] = true;
            json[name] = std::move(content.json);
            line += content.headline + '\n';
            return;
        }
        const std::string shown = name != nullptr ? name : "type " + std::to_string(type);
        if (type < 1 || type > 3) {
            line += shown + ", " + Counted(text.size, "byte") + '\n';
            if (name == nullptr) {
                m_read.faults.push_back(title + " is of no known type: " + std::to_string(type));
            }
            return;
        }
        std::string reason;
        ParseFragment(type, text, reason);
        json["parsed"] = false;
        json["reason"] = reason;
        line += shown + ", did not parse\n";
        m_read.faults.push_back(title + " (" + shown + ") did not parse: " + reason);
    }

    /// The parsed fragment when the library kept this one as its next. It keeps the same of the same bytes.
    const CESGFragmentBase* m_Take(unsigned encoding, SView text)
    {
        if (m_kept == m_unit.arrayFragment.size()) {
            return nullptr;
        }
        const CSGDUParse::SFragmentSGDU& kept = *m_unit.arrayFragment[m_kept];
        if (kept.fragmentEncoding != encoding || kept.length != text.size ||
            (text.size != 0 && std::memcmp(kept.data.get(), text.data, text.size) != 0)) {
            return nullptr;
        }
        ++m_kept;
        return kept.fragment.get();
    }

    const CSGDUParse::SSGDUParse& m_unit;
    const SView m_bytes;
    SGuideRead& m_read;
    std::size_t m_at = 0;
    std::size_t m_kept = 0;
};

void ReadUnit(SView object, SView text, SGuideRead& read)
{
    CSGDUParse unit;
    unit.Create();
    unit.SetCompress(IsGzip(object));
    unit.SetInflateLimit(k_maxGuideObject);
    IParse::SItem item = {object.data, static_cast<unsigned>(object.size), static_cast<unsigned>(object.size) * 8, 0,
                          true};
    const bool whole = unit.Parse(&item);
    const CSGDUParse::SSGDUParse& state = *unit.State();
    if (state.arrayHead.empty() || state.arrayHead.size() < state.nOServiceGuideFragments) {
        read.faults.emplace_back("its table of fragments does not fit");
    } else {
        CUnitWalk(state, text, read).Go(whole);
    }
    unit.Destroy();
}

template <class TParser, class TContent>
void ReadDocument(SView text, TContent content, SGuideRead& read)
{
    TParser parser;
    parser.Create();
    if (parser.Parse(reinterpret_cast<const char*>(text.data), static_cast<unsigned>(text.size), false)) {
        read.content = content(parser);
    } else {
        const std::string reason = Reason();
        read.faults.push_back(reason.empty() ? "the library gave no reason" : reason);
    }
    parser.Destroy();
}

}  // namespace

SView EntityBody(SView object)
{
    constexpr TView k_field = "content-";
    constexpr TView k_end = "\r\n\r\n";
    constexpr std::size_t k_mostFields = 16384;
    const TView text(reinterpret_cast<const char*>(object.data), std::min(object.size, k_mostFields));
    if (text.size() < k_field.size() || strncasecmp(text.data(), k_field.data(), k_field.size()) != 0) {
        return object;
    }
    const std::size_t end = text.find(k_end);
    return end == TView::npos ? object : object.From(end + k_end.size());
}

std::optional<EGuideObject> GuideKind(SView bytes)
{
    const TView root = RootName(bytes);
    for (std::size_t i = 0; i < std::size(k_roots); ++i) {
        if (root == k_roots[i]) {
            return i == 0   ? EGuideObject::DELIVERY_DESCRIPTOR
                   : i == 1 ? EGuideObject::RESPONSE
                            : EGuideObject::FRAGMENT;
        }
    }
    return IsUnit(bytes) ? std::optional(EGuideObject::DELIVERY_UNIT) : std::nullopt;
}

SGuideRead ReadGuideObject(EGuideObject kind, SView object, SView text)
{
    SGuideRead read;
    if (kind == EGuideObject::DELIVERY_UNIT) {
        ReadUnit(object, text, read);
    } else if (kind == EGuideObject::DELIVERY_DESCRIPTOR) {
        ReadDocument<CSGDDParse>(text, DescriptorContent, read);
    } else if (kind == EGuideObject::RESPONSE) {
        ReadDocument<CSGResponse>(text, ResponseContent, read);
    } else {
        const unsigned type = FragmentType(RootName(text));
        std::string reason;
        if (const auto fragment = ParseFragment(type, text, reason)) {
            read.content = OneFragment(Hold(type, *fragment, text, read), *fragment);
        } else {
            read.faults.push_back(reason);
        }
    }
    return read;
}

}  // namespace vyr::inspect
