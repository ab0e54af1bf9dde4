#pragma once

#include <map>
#include <memory>

#include "../platform/Api.h"

/// The names of the genre terms, filled once per process by the first CGenreNameParse whose file has any;
/// they live until the process ends. The library reads and fills the map under a lock of its own, so that guides
/// may be parsed on several threads; a caller may read it when a CGenreNameParse has given true.
struct VYR_API SGenreNameParse {
    /// Number of a term, and its name.
    static std::map<int, std::unique_ptr<char[]>> refMap;
};

/// Reads the names of genre terms from a classification scheme (ClassificationScheme of MPEG-7, as in TV-Anytime's
/// ContentCS) into SGenreNameParse::refMap. Life: construct, Create, Parse, Destroy, delete. An object that is not
/// created is asserted ("m").
class VYR_API CGenreNameParse {
  public:
    CGenreNameParse();
    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    virtual ~CGenreNameParse();
    CGenreNameParse(const CGenreNameParse&) = delete;
    CGenreNameParse& operator=(const CGenreNameParse&) = delete;

    /// Makes the parser ready; a second call is asserted: false.
    bool Create();
    /// Lets go of the document; the names stay.
    void Destroy();

    /// Reads a file. Nothing is read, and the result is true, when there are names already. Required: of a
    /// dotted term such as 3.1.2 the leading number counts, and the first term of a number gives its name; a
    /// Term whose first node is not a Name is passed over, white space between the two included.
    /// False: no document, or none with a ClassificationScheme beside its root.
    bool Parse(const char* filePath);
    /// The same for a document in memory.
    bool Parse(const char* buffer, unsigned int length);

  private:
    struct SState;

    bool m_Known() const;
    bool m_Parse(bool created, const char* step);
    bool t_Process(void* root);

    SState* m;
};
