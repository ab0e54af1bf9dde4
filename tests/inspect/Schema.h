#pragma once

#include <nlohmann/json.hpp>
#include <string>

/// Whether the line is one of docs/report.schema.json, or of the definition of it that is named.
bool SchemaAllows(const nlohmann::json& line, const std::string& definition = {});

/// What is wrong with a line that is none; empty: nothing.
std::string SchemaFault(const nlohmann::json& line, const std::string& definition = {});

/// Likewise; of lines of the same fields and types, the first five of a process are looked at.
std::string SchemaFaultOfMany(const nlohmann::json& line, const std::string& definition = {});
