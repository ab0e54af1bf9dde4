#include "content/Genres.h"

#include <cstring>
#include <fstream>

#include "esg/GenreNameParse.h"

namespace vyr::inspect {

/// The library passes over terms whose names stand on lines of their own, as they do in files made for people:
/// white space between tags is left out.
std::string ReadGenres(const std::string& name)
{
    constexpr std::size_t k_maxBytes = 8388608;
    std::ifstream file(name, std::ios::binary);
    std::string text;
    std::size_t tag = std::string::npos;  // behind the last tag, when nothing but white space came since
    std::size_t bytes = 0;
    for (char c; file.get(c);) {
        if (++bytes > k_maxBytes) {
            return "larger than any classification scheme: more than " + std::to_string(k_maxBytes) + " bytes";
        }
        if (c == '<' && tag != std::string::npos) {
            text.resize(tag);
        }
        text += c;
        tag = c == '>' ? text.size() : std::strchr(" \t\r\n", c) != nullptr ? tag : std::string::npos;
    }
    CGenreNameParse names;
    names.Create();
    const bool parsed = names.Parse(text.data(), static_cast<unsigned>(text.size()));
    names.Destroy();
    return parsed ? "" : "not a classification scheme";
}

}  // namespace vyr::inspect
