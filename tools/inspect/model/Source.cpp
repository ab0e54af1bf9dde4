#include "model/Source.h"

#include <cstdio>

#include "base/Json.h"
#include "base/Text.h"

namespace vyr::inspect {

std::string ToiText(const TToi& toi)
{
    if (toi.first == 0) {
        return std::to_string(toi.second);
    }
    char text[40];
    std::snprintf(text, sizeof text, "0x%llx%016llx", static_cast<unsigned long long>(toi.first),
                  static_cast<unsigned long long>(toi.second));
    return text;
}

std::string NameByTemplate(const std::string& fileTemplate, const TToi& toi)
{
    const std::size_t begin = fileTemplate.find("$TOI");
    const std::size_t end = begin != std::string::npos ? fileTemplate.find('$', begin + 1) : begin;
    if (end == std::string::npos || toi.first != 0) {
        return {};
    }
    const std::string format = fileTemplate.substr(begin + 4, end - begin - 4);
    std::string number = std::to_string(toi.second);
    if (format.size() == 4 && format.compare(0, 2, "%0") == 0 && format[2] > '0' && format[2] <= '9' &&
        format[3] == 'd') {
        const auto width = static_cast<std::size_t>(format[2] - '0');
        number.insert(0, width > number.size() ? width - number.size() : 0, '0');
    } else if (!format.empty()) {
        return {};
    }
    return fileTemplate.substr(0, begin) + number + fileTemplate.substr(end + 1);
}

std::string TimeJson(const STime& time)
{
    return InstantText(time.seconds, time.nanoseconds, 6);
}

TJson SourceJson(const SSource& source)
{
    TJson json = TJson::object();
    json["file"] = source.file;
    if (source.packet != 0) {
        json["packet"] = source.packet;
    }
    if (source.time) {
        json["time"] = TimeJson(*source.time);
    }
    return json;
}

void PutToi(TJson& json, const TToi& toi)
{
    if (toi.first == 0) {
        json["TOI"] = toi.second;
    } else {
        json["TOI"] = ToiText(toi);
    }
}

}  // namespace vyr::inspect
