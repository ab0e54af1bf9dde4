#pragma once

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/Programs.h"

// The tool as its users run it.

struct SResult : SEnded {
    std::string err;
};

std::string Command(const std::string& arguments);

/// The lines, each of which is to be what the schema says (of a file of the index: its definition), unless the text is
/// so long that it is about its length.
std::vector<nlohmann::json> Lines(const std::string& text, const std::string& definition = {});

/// The last of the lines alone, whatever the schema says.
nlohmann::json LastLine(const std::string& text);

/// Runs the tool among the test data, with `input` on standard input.
SResult Inspect(const std::string& arguments, const std::string& input = {});

inline std::string Service(int id, const std::string& attributes = {})
{
    return "<Service serviceId=\"" + std::to_string(id) + "\" serviceCategory=\"4\" " + attributes + "/>";
}

inline const std::string k_lineup = "lls/lineup-bsid2090-slt.bin";
