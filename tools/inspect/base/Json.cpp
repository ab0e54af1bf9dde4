#include "base/Json.h"

#include "base/Text.h"

namespace vyr::inspect {

namespace {

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

}  // namespace

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
