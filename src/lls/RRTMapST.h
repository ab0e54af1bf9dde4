#pragma once

#include <list>
#include <map>
#include <memory>
#include <string>
#include <vector>

/// The process-wide store behind every CRRTMap.
class CRRTMapST {
  public:
    /// Two texts, as the caller gave them. Lists of them: a text that was handed out stays where it is.
    struct STextType {
        std::string first;
        std::string second;
    };

    struct SRating {
        unsigned int value;
        std::list<STextType> abbreviations;
        std::list<STextType> strings;
    };

    struct SDimension {
        unsigned int index;
        bool flag;
        std::list<STextType> titles;
        std::vector<SRating> ratings;  // the last one is being filled
    };

    struct SRatingRegionTable {
        unsigned int regionIdentifier;
        std::list<STextType> texts;
        std::vector<SDimension> dimensions;  // the last one is being filled
    };

    bool Add(unsigned char key, unsigned int regionIdentifier, bool replace);
    bool Remove(unsigned char key);
    bool SetRegionIdText(unsigned char key, const char* first, const char* second);
    bool SetDimension(unsigned char key, unsigned int index, bool flag);
    bool SetDimTitle(unsigned char key, const char* first, const char* second);
    bool SetRatingVal(unsigned char key, unsigned int value);
    bool SetRatingValAbbrev(unsigned char key, const char* first, const char* second);
    bool SetRatingValStr(unsigned char key, const char* first, const char* second);
    bool GetProgramRating(unsigned int key, unsigned int dimension, const char* first, const char* second,
                          void (*fn)(void*, char*), void* userData);

  private:
    SRatingRegionTable* m_Region(unsigned int key);
    SDimension* m_Dimension(unsigned char key);
    SRating* m_Rating(unsigned char key);

    std::map<unsigned char, SRatingRegionTable> m_rrtMap;
};

/// The one store, and the number of created handles on it.
struct SRRTMap {
    static std::unique_ptr<CRRTMapST> rrtMap;
    static unsigned int rrtMapCnt;
};
