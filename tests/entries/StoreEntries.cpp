#include <algorithm>
#include <array>
#include <memory>
#include <numeric>
#include <set>

#include "common/CoreOS/PtrArray.h"
#include "common/CoreOS/StringHash.h"
#include "common/XML.h"
#include "entries/Entries.h"
#include "esg/ESGFragmentMap.h"
#include "lls/ParseSystemTime.h"
#include "lls/RRTMap.h"
#include "support/Services.h"

std::string Services(const CChannelMap& map)
{
    std::set<std::string> lines;
    for (void* service : ServicesOf(const_cast<CChannelMap&>(map))) {
        lines.insert(ShowService(const_cast<CChannelMap&>(map), service) + "\n");
    }
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

namespace {

const std::string k_long(100, 'x');
char* const k_text = const_cast<char*>(k_long.c_str());

bool Fill(CChannelMap& map, TBytes& /*input*/)
{
    const CChannelMap::SCallback callback = {nullptr, [](void*, void*) {}};
    std::string id, url, drm;
    void* clone = nullptr;
    void* service = map.AddService(nullptr, 1, 2, 3, 4, 5, 6, 7, true, nullptr);
    const bool done = map.SetCallback(&callback) && service && map.SetServiceName(service, k_text, 50) &&
                      map.SetGlobalServiceId(service, k_text, 60) && map.SetSvcInetUrl(service, k_text) &&
                      map.GetGlobalServiceId(service, id) && map.GetSvcInetUrl(service, url) &&
                      map.GetDrmSystemID(service, drm) && (clone = map.CloneService(service)) != nullptr;
    return (!clone || map.DeleteClonedService(clone)) && done;
}

bool Fill(CRRTMap& map, TBytes& /*input*/)
{
    return map.Add(1, 2) && map.SetRegionIdText(1, k_text, k_text) && map.SetDimension(1, 3, true) &&
           map.SetDimTitle(1, k_text, k_text) && map.SetRatingVal(1, 4) && map.SetRatingValAbbrev(1, k_text, k_text) &&
           map.SetRatingValStr(1, k_text, k_text);
}

std::string Digest(const CRRTMap& map)
{
    std::string found;
    const_cast<CRRTMap&>(map).GetProgramRating(
        1, 3, k_text, k_text, [](void* user, char* text) { *static_cast<std::string*>(user) = text; }, &found);
    return found;
}

struct SXml : CXML {
    bool Create()
    {
        static const std::string k_document =
            "<!DOCTYPE r [<!ENTITY e 'entity'>]><r a='1&e;'><b xmlns='urn:b'>text<c/>&e;</b></r>";
        return CXML::Create(k_document.data(), static_cast<int>(k_document.size()), false);
    }
};

bool Write(SXml& xml, TBytes& /*input*/)
{
    void* root = nullptr;
    int size = 0;
    const bool moved = xml.MoveRoot(&root);
    const std::unique_ptr<char[]> text(moved ? xml.Content(root, nullptr) : nullptr);
    const std::unique_ptr<char[]> all(xml.Dump(xml.Doc(), &size));
    const std::unique_ptr<char[]> ns(moved ? xml.Ns(xml.MoveChild(root), nullptr) : nullptr);
    const std::unique_ptr<char[]> value(moved ? xml.PropStr(root, "a", nullptr) : nullptr);
    CXML::CStr peeked;
    bool found = false;
    xml.PropBool(root, "a", &found);
    return text && all && ns && value && found && xml.PeekPropStr(root, "a", &peeked) &&
           xml.PropInt(root, "a", nullptr) == 1 && xml.PropLLong(root, "a", nullptr) == 1 &&
           !xml.getStringContent(root, nullptr).empty() && !xml.getStringProp(root, "a", nullptr).empty();
}

std::string Digest(const SXml& xml)
{
    void* root = nullptr;
    xml.MoveRoot(&root);
    return xml.getStringContent(root, nullptr) + xml.getStringProp(root, "a", nullptr);
}

/// A document, and all that was read of it.
struct SText : CXML {
    std::array<std::unique_ptr<char[]>, 5> texts;
};

bool CreateOf(SText& xml, const TBytes& text)
{
    return xml.Create(text.data(), static_cast<int>(text.size()), false);
}

bool ReadAll(SText& xml, TBytes& /*input*/)
{
    void* root = nullptr;
    int size = 0;
    if (!xml.MoveRoot(&root)) {
        return false;
    }
    xml.texts[0].reset(xml.Dump(xml.Doc(), &size));
    xml.texts[1].reset(xml.NodeDump(root, &size));
    xml.texts[2].reset(xml.Content(root, nullptr));
    xml.texts[3].reset(xml.PropStr(root, "a", nullptr));
    xml.texts[4].reset(xml.Ns(xml.MoveChild(root), nullptr));
    return std::all_of(xml.texts.begin(), xml.texts.end(), [](const auto& text) { return text != nullptr; });
}

SEntryKind XmlKind(const char* name, const std::string& text)
{
    SEntryKind kind = EntryKind<SText>(name, 0, CreateOf, ReadAll, [](const SText& xml) {
        std::string all;
        for (const auto& one : xml.texts) {
            all += TextOf(one.get()) + '|';
        }
        return all;
    });
    kind.make = [of = kind.makeOf, text] { return of(text); };
    return kind;
}

std::string InTwoBytes(const std::string& text)
{
    std::string wide = "\xFE\xFF";
    for (const char c : text) {
        wide += '\0';
        wide += c;
    }
    return wide;
}

TEntryKinds XmlKinds()
{
    const std::string type = "<!DOCTYPE r [<!ENTITY e 'entity'><!ATTLIST r c CDATA 'd'>]>";
    const std::string root = "<r a='1 &amp; &#50;'>text <b xmlns='urn:b'>of<c/></b><![CDATA[ it]]><!-- all --></r>";
    const std::string typed = type + "<r a='1&e;'>&e;<b xmlns='urn:b'>text<c/>&e;</b></r>";
    return {
        XmlKind("xml plain", root),
        XmlKind("xml with a type", typed),
        XmlKind("xml in UTF-16", InTwoBytes(root)),
        XmlKind("xml with a type in 20 kB", type + "<r a='" + std::string(10000, 'x') + "&e;'>" + root +
                                                typed.substr(type.size()) + std::string(10000, 'x') + "</r>"),
        XmlKind("xml in Latin 1", "<?xml version='1.0' encoding='ISO-8859-1'?>" + typed),
        XmlKind("xml in 10 kB", "<r a='" + std::string(10000, 'x') + "'>" + root + "</r>"),
    };
}

struct SSignedTable : CParseSystemTime {
    bool Create() { return true; }
    void Destroy() override {}
};

bool Separate(SSignedTable& table, TBytes& /*input*/)
{
    static const std::string k_table = "0123<r><CMSSignedData>" + k_long + "</CMSSignedData>" + k_long + "</r>";
    std::string xml, cms;
    return table.CheckCMS(reinterpret_cast<const unsigned char*>(k_table.data()), static_cast<int>(k_table.size()), xml,
                          cms);
}

struct SContainers {
    bool Create() { return hash.Create(7, 0xFFFFFFFF); }
    void Destroy()
    {
        while (hash.SetPosition(CCStringHash::POS_HEAD, 0)) {
            hash.Remove();
        }
        hash.Destroy();
        array.RemoveAll();
    }

    CCPtrArray array{CCPtrArray::DummyCallback, nullptr};
    CCStringHash hash;
};

bool Fill(SContainers& both, TBytes& /*input*/)
{
    for (int i = both.array.Size(); i < 40; ++i) {
        if (!both.array.Insert(0, &both) || (!both.hash.Find(k_text + i) && !both.hash.Add(k_text + i, ""))) {
            return false;
        }
    }
    return both.array.Set(50, &both) && both.array.Add(nullptr);
}

}  // namespace

TEntryKinds StoreEntries()
{
    TEntryKinds kinds = XmlKinds();
    for (const SEntryKind& kind : TEntryKinds{
             EntryKind<CChannelMap>("channel map", 0, CreatePlainly<CChannelMap>, Fill, Services),
             EntryKind<CRRTMap>("rating map", 0, CreatePlainly<CRRTMap>, Fill, Digest),
             EntryKind<CESGFragmentMap>(
                 "fragment map", 0, CreatePlainly<CESGFragmentMap>,
                 [](CESGFragmentMap&map, TBytes&) { return map.Add(k_text); },
                 [](const CESGFragmentMap&map) {
                     return std::to_string(const_cast<CESGFragmentMap&>(map).isExisted(k_text));
                 }),
             EntryKind<SXml>("CXML", 0, CreatePlainly<SXml>, Write, Digest),
             EntryKind<SSignedTable>("CheckCMS", 0, CreatePlainly<SSignedTable>, Separate,
                                     [](const SSignedTable&) { return std::string("none"); }),
             EntryKind<SContainers>("containers", 0, CreatePlainly<SContainers>, Fill,
                                    [](const SContainers&both) { return std::to_string(both.array.Size()); }),
         }) {
        kinds.push_back(kind);
    }
    return kinds;
}
