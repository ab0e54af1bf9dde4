#include "Schema.h"

#include <fstream>
#include <map>
#include <set>
#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

#include "support/Places.h"

namespace {

struct SSchema {
    explicit SSchema(const std::string& definition)
    {
        nlohmann::json document = nlohmann::json::parse(std::ifstream(TreeFile("docs/report.schema.json")));
        if (!definition.empty()) {
            document["oneOf"] = {{{"$ref", "#/definitions/" + definition}}};
        }
        valijson::SchemaParser().populateSchema(valijson::adapters::NlohmannJsonAdapter(document), schema);
    }

    valijson::Schema schema;
    valijson::Validator validator;  // keeps the regular expressions
};

bool IsValid(const nlohmann::json& line, const std::string& definition, valijson::ValidationResults* results)
{
    static std::map<std::string, SSchema> schemas;
    SSchema& schema = schemas.try_emplace(definition, definition).first->second;
    return schema.validator.validate(schema.schema, valijson::adapters::NlohmannJsonAdapter(line), results);
}

/// The line without its values: names of fields, and types.
std::string Shape(const nlohmann::json& value)
{
    std::string shape = value.type_name();
    if (value.is_object()) {
        for (const auto& [name, field] : value.items()) {
            shape += ' ' + name + ' ' + Shape(field);
        }
    } else if (value.is_array()) {
        std::set<std::string> shapes;
        for (const nlohmann::json& element : value) {
            shapes.insert(Shape(element));
        }
        for (const std::string& each : shapes) {
            shape += ' ' + each;
        }
    }
    return shape + ';';
}

}  // namespace

std::string SchemaFaultOfMany(const nlohmann::json& line, const std::string& definition)
{
    constexpr int k_alike = 5;
    static std::map<std::string, int> seen;
    return ++seen[definition + Shape(line)] <= k_alike ? SchemaFault(line, definition) : std::string();
}

bool SchemaAllows(const nlohmann::json& line, const std::string& definition)
{
    return IsValid(line, definition, nullptr);
}

std::string SchemaFault(const nlohmann::json& line, const std::string& definition)
{
    if (SchemaAllows(line, definition)) {
        return {};
    }
    valijson::ValidationResults results;
    IsValid(line, definition, &results);
    std::string fault = line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace).substr(0, 500);
    for (valijson::ValidationResults::Error error; results.popError(error) && fault.size() < 4000;) {
        fault += '\n';
        for (const std::string& step : error.context) {
            fault += step;
        }
        fault += ": " + error.description;
    }
    return fault;
}
