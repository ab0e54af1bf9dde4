#include "base/Json.h"

#include "base/Limits.h"
#include "base/Text.h"

namespace vyr::inspect {

namespace {

/// Cuts the value; of what is gone of itself and of the lists within, the count is added to `gone`.
bool CutValue(TJson& value, std::size_t most, std::size_t& gone)
{
    constexpr std::size_t k_line = 64;
    if (value.is_object()) {
        return CutJson(value, most);
    }
    if (value.is_string()) {
        std::string& text = value.get_ref<std::string&>();
        if (text.size() / k_line < most || text.size() == most * k_line) {
            return false;
        }
        const std::size_t size = text.size();
        text.resize(ClippedSize(text, most * k_line));
        gone += size - text.size();
        return true;
    }
    bool cut = false;
    if (value.is_array()) {
        if (value.size() > most) {
            gone += value.size() - most;
            value.erase(value.begin() + static_cast<std::ptrdiff_t>(most), value.end());
            cut = true;
        }
        for (TJson& entry : value) {
            cut = CutValue(entry, most, gone) || cut;
        }
    }
    return cut;
}

}  // namespace

std::string JsonLine(const TJson& value)
{
    return PlainJson(value.dump(-1, ' ', false, TJson::error_handler_t::replace)) + '\n';
}

std::string ValueText(const TJson& value)
{
    constexpr std::size_t k_shown = 8;
    if (value.is_string()) {
        const std::string& text = value.get_ref<const std::string&>();
        return text.empty() ? "-" : Short(Printable(text));
    }
    if (value.is_object()) {
        return '(' + FieldsText(value) + ')';
    }
    if (!value.is_array()) {
        return value.dump();
    }
    std::string text;
    for (std::size_t i = 0; i < value.size() && i < k_shown; ++i) {
        text += (i == 0 ? "" : " ") + ValueText(value[i]);
    }
    return value.size() > k_shown ? text + " and " + std::to_string(value.size() - k_shown) + " more" : text;
}

void LeaveOut(TJson& object, const std::string& list, std::size_t count)
{
    if (count != 0) {
        TJson& gone = object["leftOut"][list];
        gone = (gone.is_null() ? 0 : gone.get<std::size_t>()) + count;
    }
}

void Append(TJson& object, const char* list, TJson entry)
{
    TJson& entries = object[list];
    if (entries.size() < MostEntries()) {
        entries.push_back(std::move(entry));
    } else {
        LeaveOut(object, list, 1);
    }
}

bool CutJson(TJson& object, std::size_t most)
{
    bool cut = false;
    std::vector<std::pair<std::string, std::size_t>> leftOut;
    for (const auto& [key, value] : object.items()) {
        std::size_t gone = 0;
        cut = CutValue(value, most, gone) || cut;
        if (gone != 0) {
            leftOut.emplace_back(key, gone);
        }
    }
    for (const auto& [key, gone] : leftOut) {
        LeaveOut(object, key, gone);
    }
    return cut;
}

void PutNamed(TJson& object, const std::string& key, long long number, const char* name)
{
    object[key] = number;
    if (name != nullptr) {
        object[key + "Name"] = name;
    }
}

std::string FieldsText(const TJson& object)
{
    std::vector<std::string> fields;
    for (const auto& [key, value] : object.items()) {
        fields.push_back(key + ' ' + ValueText(value));
    }
    return Joined(fields);
}

}  // namespace vyr::inspect
