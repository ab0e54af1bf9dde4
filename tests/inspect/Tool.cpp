#include "Tool.h"

#include <sstream>

#include "Schema.h"
#include "support/Places.h"

constexpr std::size_t k_long = 500000;  // bytes of a report that is about its length

std::string Command(const std::string& arguments)
{
    return "cd '" + DataFile() + "' && exec '" + k_inspect + "' " + arguments;
}

std::vector<nlohmann::json> Lines(const std::string& text, const std::string& definition)
{
    std::vector<nlohmann::json> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(nlohmann::json::parse(line));
        if (text.size() < k_long) {
            EXPECT_EQ(SchemaFaultOfMany(lines.back(), definition), "");
        }
    }
    return lines;
}

nlohmann::json LastLine(const std::string& text)
{
    return nlohmann::json::parse(text.substr(text.rfind('\n', text.size() - 2) + 1));
}

SResult Inspect(const std::string& arguments, const std::string& input)
{
    const CTemporary in(input);
    const CTemporary err;
    SResult result{Shell(Command(arguments + " < '" + in.Name() + "' 2> '" + err.Name() + "'")), {}};
    result.err = ReadFile(err.Name());
    if (arguments.find("--json") != std::string::npos && result.out.size() < k_long) {
        Lines(result.out);
    }
    return result;
}
