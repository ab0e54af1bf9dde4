#include "content/Genres.h"

#include <cstring>
#include <fstream>

#include "esg/GenreNameParse.h"

namespace vyr::inspect {

/// The library passes over terms whose names stand on lines of their own, as they do in files made for people:
/// white space between tags is left out.
bool ReadGenres(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    std::string text;
    std::size_t tag = std::string::npos;  // behind the last tag, when nothing but white space came since
    for (char c; file.get(c);) {
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
    return parsed;
}

}  // namespace vyr::inspect
