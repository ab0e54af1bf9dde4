#include "report/Changes.h"

#include <algorithm>
#include <iterator>

#include "base/Json.h"
#include "base/Limits.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

/// What names an element of an array, the best first.
constexpr const char* k_names[] = {"id",
                                   "serviceId",
                                   "service_id",
                                   "tsi",
                                   "aeaId",
                                   "asset_id",
                                   "identifier",
                                   "repId",
                                   "contentId",
                                   "globalServiceID",
                                   "Content-Location",
                                   "TOI",
                                   "fragmentTransportID",
                                   "transportID",
                                   "transportObjectID",
                                   "contentLocation",
                                   "idRef",
                                   "table_id",
                                   "signalling_information_table_id",
                                   "LLS_table_id",
                                   "packet_id",
                                   "mmtPackageId",
                                   "componentId",
                                   "descriptor_tag",
                                   "dIpAddr",
                                   "ratingValue",
                                   "subject",
                                   "codePoint",
                                   "t",
                                   "schemeIdUri",
                                   "lang",
                                   "url",
                                   "media",
                                   "contentType",
                                   "mimeType"};
constexpr std::size_t k_longValue = 160;
constexpr std::size_t k_mostSteps = 1000;  // of a patch

std::string Dump(const TJson& json)
{
    return json.dump(-1, ' ', false, TJson::error_handler_t::replace);
}

/// Names the elements: by the first of these members that all of them have.
class CNaming {
  public:
    CNaming(const TJson& before, const TJson& after)
    {
        const auto all = [&](const auto& has) {
            return std::all_of(before.begin(), before.end(), has) && std::all_of(after.begin(), after.end(), has);
        };
        if (all([](const TJson& element) { return !element.is_structured(); })) {
            m_scalars = true;
            return;
        }
        for (const char* name : k_names) {
            if (all([name](const TJson& element) {
                    const auto member = element.is_object() ? element.find(name) : element.end();
                    return member != element.end() && !member->is_array();
                })) {
                m_member = name;
                return;
            }
        }
    }

    explicit operator bool() const { return m_scalars || m_member != nullptr; }
    std::string Name(const TJson& element) const { return Dump(m_Value(element)); }
    /// " 10", of an element at a place; nothing for one that shows its name as its value.
    std::string Title(const TJson& element, std::size_t at) const
    {
        return m_scalars ? std::string()
                         : ' ' + (m_member != nullptr ? ValueText(element[m_member]) : std::to_string(at));
    }

  private:
    const TJson& m_Value(const TJson& element) const { return m_scalars ? element : element[m_member]; }

    bool m_scalars = false;
    const char* m_member = nullptr;
};

/// Elements of one name: most of the time one in either array.
struct SNamed {
    std::vector<std::size_t> before;
    std::vector<std::size_t> after;
};

/// Of several elements of one name those that are alike belong together, then the others in order.
void AlignNamed(const TJson& before, const TJson& after, const SNamed& named, std::vector<SAligned>& aligned)
{
    std::vector<std::size_t> left = named.before;
    std::vector<std::size_t> open = named.after;
    if (left.size() + open.size() > 2) {
        std::multimap<std::string, std::size_t> alike;
        for (const std::size_t at : named.before) {
            alike.emplace(Dump(before[at]), at);
        }
        open.clear();
        for (const std::size_t at : named.after) {
            const auto found = alike.find(Dump(after[at]));
            if (found != alike.end()) {
                aligned[at].before = found->second;
                alike.erase(found);
            } else {
                open.push_back(at);
            }
        }
        left.clear();
        std::transform(alike.begin(), alike.end(), std::back_inserter(left),
                       [](const auto& one) { return one.second; });
        std::sort(left.begin(), left.end());
    }
    for (std::size_t i = 0; i < std::min(left.size(), open.size()); ++i) {
        aligned[open[i]].before = left[i];
    }
}

std::vector<SAligned> Aligned(const TJson& before, const TJson& after, const CNaming& naming)
{
    std::vector<SAligned> aligned(after.size());
    for (std::size_t i = 0; i < after.size(); ++i) {
        aligned[i].after = i;
    }
    if (naming) {
        std::map<std::string, SNamed> byName;
        for (std::size_t i = 0; i < before.size(); ++i) {
            byName[naming.Name(before[i])].before.push_back(i);
        }
        for (std::size_t i = 0; i < after.size(); ++i) {
            byName[naming.Name(after[i])].after.push_back(i);
        }
        for (const auto& [name, named] : byName) {
            AlignNamed(before, after, named, aligned);
        }
    } else {
        const std::size_t least = std::min(before.size(), after.size());
        std::size_t first = 0;
        while (first < least && before[first] == after[first]) {
            ++first;
        }
        std::size_t last = 0;
        while (last < least - first && before[before.size() - 1 - last] == after[after.size() - 1 - last]) {
            ++last;
        }
        for (std::size_t i = 0; i < after.size(); ++i) {
            const bool tail = i >= after.size() - last;
            aligned[i].before = tail                       ? before.size() - (after.size() - i)
                                : i < before.size() - last ? i
                                                           : SAligned::k_none;
        }
    }
    std::vector<bool> there(before.size());
    for (const SAligned& element : aligned) {
        if (element.before != SAligned::k_none) {
            there[element.before] = true;
        }
    }
    for (std::size_t i = 0; i < before.size(); ++i) {
        if (!there[i]) {
            aligned.push_back({i, SAligned::k_none});
        }
    }
    return aligned;
}

/// A text or another value from shortly before the place where it differs from another one.
std::string Around(const std::string& text, std::size_t place)
{
    constexpr std::size_t k_before = 24;
    std::size_t from = place - std::min(place, k_before);
    for (int i = 0; i < 3 && from != 0 && (static_cast<unsigned char>(text[from]) & 0xC0) == 0x80; ++i) {
        --from;
    }
    return (from != 0 ? "\u2026" : "") + Short(Printable(text.substr(from, 2 * k_longValue)));
}

/// "176 -> 352"; of values that look alike, what tells them apart.
std::string ChangeText(const TJson& before, const TJson& after)
{
    std::string was = Clipped(ValueText(before), k_longValue);
    std::string is = Clipped(ValueText(after), k_longValue);
    if (was == is) {
        const auto raw = [](const TJson& value) {
            return value.is_string() ? '"' + value.get_ref<const std::string&>() + '"' : Dump(value);
        };
        const std::string first = raw(before);
        const std::string second = raw(after);
        const auto differs = std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first;
        const std::size_t place = static_cast<std::size_t>(differs - first.begin());
        was = Around(first, place);
        is = Around(second, place);
    }
    return was + " -> " + is;
}

/// Whether a member is the name of the number beside it, and says nothing more.
bool NamesNumber(const std::string& key, const TJson& object)
{
    constexpr std::size_t k_suffix = 4;  // "Name"
    if (key.size() <= k_suffix || key.compare(key.size() - k_suffix, k_suffix, "Name") != 0) {
        return false;
    }
    const auto number = object.find(key.substr(0, key.size() - k_suffix));
    return number != object.end() && number->is_number();
}

/// Goes through both documents side by side.
class CComparison {
  public:
    SDifferences found;

    void Compare(const TJson& before, const TJson& after)
    {
        if (before == after) {
            return;
        }
        if (before.is_object() && after.is_object()) {
            for (const auto& [key, value] : after.items()) {
                const auto last = before.find(key);
                if (!NamesNumber(key, after)) {
                    m_Inside(key, last != before.end() ? &*last : nullptr, &value);
                }
            }
            for (const auto& [key, value] : before.items()) {
                if (!after.contains(key) && !NamesNumber(key, before)) {
                    m_Inside(key, &value, nullptr);
                }
            }
        } else if (before.is_array() && after.is_array()) {
            m_Arrays(before, after);
        } else {
            m_Add([&] { return ChangeText(before, after); });
        }
    }

  private:
    /// A member or an element that is there before, after, or both.
    void m_Inside(const std::string& name, const TJson* before, const TJson* after)
    {
        static const TJson k_none = TJson::array();
        const std::size_t above = m_path.size();
        m_path += m_path.empty() || name.empty() || name.front() == ' ' ? name : ' ' + name;
        // A list that is not there has no elements.
        const bool lists = (before == nullptr || before->is_array()) && (after == nullptr || after->is_array());
        if (lists || (before != nullptr && after != nullptr)) {
            Compare(before != nullptr ? *before : k_none, after != nullptr ? *after : k_none);
        } else {
            m_Add([&] {
                return (after != nullptr ? "added " : "removed, was ") +
                       Clipped(ValueText(after != nullptr ? *after : *before), k_longValue);
            });
        }
        m_path.resize(above);
    }

    void m_Arrays(const TJson& before, const TJson& after)
    {
        const CNaming naming(before, after);
        bool moved = false;
        std::size_t last = 0;
        for (const SAligned& element : Aligned(before, after, naming)) {
            const TJson* was = element.before != SAligned::k_none ? &before[element.before] : nullptr;
            const TJson* is = element.after != SAligned::k_none ? &after[element.after] : nullptr;
            if (was != nullptr && is != nullptr) {
                moved = moved || element.before < last;
                last = element.before;
                if (*was == *is) {
                    continue;
                }
            }
            m_Inside(is != nullptr ? naming.Title(*is, element.after) : naming.Title(*was, element.before), was, is);
        }
        if (moved) {
            m_Add([] { return std::string("in another order"); });
        }
    }

    template <class TText>
    void m_Add(TText text)
    {
        if (found.count++ < MostChanges()) {
            found.lines.push_back(m_path + ": " + text());
        }
    }

    std::string m_path;
};

/// How many elements arrays win or lose, compared by their places as a patch does.
std::size_t Moved(const TJson& before, const TJson& after)
{
    std::size_t moved = 0;
    if (before.is_array() && after.is_array()) {
        const std::size_t least = std::min(before.size(), after.size());
        moved = std::max(before.size(), after.size()) - least;
        for (std::size_t i = 0; i < least; ++i) {
            moved += Moved(before[i], after[i]);
        }
    } else if (before.is_object() && after.is_object()) {
        for (auto member = before.begin(); member != before.end(); ++member) {
            const auto next = after.find(member.key());
            moved += next != after.end() ? Moved(*member, *next) : 0;
        }
    }
    return moved;
}

/// Whether both have the same members in the same order, or as many elements.
bool AlikeInForm(const TJson& before, const TJson& after)
{
    if (before.size() != after.size() || before.type() != after.type() || !before.is_structured()) {
        return false;
    }
    auto last = before.begin();
    for (auto member = after.begin(); after.is_object() && member != after.end(); ++member, ++last) {
        if (member.key() != last.key()) {
            return false;
        }
    }
    return true;
}

/// Appends the changes at a path. Where nothing came or went, only what differs is looked at: the library's own way
/// through all of it makes a path for every value. False: there are too many.
bool AddPatch(const TJson& before, const TJson& after, const TJson::json_pointer& path, TJson& patch)
{
    if (AlikeInForm(before, after)) {
        auto was = before.begin();
        std::size_t at = 0;
        for (auto is = after.begin(); is != after.end(); ++is, ++was, ++at) {
            if (*was != *is && !AddPatch(*was, *is, after.is_object() ? path / is.key() : path / at, patch)) {
                return false;
            }
        }
        return true;
    }
    // The patch of an array that loses many elements takes the square of their number.
    if (Moved(before, after) > k_mostSteps) {
        return false;
    }
    TJson changes = TJson::diff(before, after, path.to_string());
    for (TJson& change : changes) {
        patch.push_back(std::move(change));
    }
    return patch.size() <= k_mostSteps;
}

/// Bytes of memory, about.
std::size_t Weight(const TJson& json)
{
    std::size_t weight = sizeof json;
    if (json.is_string()) {
        weight += sizeof(std::string) + json.get_ref<const std::string&>().size();
    } else if (json.is_object()) {
        for (auto member = json.begin(); member != json.end(); ++member) {
            weight += sizeof member.key() + member.key().size() + Weight(*member);
        }
    } else if (json.is_array()) {
        for (const TJson& element : json) {
            weight += Weight(element);
        }
    }
    return weight;
}

/// Takes what a value takes of so many characters of JSON, as long as there are any left; false: there are not.
bool Exhausts(const TJson& json, std::size_t& left)
{
    const auto take = [&left](std::size_t size) {
        left -= std::min(left, size);
        return left == 0;
    };
    if (json.is_object()) {
        for (auto member = json.begin(); member != json.end(); ++member) {
            if (take(member.key().size() + 4) || Exhausts(*member, left)) {
                return true;
            }
        }
        return left == 0;
    }
    if (json.is_array()) {
        return std::any_of(json.begin(), json.end(),
                           [&](const TJson& element) { return take(1) || Exhausts(element, left); });
    }
    return take(json.is_string() ? json.get_ref<const std::string&>().size() + 2 : 1);
}

}  // namespace

std::vector<SAligned> AlignedElements(const TJson& before, const TJson& after)
{
    return Aligned(before, after, CNaming(before, after));
}

SDifferences Differences(const TJson& before, const TJson& after)
{
    CComparison comparison;
    comparison.Compare(before, after);
    return std::move(comparison.found);
}

TJson BoundedPatch(const TJson& before, const TJson& after)
{
    TJson patch = TJson::array();
    return AddPatch(before, after, TJson::json_pointer(), patch) ? patch : TJson();
}

TJson ChangesPatch(const TJson& before, const TJson& after)
{
    TJson patch = BoundedPatch(before, after);
    if (patch.is_null()) {
        return patch;
    }
    const std::size_t size = Dump(patch).size();
    std::size_t left = size;
    const bool shorter = Exhausts(after, left) || size <= Dump(after).size();
    return shorter ? patch : TJson();
}

std::vector<std::string> ChangeLines(const CLastShown::SShown* last, const TJson* now)
{
    if (last == nullptr || now == nullptr) {
        return {"all of it: there is nothing to compare it with"};
    }
    SDifferences differences = Differences(*last->json, *now);
    if (differences.count == 0) {
        return {"nothing that is shown changed"};
    }
    if (const std::uint64_t more = differences.count - differences.lines.size(); more != 0) {
        differences.lines.push_back("and " + std::to_string(more) + " more");
    }
    return std::move(differences.lines);
}

const CLastShown::SShown* CLastShown::Find(const std::string& key) const
{
    const auto entry = m_entries.find(key);
    return entry != m_entries.end() ? &entry->second.shown : nullptr;
}

void CLastShown::Keep(const std::string& key, std::shared_ptr<const TJson> json, const SSource& source)
{
    if (source.file != m_file) {
        m_file = source.file;
        m_entries.clear();
        m_order.clear();
        m_bytes = 0;
    }
    if (const auto last = m_entries.find(key); last != m_entries.end()) {
        m_Drop(last);
    }
    const std::size_t bytes = json ? key.size() + sizeof(SEntry) + Weight(*json) : 0;
    if (!json || bytes > m_most) {
        return;
    }
    while (m_bytes + bytes > m_most) {
        m_Drop(m_entries.find(m_order.front()));
    }
    m_bytes += bytes;
    m_entries[key] = {{std::move(json), source.packet}, bytes, m_order.insert(m_order.end(), key)};
}

void CLastShown::m_Drop(TEntries::iterator entry)
{
    m_bytes -= entry->second.bytes;
    m_order.erase(entry->second.order);
    m_entries.erase(entry);
}

}  // namespace vyr::inspect
