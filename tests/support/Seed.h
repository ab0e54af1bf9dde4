#pragma once

#include <fstream>
#include <iterator>
#include <string>

#include "support/Places.h"

/// A seed of the fuzz targets: its first part, from byte `skip` on.
inline std::string Seed(const std::string& name, std::size_t skip)
{
    std::ifstream file(TreeFile("fuzz/corpus/" + name), std::ios::binary);
    const std::string all(std::istreambuf_iterator<char>(file), {});
    return skip < all.size() ? all.substr(skip, all.find("\xFFNEXT") - skip) : std::string();
}
