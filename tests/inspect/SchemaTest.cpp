#include "Schema.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <string>

#include "Tool.h"
#include "model/Rule.h"
#include "support/Places.h"

namespace {

using nlohmann::json;

/// Breaks the line in every place in turn, and puts it right again. What patches set can be anything.
int Break(json& line, json& place)
{
    if (place.is_primitive()) {
        const json value = place;
        place = nullptr;
        EXPECT_FALSE(SchemaAllows(line)) << value << " in " << line;
        place = value;
        return 1;
    }
    int broken = 0;
    if (place.is_object()) {
        place["noSuchField"] = nullptr;
        EXPECT_FALSE(SchemaAllows(line)) << line;
        place.erase("noSuchField");
        ++broken;
    }
    for (auto field = place.begin(); field != place.end(); ++field) {
        if (!place.is_object() || (field.key() != "value" || !place.contains("op"))) {
            broken += Break(line, *field);
        }
    }
    return broken;
}

TEST(Schema, RefusesWhatIsBroken)
{
    std::set<std::string> types;
    int broken = 0;
    for (const auto& file : std::filesystem::directory_iterator(DataFile("inspect"))) {
        const std::string name = file.path().filename().string();
        if (name.find("-json.txt") == std::string::npos) {
            continue;
        }
        std::map<std::string, int> seen;
        for (json& line : Lines(ReadFile(file.path().string()))) {
            const std::string type = line["type"];
            if (++seen[type] > 1) {
                continue;
            }
            EXPECT_EQ(SchemaFault(line), "");
            for (const char* required : {"schema_version", "type", "source"}) {
                json less = line;
                if (less.erase(required) != 0) {
                    EXPECT_FALSE(SchemaAllows(less)) << required << " of " << line;
                }
            }
            types.insert(type);
            broken += Break(line, line);
        }
    }
    EXPECT_GE(types.size(), 10u);
    EXPECT_GE(broken, 1000);
    // Of numbers, those that are none of the field; of texts likewise.
    json line = Lines(Inspect("--json " + k_lineup).out).front();
    for (const auto& [field, value] : std::map<std::string, json>{
             {"schema_version", 2}, {"LLS_table_id", 256}, {"size", -1}, {"services", 1.5}, {"status", "old"}}) {
        json wrong = line;
        wrong[field] = value;
        EXPECT_FALSE(SchemaAllows(wrong)) << field;
    }
}

TEST(Schema, KnowsEveryRuleAndTheReferenceEveryField)
{
    const json schema = json::parse(std::ifstream(TreeFile("docs/report.schema.json")));
    std::set<std::string> rules;
    for (const auto& rule : vyr::inspect::k_ruleTable) {
        rules.insert(rule.name);
    }
    EXPECT_EQ(schema["definitions"]["rule"]["enum"].get<std::set<std::string>>(), rules);

    const std::string reference = ReadFile(TreeFile("docs/inspect-reference.md"));
    int fields = 0;
    for (const json& record : schema["oneOf"]) {
        const json& definition = schema.at(json::json_pointer(record["$ref"].get<std::string>().substr(1)));
        const json properties = definition.value("properties", json::object());
        for (const auto& [field, _] : properties.items()) {
            EXPECT_NE(reference.find('`' + field + '`'), std::string::npos) << record << ": " << field;
            ++fields;
        }
    }
    EXPECT_GE(fields, 200);
}

}  // namespace
